#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "expressions/expression.h"

namespace talvex::language {

// A named function applied to a parenthesised, comma-separated list of arguments, such as
// "max(1d20,1d20)" or "dier(2,6)". Each argument is any expression, built through the shared
// dictionary; its profile is handed to the function's kernel.
class FunctionExpression : public Expression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();

    // The 35 function names, in the order in which a text is matched against them: a longer
    // name stands before a shorter one that it starts with ("dier" before "die",
    // "confineweightrange" before "confine"). Names are case-sensitive.
    [[nodiscard]] static std::span<const std::string_view> functionNames();

    [[nodiscard]] std::string_view typeString() const override { return "function"; }

    // The name the text starts with; empty for an unknown name.
    [[nodiscard]] const std::string& function() const noexcept { return m_function; }
    // The profiles of the arguments, in the order written. Some kernels scale their arguments
    // in place, so after construction these are the profiles as the kernel left them.
    [[nodiscard]] const std::vector<core::Profile>& arguments() const noexcept {
        return m_arguments;
    }
    [[nodiscard]] const std::vector<std::string>& argumentStrings() const noexcept {
        return m_argumentStrings;
    }
    [[nodiscard]] std::size_t heldOutcomes() const noexcept override;

  protected:
    // A function adds no kinds of its own to try.
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    void parseRawString(RequestContext& context) override;
    void makeProfile(RequestContext& context) override;

  private:
    // Names the function and cuts its arguments' texts at the top-level commas. Out of line,
    // with its temporaries, because building the arguments recurses and every level of a deep
    // nesting carries the frame that does it.
    [[nodiscard, gnu::noinline]] std::vector<std::string> cutArguments();
    [[gnu::noinline]] void keepArgument(const Expression& argument, RequestContext& context);
    std::vector<core::Profile> m_arguments;
    std::vector<std::string> m_argumentStrings;
    std::string m_function;
};

}  // namespace talvex::language
