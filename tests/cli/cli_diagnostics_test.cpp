// The findings of the diagnostics pass on standard error: one line each in the style of a
// compiler, the text and a caret line under it only for a terminal, the exit status 4 for an
// error finding, and standard output exactly as without them.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"
#include "cli/finding_output.h"
#include "expressions/diagnostics.h"

namespace {

using talvex::cli::testing::CliRun;
using talvex::cli::testing::linesOf;
using talvex::cli::testing::quote;
using talvex::cli::testing::run;
using talvex::cli::testing::runShell;
using talvex::language::diagnose;

// The characters of a UTF-8 text, each as its bytes.
std::vector<std::string> charactersOf(const std::string& text) {
    std::vector<std::string> characters;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0U) == 0x80U && !characters.empty()) {
            characters.back() += c;
        } else {
            characters.emplace_back(1, c);
        }
    }
    return characters;
}

// The line talvex-cli writes for the text's only finding, when it is at that column: the
// description is the language's own.
std::string findingLine(const std::string& text, const std::string& severity, int column) {
    const auto findings = diagnose(text);
    EXPECT_EQ(findings.size(), 1U) << text;
    if (findings.empty()) {
        return {};
    }
    return "talvex-cli: " + text + ": " + severity + " at " + std::to_string(column) + ": " +
           talvex::language::describe(findings.front(), text) + "\n";
}

// Runs the binary with standard error on a pseudo-terminal and standard output discarded;
// what the terminal received, and the exit status.
CliRun runAtTerminal(const std::vector<std::string>& arguments) {
    CliRun result;
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
        return result;
    }
    const std::string slaveName = ptsname(master);
    const pid_t pid = fork();
    if (pid == 0) {
        const int slave = open(slaveName.c_str(), O_RDWR | O_NOCTTY);
        const int nothing = open("/dev/null", O_RDWR);
        // The line breaks as written, not turned into CR LF.
        termios settings{};
        tcgetattr(slave, &settings);
        settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        tcsetattr(slave, TCSANOW, &settings);
        dup2(nothing, STDIN_FILENO);
        dup2(nothing, STDOUT_FILENO);
        dup2(slave, STDERR_FILENO);
        close(master);
        std::vector<std::string> words = {TALVEX_CLI_PATH};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        execv(argv.front(), argv.data());
        _exit(127);
    }
    std::array<char, 4096> buffer{};
    while (pid > 0) {
        const ssize_t n = read(master, buffer.data(), buffer.size());
        if (n > 0) {
            result.out.append(buffer.data(), static_cast<std::size_t>(n));
        } else if (n == 0 || errno != EINTR) {
            // EIO once the program has ended and closed the terminal.
            break;
        }
    }
    close(master);
    int status = 0;
    if (pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status)) {
        result.status = WEXITSTATUS(status);
    }
    return result;
}

// Standard output and standard error together, in the order they were written.
CliRun runMerged(const std::vector<std::string>& arguments) {
    std::string command = quote(TALVEX_CLI_PATH);
    for (const auto& argument : arguments) {
        command += " " + quote(argument);
    }
    command += " </dev/null 2>&1";
    return runShell(command);
}

// Every caret line stands under a line of text; the character above its '^' is `first`.
void expectCaretUnder(const std::string& textLine, const std::string& caretLine,
                      const std::string& first) {
    const auto caret = caretLine.find('^');
    ASSERT_NE(caret, std::string::npos) << caretLine;
    EXPECT_EQ(caretLine.find_first_not_of(' '), caret) << caretLine;
    const auto characters = charactersOf(textLine);
    ASSERT_LT(caret, characters.size()) << textLine;
    EXPECT_EQ(characters[caret], first) << textLine << "\n" << caretLine;
}

TEST(CliDiagnostics, ValidTextsExitWithZeroAndSayNothing) {
    const std::vector<std::string> texts = {
        "3d6",         "1d20+5",       "Attack: 1d20+5", "max(1d20,1d20)",
        "2d6 vs 1d12", "1d20+5 cw 15", "a=1d6;a+a"};
    const CliRun errors = run(texts, "", true);
    EXPECT_EQ(errors.status, 0);
    EXPECT_EQ(errors.out, "");
    std::string input;
    for (const auto& text : texts) {
        input += text + "\n";
    }
    const CliRun fromInput = run({}, input, true);
    EXPECT_EQ(fromInput.status, 0);
    EXPECT_EQ(fromInput.out, "");
}

TEST(CliDiagnostics, AnErrorFindingExitsWithFourAndAWarningWithZero) {
    EXPECT_EQ(run({"1d20+5>=15"}).status, 4);
    EXPECT_EQ(run({"3d6", "1d20+5>=15", "2d6"}).status, 4);
    EXPECT_EQ(run({}, "3d6\n1d20+5>=15\n").status, 4);
    EXPECT_EQ(run({"--json", "1d20+5>=15"}).status, 4);
    // A warning alone leaves the status alone.
    EXPECT_EQ(run({"1d20 5"}).status, 0);
    EXPECT_EQ(run({"d=1d6;d+d"}).status, 0);
    // Without the pass there is nothing to find.
    EXPECT_EQ(run({"--no-diagnostics", "1d20+5>=15"}).status, 0);
    EXPECT_EQ(run({"--no-diagnostics", "--json", "1d20+5>=15"}).status, 0);
}

TEST(CliDiagnostics, ACalculationThatFailedWinsOverAnErrorFinding) {
    // 400d6 leaves the 38-digit range: status 3, whether the finding comes before or after it.
    EXPECT_EQ(run({"1d20+5>=15", "400d6"}).status, 3);
    EXPECT_EQ(run({"400d6", "1d20+5>=15"}).status, 3);
    EXPECT_EQ(run({"--json", "400d6+3D6"}).status, 3);
    EXPECT_EQ(run({"--no-diagnostics", "400d6", "1d20+5>=15"}).status, 3);
    // A usage error wins over both.
    EXPECT_EQ(run({"--option", "tabel=no", "1d20+5>=15", "400d6"}).status, 2);
}

TEST(CliDiagnostics, EachFindingIsOneLineInTheStyleOfACompiler) {
    // Standard error is not a terminal here: only the lines, no text and caret under them.
    const CliRun first = run({"1d20+5>=15"}, "", true);
    EXPECT_EQ(first.out,
              "talvex-cli: 1d20+5>=15: error at 7: '>' is not part of the language; for \"at "
              "least\" write 1d20+5 cw 15\n");
    struct Case {
        std::string text;
        std::string severity;
        int column;
    };
    const std::vector<Case> cases = {
        {"3D6", "error", 2},
        {"d20", "error", 1},
        {"(3d6", "error", 1},
        {"3d6+", "error", 4},
        {"Max(1d20,1d20)", "error", 1},
        {"1d20 5", "warning", 5},
        {"d=1d6;d+d", "warning", 4},
        // Columns count characters: the minus sign is three bytes, é two.
        {"3d6\u22122", "error", 4},
        {"\u00e9\u00e9: 3d6\u22122", "error", 8},
    };
    for (const Case& each : cases) {
        const CliRun errors = run({each.text}, "", true);
        EXPECT_EQ(errors.out, findingLine(each.text, each.severity, each.column)) << each.text;
    }
}

TEST(CliDiagnostics, EveryFindingOfEveryExpressionIsTold) {
    // Two findings in one text, the second past a character of three bytes.
    const CliRun errors = run({"3d6", "3d6\u22122\u22121", "d20"}, "", true);
    const auto lines = linesOf(errors.out);
    ASSERT_EQ(lines.size(), 3U) << errors.out;
    EXPECT_EQ(lines[0].rfind("talvex-cli: 3d6\u22122\u22121: error at 4: ", 0), 0U) << lines[0];
    EXPECT_EQ(lines[1].rfind("talvex-cli: 3d6\u22122\u22121: error at 6: ", 0), 0U) << lines[1];
    EXPECT_EQ(lines[2].rfind("talvex-cli: d20: error at 1: ", 0), 0U) << lines[2];
    // From standard input alike, blank lines skipped.
    const CliRun fromInput = run({}, "3D6\n\nd20\n", true);
    EXPECT_EQ(fromInput.out, findingLine("3D6", "error", 2) + findingLine("d20", "error", 1));
}

TEST(CliDiagnostics, TheFindingsComeBeforeTheirExpressionsResult) {
    const CliRun merged = runMerged({"--rolls", "1", "--seed", "1", "3D6", "1d6", "d20"});
    const auto lines = linesOf(merged.out);
    ASSERT_EQ(lines.size(), 5U) << merged.out;
    EXPECT_EQ(lines[0].rfind("talvex-cli: 3D6: error", 0), 0U) << merged.out;
    EXPECT_EQ(lines[1], "undefined") << merged.out;
    EXPECT_EQ(lines[3].rfind("talvex-cli: d20: error", 0), 0U) << merged.out;
    EXPECT_EQ(lines[4], "undefined") << merged.out;
}

TEST(CliDiagnostics, TypedControlsReachNoTerminal) {
    const std::string hostile = "1d6\x1b[2J\x07+1\n+X\x9b";
    const CliRun errors = run({hostile}, "", true);
    EXPECT_EQ(errors.status, 4);
    EXPECT_EQ(errors.out.find('\x1b'), std::string::npos) << errors.out;
    EXPECT_EQ(errors.out.find('\x07'), std::string::npos) << errors.out;
    // The line break of the text, and the one of the corrected text, break no line.
    const auto lines = linesOf(errors.out);
    ASSERT_FALSE(lines.empty());
    for (const std::string& line : lines) {
        EXPECT_EQ(line.rfind("talvex-cli: 1d6\xEF\xBF\xBD[2J\xEF\xBF\xBD+1\xEF\xBF\xBD+X", 0), 0U)
            << line;
    }
    const CliRun atTerminal = runAtTerminal({hostile});
    EXPECT_EQ(atTerminal.out.find('\x1b'), std::string::npos) << atTerminal.out;
    EXPECT_EQ(linesOf(atTerminal.out).size(), 3 * lines.size()) << atTerminal.out;
}

TEST(CliDiagnostics, AtATerminalTheTextAndACaretLineFollow) {
    const CliRun result = runAtTerminal({"1d20+5>=15", "Max(1d20,1d20)", "3d6"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out,
              "talvex-cli: 1d20+5>=15: error at 7: '>' is not part of the language; for \"at "
              "least\" write 1d20+5 cw 15\n"
              "  1d20+5>=15\n"
              "        ^\n" +
                  findingLine("Max(1d20,1d20)", "error", 1) +
                  "  Max(1d20,1d20)\n"
                  "  ^~~\n");
}

TEST(CliDiagnostics, TheCaretIsAlignedByCharacters) {
    const std::string text = "\u00e9\u00e9: 3d6\u22122\u22121";
    const CliRun result = runAtTerminal({text});
    const auto lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), 6U) << result.out;
    EXPECT_EQ(lines[1], "  " + text);
    EXPECT_EQ(lines[2], std::string(2 + 7, ' ') + "^");
    EXPECT_EQ(lines[5], std::string(2 + 9, ' ') + "^");
    expectCaretUnder(lines[1], lines[2], "\u2212");
    expectCaretUnder(lines[4], lines[5], "\u2212");
    // Standard error redirected: the lines alone.
    EXPECT_EQ(linesOf(run({text}, "", true).out).size(), 2U);
}

TEST(CliDiagnostics, ALongTextIsShownAroundItsFinding) {
    std::string text = "1d6";
    for (int i = 0; i < 100; ++i) {
        text += "+1";
    }
    const std::size_t at = text.size();
    text += ">=3";
    for (int i = 0; i < 100; ++i) {
        text += "+1";
    }
    const auto findings = diagnose(text);
    ASSERT_FALSE(findings.empty());
    ASSERT_EQ(findings.front().begin, at);
    const auto lines = linesOf(talvex::cli::findingLines("name", text, findings, true));
    ASSERT_EQ(lines.size(), 3 * findings.size());
    // The column counts the whole text; the window shows a hundred characters, cut on both
    // sides, with the finding near its start.
    EXPECT_EQ(lines[0].rfind("talvex-cli: name: error at " + std::to_string(at + 1) + ": ", 0), 0U)
        << lines[0];
    EXPECT_EQ(lines[1].rfind("  ...", 0), 0U) << lines[1];
    EXPECT_EQ(lines[1].substr(lines[1].size() - 3), "...") << lines[1];
    EXPECT_EQ(lines[1].size(), 2 + 3 + 100 + 3U) << lines[1];
    expectCaretUnder(lines[1], lines[2], ">");
    // Near the start of a long text nothing is cut before it.
    const std::string early = "3D6" + text.substr(3);
    const auto earlyLines =
        linesOf(talvex::cli::findingLines("name", early, diagnose(early), true));
    ASSERT_GE(earlyLines.size(), 3U);
    EXPECT_EQ(earlyLines[1].rfind("  3D6+1", 0), 0U) << earlyLines[1];
    expectCaretUnder(earlyLines[1], earlyLines[2], "D");
}

TEST(CliDiagnostics, ColumnsCountCharactersAndBadBytesOneEach) {
    const talvex::cli::CharacterColumns columns("a\u00e9\xff\u2212b");
    EXPECT_EQ(columns.count(), 5U);
    EXPECT_EQ(columns.column(0), 1U);
    EXPECT_EQ(columns.column(1), 2U);
    EXPECT_EQ(columns.column(2), 2U);
    EXPECT_EQ(columns.column(3), 3U);
    EXPECT_EQ(columns.column(4), 4U);
    EXPECT_EQ(columns.column(7), 5U);
    EXPECT_EQ(columns.column(8), 6U);
    EXPECT_EQ(columns.byteOf(3), 4U);
    EXPECT_EQ(columns.byteOf(5), 8U);
}

TEST(CliDiagnostics, StandardOutputIsTheSameWithAndWithout) {
    const std::vector<std::string> texts = {"1d20+5>=15", "3D6",         "d20",   "(3d6",
                                            "1d20 5",     "Attack: 2d6", "3d6+1", "d=1d6;d+d"};
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"--table", "--diagram"},
          std::vector<std::string>{"--seed", "9", "--rolls", "3"}}) {
        std::vector<std::string> with = options;
        with.insert(with.end(), texts.begin(), texts.end());
        std::vector<std::string> without = {"--no-diagnostics"};
        without.insert(without.end(), with.begin(), with.end());
        const CliRun told = run(with);
        const CliRun silent = run(without);
        EXPECT_FALSE(told.out.empty());
        EXPECT_EQ(told.out, silent.out);
        EXPECT_EQ(told.out.find("talvex-cli:"), std::string::npos);
        // And nothing on standard error without the pass.
        EXPECT_EQ(run(without, "", true).out, "");
    }
    std::string input;
    for (const auto& text : texts) {
        input += text + "\n";
    }
    EXPECT_EQ(run({}, input).out, run({"--no-diagnostics"}, input).out);
}

TEST(CliDiagnostics, HelpSaysWhereTheFindingsGo) {
    const std::string help = run({"--help"}).out;
    EXPECT_NE(help.find("--no-diagnostics"), std::string::npos);
    EXPECT_NE(help.find("findings go in its \"diagnostics\", not to standard error"),
              std::string::npos)
        << help;
    // Its example is what the program writes.
    const std::string example = run({"1d20+5>=15"}, "", true).out;
    ASSERT_FALSE(example.empty());
    EXPECT_NE(help.find("result:\n  " + example), std::string::npos) << help;
}

}  // namespace
