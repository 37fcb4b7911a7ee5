#pragma once

// The one path every front end takes to calculate what a person typed: build the expression
// against a dictionary kept for the whole session, draw rolls, render reports, and turn any
// fault into a plain sentence.

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/evaluation.h"
#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "expressions/expression.h"

namespace talvex::app {

// The plain sentence for a fault thrown by a calculation: a number leaving the 38-digit range,
// a calculation too large, a divider list that cannot be repaired, memory running out, or
// anything else.
[[nodiscard]] std::string faultMessage(std::exception_ptr fault);

// Runs the work; nothing when it finished, otherwise the sentence for what stopped it.
template <typename Work>
[[nodiscard]] std::optional<std::string> attempt(Work&& work) {
    try {
        std::forward<Work>(work)();
        return std::nullopt;
    } catch (...) {
        return faultMessage(std::current_exception());
    }
}

// An expression as a message names it: long texts are cut, so that a message stays a line.
[[nodiscard]] std::string shortenedForMessage(std::string_view text);

// What one request produced: the expression, a copy of its profile and the rolls drawn.
struct RequestResult {
    language::ExpressionPointer expression;
    core::Profile profile;
    std::vector<core::Evaluation> rolls;
};

// A session of requests sharing one expressions dictionary, so that whatever was built once is
// reused. The dictionary is only a memo: once it is half full it is emptied before the next
// build (keeping the pinned entries), which keeps a long session from reaching its bound and
// changes no result.
class CalculationSession {
  public:
    // Builds (or finds) the expression for the text. Throws what the calculation throws.
    [[nodiscard]] language::ExpressionPointer build(std::string_view text);

    // Builds the text and draws `rolls` random rolls from a copy of its profile. Throws what the
    // calculation throws, and CalculationTooLarge when the rolls would take too long.
    [[nodiscard]] RequestResult calculate(std::string_view text, int rolls);

    // Keeps an entry in the dictionary across every emptying.
    void pin(const std::string& key, language::ExpressionPointer expression);

    [[nodiscard]] language::ExpressionDictionary& expressions() noexcept { return m_expressions; }

    // Draws `count` rolls; CalculationTooLarge when rolls times outcomes exceed the bound.
    [[nodiscard]] static std::vector<core::Evaluation> drawRolls(core::Profile& profile, int count);
    // The styled report of the profile under the options (repaired first).
    [[nodiscard]] static core::StyledText report(core::Profile& profile,
                                                 const core::Options& options);

  private:
    void emptyWhenHalfFull();

    language::ExpressionDictionary m_expressions;
    std::vector<std::pair<std::string, language::ExpressionPointer>> m_pinned;
};

}  // namespace talvex::app
