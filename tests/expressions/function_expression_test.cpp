#include "expressions/function_expression.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "expressions/compound_expression.h"
#include "expressions/test_support.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using testing::d;
using testing::isEmptyProfile;
using testing::kDecimalTolerance;
using testing::matchesWithin;
using testing::mixture;
using testing::outcomes;
using testing::profileOf;
using testing::Rational;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

std::shared_ptr<FunctionExpression> function(const std::string& text, RequestContext& context) {
    return std::dynamic_pointer_cast<FunctionExpression>(
        Expression::expressionWithString(text, context));
}

TEST(FunctionExpression, ThirtyFiveNamesLongerPrefixesFirst) {
    const std::vector<std::string_view> names(FunctionExpression::functionNames().begin(),
                                              FunctionExpression::functionNames().end());
    EXPECT_EQ(names, (std::vector<std::string_view>{"ln",
                                                    "log",
                                                    "exp",
                                                    "sin",
                                                    "cos",
                                                    "tan",
                                                    "round",
                                                    "floor",
                                                    "ceil",
                                                    "abs",
                                                    "arcsin",
                                                    "arccos",
                                                    "arctan",
                                                    "mean",
                                                    "stddev",
                                                    "minval",
                                                    "maxval",
                                                    "values",
                                                    "median",
                                                    "mode",
                                                    "range",
                                                    "max",
                                                    "min",
                                                    "dieMult",
                                                    "diePow",
                                                    "diew",
                                                    "dier",
                                                    "die",
                                                    "keep",
                                                    "count",
                                                    "confineweightrange",
                                                    "confineweight",
                                                    "confine",
                                                    "criterion",
                                                    "drop"}));
}

TEST(FunctionExpression, TheCompoundGrammarReadsTheSameList) {
    EXPECT_EQ(CompoundExpression::functionArray().data(),
              FunctionExpression::functionNames().data());
    EXPECT_EQ(CompoundExpression::functionArray().size(), 35U);
}

struct Recognition {
    const char* text;
    bool isFunction;
};

class FunctionRecognition : public ::testing::TestWithParam<Recognition> {};

TEST_P(FunctionRecognition, IsOneWholeCallOfAKnownName) {
    EXPECT_EQ(FunctionExpression::isExpressionString(GetParam().text), GetParam().isFunction)
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FunctionRecognition,
    ::testing::Values(
        Recognition{"max(1d6,3)", true}, Recognition{"dier(2,6)", true}, Recognition{"max()", true},
        Recognition{"maxval(2d6)", true}, Recognition{"confineweightrange(1d4,0,0.5)", true},
        Recognition{"max(1d6,min(2,3))", true}, Recognition{"Best of two: max(1d20, 1d20)", true},
        // Blanks are cleaned away before the name is looked for.
        Recognition{" die ( 2 ) ", true}, Recognition{"max(1d6", false},
        Recognition{"max(1)(2)", false}, Recognition{"max(1,2)+1", false},
        Recognition{"max(1))", false}, Recognition{"max((1)", false},
        Recognition{"keepx(1)", false}, Recognition{"MAX(1)", false},
        Recognition{"(max(1))", false}, Recognition{"1+max(1)", false}, Recognition{"max", false},
        Recognition{"maxx(1)", false}, Recognition{"", false}, Recognition{"3d6", false}),
    [](const ::testing::TestParamInfo<Recognition>& param) {
        return "Text" + std::to_string(param.index);
    });

TEST(FunctionExpression, IsTheKindAWholeCallBecomes) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto call = Expression::expressionWithString("max(1d6,3)", context);
    EXPECT_EQ(call->typeString(), "function");
    // Not whole calls: a compound text and a text no kind takes.
    EXPECT_EQ(Expression::expressionWithString("max(1,2)+1", context)->typeString(), "compound");
    EXPECT_EQ(Expression::expressionWithString("max(1d6", context)->typeString(), "untyped");
}

TEST(FunctionExpression, SplitsArgumentsAtTopLevelCommasOnly) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto call = function("max(1d6,min(2,3d4))", context);
    ASSERT_NE(call, nullptr);
    EXPECT_EQ(call->function(), "max");
    EXPECT_EQ(call->argumentStrings(), (std::vector<std::string>{"1d6", "min(2,3d4)"}));
    EXPECT_EQ(call->arguments().size(), 2U);
    const auto nested = function("max(1d6,min(2,3))", context);
    EXPECT_EQ(nested->argumentStrings(), (std::vector<std::string>{"1d6", "min(2,3)"}));
    const auto deep = function("max((1,2),die(1,(2)),3)", context);
    EXPECT_EQ(deep->argumentStrings(), (std::vector<std::string>{"(1,2)", "die(1,(2))", "3"}));
}

TEST(FunctionExpression, SkipsEmptyArguments) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(function("max(1,,2)", context)->argumentStrings(),
              (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(function("max(,1)", context)->argumentStrings(), (std::vector<std::string>{"1"}));
    EXPECT_EQ(function("max(1,)", context)->argumentStrings(), (std::vector<std::string>{"1"}));
    EXPECT_TRUE(function("max()", context)->argumentStrings().empty());
    EXPECT_TRUE(function("max(,,)", context)->arguments().empty());
}

TEST(FunctionExpression, ArgumentsAreCleanedAndBuiltThroughTheDictionary) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto call = function("Roll: keep( 1d6 , 2, 5 , 0)", context);
    EXPECT_EQ(call->rawString(), "keep(1d6,2,5,0)");
    EXPECT_EQ(call->argumentStrings(), (std::vector<std::string>{"1d6", "2", "5", "0"}));
    EXPECT_EQ(expressions.count("1d6"), 1U);
    EXPECT_EQ(expressions.count("keep(1d6,2,5,0)"), 1U);
    // The same text, blanks and all, is the same expression.
    EXPECT_EQ(Expression::expressionWithString("keep(1d6,2,5,0)", context), call);
    EXPECT_EQ(Expression::expressionWithString(" die ( 2 ) ", context),
              Expression::expressionWithString("die(2)", context));
}

TEST(FunctionExpression, LongerNamesWinOverTheirPrefixes) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    for (const char* name : {"dieMult", "diePow", "diew", "dier", "die", "confineweightrange",
                             "confineweight", "confine", "maxval", "max", "minval", "min"}) {
        const auto call = function(std::string(name) + "(1d6,2)", context);
        ASSERT_NE(call, nullptr) << name;
        EXPECT_EQ(call->function(), name);
    }
}

TEST(FunctionExpression, DierIsDispatchedToTheRandomDiceKernel) {
    // dier(2,6) is two dice of six sides; die(2,6) would be 2 or 6.
    EXPECT_TRUE(matchesWithin(profileOf("dier(2,6)"), d(2, 6), kDecimalTolerance));
    EXPECT_EQ(outcomes(profileOf("die(2,6)")), (Outcomes{{"2", "1"}, {"6", "1"}}));
}

TEST(FunctionExpression, ConfineIsNotTakenForItsLongerRelatives) {
    EXPECT_TRUE(matchesWithin(
        profileOf("confine(1d6,2,5)"),
        testing::uniform({Rational(2), Rational(3), Rational(4), Rational(5)}), "1e-12"));
}

TEST(FunctionExpression, MaxOfOneArgumentIsThatProfile) {
    EXPECT_EQ(outcomes(profileOf("max(1d6)")), outcomes(profileOf("1d6")));
    EXPECT_TRUE(isEmptyProfile(profileOf("max()")));
}

TEST(FunctionExpression, AWrongCountIsTheEmptyProfileNotAnError) {
    for (const char* text :
         {"keep(3d6,2)", "keep(1,2,3,4,5)", "count(1d6,2)", "confine(1d6)",
          "confineweight(1d6,1,2,3)", "confineweightrange()", "criterion(3,6)", "dier(2)",
          "dieMult(1d6)", "diePow(1,2,3)", "diew(1d6,1,2)", "drop(1d6,4,1)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(FunctionExpression, MinvalAndMaxvalAreConstants) {
    EXPECT_EQ(outcomes(profileOf("minval(2d6)")), (Outcomes{{"2", "1"}}));
    EXPECT_EQ(outcomes(profileOf("maxval(2d6)")), (Outcomes{{"12", "1"}}));
    const auto five = profileOf("minval(5)").evaluations();
    ASSERT_EQ(five.size(), 1U);
    EXPECT_EQ(five[0].quantity().stringValue(), "5");
}

TEST(FunctionExpression, CallsInsideCompoundTextsAreKeptWhole) {
    EXPECT_EQ(outcomes(profileOf("max(1,2)+1")), (Outcomes{{"3", "1"}}));
    EXPECT_TRUE(matchesWithin(profileOf("2*max(1d4,1d4)"),
                              testing::scaled(testing::maximum(d(1, 4), d(1, 4)), 2),
                              kDecimalTolerance));
    EXPECT_TRUE(matchesWithin(profileOf("a=1d6;max(a,a)"), testing::maximum(d(1, 6), d(1, 6)),
                              kDecimalTolerance));
}

TEST(FunctionExpression, ArgumentsMayBeAnyKind) {
    EXPECT_TRUE(matchesWithin(profileOf("die(1d2,2+3,mean(1d6),max(1,2))"),
                              mixture({{d(1, 2), Rational(1)},
                                       {testing::constant(Rational(5)), Rational(1)},
                                       {testing::constant(Rational(7, 2)), Rational(1)},
                                       {testing::constant(Rational(2)), Rational(1)}}),
                              kDecimalTolerance));
}

TEST(FunctionExpression, ArgumentsHoldWhatTheKernelLeftOfThem) {
    // die scales each argument to weight one in place.
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto call = function("die(1d4,3)", context);
    ASSERT_EQ(call->arguments().size(), 2U);
    EXPECT_EQ(outcomes(call->arguments()[0]),
              (Outcomes{{"1", "0.25"}, {"2", "0.25"}, {"3", "0.25"}, {"4", "0.25"}}));
    // The argument's own expression keeps its profile.
    EXPECT_EQ(outcomes(expressions.at("1d4")->profile()),
              (Outcomes{{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}}));
}

TEST(FunctionExpression, WithoutADictionaryEqualArgumentsAreStillBuilt) {
    const auto call = Expression::expressionWithString("max(1d6,1d6)");
    EXPECT_EQ(call->typeString(), "function");
    EXPECT_TRUE(
        matchesWithin(call->profile(), testing::maximum(d(1, 6), d(1, 6)), kDecimalTolerance));
}

}  // namespace
}  // namespace talvex::language
