#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "expressions/compound_expression.h"
#include "expressions/exact_distribution.h"

namespace talvex::language {
namespace {

using testing::d;
using testing::matchesDistribution;
using testing::Rational;

std::shared_ptr<CompoundExpression> compound(const std::string& text, RequestContext& context) {
    auto expression = std::dynamic_pointer_cast<CompoundExpression>(
        Expression::expressionWithString(text, context));
    EXPECT_NE(expression, nullptr) << text << " is not a compound expression";
    return expression;
}

std::vector<std::string> operandTexts(const CompoundExpression& expression) {
    std::vector<std::string> texts;
    for (const auto& operand : expression.subExpressions()) {
        texts.push_back(operand->rawString());
    }
    return texts;
}

std::string operatorText(const CompoundExpression& expression) {
    return {expression.subOperators().begin(), expression.subOperators().end()};
}

using Texts = std::vector<std::string>;

// --- Vocabulary -------------------------------------------------------------------------

TEST(CompoundVocabulary, OperatorsComeInSixLevelsHighestFirst) {
    const auto levels = CompoundExpression::operatorLevelArray();
    ASSERT_EQ(levels.size(), 6U);
    EXPECT_EQ(levels[0], "");
    EXPECT_EQ(levels[1], "edcpvw");
    EXPECT_EQ(levels[2], "^");
    EXPECT_EQ(levels[3], "*/");
    EXPECT_EQ(levels[4], "+-");
    EXPECT_EQ(levels[5], "%");
    EXPECT_EQ(CompoundExpression::operatorArray(), "edcpvw^*/+-%");
}

TEST(CompoundVocabulary, ComparatorsConstantsAndFunctionNames) {
    const auto comparators = CompoundExpression::comparatorArray();
    EXPECT_EQ(std::vector<std::string_view>(comparators.begin(), comparators.end()),
              (std::vector<std::string_view>{"vs", "vt", "tt", "ch", "cw", "cl", "cu"}));
    const auto constants = CompoundExpression::constants();
    ASSERT_EQ(constants.size(), 2U);
    EXPECT_EQ(constants[0].first, "pi");
    EXPECT_EQ(std::stod(constants[0].second), 3.141592653589793);
    EXPECT_EQ(constants[1].first, "ex");
    EXPECT_EQ(std::stod(constants[1].second), 2.718281828459045);
    const auto names = CompoundExpression::functionArray();
    ASSERT_EQ(names.size(), 35U);
    EXPECT_EQ(names.front(), "ln");
    EXPECT_EQ(names.back(), "drop");
    // Longer names that share a prefix come first.
    const auto position = [&names](std::string_view name) {
        return std::find(names.begin(), names.end(), name) - names.begin();
    };
    EXPECT_LT(position("confineweightrange"), position("confineweight"));
    EXPECT_LT(position("confineweight"), position("confine"));
    EXPECT_LT(position("dier"), position("die"));
}

// --- Recognition ------------------------------------------------------------------------

struct Recognition {
    const char* text;
    bool compound;
};

class CompoundRecognition : public ::testing::TestWithParam<Recognition> {};

TEST_P(CompoundRecognition, NeedsBalancedParenthesesAndSomeStructure) {
    EXPECT_EQ(CompoundExpression::isExpressionString(GetParam().text), GetParam().compound)
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, CompoundRecognition,
    ::testing::Values(Recognition{"1+2", true}, Recognition{"(7)", true},
                      Recognition{"3d6", true},  // dice letters are operators too
                      Recognition{"a;b", true}, Recognition{"max", true}, Recognition{"avsb", true},
                      Recognition{"pi", true}, Recognition{"2ex", true}, Recognition{"%", true},
                      Recognition{"Label: 1+1", true}, Recognition{"", false},
                      Recognition{"Label:", false}, Recognition{"7", false},
                      Recognition{"xyz", false},
                      Recognition{"a;", false},  // a ";" only at the end is no structure
                      Recognition{"(1+2", false}, Recognition{"1+2)", false},
                      Recognition{")(", false}, Recognition{"x:(1)", true},
                      Recognition{"(:1)", false}, Recognition{"  ", false}));

TEST(CompoundRecognition, DiceTextsGoToTheDiceKindFirst) {
    EXPECT_EQ(Expression::expressionWithString("3d6")->typeString(), "xdy");
    EXPECT_EQ(Expression::expressionWithString("3d6+2")->typeString(), "compound");
    EXPECT_EQ(Expression::expressionWithString("-5")->typeString(), "compound");
    EXPECT_EQ(Expression::expressionWithString("(1+2")->typeString(), "untyped");
}

// --- Cutting at top-level operators (edge cases) ------------------------------------------

TEST(CompoundParsing, ThreeD6PlusTwoIsCutAtEveryTopLevelOperator) {
    // The dice letter is an operator of the highest level, so "3d6" is the first combination
    // made from the operands, built as a dice text, and "+2" comes after it.
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = compound("3d6+2", context);
    EXPECT_EQ(operandTexts(*expression), (Texts{"3", "6", "2"}));
    EXPECT_EQ(operatorText(*expression), "d+");
    EXPECT_TRUE(expressions.contains("3d6"));
    EXPECT_TRUE(matchesDistribution(expression->profile(), testing::shifted(d(3, 6), 2)));
}

TEST(CompoundParsing, DefinitionsAreWrittenOutInTheRawString) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = compound("a=1d6;b=a+a;b*2", context);
    EXPECT_EQ(expression->rawString(), "((1d6)+(1d6))*2");
    EXPECT_EQ(operandTexts(*expression), (Texts{"((1d6)+(1d6))", "2"}));
    EXPECT_EQ(operatorText(*expression), "*");
    EXPECT_EQ(expressions.at("((1d6)+(1d6))*2").get(), expression.get());
}

TEST(CompoundParsing, ImplicitMultiplicationOnBothSidesOfParentheses) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto before = compound("2(1d6)", context);
    EXPECT_EQ(operandTexts(*before), (Texts{"2", "(1d6)"}));
    EXPECT_EQ(operatorText(*before), "*");
    const auto after = compound("(1d6)2", context);
    EXPECT_EQ(operandTexts(*after), (Texts{"(1d6)", "2"}));
    EXPECT_EQ(operatorText(*after), "*");
    const auto between = compound("(1d4)(1d6)", context);
    EXPECT_EQ(operandTexts(*between), (Texts{"(1d4)", "(1d6)"}));
    EXPECT_EQ(operatorText(*between), "*");
    const auto constant = compound("2pi", context);
    EXPECT_EQ(constant->rawString(), "2(3.141592653589793)");
    EXPECT_EQ(operatorText(*constant), "*");
    EXPECT_TRUE(matchesDistribution(before->profile(), testing::scaled(d(1, 6), 2)));
    EXPECT_TRUE(matchesDistribution(after->profile(), testing::scaled(d(1, 6), 2)));
}

TEST(CompoundParsing, NoMultiplicationIsInsertedNextToOperatorsOrParentheses) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(operatorText(*compound("2-(1)", context)), "-");
    EXPECT_EQ(operatorText(*compound("(1)^2", context)), "^");
    const auto nested = compound("((1)(2))", context);
    EXPECT_EQ(operandTexts(*nested), (Texts{"(1)", "(2)"}));
}

TEST(CompoundParsing, ALeadingSignSubtractsFromZero) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto negated = compound("-1d4", context);
    EXPECT_EQ(negated->rawString(), "-1d4");
    EXPECT_EQ(operandTexts(*negated), (Texts{"0", "1", "4"}));
    EXPECT_EQ(operatorText(*negated), "-d");
    const auto plus = compound("+3", context);
    EXPECT_EQ(operandTexts(*plus), (Texts{"0", "3"}));
}

TEST(CompoundParsing, ASignBehindAnOperatorBelongsToTheNextOperand) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto minusNegative = compound("3--2", context);
    EXPECT_EQ(operandTexts(*minusNegative), (Texts{"3", "-2"}));
    EXPECT_EQ(operatorText(*minusNegative), "-");
    EXPECT_TRUE(matchesDistribution(minusNegative->profile(), testing::certain(Rational(5))));
    const auto timesNegative = compound("3*-2", context);
    EXPECT_EQ(operandTexts(*timesNegative), (Texts{"3", "-2"}));
    EXPECT_EQ(operatorText(*timesNegative), "*");
    // Only the first of two signs is taken as one; the second leaves an operand of its own.
    const auto twoSigns = compound("3*--2", context);
    EXPECT_EQ(operandTexts(*twoSigns), (Texts{"3", "-", "2"}));
    EXPECT_EQ(operatorText(*twoSigns), "*-");
    // A "*" or "/" right behind an operator is no sign: the operand between is omitted.
    const auto omitted = compound("3*/2", context);
    EXPECT_EQ(operandTexts(*omitted), (Texts{"3", "", "2"}));
}

TEST(CompoundParsing, AComparatorBecomesTheMarkAndItsVIsNoDiceLetter) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto versus = compound("3d6 vs 2d8", context);
    EXPECT_EQ(versus->rawString(), "3d6vs2d8");
    EXPECT_EQ(versus->comparator(), "vs");
    EXPECT_EQ(operandTexts(*versus), (Texts{"3", "6", "2", "8"}));
    EXPECT_EQ(operatorText(*versus), "d%d");
    EXPECT_TRUE(expressions.contains("3d6"));
    EXPECT_TRUE(expressions.contains("2d8"));
    const auto same = compound("1d6vs1d6vs1d6", context);
    EXPECT_EQ(same->comparator(), "vs");
    EXPECT_EQ(operatorText(*same), "d%d%d");
}

TEST(CompoundParsing, TwoDifferentComparatorsMakeTheTextUndefined) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto mixed = compound("1d6vs1d6vt1d6", context);
    EXPECT_EQ(mixed->comparator(), "");
    EXPECT_EQ(operandTexts(*mixed), (Texts{"1", "0"}));
    EXPECT_EQ(operatorText(*mixed), "/");
    EXPECT_TRUE(matchesDistribution(mixed->profile(), testing::undefinedOutcome()));
}

TEST(CompoundParsing, ParenthesesInsideOperandsAreParsedWhenTheOperandIsBuilt) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = compound("(1+2)*3", context);
    EXPECT_EQ(operandTexts(*expression), (Texts{"(1+2)", "3"}));
    const auto inner =
        std::dynamic_pointer_cast<CompoundExpression>(expression->subExpressions().front());
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(operandTexts(*inner), (Texts{"1", "2"}));
    EXPECT_EQ(operatorText(*inner), "+");
}

TEST(CompoundParsing, OnlyOneOuterPairOfParenthesesIsRemovedPerLevel) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto twice = compound("((1d6))", context);
    EXPECT_EQ(operandTexts(*twice), (Texts{"(1d6)"}));
    EXPECT_TRUE(twice->subOperators().empty());
    const auto inner =
        std::dynamic_pointer_cast<CompoundExpression>(twice->subExpressions().front());
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->rawString(), "(1d6)");
    EXPECT_EQ(operandTexts(*inner), (Texts{"1", "6"}));
    // "(1)+(2)" is not one pair around the whole text.
    EXPECT_EQ(operandTexts(*compound("(1)+(2)", context)), (Texts{"(1)", "(2)"}));
}

// --- Failure handling -------------------------------------------------------------------

TEST(CompoundParsing, EmptyTextsAndTextsEndingWithASemicolonAreUndefined) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto trailing = compound("a=1;b=2;", context);
    EXPECT_EQ(trailing->rawString(), "1/0");
    EXPECT_EQ(operandTexts(*trailing), (Texts{"1", "0"}));
    const auto blankProper = compound("a=1; ", context);
    EXPECT_EQ(blankProper->rawString(), "1/0");
    const auto parentheses = compound("()", context);
    EXPECT_EQ(operandTexts(*parentheses), (Texts{"1", "0"}));
    EXPECT_TRUE(matchesDistribution(parentheses->profile(), testing::undefinedOutcome()));
}

TEST(CompoundParsing, TypedInternalMarksAreUndefinedOperands) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto ampersand = compound("1+&", context);
    EXPECT_EQ(operandTexts(*ampersand), (Texts{"1", "(1/0)"}));
    const auto percent = compound("2%3", context);
    EXPECT_EQ(operandTexts(*percent), (Texts{"2", "(1/0)", "3"}));
    EXPECT_EQ(operatorText(*percent), "**");
    EXPECT_EQ(percent->comparator(), "");
}

TEST(CompoundParsing, AnOmittedOperandIsAnUntypedEmptyExpression) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto trailing = compound("3+", context);
    ASSERT_EQ(trailing->subExpressions().size(), 2U);
    EXPECT_EQ(trailing->subExpressions().back()->typeString(), "untyped");
    EXPECT_EQ(trailing->subExpressions().back()->rawString(), "");
    EXPECT_TRUE(testing::isEmptyProfile(trailing->subExpressions().back()->profile()));
    const auto count = compound("d6", context);
    EXPECT_EQ(operandTexts(*count), (Texts{"", "6"}));
    const auto times = compound("3*d6", context);
    EXPECT_EQ(operandTexts(*times), (Texts{"3", "", "6"}));
    EXPECT_EQ(operatorText(*times), "*d");
}

TEST(CompoundParsing, AStatementWithoutOneEqualsSignIsIgnored) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(compound("junk;a=1;1+a", context)->rawString(), "1+(1)");
    EXPECT_EQ(compound("a==2;b=3;a+b", context)->rawString(), "a+(3)");
}

TEST(CompoundParsing, UnbalancedParenthesesAreNoCompoundText) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(Expression::expressionWithString("(1+2", context)->typeString(), "untyped");
    EXPECT_EQ(Expression::expressionWithString("1+2)", context)->typeString(), "untyped");
}

// --- Definitions and names --------------------------------------------------------------

TEST(CompoundParsing, ADefinitionThatUsesItselfStopsAtThePassLimit) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    // One definition: at most three passes.
    EXPECT_EQ(compound("a=a+1;a", context)->rawString(), "(((a+1)+1)+1)");
    // Two definitions: at most four.
    EXPECT_EQ(compound("a=a;b=1;a", context)->rawString(), "((((a))))");
}

TEST(CompoundParsing, DefinitionsUseEachOtherAndTheConstants) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(compound("t=2pi;t", context)->rawString(), "(2(3.141592653589793))");
    EXPECT_EQ(compound("b=a+1;a=2;b", context)->rawString(), "((2)+1)");
    EXPECT_EQ(compound("a=1;a=2;a+a", context)->rawString(), "(2)+(2)");
}

TEST(CompoundParsing, ConstantNamesAreNotFoundInsideFunctionNames) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    // "ex" inside "exp" and "pi" inside nothing: only the free "ex" is written out.
    EXPECT_EQ(compound("exp+ex", context)->rawString(), "exp+(2.718281828459045)");
    // A definition named like part of a function name leaves the function name alone.
    EXPECT_EQ(compound("a=5;max+a", context)->rawString(), "max+(5)");
    EXPECT_EQ(compound("e=5;1e3", context)->rawString(), "1(5)3");
}

TEST(CompoundParsing, ALabelIsDroppedBeforeParsing) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto labelled = compound("Attack: 1d20+5", context);
    EXPECT_EQ(labelled->rawString(), "1d20+5");
    EXPECT_EQ(labelled->titleRawString(), "Attack: 1d20+5");
    // Only the first label goes; the rewritten text is cleaned once more.
    EXPECT_EQ(compound("a:b:1+2", context)->rawString(), "1+2");
}

// --- Function calls (kept whole, though the function kind is not there yet) ---------------

TEST(CompoundParsing, FunctionNamesAreKeptWholeAndRecorded) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto call = compound("2max(1,3)+min(2,4)", context);
    EXPECT_EQ(call->subFunctions(), (std::vector<std::string>{"max", "min"}));
    EXPECT_EQ(operandTexts(*call), (Texts{"2", "max(1,3)", "min(2,4)"}));
    EXPECT_EQ(operatorText(*call), "*+");
    EXPECT_EQ(call->subFunctionIndex(), 0);
}

TEST(CompoundParsing, ATextThatWouldRebuildItselfIsUndefined) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    // A function name without a call: its only operand would be the name again.
    const auto name = compound("max", context);
    EXPECT_EQ(name->subFunctions(), (std::vector<std::string>{"max"}));
    EXPECT_EQ(operandTexts(*name), (Texts{"1/0"}));
    // A text with nothing left to cut after its definitions.
    const auto bare = compound("a;b", context);
    EXPECT_EQ(operandTexts(*bare), (Texts{"1/0"}));
    EXPECT_TRUE(matchesDistribution(bare->profile(), testing::undefinedOutcome()));
}

// --- Sharing through the dictionary ------------------------------------------------------

TEST(CompoundParsing, EqualOperandsAreOneSharedExpression) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = compound("(1d6)+(1d6)", context);
    ASSERT_EQ(expression->subExpressions().size(), 2U);
    EXPECT_EQ(expression->subExpressions()[0].get(), expression->subExpressions()[1].get());
}

TEST(CompoundParsing, WithoutADictionaryTheOperandsAreStillShared) {
    const auto expression = std::dynamic_pointer_cast<CompoundExpression>(
        Expression::expressionWithString("(1d6)*(1d6)"));
    ASSERT_NE(expression, nullptr);
    EXPECT_EQ(expression->subExpressions()[0].get(), expression->subExpressions()[1].get());
    EXPECT_TRUE(matchesDistribution(expression->profile(), testing::product(d(1, 6), d(1, 6))));
}

}  // namespace
}  // namespace talvex::language
