#include "expressions/dice_expression.h"

#include <gtest/gtest.h>

#include <random>

#include "core/calculation_limits.h"
#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using testing::outcomes;
using testing::scaledOutcomes;
using Outcomes = std::vector<std::pair<std::string, std::string>>;
using Counts = std::vector<std::pair<std::string, long long>>;

TEST(DiceExpression, OneDieHasSixEqualFaces) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto die = Expression::expressionWithString("1d6", context);
    EXPECT_EQ(die->typeString(), "xdy");
    EXPECT_EQ(outcomes(die->profile()),
              (Outcomes{{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}, {"5", "1"}, {"6", "1"}}));
}

TEST(DiceExpression, TwoDiceFormATriangle) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto dice = Expression::expressionWithString("2d6", context);
    EXPECT_EQ(scaledOutcomes(dice->profile(), 36), (Counts{{"2", 1},
                                                           {"3", 2},
                                                           {"4", 3},
                                                           {"5", 4},
                                                           {"6", 5},
                                                           {"7", 6},
                                                           {"8", 5},
                                                           {"9", 4},
                                                           {"10", 3},
                                                           {"11", 2},
                                                           {"12", 1}}));
}

TEST(DiceExpression, ThreeDiceMatchTheCountOfRolls) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto dice = Expression::expressionWithString("3d6", context);
    // Ways to roll each sum with three six-sided dice, counted directly.
    std::map<int, long long> ways;
    for (int a = 1; a <= 6; ++a) {
        for (int b = 1; b <= 6; ++b) {
            for (int c = 1; c <= 6; ++c) {
                ++ways[a + b + c];
            }
        }
    }
    Counts expected;
    for (const auto& [sum, count] : ways) {
        expected.emplace_back(std::to_string(sum), count);
    }
    EXPECT_EQ(scaledOutcomes(dice->profile(), 216), expected);
}

TEST(DiceExpression, ZeroDiceOrZeroFacesAlwaysShowZero) {
    for (const char* text : {"0d6", "3d0", "0c5", "2v0", "0w0"}) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        const auto dice = Expression::expressionWithString(text, context);
        EXPECT_EQ(outcomes(dice->profile()), (Outcomes{{"0", "1"}})) << text;
    }
}

TEST(DiceExpression, ChanceInTenTries) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(outcomes(Expression::expressionWithString("1c7", context)->profile()),
              (Outcomes{{"0", "3"}, {"1", "7"}}));
    const auto three = Expression::expressionWithString("3c7", context);
    EXPECT_EQ(three->typeString(), "xcy");
    EXPECT_EQ(scaledOutcomes(three->profile(), 1000),
              (Counts{{"0", 27}, {"1", 189}, {"2", 441}, {"3", 343}}));
}

TEST(DiceExpression, TenOrMoreInTenIsASureSuccess) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(outcomes(Expression::expressionWithString("1c10", context)->profile()),
              (Outcomes{{"1", "1"}}));
    EXPECT_EQ(outcomes(Expression::expressionWithString("1c25", context)->profile()),
              (Outcomes{{"1", "1"}}));
}

TEST(DiceExpression, PercentChance) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(outcomes(Expression::expressionWithString("1p100", context)->profile()),
              (Outcomes{{"1", "1"}}));
    EXPECT_EQ(outcomes(Expression::expressionWithString("1p50", context)->profile()),
              (Outcomes{{"0", "50"}, {"1", "50"}}));
    EXPECT_EQ(Expression::expressionWithString("2p35", context)->typeString(), "xpy");
}

TEST(DiceExpression, TenSidedDieWithHighFacesCountingZero) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto die = Expression::expressionWithString("1v4", context);
    EXPECT_EQ(die->typeString(), "xvy");
    EXPECT_EQ(outcomes(die->profile()),
              (Outcomes{{"0", "6"}, {"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}}));
}

TEST(DiceExpression, TenSidedDieSizeIsCappedAtTen) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto capped = Expression::expressionWithString("1v15", context);
    const auto ten = Expression::expressionWithString("1v10", context);
    EXPECT_EQ(outcomes(capped->profile()), outcomes(ten->profile()));
    EXPECT_EQ(outcomes(ten->profile()).size(), 10U);  // the zero entry has weight 0 and is gone
    EXPECT_EQ(outcomes(ten->profile()).front().first, "1");
}

TEST(DiceExpression, HundredSidedDieWithHighFacesCountingZero) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto die = Expression::expressionWithString("1w60", context);
    EXPECT_EQ(die->typeString(), "xwy");
    const auto list = outcomes(die->profile());
    ASSERT_EQ(list.size(), 61U);
    EXPECT_EQ(list.front(), (std::pair<std::string, std::string>{"0", "40"}));
    EXPECT_EQ(outcomes(Expression::expressionWithString("1w150", context)->profile()),
              outcomes(Expression::expressionWithString("1w100", context)->profile()));
}

TEST(DiceExpression, ALabelCanChangeTheNotation) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto dice = Expression::expressionWithString("d: 2c6", context);
    EXPECT_EQ(dice->typeString(), "xdy");
    EXPECT_EQ(dice->rawString(), "2c6");
    const auto twoD6 = Expression::expressionWithString("2d6");
    EXPECT_EQ(outcomes(dice->profile()), outcomes(twoD6->profile()));
}

TEST(DiceExpression, TenDiceCreateTheTenCountsInTheDictionary) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    static_cast<void>(Expression::expressionWithString("10d6", context));
    EXPECT_EQ(expressions.size(), 10U);
    for (int count = 1; count <= 10; ++count) {
        EXPECT_TRUE(expressions.contains(std::to_string(count) + "d6")) << count;
    }
}

TEST(DiceExpression, LaterCountsReuseTheChain) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto five = Expression::expressionWithString("5d6", context);
    const auto eight = Expression::expressionWithString("8d6", context);
    EXPECT_EQ(expressions.size(), 8U);
    EXPECT_EQ(expressions.at("5d6").get(), five.get());
    EXPECT_EQ(scaledOutcomes(eight->profile(), 1679616).front(),
              (std::pair<std::string, long long>{"8", 1}));
}

TEST(DiceExpression, ChainAndDirectBuildAgree) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto chained = Expression::expressionWithString("6d4", context);
    const auto direct = Expression::expressionWithString("6d4");
    EXPECT_EQ(scaledOutcomes(chained->profile(), 4096), scaledOutcomes(direct->profile(), 4096));
}

class NotDice : public ::testing::TestWithParam<const char*> {};

TEST_P(NotDice, IsNotADiceText) { EXPECT_FALSE(DiceExpression::isExpressionString(GetParam())); }

INSTANTIATE_TEST_SUITE_P(Texts, NotDice,
                         ::testing::Values("d6", "2d", "2D6", "2d6.5", "2dd6", "(1d4)d6", "2d(1d6)",
                                           "2.5d6", "", "26", "-2d6", "x"));

TEST(DiceExpression, LetterPriorityNotPosition) {
    // "d" is looked for first wherever it stands, so "2c3d4" splits at the "d".
    EXPECT_FALSE(DiceExpression::isExpressionString("2c3d4"));
    EXPECT_TRUE(DiceExpression::isExpressionString("12w100"));
}

TEST(DiceExpression, CountsTooLargeForThirtyTwoBitsAreCapped) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_THROW(static_cast<void>(Expression::expressionWithString("1d99999999999", context)),
                 core::CalculationTooLarge);
    EXPECT_THROW(static_cast<void>(Expression::expressionWithString("99999999999d6", context)),
                 core::CalculationTooLarge);
    // Ten-sided dice cap their size first, so a huge size is harmless there.
    const auto capped = Expression::expressionWithString("1v99999999999", context);
    EXPECT_EQ(outcomes(capped->profile()).size(), 10U);
}

TEST(DiceExpression, VeryManyDiceEndInAnUnderflowNotAHang) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_THROW(static_cast<void>(Expression::expressionWithString("300d6", context)),
                 core::DecimalError);
}

// Random texts of digits, letters, blanks, ":" and dots never crash the pipeline. Dice texts
// with single-digit numbers, and letters that are no operator, keep every calculation small,
// so nothing may throw at all.
TEST(DiceExpression, RandomTextsNeverThrow) {
    const std::string alphabet = "0123456789dcpvwxyzDQ :.\t";
    std::mt19937 random(20261120);
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    std::uniform_int_distribution<int> length(0, 9);
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        const int n = length(random);
        char previous = ' ';
        for (int k = 0; k < n; ++k) {
            char c = alphabet[pick(random)];
            const bool digit = c >= '0' && c <= '9';
            const bool previousDigit = previous >= '0' && previous <= '9';
            if (digit && previousDigit) {
                c = 'x';
            }
            // A dice letter only between two single digits, so that no letter becomes an
            // operator on a larger operand.
            if (std::string_view("dcpvw").find(c) != std::string_view::npos && !previousDigit) {
                c = 'y';
            }
            text.push_back(c);
            previous = c;
        }
        if (!text.empty() &&
            std::string_view("dcpvw").find(text.back()) != std::string_view::npos) {
            text.back() = 'z';
        }
        EXPECT_NO_THROW(static_cast<void>(Expression::expressionWithString(text, context))) << text;
        EXPECT_NO_THROW(static_cast<void>(Expression::expressionWithString(text))) << text;
    }
}

// With numbers of any length the only way out of the pipeline is one of the two faults the
// request boundary reports.
TEST(DiceExpression, RandomTextsOnlyFailWithReportableFaults) {
    const std::string alphabet = "0123456789dcpvw :.";
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    std::uniform_int_distribution<int> length(0, 12);
    for (int i = 0; i < 300; ++i) {
        std::string text;
        const int n = length(random);
        for (int k = 0; k < n; ++k) {
            text.push_back(alphabet[pick(random)]);
        }
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        try {
            static_cast<void>(Expression::expressionWithString(text, context));
        } catch (const core::DecimalError&) {
        } catch (const core::CalculationTooLarge&) {
        }
    }
}

TEST(DiceExpression, ChainsCertainToUnderflowAreRefusedBeforeAnyWork) {
    for (const char* text :
         {"200d6", "167d6", "1000d6", "130c9", "130c1", "65p1", "65w7", "130v10", "374p45"}) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        try {
            static_cast<void>(Expression::expressionWithString(text, context));
            ADD_FAILURE() << text << " was calculated";
        } catch (const core::DecimalError& error) {
            EXPECT_EQ(error.fault(), core::DecimalFault::Underflow) << text;
        }
        EXPECT_TRUE(expressions.empty()) << text;
    }
}

TEST(DiceExpression, ChainsThatMightStayInRangeAreCalculated) {
    // Chances of one half settle at 1E-128 instead of vanishing; 165d6 ends just above it.
    for (const char* text : {"1000d2", "600c5", "165d6"}) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        EXPECT_NO_THROW(static_cast<void>(Expression::expressionWithString(text, context))) << text;
    }
}

// At the first count refused at once, the count below it either fails on its own or fails on
// one more die: the refusal only ever says what the calculation would have said.
struct RefusalEdge {
    const char* notation;
    int firstRefused;
};

class RefusedChain : public ::testing::TestWithParam<RefusalEdge> {};

TEST_P(RefusedChain, WouldHaveUnderflowedOneDieLater) {
    const auto [notation, firstRefused] = GetParam();
    const std::string refused = std::to_string(firstRefused) + notation;
    const std::string below = std::to_string(firstRefused - 1) + notation;
    {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        EXPECT_THROW(static_cast<void>(Expression::expressionWithString(refused, context)),
                     core::DecimalError);
        EXPECT_TRUE(expressions.empty()) << refused;
    }
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    core::Profile chain;
    try {
        chain = Expression::expressionWithString(below, context)->profile();
    } catch (const core::DecimalError& error) {
        EXPECT_EQ(error.fault(), core::DecimalFault::Underflow) << below;
        EXPECT_FALSE(expressions.empty()) << below << " was refused rather than calculated";
        return;
    }
    const core::Profile die =
        Expression::expressionWithString(std::string("1") + notation, context)->profile();
    try {
        chain.assimilateProfile(die, DiceExpressionF);
        ADD_FAILURE() << refused << " would have been calculated";
    } catch (const core::DecimalError& error) {
        EXPECT_EQ(error.fault(), core::DecimalFault::Underflow) << refused;
    }
}

// The first counts with p^x <= 1E-129.5 for the chance p of the rarer extreme face.
INSTANTIATE_TEST_SUITE_P(Dice, RefusedChain,
                         ::testing::Values(RefusalEdge{"d3", 272}, RefusalEdge{"d6", 167},
                                           RefusalEdge{"d20", 100}, RefusalEdge{"c1", 130},
                                           RefusalEdge{"c9", 130}, RefusalEdge{"c4", 326},
                                           RefusalEdge{"p1", 65}, RefusalEdge{"p45", 374},
                                           RefusalEdge{"v1", 130}, RefusalEdge{"v10", 130},
                                           RefusalEdge{"w1", 65}, RefusalEdge{"w37", 65}));

TEST(DiceExpression, ChainsTooLongToCombineAreRefusedBeforeAnyWork) {
    // Two-sided dice never underflow (their smallest chances round to 1E-128), so the work
    // bound is what ends them; so too for hundreds of dice of hundreds of faces.
    for (const char* text : {"21223d2", "411d411", "9000c5"}) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        EXPECT_THROW(static_cast<void>(Expression::expressionWithString(text, context)),
                     core::CalculationTooLarge)
            << text;
        EXPECT_TRUE(expressions.empty()) << text;
        EXPECT_THROW(static_cast<void>(Expression::expressionWithString(text)),
                     core::CalculationTooLarge)
            << text;
    }
}

TEST(DiceExpression, ChainsWithinTheBoundAreBuilt) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto dice = Expression::expressionWithString("500d2", context);
    EXPECT_EQ(dice->profile().evaluations().size(), 501U);
}

}  // namespace
}  // namespace talvex::language
