#include "expressions/compound_expression.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>

#include "expressions/function_expression.h"
#include "expressions/hard_compound_expression.h"

namespace talvex::language {
namespace {

constexpr std::array<std::string_view, 6> kOperatorLevels = {"", "edcpvw", "^", "*/", "+-", "%"};
constexpr std::string_view kOperators = "edcpvw^*/+-%";
constexpr std::array<std::string_view, 7> kComparators = {"vs", "vt", "tt", "ch", "cw", "cl", "cu"};

// The shortest text with at most 16 significant digits that reads back as `value`, as a number
// formatter writes it.
std::string constantText(double value) {
    std::array<char, 64> buffer{};
    for (int digits = 1; digits <= 16; ++digits) {
        std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, value);
        if (std::strtod(buffer.data(), nullptr) == value) {
            break;
        }
    }
    return buffer.data();
}

}  // namespace

std::span<const std::string_view> CompoundExpression::operatorLevelArray() {
    return kOperatorLevels;
}

std::string_view CompoundExpression::operatorArray() { return kOperators; }

std::span<const std::string_view> CompoundExpression::comparatorArray() { return kComparators; }

std::span<const std::pair<std::string_view, std::string>> CompoundExpression::constants() {
    static const std::array<std::pair<std::string_view, std::string>, 2> kConstants = {{
        {"pi", constantText(std::numbers::pi)},
        {"ex", constantText(std::numbers::e)},
    }};
    return kConstants;
}

// One list of names for both kinds, so that a call inside a compound text is kept whole.
std::span<const std::string_view> CompoundExpression::functionArray() {
    return FunctionExpression::functionNames();
}

bool CompoundExpression::isExpressionString(std::string_view text) {
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        text.remove_prefix(colon + 1);
    }
    if (text.empty()) {
        return false;
    }
    long depth = 0;
    for (const char c : text) {
        if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth < 0) {
            return false;
        }
    }
    if (depth != 0) {
        return false;
    }
    const auto occurs = [text](std::string_view word) {
        return text.find(word) != std::string_view::npos;
    };
    const auto semicolon = text.find(';');
    const bool structured =
        occurs("(") || text.find_first_of(kOperators) != std::string_view::npos ||
        (semicolon != std::string_view::npos && semicolon + 1 < text.size()) ||
        std::any_of(functionArray().begin(), functionArray().end(), occurs) ||
        std::any_of(kComparators.begin(), kComparators.end(), occurs) ||
        std::any_of(constants().begin(), constants().end(),
                    [&occurs](const auto& constant) { return occurs(constant.first); });
    return structured && Expression::isExpressionString(text);
}

ExpressionPointer CompoundExpression::create() { return std::make_shared<CompoundExpression>(); }

std::span<const ExpressionKind> CompoundExpression::descendants() const {
    // A compound text with a hard definition ("a~1d6;a+a") is handled by its own kind.
    static constexpr std::array<ExpressionKind, 1> kHard = {{
        {HardCompoundExpression::isExpressionString, HardCompoundExpression::create},
    }};
    return kHard;
}

}  // namespace talvex::language
