// The solo and chain combinators, the statistics as profiles, and the start-up definitions.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "expressions/test_support.h"
#include "kernels/definitions.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"
#include "kernels/operator_kernels.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Evaluation;
using core::Profile;
using testing::d;
using testing::isEmptyProfile;
using testing::kDecimalTolerance;
using testing::matchesWithin;
using testing::maximum;
using testing::minimum;
using testing::outcomes;
using testing::profileOf;
using testing::Rational;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

TEST(Combinators, NoArgumentsAreEmpty) {
    for (const char* text :
         {"sin()", "max()", "min()", "mean()", "range()", "minval()", "mode()", "abs()"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
    EXPECT_TRUE(isEmptyProfile(KVTXSoloCombinatorProfile(CompoundExpressionAbsF, {})));
    EXPECT_TRUE(isEmptyProfile(KVTXChainCombinatorProfile(CompoundExpressionMaxF, {},
                                                          testing::StandaloneRequest().use())));
    EXPECT_TRUE(isEmptyProfile(KVTXProfileIntegratedProfile(statisticMean, {})));
}

TEST(Combinators, MaxOfTwoDiceFavoursHighFaces) {
    const Profile best = profileOf("max(1d6,1d6)");
    EXPECT_TRUE(matchesWithin(best, maximum(d(1, 6), d(1, 6)), kDecimalTolerance));
    EXPECT_TRUE(matchesWithin(best,
                              {{Rational(1), Rational(1, 36)},
                               {Rational(2), Rational(3, 36)},
                               {Rational(3), Rational(5, 36)},
                               {Rational(4), Rational(7, 36)},
                               {Rational(5), Rational(9, 36)},
                               {Rational(6), Rational(11, 36)}},
                              kDecimalTolerance));
}

TEST(Combinators, ChainFoldsFromTheLeft) {
    // (1d4 - 1d2) - 1d2, not 1d4 - (1d2 - 1d2).
    std::array<Profile, 3> arguments = {profileOf("1d4"), profileOf("1d2"), profileOf("1d2")};
    EXPECT_TRUE(matchesWithin(KVTXChainCombinatorProfile(CompoundExpressionSubtractionF, arguments,
                                                         testing::StandaloneRequest().use()),
                              testing::difference(testing::difference(d(1, 4), d(1, 2)), d(1, 2)),
                              kDecimalTolerance));
    EXPECT_TRUE(matchesWithin(profileOf("min(1d20,1d20,1d20)"),
                              minimum(minimum(d(1, 20), d(1, 20)), d(1, 20)), kDecimalTolerance));
}

TEST(Combinators, ChainOfOneArgumentIsACopyOfIt) {
    EXPECT_EQ(outcomes(profileOf("max(1d6)")), outcomes(profileOf("1d6")));
    EXPECT_EQ(outcomes(profileOf("min(2d4)")), outcomes(profileOf("2d4")));
}

TEST(Combinators, SoloPutsZeroOnTheLeft) {
    // 0 - x for the subtraction kernel: the outcome of the argument arrives on the right.
    std::array<Profile, 2> arguments = {profileOf("1d3"), profileOf("100")};
    EXPECT_EQ(outcomes(KVTXSoloCombinatorProfile(CompoundExpressionSubtractionF, arguments)),
              (Outcomes{{"-3", "0.33333333333333333333333333333333333333"},
                        {"-2", "0.33333333333333333333333333333333333333"},
                        {"-1", "0.33333333333333333333333333333333333333"}}));
}

TEST(Combinators, OneArgumentFunctionsIgnoreFurtherArguments) {
    EXPECT_EQ(outcomes(profileOf("abs(0-3,5)")), (Outcomes{{"3", "1"}}));
    EXPECT_EQ(outcomes(profileOf("floor(2.5,1d6)")), (Outcomes{{"2", "1"}}));
}

TEST(Statistics, MeanIsAConstant) {
    EXPECT_EQ(outcomes(profileOf("mean(1d6)")), (Outcomes{{"3.5", "1"}}));
    EXPECT_EQ(outcomes(profileOf("mean(1d6,1d20)")), (Outcomes{{"3.5", "1"}}));
}

TEST(Statistics, RangeHasBothEndsWithWeightOneBeforeNormalisation) {
    EXPECT_EQ(outcomes(profileOf("range(2d6)")), (Outcomes{{"2", "1"}, {"12", "1"}}));
    // Equal ends merge into one outcome of weight two.
    EXPECT_EQ(outcomes(profileOf("range(5)")), (Outcomes{{"5", "2"}}));
}

TEST(Statistics, MinvalAndMaxvalKeepOneEndOfTheRange) {
    EXPECT_EQ(outcomes(profileOf("minval(2d6)")), (Outcomes{{"2", "1"}}));
    EXPECT_EQ(outcomes(profileOf("maxval(2d6)")), (Outcomes{{"12", "1"}}));
    // With a single evaluation the range is kept as it is.
    EXPECT_EQ(outcomes(profileOf("minval(5)")), (Outcomes{{"5", "2"}}));
    EXPECT_EQ(outcomes(profileOf("maxval(5)")), (Outcomes{{"5", "2"}}));
}

TEST(Statistics, ModeGivesEveryMostLikelyOutcomeWeightOne) {
    EXPECT_EQ(outcomes(profileOf("mode(2d6)")), (Outcomes{{"7", "1"}}));
    EXPECT_EQ(outcomes(profileOf("mode(1d4)")),
              (Outcomes{{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}}));
}

TEST(Statistics, ValuesMedianAndStandardDeviation) {
    EXPECT_EQ(outcomes(profileOf("values(3d6)")), (Outcomes{{"16", "1"}}));
    EXPECT_EQ(outcomes(profileOf("median(1d6)")), (Outcomes{{"3.5", "1"}}));
    EXPECT_EQ(outcomes(profileOf("median(2d6)")), (Outcomes{{"7", "1"}}));
    EXPECT_EQ(outcomes(profileOf("stddev(1d2)")), (Outcomes{{"0.5", "1"}}));
    const auto deviation = profileOf("stddev(1d6)").evaluations();
    ASSERT_EQ(deviation.size(), 1U);
    EXPECT_EQ(deviation[0].quantity().stringValue(), testing::shortestText(std::sqrt(35.0 / 12.0)));
}

TEST(Statistics, OfAnUndefinedProfile) {
    // "1/0" holds one undefined outcome: its mean is undefined, its number of values 0.
    EXPECT_EQ(outcomes(profileOf("mean(1/0)")), (Outcomes{{"NaN", "1"}}));
    EXPECT_EQ(outcomes(profileOf("values(1/0)")), (Outcomes{{"0", "1"}}));
    EXPECT_EQ(outcomes(profileOf("mode(1/0)")), (Outcomes{{"NaN", "1"}}));
    EXPECT_EQ(outcomes(profileOf("range(1/0)")), (Outcomes{{"NaN", "2"}}));
}

StatisticAnswer nothing(const Profile& /*profile*/) { return std::monostate{}; }
StatisticAnswer noNumbers(const Profile& /*profile*/) { return std::vector<Decimal>{}; }
StatisticAnswer twoOutcomes(const Profile& /*profile*/) {
    return std::vector<Evaluation>{{Decimal::decimalNumberWithInteger(4), Decimal::one()},
                                   {Decimal::decimalNumberWithInteger(1), Decimal::one()}};
}
StatisticAnswer itself(const Profile& profile) { return profile.copy(); }

TEST(Statistics, EveryKindOfAnswerBecomesAProfile) {
    std::array<Profile, 1> arguments = {profileOf("1d2")};
    EXPECT_TRUE(isEmptyProfile(KVTXProfileIntegratedProfile(nothing, arguments)));
    EXPECT_TRUE(isEmptyProfile(KVTXProfileIntegratedProfile(noNumbers, arguments)));
    EXPECT_EQ(outcomes(KVTXProfileIntegratedProfile(twoOutcomes, arguments)),
              (Outcomes{{"1", "1"}, {"4", "1"}}));
    EXPECT_EQ(outcomes(KVTXProfileIntegratedProfile(itself, arguments)),
              (Outcomes{{"1", "1"}, {"2", "1"}}));
}

TEST(Definitions, SharedConstants) {
    EXPECT_EQ(kKVDecimalNegativeOne.compare(Decimal::zero() - Decimal::one()), 0);
    const auto round = [](const char* text) {
        return kKVRoundToIntDecimalHandler.round(Decimal::decimalNumberWithString(text))
            .stringValue();
    };
    EXPECT_EQ(round("2.5"), "3");
    EXPECT_EQ(round("-2.5"), "-3");
    EXPECT_EQ(round("2.4999"), "2");
    EXPECT_EQ(round("-0.5"), "-1");
    EXPECT_TRUE(kKVRoundToIntDecimalHandler.round(Decimal::notANumber()).isNotANumber());
}

TEST(Definitions, SeedIsTheUpTimeModulo3667679) {
    EXPECT_EQ(KVTXSeedForUptime(0), 0U);
    EXPECT_EQ(KVTXSeedForUptime(3667678), 3667678U);
    EXPECT_EQ(KVTXSeedForUptime(3667679), 0U);
    EXPECT_EQ(KVTXSeedForUptime(3667680 + 3667679), 1U);
    // The up-time is a signed 32-bit duration, made non-negative.
    EXPECT_EQ(KVTXSeedForUptime(-5), 5U);
    EXPECT_EQ(KVTXSeedForUptime(4294967296LL + 7), 7U);
}

long long upTimeMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

TEST(Definitions, InitialisingSeedsTheRandomSourceWithTheUpTime) {
    const long long before = upTimeMilliseconds();
    KVTXInitializeDefinitions();
    const long drawn = random();
    const long long after = upTimeMilliseconds();
    bool seededWithAnUpTime = false;
    for (long long milliseconds = before; milliseconds <= after; ++milliseconds) {
        srandom(KVTXSeedForUptime(milliseconds));
        seededWithAnUpTime = seededWithAnUpTime || random() == drawn;
    }
    EXPECT_TRUE(seededWithAnUpTime);
}

}  // namespace
}  // namespace talvex::language
