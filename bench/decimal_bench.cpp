// Cost of one Decimal operation on full 38-digit operands.
//
// Operands are generated before timing from a fixed seed and cycled through, so every
// iteration is exactly one operation on data the compiler cannot fold away.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "core/decimal.h"

namespace talvex::core {
namespace {

// A power of two, so the index wraps with a mask; small enough to stay in cache.
constexpr std::size_t kOperandCount = 1024;
constexpr std::size_t kIndexMask = kOperandCount - 1;

[[nodiscard]] std::string randomDigits(std::mt19937_64& rng, int count) {
    std::uniform_int_distribution<int> leading(1, 9);
    std::uniform_int_distribution<int> digit(0, 9);
    std::string digits(1, static_cast<char>('0' + leading(rng)));
    for (int i = 1; i < count; ++i) {
        digits += static_cast<char>('0' + digit(rng));
    }
    return digits;
}

// Texts of random 38-digit numbers m x 10^e, e in [minExponent, maxExponent], either sign,
// with the point placed anywhere in the digits.
[[nodiscard]] std::vector<std::string> randomTexts(unsigned seed, int minExponent,
                                                   int maxExponent) {
    std::mt19937_64 rng(seed);
    std::uniform_int_distribution<int> exponent(minExponent, maxExponent);
    std::uniform_int_distribution<int> pointPosition(0, Decimal::kMaxDigits);
    std::bernoulli_distribution negative(0.5);
    std::vector<std::string> texts;
    texts.reserve(kOperandCount);
    for (std::size_t i = 0; i < kOperandCount; ++i) {
        const std::string digits = randomDigits(rng, Decimal::kMaxDigits);
        const int point = pointPosition(rng);
        const auto split = static_cast<std::size_t>(point);
        // Appended piece by piece: GCC 12 misreports string insert and "-" + std::string
        // under -Wrestrict.
        std::string text;
        if (negative(rng)) {
            text += '-';
        }
        text.append(digits, 0, split);
        text += '.';
        text.append(digits, split);
        text += 'E';
        text += std::to_string(exponent(rng) + Decimal::kMaxDigits - point);
        texts.push_back(std::move(text));
    }
    return texts;
}

[[nodiscard]] std::vector<Decimal> randomDecimals(unsigned seed, int minExponent, int maxExponent) {
    std::vector<Decimal> values;
    values.reserve(kOperandCount);
    for (const std::string& text : randomTexts(seed, minExponent, maxExponent)) {
        values.push_back(Decimal::decimalNumberWithString(text));
    }
    return values;
}

// Exponents within +-30 keep sums, products (about 10^(75 +- 60)) and quotients in range.
constexpr int kOperandExponentLimit = 30;

void BM_DecimalAdd(benchmark::State& state) {
    const auto a = randomDecimals(1, -kOperandExponentLimit, kOperandExponentLimit);
    const auto b = randomDecimals(2, -kOperandExponentLimit, kOperandExponentLimit);
    std::size_t i = 0;
    for (auto _ : state) {
        Decimal sum = a[i] + b[i];
        benchmark::DoNotOptimize(sum);
        i = (i + 1) & kIndexMask;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecimalAdd);

void BM_DecimalMultiply(benchmark::State& state) {
    const auto a = randomDecimals(3, -kOperandExponentLimit, kOperandExponentLimit);
    const auto b = randomDecimals(4, -kOperandExponentLimit, kOperandExponentLimit);
    std::size_t i = 0;
    for (auto _ : state) {
        Decimal product = a[i] * b[i];
        benchmark::DoNotOptimize(product);
        i = (i + 1) & kIndexMask;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecimalMultiply);

void BM_DecimalDivide(benchmark::State& state) {
    const auto a = randomDecimals(5, -kOperandExponentLimit, kOperandExponentLimit);
    const auto b = randomDecimals(6, -kOperandExponentLimit, kOperandExponentLimit);
    std::size_t i = 0;
    for (auto _ : state) {
        Decimal quotient = a[i] / b[i];
        benchmark::DoNotOptimize(quotient);
        i = (i + 1) & kIndexMask;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecimalDivide);

void BM_DecimalToString(benchmark::State& state) {
    // Exponents from -60 to 20 mix long fractions, mid-digit points and trailing zeros.
    const auto values = randomDecimals(7, -60, 20);
    std::size_t i = 0;
    for (auto _ : state) {
        std::string text = values[i].stringValue();
        benchmark::DoNotOptimize(text);
        i = (i + 1) & kIndexMask;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecimalToString);

void BM_DecimalFromString(benchmark::State& state) {
    const auto texts = randomTexts(8, -kOperandExponentLimit, kOperandExponentLimit);
    std::size_t i = 0;
    for (auto _ : state) {
        Decimal value = Decimal::decimalNumberWithString(texts[i]);
        benchmark::DoNotOptimize(value);
        i = (i + 1) & kIndexMask;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecimalFromString);

}  // namespace
}  // namespace talvex::core
