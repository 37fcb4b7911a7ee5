#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace talvex::app {

// One finding about the text being typed, as the window shows it under the expression field.
struct FindingLine {
    bool isError = true;
    // The bytes of the typed text the finding is about, for underlining.
    std::size_t begin = 0;
    std::size_t end = 0;
    // "Error: ..." or "Warning: ...", the message without the suggestion.
    std::string text;
    // The whole text with the suggestion applied, and what the button offering it says;
    // both empty when there is no suggestion.
    std::string correctedText;
    std::string suggestionLabel;
};

struct TypingDiagnostics {
    std::vector<FindingLine> lines;
    // Findings beyond the lines shown.
    std::size_t notShown = 0;
};

// Findings the window shows under the expression field while a person types: errors first,
// then warnings, at most `shown` of them. Only reads the text; the calculation itself goes on
// exactly as it would without them. An empty field shows nothing.
[[nodiscard]] TypingDiagnostics diagnoseTyping(std::string_view fieldText, std::size_t shown = 3);

}  // namespace talvex::app
