#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "expressions/compound_expression.h"
#include "expressions/exact_distribution.h"
#include "expressions/test_support.h"
#include "kernels/operator_kernels.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Profile;
using testing::certain;
using testing::d;
using testing::Distribution;
using testing::matchesDistribution;
using testing::randomDice;
using testing::Rational;

Decimal dec(const char* text) { return Decimal::decimalNumberWithString(text); }

Profile profileOf(std::initializer_list<std::pair<const char*, long long>> outcomes) {
    Profile profile;
    for (const auto& [quantity, weight] : outcomes) {
        profile.addQuantity(dec(quantity), Decimal::decimalNumberWithInteger(weight));
    }
    return profile;
}

std::shared_ptr<CompoundExpression> compound(const std::string& text, RequestContext& context) {
    return std::dynamic_pointer_cast<CompoundExpression>(
        Expression::expressionWithString(text, context));
}

Profile profileOf(const std::string& text) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    return Expression::expressionWithString(text, context)->profile();
}

// Any compound expression will do for combining profiles with its operators.
std::shared_ptr<CompoundExpression> anyCompound() {
    return std::dynamic_pointer_cast<CompoundExpression>(Expression::expressionWithString("1+1"));
}

Distribution value(long long number) { return certain(Rational(number)); }

// --- Edge cases -------------------------------------------------------------------------

TEST(CompoundEvaluation, AConstantIsAddedToEveryOutcomeOfTheDice) {
    EXPECT_TRUE(matchesDistribution(profileOf("3d6+2"), testing::shifted(d(3, 6), 2)));
}

TEST(CompoundEvaluation, PowersAreLeftAssociative) {
    const auto list = profileOf("2^3^2").evaluations();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list.front().quantity().stringValue(), "64");
}

TEST(CompoundEvaluation, TwiceThreeDiceIsNotSixDice) {
    const Profile profile = profileOf("2*3d6");
    const auto list = profile.evaluations();
    ASSERT_EQ(list.size(), 16U);
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].quantity().stringValue(), std::to_string(6 + 2 * i));
    }
    EXPECT_TRUE(matchesDistribution(profile, testing::scaled(d(3, 6), 2)));
}

TEST(CompoundEvaluation, ARandomCountMixesTheDiceByItsChances) {
    // Half the weight on one die, half on two.
    Distribution expected = testing::scaled(d(1, 6), 1);
    for (auto& entry : expected) {
        entry.second = entry.second * Rational(1, 2);
    }
    for (const auto& [outcome, chance] : d(2, 6)) {
        expected[outcome] = expected[outcome] + chance * Rational(1, 2);
    }
    EXPECT_TRUE(matchesDistribution(profileOf("(1d2)d6"), expected));
}

// The comparison of the given operand texts, rounded to ten decimals, all at once.
Profile comparedAtOnce(std::string_view comparator, std::initializer_list<const char*> texts) {
    std::vector<Profile> operands;
    for (const char* text : texts) {
        operands.push_back(profileOf(text));
        operands.back().scaleToNormal();
    }
    roundComparisonOperands(operands);
    testing::StandaloneRequest request;
    return comparisonProfile(comparator, operands, request.context);
}

Profile combined(const CompoundExpression& any, std::vector<Profile> profiles, char op) {
    testing::StandaloneRequest request;
    return any.combineProfiles(std::move(profiles), op, request.context);
}

::testing::AssertionResult sameOutcomes(const Profile& actual, const Profile& expected) {
    const auto a = actual.evaluations();
    const auto e = expected.evaluations();
    if (a.size() != e.size()) {
        return ::testing::AssertionFailure() << a.size() << " outcomes, expected " << e.size();
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].quantity().compare(e[i].quantity()) != 0 ||
            a[i].weight().compare(e[i].weight()) != 0) {
            return ::testing::AssertionFailure()
                   << "outcome " << i << ": " << a[i].quantity().stringValue() << " with "
                   << a[i].weight().stringValue() << ", expected " << e[i].quantity().stringValue()
                   << " with " << e[i].weight().stringValue();
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(CompoundEvaluation, ComparatorsTakeAllTheirOperandsAtOnce) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto two = compound("1d6vs1d6", context);
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(two->comparator(), "vs");
    // After the dice letters only the comparator marks are left, joining two, resp. three,
    // profiles, which go to the comparison together.
    EXPECT_EQ(std::string(two->subOperators().begin(), two->subOperators().end()), "d%d");
    EXPECT_TRUE(sameOutcomes(two->profile(), comparedAtOnce("vs", {"1d6", "1d6"})));
    EXPECT_EQ(two->profile().comparatorString(), "vs");
    const auto three = compound("1d6 vs 1d6 vs 1d6", context);
    ASSERT_NE(three, nullptr);
    EXPECT_EQ(std::string(three->subOperators().begin(), three->subOperators().end()), "d%d%d");
    EXPECT_TRUE(sameOutcomes(three->profile(), comparedAtOnce("vs", {"1d6", "1d6", "1d6"})));
    // Not the first two compared and the outcome compared with the third.
    std::vector<Profile> firstTwo{comparedAtOnce("vs", {"1d6", "1d6"}), profileOf("1d6")};
    EXPECT_FALSE(sameOutcomes(three->profile(), comparisonProfile("vs", firstTwo, context)));
}

TEST(CompoundEvaluation, ComparatorsCompareAtTenDecimals) {
    // Apart only in the eleventh decimal: a tie once rounded.
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto close = compound("1.00000000001vt1", context);
    ASSERT_NE(close, nullptr);
    EXPECT_TRUE(sameOutcomes(close->profile(), comparedAtOnce("vt", {"1.00000000001", "1"})));
    EXPECT_TRUE(sameOutcomes(close->profile(), comparedAtOnce("vt", {"1", "1"})));
    const auto apart = compound("1.0000000001vt1", context);
    EXPECT_FALSE(sameOutcomes(apart->profile(), close->profile()));
}

TEST(CompoundEvaluation, ComparatorOperandsAreRoundedToTenDecimals) {
    std::vector<Profile> operands;
    operands.push_back(profileOf({{"0.333333333333", 1}, {"0.3333333333", 1}, {"2", 2}}));
    operands.push_back(profileOf({{"1.00000000004", 1}}));
    roundComparisonOperands(operands);
    const auto first = operands[0].evaluations();
    ASSERT_EQ(first.size(), 2U);
    EXPECT_EQ(first[0].quantity().stringValue(), "0.3333333333");
    EXPECT_EQ(first[0].weight().stringValue(), "2");
    EXPECT_EQ(operands[1].evaluations().front().quantity().stringValue(), "1");
}

TEST(CompoundEvaluation, AnOmittedOperandGivesWhatTheKernelMakesOfAnEmptyProfile) {
    Profile direct = profileOf({{"3", 1}});
    direct.assimilateProfile(Profile{}, CompoundExpressionAdditionF);
    const Profile trailing = profileOf("3+");
    const auto expected = direct.evaluations();
    const auto actual = trailing.evaluations();
    ASSERT_EQ(actual.size(), expected.size());
    EXPECT_TRUE(actual.front().quantity().isNotANumber());
    EXPECT_EQ(actual.front().weight().compare(expected.front().weight()), 0);
}

TEST(CompoundEvaluation, AnOmittedCountGivesAnEmptyProfile) {
    EXPECT_TRUE(testing::isEmptyProfile(profileOf("d6")));
    EXPECT_TRUE(testing::isEmptyProfile(profileOf("2d")));
    // An undefined count is not omitted: it is an undefined outcome with its weight.
    const Profile undefinedCount = profileOf("(1/0)d6");
    EXPECT_FALSE(testing::isEmptyProfile(undefinedCount));
    EXPECT_TRUE(matchesDistribution(undefinedCount, testing::undefinedOutcome()));
}

// --- Precedence -------------------------------------------------------------------------

TEST(CompoundEvaluation, LevelsGoFromTheDiceLettersDownToSums) {
    EXPECT_TRUE(matchesDistribution(profileOf("1+2*3^2"), value(19)));
    EXPECT_TRUE(matchesDistribution(profileOf("2e1^2"), value(400)));
    EXPECT_TRUE(matchesDistribution(profileOf("2^1e1"), value(1024)));
    EXPECT_TRUE(matchesDistribution(profileOf("12/2*3"), value(18)));
    EXPECT_TRUE(matchesDistribution(profileOf("2-3+4"), value(3)));
    EXPECT_TRUE(matchesDistribution(
        profileOf("2^1d2"),
        testing::combine(value(2), d(1, 2), [](const Rational&, const Rational& b) {
            return b == Rational(1) ? Rational(2) : Rational(4);
        })));
}

TEST(CompoundEvaluation, TheProfileIsTitledWithTheRewrittenText) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = Expression::expressionWithString("x=2; x + 1", context);
    EXPECT_EQ(expression->rawString(), "(2)+1");
    EXPECT_EQ(expression->profile().titleString(), "(2)+1");
    EXPECT_EQ(expression->profile().comparatorString(), "");
}

// --- Combining --------------------------------------------------------------------------

TEST(CombineProfiles, FewerThanTwoProfilesOrNoOperatorGiveAnEmptyProfile) {
    const auto any = anyCompound();
    ASSERT_NE(any, nullptr);
    EXPECT_TRUE(testing::isEmptyProfile(combined(*any, {}, '+')));
    EXPECT_TRUE(testing::isEmptyProfile(combined(*any, {profileOf({{"1", 1}})}, '+')));
    EXPECT_TRUE(testing::isEmptyProfile(
        combined(*any, {profileOf({{"1", 1}}), profileOf({{"2", 1}})}, '\0')));
}

TEST(CombineProfiles, NormalisesEveryProfileAndFoldsFromTheLeft) {
    const auto any = anyCompound();
    const Profile sum = combined(
        *any, {profileOf({{"1", 2}, {"2", 2}}), profileOf({{"10", 5}}), profileOf({{"100", 7}})},
        '+');
    Distribution expected;
    expected[Rational(111)] = Rational(1, 2);
    expected[Rational(112)] = Rational(1, 2);
    EXPECT_TRUE(matchesDistribution(sum, expected));
    EXPECT_LT(std::fabs(sum.totalWeight().doubleValue() - 1.0), 1e-30);
    const Profile quotient =
        combined(*any, {profileOf({{"8", 1}}), profileOf({{"2", 1}}), profileOf({{"2", 1}})}, '/');
    EXPECT_TRUE(matchesDistribution(quotient, value(2)));
}

TEST(CombineProfiles, AnUnknownOperatorMakesEveryOutcomeUndefined) {
    const auto any = anyCompound();
    const Profile result =
        combined(*any, {profileOf({{"1", 1}, {"2", 3}}), profileOf({{"5", 1}})}, 'x');
    EXPECT_TRUE(matchesDistribution(result, testing::undefinedOutcome()));
}

TEST(CombineProfiles, DiceLettersReexpandEveryPairThroughTheDictionary) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto any = compound("1+1", context);
    const Profile result = any->combineProfiles(
        {profileOf({{"1", 1}, {"-2", 1}}), profileOf({{"4", 1}})}, 'd', context);
    Distribution counts;
    counts[Rational(1)] = Rational(1, 2);
    counts[Rational(-2)] = Rational(1, 2);
    EXPECT_TRUE(matchesDistribution(result, randomDice(counts, 'd', value(4))));
    EXPECT_TRUE(expressions.contains("1d4"));
    EXPECT_TRUE(expressions.contains("0-2d4"));
}

TEST(CombineProfiles, ReexpansionKeepsUndefinedPairsWithTheirWeight) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    Profile counts = profileOf({{"2", 3}});
    counts.addQuantity(Decimal::notANumber(), Decimal::one());
    counts.scaleToNormal();
    const Profile result = diceReexpansion(counts, profileOf({{"2", 1}}), 'd', context);
    Distribution expected;
    expected[std::nullopt] = Rational(1, 4);
    for (const auto& [outcome, chance] : d(2, 2)) {
        expected[outcome] = chance * Rational(3, 4);
    }
    EXPECT_TRUE(matchesDistribution(result, expected));
}

TEST(CombineProfiles, ReexpansionWithAnEmptySideIsEmpty) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_TRUE(
        testing::isEmptyProfile(diceReexpansion(Profile{}, profileOf({{"6", 1}}), 'd', context)));
    EXPECT_TRUE(
        testing::isEmptyProfile(diceReexpansion(profileOf({{"2", 1}}), Profile{}, 'd', context)));
}

TEST(CombineProfiles, ReexpansionBuildsEachDiceTextOnce) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    static_cast<void>(Expression::expressionWithString("(1d4)d6", context));
    for (const char* text : {"1d6", "2d6", "3d6", "4d6"}) {
        EXPECT_TRUE(expressions.contains(text)) << text;
    }
    const auto fourDice = expressions.at("4d6");
    static_cast<void>(Expression::expressionWithString("(2d2)d6", context));
    EXPECT_EQ(expressions.at("4d6").get(), fourDice.get());
}

}  // namespace
}  // namespace talvex::language
