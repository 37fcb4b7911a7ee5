#include "core/legend.h"

#include <gtest/gtest.h>

namespace talvex::core {
namespace {

Decimal n(std::int64_t value) { return Decimal::decimalNumberWithInteger(value); }

Profile comparison(const std::string& title, const std::string& comparator,
                   const std::vector<std::int64_t>& codes) {
    Profile profile;
    for (const std::int64_t code : codes) {
        profile.addQuantity(n(code), Decimal::one());
    }
    profile.setTitleString(title);
    profile.setComparatorString(comparator);
    return profile;
}

std::string legend(const Profile& profile, const Options& given = {}) {
    const Options options = patchOptions(&given, defaultStyles());
    return legendWithOptions(profile, &options, defaultStyles()).string();
}

TEST(Legend, VersusNamesTheDominatingOperandAndTheTie) {
    const Profile profile = comparison("3d6vs2d10", "vs", {-1, 0, 1});
    EXPECT_EQ(legend(profile), "1 = 3d6 dominates\n0 = tie\n-1 = 2d10 dominates\n");
}

TEST(Legend, VersusWithoutReversingGivesTheFirstOperandMinusOne) {
    const Profile profile = comparison("AvtB", "vt", {-1, 0, 1});
    EXPECT_EQ(legend(profile, {{"reverse versus", "no"}}),
              "-1 = A dominates\n0 = tie\n1 = B dominates\n");
}

TEST(Legend, ThreeOperandsHaveTheirOwnCodes) {
    const Profile profile = comparison("AvsBvsC", "vs", {-2, -1, 1, 0});
    EXPECT_EQ(legend(profile), "1 = A dominates\n0 = tie\n-1 = B dominates\n-2 = C dominates\n");
}

TEST(Legend, StylesOfTheLegendPieces) {
    const Profile profile = comparison("AvsB", "vs", {1});
    const Options options = patchOptions(nullptr, defaultStyles());
    const StyledText text = legendWithOptions(profile, &options, defaultStyles());
    ASSERT_EQ(text.string(), "1 = A dominates\n");
    EXPECT_EQ(text.attributesAt(0), defaultStyles().at("quantity"));
    EXPECT_EQ(text.attributesAt(2), defaultStyles().at("operator"));
    EXPECT_EQ(text.attributesAt(4), defaultStyles().at("legend key"));
    EXPECT_EQ(text.attributesAt(6), defaultStyles().at("legend circumstance"));
}

TEST(Legend, AComparatorInsideParenthesesIsNotSplitOn) {
    EXPECT_EQ(legendOperands("(1d6vs1d4)vs3", "vs"), (std::vector<std::string>{"(1d6vs1d4)", "3"}));
    const Profile profile = comparison("(1d6vs1d4)vs3", "vs", {-1, 1});
    EXPECT_EQ(legend(profile), "1 = (1d6vs1d4) dominates\n-1 = 3 dominates\n");
}

TEST(Legend, OperandTextsAreNotTrimmed) {
    EXPECT_EQ(legendOperands(" a vs b ", "vs"), (std::vector<std::string>{" a ", " b "}));
}

TEST(Legend, ChallengeSuccessAndFailure) {
    // Comparisons give 1 for success; with reversing off the legend reads -1 as success.
    const Profile profile = comparison("2d6ch7", "ch", {-1, 0});
    EXPECT_EQ(legend(profile, {{"reverse versus", "no"}}), "-1 = 2d6 succeeds\n0 = 2d6 fails\n");
    EXPECT_EQ(legend(profile), "0 = 2d6 fails\n");
    const Profile reversed = comparison("2d6cw7", "cw", {1, 0});
    EXPECT_EQ(legend(reversed), "1 = 2d6 succeeds\n0 = 2d6 fails\n");
}

TEST(Legend, TiesNameTheOperandsWhoseDigitIsOne) {
    const Profile profile = comparison("AttBttC", "tt", {8101, 8000, 8011});
    EXPECT_EQ(legend(profile, {{"reverse versus", "no"}}),
              "8000 = no tie\n8011 = B, C tie\n8101 = A, C tie\n");
}

TEST(Legend, TiesIgnoreUndefinedOutcomesAndSurplusDigits) {
    Profile profile = comparison("AttB", "tt", {81011});
    profile.addQuantity(Decimal::notANumber(), Decimal::one());
    EXPECT_EQ(legend(profile), "81011 = A tie\n");
}

TEST(Legend, UnknownOrEmptyComparatorGivesNothing) {
    EXPECT_EQ(legend(comparison("3d6", "", {3})), "");
    EXPECT_EQ(legend(comparison("3d6xx2", "xx", {0})), "");
    const Profile profile = comparison("AvsB", "vs", {0});
    EXPECT_EQ(legendWithOptions(profile, nullptr, defaultStyles()).string(), "");
}

TEST(Legend, LegendPrecisionRoundsTheCodes) {
    Profile profile;
    profile.addQuantity(Decimal::decimalNumberWithString("0.25"), Decimal::one());
    profile.setTitleString(std::string("AvsB"));
    profile.setComparatorString(std::string("vs"));
    // 0.25 is no code at all, so it has no line, whatever the precision.
    EXPECT_EQ(legend(profile, {{"legend precision", "2"}}), "");
}

}  // namespace
}  // namespace talvex::core
