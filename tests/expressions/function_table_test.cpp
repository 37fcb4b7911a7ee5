// Function expressions typed as text, each against its exact distribution worked out here by
// enumeration with fractions.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using testing::binomial;
using testing::ConfineBy;
using testing::confineOf;
using testing::constant;
using testing::countOf;
using testing::d;
using testing::Distribution;
using testing::dropOf;
using testing::Int128;
using testing::kDecimalTolerance;
using testing::kDoubleTolerance;
using testing::keepOf;
using testing::mapped;
using testing::matchesWithin;
using testing::maximum;
using testing::minimum;
using testing::mixture;
using testing::Outcome;
using testing::product;
using testing::profileOf;
using testing::Rational;
using testing::shifted;
using testing::sum;
using testing::uniform;
using testing::valueOf;
using testing::wholeWeights;

struct Row {
    const char* text;
    std::function<Distribution()> expected;
    const char* tolerance = kDecimalTolerance;
};

Distribution undefined() { return testing::undefinedOutcome(); }

Int128 floorOf(const Rational& value) {
    Int128 whole = value.num() / value.den();
    if (value.num() % value.den() != 0 && value.num() < 0) {
        --whole;
    }
    return whole;
}

Distribution halfOf(const Distribution& x) { return product(x, valueOf(1, 2)); }
Distribution negated(const Distribution& x) { return testing::scaled(x, -1); }
Distribution half(const Distribution& a, const Distribution& b) {
    return mixture({{a, Rational(1)}, {b, Rational(1)}});
}
Distribution meanOf(const Distribution& x) {
    Rational total(0);
    for (const auto& [value, chance] : x) {
        total = total + *value * chance;
    }
    return constant(total);
}
std::vector<std::pair<Outcome, long long>> die(long long sides) {
    return wholeWeights(d(1, sides));
}

const std::vector<Row>& rows() {
    static const std::vector<Row> kRows = {
        // One-argument functions, each outcome mapped.
        {"round(1d6/4)",
         [] {
             return mapped(d(1, 6), [](Rational v) -> Outcome {
                 return Rational((v / Rational(4)).rounded(), 1);
             });
         }},
        {"floor(1d6/4)",
         [] {
             return mapped(d(1, 6), [](Rational v) -> Outcome {
                 return Rational(floorOf(v / Rational(4)), 1);
             });
         }},
        {"ceil(1d6/4)",
         [] {
             return mapped(d(1, 6), [](Rational v) -> Outcome {
                 return Rational(0) - Rational(floorOf(Rational(0) - v / Rational(4)), 1);
             });
         }},
        {"abs(1d6-4)",
         [] {
             return mapped(d(1, 6), [](Rational v) -> Outcome {
                 return v < Rational(4) ? Rational(4) - v : v - Rational(4);
             });
         }},
        {"round(0-1d4/2)",
         [] {
             return mapped(d(1, 4), [](Rational v) -> Outcome {
                 return Rational((Rational(0) - v / Rational(2)).rounded(), 1);
             });
         }},
        {"floor(0-1d4/2)",
         [] {
             return mapped(d(1, 4), [](Rational v) -> Outcome {
                 return Rational(floorOf(Rational(0) - v / Rational(2)), 1);
             });
         }},
        {"log(die(1,10,100,1000))",
         [] {
             return uniform({Rational(0), Rational(1), Rational(2), Rational(3)});
         }},
        {"ln(1d2-1)", [] { return half(undefined(), valueOf(0)); }},
        {"log(1d3-2)",
         [] {
             return uniform({std::nullopt, std::nullopt, Rational(0)});
         }},
        {"exp(0)", [] { return valueOf(1); }},
        {"abs(0-2.5)", [] { return valueOf(5, 2); }},
        {"tan(0)", [] { return undefined(); }},
        {"arcsin(1.1)", [] { return undefined(); }},
        {"arccos(1)", [] { return valueOf(0); }},
        {"sin(0,1d6)", [] { return valueOf(0); }},
        // Statistics as constants.
        {"mean(2d6)", [] { return valueOf(7); }},
        {"mean(1d4)", [] { return valueOf(5, 2); }},
        {"mean(1d6,1d20)", [] { return valueOf(7, 2); }},
        {"minval(3d6)", [] { return valueOf(3); }},
        {"maxval(3d6)", [] { return valueOf(18); }},
        {"values(3d6)", [] { return valueOf(16); }},
        {"values(1/0)", [] { return valueOf(0); }},
        {"median(1d6)", [] { return valueOf(7, 2); }},
        {"median(2d6)", [] { return valueOf(7); }},
        {"mode(2d6)", [] { return valueOf(7); }},
        {"mode(1d4)", [] { return d(1, 4); }},
        {"range(2d6)",
         [] {
             return uniform({Rational(2), Rational(12)});
         }},
        {"range(4)", [] { return valueOf(4); }},
        {"stddev(1d2*2)", [] { return valueOf(1); }},
        // Largest and smallest of independent rolls.
        {"max(1d6,1d6)", [] { return maximum(d(1, 6), d(1, 6)); }},
        {"max(1d4,1d8)", [] { return maximum(d(1, 4), d(1, 8)); }},
        {"min(1d6,1d6)", [] { return minimum(d(1, 6), d(1, 6)); }},
        {"min(1d20,1d20,1d20)", [] { return minimum(minimum(d(1, 20), d(1, 20)), d(1, 20)); }},
        {"max(2,1d4)", [] { return maximum(valueOf(2), d(1, 4)); }},
        {"min(1d6,3)", [] { return minimum(d(1, 6), valueOf(3)); }},
        {"max(1d6,min(2,3d4))", [] { return maximum(d(1, 6), minimum(valueOf(2), d(3, 4))); }},
        {"max(1d6)", [] { return d(1, 6); }},
        // Dice built from expressions.
        {"die(1d4,1d8)", [] { return half(d(1, 4), d(1, 8)); }},
        {"die(1,2,2,3)",
         [] {
             return uniform({Rational(1), Rational(2), Rational(2), Rational(3)});
         }},
        {"diew(1d6,1,1d20,3)",
         [] {
             return mixture({{d(1, 6), Rational(1)}, {d(1, 20), Rational(3)}});
         }},
        {"diew(1,1d4,2,2)",
         [] {
             return mixture({{valueOf(1), Rational(5, 2)}, {valueOf(2), Rational(2)}});
         }},
        {"dier(2,6)", [] { return d(2, 6); }},
        {"dier(1d2,6)", [] { return half(d(1, 6), d(2, 6)); }},
        {"dier(2,1d2+2)", [] { return half(d(2, 3), d(2, 4)); }},
        {"dier(1d2-2,4)", [] { return half(negated(d(1, 4)), valueOf(0)); }},
        {"dieMult(1d6,2)", [] { return d(2, 6); }},
        {"dieMult(1d6,1d2)", [] { return half(d(1, 6), d(2, 6)); }},
        {"dieMult(1d4,1d3-1)",
         [] {
             return mixture(
                 {{valueOf(0), Rational(1)}, {d(1, 4), Rational(1)}, {d(2, 4), Rational(1)}});
         }},
        {"dieMult(1d2,2.5)", [] { return sum(d(2, 2), halfOf(d(1, 2))); }},
        {"dieMult(2,0.5)", [] { return valueOf(3); }},
        {"diePow(2,3)", [] { return valueOf(8); }},
        {"diePow(2,-1)", [] { return valueOf(1, 2); }},
        {"diePow(1d2,2)", [] { return product(d(1, 2), d(1, 2)); }},
        {"diePow(1d6,0)", [] { return valueOf(1); }},
        {"diePow(1d2,1d2)", [] { return half(d(1, 2), product(d(1, 2), d(1, 2))); }},
        // keep and count, whose weights go through doubles.
        {"keep(1d6,2,5,0)", [] { return keepOf(d(1, 6), valueOf(2), valueOf(5), valueOf(0)); },
         kDoubleTolerance},
        {"keep(1d6,3,3,1d6)", [] { return keepOf(d(1, 6), valueOf(3), valueOf(3), d(1, 6)); },
         kDoubleTolerance},
        {"keep(1d6,5,2,0)", [] { return valueOf(0); }, kDoubleTolerance},
        {"keep(2d6,4,10,1d4)", [] { return keepOf(d(2, 6), valueOf(4), valueOf(10), d(1, 4)); },
         kDoubleTolerance},
        {"keep(1d6,1d2,5,0)", [] { return keepOf(d(1, 6), d(1, 2), valueOf(5), valueOf(0)); },
         kDoubleTolerance},
        {"keep(1d8,1d3,1d3+5,1d2)",
         [] { return keepOf(d(1, 8), d(1, 3), shifted(d(1, 3), 5), d(1, 2)); }, kDoubleTolerance},
        {"count(1d6,5,6)", [] { return countOf(d(1, 6), valueOf(5), valueOf(6)); },
         kDoubleTolerance},
        {"count(2d6,7,7)", [] { return countOf(d(2, 6), valueOf(7), valueOf(7)); },
         kDoubleTolerance},
        {"count(1d6,1d3,4)", [] { return countOf(d(1, 6), d(1, 3), valueOf(4)); },
         kDoubleTolerance},
        {"criterion(3,6,2)", [] { return binomial(3, Rational(1, 3)); }, kDoubleTolerance},
        {"criterion(4,10,3)", [] { return binomial(4, Rational(3, 10)); }, kDoubleTolerance},
        {"criterion(1d2,6,3)",
         [] { return half(binomial(1, Rational(1, 2)), binomial(2, Rational(1, 2))); },
         kDoubleTolerance},
        // Confined and renormalised.
        {"confine(1d6,2,5)",
         [] {
             return uniform({Rational(2), Rational(3), Rational(4), Rational(5)});
         },
         kDoubleTolerance},
        {"confine(2d6,1d2+5,12)",
         [] { return confineOf(d(2, 6), shifted(d(1, 2), 5), valueOf(12), ConfineBy::Value); },
         kDoubleTolerance},
        {"confine(1d10,1d4,1d4+6)",
         [] { return confineOf(d(1, 10), d(1, 4), shifted(d(1, 4), 6), ConfineBy::Value); },
         kDoubleTolerance},
        {"confineweight(2d6,0.1,1)",
         [] { return confineOf(d(2, 6), valueOf(1, 10), valueOf(1), ConfineBy::Probability); },
         kDoubleTolerance},
        {"confineweightrange(1d4,0,0.5)",
         [] {
             return uniform({Rational(1), Rational(2), Rational(3)});
         },
         kDoubleTolerance},
        {"confineweightrange(1d4,0.5,1)",
         [] {
             return uniform({Rational(2), Rational(3), Rational(4)});
         },
         kDoubleTolerance},
        // Dropping the lowest and highest rolls.
        {"drop(1d6,4,1,0)", [] { return dropOf(die(6), 4, 1, 0); }},
        {"drop(1d20,2,1,0)", [] { return maximum(d(1, 20), d(1, 20)); }},
        {"drop(1d4,1d3,1d2-1,0)",
         [] {
             Distribution result;
             for (long long n = 1; n <= 3; ++n) {
                 for (long long l = 0; l <= 1; ++l) {
                     for (const auto& [value, chance] : dropOf(die(4), n, l, 0)) {
                         result[value] = result[value] + chance * Rational(1, 6);
                     }
                 }
             }
             return result;
         }},
        {"drop(1d6,3,1,1)", [] { return dropOf(die(6), 3, 1, 1); }},
        {"drop(1d8,5,2,2)", [] { return dropOf(die(8), 5, 2, 2); }},
        {"drop(1d6,2,2,0)", [] { return valueOf(0); }},
        {"drop(3d4,3,0,1)", [] { return dropOf(wholeWeights(d(3, 4)), 3, 0, 1); }},
        // Calls inside calls and inside compound texts.
        {"2*max(1d4,1d4)", [] { return testing::scaled(maximum(d(1, 4), d(1, 4)), 2); }},
        {"abs(1d6-3.5)",
         [] {
             return mapped(d(1, 6), [](Rational v) -> Outcome {
                 return v < Rational(7, 2) ? Rational(7, 2) - v : v - Rational(7, 2);
             });
         }},
        {"max(drop(1d6,3,1,0),keep(1d8,2,7,0))",
         [] {
             return maximum(dropOf(die(6), 3, 1, 0),
                            keepOf(d(1, 8), valueOf(2), valueOf(7), valueOf(0)));
         },
         kDoubleTolerance},
        {"mean(drop(1d6,4,1,0))", [] { return meanOf(dropOf(die(6), 4, 1, 0)); }},
        {"count(drop(1d6,4,1,0),15,18)",
         [] { return countOf(dropOf(die(6), 4, 1, 0), valueOf(15), valueOf(18)); },
         kDoubleTolerance},
    };
    return kRows;
}

class FunctionTable : public ::testing::TestWithParam<Row> {};

TEST_P(FunctionTable, HasTheExactDistribution) {
    EXPECT_TRUE(
        matchesWithin(profileOf(GetParam().text), GetParam().expected(), GetParam().tolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Texts, FunctionTable, ::testing::ValuesIn(rows()),
                         [](const ::testing::TestParamInfo<Row>& param) {
                             return testing::nameOfText(param.param.text);
                         });

TEST(FunctionTableSize, HasAtLeastSixtyRows) { EXPECT_GE(rows().size(), 60U); }

}  // namespace
}  // namespace talvex::language
