// Names, function calls and dice in the diagnostics table.

#include <string>
#include <vector>

#include "expressions/diagnostics_cases.h"

namespace talvex::language::testing {
namespace {

// Words the language does not know, with the nearest name where one is near; names that
// stand inside function names are read correctly by the language and give nothing.
const std::vector<DiagnosisCase> kNames = {
    DiagnosisCase{"CapitalisedFunction",
                  "Max(1d6,1d6)",
                  {error(0, 3, "'Max' is not a known function or name", fix(0, 3, "max"))},
                  "'Max' is not a known function or name; write max(1d6,1d6)",
                  true},
    DiagnosisCase{"UnknownFunction",
                  "explode(1d6)",
                  {error(0, 7, "'explode' is not a known function or name")},
                  "'explode' is not a known function or name"},
    DiagnosisCase{"MisspelledFunction",
                  "maxx(1d6,2)",
                  {error(0, 4, "'maxx' is not a known function or name", fix(0, 4, "max"))},
                  nullptr,
                  true},
    DiagnosisCase{
        "UnknownAbility", "1d20 + STR", {error(7, 10, "'STR' is not a known function or name")}},
    DiagnosisCase{"MisspelledDefinition",
                  "atk=1d20+5;Atk",
                  {warning(0, 3, "'atk' is defined but never used"),
                   error(11, 14, "'Atk' is not a known function or name", fix(11, 14, "atk"))}},
    DiagnosisCase{"ShortNamesAreNotSuggested",
                  "1d6 + Dex",
                  {error(6, 9, "'Dex' is not a known function or name")}},
    DiagnosisCase{
        "LetterXForTimes",
        "3 x 4",
        {error(2, 3, "'x' is not a known function or name", fix(2, 3, "*", "for multiplying"))},
        "'x' is not a known function or name; for multiplying write 3 * 4",
        true},
    DiagnosisCase{
        "FunctionWithoutParentheses", "mean 3d6", {error(0, 4, "'mean' must be followed by '('")}},
    DiagnosisCase{"BareFunctionName", "max+1", {error(0, 3, "'max' must be followed by '('")}},
    DiagnosisCase{"ConstantAfterNumberIsFine", "2pi", {}},
    DiagnosisCase{"ConstantAloneIsFine", "ex", {}},
    DiagnosisCase{"ConstantsSideBySideAreFine", "pipi", {}},
    DiagnosisCase{"NameInsideMaxIsFine", "ax=2;max(ax,1)", {}},
    DiagnosisCase{"NameInsideMinIsFine", "in=3;min(in,1)", {}},
    DiagnosisCase{"NameStartingMaxIsFine", "ma=5;max(ma,1)", {}},
    DiagnosisCase{"DefinedAbilityIsFine", "dex=2;1d20+dex", {}},
    DiagnosisCase{"FunctionAfterNumberIsFine", "2max(1,2)", {}},
};

// Function calls with too few, too many or empty values.
const std::vector<DiagnosisCase> kFunctions = {
    DiagnosisCase{"KeepWithTwoValues",
                  "keep(3d6,2)",
                  {error(0, 4, "keep needs 4 values, not 2")},
                  "keep needs 4 values, not 2"},
    DiagnosisCase{
        "KeepWithEmptyLastValue",
        "keep(1d6,2,5,)",
        {error(0, 4, "keep needs 4 values, not 3"),
         warning(12, 13, "the value after ',' is empty and is skipped", fix(12, 13, ""))}},
    DiagnosisCase{"SineWithTwoValues",
                  "sin(1,2)",
                  {warning(0, 3, "sin uses only its first value; the others are ignored")},
                  "sin uses only its first value; the others are ignored"},
    DiagnosisCase{"MeanWithTwoValues",
                  "mean(1d6,1d20)",
                  {warning(0, 4, "mean uses only its first value; the others are ignored")}},
    DiagnosisCase{"MaxWithNone", "max()", {error(0, 3, "max needs at least 1 value")}},
    DiagnosisCase{"DiewWithOne",
                  "diew(1d6)",
                  {error(0, 4, "diew needs its values in pairs: a roll, then its weight")}},
    DiagnosisCase{"DieMultWithOne", "dieMult(1d6)", {error(0, 7, "dieMult needs 2 values, not 1")}},
    DiagnosisCase{
        "CriterionWithTwo", "criterion(3,6)", {error(0, 9, "criterion needs 3 values, not 2")}},
    DiagnosisCase{"EmptyValueAfterComma",
                  "max(1d6,)",
                  {warning(7, 8, "the value after ',' is empty and is skipped", fix(7, 8, ""))},
                  "the value after ',' is empty and is skipped; write max(1d6)",
                  true},
    DiagnosisCase{"EmptyValueBeforeComma",
                  "max(,1d6)",
                  {warning(4, 5, "the value before ',' is empty and is skipped", fix(4, 5, ""))},
                  nullptr,
                  true},
    DiagnosisCase{
        "EmptyValueBetweenCommas",
        "max(1d6,,1d6)",
        {warning(8, 9, "the value between two ',' is empty and is skipped", fix(8, 9, ""))},
        nullptr,
        true},
    DiagnosisCase{"EmptyValueInsideSum",
                  "1+max(1d6,)",
                  {warning(9, 10, "the value after ',' is empty and is skipped", fix(9, 10, ""))},
                  nullptr,
                  true},
    DiagnosisCase{"KeepWithFourIsFine", "keep(1d6,2,5,0)", {}},
    DiagnosisCase{"DiewInPairsIsFine", "diew(1d6,1,1d20,3)", {}},
    DiagnosisCase{"MaxWithOneIsFine", "max(1d6)", {}},
    DiagnosisCase{"DefinitionsInWholeCallAreFine", "max(a=1d6;a,2)", {}},
};

// Dice written without a count or sides, with a capital letter, or beyond what is
// calculated at all.
const std::vector<DiagnosisCase> kDice = {
    DiagnosisCase{"CapitalD",
                  "3D6",
                  {error(1, 2, "dice are written with a small 'd'", fix(1, 2, "d"))},
                  "dice are written with a small 'd'; write 3d6",
                  true},
    DiagnosisCase{"CapitalDWithoutCount",
                  "D6",
                  {error(0, 1, "dice are written with a small 'd'", fix(0, 1, "1d"))},
                  nullptr,
                  true},
    DiagnosisCase{"WithoutCount",
                  "d20",
                  {error(0, 1, "dice need a count before 'd'", fix(0, 1, "1d"))},
                  "dice need a count before 'd'; write 1d20",
                  true},
    DiagnosisCase{"WithoutCountAfterTimes",
                  "2*d6",
                  {error(2, 3, "dice need a count before 'd'", fix(2, 3, "1d"))},
                  nullptr,
                  true},
    DiagnosisCase{"WithoutSides", "3d", {error(1, 2, "dice need a number of sides after 'd'")}},
    DiagnosisCase{"LetterTwice",
                  "1dd6",
                  {error(2, 3, "nothing stands between 'd' and 'd'", fix(2, 3, ""))},
                  nullptr,
                  true},
    DiagnosisCase{"TooManyFaces",
                  "1d2000000",
                  {error(0, 9, "a die with more than 1000000 faces is too large to calculate")}},
    DiagnosisCase{"TooManyDice",
                  "200000d6",
                  {error(0, 8, "more than 100000 dice are too many to calculate")}},
    DiagnosisCase{"BlanksAroundLetterAreFine", "1 d 6", {}},
    DiagnosisCase{"SuccessCountingIsFine", "4c7", {}},
    DiagnosisCase{"PercentageIsFine", "5p35", {}},
    DiagnosisCase{"HundredSidedZerosAreFine", "1w60", {}},
    DiagnosisCase{"DefinedCapitalIsFine", "D=6;1dD", {}},
};

INSTANTIATE_TEST_SUITE_P(Names, Diagnosis, ::testing::ValuesIn(kNames), caseName);
INSTANTIATE_TEST_SUITE_P(Functions, Diagnosis, ::testing::ValuesIn(kFunctions), caseName);
INSTANTIATE_TEST_SUITE_P(Dice, Diagnosis, ::testing::ValuesIn(kDice), caseName);

}  // namespace
}  // namespace talvex::language::testing
