#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/profile.h"
#include "expressions/request_context.h"

namespace talvex::language {

class Expression;
using ExpressionPointer = std::shared_ptr<Expression>;

// Cleaned text -> the expression built from it. Whoever starts a request owns one and hands it
// down inside the request's context; every expression built at any depth is added, so equal
// texts are built once.
class ExpressionDictionary : public std::unordered_map<std::string, ExpressionPointer> {};

// One kind that evolution may turn an expression into: its recognition test on the uncleaned
// text, and a factory for a blank instance that then runs the whole pipeline.
struct ExpressionKind {
    bool (*isExpressionString)(std::string_view text);
    ExpressionPointer (*create)();
};

// A piece of typed text and its exact distribution. Built once, through
// expressionWithString, which cleans the text, parses it, turns it into the most specific kind
// that recognises it and computes the profile, all during construction.
class Expression {
  public:
    Expression() = default;
    virtual ~Expression() = default;
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;

    // Builds (or finds) the expression for `text` in the request's dictionary, within its
    // budget.
    [[nodiscard]] static ExpressionPointer expressionWithString(std::string_view text,
                                                                RequestContext& context);
    // Builds the expression as a request of its own, with a fresh dictionary.
    [[nodiscard]] static ExpressionPointer expressionWithString(std::string_view text);

    // Drops everything up to the first ":" (a label) and removes blanks, tabs and line breaks.
    [[nodiscard]] static std::string cleanString(std::string_view text);
    // Whether every character of `text` occurs in `allowed`.
    [[nodiscard]] static bool isSubset(std::string_view text, std::string_view allowed) noexcept;
    // The base kind recognises any text.
    [[nodiscard]] static bool isExpressionString(std::string_view text) noexcept;

    [[nodiscard]] virtual std::string_view typeString() const { return "untyped"; }

    [[nodiscard]] const std::string& rawString() const noexcept { return m_rawString; }
    [[nodiscard]] const std::string& titleRawString() const noexcept { return m_titleRawString; }
    // A copy: the expression's own profile cannot be changed from outside.
    [[nodiscard]] core::Profile profile() const { return m_profile.copy(); }
    // The expression's own profile, to read or to clone without condensing it anew (a copy of
    // a million outcomes costs a noticeable moment, and a display takes several).
    [[nodiscard]] const core::Profile& profileView() const noexcept { return m_profile; }
    // One random draw from the expression's profile, which remembers it.
    [[nodiscard]] core::Evaluation evaluation() { return m_profile.evaluation(); }
    [[nodiscard]] core::Decimal evaluate() { return m_profile.evaluate(); }
    // The outcomes the expression holds: its profile's, and whatever else it keeps (a function
    // keeps its arguments').
    [[nodiscard]] virtual std::size_t heldOutcomes() const noexcept {
        return m_profile.evaluationCount();
    }

  protected:
    // The kinds evolution tries after this one, in order.
    [[nodiscard]] virtual std::span<const ExpressionKind> descendants() const;

    // The construction steps. Both receive the request, through which every sub-expression is
    // built and every combination charged.
    virtual void parseRawString(RequestContext& /*context*/) {}
    virtual void makeProfile(RequestContext& /*context*/) {}

    void setRawString(std::string rawString) { m_rawString = std::move(rawString); }
    [[nodiscard]] core::Profile& ownProfile() noexcept { return m_profile; }
    [[nodiscard]] const core::Profile& ownProfile() const noexcept { return m_profile; }

  private:
    // The construction pipeline shared by every kind.
    [[nodiscard]] static ExpressionPointer construct(ExpressionPointer blank, std::string_view text,
                                                     RequestContext& context);
    // The one already in the dictionary under `text`'s key, or null after giving `blank` the key
    // and the title.
    [[nodiscard, gnu::noinline]] static ExpressionPointer lookUp(Expression& blank,
                                                                 std::string_view text,
                                                                 RequestContext& context);
    // Titles a finished expression and keeps it in the dictionary.
    [[gnu::noinline]] static void store(const ExpressionPointer& built, RequestContext& context);

    std::string m_rawString;
    std::string m_titleRawString;
    core::Profile m_profile;
};

// The kinds a plain expression may evolve into, in the order they are tried.
[[nodiscard]] std::span<const ExpressionKind> expressionKinds();

}  // namespace talvex::language
