// Characters, parentheses and operators in the diagnostics table.

#include <string>
#include <vector>

#include "expressions/diagnostics_cases.h"

namespace talvex::language::testing {
namespace {

// Characters that are no part of the language, typographic look-alikes with their ASCII
// form, comments, and the near misses: a '#' inside the label, a comment before a ';' that
// the language drops with its statement anyway.
const std::vector<DiagnosisCase> kCharacters = {
    DiagnosisCase{
        "GreaterThanOrEqual",
        "1d20+5>=15",
        {error(6, 7, "'>' is not part of the language", fix(6, 8, " cw ", "for \"at least\""))},
        "'>' is not part of the language; for \"at least\" write 1d20+5 cw 15",
        true},
    DiagnosisCase{"ExclamationAfterDice",
                  "1d6!",
                  {error(3, 4, "'!' is not part of the language: there are no exploding dice")},
                  "'!' is not part of the language: there are no exploding dice"},
    DiagnosisCase{"TypographicMinus",
                  "3d6\xE2\x88\x92"
                  "2",
                  {error(3, 6, "'\xE2\x88\x92' is not part of the language", fix(3, 6, "-"))},
                  "'\xE2\x88\x92' is not part of the language; write 3d6-2",
                  true},
    DiagnosisCase{"MultiplicationSign",
                  "3d6\xC3\x97"
                  "2",
                  {error(3, 5, "'\xC3\x97' is not part of the language", fix(3, 5, "*"))},
                  nullptr,
                  true},
    DiagnosisCase{"DivisionSign",
                  "1d6\xC3\xB7"
                  "2",
                  {error(3, 5, "'\xC3\xB7' is not part of the language", fix(3, 5, "/"))},
                  nullptr,
                  true},
    DiagnosisCase{"EnDashWithBlanks",
                  "1d6 \xE2\x80\x93 1",
                  {error(4, 7, "'\xE2\x80\x93' is not part of the language", fix(4, 7, "-"))},
                  nullptr,
                  true},
    DiagnosisCase{"CommentLine",
                  "# comment\n3d6",
                  {error(0, 9, "there are no comments: '# comment' is read as part of the roll",
                         fix(0, 10, ""))},
                  "there are no comments: '# comment' is read as part of the roll; write 3d6",
                  true},
    DiagnosisCase{"CommentAfterRoll",
                  "3d6 # bonus",
                  {error(4, 11, "there are no comments: '# bonus' is read as part of the roll",
                         fix(3, 11, ""))},
                  nullptr,
                  true},
    DiagnosisCase{
        "CommentAlone",
        "# just a note",
        {error(0, 13, "there are no comments: '# just a note' is read as part of the roll")}},
    DiagnosisCase{"HashInsideText", "1d6#", {error(3, 4, "'#' is not part of the language")}},
    DiagnosisCase{"Percent", "1d6%2", {error(3, 4, "'%' is not part of the language")}},
    DiagnosisCase{"PercentileDie",
                  "1d%",
                  {error(2, 3, "'%' is not part of the language",
                         fix(2, 3, "100", "for a hundred-sided die"))},
                  "'%' is not part of the language; for a hundred-sided die write 1d100",
                  true},
    DiagnosisCase{"Ampersand", "1d6&2", {error(3, 4, "'&' is not part of the language")}},
    DiagnosisCase{"SquareBrackets",
                  "max[1,2]",
                  {error(3, 4, "'[' is not part of the language", fix(3, 4, "(")),
                   error(7, 8, "']' is not part of the language", fix(7, 8, ")"))}},
    DiagnosisCase{
        "NoBreakSpace",
        "1d6\xC2\xA0+2",
        {error(3, 5, "this special blank is not removed like an ordinary one", fix(3, 5, " "))},
        nullptr,
        true},
    DiagnosisCase{
        "InvalidBytes",
        "1d6\xFF",
        {error(3, 4, "bytes that are no character are not part of the language", fix(3, 4, ""))},
        nullptr,
        true},
    DiagnosisCase{
        "ByteOrderMark",
        "\xEF\xBB\xBF"
        "3d6",
        {error(0, 3, "an invisible character is not part of the language", fix(0, 3, ""))},
        nullptr,
        true},
    DiagnosisCase{"DollarSign", "$3d6", {error(0, 1, "'$' is not part of the language")}},
    DiagnosisCase{"HashInLabelIsFine", "# Attack: 1d20", {}},
    DiagnosisCase{"CommentBeforeSemicolonIsDropped",
                  "3d6 # x;2d6",
                  {warning(0, 7, "'3d6#x' before ';' is no definition and is left out")}},
    DiagnosisCase{"PlainMinusIsFine", "3d6-2", {}},
};

// Parentheses: the unmatched one is named, and closed or removed where that is clear.
const std::vector<DiagnosisCase> kParentheses = {
    DiagnosisCase{"NeverClosed",
                  "(1d6",
                  {error(0, 1, "'(' is never closed", fix(4, 4, ")"))},
                  "'(' is never closed; write (1d6)",
                  true},
    DiagnosisCase{"NoMatchingOpen",
                  "1d6)",
                  {error(3, 4, "')' has no matching '('", fix(3, 4, ""))},
                  "')' has no matching '('; write 1d6",
                  true},
    DiagnosisCase{"CallNeverClosed",
                  "max(1d6,2d6",
                  {error(3, 4, "'(' is never closed", fix(11, 11, ")"))},
                  nullptr,
                  true},
    DiagnosisCase{"OneOfEach",
                  "1d6)+(1",
                  {error(3, 4, "')' has no matching '('"), error(5, 6, "'(' is never closed")}},
    DiagnosisCase{"OpenAtTheEnd",
                  "(1d6)(",
                  {error(5, 6, "'(' is never closed", fix(5, 6, ""))},
                  nullptr,
                  true},
    DiagnosisCase{"Empty", "()", {error(0, 2, "nothing stands inside '()'")}},
    DiagnosisCase{"DoubledAreFine", "((1d6))", {}},
    DiagnosisCase{"GroupedCountIsFine", "(1d4)d6", {}},
};

// Operators with nothing on one side; signs after an operator are no mistake.
const std::vector<DiagnosisCase> kOperators = {
    DiagnosisCase{"NothingAfterPlus",
                  "3d6+",
                  {error(3, 4, "nothing follows '+'", fix(3, 4, "", "to leave it out"))},
                  "nothing follows '+'; to leave it out write 3d6",
                  true},
    DiagnosisCase{"NothingBeforeTimes", "*2", {error(0, 1, "nothing comes before '*'")}},
    DiagnosisCase{
        "DoubleStar",
        "3**2",
        {error(2, 3, "nothing stands between '*' and '*'", fix(1, 3, "^", "for a power"))},
        "nothing stands between '*' and '*'; for a power write 3^2",
        true},
    DiagnosisCase{"TimesThenDivide", "3*/2", {error(2, 3, "nothing stands between '*' and '/'")}},
    DiagnosisCase{"NothingBeforeTimesInGroup", "(*2)", {error(1, 2, "nothing comes before '*'")}},
    DiagnosisCase{"ComparatorWithoutSecond",
                  "3d6 vs",
                  {error(4, 6, "nothing follows 'vs'", fix(4, 6, "", "to leave it out"))}},
    DiagnosisCase{"ComparatorWithoutFirst", "vs 1d6", {error(0, 2, "nothing comes before 'vs'")}},
    DiagnosisCase{"ExponentAlone", "e", {error(0, 1, "'e' needs a number before it, as in 1e3")}},
    DiagnosisCase{
        "ExponentWithoutPower", "2e", {error(1, 2, "'e' needs a number after it, as in 1e3")}},
    DiagnosisCase{"SignAfterTimesIsFine", "3*-2", {}},
    DiagnosisCase{"LeadingMinusIsFine", "-1d4", {}},
    DiagnosisCase{"MinusMinusIsFine", "3--2", {}},
    DiagnosisCase{"NegativeSidesIsFine", "1d-6", {}},
};

INSTANTIATE_TEST_SUITE_P(Characters, Diagnosis, ::testing::ValuesIn(kCharacters), caseName);
INSTANTIATE_TEST_SUITE_P(Parentheses, Diagnosis, ::testing::ValuesIn(kParentheses), caseName);
INSTANTIATE_TEST_SUITE_P(Operators, Diagnosis, ::testing::ValuesIn(kOperators), caseName);

}  // namespace
}  // namespace talvex::language::testing
