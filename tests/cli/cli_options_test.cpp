// What talvex-cli says about its report options: --list-options, and names it does not know.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"
#include "cli/option_list.h"
#include "core/report_options.h"

namespace {

using talvex::cli::testing::CliRun;
using talvex::cli::testing::linesOf;
using talvex::cli::testing::run;

// --- --list-options -------------------------------------------------------------------------

TEST(CliListOptions, ShowsEveryOptionWithItsDefaultOnALineOfItsOwn) {
    const CliRun result = run({"--list-options"});
    ASSERT_EQ(result.status, 0);
    const std::vector<std::string> lines = linesOf(result.out);
    const auto& names = talvex::core::optionNames();
    ASSERT_EQ(lines.size(), names.size());
    talvex::core::Options defaults = talvex::core::defaultOptions();
    // Not a default, but repaired into every report's options like one.
    defaults.emplace("log size", "100");
    ASSERT_EQ(defaults.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string start = names[i] + "=" + defaults.at(names[i]) + "  ";
        EXPECT_EQ(lines[i].rfind(start, 0), 0U) << start << " | " << lines[i];
        // Then the values it takes.
        EXPECT_GT(lines[i].find_last_not_of(' '), start.size()) << lines[i];
    }
}

TEST(CliListOptions, SaysWhatValuesEachOptionTakes) {
    const CliRun result = run({"--list-options"});
    ASSERT_EQ(result.status, 0);
    const std::string text = "\n" + result.out;
    const auto line = [&text](const std::string& start) {
        const auto at = text.find("\n" + start);
        return at == std::string::npos ? std::string()
                                       : text.substr(at + 1, text.find('\n', at + 1) - at - 1);
    };
    EXPECT_NE(line("table max height=30 ").find("a whole number from 1 to 1000"),
              std::string::npos);
    EXPECT_NE(line("statistics precision=2 ").find("from -10 to 10"), std::string::npos);
    EXPECT_NE(line("table total weight=100 ").find("a number from 0.000001 to 1000000"),
              std::string::npos);
    EXPECT_NE(line("diagram direction=descending ").find("ascending or descending"),
              std::string::npos);
    EXPECT_NE(line("table=no ").find("yes or no"), std::string::npos);
    EXPECT_NE(line("range=yes ").find("always the default"), std::string::npos);
    EXPECT_NE(line("header style=default ").find("legend key"), std::string::npos);
    EXPECT_NE(line("dividers=25,50,75 ").find("distinct numbers"), std::string::npos);
    EXPECT_NE(line("bar string=| ").find("ProfileEmptyBarString"), std::string::npos);
    EXPECT_NE(line("footer= ").find("any text"), std::string::npos);
}

// --- Report option names ----------------------------------------------------------------------

TEST(CliOptionNames, AnUnknownNameIsAUsageErrorNamingTheNearest) {
    const CliRun errors = run({"--option", "tabel=no", "1d6"}, "", true);
    EXPECT_EQ(errors.status, 2);
    EXPECT_NE(errors.out.find("\"tabel\""), std::string::npos) << errors.out;
    EXPECT_NE(errors.out.find("the nearest is \"table\""), std::string::npos) << errors.out;
    // Nothing is calculated.
    const CliRun output = run({"--option", "tabel=no", "1d6"});
    EXPECT_EQ(output.out, "");

    const CliRun longer = run({"--option", "table max hieght=10", "1d6"}, "", true);
    EXPECT_EQ(longer.status, 2);
    EXPECT_NE(longer.out.find("the nearest is \"table max height\""), std::string::npos);
    // Names are taken as written.
    const CliRun capital = run({"--option", "Table=yes", "1d6"}, "", true);
    EXPECT_EQ(capital.status, 2);
    EXPECT_NE(capital.out.find("the nearest is \"table\""), std::string::npos);
}

TEST(CliOptionNames, KnownNamesWorkAsBefore) {
    EXPECT_EQ(run({"--option", "log size=5", "1d6"}).status, 0);
    // A bad value still falls back to the default.
    const CliRun bad = run({"--color=never", "--table", "--option", "max bar=lots", "1d2"});
    ASSERT_EQ(bad.status, 0);
    EXPECT_EQ(bad.out.rfind("||||||||||2     50%", 0), 0U);
    // A name without a value is the default too.
    const CliRun bare = run({"--color=never", "--table", "--option", "max bar", "1d2"});
    ASSERT_EQ(bare.status, 0);
    EXPECT_EQ(bare.out, bad.out);
}

TEST(CliOptionNames, EditDistanceCountsSingleByteEdits) {
    using talvex::cli::editDistance;
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
    EXPECT_EQ(editDistance("", "abc"), 3U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("table", "table"), 0U);
    EXPECT_EQ(editDistance("tabel", "table"), 2U);
    EXPECT_EQ(editDistance("flaw", "lawn"), 2U);
}

TEST(CliOptionNames, TheNearestIsTheFirstOfTheNearest) {
    using talvex::cli::nearestReportOptionName;
    EXPECT_EQ(nearestReportOptionName("mena"), "mean");
    EXPECT_EQ(nearestReportOptionName("diagram hieght"), "diagram height");
    EXPECT_EQ(nearestReportOptionName("past roll"), "past rolls");
    // "mode" and "mean" are both two edits from "moen"; "mode" comes first in report order.
    ASSERT_EQ(talvex::cli::editDistance("moen", "mode"), 2U);
    ASSERT_EQ(talvex::cli::editDistance("moen", "mean"), 2U);
    EXPECT_EQ(nearestReportOptionName("moen"), "mode");
    EXPECT_TRUE(talvex::cli::isReportOptionName("log size"));
    EXPECT_FALSE(talvex::cli::isReportOptionName("Table"));
}

}  // namespace
