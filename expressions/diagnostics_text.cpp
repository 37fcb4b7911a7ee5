// The typed text as characters: comments, characters that are no part of the language (with
// their ASCII look-alikes), the label before the first ':' and the parentheses.

#include <algorithm>
#include <array>
#include <unordered_set>

#include "expressions/diagnostics_internal.h"

namespace talvex::language::diagnostics_detail {
namespace {

// A typographic character and the ASCII text the language has for it.
struct Lookalike {
    char32_t code;
    std::string_view replacement;
};

constexpr std::array<Lookalike, 34> kLookalikes = {{
    // Dashes and the minus sign.
    {0x2212, "-"},
    {0x2010, "-"},
    {0x2011, "-"},
    {0x2012, "-"},
    {0x2013, "-"},
    {0x2014, "-"},
    {0x2015, "-"},
    {0xFE63, "-"},
    {0xFF0D, "-"},
    // Multiplication signs and dots.
    {0x00D7, "*"},
    {0x22C5, "*"},
    {0x00B7, "*"},
    {0x2217, "*"},
    {0x2219, "*"},
    {0x2715, "*"},
    {0x2716, "*"},
    {0xFF0A, "*"},
    // Division signs and slashes.
    {0x00F7, "/"},
    {0x2215, "/"},
    {0x2044, "/"},
    {0xFF0F, "/"},
    // Full-width forms that keyboards of some languages type.
    {0xFF0B, "+"},
    {0x2795, "+"},
    {0xFF08, "("},
    {0xFF09, ")"},
    {0xFF0C, ","},
    {0xFF0E, "."},
    {0xFF1A, ":"},
    {0xFF1B, ";"},
    {0xFF1D, "="},
    // Superscript powers.
    {0x00B2, "^2"},
    {0x00B3, "^3"},
    {0x00B9, "^1"},
    {0x2070, "^0"},
}};

// The comparison signs that other tools use; they are read with their neighbours later.
bool isComparisonSign(char32_t code) { return code == 0x2265 || code == 0x2264 || code == 0x2260; }

bool isSpecialBlank(char32_t code) {
    return code == 0x00A0 || (code >= 0x2000 && code <= 0x200A) || code == 0x202F ||
           code == 0x205F || code == 0x3000;
}

bool isInvisible(char32_t code) {
    return code == 0x200B || code == 0x200C || code == 0x200D || code == 0x2060 || code == 0xFEFF;
}

// The bytes of one well-formed UTF-8 character at `at`, or 0.
std::size_t characterLength(std::string_view text, std::size_t at, char32_t& code) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(at);
    std::size_t length = 0;
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        code = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        code = lead & 0x0FU;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        code = lead & 0x07U;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (at + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned next = byte(at + i);
        if (next < (i == 1 ? low : 0x80U) || next > (i == 1 ? high : 0xBFU)) {
            return 0;
        }
        code = (code << 6U) | (next & 0x3FU);
    }
    return length;
}

// ASCII characters that the language reads, or that are read with their neighbours later
// (the comparison signs of other tools).
bool isReadCharacter(char c) {
    return isWordCharacter(c) ||
           std::string_view("+-*/^(),;=~:<>!").find(c) != std::string_view::npos;
}

void notePending(Analysis& analysis, std::size_t begin, std::size_t end, std::string message,
                 std::optional<Suggestion> suggestion) {
    analysis.characterFindings.push_back(
        Finding{Severity::error, begin, end, std::move(message), std::move(suggestion)});
    analysis.sink.cover({begin, end});
}

Suggestion replacing(std::size_t begin, std::size_t end, std::string replacement,
                     std::string reason = {}) {
    return Suggestion{begin, end, std::move(replacement), std::move(reason)};
}

// A "#" at the start of a line or after a blank begins what other tools read as a comment, up
// to the end of its line; the language starts a new statement after a ";" all the same, so the
// comment ends there for it. Answers where the comment ends.
std::size_t noteComment(Analysis& analysis, std::size_t hash) {
    const std::string_view raw = analysis.raw;
    std::size_t lineEnd = raw.find_first_of("\n;", hash);
    const bool toLineEnd = lineEnd != std::string_view::npos && raw[lineEnd] == '\n';
    const std::size_t removedEnd =
        lineEnd == std::string_view::npos ? raw.size() : lineEnd + (toLineEnd ? 1 : 0);
    lineEnd = lineEnd == std::string_view::npos ? raw.size() : lineEnd;
    std::size_t end = lineEnd;
    while (end > hash && isBlank(raw[end - 1])) {
        --end;
    }
    const std::string message = "there are no comments: " + quoted(raw.substr(hash, end - hash)) +
                                " is read as part of the roll";
    const std::size_t body = analysis.labelColon == kNone ? 0 : analysis.labelColon + 1;
    const auto blank = [](char c) { return isBlank(c); };
    const bool onlyComment =
        std::all_of(raw.begin() + static_cast<std::ptrdiff_t>(body),
                    raw.begin() + static_cast<std::ptrdiff_t>(hash), blank) &&
        std::all_of(raw.begin() + static_cast<std::ptrdiff_t>(removedEnd), raw.end(), blank);
    // The blanks before the comment go with it.
    std::size_t removedBegin = hash;
    while (removedBegin > body && (raw[removedBegin - 1] == ' ' || raw[removedBegin - 1] == '\t')) {
        --removedBegin;
    }
    if (onlyComment) {
        notePending(analysis, hash, end, message, std::nullopt);
    } else {
        notePending(analysis, hash, end, message, replacing(removedBegin, removedEnd, ""));
    }
    return lineEnd;
}

void noteAscii(Analysis& analysis, std::size_t at) {
    const std::string_view raw = analysis.raw;
    const char c = raw[at];
    const std::string message = quoted(raw.substr(at, 1)) + " is not part of the language";
    std::optional<Suggestion> suggestion;
    std::size_t before = at;
    while (before > 0 && isBlank(raw[before - 1])) {
        --before;
    }
    if (c == '%' && before > 0 && raw[before - 1] == 'd') {
        suggestion = replacing(at, at + 1, "100", "for a hundred-sided die");
    } else if (c == '[' || c == '{') {
        suggestion = replacing(at, at + 1, "(");
    } else if (c == ']' || c == '}') {
        suggestion = replacing(at, at + 1, ")");
    }
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
        notePending(analysis, at, at + 1,
                    "an invisible control character is not part of the language",
                    replacing(at, at + 1, ""));
        return;
    }
    notePending(analysis, at, at + 1, message, std::move(suggestion));
}

// Answers the bytes the character at `at` takes.
std::size_t noteWide(Analysis& analysis, std::size_t at) {
    const std::string_view raw = analysis.raw;
    char32_t code = 0;
    const std::size_t length = characterLength(raw, at, code);
    if (length == 0) {
        std::size_t end = at + 1;
        while (end < raw.size() && static_cast<unsigned char>(raw[end]) >= 0x80 &&
               characterLength(raw, end, code) == 0) {
            ++end;
        }
        notePending(analysis, at, end, "bytes that are no character are not part of the language",
                    replacing(at, end, ""));
        return end - at;
    }
    if (isComparisonSign(code)) {
        return length;
    }
    const std::size_t end = at + length;
    if (isSpecialBlank(code)) {
        notePending(analysis, at, end, "this special blank is not removed like an ordinary one",
                    replacing(at, end, " "));
        return length;
    }
    if (isInvisible(code)) {
        notePending(analysis, at, end, "an invisible character is not part of the language",
                    replacing(at, end, ""));
        return length;
    }
    std::optional<Suggestion> suggestion;
    if (code >= 0xFF10 && code <= 0xFF19) {
        suggestion = replacing(at, end, std::string(1, static_cast<char>('0' + (code - 0xFF10))));
    }
    for (const Lookalike& lookalike : kLookalikes) {
        if (lookalike.code == code) {
            suggestion = replacing(at, end, std::string(lookalike.replacement));
        }
    }
    notePending(analysis, at, end, quoted(raw.substr(at, length)) + " is not part of the language",
                std::move(suggestion));
    return length;
}

// Whether the label holds a dice text such as 1d20, blanks aside.
bool holdsDice(std::string_view label) {
    char beforeBefore = ' ';
    char before = ' ';
    for (const char c : label) {
        if (isBlank(c)) {
            continue;
        }
        if (isDigit(c) && isDiceLetter(before) && isDigit(beforeBefore)) {
            return true;
        }
        beforeBefore = before;
        before = c;
    }
    return false;
}

std::string withoutBlanks(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (!isBlank(c)) {
            result += c;
        }
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Whether one of `names` stands as a whole word in the text after the label.
bool usesName(const CleanText& clean, const std::unordered_set<std::string>& names) {
    std::size_t i = 0;
    while (i < clean.size()) {
        if (!isDigit(clean[i]) && !isLetter(clean[i])) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < clean.size() && (isDigit(clean[i]) || isLetter(clean[i]))) {
            ++i;
        }
        if (names.contains(std::string(clean.view(start, i)))) {
            return true;
        }
    }
    return false;
}

// Definitions written before the label's ":" belong to the label and are never read.
void checkLabelDefinitions(Analysis& analysis, std::string_view label, std::size_t labelBegin) {
    std::unordered_set<std::string> names;
    std::size_t start = 0;
    std::size_t lastSemicolon = std::string_view::npos;
    for (std::size_t end = 0; end <= label.size(); ++end) {
        if (end < label.size() && label[end] != ';') {
            continue;
        }
        const std::string_view piece = label.substr(start, end - start);
        if (const auto sign = piece.find_first_of("=~"); sign != std::string_view::npos) {
            std::string name = withoutBlanks(piece.substr(0, sign));
            if (!name.empty()) {
                names.insert(name);
                analysis.swallowedNames.push_back(std::move(name));
            }
        }
        if (end < label.size()) {
            lastSemicolon = end;
        }
        start = end + 1;
    }
    const bool used = usesName(analysis.clean, names);
    const std::string message =
        "everything before ':' is only a name, so the definitions in it are left out";
    const std::pair range{labelBegin, analysis.labelColon};
    const std::string_view name = lastSemicolon == std::string_view::npos
                                      ? std::string_view()
                                      : trimmed(label.substr(lastSemicolon + 1));
    const Severity severity = used ? Severity::error : Severity::warning;
    if (name.empty() || name.find_first_of("=~") != std::string_view::npos) {
        analysis.sink.add(severity, range, message);
        return;
    }
    std::string replacement(name);
    replacement += ": ";
    replacement += trimmed(label.substr(0, lastSemicolon + 1));
    analysis.sink.add(
        severity, range, message,
        replacing(0, analysis.labelColon + 1, std::move(replacement), "to keep the definitions"));
}

}  // namespace

void reportCharacters(Analysis& analysis, std::pair<std::size_t, std::size_t> range) {
    auto& found = analysis.characterFindings;
    auto at = std::lower_bound(found.begin(), found.end(), range.first,
                               [](const Finding& f, std::size_t byte) { return f.begin < byte; });
    for (; at != found.end() && at->begin < range.second; ++at) {
        const auto index = static_cast<std::size_t>(at - found.begin());
        if (!analysis.characterReported[index]) {
            analysis.characterReported[index] = true;
            if (at->suggestion) {
                analysis.sink.add(at->severity, {at->begin, at->end}, at->message, *at->suggestion);
            } else {
                analysis.sink.add(at->severity, {at->begin, at->end}, at->message);
            }
        }
    }
}

void checkCharacters(Analysis& analysis) {
    const std::string_view raw = analysis.raw;
    std::size_t i = analysis.labelColon == kNone ? 0 : analysis.labelColon + 1;
    while (i < raw.size()) {
        const char c = raw[i];
        if (isBlank(c)) {
            ++i;
        } else if (c == '#' && (i == 0 || isBlank(raw[i - 1]) ||
                                (analysis.labelColon != kNone && i == analysis.labelColon + 1))) {
            i = noteComment(analysis, i);
        } else if (static_cast<unsigned char>(c) >= 0x80) {
            i += noteWide(analysis, i);
        } else {
            if (!isReadCharacter(c)) {
                noteAscii(analysis, i);
            }
            ++i;
        }
    }
    analysis.characterReported.assign(analysis.characterFindings.size(), false);
}

bool checkLabel(Analysis& analysis) {
    const std::string_view raw = analysis.raw;
    if (analysis.labelColon != kNone) {
        const std::string_view label = raw.substr(0, analysis.labelColon);
        std::size_t labelBegin = 0;
        while (labelBegin < label.size() && isBlank(label[labelBegin])) {
            ++labelBegin;
        }
        if (label.find_first_of("=~") != std::string_view::npos) {
            checkLabelDefinitions(analysis, label, labelBegin);
        } else if (holdsDice(label)) {
            analysis.sink.add(
                Severity::warning, {labelBegin, analysis.labelColon},
                quoted(trimmed(label)) + " before ':' is only a name and is not rolled");
        }
    }
    if (analysis.clean.size() == 0) {
        analysis.sink.add(Severity::error, {0, raw.size()}, "there is nothing to roll");
        return false;
    }
    for (std::size_t i = 0; i < analysis.clean.size(); ++i) {
        if (analysis.clean[i] == ':') {
            analysis.colons.push_back(i);
        }
    }
    return true;
}

void checkParentheses(Analysis& analysis) {
    const CleanText& clean = analysis.clean;
    std::vector<std::size_t> open;
    std::vector<std::size_t> unmatchedClose;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const char c = clean[i];
        if ((c != '(' && c != ')') || analysis.sink.covered(clean.rawAt(i))) {
            continue;
        }
        if (c == '(') {
            open.push_back(i);
        } else if (open.empty()) {
            unmatchedClose.push_back(i);
        } else {
            analysis.partner[i] = open.back();
            analysis.partner[open.back()] = i;
            open.pop_back();
        }
    }
    const bool single = open.size() + unmatchedClose.size() == 1;
    for (const std::size_t at : unmatchedClose) {
        const auto range = clean.rawRange(at, at + 1);
        if (single) {
            analysis.sink.add(Severity::error, range, "')' has no matching '('",
                              replacing(range.first, range.second, ""));
        } else {
            analysis.sink.add(Severity::error, range, "')' has no matching '('");
        }
    }
    for (const std::size_t at : open) {
        const auto range = clean.rawRange(at, at + 1);
        if (!single) {
            analysis.sink.add(Severity::error, range, "'(' is never closed");
            continue;
        }
        // Closed at the end of its statement: before the next ";", or at the end of the text.
        std::size_t end = at + 1;
        while (end < clean.size() && clean[end] != ';') {
            ++end;
        }
        if (end == at + 1 && (at == 0 || !isLetter(clean[at - 1]))) {
            // Nothing follows it: it was most likely typed by mistake.
            analysis.sink.add(Severity::error, range, "'(' is never closed",
                              replacing(range.first, range.second, ""));
            continue;
        }
        const std::size_t insert = clean.rawAfter(end);
        analysis.sink.add(Severity::error, range, "'(' is never closed",
                          replacing(insert, insert, ")"));
    }
}

}  // namespace talvex::language::diagnostics_detail
