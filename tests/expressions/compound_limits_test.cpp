// Texts that would take the parser too deep, too long or too far end with a result or a plain
// CalculationTooLarge, and soon.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "core/calculation_limits.h"
#include "expressions/compound_expression.h"
#include "expressions/exact_distribution.h"

namespace talvex::language {
namespace {

using Clock = std::chrono::steady_clock;

// Generous: the point is that it ends, also in sanitizer builds.
constexpr auto kBounded = std::chrono::seconds(60);

std::string nested(std::size_t depth, const std::string& opening, const std::string& inner) {
    std::string text;
    text.reserve(depth * (opening.size() + 1) + inner.size());
    for (std::size_t i = 0; i < depth; ++i) {
        text += opening;
    }
    text += inner;
    text.append(depth, ')');
    return text;
}

// The message of the CalculationTooLarge that building `text` gives, or "" if none.
std::string tooLargeMessage(const std::string& text) {
    try {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        static_cast<void>(Expression::expressionWithString(text, context));
    } catch (const core::CalculationTooLarge& error) {
        return error.what();
    }
    return "";
}

// The only outcome of `text`, built within the bound; "" if there is not exactly one.
std::string onlyOutcomeWithinBound(const std::string& text) {
    const auto start = Clock::now();
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto list = Expression::expressionWithString(text, context)->profile().evaluations();
    EXPECT_LT(Clock::now() - start, kBounded);
    return list.size() == 1 ? list.front().quantity().stringValue() : "";
}

TEST(CompoundLimits, TenThousandNestedParenthesesAreRefusedPlainly) {
    const auto start = Clock::now();
    const std::string message = tooLargeMessage(nested(10'000, "(", "1"));
    EXPECT_NE(message.find("nest more than 500 levels"), std::string::npos) << message;
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
}

TEST(CompoundLimits, NestingUpToTheLimitIsCalculated) {
    for (const char* opening : {"(", "-(", "--(", "1d("}) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        const auto expression =
            Expression::expressionWithString(nested(kMaxNestingDepth, opening, "1"), context);
        EXPECT_TRUE(expression->profile().isDefined()) << opening;
    }
    EXPECT_NE(tooLargeMessage(nested(kMaxNestingDepth + 1, "(", "1")), "");
}

TEST(CompoundLimits, AMegabyteOfSumsIsCalculated) {
    std::string text = "1";
    while (text.size() < 1024 * 1024) {
        text += "+1";
    }
    EXPECT_EQ(onlyOutcomeWithinBound(text), std::to_string((text.size() + 1) / 2));
}

TEST(CompoundLimits, AMegabyteOfDiceTermsIsCalculated) {
    std::string text;
    while (text.size() < 1024 * 1024) {
        text += "(1d6)*0+2pi*0+";
    }
    EXPECT_EQ(onlyOutcomeWithinBound(text + "1"), "1");
}

TEST(CompoundLimits, DefinitionsThatUseThemselvesEnd) {
    const auto start = Clock::now();
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_TRUE(testing::matchesDistribution(
        Expression::expressionWithString("a=a+1;a", context)->profile(),
        testing::undefinedOutcome()));
    EXPECT_TRUE(testing::matchesDistribution(
        Expression::expressionWithString("a=b;b=a;a", context)->profile(),
        testing::undefinedOutcome()));
    // Growing tenfold at every pass, three passes.
    const auto grown = Expression::expressionWithString("a=aaaaaaaaaa;a", context);
    EXPECT_GT(grown->rawString().size(), 1000U);
    EXPECT_LT(Clock::now() - start, kBounded);
}

TEST(CompoundLimits, DefinitionsThatDoubleAtEveryStepAreRefused) {
    std::string text;
    for (char name = 'a'; name < 'z'; ++name) {
        text += std::string(1, name) + "=" + std::string(1, static_cast<char>(name + 1)) + "+" +
                std::string(1, static_cast<char>(name + 1)) + ";";
    }
    text += "z=1;a";
    const auto start = Clock::now();
    EXPECT_NE(tooLargeMessage(text), "");
    EXPECT_LT(Clock::now() - start, kBounded);
}

TEST(CompoundLimits, ALongChainOfDefinitionsIsRefusedOnceItNestsTooDeeply) {
    std::string text;
    for (int i = 1; i < 5000; ++i) {
        text += "n" + std::to_string(i + 1) + "=n" + std::to_string(i) + ";";
    }
    text += "n1=1;n5000";
    const auto start = Clock::now();
    EXPECT_NE(tooLargeMessage(text).find("nest"), std::string::npos);
    EXPECT_LT(Clock::now() - start, kBounded);
}

TEST(CompoundLimits, ManyUnusedDefinitionsCostLittle) {
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        text += "v" + std::to_string(i) + "=" + std::to_string(i) + ";";
    }
    EXPECT_EQ(onlyOutcomeWithinBound(text + "v7+v19999"), "20006");
}

TEST(CompoundLimits, HugeDiceCountsAndSizesAreRefusedPlainly) {
    for (const char* text : {"1e30d6", "(1d2)d100000000000", "(1d6)d1000000", "2d(1d1000)",
                             "1d6d(1e12)", "(1d1000000)d6+1", "3*(10^20)d6"}) {
        const auto start = Clock::now();
        EXPECT_NE(tooLargeMessage(text), "") << text;
        EXPECT_LT(Clock::now() - start, kBounded) << text;
    }
}

TEST(CompoundLimits, ModerateRandomDiceAreCalculated) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = Expression::expressionWithString("(2d10)d(1d20)", context);
    EXPECT_TRUE(expression->profile().isAlwaysDefined());
}

}  // namespace
}  // namespace talvex::language
