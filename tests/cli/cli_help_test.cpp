// What talvex-cli says about itself in --help: the language, the numbers and the exit
// statuses, each claim checked against what the program does.

#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <csignal>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"

namespace {

using talvex::cli::testing::CliProcess;
using talvex::cli::testing::CliRun;
using talvex::cli::testing::jsonLines;
using talvex::cli::testing::linesOf;
using talvex::cli::testing::run;

// The help line that starts with two spaces and the term, then a description.
std::string helpLine(const std::string& help, const std::string& term) {
    for (const std::string& line : linesOf(help)) {
        if (line.rfind("  " + term + " ", 0) == 0) {
            return line;
        }
    }
    return {};
}

std::string help() { return run({"--help"}).out; }

TEST(CliHelp, ListsEveryComparatorOnALineOfItsOwn) {
    const std::string text = help();
    for (const char* comparator : {"vs", "vt", "tt", "ch", "cw", "cl", "cu"}) {
        const std::string line = helpLine(text, comparator);
        ASSERT_FALSE(line.empty()) << comparator;
        EXPECT_GT(line.size(), 40U) << line;
    }
    // What the codes mean is said once, above the list.
    EXPECT_NE(text.find("-1 = the second is, -2 = the third"), std::string::npos);
    EXPECT_NE(text.find("0 for a tie"), std::string::npos);
}

// Each outcome's quantity (null for undefined) with its probability.
std::map<std::string, std::string> outcomesOf(const nlohmann::json& object) {
    std::map<std::string, std::string> outcomes;
    for (const auto& outcome : object["outcomes"]) {
        const std::string quantity =
            outcome["quantity"].is_null() ? "null" : outcome["quantity"].get<std::string>();
        outcomes[quantity] = outcome["probability"];
    }
    return outcomes;
}

TEST(CliHelp, ComparatorCodesAreAsListed) {
    const CliRun result = run({"--json", "2vt1vt3", "1vt1", "1vs1", "1tt1", "1tt2", "1d2tt1d2tt1",
                               "1ch1", "1cw1", "1cw2cw2", "1cl1", "1cu1", "2cu1", "1d6vt(1d2/0)"});
    // The division by 0 is meant here, but it is still an error finding.
    ASSERT_EQ(result.status, 4);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 13U);
    using Outcomes = std::map<std::string, std::string>;
    // -2: the third operand is highest; 0: a tie for the highest.
    EXPECT_EQ(outcomesOf(lines[0]), (Outcomes{{"-2", "1"}}));
    EXPECT_EQ(outcomesOf(lines[1]), (Outcomes{{"0", "1"}}));
    // vs shares the tie: no code 0.
    EXPECT_EQ(outcomesOf(lines[2]), (Outcomes{{"1", "0.5"}, {"-1", "0.5"}}));
    // tt: 8, then 1 for each operand in the tie for the highest; 800 for none.
    EXPECT_EQ(outcomesOf(lines[3]), (Outcomes{{"811", "1"}}));
    EXPECT_EQ(outcomesOf(lines[4]), (Outcomes{{"800", "1"}}));
    EXPECT_EQ(outcomesOf(lines[5]),
              (Outcomes{{"8110", "0.25"}, {"8111", "0.25"}, {"8000", "0.5"}}));
    // ch: the first's share of a tie of two is half.
    EXPECT_EQ(outcomesOf(lines[6]), (Outcomes{{"1", "0.5"}, {"0", "0.5"}}));
    // cw: a tie for the highest that includes the first is a success, one without it is not.
    EXPECT_EQ(outcomesOf(lines[7]), (Outcomes{{"1", "1"}}));
    EXPECT_EQ(outcomesOf(lines[8]), (Outcomes{{"0", "1"}}));
    // cl: any tie fails; cu: any tie is undefined.
    EXPECT_EQ(outcomesOf(lines[9]), (Outcomes{{"0", "1"}}));
    EXPECT_EQ(outcomesOf(lines[10]), (Outcomes{{"null", "1"}}));
    EXPECT_EQ(outcomesOf(lines[11]), (Outcomes{{"1", "1"}}));
    // An operand that is always undefined leaves nothing defined to compare.
    EXPECT_EQ(outcomesOf(lines[12]), (Outcomes{{"null", "1"}}));
}

TEST(CliHelp, ListsEveryDiceLetterOnALineOfItsOwn) {
    const std::string text = help();
    for (const char* notation : {"XdY", "XcY", "XpY", "XvY", "XwY", "XeY"}) {
        const std::string line = helpLine(text, notation);
        ASSERT_FALSE(line.empty()) << notation;
        EXPECT_GT(line.size(), 40U) << line;
    }
}

TEST(CliHelp, EveryDiceLetterItListsIsOneTheCalculatorReads) {
    // The letters of the help, each used once: every one gives a defined result.
    const CliRun result = run({"--json", "2d6", "2c7", "2p35", "2v8", "2w60", "2e3"});
    ASSERT_EQ(result.status, 0);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 6U);
    for (const auto& object : lines) {
        EXPECT_FALSE(object["outcomes"][0]["quantity"].is_null()) << object["expression"];
    }
    EXPECT_EQ(lines[5]["outcomes"][0]["quantity"], "2000");
}

TEST(CliHelp, SaysWhereTheStatisticsDifferFromATextbook) {
    const std::string text = help();
    EXPECT_NE(text.find("The median is the middle of the distinct outcomes"), std::string::npos);
    EXPECT_NE(text.find("Undefined outcomes count in the divisor of the mean"), std::string::npos);
    EXPECT_NE(text.find("vs shares each tie among the tied operands, half and half between two"),
              std::string::npos);
    EXPECT_NE(text.find("The third column of the table is the running total"), std::string::npos);
}

TEST(CliHelp, ItsExamplesHold) {
    const std::string text = help();
    ASSERT_NE(text.find("die(1,2,100,100,100) has median 2."), std::string::npos);
    ASSERT_NE(text.find("die(1/0,4) has mean 2."), std::string::npos);
    const CliRun result = run({"--json", "die(1,2,100,100,100)", "die(1/0,4)", "1d2vs1d2"});
    // The division by 0 is meant here, but it is still an error finding.
    ASSERT_EQ(result.status, 4);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["statistics"]["median"], "2");
    EXPECT_EQ(lines[1]["statistics"]["mean"], "2");
    // Ties of two operands shared half and half: no tie outcome is left.
    for (const auto& outcome : lines[2]["outcomes"]) {
        EXPECT_EQ(outcome["probability"], "0.5");
    }
    // The third column: 25% of 3d6 lies at 13 or above, so the running total reaches 25.93%
    // on the row of 13 when the largest outcome comes first.
    const CliRun table = run({"--color=never", "--table", "3d6"});
    EXPECT_NE(table.out.find("13     9.72%     25.93%\n"), std::string::npos) << table.out;
}

TEST(CliHelp, ListsTheExitStatusesItHas) {
    const std::string text = help();
    const auto start = text.find("Exit status:\n");
    ASSERT_NE(start, std::string::npos);
    std::vector<std::string> statuses;
    for (const std::string& line : linesOf(text.substr(start))) {
        if (line.size() > 2 && line.rfind("  ", 0) == 0 && std::isdigit(line[2]) != 0) {
            statuses.push_back(line.substr(2, line.find(' ', 2) - 2));
        }
    }
    EXPECT_EQ(statuses, (std::vector<std::string>{"0", "2", "3", "4", "130"}));
    EXPECT_NE(text.find("When several apply, the first of 2, 130, 3, 4 is given."),
              std::string::npos);
    // Each is what the program does.
    EXPECT_EQ(run({"1d6"}).status, 0);
    EXPECT_EQ(run({"1d20+5>=15"}).status, 4);
    EXPECT_EQ(run({"--no-diagnostics", "1d20+5>=15"}).status, 0);
    EXPECT_EQ(run({"1d20+5>=15", "400d6"}).status, 3);
    EXPECT_EQ(run({"--color", "sometimes", "1d20+5>=15"}).status, 2);
    EXPECT_EQ(run({"--list-options"}).status, 0);
    EXPECT_EQ(run({"--color", "sometimes", "1d6"}).status, 2);
    EXPECT_EQ(run({"--option", "tabel=no", "1d6"}).status, 2);
    EXPECT_EQ(run({"--diagram", "--option", "dividers=50,50", "1d6"}).status, 2);
    EXPECT_EQ(run({"400d6"}).status, 3);
    CliProcess waiting({});
    ASSERT_TRUE(waiting.started());
    ASSERT_TRUE(waiting.waitUntilInterruptsBlocked(std::chrono::seconds(20)));
    waiting.signal(SIGINT);
    EXPECT_EQ(waiting.finish().status, 130);
}

}  // namespace
