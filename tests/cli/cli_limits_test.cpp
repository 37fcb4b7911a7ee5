// The largest texts through talvex-cli with the real budget: each ends with a plain message on
// standard error and status 3, and the expressions after it are still calculated.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"

namespace talvex::cli::testing {
namespace {

std::string repeated(const std::string& piece, int times, const std::string& separator = "") {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += (i > 0 ? separator : "") + piece;
    }
    return text;
}

struct LargeText {
    const char* name;
    std::string text;
    // Refused only after seconds of work with the real budget: minutes in an unoptimised build.
    bool spendsTheBudget;
};

void PrintTo(const LargeText& large, std::ostream* out) { *out << large.name; }

std::vector<LargeText> largeTexts() {
    std::string versus = "1";
    for (int i = 2; i <= 30000; ++i) {
        versus += "vt" + std::to_string(i);
    }
    return {
        {"hugeDiePlusAHundredOnes", "1d1000000" + repeated("+1", 100), true},
        {"maxOfAHugeDieAndAHundredOnes", "max(1d1000000" + repeated(",1", 100) + ")", true},
        {"twentyLargeCounts", repeated("count(1d10000,1d1000,1d2)", 20, "+"), false},
        {"versusWithThirtyThousandOperands", versus, false},
        {"aHundredHugeDice", repeated("1d1000000", 100, "+"), true},
        {"randomCountOfHugeDice", "(1d6)d1000000", false},
        {"hugeRepeatedRoll", "dieMult(1d6,1000000000)", false},
        {"dropWithRandomCounts", "drop(1d6,1d60,1d20,1d20)", true},
        {"countOverTooManyCombinations", "count(1d10000,1d1000,1d1000)", false},
        {"deeplyNested", repeated("abs(", 1600) + "1" + repeated(")", 1600), false},
    };
}

// Runs the binary on `input` as standard input, read from a file (some texts are longer than a
// shell argument may be); captures standard output, or standard error alone.
CliRun runOnInput(const std::string& input, bool captureErrors) {
    char path[] = "/tmp/talvex-limits-XXXXXX";
    const int descriptor = mkstemp(path);
    if (descriptor < 0) {
        return {};
    }
    close(descriptor);
    std::ofstream(path) << input;
    const CliRun result = runShell(std::string("'") + TALVEX_CLI_PATH + "' < '" + path + "'" +
                                   (captureErrors ? " 2>&1 >/dev/null" : " 2>/dev/null"));
    std::remove(path);
    return result;
}

class CliLimits : public ::testing::TestWithParam<LargeText> {};

TEST_P(CliLimits, EndsWithAPlainMessageAndTheNextExpressionIsStillCalculated) {
#ifndef NDEBUG
    if (GetParam().spendsTheBudget) {
        GTEST_SKIP() << "spends the whole budget; the optimised builds run it";
    }
#endif
    const std::string input = GetParam().text + "\n3d6\n";
    const CliRun errors = runOnInput(input, true);
    EXPECT_EQ(errors.status, 3);
    EXPECT_NE(errors.out.find("talvex-cli: cannot calculate"), std::string::npos) << errors.out;
    EXPECT_TRUE(errors.out.find("too large to calculate") != std::string::npos ||
                errors.out.find(" too ") != std::string::npos)
        << errors.out;
    const CliRun results = runOnInput(input, false);
    EXPECT_NE(results.out.find("10.5"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Texts, CliLimits, ::testing::ValuesIn(largeTexts()),
                         [](const auto& entry) { return std::string(entry.param.name); });

}  // namespace
}  // namespace talvex::cli::testing
