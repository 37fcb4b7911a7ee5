// Numbers as the language reads them: written wrong, joined by removed blanks, too large or
// too small for its decimals, powers worked out in floating point, dice beyond its limits.

#include <charconv>
#include <cmath>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/diagnostics_internal.h"
#include "kernels/operator_kernels.h"

namespace talvex::language::diagnostics_detail {
namespace {

using core::Decimal;

// Longer literals are judged by counting their digits rather than by reading them.
constexpr std::size_t kLongestRead = 2000;
// The largest Decimal is below 10^165 (38 digits, exponent up to 127).
constexpr std::size_t kMostWholeDigits = 165;
// Words shown around joined blanks, each way.
constexpr std::size_t kShownAround = 20;

struct DigitCount {
    std::size_t whole = 0;    // digits before the point, leading zeros aside
    bool lostDigits = false;  // a non-zero digit beyond the 38 that are kept
    bool nonZero = false;
};

DigitCount countDigits(std::string_view literal) {
    DigitCount count;
    std::size_t significant = 0;
    bool point = false;
    for (const char c : literal) {
        if (c == '.') {
            point = true;
            continue;
        }
        if (c != '0') {
            count.nonZero = true;
        }
        if (significant == 0 && c == '0') {
            continue;
        }
        ++significant;
        count.whole += point ? 0 : 1;
        if (significant > static_cast<std::size_t>(Decimal::kMaxDigits) && c != '0') {
            count.lostDigits = true;
        }
    }
    return count;
}

void checkLiteral(Analysis& analysis, const Token& token) {
    const std::string_view literal = analysis.tokenText(token);
    const auto at = analysis.rawRange(token);
    const DigitCount count = countDigits(literal);
    Decimal value;
    const bool read = literal.size() <= kLongestRead;
    if (read) {
        value = Decimal::decimalNumberWithString(literal);
    }
    if ((read && value.isNotANumber()) || (!read && count.whole > kMostWholeDigits)) {
        analysis.sink.add(Severity::error, at, "this number is too large to work with");
    } else if (read && value.isZero() && count.nonZero) {
        analysis.sink.add(Severity::warning, at, "this number is too small and becomes 0",
                          Suggestion{at.first, at.second, "0", {}});
    } else if (count.lostDigits) {
        const std::string message = "this number has more than 38 digits and is rounded";
        if (read && value.stringValue().size() <= 200) {
            analysis.sink.add(Severity::warning, at, message,
                              Suggestion{at.first, at.second, value.stringValue(), {}});
        } else {
            analysis.sink.add(Severity::warning, at, message);
        }
    }
}

// Blanks inside what the language reads as one number: "1d20 5" is 1d205.
void checkJoined(Analysis& analysis, const Token& token) {
    const CleanText& clean = analysis.clean;
    for (std::size_t p = token.begin + 1; p < token.end; ++p) {
        if (!clean.blankBefore(p)) {
            continue;
        }
        std::size_t first = p - 1;
        while (first > 0 && p - first < kShownAround && isWordCharacter(clean[first - 1])) {
            --first;
        }
        std::size_t last = p;
        while (last < clean.size() && last - p < kShownAround && isWordCharacter(clean[last])) {
            ++last;
        }
        const std::size_t blanksBegin = clean.rawAt(p - 1) + 1;
        const std::size_t blanksEnd = clean.rawAt(p);
        analysis.sink.add(Severity::warning, {blanksBegin, blanksEnd},
                          "blanks are removed, so this reads " + quoted(clean.view(first, last)),
                          Suggestion{blanksBegin, blanksEnd, "+", "to add them"});
    }
}

std::optional<long long> wholeValue(std::string_view digits) {
    long long value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ptr != digits.data() + digits.size()) {
        return result.ec == std::errc::result_out_of_range
                   ? std::optional<long long>(std::numeric_limits<long long>::max())
                   : std::nullopt;
    }
    return value;
}

// "2^1000", "1e400", "1e5", "2^-40": a power of two plain numbers, worked out the way the
// language works it out (in floating point, rounded to ten decimals).
void checkPower(Analysis& analysis, const std::vector<Token>& tokens, std::size_t i) {
    const Token& base = tokens[i];
    const Token& op = tokens[i + 1];
    const bool power = op.kind == TokenKind::arithmetic && analysis.clean[op.begin] == '^';
    if (!power && op.kind != TokenKind::exponent) {
        return;
    }
    std::size_t next = i + 2;
    std::string sign;
    if (next < tokens.size() && tokens[next].kind == TokenKind::arithmetic &&
        (analysis.clean[tokens[next].begin] == '-' || analysis.clean[tokens[next].begin] == '+')) {
        sign = std::string(1, analysis.clean[tokens[next].begin]);
        ++next;
    }
    if (next >= tokens.size() || tokens[next].kind != TokenKind::number ||
        (i > 0 && isBinding(analysis, tokens, i - 1)) || isBinding(analysis, tokens, next + 1)) {
        return;
    }
    const std::string_view left = analysis.tokenText(base);
    const std::string right = sign + std::string(analysis.tokenText(tokens[next]));
    if (left.size() > kLongestRead || right.size() > kLongestRead) {
        return;
    }
    const Decimal a = Decimal::decimalNumberWithString(left);
    const Decimal b = Decimal::decimalNumberWithString(right);
    if (a.isNotANumber() || b.isNotANumber()) {
        return;
    }
    Decimal result = Decimal::notANumber();
    try {
        result = power ? CompoundExpressionPowerF(a, b) : CompoundExpressionEEF(a, b);
    } catch (const std::exception&) {
        // The calculation stops here too: nothing to work with.
    }
    const std::string written(analysis.clean.view(base.begin, tokens[next].end));
    const auto at = analysis.clean.rawRange(base.begin, tokens[next].end);
    if (result.isNotANumber()) {
        const bool zeroPower = power && std::fabs(a.doubleValue()) < 1e-6 && b.doubleValue() < 1e-6;
        analysis.sink.add(
            Severity::error, at,
            quoted(written) + (zeroPower ? " has no value" : " is too large to work with"));
    } else if (result.isZero() && !a.isZero()) {
        analysis.sink.add(Severity::warning, at,
                          quoted(written) + " is rounded to ten decimals and becomes 0");
    } else if (!power) {
        const Decimal exact = Decimal::decimalNumberWithString(std::string(left) + "e" + right);
        if (!exact.isNotANumber() && exact != result) {
            std::string gives = result.stringValue();
            if (gives.size() > 40) {
                gives = gives.substr(0, 40) + "...";
            }
            const std::string message =
                quoted(written) + " is worked out approximately and gives " + gives;
            const std::string exactText = exact.stringValue();
            if (exactText.size() <= 60) {
                analysis.sink.add(Severity::warning, at, message,
                                  Suggestion{at.first, at.second, exactText, {}});
            } else {
                analysis.sink.add(Severity::warning, at, message);
            }
        }
    }
}

// A dice text beyond what is calculated at all: too many dice, or a die with too many faces.
void checkDiceLimits(Analysis& analysis, const std::vector<Token>& tokens, std::size_t i) {
    const Token& letter = tokens[i + 1];
    const Token& size = tokens[i + 2];
    if (letter.kind != TokenKind::diceLetter || size.kind != TokenKind::number ||
        (i > 0 && isBinding(analysis, tokens, i - 1)) || isBinding(analysis, tokens, i + 3)) {
        return;
    }
    const auto count = wholeValue(analysis.tokenText(tokens[i]));
    const auto faces = wholeValue(analysis.tokenText(size));
    if (!count || !faces) {
        return;
    }
    const auto at = analysis.clean.rawRange(tokens[i].begin, size.end);
    if (*count > core::kMaxDice) {
        analysis.sink.add(
            Severity::error, at,
            "more than " + std::to_string(core::kMaxDice) + " dice are too many to calculate");
    } else if (*count >= 1 && analysis.clean[letter.begin] == 'd' &&
               static_cast<unsigned long long>(*faces) > core::kMaxOutcomes) {
        analysis.sink.add(Severity::error, at,
                          "a die with more than " + std::to_string(core::kMaxOutcomes) +
                              " faces is too large to calculate");
    }
}

// "1d6/0": a division by a written zero has no value.
void checkDivisionByZero(Analysis& analysis, const std::vector<Token>& tokens, std::size_t i) {
    const Token& divisor = tokens[i];
    if (i == 0 || tokens[i - 1].kind != TokenKind::arithmetic ||
        analysis.clean[tokens[i - 1].begin] != '/' || isBinding(analysis, tokens, i + 1) ||
        analysis.tokenText(divisor).find_first_not_of("0.") != std::string_view::npos) {
        return;
    }
    analysis.sink.add(Severity::error, analysis.clean.rawRange(tokens[i - 1].begin, divisor.end),
                      "dividing by 0 has no value");
}

}  // namespace

void checkNumbers(Analysis& analysis, const std::vector<Token>& tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (token.kind != TokenKind::number) {
            continue;
        }
        const std::string_view literal = analysis.tokenText(token);
        if (literal.find_first_of("0123456789") == std::string_view::npos ||
            literal.find('.') != literal.rfind('.')) {
            analysis.sink.add(Severity::error, analysis.rawRange(token),
                              quoted(literal) + " is not a number");
            continue;
        }
        checkJoined(analysis, token);
        checkLiteral(analysis, token);
        checkDivisionByZero(analysis, tokens, i);
        if (i + 2 < tokens.size()) {
            checkPower(analysis, tokens, i);
            checkDiceLimits(analysis, tokens, i);
        }
    }
}

}  // namespace talvex::language::diagnostics_detail
