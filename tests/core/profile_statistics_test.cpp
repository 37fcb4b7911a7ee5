#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/profile.h"

namespace talvex::core {
namespace {

Decimal dec(std::string_view text) {
    return text == "NaN" ? Decimal::notANumber() : Decimal::decimalNumberWithString(text);
}

std::vector<std::string> textsOf(const std::vector<Decimal>& values) {
    std::vector<std::string> result;
    for (const Decimal& value : values) {
        result.push_back(value.stringValue());
    }
    return result;
}

std::vector<std::string> textsOf(const std::array<Decimal, 2>& values) {
    return {values[0].stringValue(), values[1].stringValue()};
}

using Texts = std::vector<std::string>;

Profile profileOf(const std::vector<std::pair<std::string_view, std::string_view>>& outcomes) {
    Profile profile;
    for (const auto& [quantity, weight] : outcomes) {
        profile.addQuantity(dec(quantity), dec(weight));
    }
    return profile;
}

Profile oneDie() {
    return profileOf({{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}, {"5", "1"}, {"6", "1"}});
}

Profile twoDiceSummed() {
    Profile profile;
    for (int sum = 2; sum <= 12; ++sum) {
        profile.addQuantity(Decimal::decimalNumberWithInteger(sum),
                            Decimal::decimalNumberWithInteger(6 - std::abs(7 - sum)));
    }
    return profile;
}

Decimal add(const Decimal& a, const Decimal& b) { return a + b; }

TEST(ProfileStatistics, OneDieOfSixFaces) {
    const Profile die = oneDie();
    EXPECT_EQ(die.totalWeight().stringValue(), "6");
    EXPECT_EQ(die.mean().stringValue(), "3.5");
    EXPECT_EQ(die.median().stringValue(), "3.5");
    EXPECT_EQ(textsOf(die.mode()), (Texts{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(textsOf(die.range()), (Texts{"1", "6"}));
    EXPECT_EQ(die.values().stringValue(), "6");
    EXPECT_EQ(die.variance().compare(dec("35") / dec("12")), 0) << die.variance().stringValue();
    EXPECT_EQ(die.meanDeviation().stringValue(), "1.5");
}

TEST(ProfileStatistics, StandardDeviationIsTheSquareRootInDoublePrecision) {
    const Decimal deviation = oneDie().standardDeviation();
    EXPECT_NEAR(deviation.doubleValue(), 1.707825127659933, 1e-15);
    // A double carries about 17 significant digits, no more.
    const std::string text = deviation.stringValue();
    EXPECT_LE(text.size(), 19U) << text;
}

TEST(ProfileStatistics, TwoDiceSummedHaveMedianSevenAndModeSeven) {
    const Profile counts = twoDiceSummed();
    EXPECT_EQ(counts.median().stringValue(), "7");
    EXPECT_EQ(textsOf(counts.mode()), (Texts{"7"}));
    EXPECT_EQ(counts.values().stringValue(), "11");

    Profile assimilated = oneDie();
    assimilated.assimilateProfile(oneDie(), add);
    EXPECT_EQ(assimilated.median().stringValue(), "7");
    EXPECT_EQ(textsOf(assimilated.mode()), (Texts{"7"}));
}

TEST(ProfileStatistics, MedianIsTheMiddleDistinctValueWhateverTheWeights) {
    const Profile profile = profileOf({{"1", "1"}, {"2", "1"}, {"100", "98"}});
    EXPECT_EQ(profile.median().stringValue(), "2");
}

TEST(ProfileStatistics, MedianOfAnEvenCountSkipsTheUndefinedOutcome) {
    const Profile profile =
        profileOf({{"NaN", "50"}, {"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}});
    EXPECT_EQ(profile.median().stringValue(), "2.5");
}

TEST(ProfileStatistics, UndefinedWeightCountsInTheMeansDivisor) {
    const Profile profile = profileOf({{"NaN", "1"}, {"4", "1"}});
    EXPECT_EQ(profile.mean().stringValue(), "2");
    EXPECT_EQ(textsOf(profile.range()), (Texts{"4", "4"}));
    EXPECT_EQ(profile.values().stringValue(), "1");
    EXPECT_EQ(textsOf(profile.mode()), (Texts{"4"}));
    EXPECT_EQ(textsOf(profile.modeIncludingUndefined()), (Texts{"NaN", "4"}));
}

TEST(ProfileStatistics, UndefinedWeightCountsInTheDeviationsDivisors) {
    const Profile profile = profileOf({{"NaN", "2"}, {"1", "1"}, {"3", "1"}});
    EXPECT_EQ(profile.mean().stringValue(), "1");
    EXPECT_EQ(profile.variance().stringValue(), "1");
    EXPECT_EQ(profile.meanDeviation().stringValue(), "0.5");
    EXPECT_EQ(profile.standardDeviation().stringValue(), "1");
}

TEST(ProfileStatistics, EmptyProfileHasUndefinedStatistics) {
    const Profile empty;
    EXPECT_TRUE(empty.mean().isNotANumber());
    EXPECT_TRUE(empty.variance().isNotANumber());
    EXPECT_TRUE(empty.standardDeviation().isNotANumber());
    EXPECT_TRUE(empty.meanDeviation().isNotANumber());
    EXPECT_TRUE(empty.median().isNotANumber());
    EXPECT_EQ(textsOf(empty.mode()), (Texts{"NaN"}));
    EXPECT_EQ(textsOf(empty.modeIncludingUndefined()), (Texts{"NaN"}));
    EXPECT_EQ(textsOf(empty.range()), (Texts{"NaN", "NaN"}));
    EXPECT_TRUE(empty.values().isZero());
    EXPECT_FALSE(empty.values().isNotANumber());
}

TEST(ProfileStatistics, OnlyUndefinedOutcomeHasUndefinedStatistics) {
    const Profile profile = profileOf({{"NaN", "3"}});
    EXPECT_TRUE(profile.mean().isNotANumber());
    EXPECT_TRUE(profile.median().isNotANumber());
    EXPECT_EQ(textsOf(profile.mode()), (Texts{"NaN"}));
    EXPECT_EQ(textsOf(profile.modeIncludingUndefined()), (Texts{"NaN"}));
    EXPECT_EQ(textsOf(profile.range()), (Texts{"NaN", "NaN"}));
    EXPECT_TRUE(profile.values().isZero());
}

TEST(ProfileStatistics, ModeIncludingUndefinedCanBeUndefinedAlone) {
    const Profile profile = profileOf({{"NaN", "5"}, {"1", "2"}, {"2", "3"}});
    EXPECT_EQ(textsOf(profile.modeIncludingUndefined()), (Texts{"NaN"}));
    EXPECT_EQ(textsOf(profile.mode()), (Texts{"2"}));
}

TEST(ProfileStatistics, ModeWeightsNeedOnlyAgreeToErrorPlaces) {
    Profile profile = profileOf({{"1", "0.1"}, {"2", "0.10000000000001"}, {"3", "0.05"}});
    EXPECT_EQ(textsOf(profile.mode()), (Texts{"1", "2"}));
    profile.setError(14);
    EXPECT_EQ(textsOf(profile.mode()), (Texts{"2"}));
}

TEST(ProfileStatistics, RoundToPrecisionMergesTheOutcomesThatNowCoincide) {
    Profile profile = profileOf({{"NaN", "1"}, {"1.24", "1"}, {"1.26", "2"}, {"1.3", "4"}});
    profile.roundToPrecision(1);
    const std::vector<Evaluation> list = profile.evaluations();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_FALSE(list[0].isDefined());
    EXPECT_EQ(list[1].quantity().stringValue(), "1.2");
    EXPECT_EQ(list[1].weight().stringValue(), "1");
    EXPECT_EQ(list[2].quantity().stringValue(), "1.3");
    EXPECT_EQ(list[2].weight().stringValue(), "6");
}

struct PrecisionCase {
    std::string value;
    int places;
    std::string expected;
};

void PrintTo(const PrecisionCase& value, std::ostream* os) {
    *os << value.value << " at " << value.places;
}

class DecimalWithPrecision : public ::testing::TestWithParam<PrecisionCase> {};

TEST_P(DecimalWithPrecision, RoundsHalvesAwayFromZero) {
    const PrecisionCase& c = GetParam();
    EXPECT_EQ(Profile::decimalWithPrecision(dec(c.value), c.places).stringValue(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DecimalWithPrecision,
    ::testing::Values(PrecisionCase{"2.345", 2, "2.35"}, PrecisionCase{"-2.345", 2, "-2.35"},
                      PrecisionCase{"2.344", 2, "2.34"}, PrecisionCase{"NaN", 2, "NaN"},
                      PrecisionCase{"2.5", 0, "3"}, PrecisionCase{"-2.5", 0, "-3"},
                      PrecisionCase{"25", -1, "30"}, PrecisionCase{"7", 3, "7"}));

TEST(ProfileStatistics, AnUndefinedFirstArgumentIsWithinErrorOfAnything) {
    const Profile profile;
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(Decimal::notANumber(), Decimal::notANumber()));
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(Decimal::notANumber(), dec("5")));
    EXPECT_FALSE(profile.decimalIsWithinErrorOf(dec("5"), Decimal::notANumber()));
}

TEST(ProfileStatistics, WithinErrorComparesAtErrorDecimalPlaces) {
    Profile profile;
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(dec("0.00000000001"), dec("0")));
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(dec("2"), dec("2.000")));
    EXPECT_FALSE(profile.decimalIsWithinErrorOf(dec("0.0000000001"), dec("0")));
    profile.setError(2);
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(dec("1.001"), dec("1.004")));
    EXPECT_FALSE(profile.decimalIsWithinErrorOf(dec("1.001"), dec("1.006")));
    profile.setError(-1);
    EXPECT_TRUE(profile.decimalIsWithinErrorOf(dec("21"), dec("24.9")));
    EXPECT_FALSE(profile.decimalIsWithinErrorOf(dec("24.9"), dec("25")));
}

}  // namespace
}  // namespace talvex::core
