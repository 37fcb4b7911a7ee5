// Valid texts in the diagnostics table: none of them gives a finding.

#include <string>
#include <vector>

#include "expressions/diagnostics_cases.h"

namespace talvex::language::testing {
namespace {

// Texts that are right as they stand: not one finding.
const std::vector<DiagnosisCase> kValidTexts = {
    DiagnosisCase{"SumOfDiceAndNumber", "3d6+2", {}},
    DiagnosisCase{"SuccessCounting", "4c7", {}},
    DiagnosisCase{"BestOfTwo", "max(1d20,1d20)", {}},
    DiagnosisCase{"WorstOfTwoPlusBonus", "min(1d20,1d20)+5", {}},
    DiagnosisCase{"HardDefinitionUsedTwice", "a~1d6;a+a", {}},
    DiagnosisCase{"VersusWithBlanks", "3d6 vs 2d8", {}},
    DiagnosisCase{"LabelledAttack", "Attack: 1d20+5", {}},
    DiagnosisCase{"LabelledFireball", "Fireball: 8d6", {}},
    DiagnosisCase{"MixedDice", "2d6+1d4+3", {}},
    DiagnosisCase{"RandomCount", "(1d4)d6", {}},
    DiagnosisCase{"ThreeWayVersus", "1d6vs1d6vs1d6", {}},
    DiagnosisCase{"DefinitionsUsingDefinitions", "a=1d6;b=a+a;b*2", {}},
    DiagnosisCase{"KeepWithReplacement", "keep(1d6,2,5,0)", {}},
    DiagnosisCase{"RandomCountFunction", "dier(1d2,6)", {}},
    DiagnosisCase{"ExponentNotation", "1e3", {}},
    DiagnosisCase{"FractionalExponentNotation", "2.5e2", {}},
    DiagnosisCase{"AtLeastComparator", "1d20 cw 15", {}},
    DiagnosisCase{"ChallengeComparator", "1d20+7 ch 2d10", {}},
    DiagnosisCase{"TieComparator", "3d6 tt 3d6", {}},
    DiagnosisCase{"VersusWithTies", "1d6 vt 1d6", {}},
    DiagnosisCase{"UndefinedTies", "1d6 cu 1d6", {}, nullptr, false, true},
    DiagnosisCase{"MoreThanComparator", "1d6 cl 1d6", {}},
    DiagnosisCase{"Criterion", "criterion(3,6,2)", {}},
    DiagnosisCase{"Count", "count(1d6,5,6)", {}},
    DiagnosisCase{"Confine", "confine(1d6,2,5)", {}},
    DiagnosisCase{"ConfineWeight", "confineweight(2d6,0.1,1)", {}},
    DiagnosisCase{"ConfineWeightRange", "confineweightrange(1d4,0,0.5)", {}},
    DiagnosisCase{"DieMult", "dieMult(1d6,2)", {}},
    DiagnosisCase{"DiePow", "diePow(2,3)", {}},
    DiagnosisCase{"DieMixture", "die(1d4,1d8)", {}},
    DiagnosisCase{"Mean", "mean(3d6)", {}},
    DiagnosisCase{"StandardDeviation", "stddev(3d6)", {}},
    DiagnosisCase{"Median", "median(2d6)", {}},
    DiagnosisCase{"Mode", "mode(2d6)", {}},
    DiagnosisCase{"Range", "range(2d6)", {}},
    DiagnosisCase{"Values", "values(2d6)", {}},
    DiagnosisCase{"MinimumValue", "minval(2d6)", {}},
    DiagnosisCase{"MaximumValue", "maxval(2d6)", {}},
    DiagnosisCase{"Round", "round(7/2)", {}},
    DiagnosisCase{"Floor", "floor(1d6/2)", {}},
    DiagnosisCase{"Ceiling", "ceil(1d6/2)", {}},
    DiagnosisCase{"AbsoluteValue", "abs(1d6-4)", {}},
    DiagnosisCase{"NaturalLogarithm", "ln(1d6)", {}},
    DiagnosisCase{"Logarithm", "log(1000)", {}},
    DiagnosisCase{"Exponential", "exp(1)", {}},
    DiagnosisCase{"SineAndCosine", "sin(1)+cos(1)", {}},
    DiagnosisCase{"ArcTangent", "arctan(1)", {}},
    DiagnosisCase{"DropLowestFunction", "drop(1d6,4,1,0)", {}},
    DiagnosisCase{"NumberBeforeGroup", "2(1d6)", {}},
    DiagnosisCase{"NumberAfterGroup", "(1d6)2", {}},
    DiagnosisCase{"ProductAndSum", "1d6*2+1", {}},
    DiagnosisCase{"GroupDivided", "(2d6+3)/2", {}},
    DiagnosisCase{"TenDice", "10d10", {}},
    DiagnosisCase{"HundredSidedDie", "1d100", {}},
    DiagnosisCase{"HundredSidedWithZeros", "1w60", {}},
    DiagnosisCase{"DivisionChain", "8/2/2", {}},
    DiagnosisCase{"AbilityDefinition", "str=3;1d20+str", {}},
    DiagnosisCase{"BlanksAroundDefinitions", "atk = 1d20 + 5; atk vs 15", {}},
    DiagnosisCase{"DefinitionOfDefinition", "a=1d6; b=a; a+b", {}},
    DiagnosisCase{"LabelWithBlanks", "Attack roll: 1d20 + 5", {}},
    DiagnosisCase{"LabelWithParentheses", "Damage (sword): 1d8+3", {}},
    DiagnosisCase{"BlanksAround", "  3d6  ", {}},
    DiagnosisCase{"BlankAfterComma", "max(1d6, 1d6)", {}},
    DiagnosisCase{"LineBreakBeforeOperator", "1d20\n+5", {}},
    DiagnosisCase{"LineBreakAfterOperator", "1d6 +\n 1d6", {}},
    DiagnosisCase{"MinimumSubtracted", "4d6-min(4d6)", {}},
    DiagnosisCase{"FractionalFactor", "3d6 * 1.5", {}},
    DiagnosisCase{"FractionalCount", "2.5d6", {}},
};

INSTANTIATE_TEST_SUITE_P(ValidTexts, Diagnosis, ::testing::ValuesIn(kValidTexts), caseName);

}  // namespace
}  // namespace talvex::language::testing
