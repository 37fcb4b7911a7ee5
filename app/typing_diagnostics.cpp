#include "app/typing_diagnostics.h"

#include <algorithm>

#include "expressions/diagnostics.h"

namespace talvex::app {

namespace {

// A corrected text of a long expression is shortened on its button; applying it still writes
// it whole.
constexpr std::size_t kLongestShownCorrection = 60;

std::string shortened(const std::string& text) {
    if (text.size() <= kLongestShownCorrection) {
        return text;
    }
    std::size_t cut = kLongestShownCorrection;
    // Never cut a UTF-8 character in two.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) {
        --cut;
    }
    return text.substr(0, cut) + "…";
}

// Line breaks of the corrected text shown as blanks, as the calculation reads them.
std::string onOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

}  // namespace

TypingDiagnostics diagnoseTyping(std::string_view fieldText, std::size_t shown) {
    // An empty field is no mistake in the window: rolling it empties the displays.
    if (fieldText.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return {};
    }
    std::vector<language::Finding> findings = language::diagnose(fieldText);
    // Errors first: they are why a result is undefined.
    std::stable_partition(findings.begin(), findings.end(), [](const language::Finding& finding) {
        return finding.severity == language::Severity::error;
    });
    TypingDiagnostics result;
    for (const language::Finding& finding : findings) {
        if (result.lines.size() == shown) {
            ++result.notShown;
            continue;
        }
        FindingLine line;
        line.isError = finding.severity == language::Severity::error;
        line.begin = finding.begin;
        line.end = finding.end;
        line.text = std::string(line.isError ? "Error: " : "Warning: ") + finding.message;
        if (finding.suggestion) {
            line.correctedText = language::applySuggestion(fieldText, *finding.suggestion);
            const std::string& reason = finding.suggestion->reason;
            line.suggestionLabel = (reason.empty() ? std::string() : reason + ", ") + "write " +
                                   shortened(onOneLine(line.correctedText));
        }
        result.lines.push_back(std::move(line));
    }
    return result;
}

}  // namespace talvex::app
