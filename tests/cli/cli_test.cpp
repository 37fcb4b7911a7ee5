// Runs the real talvex-cli binary and checks what it prints and how it exits.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"

namespace {

using talvex::cli::testing::CliRun;
using talvex::cli::testing::jsonLines;
using talvex::cli::testing::run;

// num/den as "0." followed by 60 decimal digits, by long division (num < den).
std::string fraction(long long num, long long den) {
    std::string text = "0.";
    long long remainder = num;
    for (int i = 0; i < 60; ++i) {
        remainder *= 10;
        text += static_cast<char>('0' + remainder / den);
        remainder %= den;
    }
    return text;
}

// The first `count` significant digits of a plain decimal text, padded with zeros.
std::string significantDigits(const std::string& text, std::size_t count) {
    std::string digits;
    for (const char c : text) {
        if (c >= '0' && c <= '9' && !(digits.empty() && c == '0')) {
            digits += c;
        }
    }
    digits.resize(count, '0');
    return digits;
}

TEST(Cli, JsonOfThreeDiceHasSixteenOutcomesWithTheirProbabilities) {
    const CliRun result = run({"--json", "3d6"});
    ASSERT_EQ(result.status, 0);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 1U);
    const auto& object = lines.front();
    EXPECT_EQ(object["expression"], "3d6");
    EXPECT_EQ(object["comparator"], "");
    const auto& list = object["outcomes"];
    ASSERT_EQ(list.size(), 16U);
    // The ways of rolling each sum, out of 216.
    const std::array<int, 16> ways = {1, 3, 6, 10, 15, 21, 25, 27, 27, 25, 21, 15, 10, 6, 3, 1};
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(list[i]["quantity"], std::to_string(3 + i));
        // 38-digit probabilities: the first 35 significant digits are those of ways/216
        // (the last ones carry the rounding of each normalisation step).
        const std::string text = list[i]["probability"];
        EXPECT_EQ(significantDigits(text, 35), significantDigits(fraction(ways[i], 216), 35))
            << text;
    }
    // The four keys of the distribution, then the statistics.
    EXPECT_EQ(object.size(), 5U);
    EXPECT_TRUE(object.contains("statistics"));
}

TEST(Cli, JsonKeysComeInTheirOrder) {
    const CliRun result = run({"--json", "1d2"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.out.rfind("{\"expression\":\"1d2\",\"comparator\":\"\",\"total_weight\":", 0),
              0U);
}

TEST(Cli, LabelledTextAgreesWithThePlainText) {
    const CliRun result = run({"--json", "Roll: 2d6", "2d6"});
    ASSERT_EQ(result.status, 0);
    auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 2U);
    // Only the label tells them apart.
    EXPECT_EQ(lines[0]["label"], "Roll");
    EXPECT_FALSE(lines[1].contains("label"));
    lines[0].erase("label");
    EXPECT_EQ(lines[0], lines[1]);
}

TEST(Cli, UndefinedOutcomeHasANullQuantity) {
    const CliRun result = run({"--json", "nothing"});
    // The unknown name is an error finding.
    ASSERT_EQ(result.status, 4);
    const auto object = jsonLines(result.out).front();
    ASSERT_EQ(object["outcomes"].size(), 1U);
    EXPECT_TRUE(object["outcomes"][0]["quantity"].is_null());
    EXPECT_EQ(object["outcomes"][0]["probability"], "1");
}

TEST(Cli, ReadsExpressionsFromStandardInputSkippingBlankLines) {
    const CliRun result = run({"--json"}, "1d4\n\n   \n2c5\n");
    ASSERT_EQ(result.status, 0);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["expression"], "1d4");
    EXPECT_EQ(lines[1]["expression"], "2c5");
}

TEST(Cli, SeededRollsRepeat) {
    const CliRun first = run({"--json", "--seed", "42", "--rolls", "20", "1d20"});
    const CliRun second = run({"--json", "--seed", "42", "--rolls", "20", "1d20"});
    ASSERT_EQ(first.status, 0);
    EXPECT_EQ(first.out, second.out);
    const auto rolls = jsonLines(first.out).front()["rolls"];
    ASSERT_EQ(rolls.size(), 20U);
    for (const auto& roll : rolls) {
        const int value = std::stoi(roll.get<std::string>());
        EXPECT_GE(value, 1);
        EXPECT_LE(value, 20);
    }
}

TEST(Cli, UndefinedRollIsNull) {
    const CliRun result = run({"--json", "--rolls", "2", "nothing"});
    ASSERT_EQ(result.status, 4);
    const auto rolls = jsonLines(result.out).front()["rolls"];
    ASSERT_EQ(rolls.size(), 2U);
    EXPECT_TRUE(rolls[0].is_null());
}

TEST(Cli, UnknownOptionIsAClearMessageAndStatusTwo) {
    const CliRun result = run({"--frobnicate", "1d6"}, "", true);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.out.find("--frobnicate"), std::string::npos);
}

TEST(Cli, HelpAndVersion) {
    const CliRun help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--json"), std::string::npos);
    EXPECT_NE(help.out.find("--rolls"), std::string::npos);
    const CliRun version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("talvex-cli ", 0), 0U);
}

TEST(Cli, RangeFaultIsReportedAndTheRestStillEvaluated) {
    const CliRun result = run({"--json", "1d4", "400d6", "2d2"});
    EXPECT_EQ(result.status, 3);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["expression"], "1d4");
    EXPECT_EQ(lines[1]["expression"], "400d6");
    EXPECT_NE(lines[1].value("error", "").find("too small"), std::string::npos) << lines[1];
    EXPECT_EQ(lines[2]["expression"], "2d2");
    const CliRun errors = run({"--json", "1d4", "400d6", "2d2"}, "", true);
    EXPECT_NE(errors.out.find("400d6"), std::string::npos);
    EXPECT_NE(errors.out.find("too small"), std::string::npos);
    EXPECT_EQ(std::count(errors.out.begin(), errors.out.end(), '\n'), 1);
}

TEST(Cli, TooLargeADieIsReportedPlainly) {
    const CliRun errors = run({"1d2000000000"}, "", true);
    EXPECT_EQ(errors.status, 3);
    EXPECT_NE(errors.out.find("too large"), std::string::npos);
}

// --- Compound expressions ------------------------------------------------------------------

// The ways of rolling each sum with two six-sided dice, counted.
std::array<int, 13> twoDiceWays() {
    std::array<int, 13> ways{};
    for (int a = 1; a <= 6; ++a) {
        for (int b = 1; b <= 6; ++b) {
            ++ways[static_cast<std::size_t>(a + b)];
        }
    }
    return ways;
}

TEST(CliCompound, PowersAreLeftAssociative) {
    const CliRun result = run({"--json", "2^3^2"});
    ASSERT_EQ(result.status, 0);
    const auto object = jsonLines(result.out).front();
    EXPECT_EQ(object["expression"], "2^3^2");
    ASSERT_EQ(object["outcomes"].size(), 1U);
    EXPECT_EQ(object["outcomes"][0]["quantity"], "64");
    EXPECT_EQ(object["outcomes"][0]["probability"], "1");
}

TEST(CliCompound, ARandomCountIsHalfOneDieAndHalfTwoDice) {
    const CliRun result = run({"--json", "(1d2)d6"});
    ASSERT_EQ(result.status, 0);
    const auto list = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(list.size(), 12U);
    const auto ways = twoDiceWays();
    for (std::size_t i = 0; i < 12; ++i) {
        const auto sum = i + 1;
        // Out of 72: half of 1/6 for one die, half of ways/36 for two.
        const int num = (sum <= 6 ? 6 : 0) + ways[sum];
        EXPECT_EQ(list[i]["quantity"], std::to_string(sum));
        const std::string text = list[i]["probability"];
        EXPECT_EQ(significantDigits(text, 30), significantDigits(fraction(num, 72), 30)) << text;
    }
}

TEST(CliCompound, DefinitionsAreWrittenOutAndShownRewritten) {
    const CliRun result = run({"--json", "a=1d6;b=a+a;b*2"});
    ASSERT_EQ(result.status, 0);
    const auto object = jsonLines(result.out).front();
    EXPECT_EQ(object["expression"], "((1d6)+(1d6))*2");
    const auto list = object["outcomes"];
    ASSERT_EQ(list.size(), 11U);
    const auto ways = twoDiceWays();
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_EQ(list[i]["quantity"], std::to_string(2 * (i + 2)));
        const std::string text = list[i]["probability"];
        EXPECT_EQ(significantDigits(text, 30), significantDigits(fraction(ways[i + 2], 36), 30))
            << text;
    }
}

TEST(CliCompound, MinusANegativeNumberAdds) {
    const CliRun result = run({"--json", "3--2"});
    ASSERT_EQ(result.status, 0);
    const auto object = jsonLines(result.out).front();
    EXPECT_EQ(object["expression"], "3--2");
    ASSERT_EQ(object["outcomes"].size(), 1U);
    EXPECT_EQ(object["outcomes"][0]["quantity"], "5");
}

TEST(CliCompound, MalformedPiecesAreUndefinedNotErrors) {
    const CliRun result =
        run({"--json", "1/0", "&", "%", "()", "3+", "d6", "1d6vs1d6vt1d6", "a=a+1;a"});
    // Each is calculated, and each is also told as an error finding.
    ASSERT_EQ(result.status, 4);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 8U);
    for (const auto& object : lines) {
        ASSERT_EQ(object["outcomes"].size(), 1U) << object["expression"];
        EXPECT_TRUE(object["outcomes"][0]["quantity"].is_null()) << object["expression"];
        EXPECT_TRUE(object.contains("diagnostics")) << object["expression"];
    }
}

TEST(CliCompound, TooDeepANestingIsReportedPlainly) {
    const std::string deep = std::string(10'000, '(') + "1" + std::string(10'000, ')');
    const CliRun errors = run({deep, "1+1"}, "", true);
    EXPECT_EQ(errors.status, 3);
    EXPECT_NE(errors.out.find("nest more than"), std::string::npos);
    const CliRun result = run({"--json", deep, "1+1"});
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["expression"], deep);
    EXPECT_NE(lines[0].value("error", "").find("nest more than"), std::string::npos);
    EXPECT_EQ(lines[1]["expression"], "1+1");
}

TEST(CliCompound, HugeRandomDiceAreReportedPlainly) {
    const CliRun errors = run({"(1d6)d1000000"}, "", true);
    EXPECT_EQ(errors.status, 3);
    EXPECT_NE(errors.out.find("too large to calculate"), std::string::npos);
}

TEST(CliFunction, BetterOfTwoDiceShowsSixWithElevenIn36) {
    const CliRun result = run({"--json", "max(1d6,1d6)"});
    ASSERT_EQ(result.status, 0);
    const auto list = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(list.size(), 6U);
    std::array<long long, 7> ways{};
    for (int a = 1; a <= 6; ++a) {
        for (int b = 1; b <= 6; ++b) {
            ++ways[static_cast<std::size_t>(std::max(a, b))];
        }
    }
    ASSERT_EQ(ways[6], 11);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(list[i]["quantity"], std::to_string(i + 1));
        const std::string text = list[i]["probability"];
        EXPECT_EQ(significantDigits(text, 30), significantDigits(fraction(ways[i + 1], 36), 30))
            << text;
    }
}

TEST(CliFunction, CriterionIsTheBinomialOfItsSuccesses) {
    // Three dice of six sides, success on 1 or 2: C(3, k) 2^k 4^(3 - k) ways out of 216.
    const CliRun result = run({"--json", "criterion(3,6,2)"});
    ASSERT_EQ(result.status, 0);
    const auto list = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(list.size(), 4U);
    const std::array<long long, 4> choose = {1, 3, 3, 1};
    for (std::size_t k = 0; k < 4; ++k) {
        long long ways = choose[k];
        for (std::size_t i = 0; i < 3; ++i) {
            ways *= i < k ? 2 : 4;
        }
        EXPECT_EQ(list[k]["quantity"], std::to_string(k));
        // The success indicator is summed in doubles: about 15 digits hold.
        const std::string text = list[k]["probability"];
        EXPECT_EQ(significantDigits(text, 12), significantDigits(fraction(ways, 216), 12)) << text;
    }
}

TEST(CliFunction, FourDiceDropTheLowest) {
    const CliRun result = run({"--json", "drop(1d6,4,1,0)"});
    ASSERT_EQ(result.status, 0);
    const auto list = jsonLines(result.out).front()["outcomes"];
    ASSERT_EQ(list.size(), 16U);
    // Every ordered roll of four dice, the lowest left out.
    std::array<long long, 19> ways{};
    for (int roll = 0; roll < 1296; ++roll) {
        std::array<int, 4> dice = {roll % 6 + 1, roll / 6 % 6 + 1, roll / 36 % 6 + 1,
                                   roll / 216 + 1};
        std::sort(dice.begin(), dice.end());
        ++ways[static_cast<std::size_t>(dice[1] + dice[2] + dice[3])];
    }
    ASSERT_EQ(ways[13], 172);
    ASSERT_EQ(ways[18], 21);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(list[i]["quantity"], std::to_string(i + 3));
        const std::string text = list[i]["probability"];
        EXPECT_EQ(significantDigits(text, 30), significantDigits(fraction(ways[i + 3], 1296), 30))
            << text;
    }
}

TEST(CliFunction, EveryFunctionEvaluates) {
    const std::vector<std::string> calls = {"ln(1d6)",
                                            "log(1d6)",
                                            "exp(1d2)",
                                            "sin(1d6)",
                                            "cos(1d6)",
                                            "tan(1d6)",
                                            "round(1d6/4)",
                                            "floor(1d6/4)",
                                            "ceil(1d6/4)",
                                            "abs(1d6-4)",
                                            "arcsin(1d3-2)",
                                            "arccos(1d3-2)",
                                            "arctan(1d6)",
                                            "mean(2d6)",
                                            "stddev(2d6)",
                                            "minval(2d6)",
                                            "maxval(2d6)",
                                            "values(2d6)",
                                            "median(2d6)",
                                            "mode(2d6)",
                                            "range(2d6)",
                                            "max(1d6,1d8)",
                                            "min(1d6,1d8)",
                                            "dieMult(1d6,1d3)",
                                            "diePow(1d6,2)",
                                            "diew(1d6,1,1d8,2)",
                                            "dier(1d3,6)",
                                            "die(1d4,1d8)",
                                            "keep(2d6,4,10,1d4)",
                                            "count(3d6,10,12)",
                                            "confineweightrange(2d6,0.25,0.75)",
                                            "confineweight(2d6,0.1,1)",
                                            "confine(3d6,5,10)",
                                            "criterion(10,10,3)",
                                            "drop(1d6,4,1,0)"};
    ASSERT_EQ(calls.size(), 35U);
    std::vector<std::string> arguments = {"--json"};
    arguments.insert(arguments.end(), calls.begin(), calls.end());
    const CliRun result = run(arguments);
    ASSERT_EQ(result.status, 0);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), calls.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(lines[i]["expression"], calls[i]);
        // Each has a defined outcome.
        const auto& outcomes = lines[i]["outcomes"];
        EXPECT_TRUE(std::any_of(outcomes.begin(), outcomes.end(), [](const auto& outcome) {
            return !outcome["quantity"].is_null();
        })) << calls[i];
    }
}

TEST(CliFunction, HelpListsEveryFunctionOnALineOfItsOwn) {
    const CliRun result = run({"--help"});
    ASSERT_EQ(result.status, 0);
    for (const char* name : {"ln",
                             "log",
                             "exp",
                             "sin",
                             "cos",
                             "tan",
                             "round",
                             "floor",
                             "ceil",
                             "abs",
                             "arcsin",
                             "arccos",
                             "arctan",
                             "mean",
                             "stddev",
                             "minval",
                             "maxval",
                             "values",
                             "median",
                             "mode",
                             "range",
                             "max",
                             "min",
                             "dieMult",
                             "diePow",
                             "diew",
                             "dier",
                             "die",
                             "keep",
                             "count",
                             "confineweightrange",
                             "confineweight",
                             "confine",
                             "criterion",
                             "drop"}) {
        const std::string line = std::string("\n  ") + name + "(";
        const auto start = result.out.find(line);
        ASSERT_NE(start, std::string::npos) << name;
        // The call, then a description on the same line.
        const auto end = result.out.find('\n', start + 1);
        const std::string entry = result.out.substr(start + 1, end - start - 1);
        EXPECT_GT(entry.find(") "), 0U) << entry;
        EXPECT_GT(entry.size(), line.size() + 20) << entry;
    }
}

TEST(Cli, TextThatIsNotUtf8IsShownNotRefused) {
    const CliRun result = run({"--json"},
                              "\xff\xfe"
                              "1d6\n");
    // Calculated; the bytes are an error finding.
    EXPECT_EQ(result.status, 4);
    const auto lines = jsonLines(result.out);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front()["expression"],
              "\xEF\xBF\xBD\xEF\xBF\xBD"
              "1d6");
}

TEST(Cli, MessagesNameLongExpressionsShortly) {
    const std::string text = "9000c5" + std::string(200, ' ');
    const CliRun errors = run({text}, "", true);
    EXPECT_EQ(errors.status, 3);
    EXPECT_LT(errors.out.size(), 200U);
    EXPECT_NE(errors.out.find("9000c5"), std::string::npos);
    EXPECT_NE(errors.out.find("..."), std::string::npos);
}

TEST(Cli, StatisticsBeyondTheRangeAreNullButTheDistributionStays) {
    const CliRun result = run({"--json", "die(10^100,0-10^100)"});
    ASSERT_EQ(result.status, 0);
    const auto object = jsonLines(result.out).front();
    EXPECT_EQ(object["outcomes"].size(), 2U);
    EXPECT_TRUE(object["statistics"]["variance"].is_null());
    EXPECT_EQ(object["statistics"]["mean"], "0");
}

TEST(Cli, RollsAreBounded) {
    const CliRun tooMany = run({"--rolls", "2000000000", "1d6"}, "", true);
    EXPECT_EQ(tooMany.status, 2);
    const CliRun tooLong = run({"--rolls", "100000", "1d1000000"}, "", true);
    EXPECT_EQ(tooLong.status, 3);
    EXPECT_NE(tooLong.out.find("rolls"), std::string::npos);
}

}  // namespace
