// What talvex-cli writes to a terminal: the rolls on their own and beside a report, typed text
// made safe, and colours that read on dark and light backgrounds.

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"
#include "cli/terminal_output.h"

namespace {

using talvex::cli::testing::CliRun;
using talvex::cli::testing::jsonLines;
using talvex::cli::testing::run;

constexpr const char* kReplacement = "\xEF\xBF\xBD";

std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    std::istringstream stream(line);
    std::string word;
    while (stream >> word) {
        words.push_back(word);
    }
    return words;
}

// --- Rolls -------------------------------------------------------------------------------------

TEST(CliRolls, AloneTheyAreOneLineOfNumbersAndNothingElse) {
    const CliRun result = run({"--seed", "3", "--rolls", "7", "1d6"});
    ASSERT_EQ(result.status, 0);
    ASSERT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    ASSERT_EQ(result.out.back(), '\n');
    const auto words = wordsOf(result.out);
    ASSERT_EQ(words.size(), 7U);
    for (const std::string& word : words) {
        ASSERT_EQ(word.size(), 1U) << word;
        EXPECT_GE(word[0], '1');
        EXPECT_LE(word[0], '6');
    }
    // No escape sequence either, even with colours on.
    const CliRun coloured = run({"--color=always", "--seed", "3", "--rolls", "7", "1d6"});
    EXPECT_EQ(coloured.out, result.out);
}

TEST(CliRolls, AloneOneLinePerExpression) {
    const CliRun result = run({"--seed", "3", "--rolls", "4", "1d6", "2d6", "nothing"});
    // The unknown name is an error finding.
    ASSERT_EQ(result.status, 4);
    std::istringstream stream(result.out);
    std::string line;
    std::vector<std::string> lines;
    while (std::getline(stream, line)) {
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 3U);
    for (const std::string& each : lines) {
        EXPECT_EQ(wordsOf(each).size(), 4U) << each;
    }
    EXPECT_EQ(lines[2], "undefined undefined undefined undefined");
}

TEST(CliRolls, BesideAReportTheyAreLabelled) {
    const CliRun alone = run({"--seed", "3", "--rolls", "3", "1d6"});
    const CliRun table = run({"--color=never", "--table", "1d6"});
    const CliRun both = run({"--color=never", "--seed", "3", "--rolls", "3", "--table", "1d6"});
    ASSERT_EQ(both.status, 0);
    // The same rolls, labelled, then the report unchanged.
    EXPECT_EQ(both.out, "rolls: " + alone.out + table.out);
    // A report chosen through the options counts as one.
    const CliRun titled =
        run({"--color=never", "--seed", "3", "--rolls", "3", "--option", "title=yes", "1d6"});
    EXPECT_EQ(titled.out, "rolls: " + alone.out + "1d6\n\n");
}

TEST(CliRolls, TheRollSectionBesideAnotherIsLabelled) {
    const CliRun table = run({"--color=never", "--table", "1d6"});
    const CliRun both = run({"--color=never", "--seed", "9", "--roll", "--table", "1d6"});
    ASSERT_EQ(both.status, 0);
    ASSERT_EQ(both.out.rfind(table.out, 0), 0U);
    const std::string roll = both.out.substr(table.out.size());
    ASSERT_EQ(roll.size(), 11U) << roll;
    EXPECT_EQ(roll.rfind("ROLL:   ", 0), 0U) << roll;
    EXPECT_GE(roll[8], '1');
    EXPECT_LE(roll[8], '6');
    EXPECT_EQ(roll.substr(9), "\n\n");

    const CliRun diagram = run({"--color=never", "--seed", "9", "--roll", "--diagram", "1d2"});
    EXPECT_NE(diagram.out.find("\nROLL:   "), std::string::npos);
    const CliRun rolls = run({"--color=never", "--seed", "9", "--rolls", "2", "--roll", "1d6"});
    EXPECT_NE(rolls.out.find("\nROLL:   "), std::string::npos);
    EXPECT_EQ(rolls.out.rfind("rolls: ", 0), 0U);
    // Asked to leave the heading out, it does.
    const CliRun plain = run({"--color=never", "--seed", "9", "--roll", "--table", "--option",
                              "roll heading=no", "1d6"});
    EXPECT_EQ(plain.out.find("ROLL"), std::string::npos);
}

// --- Typed text on a terminal ----------------------------------------------------------------

// Whether the bytes are valid UTF-8 without a control character other than tab and line feed,
// nor (when `sgrAllowed`) any escape sequence but the colour ones (ESC [ digits and ; m).
bool onlySafeText(const std::string& text, bool sgrAllowed, std::string& problem) {
    static const std::regex kSgr("^\x1b\\[[0-9;]*m");
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == 0x1b && sgrAllowed) {
            std::smatch match;
            const std::string rest = text.substr(i, 32);
            if (!std::regex_search(rest, match, kSgr)) {
                problem = "an escape sequence at " + std::to_string(i);
                return false;
            }
            i += static_cast<std::size_t>(match.length());
            continue;
        }
        if ((byte < 0x20 && byte != '\t' && byte != '\n') || byte == 0x7f) {
            problem = "control byte " + std::to_string(byte) + " at " + std::to_string(i);
            return false;
        }
        std::size_t length = 1;
        if (byte >= 0x80) {
            length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC2 ? 2 : 0;
            if (length == 0 || i + length > text.size()) {
                problem = "bad UTF-8 at " + std::to_string(i);
                return false;
            }
            for (std::size_t k = 1; k < length; ++k) {
                if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) {
                    problem = "bad UTF-8 at " + std::to_string(i);
                    return false;
                }
            }
            if (byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0) {
                problem = "C1 control at " + std::to_string(i);
                return false;
            }
        }
        i += length;
    }
    return true;
}

// A title and every free text of the report with escape sequences, bell, delete, C1 controls
// (as UTF-8 and as the raw byte), a carriage return and a byte that is no UTF-8; the last
// expression is defined, so that its table draws bars.
std::vector<std::string> hostileArguments() {
    return {"--option",
            "title=yes",
            "--table",
            "--legend",
            "--option",
            "header=\x1b]0;owned\x07\x1b[2J",
            "--option",
            "footer=\x1b[31mred\r\x9b"
            "1m",
            "--option",
            "bar string=\x1b[5m#",
            "1d6\x07\x1b[2J\x7f\xC2\x9B\x9B\r+1",
            "Duel: 1d6 vs 1d4\x1b[8m",
            "2d2"};
}

TEST(CliTerminalText, ControlCharactersInTypedTextArePrintedAsReplacementCharacters) {
    for (const char* colour : {"--color=never", "--color=always"}) {
        std::vector<std::string> arguments = {colour};
        const auto hostile = hostileArguments();
        arguments.insert(arguments.end(), hostile.begin(), hostile.end());
        const CliRun result = run(arguments);
        // The controls in the expressions are error findings.
        ASSERT_EQ(result.status, 4) << colour;
        std::string problem;
        EXPECT_TRUE(onlySafeText(result.out, colour == std::string("--color=always"), problem))
            << colour << ": " << problem;
        // What was typed is still there to read, its controls replaced.
        EXPECT_NE(result.out.find(std::string(kReplacement) + "]0;owned" + kReplacement),
                  std::string::npos)
            << colour;
        EXPECT_NE(result.out.find(std::string(kReplacement) + "[5m#"), std::string::npos);
    }
    const CliRun plain = run({"--color=never", "--option", "title=yes", "--statistics",
                              "1d6\x07\x1b[2J\x7f\xC2\x9B\x9B\r+1"});
    // The title: bell, ESC, DEL, the two C1 forms each replaced (the carriage return is a
    // blank, which the calculator drops from the text).
    const std::string r = kReplacement;
    EXPECT_EQ(plain.out.substr(0, plain.out.find('\n')), "1d6" + r + r + "[2J" + r + r + r + "+1");
}

TEST(CliTerminalText, ErrorMessagesNameTheTextSafely) {
    const CliRun errors = run({"X\x1b[2J\x07: 400d6"}, "", true);
    EXPECT_EQ(errors.status, 3);
    std::string problem;
    EXPECT_TRUE(onlySafeText(errors.out, false, problem)) << problem;
    EXPECT_NE(errors.out.find(std::string("X") + kReplacement + "[2J" + kReplacement + ": 400d6"),
              std::string::npos)
        << errors.out;
    const CliRun option = run({"--option", "tab\x1b[2Jle=no", "1d6"}, "", true);
    EXPECT_EQ(option.status, 2);
    EXPECT_TRUE(onlySafeText(option.out, false, problem)) << problem;
}

TEST(CliTerminalText, JsonStillEscapesControlCharacters) {
    const CliRun result = run({"--json", "1d6\x1b[2J"});
    ASSERT_EQ(result.status, 4);
    EXPECT_EQ(result.out.find('\x1b'), std::string::npos);
    EXPECT_NE(result.out.find("\\u001b"), std::string::npos);
    EXPECT_EQ(jsonLines(result.out).front()["expression"], "1d6\x1b[2J");
}

TEST(CliTerminalText, TerminalSafeKeepsLayoutOnlyWhereAsked) {
    using talvex::cli::terminalSafe;
    const std::string r = kReplacement;
    EXPECT_EQ(terminalSafe("3d6 + 2", false), "3d6 + 2");
    EXPECT_EQ(terminalSafe("a\tb\nc", true), "a\tb\nc");
    EXPECT_EQ(terminalSafe("a\tb\nc", false), "a" + r + "b" + r + "c");
    EXPECT_EQ(terminalSafe("\x1b[31mred", true), r + "[31mred");
    EXPECT_EQ(terminalSafe(std::string("nul\0here", 8), true), "nul" + r + "here");
    EXPECT_EQ(terminalSafe("\r\x7f", true), r + r);
    // C1 controls as UTF-8, and the raw byte that is no UTF-8.
    EXPECT_EQ(terminalSafe("\xC2\x9B"
                           "1m",
                           true),
              r + "1m");
    EXPECT_EQ(terminalSafe("\x9B"
                           "1m",
                           true),
              r + "1m");
    // Other text outside ASCII passes: no-break space, é, the euro sign, an emoji.
    const std::string wide = "\xC2\xA0\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    EXPECT_EQ(terminalSafe(wide, false), wide);
    // Truncated, overlong and surrogate forms are no UTF-8: a replacement per byte.
    EXPECT_EQ(terminalSafe("\xE2\x82", true), r + r);
    EXPECT_EQ(terminalSafe("\xC0\xAF", true), r + r);
    EXPECT_EQ(terminalSafe("\xED\xA0\x80", true), r + r + r);
}

// --- Colours -------------------------------------------------------------------------------------

struct Rgb {
    int red;
    int green;
    int blue;
};

// Every 24-bit foreground that the text sets.
std::vector<Rgb> foregrounds(const std::string& text) {
    static const std::regex kForeground("\x1b\\[38;2;([0-9]+);([0-9]+);([0-9]+)m");
    std::vector<Rgb> colours;
    for (auto it = std::sregex_iterator(text.begin(), text.end(), kForeground);
         it != std::sregex_iterator(); ++it) {
        colours.push_back({std::stoi((*it)[1]), std::stoi((*it)[2]), std::stoi((*it)[3])});
    }
    return colours;
}

TEST(CliColours, NoBlackOrDarkGreyForegroundButTheTerminalsOwn) {
    const CliRun result = run({"--color=always",
                               "--statistics",
                               "--table",
                               "--diagram",
                               "--legend",
                               "--roll",
                               "--option",
                               "title=yes",
                               "--option",
                               "statistics heading=yes",
                               "--option",
                               "table heading=yes",
                               "--option",
                               "table total=yes",
                               "--option",
                               "legend heading=yes",
                               "--option",
                               "include undefined in statistics=yes",
                               "--option",
                               "time stamp=yes",
                               "Duel: 2d6 vt 1d12 vt 7",
                               "1d4/(1d3-1)"});
    ASSERT_EQ(result.status, 0);
    const auto colours = foregrounds(result.out);
    ASSERT_FALSE(colours.empty());
    for (const Rgb& c : colours) {
        const int lightest = std::max({c.red, c.green, c.blue});
        const int darkest = std::min({c.red, c.green, c.blue});
        // Black, and greys up to a quarter of white, would vanish on a dark background.
        EXPECT_FALSE(lightest <= 64 && lightest - darkest <= 16)
            << c.red << ";" << c.green << ";" << c.blue;
    }
    // Nor by a 256-colour index.
    EXPECT_EQ(result.out.find("\x1b[38;5;"), std::string::npos);
    EXPECT_EQ(result.out.find("\x1b[30m"), std::string::npos);
    // The title, the statistics and the percent signs are in the default foreground.
    EXPECT_NE(result.out.find("\x1b[39m2d6vt1d12vt7\x1b[0m"), std::string::npos);
    EXPECT_NE(result.out.find("\x1b[39m%"), std::string::npos);
}

TEST(CliColours, OtherColoursAreUnchanged) {
    const CliRun result = run({"--color=always", "--statistics", "--table", "--option",
                               "statistics heading=yes", "1d4/(1d3-1)"});
    ASSERT_EQ(result.status, 0);
    // The item and bar blue, the weight green, and the dark green and red of the running
    // weights, which are colours rather than greys.
    for (const char* sequence : {"\x1b[38;2;0;0;255mMean", "\x1b[38;2;38;255;0m",
                                 "\x1b[38;2;10;64;0m", "\x1b[38;2;64;0;0m", "\x1b[38;2;128;0;0m"}) {
        EXPECT_NE(result.out.find(sequence), std::string::npos) << sequence + 1;
    }
    // The heading's dark grey is the terminal's own.
    EXPECT_NE(result.out.find("\x1b[39mSTATISTICS:\x1b[0m"), std::string::npos);
}

TEST(CliColours, NearBlackIsBlackAndTheDarkGreys) {
    using talvex::core::Color;
    EXPECT_TRUE(talvex::cli::isNearBlack(Color{0, 0, 0}));
    EXPECT_TRUE(talvex::cli::isNearBlack(Color::grey(0.2)));
    EXPECT_TRUE(talvex::cli::isNearBlack(Color::grey(0.25)));
    EXPECT_TRUE(talvex::cli::isNearBlack(Color::hsb(0, 0, 0.25)));
    EXPECT_FALSE(talvex::cli::isNearBlack(Color::grey(0.5)));
    EXPECT_FALSE(talvex::cli::isNearBlack(Color{0, 0, 255}));
    EXPECT_FALSE(talvex::cli::isNearBlack(Color::hsb(0, 1, 0.25)));
    EXPECT_FALSE(talvex::cli::isNearBlack(Color::hsb(111, 1, 0.25)));
}

}  // namespace
