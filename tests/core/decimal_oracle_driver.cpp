// Answers Decimal questions for decimal_oracle_test.py, one line per input line.
//
// Input lines:
//   add|sub|mul|div A B   the result's text
//   round A SCALE         the rounded text, then "changed" or "unchanged"
//   text T                T is everything after the first space, verbatim (may be empty)
// A result that throws prints "ERR Overflow", "ERR Underflow" or "ERR DivideByZero".
// Operands are read with Decimal::decimalNumberWithString.
//
// Besides the values, the driver checks what the text alone cannot show: every result is in
// its representable range with no negative zero, the two rounding entry points agree, and a
// parsed text reads back from its own text unchanged. A failed check prints "ERR <what>".

#include <charconv>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "core/decimal.h"

namespace talvex::core {
namespace {

// 10^38 as two 64-bit halves: every mantissa must be below it.
constexpr std::uint64_t kMantissaLimitHigh = 0x4B3B4CA85A86C47AULL;
constexpr std::uint64_t kMantissaLimitLow = 0x098A224000000000ULL;

[[nodiscard]] bool isWellFormed(const Decimal& value) {
    if (value.isNotANumber()) {
        return !value.isNegative();
    }
    const bool mantissaInRange =
        value.mantissaHigh() < kMantissaLimitHigh ||
        (value.mantissaHigh() == kMantissaLimitHigh && value.mantissaLow() < kMantissaLimitLow);
    const bool exponentInRange =
        value.exponent() >= Decimal::kMinExponent && value.exponent() <= Decimal::kMaxExponent;
    const bool signAllowed = !(value.isZero() && value.isNegative());
    return mantissaInRange && exponentInRange && signAllowed;
}

[[nodiscard]] const char* faultName(DecimalFault fault) {
    switch (fault) {
        case DecimalFault::Overflow:
            return "ERR Overflow";
        case DecimalFault::Underflow:
            return "ERR Underflow";
        case DecimalFault::DivideByZero:
            return "ERR DivideByZero";
    }
    return "ERR UnknownFault";
}

// The text of a result, or the name of the broken invariant.
[[nodiscard]] std::string resultText(const Decimal& value) {
    if (!isWellFormed(value)) {
        return "ERR Malformed";
    }
    return value.stringValue();
}

[[nodiscard]] std::string arithmetic(std::string_view op, const Decimal& a, const Decimal& b) {
    if (op == "add") {
        return resultText(a.decimalNumberByAdding(b));
    }
    if (op == "sub") {
        return resultText(a.decimalNumberBySubtracting(b));
    }
    if (op == "mul") {
        return resultText(a.decimalNumberByMultiplyingBy(b));
    }
    if (op == "div") {
        return resultText(a.decimalNumberByDividingBy(b));
    }
    return "ERR BadOperation";
}

[[nodiscard]] std::string roundAtScale(const Decimal& value, int scale) {
    bool changed = false;
    const Decimal rounded = value.roundToScale(scale, RoundingMode::Plain, &changed);
    const Decimal plain = value.decimalRound(scale);
    std::string text = resultText(rounded);
    if (text.starts_with("ERR")) {
        return text;
    }
    if (plain.stringValue() != text) {
        return "ERR RoundingEntryPointsDisagree";
    }
    return text + (changed ? " changed" : " unchanged");
}

[[nodiscard]] std::string parseText(std::string_view text) {
    const Decimal value = Decimal::decimalNumberWithString(text);
    std::string result = resultText(value);
    if (result.starts_with("ERR")) {
        return result;
    }
    const Decimal again = Decimal::decimalNumberWithString(result);
    if (again.compare(value) != 0 || again.stringValue() != result) {
        return "ERR RoundTrip " + again.stringValue();
    }
    return result;
}

[[nodiscard]] std::string answer(std::string_view line) {
    const std::size_t opEnd = line.find(' ');
    if (opEnd == std::string_view::npos) {
        return "ERR BadInput";
    }
    const std::string_view op = line.substr(0, opEnd);
    const std::string_view rest = line.substr(opEnd + 1);
    if (op == "text") {
        return parseText(rest);
    }
    const std::size_t split = rest.find(' ');
    if (split == std::string_view::npos) {
        return "ERR BadInput";
    }
    const Decimal a = Decimal::decimalNumberWithString(rest.substr(0, split));
    const std::string_view second = rest.substr(split + 1);
    if (op == "round") {
        int scale = 0;
        const auto [end, error] =
            std::from_chars(second.data(), second.data() + second.size(), scale);
        if (error != std::errc{} || end != second.data() + second.size()) {
            return "ERR BadInput";
        }
        return roundAtScale(a, scale);
    }
    return arithmetic(op, a, Decimal::decimalNumberWithString(second));
}

[[nodiscard]] std::string readAll(std::FILE* stream) {
    std::string data;
    char buffer[1 << 16];
    std::size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream)) > 0) {
        data.append(buffer, count);
    }
    return data;
}

}  // namespace
}  // namespace talvex::core

int main() {
    using talvex::core::DecimalError;
    const std::string input = talvex::core::readAll(stdin);
    std::string output;
    output.reserve(input.size() * 2);
    std::size_t start = 0;
    while (start < input.size()) {
        std::size_t end = input.find('\n', start);
        if (end == std::string::npos) {
            end = input.size();
        }
        const std::string_view line(input.data() + start, end - start);
        try {
            output += talvex::core::answer(line);
        } catch (const DecimalError& error) {
            output += talvex::core::faultName(error.fault());
        } catch (const std::exception& error) {
            // Anything else escaping Decimal is a bug; say so on this line and carry on.
            output += "ERR Unexpected ";
            output += error.what();
        }
        output += '\n';
        start = end + 1;
    }
    std::fwrite(output.data(), 1, output.size(), stdout);
    return 0;
}
