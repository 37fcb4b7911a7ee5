#include "expressions/expression.h"

#include <gtest/gtest.h>

#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using testing::outcomes;

TEST(Expression, CleaningDropsTheFirstLabelAndBlanks) {
    EXPECT_EQ(Expression::cleanString("Roll: 2d6"), "2d6");
    EXPECT_EQ(Expression::cleanString("a:b:2d6"), "b:2d6");
    EXPECT_EQ(Expression::cleanString(" 3 d\t6\r\n"), "3d6");
    EXPECT_EQ(Expression::cleanString("3D6"), "3D6");
}

TEST(Expression, LabelledAndPlainTextsShareOneEntry) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto labelled = Expression::expressionWithString("Roll: 2d6", context);
    const auto plain = Expression::expressionWithString("2d6", context);
    EXPECT_EQ(labelled.get(), plain.get());
    EXPECT_EQ(plain->rawString(), "2d6");
    EXPECT_EQ(labelled->titleRawString(), "Roll: 2d6");
}

TEST(Expression, BlanksDoNotMakeANewEntry) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto spaced = Expression::expressionWithString("3 d 6", context);
    const auto plain = Expression::expressionWithString("3d6", context);
    EXPECT_EQ(spaced.get(), plain.get());
}

TEST(Expression, BuildingTheSameTextTwiceReturnsTheSameObject) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto first = Expression::expressionWithString("4d8", context);
    const std::size_t entries = expressions.size();
    const auto second = Expression::expressionWithString("4d8", context);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(expressions.size(), entries);
}

TEST(Expression, TheEmptyTextIsAnUntypedExpressionWithAnEmptyProfile) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto empty = Expression::expressionWithString("", context);
    EXPECT_EQ(empty->typeString(), "untyped");
    const core::Profile profile = empty->profile();
    EXPECT_FALSE(profile.isDefined());
    ASSERT_EQ(profile.evaluations().size(), 1U);
    EXPECT_TRUE(profile.evaluations().front().quantity().isNotANumber());
    EXPECT_TRUE(expressions.contains(""));
}

TEST(Expression, UnrecognisedTextIsUntypedAndStored) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto unknown = Expression::expressionWithString("hi", context);
    EXPECT_EQ(unknown->typeString(), "untyped");
    EXPECT_EQ(unknown->profile().titleString(), "hi");
    EXPECT_TRUE(expressions.contains("hi"));
}

TEST(Expression, ProfileReturnsACopy) {
    const auto die = Expression::expressionWithString("1d6");
    core::Profile copy = die->profile();
    copy.addQuantity(core::Decimal::decimalNumberWithInteger(7), core::Decimal::one());
    copy.setTitleString(std::string("changed"));
    EXPECT_EQ(outcomes(die->profile()).size(), 6U);
    EXPECT_EQ(die->profile().titleString(), "1d6");
}

TEST(Expression, ProfileIsTitledWithTheCleanedText) {
    const auto dice = Expression::expressionWithString("Attack: 1d20");
    EXPECT_EQ(dice->profile().titleString(), "1d20");
}

TEST(Expression, WithoutADictionaryEachBuildIsNew) {
    const auto first = Expression::expressionWithString("2d4");
    const auto second = Expression::expressionWithString("2d4");
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(outcomes(first->profile()), outcomes(second->profile()));
}

TEST(Expression, SubsetTest) {
    EXPECT_TRUE(Expression::isSubset("123", "0123456789"));
    EXPECT_TRUE(Expression::isSubset("", "0123456789"));
    EXPECT_FALSE(Expression::isSubset("12a", "0123456789"));
}

TEST(Expression, EvaluationDrawsFromTheProfile) {
    srandom(11);
    const auto die = Expression::expressionWithString("1d6");
    for (int i = 0; i < 50; ++i) {
        const int roll = die->evaluate().intValue();
        EXPECT_GE(roll, 1);
        EXPECT_LE(roll, 6);
    }
    EXPECT_EQ(die->profile().evaluationHistory().size(), 50U);
}

}  // namespace
}  // namespace talvex::language
