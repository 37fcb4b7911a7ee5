#include "cli/language_help.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/exit_status.h"
#include "cli/finding_output.h"
#include "expressions/diagnostics.h"

namespace talvex::cli {

namespace {

struct HelpLine {
    std::string_view term;
    std::string_view description;
};

// The notations the dice kind reads, in the order it looks for their letters; "e" shares
// their precedence, so it is listed with them to say that it is no die.
constexpr std::array<HelpLine, 6> kDiceLetters = {{
    {"XdY", "the sum of X dice with faces 1 to Y"},
    {"XcY", "successes among X tries that each succeed Y times in 10 (always when Y >= 10)"},
    {"XpY", "successes among X tries that each succeed Y times in 100 (always when Y >= 100)"},
    {"XvY", "the sum of X ten-sided dice whose faces above Y count 0 (Y above 10 counts as 10)"},
    {"XwY",
     "the sum of X hundred-sided dice whose faces above Y count 0 (Y above 100 counts as 100)"},
    {"XeY", "no die: X times ten to the power Y (1e3 is 1000), binding as tightly as the dice"},
}};

// In the order the parser knows them.
constexpr std::array<HelpLine, 7> kComparators = {{
    {"vs", "who is highest; a tie's chance is shared equally among the tied (no code 0)"},
    {"vt", "who is highest, and 0 for a tie for the highest value"},
    {"tt", "who ties for the highest: 8, then a digit per operand, 1 if in the tie (800: none)"},
    {"ch", "1 if the first is highest, else 0; a tie counts as 1 for the first's share, as in vs"},
    {"cw", "1 if the first is highest, else 0; a tie for the highest that includes it gives 1"},
    {"cl", "1 if the first is highest, else 0; any tie for the highest gives 0"},
    {"cu", "1 if the first is highest, else 0; any tie for the highest is undefined"},
}};

template <std::size_t N>
std::string lines(const std::array<HelpLine, N>& entries, std::size_t column) {
    std::string text;
    for (const HelpLine& entry : entries) {
        std::string line = "  ";
        line += entry.term;
        line.resize(std::max(line.size() + 1, column), ' ');
        line += entry.description;
        text += line + '\n';
    }
    return text;
}

}  // namespace

std::string diceLetterHelpText() {
    return "Dice letters (X and Y may be any expression: fractions are rounded, 2.5d6 is 3d6, and\n"
           "a random X or Y mixes the dice of each of its outcomes, as in (1d4)d6):\n" +
           lines(kDiceLetters, 8);
}

std::string comparatorHelpText() {
    return "Comparisons (A vs B vs C compares all three at once; two kinds at one level, as in\n"
           "A vs B vt C, are undefined). The outcomes are codes, which --legend names: 1 = the\n"
           "first operand is highest (or succeeds), -1 = the second is, -2 = the third, ...;\n"
           "undefined with the chance that some operand is undefined.\n" +
           lines(kComparators, 8);
}

std::string statisticsHelpText() {
    return "Where the numbers differ from a textbook's:\n"
           "  The median is the middle of the distinct outcomes, whatever their chances:\n"
           "    die(1,2,100,100,100) has median 2.\n"
           "  Undefined outcomes count in the divisor of the mean, the variance and the\n"
           "    deviations: die(1/0,4) has mean 2.\n"
           "  vs shares each tie among the tied operands, half and half between two.\n"
           "  The third column of the table is the running total of the chances, in the order\n"
           "    printed (descending by default: the chance of that outcome or more).\n";
}

std::string diagnosticsHelpText() {
    // The example is the pass's own finding, so that it reads as the program writes it.
    constexpr std::string_view kExample = "1d20+5>=15";
    return "Diagnostics: each expression is looked over for likely mistakes before it is\n"
           "calculated, and each finding is a line on standard error before its result:\n  " +
           findingLines(kExample, kExample, language::diagnose(kExample), false) +
           "The column counts characters of the text as typed. When standard error is a\n"
           "terminal, the text follows with a caret line under the finding. An error is a text\n"
           "whose result is undefined or not what was meant (exit status 4); a warning, one\n"
           "whose result may not be the one meant. The result is printed either way.\n";
}

std::string exitStatusHelpText() {
    std::string text = "Exit status:\n";
    for (const ExitStatus& status : kExitStatuses) {
        std::string line = "  " + std::to_string(status.status);
        line.resize(7, ' ');
        line += status.meaning;
        text += line + '\n';
    }
    text += "  When several apply, the first of";
    const char* separator = " ";
    for (const int status : kExitPrecedence) {
        text += separator + std::to_string(status);
        separator = ", ";
    }
    return text + " is given.\n";
}

}  // namespace talvex::cli
