#include "cli/finding_output.h"

#include <algorithm>

#include "cli/terminal_output.h"

namespace talvex::cli {

namespace {

// A long text is shown as a window of this many characters, the finding near its start.
constexpr std::size_t kShownCharacters = 100;
constexpr std::size_t kShownBefore = 30;
constexpr std::string_view kCut = "...";
constexpr std::string_view kIndent = "  ";

// The text again with the finding marked under it, two lines.
std::string markedText(std::string_view text, const CharacterColumns& columns,
                       const language::Finding& finding) {
    const std::size_t total = columns.count();
    const std::size_t first = columns.column(finding.begin) - 1;
    const std::size_t last = std::max(columns.column(finding.end) - 1, first);
    std::size_t from = 0;
    std::size_t to = total;
    if (total > kShownCharacters) {
        from = std::min(first > kShownBefore ? first - kShownBefore : 0, total - kShownCharacters);
        to = std::min(total, from + kShownCharacters);
    }
    const std::size_t fromByte = columns.byteOf(from);
    const std::size_t toByte = columns.byteOf(to);

    std::string lines(kIndent);
    if (from > 0) {
        lines += kCut;
    }
    lines += terminalSafe(text.substr(fromByte, toByte - fromByte), false);
    if (to < total) {
        lines += kCut;
    }
    lines += '\n';
    lines += kIndent;
    lines.append((from > 0 ? kCut.size() : 0) + first - from, ' ');
    lines += '^';
    const std::size_t marked = std::min(last, to);
    if (marked > first + 1) {
        lines.append(marked - first - 1, '~');
    }
    lines += '\n';
    return lines;
}

}  // namespace

std::string_view severityName(language::Severity severity) {
    return severity == language::Severity::error ? "error" : "warning";
}

CharacterColumns::CharacterColumns(std::string_view text) : m_size(text.size()) {
    for (std::size_t i = 0; i < text.size(); i += characterLength(text.substr(i))) {
        m_starts.push_back(i);
    }
}

std::size_t CharacterColumns::column(std::size_t byte) const {
    if (byte >= m_size) {
        return m_starts.size() + 1;
    }
    return static_cast<std::size_t>(std::upper_bound(m_starts.begin(), m_starts.end(), byte) -
                                    m_starts.begin());
}

std::size_t CharacterColumns::byteOf(std::size_t index) const {
    return index < m_starts.size() ? m_starts[index] : m_size;
}

std::string findingLines(std::string_view name, std::string_view text,
                         const std::vector<language::Finding>& findings, bool showText) {
    if (findings.empty()) {
        return {};
    }
    const CharacterColumns columns(text);
    std::string lines;
    for (const language::Finding& finding : findings) {
        lines += "talvex-cli: ";
        lines += name;
        lines += ": ";
        lines += severityName(finding.severity);
        lines += " at ";
        lines += std::to_string(columns.column(finding.begin));
        lines += ": ";
        // The corrected text in the description is typed text too.
        lines += terminalSafe(language::describe(finding, text), false);
        lines += '\n';
        if (showText) {
            lines += markedText(text, columns, finding);
        }
    }
    return lines;
}

}  // namespace talvex::cli
