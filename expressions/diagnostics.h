#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace talvex::language {

// How bad a finding is. An error makes the result undefined (or the calculation impossible);
// a warning marks a text that gives a result, but probably not the one that was meant.
enum class Severity { error, warning };

// A change to the typed text: the bytes [begin, end) are replaced (begin == end inserts).
struct Suggestion {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string replacement;
    // Optional short phrase that says what the change is for, such as "for \"at least\"".
    std::string reason;
};

// One problem in a typed text. The range is in bytes of the text as typed; a character of
// several bytes is covered whole.
struct Finding {
    Severity severity = Severity::error;
    std::size_t begin = 0;
    std::size_t end = 0;
    // Short and plain, for players rather than programmers.
    std::string message;
    std::optional<Suggestion> suggestion;
};

// More findings than this say nothing a person would read: a text with thousands of mistakes
// gets the first ones found, and the time and memory stay those of reading it.
inline constexpr std::size_t kMaxFindings = 100;

// Looks for the usual mistakes in a text as the user typed it (label, blanks, definitions and
// all), in time linear in its length. It only reads the text: nothing is calculated, and
// calculating the text afterwards gives exactly what it gives without it. Never throws; the
// findings are in the order of their ranges, at most kMaxFindings of them.
[[nodiscard]] std::vector<Finding> diagnose(std::string_view rawText);

// The text with the suggestion's range replaced.
[[nodiscard]] std::string applySuggestion(std::string_view rawText, const Suggestion& suggestion);

// One line for the command line and the window: the message and, when there is a suggestion,
// "; " + (reason and " " when there is one) + "write " + the whole corrected text. Line breaks
// of the corrected text are shown as blanks, which the calculation ignores alike.
[[nodiscard]] std::string describe(const Finding& finding, std::string_view rawText);

}  // namespace talvex::language
