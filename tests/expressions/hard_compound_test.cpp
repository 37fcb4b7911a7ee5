#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "core/calculation_limits.h"
#include "expressions/exact_distribution.h"
#include "expressions/hard_compound_expression.h"
#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using testing::d;
using testing::Distribution;
using testing::matchesDistribution;
using testing::Rational;

core::Profile build(const std::string& text) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    return Expression::expressionWithString(text, context)->profile();
}

// Every outcome v of `value`, mapped by f, with its chance: one roll used at every occurrence.
Distribution fixed(const Distribution& value, const std::function<Rational(Rational)>& f) {
    Distribution result;
    for (const auto& [outcome, chance] : value) {
        testing::Outcome mapped;
        if (outcome) {
            mapped = f(*outcome);
        }
        result[mapped] = result[mapped] + chance;
    }
    return result;
}

TEST(HardCompoundExpression, OneRollUsedTwice) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto hard = Expression::expressionWithString("a~1d6;a+a", context);
    EXPECT_EQ(hard->typeString(), "hard compound");
    EXPECT_TRUE(
        matchesDistribution(hard->profile(), fixed(d(1, 6), [](Rational v) { return v + v; })));
    // A soft definition rolls twice.
    EXPECT_TRUE(matchesDistribution(build("a=1d6;a+a"), d(2, 6)));
}

TEST(HardCompoundExpression, ParsingSplitsTheHardDefinitionOff) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression =
        Expression::expressionWithString("Roll: b=2; a ~ 1d6; c=3; a*b+c", context);
    const auto* hard = dynamic_cast<const HardCompoundExpression*>(expression.get());
    ASSERT_NE(hard, nullptr);
    EXPECT_EQ(hard->hardSymbol(), "a");
    EXPECT_EQ(hard->hardValue(), "1d6");
    EXPECT_EQ(hard->remainingExpressionString(), "b=2;c=3;a*b+c");
    EXPECT_EQ(hard->rawString(), "b=2;a~1d6;c=3;a*b+c");
    EXPECT_TRUE(
        matchesDistribution(hard->profile(), fixed(d(1, 6), [](Rational v) { return v * 2 + 3; })));
}

TEST(HardCompoundExpression, OneUseIsAnOrdinaryDefinition) {
    EXPECT_TRUE(
        matchesDistribution(build("a~1d6;a*3"), fixed(d(1, 6), [](Rational v) { return v * 3; })));
    const core::Profile hard = build("a~1d6;a*3");
    const core::Profile soft = build("a=1d6;a*3");
    EXPECT_EQ(testing::outcomes(hard), testing::outcomes(soft));
}

TEST(HardCompoundExpression, UsesThroughOtherDefinitionsCount) {
    EXPECT_TRUE(matchesDistribution(build("a~1d6;b=a;b+a"),
                                    fixed(d(1, 6), [](Rational v) { return v + v; })));
}

TEST(HardCompoundExpression, AnUnusedDefinitionIsIgnored) {
    EXPECT_TRUE(matchesDistribution(build("a~1d6;2d6"), d(2, 6)));
}

TEST(HardCompoundExpression, SeveralHardDefinitionsNest) {
    Distribution expected;
    for (const auto& [a, chanceA] : d(1, 4)) {
        for (const auto& [b, chanceB] : d(1, 6)) {
            const Rational value = *a * *b + *a + *b;
            expected[value] = expected[value] + chanceA * chanceB;
        }
    }
    EXPECT_TRUE(matchesDistribution(build("a~1d4;b~1d6;a*b+a+b"), expected));
}

TEST(HardCompoundExpression, AnUndefinedOutcomeOfTheValueIsPassedOn) {
    // 1/(1d2-1) is undefined half of the time.
    Distribution expected;
    expected[std::nullopt] = Rational(1, 2);
    expected[Rational(2)] = Rational(1, 2);
    EXPECT_TRUE(matchesDistribution(build("a~1/(1d2-1);a+a"), expected));
}

TEST(HardCompoundExpression, ATildeOutsideEveryStatementIsUndefined) {
    const core::Profile profile = build("1d6~3");
    ASSERT_EQ(profile.evaluations().size(), 1U);
    EXPECT_TRUE(profile.evaluations().front().quantity().isNotANumber());
}

TEST(HardCompoundExpression, ComparisonsInsideKeepTheirComparator) {
    const core::Profile profile = build("a~1d6;(a+a)vt(a*2)");
    EXPECT_EQ(profile.comparatorString(), "vt");
    ASSERT_EQ(profile.evaluations().size(), 1U);
    EXPECT_EQ(profile.evaluations().front().quantity().stringValue(), "0");
}

TEST(HardCompoundExpression, NotRecognisedWithoutATilde) {
    EXPECT_FALSE(HardCompoundExpression::isExpressionString("a=1d6;a+a"));
    EXPECT_TRUE(HardCompoundExpression::isExpressionString("x: a~1d6;a+a"));
}

// Against a direct enumeration: a name fixed to one roll of XdY and used two or three times.
TEST(HardCompoundExpression, AgreesWithEnumerationForRandomDice) {
    std::mt19937 random(4242);
    struct Form {
        const char* text;
        std::function<Rational(Rational)> f;
    };
    const std::vector<Form> forms = {
        {"a+a", [](Rational v) { return v + v; }},
        {"a*a", [](Rational v) { return v * v; }},
        {"a*a-a", [](Rational v) { return v * v - v; }},
        {"a+a+a", [](Rational v) { return v + v + v; }},
        {"(a+1)*a+2*a", [](Rational v) { return (v + 1) * v + v * 2; }},
    };
    for (int round = 0; round < 20; ++round) {
        const long long count = 1 + static_cast<long long>(random() % 3);
        const long long size = 2 + static_cast<long long>(random() % 7);
        const Form& form = forms[random() % forms.size()];
        const std::string text =
            "a~" + std::to_string(count) + "d" + std::to_string(size) + ";" + form.text;
        EXPECT_TRUE(matchesDistribution(build(text), fixed(d(count, size), form.f))) << text;
    }
}

TEST(HardCompoundExpression, RunawayEnumerationsStopAtTheDictionaryBound) {
    // Nested hard definitions multiply the expressions they build (nine of them would build
    // 6^9); every dictionary stops accepting new expressions at its bound. A dictionary
    // filled almost to it shows the stop without waiting for the enumeration to get there.
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    for (std::size_t i = 0; expressions.size() + 20 < core::kMaxExpressions; ++i) {
        static_cast<void>(Expression::expressionWithString(std::to_string(i), context));
    }
    EXPECT_THROW(
        static_cast<void>(Expression::expressionWithString("a~1d6;b~1d6;a*a+b*b", context)),
        core::CalculationTooLarge);
}

}  // namespace
}  // namespace talvex::language
