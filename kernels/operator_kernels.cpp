#include "kernels/operator_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <numbers>

#include "expressions/expression.h"
#include "kernels/definitions.h"
#include "kernels/kernel_support.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;

namespace {

constexpr double kNearlyZero = 1e-6;
// The exponent's fraction is read as p/q with q below this; anything finer has no root sign.
constexpr std::int64_t kMaxRootDenominator = 1'000'000;
constexpr int kKernelScale = 10;

bool eitherUndefined(const Decimal& a, const Decimal& b) noexcept {
    return a.isNotANumber() || b.isNotANumber();
}

// The whole part of a double as a 32-bit integer, truncated; out of range (as the hardware
// conversion does) the most negative value.
Decimal decimalFromInt32(double value) {
    return Decimal::decimalNumberWithInteger(kernel_support::truncatedToInt32(value));
}

// A one-argument kernel in double precision: undefined arguments stay undefined.
template <class Function>
Decimal throughDouble(const Decimal& a, const Decimal& b, Function function) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    return CompoundExpressionDecimalFromDouble(function(b.doubleValue()));
}

// The sign of a negative base raised to `exponent`: +1, -1, or 0 for an even root (undefined).
int negativeBaseSign(double exponent) {
    const double magnitude = std::fabs(exponent);
    const double fraction = magnitude - std::floor(magnitude);
    std::int64_t denominator = 1;
    double rest = fraction;
    // Continued-fraction style: each step multiplies the denominator by at least two, so the
    // loop ends after about twenty steps at the latest.
    while (rest >= kNearlyZero && 1.0 - rest >= kNearlyZero) {
        const auto step =
            static_cast<std::int64_t>(std::floor(1.0 / std::min(rest, 1.0 - rest) + 0.5));
        denominator *= step;
        if (denominator >= kMaxRootDenominator) {
            return 0;
        }
        rest *= static_cast<double>(step);
        rest -= std::floor(rest);
    }
    auto numerator =
        static_cast<std::int64_t>(std::floor(0.5 + fraction * static_cast<double>(denominator)));
    while (numerator % 2 == 0 && denominator % 2 == 0) {
        numerator /= 2;
        denominator /= 2;
    }
    if (numerator % 2 != 0) {
        return denominator % 2 == 0 ? 0 : -1;
    }
    return 1;
}

std::vector<Evaluation> undefinedOutcome() {
    return {Evaluation{Decimal::notANumber(), Decimal::one()}};
}

// Building a dice text in the request: its distribution scaled to weight one. An empty profile
// reports one undefined outcome, which is then of weight one too.
std::vector<Evaluation> buildDiceText(const std::string& text, RequestContext& context) {
    core::Profile profile = Expression::expressionWithString(text, context)->profile();
    profile.scaleToTotalWeight(Decimal::one());
    return profile.evaluations();
}

std::vector<Evaluation> diceRelation(char letter, const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return undefinedOutcome();
    }
    // A relation kernel alone is a request of its own.
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    return buildDiceText(diceRelationText(letter, a, b), context);
}

}  // namespace

Decimal CompoundExpressionDecimalFromDouble(double value) {
    if (!std::isfinite(value)) {
        return Decimal::notANumber();
    }
    return Decimal::decimalNumberWithDouble(value).decimalRound(kKernelScale);
}

Decimal CompoundExpressionAdditionF(const Decimal& a, const Decimal& b) {
    return eitherUndefined(a, b) ? Decimal::notANumber() : a + b;
}

Decimal CompoundExpressionSubtractionF(const Decimal& a, const Decimal& b) {
    return eitherUndefined(a, b) ? Decimal::notANumber() : a - b;
}

Decimal CompoundExpressionMultiplicationF(const Decimal& a, const Decimal& b) {
    return eitherUndefined(a, b) ? Decimal::notANumber() : a * b;
}

Decimal CompoundExpressionDivisionF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b) || b.isZero()) {
        return Decimal::notANumber();
    }
    return a / b;
}

Decimal CompoundExpressionPowerF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    const double base = a.doubleValue();
    const double exponent = b.doubleValue();
    if (std::fabs(base) < kNearlyZero && exponent < kNearlyZero) {
        return Decimal::notANumber();
    }
    const double magnitude = std::pow(std::fabs(base), exponent);
    if (!a.isNegative()) {
        return CompoundExpressionDecimalFromDouble(magnitude);
    }
    switch (negativeBaseSign(exponent)) {
        case 1:
            return CompoundExpressionDecimalFromDouble(magnitude);
        case -1:
            return CompoundExpressionDecimalFromDouble(-magnitude);
        default:
            return Decimal::notANumber();
    }
}

Decimal CompoundExpressionEEF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    return CompoundExpressionDecimalFromDouble(a.doubleValue() *
                                               std::exp(b.doubleValue() * std::log(10.0)));
}

Decimal CompoundExpressionMaxF(const Decimal& a, const Decimal& b) {
    // A leftover trace line, kept because it is visible on the console.
    DiagnosticChannel::fromEnvironment().write("0");
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    return a.compare(b) > 0 ? a : b;
}

Decimal CompoundExpressionMinF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    return a.compare(b) > 0 ? b : a;
}

Decimal CompoundExpressionUndefinedF(const Decimal& /*a*/, const Decimal& /*b*/) {
    return Decimal::notANumber();
}

Decimal CompoundExpressionFloorF(const Decimal& a, const Decimal& b) {
    return eitherUndefined(a, b) ? Decimal::notANumber()
                                 : decimalFromInt32(std::floor(b.doubleValue()));
}

Decimal CompoundExpressionCeilF(const Decimal& a, const Decimal& b) {
    return eitherUndefined(a, b) ? Decimal::notANumber()
                                 : decimalFromInt32(std::ceil(b.doubleValue()));
}

Decimal CompoundExpressionRoundF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    const double value = b.doubleValue();
    const double rounded = std::floor(std::fabs(value) + 0.5);
    return decimalFromInt32(value < 0 ? -rounded : rounded);
}

Decimal CompoundExpressionAbsF(const Decimal& a, const Decimal& b) {
    return throughDouble(a, b, [](double x) { return std::fabs(x); });
}

Decimal CompoundExpressionLnF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b) || b.compare(Decimal::zero()) <= 0) {
        return Decimal::notANumber();
    }
    return CompoundExpressionDecimalFromDouble(std::log(b.doubleValue()));
}

Decimal CompoundExpressionLogF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b) || b.compare(Decimal::zero()) <= 0) {
        return Decimal::notANumber();
    }
    return CompoundExpressionDecimalFromDouble(std::log10(b.doubleValue()));
}

Decimal CompoundExpressionExpF(const Decimal& a, const Decimal& b) {
    return throughDouble(a, b, [](double x) { return std::exp(x); });
}

Decimal CompoundExpressionSinF(const Decimal& a, const Decimal& b) {
    return throughDouble(a, b, [](double x) { return std::sin(x); });
}

Decimal CompoundExpressionCosF(const Decimal& a, const Decimal& b) {
    return throughDouble(a, b, [](double x) { return std::cos(x); });
}

Decimal CompoundExpressionTanF(const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    const double x = b.doubleValue();
    constexpr double kPi = std::numbers::pi;
    const double multiple = std::floor(x / kPi + 0.5);
    if (std::fabs(x - kPi * multiple) < kNearlyZero) {
        return Decimal::notANumber();
    }
    return CompoundExpressionDecimalFromDouble(std::tan(x));
}

namespace {

// Arcsin and arccos share their domain test and the snap to the edge, which works near +1 only.
template <class Function>
Decimal arcFunction(const Decimal& a, const Decimal& b, Function function) {
    if (eitherUndefined(a, b)) {
        return Decimal::notANumber();
    }
    double x = b.doubleValue();
    if (std::fabs(x) - 1.0 > kNearlyZero) {
        return Decimal::notANumber();
    }
    if (std::fabs(x - 1.0) < kNearlyZero) {
        x = x >= 0 ? 1.0 : -1.0;
    }
    return CompoundExpressionDecimalFromDouble(function(x));
}

}  // namespace

Decimal CompoundExpressionArcsinF(const Decimal& a, const Decimal& b) {
    return arcFunction(a, b, [](double x) { return std::asin(x); });
}

Decimal CompoundExpressionArccosF(const Decimal& a, const Decimal& b) {
    return arcFunction(a, b, [](double x) { return std::acos(x); });
}

Decimal CompoundExpressionArctanF(const Decimal& a, const Decimal& b) {
    return throughDouble(a, b, [](double x) { return std::atan(x); });
}

std::string diceRelationText(char letter, const Decimal& a, const Decimal& b) {
    if (eitherUndefined(a, b)) {
        return {};
    }
    bool negative = false;
    Decimal count = a;
    Decimal size = b;
    if (count.isNegative()) {
        count = count * kKVDecimalNegativeOne;
        negative = true;
    }
    if (size.isNegative()) {
        size = size * kKVDecimalNegativeOne;
        negative = !negative;
    }
    std::string text = negative ? "0-" : "";
    text += count.decimalRound(0).stringValue();
    text += letter;
    text += size.decimalRound(0).stringValue();
    return text;
}

std::vector<Evaluation> CompoundExpressionXdyR(const Decimal& a, const Decimal& b) {
    return diceRelation('d', a, b);
}

std::vector<Evaluation> CompoundExpressionXcyR(const Decimal& a, const Decimal& b) {
    return diceRelation('c', a, b);
}

std::vector<Evaluation> CompoundExpressionXpyR(const Decimal& a, const Decimal& b) {
    return diceRelation('p', a, b);
}

std::vector<Evaluation> CompoundExpressionXvyR(const Decimal& a, const Decimal& b) {
    return diceRelation('v', a, b);
}

std::vector<Evaluation> CompoundExpressionXwyR(const Decimal& a, const Decimal& b) {
    return diceRelation('w', a, b);
}

const std::vector<Evaluation>& DiceRelationCache::evaluations(const std::string& diceText) {
    if (const auto found = m_entries.find(diceText); found != m_entries.end()) {
        return found->second;
    }
    return m_entries.emplace(diceText, buildDiceText(diceText, m_context)).first->second;
}

core::RelationKernel cachedDiceRelation(char letter, DiceRelationCache& cache) {
    return [letter, &cache](const Decimal& a, const Decimal& b) {
        if (eitherUndefined(a, b)) {
            return undefinedOutcome();
        }
        return cache.evaluations(diceRelationText(letter, a, b));
    };
}

DiagnosticChannel DiagnosticChannel::fromEnvironment() {
    return DiagnosticChannel(std::getenv("TALVEX_DIAGNOSTICS") != nullptr ? &std::cerr : nullptr);
}

void DiagnosticChannel::write(std::string_view line) const {
    if (m_sink != nullptr) {
        *m_sink << line << '\n';
    }
}

}  // namespace talvex::language
