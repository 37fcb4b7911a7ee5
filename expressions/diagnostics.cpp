// The diagnostics pass: reads a typed text the way the language reads it and reports the
// mistakes players make most, without building any expression.

#include "expressions/diagnostics.h"

#include <algorithm>
#include <exception>

#include "expressions/diagnostics_internal.h"

namespace talvex::language {

namespace diagnostics_detail {

CleanText::CleanText(std::string_view raw, std::size_t bodyBegin)
    : m_bodyBegin(bodyBegin), m_rawSize(raw.size()) {
    m_text.reserve(raw.size() - bodyBegin);
    m_rawAt.reserve(raw.size() - bodyBegin + 1);
    for (std::size_t i = bodyBegin; i < raw.size(); ++i) {
        if (!isBlank(raw[i])) {
            m_text.push_back(raw[i]);
            m_rawAt.push_back(i);
        }
    }
    m_rawAt.push_back(raw.size());
}

std::pair<std::size_t, std::size_t> CleanText::rawRange(std::size_t begin,
                                                        std::size_t end) const noexcept {
    if (end > begin) {
        return {m_rawAt[begin], m_rawAt[end - 1] + 1};
    }
    const std::size_t at = begin < m_text.size() ? m_rawAt[begin] : rawAfter(begin);
    return {at, at};
}

std::size_t CleanText::rawAfter(std::size_t i) const noexcept {
    if (i == 0) {
        return m_text.empty() ? m_rawSize : m_rawAt[0];
    }
    return m_rawAt[std::min(i, m_text.size()) - 1] + 1;
}

void FindingSink::add(Severity severity, std::pair<std::size_t, std::size_t> range,
                      std::string message) {
    if (m_findings.size() >= kMaxFindings) {
        return;
    }
    m_findings.push_back(Finding{severity, range.first, range.second, std::move(message), {}});
}

void FindingSink::add(Severity severity, std::pair<std::size_t, std::size_t> range,
                      std::string message, Suggestion suggestion) {
    if (m_findings.size() >= kMaxFindings) {
        return;
    }
    m_findings.push_back(
        Finding{severity, range.first, range.second, std::move(message), std::move(suggestion)});
}

void FindingSink::cover(std::pair<std::size_t, std::size_t> range) {
    const std::size_t end = std::min(range.second, m_covered.size());
    for (std::size_t i = range.first; i < end; ++i) {
        m_covered[i] = true;
    }
}

std::vector<Finding> FindingSink::take() {
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [](const Finding& a, const Finding& b) { return a.begin < b.begin; });
    return std::move(m_findings);
}

Analysis::Analysis(std::string_view text, std::size_t colon)
    : raw(text),
      labelColon(colon),
      clean(text, colon == kNone ? 0 : colon + 1),
      sink(text.size()),
      // Name suggestions may compare about a hundred letters per typed byte.
      budget(text.size() * 128 + 100'000),
      partner(clean.size(), kNone) {}

std::string_view Analysis::typed(std::size_t begin, std::size_t end) const noexcept {
    const auto [first, last] = clean.rawRange(begin, end);
    return raw.substr(first, last - first);
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    if (text.size() <= kLongest) {
        return "'" + std::string(text) + "'";
    }
    // Cut at a character boundary, never inside the bytes of one character.
    std::size_t cut = kLongest;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) {
        --cut;
    }
    return "'" + std::string(text.substr(0, cut)) + "...'";
}

namespace {

void runPasses(Analysis& analysis) {
    checkCharacters(analysis);
    if (!checkLabel(analysis)) {
        return;
    }
    checkParentheses(analysis);
    // Arguments of a call that is the whole text are texts of their own; they wait here rather
    // than in a recursion, so that deep nesting costs no stack.
    std::vector<TextUnit> pending{{0, analysis.clean.size(), true}};
    while (!pending.empty()) {
        const TextUnit unit = pending.back();
        pending.pop_back();
        checkUnit(analysis, unit, pending);
    }
}

}  // namespace

}  // namespace diagnostics_detail

std::vector<Finding> diagnose(std::string_view rawText) {
    using namespace diagnostics_detail;
    try {
        Analysis analysis(rawText, rawText.find(':'));
        try {
            runPasses(analysis);
        } catch (const std::exception&) {
            // Out of memory half-way: what was found so far still holds.
        }
        return analysis.sink.take();
    } catch (const std::exception&) {
        return {};
    }
}

std::string applySuggestion(std::string_view rawText, const Suggestion& suggestion) {
    const std::size_t begin = std::min(suggestion.begin, rawText.size());
    const std::size_t end = std::clamp(suggestion.end, begin, rawText.size());
    std::string result;
    result.reserve(rawText.size() - (end - begin) + suggestion.replacement.size());
    result.append(rawText.substr(0, begin));
    result.append(suggestion.replacement);
    result.append(rawText.substr(end));
    return result;
}

std::string describe(const Finding& finding, std::string_view rawText) {
    std::string line = finding.message;
    if (finding.suggestion) {
        line += "; ";
        if (!finding.suggestion->reason.empty()) {
            line += finding.suggestion->reason;
            line += ' ';
        }
        line += "write ";
        std::string corrected = applySuggestion(rawText, *finding.suggestion);
        std::replace_if(
            corrected.begin(), corrected.end(),
            [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
        line += corrected;
    }
    return line;
}

}  // namespace talvex::language
