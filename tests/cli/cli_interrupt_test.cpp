// Ctrl-C and --timeout: what stops one expression lets the others go on, and Ctrl-C while
// nothing is being calculated ends the program at once.

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "cli/cli_runner.h"

namespace {

using namespace std::chrono_literals;
using talvex::cli::testing::CliProcess;
using talvex::cli::testing::CliProcessResult;
using talvex::cli::testing::CliRun;
using talvex::cli::testing::jsonLines;
using talvex::cli::testing::run;

// A chain of a hundred additions to a die of a million faces: seconds of work, more in a debug
// build, before it is refused as too large.
std::string longExpression() {
    std::string text = "1d1000000";
    for (int i = 0; i < 100; ++i) {
        text += "+1";
    }
    return text;
}

// The line on standard error for an expression that could not be calculated.
std::string failure(const std::string& text, const std::string& why) {
    return "talvex-cli: cannot calculate \"" + text.substr(0, 80) + "...\": " + why + "\n";
}

// Starts the long expression between two short ones and waits until the first is printed:
// the long one is then under way.
void startLongCalculation(CliProcess& process) {
    ASSERT_TRUE(process.started());
    ASSERT_TRUE(process.waitForOutput("\"expression\":\"1d4\"", 60s));
    std::this_thread::sleep_for(200ms);
}

TEST(CliInterrupt, CtrlCCancelsTheRunningExpressionAndTheOthersStillCome) {
    CliProcess process({"--json", "1d4", longExpression(), "400d6", "3d6", "3D6"});
    ASSERT_NO_FATAL_FAILURE(startLongCalculation(process));
    process.signal(SIGINT);
    const CliProcessResult result = process.finish();
    // 130 wins over the status of the failure that follows, and over the error finding.
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.errors.find(failure(longExpression(), "Calculation cancelled")), 0U)
        << result.errors;
    EXPECT_NE(result.errors.find("400d6"), std::string::npos) << result.errors;
    // A line for each, the cancelled one and the failed one with their error.
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0]["expression"], "1d4");
    EXPECT_EQ(lines[1]["expression"], longExpression());
    EXPECT_EQ(lines[1]["error"], "Calculation cancelled");
    EXPECT_EQ(lines[2]["expression"], "400d6");
    EXPECT_TRUE(lines[2].contains("error"));
    EXPECT_EQ(lines[3]["expression"], "3d6");
    EXPECT_EQ(lines[3]["outcomes"].size(), 16U);
    EXPECT_EQ(lines[4]["expression"], "3D6");
    EXPECT_TRUE(lines[4].contains("diagnostics"));
}

TEST(CliInterrupt, CtrlCWhileWaitingForInputEndsTheProgramAtOnce) {
    // No expressions: it reads them from standard input, which stays open.
    CliProcess process({"--json"});
    ASSERT_TRUE(process.started());
    ASSERT_TRUE(process.waitUntilInterruptsBlocked(30s));
    process.signal(SIGINT);
    const CliProcessResult result = process.finish(10s);
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.errors, "");
}

TEST(CliInterrupt, CtrlCIsIgnoredWhenTheProgramWasStartedIgnoringIt) {
    CliProcess process({"--json", "--timeout", "1", "1d4", longExpression(), "3d6"}, true);
    ASSERT_NO_FATAL_FAILURE(startLongCalculation(process));
    process.signal(SIGINT);
    const CliProcessResult result = process.finish();
    // The time limit ends the long expression, not Ctrl-C.
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.errors.find("did not finish within the time limit"), std::string::npos)
        << result.errors;
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_NE(lines[1].value("error", "").find("did not finish within the time limit"),
              std::string::npos)
        << lines[1];
}

TEST(CliTimeout, AnExpressionPastTheTimeLimitFailsAndTheOthersStillCome) {
    CliProcess process({"--json", "--timeout", "0.2", longExpression(), "3d6"});
    ASSERT_TRUE(process.started());
    const auto start = CliProcess::Clock::now();
    const CliProcessResult result = process.finish();
    EXPECT_LT(CliProcess::Clock::now() - start, 30s);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.errors,
              failure(longExpression(),
                      "it is too large to calculate: it did not finish within the time limit"));
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["expression"], longExpression());
    EXPECT_EQ(lines[0]["error"],
              "it is too large to calculate: it did not finish within the time limit");
    EXPECT_EQ(lines[1]["expression"], "3d6");
}

TEST(CliTimeout, ATimeLimitNotReachedChangesNothing) {
    const CliRun limited = run({"--json", "--timeout", "60", "3d6", "2d10"});
    const CliRun unlimited = run({"--json", "3d6", "2d10"});
    EXPECT_EQ(limited.status, 0);
    EXPECT_EQ(limited.out, unlimited.out);
}

TEST(CliTimeout, OnlyAPositiveNumberOfSecondsIsATimeLimit) {
    for (const std::string value : {"0", "-1", "-0.5", "abc", "5s", "nan", "inf", ""}) {
        const CliRun result = run({"--timeout", value, "1d6"}, "", true);
        EXPECT_EQ(result.status, 2) << value;
        EXPECT_NE(result.out.find("--timeout"), std::string::npos) << value << result.out;
    }
    EXPECT_EQ(run({"--timeout=-1", "1d6"}).status, 2);
    EXPECT_EQ(run({"--timeout", "0.25", "1d6"}).status, 0);
    EXPECT_EQ(run({"--timeout", "1e1", "1d6"}).status, 0);
}

TEST(CliTimeout, HelpDescribesTheTimeLimit) {
    const CliRun help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--timeout SECONDS"), std::string::npos);
}

}  // namespace
