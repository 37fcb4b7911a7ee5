// count(X, low, high) and criterion(N, S, T).

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "expressions/test_support.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using core::Profile;
using testing::binomial;
using testing::constant;
using testing::countOf;
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
using testing::valueOf;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

using Case = testing::TextCase;

class Counting : public ::testing::TestWithParam<Case> {};

TEST_P(Counting, GivesTheEnumeratedSuccesses) {
    EXPECT_TRUE(matchesWithin(profileOf(GetParam().text), GetParam().expected, kDoubleTolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, Counting,
    ::testing::Values(
        Case{"count(1d6,5,6)", {{Rational(1), Rational(1, 3)}, {Rational(0), Rational(2, 3)}}},
        Case{"count(1d6,7,9)", valueOf(0)}, Case{"count(1d6,6,1)", valueOf(0)},
        Case{"count(3,3,3)", valueOf(1)},
        Case{"criterion(3,6,2)",
             {{Rational(0), Rational(8, 27)},
              {Rational(1), Rational(12, 27)},
              {Rational(2), Rational(6, 27)},
              {Rational(3), Rational(1, 27)}}},
        Case{"criterion(2,6,0)", valueOf(0)}, Case{"criterion(2,6,6)", valueOf(2)},
        Case{"count(1d6,1d3,4)", countOf(d(1, 6), d(1, 3), valueOf(4))},
        Case{"count(2d6,1d6,1d6+6)", countOf(d(2, 6), d(1, 6), testing::shifted(d(1, 6), 6))},
        Case{"criterion(10,10,3)", binomial(10, Rational(3, 10))},
        // Random counts, sizes and thresholds mix the binomials.
        Case{"criterion(1d2,6,3)", mixture({{binomial(1, Rational(1, 2)), Rational(1)},
                                            {binomial(2, Rational(1, 2)), Rational(1)}})},
        Case{"criterion(2,1d2+3,2)",
             binomial(2, Rational(1, 2) * Rational(2, 4) + Rational(1, 2) * Rational(2, 5))},
        Case{"criterion(3,6,1d2)",
             binomial(3, Rational(1, 2) * Rational(1, 6) + Rational(1, 2) * Rational(2, 6))}),
    testing::nameOfCase);

TEST(CountKernel, WrongCountsAreEmpty) {
    for (const char* text :
         {"count(1d6,2)", "count(1d6,2,3,4)", "criterion(3,6)", "criterion(3,6,2,1)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(CountKernel, AWhollyUndefinedArgumentIsEmpty) {
    for (const char* text : {"count(1/0,1,2)", "count(1d6,1/0,2)", "count(1d6,1,1/0)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(CountKernel, PartlyUndefinedArgumentsGiveTheirJointUndefinedChance) {
    std::array<Profile, 3> arguments = {
        profileWith(
            {{std::nullopt, Rational(1)}, {Rational(1), Rational(1)}, {Rational(4), Rational(2)}}),
        profileWith({{Rational(1), Rational(1)}}),
        profileWith({{std::nullopt, Rational(1)}, {Rational(3), Rational(3)}})};
    const Distribution x = {{std::nullopt, Rational(1, 4)},
                            {Rational(1), Rational(1, 4)},
                            {Rational(4), Rational(1, 2)}};
    const Distribution high = {{std::nullopt, Rational(1, 4)}, {Rational(3), Rational(3, 4)}};
    const Distribution expected = countOf(x, constant(Rational(1)), high);
    // At least one of X and high undefined: 1 - 3/4 x 3/4.
    ASSERT_EQ(expected.at(std::nullopt), Rational(7, 16));
    EXPECT_TRUE(matchesWithin(KVTXCountF(arguments, testing::StandaloneRequest().use()), expected,
                              kDoubleTolerance));
}

TEST(CountKernel, SumsItsMassesAsDoubles) {
    // Ten misses of 1/10 each add up, in binary, to just below one.
    const std::string misses = testing::shortestText(testing::repeatedSum(0.1, 10));
    ASSERT_NE(misses, "1");
    EXPECT_EQ(outcomes(profileOf("count(1d10,20,30)")), (Outcomes{{"0", misses}}));
}

TEST(CriterionKernel, LeavesTheCountsScaledToWeightOne) {
    std::array<Profile, 3> arguments = {profileOf("1d2"), profileOf("6"), profileOf("1d2")};
    static_cast<void>(KVTXCriterionF(arguments, testing::StandaloneRequest().use()));
    EXPECT_EQ(outcomes(arguments[0]), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
    EXPECT_EQ(outcomes(arguments[1]), (Outcomes{{"6", "1"}}));
    EXPECT_EQ(outcomes(arguments[2]), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
}

}  // namespace
}  // namespace talvex::language
