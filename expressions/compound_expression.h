#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "expressions/expression.h"

namespace talvex::language {

// Each nesting level of parentheses is parsed by constructing a sub-expression, recursively; a
// text nested deeper than this (after its definitions are written out) is refused with a
// CalculationTooLarge rather than risking the stack.
inline constexpr std::size_t kMaxNestingDepth = 500;
// Every level re-reads the text inside it, so the characters read over all levels (each
// character counted once per level it sits in) are bounded too.
inline constexpr std::size_t kMaxNestedTextLength = 8U * 1024U * 1024U;
// Characters scanned while writing out definitions and names in one parse.
inline constexpr std::uint64_t kMaxRewritingWork = 2'000'000'000;

// A text with structure: operators, parentheses, named functions, comparators, the named
// constants "pi" and "ex", and definitions ("a=1d6;b=a+a;b*2").
//
// Parsing rewrites the text (definitions and constants written out, implicit multiplication,
// leading signs) and cuts it at its top-level operators into a flat list of operands, each an
// expression of its own built through the shared dictionary. Evaluation then applies the
// precedence levels from left to right, every operator left-associative.
class CompoundExpression : public Expression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();

    [[nodiscard]] std::string_view typeString() const override { return "compound"; }

    // The precedence levels, highest first: "", "edcpvw", "^", "*/", "+-", "%". Level 0 is
    // empty; "%" is the internal mark of a comparator.
    [[nodiscard]] static std::span<const std::string_view> operatorLevelArray();
    // Every operator character, level by level: "edcpvw^*/+-%".
    [[nodiscard]] static std::string_view operatorArray();
    [[nodiscard]] static std::span<const std::string_view> comparatorArray();
    // The named constants and the text that stands for each.
    [[nodiscard]] static std::span<const std::pair<std::string_view, std::string>> constants();
    [[nodiscard]] static std::span<const std::string_view> functionArray();

    [[nodiscard]] const std::vector<ExpressionPointer>& subExpressions() const noexcept {
        return m_subExpressions;
    }
    // Operator i stands between operands i and i + 1.
    [[nodiscard]] const std::vector<char>& subOperators() const noexcept { return m_subOperators; }
    [[nodiscard]] const std::vector<std::string>& subFunctions() const noexcept {
        return m_subFunctions;
    }
    [[nodiscard]] const std::string& comparator() const noexcept { return m_comparator; }
    [[nodiscard]] std::int32_t subFunctionIndex() const noexcept { return m_subFunctionIndex; }

    // All profiles combined with one operator, left to right (a comparator takes them all at
    // once). Fewer than two profiles, or no operator ('\0'), give an empty profile.
    [[nodiscard]] core::Profile combineProfiles(std::vector<core::Profile> profiles, char op,
                                                RequestContext& context) const;

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override;
    void parseRawString(RequestContext& context) override;
    void makeProfile(RequestContext& context) override;

  private:
    // Rewrites the typed text and cuts it at its top-level operators: the operators are kept,
    // the operands' texts returned. Out of line, with all its temporaries, because building the
    // operands recurses and every level of a deep nesting carries the frame that does it.
    [[nodiscard, gnu::noinline]] std::vector<std::string> cutOperands();
    [[gnu::noinline]] void keepOperand(ExpressionPointer operand) {
        m_subExpressions.push_back(std::move(operand));
    }
    [[nodiscard]] std::vector<std::string> cutOperands(std::string_view text,
                                                       std::string_view masked,
                                                       std::string_view expressionProper);

    std::vector<ExpressionPointer> m_subExpressions;
    std::vector<char> m_subOperators;
    std::vector<std::string> m_subFunctions;
    std::string m_comparator;
    std::int32_t m_subFunctionIndex = 0;
};

// Refuses, before any dice text is built, random dice whose counts and sizes would combine
// more outcome pairs than the request has left (an upper estimate over every pair of whole
// numbers).
void checkDiceExpansionWork(const std::vector<core::Evaluation>& counts,
                            const std::vector<core::Evaluation>& sizes, char letter,
                            const RequestContext& context);

// The distribution of `left` dice (counts) of `right` sizes in the notation `letter`: every
// pair of whole numbers becomes a dice text built in the request, weighted by the chance of the
// pair. An empty side gives an empty profile.
[[nodiscard]] core::Profile diceReexpansion(const core::Profile& left, const core::Profile& right,
                                            char letter, RequestContext& context);

// A comparator compares its operands at ten decimals: each is rounded to that precision, and
// outcomes that then coincide are merged.
void roundComparisonOperands(std::vector<core::Profile>& profiles);

// What a comparator ("vs", "vt", "tt", "ch", "cw", "cl", "cu") makes of its operands, each
// already rounded to ten decimals; an empty or unknown comparator gives an empty profile.
[[nodiscard]] core::Profile comparisonProfile(std::string_view comparator,
                                              std::vector<core::Profile>& profiles,
                                              RequestContext& context);

}  // namespace talvex::language
