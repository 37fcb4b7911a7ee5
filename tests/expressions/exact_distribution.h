#pragma once

// Exact distributions for the tests, built by direct enumeration with exact fractions, so that
// expected results never come from the code under test.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/decimal.h"
#include "core/profile.h"

namespace talvex::language::testing {

__extension__ using Int128 = __int128;

inline std::string int128Text(Int128 value) {
    if (value == 0) {
        return "0";
    }
    const bool negative = value < 0;
    std::string digits;
    while (value != 0) {
        const auto digit = static_cast<int>(value % 10);
        digits.insert(digits.begin(), static_cast<char>('0' + (digit < 0 ? -digit : digit)));
        value /= 10;
    }
    return negative ? "-" + digits : digits;
}

// An exact fraction in lowest terms with a positive denominator.
class Rational {
  public:
    Rational(long long value = 0) : m_num(value), m_den(1) {}  // NOLINT: numbers read naturally
    Rational(Int128 num, Int128 den) : m_num(num), m_den(den) { reduce(); }

    // "2.5", "-0.125", "3.141592653589793": a terminating decimal text.
    static Rational fromText(const std::string& text) {
        Int128 num = 0;
        Int128 den = 1;
        bool negative = false;
        bool afterPoint = false;
        for (const char c : text) {
            if (c == '-') {
                negative = true;
            } else if (c == '.') {
                afterPoint = true;
            } else {
                num = num * 10 + (c - '0');
                if (afterPoint) {
                    den *= 10;
                }
            }
        }
        return {negative ? -num : num, den};
    }

    [[nodiscard]] Int128 num() const { return m_num; }
    [[nodiscard]] Int128 den() const { return m_den; }
    [[nodiscard]] bool isWhole() const { return m_den == 1; }

    // Cross factors are cancelled first, so that the intermediate products stay small.
    friend Rational operator+(const Rational& a, const Rational& b) {
        const Int128 common = gcd(a.m_den, b.m_den);
        const Int128 aFactor = b.m_den / common;
        const Int128 bFactor = a.m_den / common;
        return {a.m_num * aFactor + b.m_num * bFactor, a.m_den * aFactor};
    }
    friend Rational operator-(const Rational& a, const Rational& b) {
        return a + Rational(-b.m_num, b.m_den);
    }
    friend Rational operator*(const Rational& a, const Rational& b) {
        const Int128 ab = gcd(a.m_num, b.m_den);
        const Int128 ba = gcd(b.m_num, a.m_den);
        return {(a.m_num / ab) * (b.m_num / ba), (a.m_den / ba) * (b.m_den / ab)};
    }
    friend Rational operator/(const Rational& a, const Rational& b) {
        return a * Rational(b.m_den, b.m_num);
    }
    friend bool operator==(const Rational& a, const Rational& b) {
        return a.m_num == b.m_num && a.m_den == b.m_den;
    }
    // Compared by whole parts and then, recursively, by the reciprocals of the remainders, so
    // that no product can overflow.
    friend bool operator<(const Rational& a, const Rational& b) {
        return less(a.m_num, a.m_den, b.m_num, b.m_den);
    }

    // Rounded to whole, halves away from zero.
    [[nodiscard]] Int128 rounded() const {
        const Int128 magnitude = (m_num < 0 ? -m_num : m_num) * 2 + m_den;
        const Int128 whole = magnitude / (2 * m_den);
        return m_num < 0 ? -whole : whole;
    }

    // Plain decimal text at `places` decimals (halves away from zero), without trailing zeros.
    [[nodiscard]] std::string text(int places = 10) const {
        Int128 scale = 1;
        for (int i = 0; i < places; ++i) {
            scale *= 10;
        }
        const Int128 scaled = (*this * Rational(scale, 1)).rounded();
        const Int128 magnitude = scaled < 0 ? -scaled : scaled;
        std::string digits = int128Text(magnitude);
        if (digits.size() <= static_cast<std::size_t>(places)) {
            digits.insert(0, static_cast<std::size_t>(places) + 1 - digits.size(), '0');
        }
        std::string result = digits.substr(0, digits.size() - static_cast<std::size_t>(places));
        std::string fraction = digits.substr(digits.size() - static_cast<std::size_t>(places));
        while (!fraction.empty() && fraction.back() == '0') {
            fraction.pop_back();
        }
        if (!fraction.empty()) {
            result += "." + fraction;
        }
        return (scaled < 0 ? "-" : "") + result;
    }

  private:
    static Int128 gcd(Int128 a, Int128 b) {
        a = a < 0 ? -a : a;
        b = b < 0 ? -b : b;
        while (b != 0) {
            const Int128 t = a % b;
            a = b;
            b = t;
        }
        return a == 0 ? 1 : a;
    }

    static Int128 floorDivision(Int128 num, Int128 den) {
        const Int128 quotient = num / den;
        return (num % den != 0 && num < 0) ? quotient - 1 : quotient;
    }

    // an/ad < bn/bd for positive denominators.
    static bool less(Int128 an, Int128 ad, Int128 bn, Int128 bd) {
        const Int128 aWhole = floorDivision(an, ad);
        const Int128 bWhole = floorDivision(bn, bd);
        if (aWhole != bWhole) {
            return aWhole < bWhole;
        }
        const Int128 aRest = an - aWhole * ad;
        const Int128 bRest = bn - bWhole * bd;
        if (aRest == 0 || bRest == 0) {
            return aRest == 0 && bRest != 0;
        }
        // aRest/ad < bRest/bd exactly when bd/bRest < ad/aRest.
        return less(bd, bRest, ad, aRest);
    }

    void reduce() {
        if (m_den < 0) {
            m_num = -m_num;
            m_den = -m_den;
        }
        const Int128 common = gcd(m_num, m_den);
        m_num /= common;
        m_den /= common;
    }

    Int128 m_num;
    Int128 m_den;
};

// An outcome: a value, or undefined (nullopt, which sorts first).
using Outcome = std::optional<Rational>;
// Outcome -> probability.
using Distribution = std::map<Outcome, Rational>;

inline Distribution certain(Outcome value) { return {{value, Rational(1)}}; }
inline Distribution undefinedOutcome() { return certain(std::nullopt); }

// Each pair of outcomes of a and b, combined by `f`, with the product of their chances.
inline Distribution combine(const Distribution& a, const Distribution& b,
                            const std::function<Outcome(const Rational&, const Rational&)>& f) {
    Distribution result;
    for (const auto& [x, px] : a) {
        for (const auto& [y, py] : b) {
            const Outcome value = (x && y) ? f(*x, *y) : std::nullopt;
            result[value] = result[value] + px * py;
        }
    }
    return result;
}

inline Distribution sum(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) { return x + y; });
}
inline Distribution difference(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) { return x - y; });
}
inline Distribution product(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) { return x * y; });
}
inline Distribution quotient(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) -> Outcome {
        if (y == Rational(0)) {
            return std::nullopt;
        }
        return x / y;
    });
}
inline Distribution shifted(const Distribution& a, long long by) {
    return sum(a, certain(Rational(by)));
}
inline Distribution scaled(const Distribution& a, long long by) {
    return product(a, certain(Rational(by)));
}

// One die of a notation, with its faces counted as described for the dice texts: "d" faces
// 1..y; "c" a success y times in 10 (sure from 10 on); "p" y times in 100; "v" and "w" faces
// 1..y of a ten- (hundred-) sided die whose other faces count 0.
inline Distribution oneDie(char letter, long long size) {
    std::map<long long, long long> ways;
    switch (letter) {
        case 'd':
            for (long long face = 1; face <= size; ++face) {
                ways[face] = 1;
            }
            break;
        case 'c':
        case 'p': {
            const long long sides = letter == 'c' ? 10 : 100;
            if (size >= sides) {
                ways[1] = 1;
            } else {
                ways[1] = size;
                ways[0] = sides - size;
            }
            break;
        }
        default: {
            const long long sides = letter == 'v' ? 10 : 100;
            const long long shown = std::min(size, sides);
            for (long long face = 1; face <= shown; ++face) {
                ways[face] = 1;
            }
            ways[0] = sides - shown;
            break;
        }
    }
    long long total = 0;
    for (const auto& entry : ways) {
        total += entry.second;
    }
    Distribution die;
    for (const auto& [face, count] : ways) {
        if (count > 0) {
            die[Rational(face)] = Rational(count, total);
        }
    }
    return die;
}

// The sum of `count` dice; no dice (or dice without faces) always show 0.
inline Distribution dice(long long count, char letter, long long size) {
    if (count == 0 || size == 0) {
        return certain(Rational(0));
    }
    const Distribution die = oneDie(letter, size);
    Distribution total = die;
    for (long long i = 1; i < count; ++i) {
        total = sum(total, die);
    }
    return total;
}

inline Distribution d(long long count, long long size) { return dice(count, 'd', size); }

// Dice whose count and size are themselves random: each pair, rounded to whole numbers (halves
// away from zero), is rolled as that many dice, negated when exactly one of the two was
// negative.
inline Distribution randomDice(const Distribution& counts, char letter, const Distribution& sizes) {
    Distribution result;
    for (const auto& [count, pc] : counts) {
        for (const auto& [size, ps] : sizes) {
            const Rational chance = pc * ps;
            if (!count || !size) {
                result[std::nullopt] = result[std::nullopt] + chance;
                continue;
            }
            const bool negative = (*count < Rational(0)) != (*size < Rational(0));
            const auto magnitude = [](const Rational& r) {
                const Int128 whole = r.rounded();
                return static_cast<long long>(whole < 0 ? -whole : whole);
            };
            for (const auto& [value, p] : dice(magnitude(*count), letter, magnitude(*size))) {
                const Outcome signedValue = negative ? Outcome(Rational(0) - *value) : value;
                result[signedValue] = result[signedValue] + chance * p;
            }
        }
    }
    return result;
}

// Checks a profile against an exact distribution: the same outcomes (compared at ten
// decimals, as the profile itself tells outcomes apart) with probabilities equal to 30 places.
inline ::testing::AssertionResult matchesDistribution(const core::Profile& profile,
                                                      const Distribution& expected) {
    std::map<std::string, Rational> wanted;
    for (const auto& [value, chance] : expected) {
        if (chance == Rational(0)) {
            continue;
        }
        const std::string key = value ? value->text() : "undefined";
        wanted[key] = wanted[key] + chance;
    }
    const std::vector<core::Evaluation> actual = profile.evaluations();
    if (actual.size() != wanted.size()) {
        auto failure = ::testing::AssertionFailure()
                       << "expected " << wanted.size() << " outcomes, got " << actual.size() << ":";
        for (const auto& evaluation : actual) {
            failure << " " << evaluation.quantity().stringValue();
        }
        return failure;
    }
    const core::Decimal total = profile.totalWeight();
    const core::Decimal tolerance = core::Decimal::decimalNumberWithString("1e-30");
    for (const auto& evaluation : actual) {
        const std::string key = evaluation.isDefined()
                                    ? evaluation.quantity().decimalRound(10).stringValue()
                                    : "undefined";
        const auto found = wanted.find(key);
        if (found == wanted.end()) {
            return ::testing::AssertionFailure() << "unexpected outcome " << key;
        }
        const core::Decimal probability = evaluation.weight() / total;
        const core::Decimal exact =
            core::Decimal::decimalNumberWithString(int128Text(found->second.num())) /
            core::Decimal::decimalNumberWithString(int128Text(found->second.den()));
        const core::Decimal gap = (probability - exact).absoluteValueChanged(nullptr, nullptr);
        if (gap.compare(tolerance) > 0) {
            return ::testing::AssertionFailure()
                   << "outcome " << key << ": probability " << probability.stringValue()
                   << ", expected " << int128Text(found->second.num()) << "/"
                   << int128Text(found->second.den());
        }
    }
    return ::testing::AssertionSuccess();
}

// Whether a profile holds no evaluations at all, as opposed to one undefined outcome: only the
// second keeps its undefined outcome when another outcome is added.
inline bool isEmptyProfile(const core::Profile& profile) {
    const auto list = profile.evaluations();
    if (list.size() != 1 || list.front().isDefined()) {
        return false;
    }
    core::Profile probe = profile.copy();
    probe.addQuantity(core::Decimal::one(), core::Decimal::one());
    return probe.evaluations().size() == 1;
}

}  // namespace talvex::language::testing
