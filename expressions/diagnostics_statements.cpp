// One text as the language builds it: a lone number, a function call given whole, or a text
// with definitions before ";" and the expression after the last one.

#include <algorithm>
#include <unordered_map>

#include "expressions/diagnostics_internal.h"
#include "expressions/function_expression.h"

namespace talvex::language::diagnostics_detail {
namespace {

bool isNumberText(std::string_view text) {
    return text.find_first_not_of("0123456789.") == std::string_view::npos;
}

// The notation letter the language reads in a dice text: the first "d" if there is one, else
// the first "c", and so on.
char notationLetter(std::string_view text) {
    for (const char letter : std::string_view("dcpvw")) {
        if (text.find(letter) != std::string_view::npos) {
            return letter;
        }
    }
    return '\0';
}

bool isDiceText(std::string_view text) {
    const char letter = notationLetter(text);
    if (letter == '\0') {
        return false;
    }
    const std::size_t at = text.find(letter);
    const std::string_view digits = "0123456789";
    return at > 0 && at + 1 < text.size() &&
           text.substr(0, at).find_first_not_of(digits) == std::string_view::npos &&
           text.substr(at + 1).find_first_not_of(digits) == std::string_view::npos;
}

// A lone number is a constant only when the typed text is exactly the number.
void checkLoneNumber(Analysis& analysis, std::size_t begin, std::size_t end, bool top, bool label) {
    const CleanText& clean = analysis.clean;
    const std::vector<Token> tokens{{TokenKind::number, begin, end, 0}};
    const std::string_view number = clean.view(begin, end);
    const auto at = clean.rawRange(begin, end);
    const std::string typed(analysis.typed(begin, end));
    if (number.find_first_of("0123456789") == std::string_view::npos ||
        number.find('.') != number.rfind('.')) {
        checkNumbers(analysis, tokens);
        return;
    }
    bool inside = false;
    for (std::size_t p = begin + 1; p < end && top; ++p) {
        inside = inside || clean.blankBefore(p);
    }
    if (inside) {
        analysis.sink.add(Severity::error, at, "a plain number cannot have blanks inside it");
    } else if (label) {
        analysis.sink.add(Severity::error, at, "a plain number cannot have a name before ':'",
                          Suggestion{at.first, at.second, "(" + typed + ")", "to keep the name"});
    } else if (top && (at.first != 0 || at.second != analysis.raw.size())) {
        analysis.sink.add(Severity::error, at, "a plain number cannot have blanks around it",
                          Suggestion{0, analysis.raw.size(), typed, {}});
    } else {
        checkNumbers(analysis, tokens);
    }
}

// A name before ":" that holds a dice letter decides the notation of a dice text after it:
// in "Damage: 2c6" the "d" of "Damage" makes it two six-sided dice.
void checkLabelLetter(Analysis& analysis, std::size_t begin, std::size_t end) {
    const std::string_view dice = analysis.clean.view(begin, end);
    const char read = notationLetter(dice);
    const char chosen = notationLetter(analysis.raw);
    if (read == chosen) {
        return;
    }
    const std::size_t at = dice.find(read);
    const std::string asRead =
        std::string(dice.substr(0, at)) + chosen + std::string(dice.substr(at + 1));
    const auto range = analysis.clean.rawRange(begin, end);
    analysis.sink.add(
        Severity::warning, range,
        "because the name before ':' holds '" + std::string(1, chosen) + "', " + quoted(dice) +
            " is rolled as " + quoted(asRead),
        Suggestion{range.first, range.second, "(" + std::string(analysis.typed(begin, end)) + ")",
                   "to roll " + std::string(dice)});
}

// The function whose call is the whole text, or kNone.
std::size_t wholeCall(const Analysis& analysis, std::size_t begin, std::size_t end) {
    const std::string_view text = analysis.clean.view(begin, end);
    const auto names = FunctionExpression::functionNames();
    for (std::size_t f = 0; f < names.size(); ++f) {
        const std::size_t open = begin + names[f].size();
        if (text.starts_with(names[f]) && open < end && analysis.clean[open] == '(' &&
            analysis.partner[open] == end - 1) {
            return f;
        }
    }
    return kNone;
}

// A call that is the whole text: its values are texts of their own.
void checkWholeCall(Analysis& analysis, std::size_t function, std::size_t begin, std::size_t end,
                    std::vector<TextUnit>& pending) {
    const CleanText& clean = analysis.clean;
    const std::size_t open = begin + functionShape(function).name.size();
    const std::size_t close = end - 1;
    std::size_t values = 0;
    std::size_t lastComma = kNone;
    std::size_t valueBegin = open + 1;
    for (std::size_t p = open + 1; p <= close; ++p) {
        if (clean[p] == '(' && analysis.partner[p] != kNone && p != close) {
            p = analysis.partner[p];
            continue;
        }
        if (clean[p] != ',' && p != close) {
            continue;
        }
        if (valueBegin == p) {
            if (p != close) {
                reportEmptyValue(analysis, p,
                                 lastComma == kNone ? EmptyValue::before : EmptyValue::between);
            } else if (lastComma != kNone) {
                reportEmptyValue(analysis, lastComma, EmptyValue::after);
            }
        } else {
            ++values;
            pending.push_back({valueBegin, p, false});
        }
        lastComma = p == close ? lastComma : p;
        valueBegin = p + 1;
    }
    checkCallValues(analysis, function, clean.rawRange(begin, open), values);
}

}  // namespace

void checkUnit(Analysis& analysis, const TextUnit& unit, std::vector<TextUnit>& pending) {
    std::size_t begin = unit.begin;
    const std::size_t end = unit.end;
    bool label = unit.top && analysis.labelColon != kNone;
    if (!unit.top) {
        // A value of a call is a text of its own, with a label of its own.
        const auto colon = std::lower_bound(analysis.colons.begin(), analysis.colons.end(), begin);
        if (colon != analysis.colons.end() && *colon < end) {
            begin = *colon + 1;
            label = true;
        }
        if (begin == end) {
            analysis.sink.add(Severity::error, analysis.clean.rawRange(unit.begin, end),
                              "there is nothing to roll");
            return;
        }
    }
    const std::string_view text = analysis.clean.view(begin, end);
    if (isNumberText(text)) {
        checkLoneNumber(analysis, begin, end, unit.top, label);
        return;
    }
    if (unit.top && label && isDiceText(text)) {
        checkLabelLetter(analysis, begin, end);
    }
    if (const std::size_t function = wholeCall(analysis, begin, end); function != kNone) {
        checkWholeCall(analysis, function, begin, end, pending);
        return;
    }
    checkStatements(analysis, {begin, end, unit.top});
}

}  // namespace talvex::language::diagnostics_detail
