// die, diew, dier, dieMult and diePow.

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "core/calculation_limits.h"
#include "expressions/test_support.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Profile;
using testing::constant;
using testing::d;
using testing::Distribution;
using testing::isEmptyProfile;
using testing::kDecimalTolerance;
using testing::mapped;
using testing::matchesWithin;
using testing::mixture;
using testing::Outcome;
using testing::outcomes;
using testing::product;
using testing::profileOf;
using testing::Rational;
using testing::sum;
using testing::uniform;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

Distribution negated(const Distribution& x) {
    return mapped(x, [](Rational v) -> Outcome { return Rational(0) - v; });
}

Distribution times(const Distribution& x, const Rational& factor) {
    return product(x, constant(factor));
}

// Expression texts and their exact distributions.
using Case = testing::TextCase;

class DieFamily : public ::testing::TestWithParam<Case> {};

TEST_P(DieFamily, GivesTheEnumeratedDistribution) {
    EXPECT_TRUE(matchesWithin(profileOf(GetParam().text), GetParam().expected, kDecimalTolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, DieFamily,
    ::testing::Values(
        Case{"diew(1d6,0,1d8,1)", d(1, 8)}, Case{"dier(2,6)", d(2, 6)},
        Case{"dier(1d2,6)", mixture({{d(1, 6), Rational(1)}, {d(2, 6), Rational(1)}})},
        Case{"dieMult(1d6,2)", d(2, 6)}, Case{"dieMult(1d6,0)", constant(Rational(0))},
        Case{"dieMult(1d6,-1)", negated(d(1, 6))},
        Case{"dieMult(1d6,1d2)", mixture({{d(1, 6), Rational(1)}, {d(2, 6), Rational(1)}})},
        Case{"dieMult(2,0.5)", constant(Rational(3))},
        Case{"dieMult(2,1.5)", constant(Rational(3))}, Case{"diePow(2,3)", constant(Rational(8))},
        Case{"diePow(2,-1)", constant(Rational(1, 2))},
        // A whole count below one still starts from one roll: 4 x 4^0.5.
        Case{"diePow(4,0.5)", constant(Rational(8))},
        Case{"die(1d4,1d8)", mixture({{d(1, 4), Rational(1)}, {d(1, 8), Rational(1)}})},
        Case{"diew(1d6,1,1d20,3)", mixture({{d(1, 6), Rational(1)}, {d(1, 20), Rational(3)}})},
        // A fraction adds that share of one more roll, also below one and for negative counts.
        Case{"dieMult(1d4,0.5)", sum(d(1, 4), times(d(1, 4), Rational(1, 2)))},
        Case{"dieMult(1d4,-1.5)", negated(sum(d(1, 4), times(d(1, 4), Rational(1, 2))))},
        Case{"diePow(1d2,2)", product(d(1, 2), d(1, 2))},
        Case{"diePow(1d2,-2)", mapped(product(d(1, 2), d(1, 2)),
                                      [](Rational v) -> Outcome { return Rational(1) / v; })},
        Case{"diePow(1d3-1,-1)", mapped(d(1, 3),
                                        [](Rational v) -> Outcome {
                                            if (v == Rational(1)) {
                                                return std::nullopt;
                                            }
                                            return Rational(1) / (v - Rational(1));
                                        })}),
    testing::nameOfCase);

TEST(DieKernels, NoArgumentsOrAnOddCountAreEmpty) {
    EXPECT_TRUE(isEmptyProfile(profileOf("die()")));
    EXPECT_TRUE(isEmptyProfile(profileOf("diew(1d6)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("diew(1d6,1,1d4)")));
}

TEST(DieKernels, DiewSkipsAPairWhoseWeightMeanIsNotPositive) {
    EXPECT_TRUE(isEmptyProfile(profileOf("diew(1d6,-1)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("diew(1d6,0)")));
}

TEST(DieKernels, DiewWithAnUndefinedWeightMeanDropsEverythingGathered) {
    EXPECT_TRUE(isEmptyProfile(profileOf("diew(1d6,1,1d8,1/0)")));
}

TEST(DieKernels, DieGivesEachArgumentWeightOne) {
    // 1d4's faces get 1/4 each, 1d8's 1/8 each, summed where they coincide.
    EXPECT_EQ(outcomes(profileOf("die(1d4,1d8)")), (Outcomes{{"1", "0.375"},
                                                             {"2", "0.375"},
                                                             {"3", "0.375"},
                                                             {"4", "0.375"},
                                                             {"5", "0.125"},
                                                             {"6", "0.125"},
                                                             {"7", "0.125"},
                                                             {"8", "0.125"}}));
}

TEST(DieKernels, DieScalesItsArgumentsInPlace) {
    std::array<Profile, 2> arguments = {profileOf("1d2"), profileOf("2")};
    static_cast<void>(KVTXDieF(arguments, testing::StandaloneRequest().use()));
    EXPECT_EQ(outcomes(arguments[0]), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
    EXPECT_EQ(outcomes(arguments[1]), (Outcomes{{"2", "1"}}));
}

TEST(DieKernels, DieOfAnEmptyArgumentAddsAnUndefinedOutcome) {
    std::array<Profile, 2> arguments = {Profile{}, profileOf("1")};
    EXPECT_EQ(outcomes(KVTXDieF(arguments, testing::StandaloneRequest().use())),
              (Outcomes{{"NaN", "1"}, {"1", "1"}}));
}

TEST(DieKernels, DiewScalesEachProfileToItsWeightMean) {
    // mean(1d4) = 2.5 for the outcome 1, mean(2) = 2 for the outcome 2.
    EXPECT_EQ(outcomes(profileOf("diew(1,1d4,2,2)")), (Outcomes{{"1", "2.5"}, {"2", "2"}}));
}

TEST(DieKernels, WrongCountsAreEmpty) {
    for (const char* text : {"dier(6)", "dier(1,2,3)", "dieMult(1d6)", "dieMult(1d6,1,2)",
                             "diePow(2)", "diePow(2,3,4)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(DieKernels, UndefinedCountsPassThroughWithTheirWeight) {
    // die(1,1/0): the count 1 or undefined, half each.
    EXPECT_TRUE(
        matchesWithin(profileOf("dieMult(1d6,die(1,1/0))"),
                      mixture({{d(1, 6), Rational(1)}, {testing::undefinedOutcome(), Rational(1)}}),
                      kDecimalTolerance));
    EXPECT_TRUE(
        matchesWithin(profileOf("diePow(1d6,die(1,1/0))"),
                      mixture({{d(1, 6), Rational(1)}, {testing::undefinedOutcome(), Rational(1)}}),
                      kDecimalTolerance));
}

TEST(DieKernels, DieMultScalesTheZeroCountByItsChance) {
    // Count 0 or 1, half each: 0 gets 1/2, each face 1/12.
    EXPECT_TRUE(
        matchesWithin(profileOf("dieMult(1d6,1d2-1)"),
                      mixture({{constant(Rational(0)), Rational(1)}, {d(1, 6), Rational(1)}}),
                      kDecimalTolerance));
}

TEST(DieKernels, DiePowOfCountZeroKeepsTheFullWeightOfTheRoll) {
    // 1d6 has weights 1 each: the outcome 1 gets its whole defined weight, 6, unscaled.
    EXPECT_EQ(outcomes(profileOf("diePow(1d6,0)")), (Outcomes{{"1", "6"}}));
    // However unlikely the count 0 is: here half, yet still 6 against 1/2 for the count 1.
    const Profile mixed = profileOf("diePow(1d6,1d2-1)");
    const auto list = mixed.evaluations();
    ASSERT_EQ(list.size(), 6U);
    EXPECT_EQ(list[0].quantity().stringValue(), "1");
    EXPECT_EQ(list[0].weight().compare(Decimal::decimalNumberWithString("6") +
                                       Decimal::one() / Decimal::decimalNumberWithInteger(12)),
              0);
    EXPECT_EQ(list[5].weight().compare(Decimal::one() / Decimal::decimalNumberWithInteger(12)), 0);
}

TEST(DieKernels, DiePowOfCountZeroCarriesTheUndefinedWeightOfTheRoll) {
    std::array<Profile, 2> arguments = {
        testing::profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(2), Rational(1)}}),
        profileOf("0")};
    EXPECT_EQ(outcomes(KVTXDiePowF(arguments, testing::StandaloneRequest().use())),
              (Outcomes{{"NaN", "1"}, {"1", "2"}}));
}

TEST(DieKernels, DieMultAndDiePowScaleTheCountInPlaceOnly) {
    std::array<Profile, 2> arguments = {profileOf("1d4"), profileOf("1d2")};
    static_cast<void>(KVTXDieMultF(arguments, testing::StandaloneRequest().use()));
    EXPECT_EQ(outcomes(arguments[0]), (Outcomes{{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}}));
    EXPECT_EQ(outcomes(arguments[1]), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
}

TEST(DieKernels, AHugeRepeatCountIsRefusedPlainly) {
    // Refused before any work: that many combinations of even a constant are too many.
    EXPECT_THROW(static_cast<void>(profileOf("dieMult(2,100000000)")), core::CalculationTooLarge);
    EXPECT_THROW(static_cast<void>(profileOf("diePow(2,100000000)")), core::CalculationTooLarge);
    // Refused at the first combination that would exceed the pairs allowed.
    EXPECT_THROW(static_cast<void>(profileOf("dieMult(1d5000,3)")), core::CalculationTooLarge);
}

TEST(DieKernels, ACountBeyondThirtyTwoBitsHasTheMostNegativeWholePart) {
    // floor(3e9) does not fit 32 bits: the whole part becomes -2^31 and the fraction
    // 3e9 + 2^31, so one roll of 2 plus 2 x (3e9 + 2^31).
    EXPECT_TRUE(matchesWithin(profileOf("dieMult(2,3000000000)"),
                              constant(Rational(2) + Rational(2) * Rational(5147483648LL)),
                              kDecimalTolerance));
}

}  // namespace
}  // namespace talvex::language
