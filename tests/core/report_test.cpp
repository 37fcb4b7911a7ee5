#include "core/report.h"

#include <gtest/gtest.h>

namespace talvex::core {
namespace {

Decimal n(std::int64_t value) { return Decimal::decimalNumberWithInteger(value); }

Profile oneDie() {
    Profile profile;
    for (int face = 1; face <= 6; ++face) {
        profile.addQuantity(n(face), Decimal::one());
    }
    profile.setTitleString(std::string("1d6"));
    return profile;
}

std::string report(Profile& profile, const Options& options, std::time_t now = 0) {
    return attributedProfileStringWithOptions(profile, &options, defaultStyles(), now).string();
}

const Options kAllStatistics = {{"statistics", "yes"},
                                {"variance", "yes"},
                                {"mean deviation", "yes"},
                                {"mean", "yes"},
                                {"standard deviation", "yes"}};

TEST(Report, DefaultOptionsGiveOnlyTheEmptyHeaderAndFooter) {
    Profile profile = oneDie();
    EXPECT_EQ(report(profile, {}), "");
    EXPECT_TRUE(profile.evaluationHistory().empty());
}

TEST(Report, NoOptionsAtAllGiveEmptyText) {
    Profile profile = oneDie();
    EXPECT_TRUE(attributedProfileStringWithOptions(profile, nullptr, defaultStyles()).empty());
}

TEST(Report, StatisticsOfOneDie) {
    Profile profile = oneDie();
    EXPECT_EQ(report(profile, kAllStatistics),
              "Mean:\t\t3.5\n"
              "Variance:\t\t2.92\n"
              "Stand. Dev.:\t1.71\n"
              "Mean Dev.:\t1.5\n"
              "Range:      \t[1..6]\n"
              "Values:     \t6\n"
              "Median:    \t3.5\n"
              "Mode:\t\t{1, 2, 3, 4, 5, 6}\n"
              "\n");
}

TEST(Report, StatisticsStyles) {
    Profile profile = oneDie();
    const Options options = {{"statistics", "yes"}};
    const StyledText text =
        attributedProfileStringWithOptions(profile, &options, defaultStyles(), 0);
    ASSERT_EQ(text.string().rfind("Mean:\t\t3.5\n", 0), 0U);
    EXPECT_EQ(text.attributesAt(0), defaultStyles().at("item"));
    EXPECT_EQ(text.attributesAt(4), defaultStyles().at("default"));
    EXPECT_EQ(text.attributesAt(7), defaultStyles().at("statistic"));
    EXPECT_EQ(text.attributesAt(10), defaultStyles().at("default"));
}

TEST(Report, ASingleModeHasNoBraces) {
    Profile profile;
    profile.addQuantity(n(1), n(1));
    profile.addQuantity(n(2), n(3));
    const Options options = {{"statistics", "yes"}};
    EXPECT_NE(report(profile, options).find("Mode:\t\t2\n"), std::string::npos);
}

TEST(Report, UndefinedOutcomesWithTheNote) {
    Profile profile;
    profile.addQuantity(Decimal::notANumber(), n(1));
    profile.addQuantity(n(4), n(1));
    Options options = kAllStatistics;
    options["include undefined in statistics"] = "yes";
    EXPECT_EQ(report(profile, options),
              "Mean:\t\t2 excluding undefined\n"
              "Variance:\t\t2 excluding undefined\n"
              "Stand. Dev.:\t1.41 excluding undefined\n"
              "Mean Dev.:\t1 excluding undefined\n"
              "Range:      \t[4..4] + undefined\n"
              "Values:     \t1 + undefined\n"
              "Median:    \t4 excluding undefined\n"
              "Mode:\t\t{undefined, 4}\n"
              "\n");
}

TEST(Report, EmptyProfileStatisticsAreUndefined) {
    Profile profile;
    EXPECT_EQ(report(profile, kAllStatistics),
              "Mean:\t\tundefined\n"
              "Variance:\t\tundefined\n"
              "Stand. Dev.:\tundefined\n"
              "Mean Dev.:\tundefined\n"
              "Range:      \tundefined\n"
              "Values:     \tundefined\n"
              "Median:    \tundefined\n"
              "Mode:\t\tundefined\n"
              "\n");
}

TEST(Report, StatisticsHeadingTitleHeaderAndFooter) {
    Profile profile = oneDie();
    const Options options = {{"header", "H"},
                             {"header style", "title"},
                             {"title", "yes"},
                             {"statistics", "yes"},
                             {"statistics heading", "yes"},
                             {"mode", "no"},
                             {"median", "no"},
                             {"values", "no"},
                             {"standard deviation", "no"},
                             {"footer", "F"}};
    const StyledText text =
        attributedProfileStringWithOptions(profile, &options, defaultStyles(), 0);
    EXPECT_EQ(text.string(), "H1d6\n\nSTATISTICS:\n\nMean:\t\t3.5\nRange:      \t[1..6]\n\nF");
    EXPECT_EQ(text.attributesAt(0), defaultStyles().at("title"));
    EXPECT_EQ(text.attributesAt(text.string().size() - 1), defaultStyles().at("default"));
}

TEST(Report, TimeStampUsesTheFixedFormat) {
    Profile profile = oneDie();
    setenv("TZ", "UTC", 1);
    tzset();
    // 2026-11-20 22:05:09 UTC.
    const std::time_t when = 1795212309;
    EXPECT_EQ(report(profile, {{"time stamp", "yes"}}, when), "Fri, Nov 20, 2026,   22:05 09s\n");
}

TEST(Report, RollIsDrawnAndRecorded) {
    Profile profile = oneDie();
    srandom(3);
    const std::string text = report(profile, {{"roll", "yes"}, {"roll heading", "yes"}});
    ASSERT_EQ(profile.evaluationHistory().size(), 1U);
    const std::string roll = profile.evaluationHistory().front().quantity().stringValue();
    EXPECT_EQ(text, "ROLL:   " + roll + "\n\n");
}

TEST(Report, UndefinedRollPrintsTheWord) {
    Profile profile;
    const Options options = {{"roll", "yes"}};
    const StyledText text =
        attributedProfileStringWithOptions(profile, &options, defaultStyles(), 0);
    EXPECT_EQ(text.string(), "undefined\n\n");
    EXPECT_EQ(text.attributesAt(0), defaultStyles().at("roll"));
}

Profile withHistory(const std::vector<std::int64_t>& rolls) {
    Profile profile = oneDie();
    std::vector<Evaluation> history;
    for (const std::int64_t roll : rolls) {
        history.push_back(Evaluation::evaluationWithQuantity(n(roll), Decimal::one()));
    }
    profile.setEvaluationHistory(history);
    return profile;
}

TEST(Report, PastRollsPutTheSeparatorBeforeAllButTheNewest) {
    Profile profile = withHistory({4, 7, 12});
    EXPECT_EQ(report(profile, {{"past rolls", "yes"}, {"past rolls number", "3"}}), ", 4, 712\n\n");
}

TEST(Report, PastRollsNumberBeyondTheHistoryShowsItAll) {
    Profile profile = withHistory({4, 7, 12});
    EXPECT_EQ(
        report(profile,
               {{"past rolls", "yes"}, {"past rolls number", "50"}, {"past rolls heading", "yes"}}),
        "ROLLS:   , 4, 712\n\n");
}

TEST(Report, OnePastRollHasNoSeparatorButTheContinuation) {
    Profile profile = withHistory({5});
    EXPECT_EQ(report(profile, {{"past rolls", "yes"}}), "5\n\n");
    EXPECT_EQ(report(profile, {{"past rolls", "yes"}, {"past rolls continuation", "yes"}}),
              ", 5\n\n");
}

TEST(Report, UnfinishedPastRollsLeaveTheLineOpen) {
    Profile profile = withHistory({2, 3});
    EXPECT_EQ(report(profile, {{"past rolls", "yes"},
                               {"past rolls number", "2"},
                               {"past rolls unfinished", "yes"}}),
              ", 23");
}

TEST(Report, PastRollsIncludeTheRollJustShown) {
    Profile profile = withHistory({});
    srandom(17);
    const std::string text = report(profile, {{"roll", "yes"}, {"past rolls", "yes"}});
    const std::string roll = profile.evaluationHistory().back().quantity().stringValue();
    EXPECT_EQ(text, roll + "\n\n" + roll + "\n\n");
}

TEST(Report, NoPastRollsYetWritesOnlyTheLineBreaks) {
    Profile profile = withHistory({});
    EXPECT_EQ(report(profile, {{"past rolls", "yes"}, {"past rolls continuation", "yes"}}), "\n\n");
}

}  // namespace
}  // namespace talvex::core
