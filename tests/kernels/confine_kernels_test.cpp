// confine, confineweight and confineweightrange.

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "expressions/test_support.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using core::Profile;
using testing::ConfineBy;
using testing::confineOf;
using testing::constant;
using testing::d;
using testing::Distribution;
using testing::isEmptyProfile;
using testing::kDoubleTolerance;
using testing::matchesWithin;
using testing::mixture;
using testing::outcomes;
using testing::profileOf;
using testing::profileWith;
using testing::Rational;
using testing::uniform;
using testing::valueOf;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

// 2d6 restricted to [low, 12], renormalised, computed straight from the counts of ways.
Distribution twoDiceFrom(long long low) {
    Distribution result;
    long long total = 0;
    for (long long sum = low; sum <= 12; ++sum) {
        total += 6 - std::abs(sum - 7);
    }
    for (long long sum = low; sum <= 12; ++sum) {
        result[Rational(sum)] = Rational(6 - std::abs(sum - 7), total);
    }
    return result;
}

using Case = testing::TextCase;

class Confine : public ::testing::TestWithParam<Case> {};

TEST_P(Confine, RestrictsAndRenormalises) {
    EXPECT_TRUE(matchesWithin(profileOf(GetParam().text), GetParam().expected, kDoubleTolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, Confine,
    ::testing::Values(
        Case{"confine(1d6,2,5)", uniform({Rational(2), Rational(3), Rational(4), Rational(5)})},
        Case{"confine(1d6,3,3)", valueOf(3)},
        // Half of the mass is 2d6 confined to 6..12, half to 7..12.
        Case{"confine(2d6,1d2+5,12)",
             mixture({{twoDiceFrom(6), Rational(1)}, {twoDiceFrom(7), Rational(1)}})},
        Case{"confine(2d6,1d2+5,12)",
             confineOf(d(2, 6), testing::shifted(d(1, 2), 5), valueOf(12), ConfineBy::Value)},
        // 5 to 9 have probabilities of at least 4/36 > 0.1.
        Case{"confineweight(2d6,0.1,1)",
             {{Rational(5), Rational(4, 24)},
              {Rational(6), Rational(5, 24)},
              {Rational(7), Rational(6, 24)},
              {Rational(8), Rational(5, 24)},
              {Rational(9), Rational(4, 24)}}},
        // 3 starts at exactly one half and is kept; 4 starts at 3/4 and ends the walk.
        Case{"confineweightrange(1d4,0,0.5)", uniform({Rational(1), Rational(2), Rational(3)})},
        // 2 is the outcome during which the cumulative probability reaches one half.
        Case{"confineweightrange(1d4,0.5,1)", uniform({Rational(2), Rational(3), Rational(4)})},
        Case{"confine(1d6,1d2,1d2+4)",
             confineOf(d(1, 6), d(1, 2), testing::shifted(d(1, 2), 4), ConfineBy::Value)},
        Case{"confineweight(3d6,die(0.05,0.1),1)",
             confineOf(d(3, 6), uniform({Rational(1, 20), Rational(1, 10)}), valueOf(1),
                       ConfineBy::Probability)},
        Case{"confineweightrange(2d4,die(0.25,0.5),0.75)",
             confineOf(d(2, 4), uniform({Rational(1, 4), Rational(1, 2)}), valueOf(3, 4),
                       ConfineBy::CumulativeProbability)}),
    [](const ::testing::TestParamInfo<Case>& param) {
        return testing::nameOfText(param.param.text) + "_" + std::to_string(param.index);
    });

TEST(ConfineKernels, BoundsThatExcludeEveryOutcomeAreEmpty) {
    EXPECT_TRUE(isEmptyProfile(profileOf("confine(1d6,7,9)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("confineweight(1d6,0.5,1)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("confineweightrange(1d6,0.5,0.1)")));
}

TEST(ConfineKernels, WrongCountsAndWhollyUndefinedArgumentsAreEmpty) {
    for (const char* text : {"confine(1d6,2)", "confine(1d6,2,3,4)", "confineweight(1d6)",
                             "confineweightrange(1d6,0,1,1)", "confine(1/0,1,2)",
                             "confineweight(1d6,1/0,1)", "confineweightrange(1d6,0,1/0)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(ConfineKernels, DispatchedByTheWholeName) {
    // Value bounds 1..2 keep two faces; as probability or cumulative bands they keep all six.
    EXPECT_TRUE(matchesWithin(profileOf("confine(1d6,0,2)"), uniform({Rational(1), Rational(2)}),
                              kDoubleTolerance));
    EXPECT_TRUE(matchesWithin(profileOf("confineweight(1d6,0,2)"), d(1, 6), kDoubleTolerance));
    EXPECT_TRUE(matchesWithin(profileOf("confineweightrange(1d6,0,2)"), d(1, 6), kDoubleTolerance));
}

// X undefined with 1/5, then 1 with 1/5 and 2 with 3/5.
std::array<Profile, 3> partlyUndefined(long long low, long long highNum, long long highDen) {
    return {
        profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(2), Rational(3)}}),
        profileWith({{Rational(low), Rational(1)}}),
        profileWith({{Rational(highNum, highDen), Rational(1)}})};
}

TEST(ConfineKernels, UndefinedSharesAreDroppedAndTheRestRenormalised) {
    std::array<Profile, 3> arguments = partlyUndefined(0, 5, 1);
    const Profile confined = KVTXConfineF(arguments, testing::StandaloneRequest().use());
    EXPECT_TRUE(matchesWithin(confined,
                              {{Rational(1), Rational(1, 4)}, {Rational(2), Rational(3, 4)}},
                              kDoubleTolerance));
    EXPECT_TRUE(confined.isAlwaysDefined());
}

TEST(ConfineKernels, ConfineWeightComparesTheProbabilitiesAmongDefinedOutcomes) {
    // Among the defined outcomes 2 has 3/4 (3/5 of the whole), 1 has 1/4 (1/5 of the whole).
    std::array<Profile, 3> above = partlyUndefined(0, 7, 10);
    EXPECT_TRUE(matchesWithin(KVTXConfineWeightF(above, testing::StandaloneRequest().use()),
                              valueOf(1), kDoubleTolerance));
    std::array<Profile, 3> band = {
        profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(2), Rational(3)}}),
        profileWith({{Rational(7, 10), Rational(1)}}), profileWith({{Rational(1), Rational(1)}})};
    EXPECT_TRUE(matchesWithin(KVTXConfineWeightF(band, testing::StandaloneRequest().use()),
                              valueOf(2), kDoubleTolerance));
    // Its defined outcomes alone were brought to weight one.
    EXPECT_EQ(outcomes(band[0]), (Outcomes{{"NaN", "0.25"}, {"1", "0.25"}, {"2", "0.75"}}));
}

TEST(ConfineKernels, ConfineWeightRangeCountsTheUndefinedShareInTheCumulativeProbability) {
    // The cumulative probability through 1 is 1/5 of the whole, through 2 it is 4/5: a band
    // from 0.5 keeps only 2.
    std::array<Profile, 3> arguments = {
        profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(2), Rational(3)}}),
        profileWith({{Rational(1, 2), Rational(1)}}), profileWith({{Rational(1), Rational(1)}})};
    EXPECT_TRUE(
        matchesWithin(KVTXConfineWeightRangeF(arguments, testing::StandaloneRequest().use()),
                      valueOf(2), kDoubleTolerance));
}

TEST(ConfineKernels, EachPairOfBoundsCarriesItsChance) {
    // Weights before any normalisation: the pair (1, 3) keeps 1..3 with weight 1/2, the pair
    // (2, 3) keeps 2..3 with weight 1/2.
    const Profile confined = profileOf("confine(1d3,1d2,3)");
    EXPECT_TRUE(matchesWithin(confined,
                              {{Rational(1), Rational(1, 6)},
                               {Rational(2), Rational(1, 6) + Rational(1, 4)},
                               {Rational(3), Rational(1, 6) + Rational(1, 4)}},
                              kDoubleTolerance));
    const core::Decimal gap =
        (confined.totalWeight() - core::Decimal::one()).absoluteValueChanged(nullptr, nullptr);
    EXPECT_LT(gap.compare(core::Decimal::decimalNumberWithString("1e-15")), 0);
}

}  // namespace
}  // namespace talvex::language
