// Compound texts against their exact distributions, each worked out by hand in the table from
// dice enumerated directly with exact fractions.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "expressions/compound_expression.h"
#include "expressions/exact_distribution.h"

namespace talvex::language {
namespace {

using testing::certain;
using testing::d;
using testing::dice;
using testing::difference;
using testing::Distribution;
using testing::Outcome;
using testing::product;
using testing::quotient;
using testing::randomDice;
using testing::Rational;
using testing::scaled;
using testing::shifted;
using testing::sum;
using testing::undefinedOutcome;

Distribution value(long long number) { return certain(Rational(number)); }
Distribution decimal(const char* text) { return certain(Rational::fromText(text)); }

struct TableCase {
    const char* name;
    const char* text;
    std::function<Distribution()> expected;
};

std::ostream& operator<<(std::ostream& out, const TableCase& c) { return out << c.text; }

class CompoundTable : public ::testing::TestWithParam<TableCase> {};

TEST_P(CompoundTable, HasTheExactDistribution) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = Expression::expressionWithString(GetParam().text, context);
    EXPECT_TRUE(testing::matchesDistribution(expression->profile(), GetParam().expected()))
        << GetParam().text;
}

std::string caseName(const ::testing::TestParamInfo<TableCase>& info) { return info.param.name; }

// Arithmetic, precedence, signs and the named constants.
INSTANTIATE_TEST_SUITE_P(
    Arithmetic, CompoundTable,
    ::testing::Values(TableCase{"Sum", "1+2", [] { return value(3); }},
                      TableCase{"NegativeDifference", "7-10", [] { return value(-3); }},
                      TableCase{"Product", "6*7", [] { return value(42); }},
                      TableCase{"DivisionIsLeftAssociative", "8/2/2", [] { return value(2); }},
                      TableCase{"SubtractionIsLeftAssociative", "10-3-2", [] { return value(5); }},
                      TableCase{"PowerIsLeftAssociative", "2^3^2", [] { return value(64); }},
                      TableCase{"ProductBeforeSum", "2+3*4", [] { return value(14); }},
                      TableCase{"ParenthesesFirst", "(2+3)*4", [] { return value(20); }},
                      TableCase{"TwoProductsSummed", "2*3+4*5", [] { return value(26); }},
                      TableCase{"PowerBeforeProduct", "3*2^2", [] { return value(12); }},
                      TableCase{"AThird", "1/3", [] { return certain(Rational(1, 3)); }},
                      TableCase{"AHalf", "7/2", [] { return decimal("3.5"); }},
                      TableCase{"PowerOfTwo", "2^10", [] { return value(1024); }},
                      TableCase{"NegativeBaseWholeExponentIsPositive", "(0-2)^3",
                                [] { return value(8); }},
                      TableCase{"NegativeBaseOddRoot", "(0-8)^(1/3)", [] { return value(-2); }},
                      TableCase{"ExponentNotation", "1e3", [] { return value(1000); }},
                      TableCase{"ExponentNotationWithFraction", "2.5e2", [] { return value(250); }},
                      TableCase{"NegativeExponent", "1e-2", [] { return decimal("0.01"); }},
                      TableCase{"LeadingMinus", "-3", [] { return value(-3); }},
                      TableCase{"LeadingPlus", "+3", [] { return value(3); }},
                      TableCase{"MinusNegative", "3--2", [] { return value(5); }},
                      TableCase{"TimesNegative", "3*-2", [] { return value(-6); }},
                      TableCase{"NegatedGroup", "-(2+3)", [] { return value(-5); }},
                      TableCase{"ImplicitBeforeGroup", "2(3)", [] { return value(6); }},
                      TableCase{"ImplicitAfterGroup", "(2)3", [] { return value(6); }},
                      TableCase{"ImplicitBetweenGroups", "(2)(3)", [] { return value(6); }},
                      TableCase{"Pi", "pi", [] { return decimal("3.141592653589793"); }},
                      TableCase{"TwoPi", "2pi", [] { return decimal("6.283185307179586"); }},
                      TableCase{"E", "ex", [] { return decimal("2.718281828459045"); }},
                      TableCase{"TwoE", "2ex", [] { return decimal("5.43656365691809"); }},
                      TableCase{"PiMinusPi", "pi-pi", [] { return value(0); }},
                      TableCase{"DecimalTenthsAreExact", "0.1+0.2", [] { return decimal("0.3"); }},
                      TableCase{"DecimalTimesWhole", "1.5*4", [] { return value(6); }},
                      TableCase{"BlanksAreIgnored", " 1 +\t2 ", [] { return value(3); }},
                      TableCase{"LabelIsIgnored", "Total: 4*5", [] { return value(20); }}),
    caseName);

// Dice combined with arithmetic.
INSTANTIATE_TEST_SUITE_P(
    Dice, CompoundTable,
    ::testing::Values(
        TableCase{"ThreeDicePlusTwo", "3d6+2", [] { return shifted(d(3, 6), 2); }},
        TableCase{"TwiceThreeDice", "2*3d6", [] { return scaled(d(3, 6), 2); }},
        TableCase{"DieTimesDie", "1d6*1d6", [] { return product(d(1, 6), d(1, 6)); }},
        TableCase{"DieMinusDie", "1d6-1d6", [] { return difference(d(1, 6), d(1, 6)); }},
        TableCase{"MixedSizes", "1d4+1d6", [] { return sum(d(1, 4), d(1, 6)); }},
        TableCase{"DiceHalved", "2d6/2", [] { return quotient(d(2, 6), value(2)); }},
        TableCase{"DieSquared", "1d6^2",
                  [] {
                      return testing::combine(
                          d(1, 6), value(2),
                          [](const Rational& x, const Rational&) -> Outcome { return x * x; });
                  }},
        TableCase{"DieTimesShiftedDie", "1d4*(1d4+1)",
                  [] { return product(d(1, 4), shifted(d(1, 4), 1)); }},
        TableCase{"NegatedDie", "-1d4", [] { return difference(value(0), d(1, 4)); }},
        TableCase{"ThreeSingleDice", "1d6+1d6+1d6", [] { return d(3, 6); }},
        TableCase{"TenMinusDie", "10-1d20", [] { return difference(value(10), d(1, 20)); }},
        TableCase{"DieInParentheses", "(1d6)", [] { return d(1, 6); }},
        TableCase{"DieInDoubleParentheses", "((1d6))", [] { return d(1, 6); }},
        TableCase{"SuccessesPlusZero", "3c7+0", [] { return dice(3, 'c', 7); }},
        TableCase{"PercentDiceDoubled", "2p50*2", [] { return scaled(dice(2, 'p', 50), 2); }},
        TableCase{"TenSidedWithBlanksPlusOne", "1v4+1", [] { return shifted(dice(1, 'v', 4), 1); }},
        TableCase{"HundredSidedMinusOne", "1w90-1", [] { return shifted(dice(1, 'w', 90), -1); }},
        TableCase{"NoDicePlusOne", "0d6+1", [] { return value(1); }},
        TableCase{"DiceTimesDiceSum", "2d4*2-1d2",
                  [] { return difference(scaled(d(2, 4), 2), d(1, 2)); }}),
    caseName);

// The dice letters used as operators: counts and sizes that are themselves random.
INSTANTIATE_TEST_SUITE_P(
    RandomDice, CompoundTable,
    ::testing::Values(
        TableCase{"DieOfDice", "(1d4)d6", [] { return randomDice(d(1, 4), 'd', value(6)); }},
        TableCase{"OneOrTwoDice", "(1d2)d6", [] { return randomDice(d(1, 2), 'd', value(6)); }},
        TableCase{"ChainedLettersBindLeft", "1d6d6",
                  [] { return randomDice(d(1, 6), 'd', value(6)); }},
        TableCase{"RandomCountAndSize", "(1d3)d(1d4)",
                  [] { return randomDice(d(1, 3), 'd', d(1, 4)); }},
        TableCase{"RandomSize", "2d(1d4)", [] { return randomDice(value(2), 'd', d(1, 4)); }},
        TableCase{"CountsAroundZero", "(1d3-2)d4",
                  [] { return randomDice(shifted(d(1, 3), -2), 'd', value(4)); }},
        TableCase{"NegativeCount", "(0-2)d6", [] { return difference(value(0), d(2, 6)); }},
        TableCase{"NegativeSize", "2d(0-3)", [] { return difference(value(0), d(2, 3)); }},
        TableCase{"BothNegative", "(0-2)d(0-3)", [] { return d(2, 3); }},
        TableCase{"FractionalCountRoundsHalfUp", "2.5d6", [] { return d(3, 6); }},
        TableCase{"HalfCountRoundsToOne", "(1/2)d6", [] { return d(1, 6); }},
        TableCase{"FractionalRandomCounts", "(1d2/2)d4",
                  [] { return randomDice(quotient(d(1, 2), value(2)), 'd', value(4)); }},
        TableCase{"RandomCountOfSuccessTries", "(1d2)c5",
                  [] { return randomDice(d(1, 2), 'c', value(5)); }},
        TableCase{"RandomCountOfPercentTries", "(1d2)p50",
                  [] { return randomDice(d(1, 2), 'p', value(50)); }},
        TableCase{"RandomCountOfTenSided", "(1d2)v4",
                  [] { return randomDice(d(1, 2), 'v', value(4)); }},
        TableCase{"RandomCountOfHundredSided", "(1d2)w90",
                  [] { return randomDice(d(1, 2), 'w', value(90)); }},
        TableCase{"RandomSuccessChance", "(1d2)c(1d2*5)",
                  [] { return randomDice(d(1, 2), 'c', scaled(d(1, 2), 5)); }},
        TableCase{"LetterAfterDiceCount", "1d2c5",
                  [] { return randomDice(d(1, 2), 'c', value(5)); }},
        TableCase{"RandomFaces", "3d(1d2)", [] { return randomDice(value(3), 'd', d(1, 2)); }},
        TableCase{"SumAsCount", "(2d2)d2", [] { return randomDice(d(2, 2), 'd', value(2)); }},
        TableCase{"RandomDicePlusOne", "(1d2)d6+1",
                  [] { return shifted(randomDice(d(1, 2), 'd', value(6)), 1); }},
        TableCase{"ThreeLettersInARow", "1d2d2d2",
                  [] { return randomDice(randomDice(d(1, 2), 'd', value(2)), 'd', value(2)); }},
        TableCase{"DiceWithoutFaces", "(1d6)d0", [] { return value(0); }},
        TableCase{"TwiceRandomDice", "2*(1d2)d4",
                  [] { return scaled(randomDice(d(1, 2), 'd', value(4)), 2); }}),
    caseName);

// Definitions written out before evaluation.
INSTANTIATE_TEST_SUITE_P(
    Definitions, CompoundTable,
    ::testing::Values(
        TableCase{"DefinitionsUseEachOther", "a=1d6;b=a+a;b*2", [] { return scaled(d(2, 6), 2); }},
        TableCase{"SquareOfDefinition", "x=2;y=x*x;y+1d4", [] { return shifted(d(1, 4), 4); }},
        TableCase{"ImplicitTimesDefinition", "a=1d4;2a", [] { return scaled(d(1, 4), 2); }},
        TableCase{"DefinitionTwiceInARow", "a=1d4;aa", [] { return product(d(1, 4), d(1, 4)); }},
        TableCase{"LaterDefinitionWins", "a=3;a=4;a", [] { return value(4); }},
        TableCase{"DefinedCount", "n=2;nd6", [] { return d(2, 6); }},
        TableCase{"TwoUsesAreIndependent", "s=1d6;s+s", [] { return d(2, 6); }},
        TableCase{"StatementWithoutEqualsIgnored", "junk;1+1", [] { return value(2); }},
        TableCase{"DefinitionOverridesConstant", "pi=3;pi+1", [] { return value(4); }},
        TableCase{"DefinitionUsedBeforeItsOwn", "a=b;b=2;a*a", [] { return value(4); }},
        TableCase{"DefinitionWithBlanks", "a = 1d2 ; a + 1", [] { return shifted(d(1, 2), 1); }},
        TableCase{"DefinitionUsesConstant", "t=2pi;t/2",
                  [] { return decimal("3.141592653589793"); }}),
    caseName);

// Malformed and undefined pieces.
INSTANTIATE_TEST_SUITE_P(
    Undefined, CompoundTable,
    ::testing::Values(
        TableCase{"DivisionByZero", "1/0", [] { return undefinedOutcome(); }},
        TableCase{"DivisionBySometimesZero", "1d6/(1d2-1)",
                  [] { return quotient(d(1, 6), shifted(d(1, 2), -1)); }},
        TableCase{"UndefinedCount", "(1/0)d6", [] { return undefinedOutcome(); }},
        TableCase{"TypedFunctionMark", "1d6+&", [] { return undefinedOutcome(); }},
        TableCase{"TypedComparatorMark", "%", [] { return undefinedOutcome(); }},
        TableCase{"EmptyParentheses", "()", [] { return undefinedOutcome(); }},
        TableCase{"OmittedSecondOperand", "3+", [] { return undefinedOutcome(); }},
        TableCase{"ZeroToTheZero", "0^(1d2-1)",
                  [] {
                      Distribution half = undefinedOutcome();
                      half[std::nullopt] = Rational(1, 2);
                      half[Rational(0)] = Rational(1, 2);
                      return half;
                  }},
        TableCase{"EvenRootOfNegative", "(0-4)^0.5", [] { return undefinedOutcome(); }},
        TableCase{"TwoDifferentComparators", "1d6vs1d6vt1d6", [] { return undefinedOutcome(); }},
        TableCase{"UndefinedSpreadsThroughSum", "1d2+1/0", [] { return undefinedOutcome(); }},
        TableCase{"TimesOmittedDice", "3*d6", [] { return undefinedOutcome(); }},
        TableCase{"DefinitionWithTwoEquals", "a==1;a+1", [] { return undefinedOutcome(); }},
        TableCase{"TextEndingWithSemicolon", "a=1;b=2;", [] { return undefinedOutcome(); }},
        TableCase{"SelfDefinition", "a=a+1;a", [] { return undefinedOutcome(); }},
        TableCase{"FunctionNameAlone", "max", [] { return undefinedOutcome(); }}),
    caseName);

TEST(CompoundTableSize, HoldsAtLeastEightyExpressions) {
    // Guards the table itself against being trimmed by accident.
    std::size_t count = 0;
    for (const auto* suite : {"Arithmetic", "Dice", "RandomDice", "Definitions", "Undefined"}) {
        const auto* unit = ::testing::UnitTest::GetInstance();
        for (int i = 0; i < unit->total_test_suite_count(); ++i) {
            const auto* testSuite = unit->GetTestSuite(i);
            if (std::string(testSuite->name()) == std::string(suite) + "/CompoundTable") {
                count += static_cast<std::size_t>(testSuite->total_test_count());
            }
        }
    }
    EXPECT_GE(count, 80U);
}

}  // namespace
}  // namespace talvex::language
