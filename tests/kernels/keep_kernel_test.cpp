// keep(X, low, high, R).

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "expressions/test_support.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using core::Profile;
using testing::constant;
using testing::d;
using testing::Distribution;
using testing::isEmptyProfile;
using testing::kDoubleTolerance;
using testing::keepOf;
using testing::matchesWithin;
using testing::outcomes;
using testing::profileOf;
using testing::profileWith;
using testing::Rational;
using testing::undefinedOutcome;
using testing::uniform;
using testing::valueOf;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

using Case = testing::TextCase;

class Keep : public ::testing::TestWithParam<Case> {};

TEST_P(Keep, KeepsXInRangeAndReplacesTheRest) {
    EXPECT_TRUE(matchesWithin(profileOf(GetParam().text), GetParam().expected, kDoubleTolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, Keep,
    ::testing::Values(
        // 2 to 5 keep 1/6 each; 1 and 6 are replaced by 0.
        Case{"keep(1d6,2,5,0)",
             {{Rational(0), Rational(2, 6)},
              {Rational(2), Rational(1, 6)},
              {Rational(3), Rational(1, 6)},
              {Rational(4), Rational(1, 6)},
              {Rational(5), Rational(1, 6)}}},
        // 3 is kept (1/6) and also rolled again by the replacement (5/6 x 1/6).
        Case{"keep(1d6,3,3,1d6)",
             {{Rational(1), Rational(5, 36)},
              {Rational(2), Rational(5, 36)},
              {Rational(3), Rational(1, 6) + Rational(5, 36)},
              {Rational(4), Rational(5, 36)},
              {Rational(5), Rational(5, 36)},
              {Rational(6), Rational(5, 36)}}},
        Case{"keep(1d6,5,2,0)", valueOf(0)},
        // Bounds are inclusive: bounds on the extreme faces keep everything.
        Case{"keep(1d6,1,6,0)", d(1, 6)},
        Case{"keep(1d6,6,6,0)", {{Rational(0), Rational(5, 6)}, {Rational(6), Rational(1, 6)}}},
        // The out-of-range 4/6 split between the replacement's two outcomes by their weights.
        Case{"keep(1d6,3,4,1d2)", keepOf(d(1, 6), valueOf(3), valueOf(4), d(1, 2))},
        Case{"keep(1d6,3,4,die(1,2,2))", keepOf(d(1, 6), valueOf(3), valueOf(4),
                                                uniform({Rational(1), Rational(2), Rational(2)}))},
        // Random bounds: every combination of bound outcomes.
        Case{"keep(1d6,1d2,5,0)", keepOf(d(1, 6), d(1, 2), valueOf(5), valueOf(0))},
        Case{"keep(2d6,1d3+3,1d3+8,1d4)",
             keepOf(d(2, 6), testing::shifted(d(1, 3), 3), testing::shifted(d(1, 3), 8), d(1, 4))},
        // An undefined outcome of the replacement is carried like any other.
        Case{"keep(1d6,1,3,die(1/0,0))",
             {{std::nullopt, Rational(1, 4)},
              {Rational(0), Rational(1, 4)},
              {Rational(1), Rational(1, 6)},
              {Rational(2), Rational(1, 6)},
              {Rational(3), Rational(1, 6)}}}),
    testing::nameOfCase);

TEST(KeepKernel, ThreeArgumentsAreEmpty) {
    EXPECT_TRUE(isEmptyProfile(profileOf("keep(1d6,1,6)")));
}

TEST(KeepKernel, FiveArgumentsAreEmpty) {
    EXPECT_TRUE(isEmptyProfile(profileOf("keep(1d6,1,6,0,0)")));
}

TEST(KeepKernel, AWhollyUndefinedArgumentIsEmpty) {
    for (const char* text : {"keep(1/0,1,6,0)", "keep(1d6,1/0,6,0)", "keep(1d6,1,1/0,0)",
                             "keep(1d6,1,6,1/0)", "keep(1d6,1,6,keep())"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(KeepKernel, PartlyUndefinedArgumentsGiveTheirJointUndefinedChance) {
    // X undefined with 1/4, low undefined with 1/2: at least one undefined with 5/8.
    std::array<Profile, 4> arguments = {
        profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(2), Rational(2)}}),
        profileWith({{std::nullopt, Rational(1)}, {Rational(2), Rational(1)}}),
        profileWith({{Rational(5), Rational(1)}}), profileWith({{Rational(0), Rational(1)}})};
    const Distribution x = {{std::nullopt, Rational(1, 4)},
                            {Rational(1), Rational(1, 4)},
                            {Rational(2), Rational(1, 2)}};
    const Distribution low = {{std::nullopt, Rational(1, 2)}, {Rational(2), Rational(1, 2)}};
    const Distribution expected = keepOf(x, low, valueOf(5), valueOf(0));
    ASSERT_EQ(expected.at(std::nullopt), Rational(5, 8));
    EXPECT_TRUE(matchesWithin(KVTXKeepF(arguments, testing::StandaloneRequest().use()), expected,
                              kDoubleTolerance));
}

TEST(KeepKernel, ScalesItsArgumentsToWeightOneInPlace) {
    std::array<Profile, 4> arguments = {profileOf("1d2"), profileOf("1d2"), profileOf("2"),
                                        profileOf("1d2")};
    static_cast<void>(KVTXKeepF(arguments, testing::StandaloneRequest().use()));
    for (const std::size_t i : {0U, 1U, 3U}) {
        EXPECT_EQ(outcomes(arguments[i]), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
    }
}

TEST(KeepKernel, CarriesItsWeightsAsDoubles) {
    // Ten faces out of range, each 1/10, summed in binary: 0.1 + 0.1 + ... + 0.1 is not 1 in
    // doubles, and the replacement's weight shows the double's shortest decimal form.
    const std::string shortest = testing::shortestText(testing::repeatedSum(0.1, 10));
    ASSERT_NE(shortest, "1");
    EXPECT_EQ(outcomes(profileOf("keep(1d10,20,30,0)")), (Outcomes{{"0", shortest}}));
}

TEST(KeepKernel, KeptOutcomesAreScaledByTheBoundsChanceAsAShortestDouble) {
    // Each kept face of 1d3 keeps its 38-digit weight 1/3, scaled by 1/3 of the low bound as
    // the double 0.3333333333333333.
    const Profile kept = profileOf("keep(1d3,1d3,3,0)");
    const auto list = kept.evaluations();
    ASSERT_EQ(list.size(), 4U);
    EXPECT_EQ(list[3].quantity().stringValue(), "3");
    const core::Decimal third = core::Decimal::one() / core::Decimal::decimalNumberWithInteger(3);
    const core::Decimal doubleThird = core::Decimal::decimalNumberWithString("0.3333333333333333");
    // The outcome 3 is kept under each of the three low bounds.
    EXPECT_EQ(
        list[3].weight().compare(third * doubleThird + third * doubleThird + third * doubleThird),
        0);
}

}  // namespace
}  // namespace talvex::language
