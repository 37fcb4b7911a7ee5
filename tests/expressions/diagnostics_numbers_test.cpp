// Comparisons, numbers and dropped dice in the diagnostics table.

#include <string>
#include <vector>

#include "expressions/diagnostics_cases.h"

namespace talvex::language::testing {
namespace {

// Other tools' comparisons, each with the comparator that means the same where there is one
// (cw: at least, cl: more than, with the sides swapped for at most and less than).
const std::vector<DiagnosisCase> kComparisons = {
    DiagnosisCase{
        "MoreThan",
        "1d20+5 > 15",
        {error(7, 8, "'>' is not part of the language", fix(7, 8, "cl", "for \"more than\""))},
        "'>' is not part of the language; for \"more than\" write 1d20+5 cl 15",
        true},
    DiagnosisCase{
        "AtMost",
        "2d6 <= 7",
        {error(4, 5, "'<' is not part of the language", fix(0, 8, "7 cw 2d6", "for \"at most\""))},
        "'<' is not part of the language; for \"at most\" write 7 cw 2d6",
        true},
    DiagnosisCase{"LessThan",
                  "2d6 < 7",
                  {error(4, 5, "'<' is not part of the language",
                         fix(0, 7, "7 cl 2d6", "for \"less than\""))},
                  nullptr,
                  true},
    DiagnosisCase{"Exactly",
                  "2d6 == 7",
                  {error(4, 6, "'=' is only for definitions such as a=1d6",
                         fix(0, 8, "count(2d6,7,7)", "for \"exactly\""))},
                  "'=' is only for definitions such as a=1d6; for \"exactly\" write count(2d6,7,7)",
                  true},
    DiagnosisCase{"SingleEquals",
                  "1d20=15",
                  {error(4, 5, "'=' is only for definitions such as a=1d6",
                         fix(0, 7, "count(1d20,15,15)", "for \"exactly\""))},
                  nullptr,
                  true},
    DiagnosisCase{"NotEqual", "2d6 != 7", {error(4, 5, "'!' is not part of the language")}},
    DiagnosisCase{"TypographicAtLeast",
                  "2d6 \xE2\x89\xA5 7",
                  {error(4, 7, "'\xE2\x89\xA5' is not part of the language",
                         fix(4, 7, "cw", "for \"at least\""))},
                  nullptr,
                  true},
    DiagnosisCase{"TypographicAtMost",
                  "2d6 \xE2\x89\xA4 7",
                  {error(4, 7, "'\xE2\x89\xA4' is not part of the language",
                         fix(0, 9, "7 cw 2d6", "for \"at most\""))},
                  nullptr,
                  true},
    DiagnosisCase{"Chained",
                  "1<2<3",
                  {error(1, 2, "'<' is not part of the language"),
                   error(3, 4, "'<' is not part of the language")}},
    DiagnosisCase{
        "InsideParentheses",
        "(1d20>=10)*2",
        {error(5, 6, "'>' is not part of the language", fix(5, 7, " cw ", "for \"at least\""))},
        nullptr,
        true},
    DiagnosisCase{"MixedComparators",
                  "1d6 vs 2d6 vt 1d6",
                  {error(11, 13, "'vt' and 'vs' cannot be mixed in one comparison")}},
    DiagnosisCase{"VersusWordOfOtherTools",
                  "3d6 versus 2d8",
                  {error(4, 10, "'versus' is not a known function or name", fix(4, 10, "vs"))},
                  "'versus' is not a known function or name; write 3d6 vs 2d8",
                  true},
    DiagnosisCase{"AtLeastIsFine", "1d20+5 cw 15", {}},
    DiagnosisCase{"VersusIsFine", "3d6 vs 2d8", {}},
    DiagnosisCase{"ThreeWayIsFine", "1d6vs1d6vs1d6", {}},
    DiagnosisCase{"MoreThanIsFine", "1d20 cl 15", {}},
};

// Numbers beyond the decimals (38 digits, exponents up to 127), powers worked out in floating
// point, and numbers written wrong.
const std::vector<DiagnosisCase> kNumbers = {
    DiagnosisCase{"PowerTooLarge",
                  "2^1000",
                  {error(0, 6, "'2^1000' is too large to work with")},
                  "'2^1000' is too large to work with"},
    DiagnosisCase{"ExponentTooLarge", "1e400", {error(0, 5, "'1e400' is too large to work with")}},
    DiagnosisCase{
        "PowerJustTooLarge", "10^165", {error(0, 6, "'10^165' is too large to work with")}},
    DiagnosisCase{"ZeroToTheZero", "0^0", {error(0, 3, "'0^0' has no value")}},
    DiagnosisCase{"PowerTooSmall",
                  "2^-40",
                  {warning(0, 5, "'2^-40' is rounded to ten decimals and becomes 0")},
                  "'2^-40' is rounded to ten decimals and becomes 0"},
    DiagnosisCase{"ExponentApproximate",
                  "1e5",
                  {warning(0, 3, "'1e5' is worked out approximately and gives 100000.0000000002",
                           fix(0, 3, "100000"))},
                  "'1e5' is worked out approximately and gives 100000.0000000002; write 100000",
                  true},
    DiagnosisCase{
        "LargeExponentApproximate",
        "1e20",
        {warning(0, 4, "'1e20' is worked out approximately and gives 100000000000000786432",
                 fix(0, 4, "100000000000000000000"))},
        nullptr,
        true},
    DiagnosisCase{"LiteralTooLarge",
                  "1" + std::string(170, '0'),
                  {error(0, 171, "this number is too large to work with")}},
    DiagnosisCase{"TooManyDigits",
                  "123456789012345678901234567890123456789",
                  {warning(0, 39, "this number has more than 38 digits and is rounded",
                           fix(0, 39, "123456789012345678901234567890123456790"))},
                  nullptr,
                  true},
    DiagnosisCase{"LiteralTooSmall",
                  "0." + std::string(200, '0') + "1",
                  {warning(0, 203, "this number is too small and becomes 0", fix(0, 203, "0"))},
                  nullptr,
                  true},
    DiagnosisCase{"DivisionByZero", "1d6/0", {error(3, 5, "dividing by 0 has no value")}},
    DiagnosisCase{"TwoPoints", "1.5.2", {error(0, 5, "'1.5.2' is not a number")}},
    DiagnosisCase{"DecimalComma",
                  "1,5",
                  {error(1, 2, "',' only separates the values of a function, as in max(1d6,1d6)",
                         fix(1, 2, ".", "for a decimal point"))},
                  "',' only separates the values of a function, as in max(1d6,1d6); for a decimal "
                  "point write 1.5",
                  true},
    DiagnosisCase{"LargestPowerIsFine", "10^164", {}},
    DiagnosisCase{"ExactExponentIsFine", "1e3", {}},
    DiagnosisCase{"FractionExponentIsFine", "2.5e2", {}},
    DiagnosisCase{"NegativeExponentIsFine", "1e-5", {}},
    DiagnosisCase{"ThirtyEightDigitsAreFine", "99999999999999999999999999999999999999", {}},
    DiagnosisCase{"ChainedPowerIsFine", "2^3^2", {}},
    DiagnosisCase{"PointFirstIsFine", ".5", {}},
    DiagnosisCase{"CommaInCallIsFine", "max(1,5)", {}},
};

// Dropping and keeping dice as other tools write it, and the drop function that does it.
const std::vector<DiagnosisCase> kDropAndKeep = {
    DiagnosisCase{"DropLowest",
                  "4d6dl1",
                  {error(3, 6, "'dl1' is not part of the language",
                         fix(0, 6, "drop(1d6,4,1,0)", "to drop the lowest 1"))},
                  "'dl1' is not part of the language; to drop the lowest 1 write drop(1d6,4,1,0)",
                  true},
    DiagnosisCase{"DropWithD",
                  "4d6d1",
                  {warning(3, 5, "'4d6d1' rolls 4d6 dice with 1 side each and drops nothing",
                           fix(0, 5, "drop(1d6,4,1,0)", "to drop the lowest 1"))},
                  "'4d6d1' rolls 4d6 dice with 1 side each and drops nothing; to drop the lowest 1 "
                  "write drop(1d6,4,1,0)",
                  true},
    DiagnosisCase{"KeepHighest",
                  "2d20kh1",
                  {error(4, 7, "'kh1' is not part of the language",
                         fix(0, 7, "drop(1d20,2,1,0)", "to keep the highest 1"))},
                  nullptr,
                  true},
    DiagnosisCase{"KeepLowest",
                  "2d20kl1",
                  {error(4, 7, "'kl1' is not part of the language",
                         fix(0, 7, "drop(1d20,2,0,1)", "to keep the lowest 1"))},
                  nullptr,
                  true},
    DiagnosisCase{"KeepWithK",
                  "4d6k3",
                  {error(3, 5, "'k3' is not part of the language",
                         fix(0, 5, "drop(1d6,4,1,0)", "to keep the highest 3"))},
                  nullptr,
                  true},
    DiagnosisCase{"DropHighest",
                  "4d6dh1",
                  {error(3, 6, "'dh1' is not part of the language",
                         fix(0, 6, "drop(1d6,4,0,1)", "to drop the highest 1"))},
                  nullptr,
                  true},
    DiagnosisCase{
        "KeepMoreThanRolled", "4d6kh5", {error(3, 6, "'kh5' is not part of the language")}},
    DiagnosisCase{"RollOfRolledDiceIsFine", "2d6d6", {}},
    DiagnosisCase{"SingleDieRolledIsFine", "1d6d6", {}},
    DiagnosisCase{"GroupedRollIsFine", "(2d6)d1", {}},
};

INSTANTIATE_TEST_SUITE_P(Comparisons, Diagnosis, ::testing::ValuesIn(kComparisons), caseName);
INSTANTIATE_TEST_SUITE_P(Numbers, Diagnosis, ::testing::ValuesIn(kNumbers), caseName);
INSTANTIATE_TEST_SUITE_P(DropAndKeep, Diagnosis, ::testing::ValuesIn(kDropAndKeep), caseName);

}  // namespace
}  // namespace talvex::language::testing
