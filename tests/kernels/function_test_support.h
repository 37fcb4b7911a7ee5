#pragma once

// Expected distributions of the named functions, worked out by direct enumeration with exact
// fractions, and the checks that compare a profile with them.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/decimal.h"
#include "core/profile.h"
#include "expressions/exact_distribution.h"
#include "expressions/expression.h"

namespace talvex::language::testing {

// Probabilities through double arithmetic agree with the exact ones to about 1e-16; everything
// computed in 38-digit decimals much more closely.
inline constexpr const char* kDoubleTolerance = "1e-12";
inline constexpr const char* kDecimalTolerance = "1e-30";

inline core::Decimal decimalOf(const Rational& value) {
    return core::Decimal::decimalNumberWithString(int128Text(value.num())) /
           core::Decimal::decimalNumberWithString(int128Text(value.den()));
}

// The profile of a text, built through a fresh dictionary.
inline core::Profile profileOf(const std::string& text) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    return Expression::expressionWithString(text, context)->profile();
}

// A profile with the given outcomes and weights; the outcomes must be terminating decimals.
inline core::Profile profileWith(const std::vector<std::pair<Outcome, Rational>>& outcomes) {
    core::Profile profile;
    for (const auto& [value, weight] : outcomes) {
        profile.addQuantity(value ? core::Decimal::decimalNumberWithString(value->text(30))
                                  : core::Decimal::notANumber(),
                            decimalOf(weight));
    }
    return profile;
}

// Same outcomes (told apart at ten decimals, as a profile does) with probabilities that agree
// within `tolerance`.
inline ::testing::AssertionResult matchesWithin(const core::Profile& profile,
                                                const Distribution& expected,
                                                const char* tolerance) {
    std::map<std::string, Rational> wanted;
    for (const auto& [value, chance] : expected) {
        if (!(chance == Rational(0))) {
            const std::string key = value ? value->text() : "undefined";
            wanted[key] = wanted[key] + chance;
        }
    }
    std::map<std::string, core::Decimal> actual;
    const core::Decimal total = profile.totalWeight();
    for (const core::Evaluation& evaluation : profile.evaluations()) {
        const std::string key = evaluation.isDefined()
                                    ? evaluation.quantity().decimalRound(10).stringValue()
                                    : "undefined";
        actual[key] = evaluation.weight() / total;
    }
    std::string listing;
    for (const auto& [key, probability] : actual) {
        listing += " " + key + ":" + probability.stringValue();
    }
    if (actual.size() != wanted.size()) {
        return ::testing::AssertionFailure()
               << "expected " << wanted.size() << " outcomes, got" << listing;
    }
    const core::Decimal limit = core::Decimal::decimalNumberWithString(tolerance);
    for (const auto& [key, chance] : wanted) {
        const auto found = actual.find(key);
        if (found == actual.end()) {
            return ::testing::AssertionFailure() << "no outcome " << key << " in" << listing;
        }
        const core::Decimal gap =
            (found->second - decimalOf(chance)).absoluteValueChanged(nullptr, nullptr);
        if (gap.compare(limit) > 0) {
            return ::testing::AssertionFailure()
                   << "outcome " << key << " has probability " << found->second.stringValue()
                   << ", expected " << int128Text(chance.num()) << "/" << int128Text(chance.den());
        }
    }
    return ::testing::AssertionSuccess();
}

// The shortest decimal text that reads back as `value`.
inline std::string shortestText(double value) {
    std::array<char, 32> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), written.ptr};
}

// What adding `value` to itself `times` times gives in double precision.
inline double repeatedSum(double value, int times) {
    double sum = 0;
    for (int i = 0; i < times; ++i) {
        sum += value;
    }
    return sum;
}

// A test name for an expression text: "dieMult(1d6,-1)" gives "dieMult_1d6_minus1".
inline std::string nameOfText(const std::string& text) {
    std::string name;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            name += c;
        } else if (c == '(' || c == ',') {
            name += '_';
        } else if (c == '-') {
            name += "minus";
        } else if (c == '+') {
            name += "plus";
        } else if (c == '*') {
            name += "times";
        } else if (c == '/') {
            name += "over";
        } else if (c == '.') {
            name += "point";
        } else if (c == '^') {
            name += "pow";
        }
    }
    return name;
}

// An expression text and its expected distribution, for tables of cases.
struct TextCase {
    const char* text;
    Distribution expected;
};

// Tables whose texts repeat get the index appended.
inline std::string nameOfCase(const ::testing::TestParamInfo<TextCase>& info) {
    return nameOfText(info.param.text);
}

// --- Building expected distributions ---------------------------------------------------------

// Each listed outcome equally likely (a repeated outcome counts as often as it is listed).
inline Distribution uniform(const std::vector<Outcome>& outcomes) {
    Distribution result;
    for (const Outcome& value : outcomes) {
        result[value] = result[value] + Rational(1, static_cast<long long>(outcomes.size()));
    }
    return result;
}

inline Distribution constant(const Rational& value) { return certain(value); }
inline Distribution valueOf(long long num, long long den = 1) {
    return constant(Rational(num, den));
}

// The parts in proportion to their weights.
inline Distribution mixture(const std::vector<std::pair<Distribution, Rational>>& parts) {
    Rational total(0);
    for (const auto& part : parts) {
        total = total + part.second;
    }
    Distribution result;
    for (const auto& [part, weight] : parts) {
        for (const auto& [value, chance] : part) {
            result[value] = result[value] + chance * weight / total;
        }
    }
    return result;
}

inline Distribution mapped(const Distribution& a, const std::function<Outcome(Rational)>& f) {
    Distribution result;
    for (const auto& [value, chance] : a) {
        const Outcome image = value ? f(*value) : std::nullopt;
        result[image] = result[image] + chance;
    }
    return result;
}

inline Distribution maximum(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) { return x < y ? y : x; });
}

inline Distribution minimum(const Distribution& a, const Distribution& b) {
    return combine(a, b, [](const Rational& x, const Rational& y) { return y < x ? y : x; });
}

// Successes in `trials` independent trials of chance `p`.
inline Distribution binomial(long long trials, const Rational& p) {
    Distribution result = constant(Rational(0));
    const Distribution trial = {{Rational(1), p}, {Rational(0), Rational(1) - p}};
    for (long long i = 0; i < trials; ++i) {
        result = sum(result, trial);
    }
    return result;
}

inline bool within(const Rational& value, const Rational& low, const Rational& high) {
    return !(value < low) && !(high < value);
}

// keep: X where low <= X <= high, otherwise R, over every combination of outcomes.
inline Distribution keepOf(const Distribution& x, const Distribution& low, const Distribution& high,
                           const Distribution& replacement) {
    Distribution result;
    for (const auto& [l, pl] : low) {
        for (const auto& [h, ph] : high) {
            for (const auto& [v, pv] : x) {
                const Rational chance = pl * ph * pv;
                if (!l || !h || !v) {
                    result[std::nullopt] = result[std::nullopt] + chance;
                } else if (within(*v, *l, *h)) {
                    result[v] = result[v] + chance;
                } else {
                    for (const auto& [r, pr] : replacement) {
                        result[r] = result[r] + chance * pr;
                    }
                }
            }
        }
    }
    return result;
}

// count: 1 where low <= X <= high, otherwise 0.
inline Distribution countOf(const Distribution& x, const Distribution& low,
                            const Distribution& high) {
    Distribution result;
    for (const auto& [l, pl] : low) {
        for (const auto& [h, ph] : high) {
            for (const auto& [v, pv] : x) {
                const Outcome hit =
                    (!l || !h || !v) ? Outcome{} : Outcome{Rational(within(*v, *l, *h) ? 1 : 0)};
                result[hit] = result[hit] + pl * ph * pv;
            }
        }
    }
    return result;
}

enum class ConfineBy { Value, Probability, CumulativeProbability };

// X restricted, for every pair of defined bounds, to the outcomes that pass the test and
// renormalised to the pair's chance; undefined shares are left out.
inline Distribution confineOf(const Distribution& x, const Distribution& low,
                              const Distribution& high, ConfineBy test) {
    Rational undefinedShare(0);
    if (const auto found = x.find(std::nullopt); found != x.end()) {
        undefinedShare = found->second;
    }
    Distribution result;
    for (const auto& [l, pl] : low) {
        for (const auto& [h, ph] : high) {
            if (!l || !h) {
                continue;
            }
            Distribution kept;
            Rational keptTotal(0);
            Rational cumulative(0);
            for (const auto& [v, pv] : x) {
                if (!v) {
                    continue;
                }
                bool keep = false;
                if (test == ConfineBy::Value) {
                    keep = within(*v, *l, *h);
                } else if (test == ConfineBy::Probability) {
                    keep = within(pv / (Rational(1) - undefinedShare), *l, *h);
                } else {
                    if (*h < cumulative) {
                        break;
                    }
                    cumulative = cumulative + pv;
                    keep = !(cumulative < *l);
                }
                if (keep) {
                    kept[v] = pv;
                    keptTotal = keptTotal + pv;
                }
            }
            for (const auto& [v, pv] : kept) {
                result[v] = result[v] + pl * ph * pv / keptTotal;
            }
        }
    }
    return result;
}

// Brute force over every ordered roll of `rolls` dice, each showing one of `faces` (outcome,
// whole weight), for each of the given (lowest, highest) numbers of dropped dice: the chance of
// every kept sum. A roll that shows an undefined face anywhere is undefined.
inline std::map<std::pair<long long, long long>, Distribution> dropByBruteForce(
    const std::vector<std::pair<Outcome, long long>>& faces, long long rolls,
    const std::vector<std::pair<long long, long long>>& dropped) {
    // Values over a common denominator, so that the enumeration adds whole numbers.
    Int128 denominator = 1;
    for (const auto& face : faces) {
        if (face.first) {
            Int128 a = denominator;
            Int128 b = face.first->den();
            while (b != 0) {
                a = std::exchange(b, a % b);
            }
            denominator = denominator / a * face.first->den();
        }
    }
    std::vector<std::optional<Int128>> values;
    Int128 faceTotal = 0;
    for (const auto& face : faces) {
        faceTotal += face.second;
        values.push_back(face.first ? std::optional<Int128>(face.first->num() *
                                                            (denominator / face.first->den()))
                                    : std::nullopt);
    }
    Int128 total = 1;
    for (long long i = 0; i < rolls; ++i) {
        total *= faceTotal;
    }
    std::map<std::pair<long long, long long>, std::map<std::optional<Int128>, Int128>> ways;
    std::vector<std::size_t> shown(static_cast<std::size_t>(rolls), 0);
    std::vector<Int128> sorted;
    for (;;) {
        Int128 rollWays = 1;
        bool undefined = false;
        sorted.clear();
        for (const std::size_t face : shown) {
            rollWays *= faces[face].second;
            if (values[face]) {
                sorted.push_back(*values[face]);
            } else {
                undefined = true;
            }
        }
        std::sort(sorted.begin(), sorted.end());
        for (const auto& [lowest, highest] : dropped) {
            std::optional<Int128> kept;
            if (!undefined) {
                kept = 0;
                for (long long i = lowest; i < rolls - highest; ++i) {
                    *kept += sorted[static_cast<std::size_t>(i)];
                }
            }
            ways[{lowest, highest}][kept] += rollWays;
        }
        // The next roll, counting like an odometer.
        std::size_t digit = 0;
        while (digit < shown.size() && ++shown[digit] == faces.size()) {
            shown[digit++] = 0;
        }
        if (digit == shown.size()) {
            break;
        }
    }
    std::map<std::pair<long long, long long>, Distribution> result;
    for (const auto& [pair, table] : ways) {
        for (const auto& [sum, count] : table) {
            const Outcome value = sum ? Outcome(Rational(*sum, denominator)) : std::nullopt;
            result[pair][value] = Rational(count, total);
        }
    }
    return result;
}

// drop(X, rolls, lowest, highest) for whole counts, by brute force.
inline Distribution dropOf(const std::vector<std::pair<Outcome, long long>>& faces, long long rolls,
                           long long lowest, long long highest) {
    return dropByBruteForce(faces, rolls, {{lowest, highest}}).at({lowest, highest});
}

// The faces of a distribution with whole weights over a common denominator.
inline std::vector<std::pair<Outcome, long long>> wholeWeights(const Distribution& x) {
    const auto gcd = [](Int128 a, Int128 b) {
        while (b != 0) {
            a = std::exchange(b, a % b);
        }
        return a;
    };
    Int128 common = 1;
    for (const auto& entry : x) {
        common = common / gcd(common, entry.second.den()) * entry.second.den();
    }
    std::vector<std::pair<Outcome, long long>> faces;
    for (const auto& [value, chance] : x) {
        faces.emplace_back(value, static_cast<long long>(chance.num() * (common / chance.den())));
    }
    return faces;
}

}  // namespace talvex::language::testing
