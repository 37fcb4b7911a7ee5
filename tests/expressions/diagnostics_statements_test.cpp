// Blanks, labels, definitions and statements in the diagnostics table.

#include <string>
#include <vector>

#include "expressions/diagnostics_cases.h"

namespace talvex::language::testing {
namespace {

// Blanks are removed before reading, which joins numbers; a number alone must stand alone.
const std::vector<DiagnosisCase> kBlanks = {
    DiagnosisCase{
        "NumberAfterDice",
        "1d20 5",
        {warning(4, 5, "blanks are removed, so this reads '1d205'", fix(4, 5, "+", "to add them"))},
        "blanks are removed, so this reads '1d205'; to add them write 1d20+5",
        true},
    DiagnosisCase{"DiceAfterDice",
                  "1d6 1d6",
                  {warning(3, 4, "blanks are removed, so this reads '1d61d6'",
                           fix(3, 4, "+", "to add them"))},
                  nullptr,
                  true},
    DiagnosisCase{"DiceOnTwoLines",
                  "1d6\n1d4",
                  {warning(3, 4, "blanks are removed, so this reads '1d61d4'",
                           fix(3, 4, "+", "to add them"))},
                  nullptr,
                  true},
    DiagnosisCase{
        "InsideALoneNumber", "1 5", {error(0, 3, "a plain number cannot have blanks inside it")}},
    DiagnosisCase{"BeforeALoneNumber",
                  " 5",
                  {error(1, 2, "a plain number cannot have blanks around it", fix(0, 2, "5"))},
                  "a plain number cannot have blanks around it; write 5",
                  true},
    DiagnosisCase{"AfterALoneNumber",
                  "5\n",
                  {error(0, 1, "a plain number cannot have blanks around it", fix(0, 2, "5"))},
                  nullptr,
                  true},
    DiagnosisCase{"CountAndLetterAreFine", "3 d6", {}},
    DiagnosisCase{"AroundOperatorsAreFine", "1d20 + 5", {}},
    DiagnosisCase{"AfterCommaAreFine", "max(1d6, 1d6)", {}},
    DiagnosisCase{"PlainNumberIsFine", "2.5", {}},
};

// The label before the first ':' and what it takes with it.
const std::vector<DiagnosisCase> kLabels = {
    DiagnosisCase{
        "SwallowsDefinitions",
        "a=1d6; Attack: a+a",
        {error(0, 13, "everything before ':' is only a name, so the definitions in it are left out",
               fix(0, 14, "Attack: a=1d6;", "to keep the definitions"))},
        "everything before ':' is only a name, so the definitions in it are left out; to keep the "
        "definitions write Attack: a=1d6; a+a",
        true},
    DiagnosisCase{
        "SwallowsUnusedDefinition",
        "a=1d6; Attack: 2d6",
        {warning(0, 13,
                 "everything before ':' is only a name, so the definitions in it are left out",
                 fix(0, 14, "Attack: a=1d6;", "to keep the definitions"))},
        nullptr,
        true},
    DiagnosisCase{"HoldsDice",
                  "1d20+5: 2d6",
                  {warning(0, 6, "'1d20+5' before ':' is only a name and is not rolled")}},
    DiagnosisCase{"SecondLabel",
                  "a:b:2d6",
                  {warning(3, 4, "everything before this second ':' is left out too")}},
    DiagnosisCase{
        "SecondLabelBeforeNumber",
        "a:b:5",
        {error(3, 4,
               "everything before this second ':' is left out, and '5' is not read on its own",
               fix(4, 5, "(5)"))},
        nullptr,
        true},
    DiagnosisCase{
        "BeforeANumber",
        "Attack: 5",
        {error(8, 9, "a plain number cannot have a name before ':'",
               fix(8, 9, "(5)", "to keep the name"))},
        "a plain number cannot have a name before ':'; to keep the name write Attack: (5)",
        true},
    DiagnosisCase{"ChangesNotation",
                  "Shield: 2c6",
                  {warning(8, 11, "because the name before ':' holds 'd', '2c6' is rolled as '2d6'",
                           fix(8, 11, "(2c6)", "to roll 2c6"))},
                  "because the name before ':' holds 'd', '2c6' is rolled as '2d6'; to roll 2c6 "
                  "write Shield: (2c6)",
                  true},
    DiagnosisCase{"CapitalLetterInLabelIsFine", "Damage: 2c6", {}},
    DiagnosisCase{
        "ChangesHundredsNotation",
        "Velocity: 2w50",
        {warning(10, 14, "because the name before ':' holds 'c', '2w50' is rolled as '2c50'",
                 fix(10, 14, "(2w50)", "to roll 2w50"))},
        nullptr,
        true},
    DiagnosisCase{"PlainLabelIsFine", "Attack: 1d20+5", {}},
    DiagnosisCase{"DefinitionsAfterLabelAreFine", "Attack: a=1d6; a+a", {}},
    DiagnosisCase{"GroupedNotationIsFine", "Damage: (2c6)", {}},
    DiagnosisCase{"GroupedNumberIsFine", "Attack: (5)", {}},
    DiagnosisCase{"NumberInLabelIsFine", "Round 2: 3d6", {}},
};

// Definitions never used, replaced, defined through themselves, or written into other
// words; using a name before its definition is harmless, since definitions are written out
// until nothing changes.
const std::vector<DiagnosisCase> kDefinitions = {
    DiagnosisCase{"NeverUsed",
                  "a=1d6;2d6",
                  {warning(0, 1, "'a' is defined but never used")},
                  "'a' is defined but never used"},
    DiagnosisCase{"HardNeverUsed", "a~1d6;2d6", {warning(0, 1, "'a' is defined but never used")}},
    DiagnosisCase{"DefinedTwice",
                  "a=1d6;a=1d8;a",
                  {warning(0, 1, "'a' is defined again later; only the last definition counts")},
                  "'a' is defined again later; only the last definition counts"},
    DiagnosisCase{"ThroughItself",
                  "a=a+1;a",
                  {error(0, 1, "'a' is defined through itself, so it never gets a value")},
                  "'a' is defined through itself, so it never gets a value"},
    DiagnosisCase{"WithoutValue", "a=;a", {error(0, 1, "'a' is given no value")}},
    DiagnosisCase{"WithoutName",
                  "=1d6;1d6",
                  {warning(0, 1, "a definition needs a name before '='; this one is left out")}},
    DiagnosisCase{"DiceLetterAsName",
                  "d=1d6;d+d",
                  {warning(3, 4,
                           "the name 'd' is also replaced inside '1d6'"
                           ": give it a name that appears nowhere else in the text")},
                  "the name 'd' is also replaced inside '1d6': give it a name that appears nowhere "
                  "else in the text"},
    DiagnosisCase{
        "NameInsideDice",
        "c=2;5c7+c",
        {warning(5, 6,
                 "the name 'c' is also replaced inside '5c7': give it a name that appears "
                 "nowhere else in the text")}},
    DiagnosisCase{"NameBeforeDigits",
                  "x=3;x2",
                  {warning(4, 5,
                           "the name 'x' is also replaced inside 'x2': give it a name that appears "
                           "nowhere else in the text")}},
    DiagnosisCase{"FunctionAsName",
                  "max=3;max+1",
                  {warning(0, 3, "'max' is a function; this definition replaces it everywhere")}},
    DiagnosisCase{"ConstantAsName",
                  "pi=3;pi*2",
                  {warning(0, 2, "'pi' is a constant; this definition replaces it everywhere")}},
    DiagnosisCase{"UsedTwiceIsFine", "a=1d6;a+a", {}},
    DiagnosisCase{"HardUsedTwiceIsFine", "a~1d6;a+a", {}},
    DiagnosisCase{"UsedBeforeItsDefinitionIsFine", "b=a;a=1d6;b", {}},
    DiagnosisCase{"HardUsedBeforeItsDefinitionIsFine", "b~a;a~1d6;a+b", {}},
    DiagnosisCase{"NumberBeforeNameIsFine", "x=3;2x", {}},
    DiagnosisCase{"DiceLetterNameOutsideDiceIsFine", "d=5;d+d", {}},
};

// Pieces before ';' that define nothing, and what must follow the last ';'.
const std::vector<DiagnosisCase> kStatements = {
    DiagnosisCase{"NoDefinitionBeforeSemicolon",
                  "1d6;1d6",
                  {warning(0, 3, "'1d6' before ';' is no definition and is left out")},
                  "'1d6' before ';' is no definition and is left out"},
    DiagnosisCase{
        "DoubleEquals",
        "a==1d6;a",
        {warning(0, 6, "this definition has more than one '=' and is left out", fix(1, 3, "=")),
         error(7, 8, "'a' is not a known function or name")},
        nullptr,
        true},
    DiagnosisCase{"NothingAfterSemicolon",
                  "3d6;",
                  {error(3, 4, "nothing to roll follows the last ';'", fix(3, 4, ""))},
                  "nothing to roll follows the last ';'; write 3d6",
                  true},
    DiagnosisCase{"NothingAfterSemicolons",
                  "3d6;;",
                  {error(4, 5, "nothing to roll follows the last ';'", fix(3, 5, ""))},
                  nullptr,
                  true},
    DiagnosisCase{
        "OnlyADefinition", "a=1d6;", {error(5, 6, "nothing to roll follows the last ';'")}},
    DiagnosisCase{"DefinitionWithoutSemicolon",
                  "a=1d6",
                  {error(1, 2, "a definition needs ';' and then what to roll",
                         fix(5, 5, ";a", "to roll it"))},
                  "a definition needs ';' and then what to roll; to roll it write a=1d6;a",
                  true},
    DiagnosisCase{
        "NumberAfterSemicolon",
        "a=1;5",
        {error(4, 5, "a plain number after ';' is not read on its own", fix(4, 5, "(5)"))},
        "a plain number after ';' is not read on its own; write a=1;(5)",
        true},
    DiagnosisCase{"SemicolonInParentheses",
                  "1+max(a=1d6;a,2)",
                  {error(11, 12, "';' cannot stand inside parentheses")}},
    DiagnosisCase{"TildeOutsideDefinition",
                  "1d6~2",
                  {error(3, 4, "'~' is only for definitions such as a~1d6")}},
    DiagnosisCase{"EmptyFirstStatementIsFine", ";3d6", {}},
    DiagnosisCase{"NumberAfterUnusedHardDefinition",
                  "a~1;5",
                  {warning(0, 1, "'a' is defined but never used")}},
    DiagnosisCase{"GroupedNumberAfterSemicolonIsFine",
                  "a=1;(5)",
                  {warning(0, 1, "'a' is defined but never used")}},
};

INSTANTIATE_TEST_SUITE_P(Blanks, Diagnosis, ::testing::ValuesIn(kBlanks), caseName);
INSTANTIATE_TEST_SUITE_P(Labels, Diagnosis, ::testing::ValuesIn(kLabels), caseName);
INSTANTIATE_TEST_SUITE_P(Definitions, Diagnosis, ::testing::ValuesIn(kDefinitions), caseName);
INSTANTIATE_TEST_SUITE_P(Statements, Diagnosis, ::testing::ValuesIn(kStatements), caseName);

}  // namespace
}  // namespace talvex::language::testing
