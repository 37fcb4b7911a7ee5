// The reports as talvex-cli prints them: sections, options and colours.

#include <gtest/gtest.h>

#include <map>

#include "cli/cli_runner.h"

namespace {

using talvex::cli::testing::CliRun;
using talvex::cli::testing::jsonLines;
using talvex::cli::testing::run;

TEST(CliReport, StatisticsOfOneDieCharacterForCharacter) {
    const CliRun result = run({"--color=never", "--statistics", "1d6"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "Mean:\t\t3.5\n"
              "Stand. Dev.:\t1.71\n"
              "Range:      \t[1..6]\n"
              "Values:     \t6\n"
              "Median:    \t3.5\n"
              "Mode:\t\t{1, 2, 3, 4, 5, 6}\n"
              "\n");
}

TEST(CliReport, DefaultReportIsTitleStatisticsAndTable) {
    const CliRun result = run({"--color=never", "1d2"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "1d2\n\n"
              "Mean:\t\t1.5\n"
              "Stand. Dev.:\t0.5\n"
              "Range:      \t[1..2]\n"
              "Values:     \t2\n"
              "Median:    \t1.5\n"
              "Mode:\t\t{1, 2}\n"
              "\n"
              "||||||||||2     50%     50%\n"
              "||||||||||1     50%     100%\n"
              "\n");
}

TEST(CliReport, TableAndDiagramTogether) {
    const CliRun result = run({"--color=never", "--table", "--diagram", "3d6"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out.find("Mean"), std::string::npos);
    EXPECT_EQ(result.out.rfind("18     0.46%     0.46%\n", 0), 0U);
    // The diagram repeats the quantity at which each quartile falls.
    EXPECT_NE(result.out.find("\n13\n"), std::string::npos);
    EXPECT_NE(result.out.find("\n8\n"), std::string::npos);
}

TEST(CliReport, OptionsAreRepairedLikeAnyOther) {
    const CliRun result = run({"--color=never", "--table", "--option", "bar string=##", "--option",
                               "table direction=ASCENDING", "--option", "max bar=two", "1d2"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "####################1     50%     50%\n"
              "####################2     50%     100%\n"
              "\n");
}

TEST(CliReport, RepeatedDividerIsExplainedPlainly) {
    const CliRun errors = run({"--diagram", "--option", "dividers=50,50", "1d6"}, "", true);
    EXPECT_EQ(errors.status, 2);
    EXPECT_NE(errors.out.find("the divider list holds the same value twice"), std::string::npos);
}

TEST(CliReport, ColoursAreTwentyFourBitWhenAsked) {
    const CliRun result = run({"--color=always", "--statistics", "1d6"});
    ASSERT_EQ(result.status, 0);
    // "Mean" in the item style's blue; the value in the statistic style's black, which is
    // written as the terminal's own foreground.
    EXPECT_EQ(result.out.rfind("\x1b[38;2;0;0;255mMean\x1b[0m", 0), 0U);
    EXPECT_NE(result.out.find("\x1b[39m3.5\x1b[0m"), std::string::npos);
}

TEST(CliReport, NoColourWhenNotATerminalOrWhenNoColorIsSet) {
    const CliRun piped = run({"--statistics", "1d6"});
    EXPECT_EQ(piped.out.find('\x1b'), std::string::npos);
    setenv("NO_COLOR", "1", 1);
    const CliRun noColor = run({"--color=auto", "--statistics", "1d6"});
    unsetenv("NO_COLOR");
    EXPECT_EQ(noColor.out.find('\x1b'), std::string::npos);
}

TEST(CliReport, LegendOfAComparisonWithoutAComparatorIsEmpty) {
    const CliRun result = run({"--color=never", "--legend", "1d6"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "\n");
}

TEST(CliReport, RollSectionShowsOneRoll) {
    const CliRun result = run({"--color=never", "--seed", "9", "--roll", "1d6"});
    ASSERT_EQ(result.status, 0);
    ASSERT_EQ(result.out.size(), 3U);
    EXPECT_GE(result.out[0], '1');
    EXPECT_LE(result.out[0], '6');
    EXPECT_EQ(result.out.substr(1), "\n\n");
}

TEST(CliReport, JsonCarriesTheStatistics) {
    const CliRun result = run({"--json", "1d6"});
    ASSERT_EQ(result.status, 0);
    const auto statistics = jsonLines(result.out).front()["statistics"];
    EXPECT_EQ(statistics["mean"], "3.5");
    EXPECT_EQ(statistics["median"], "3.5");
    EXPECT_EQ(statistics["values"], "6");
    EXPECT_EQ(statistics["range"], nlohmann::json::array({"1", "6"}));
    EXPECT_EQ(statistics["mode"].size(), 6U);
    EXPECT_EQ(statistics["variance"].get<std::string>().rfind("2.91666666666666666", 0), 0U);
    EXPECT_EQ(statistics["standard_deviation"].get<std::string>().rfind("1.707825127659933", 0),
              0U);
    const std::vector<std::string> keys = {
        "mean",   "variance", "standard_deviation",       "mean_deviation",
        "median", "mode",     "mode_including_undefined", "range",
        "values"};
    // The keys stand in this order in the printed text.
    std::size_t previous = result.out.find("\"statistics\"");
    for (const std::string& key : keys) {
        const std::size_t at = result.out.find("\"" + key + "\":", previous);
        ASSERT_NE(at, std::string::npos) << key;
        previous = at;
    }
}

TEST(CliReport, JsonStatisticsOfAnUndefinedResultAreNull) {
    const CliRun result = run({"--json", "nothing"});
    // The unknown name is an error finding.
    ASSERT_EQ(result.status, 4);
    const auto statistics = jsonLines(result.out).front()["statistics"];
    EXPECT_TRUE(statistics["mean"].is_null());
    EXPECT_TRUE(statistics["range"][0].is_null());
    EXPECT_EQ(statistics["values"], "0");
    EXPECT_TRUE(statistics["mode"][0].is_null());
}

TEST(CliComparison, VersusWithTiesOfTwoDice) {
    const CliRun result = run({"--json", "1d6vt1d6"});
    ASSERT_EQ(result.status, 0);
    const auto object = jsonLines(result.out).front();
    EXPECT_EQ(object["comparator"], "vt");
    std::map<std::string, std::string> found;
    for (const auto& outcome : object["outcomes"]) {
        found[outcome["quantity"].get<std::string>()] = outcome["probability"];
    }
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.at("1").rfind("0.41666666666666666666666666666666666", 0), 0U);
    EXPECT_EQ(found.at("-1").rfind("0.41666666666666666666666666666666666", 0), 0U);
    EXPECT_EQ(found.at("0").rfind("0.16666666666666666666666666666666666", 0), 0U);
}

TEST(CliComparison, VersusWithoutTiesGivesOneHalfEach) {
    const CliRun result = run({"--json", "1d6vs1d6"});
    ASSERT_EQ(result.status, 0);
    const auto outcomes = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(outcomes.size(), 2U);
    for (const auto& outcome : outcomes) {
        EXPECT_EQ(outcome["probability"].get<std::string>().rfind("0.5", 0), 0U);
        EXPECT_EQ(outcome["probability"].get<std::string>().substr(0, 30),
                  "0.5000000000000000000000000000");
    }
}

TEST(CliComparison, HardDefinitionGivesTheEvenNumbers) {
    const CliRun result = run({"--json", "a~1d6;a+a"});
    ASSERT_EQ(result.status, 0);
    const auto outcomes = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(outcomes.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(outcomes[i]["quantity"], std::to_string(2 * (i + 1)));
    }
}

TEST(CliComparison, LegendAndTableOfAComparison) {
    const CliRun result = run({"--color=never", "--legend", "--table", "3d6 vs 2d10"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "|||||||||1     46.21%     46.21%\n"
              "||||||||||-1     53.79%     100%\n"
              "\n"
              "1 = 3d6 dominates\n"
              "-1 = 2d10 dominates\n"
              "\n");
}

}  // namespace
