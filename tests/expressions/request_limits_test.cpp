// Calculations too large for an interactive calculator end with CalculationTooLarge, quickly,
// instead of running for minutes, exhausting memory or the stack.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>

#include "core/calculation_limits.h"
#include "expressions/expression.h"
#include "expressions/test_support.h"

namespace talvex::language {
namespace {

std::string repeated(const std::string& piece, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

void expectTooLarge(const std::string& text) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_THROW(static_cast<void>(Expression::expressionWithString(text, context)),
                 core::CalculationTooLarge)
        << text.substr(0, 60);
}

TEST(RequestLimits, DeeplyNestedFunctionCallsAreRefusedBeforeTheStackRunsOut) {
    expectTooLarge(repeated("abs(", 1500) + "1" + repeated(")", 1500));
    expectTooLarge(repeated("max(", 1500) + "1d6" + repeated(")", 1500));
    expectTooLarge("a~" + repeated("abs(", 1500) + "1d6" + repeated(")", 1500) + ";a+a");
}

// Restores the stack limit a test lowered.
class LoweredStackLimit {
  public:
    explicit LoweredStackLimit(rlim_t bytes) {
        getrlimit(RLIMIT_STACK, &m_saved);
        rlimit lowered = m_saved;
        lowered.rlim_cur = bytes;
        setrlimit(RLIMIT_STACK, &lowered);
    }
    ~LoweredStackLimit() { setrlimit(RLIMIT_STACK, &m_saved); }
    LoweredStackLimit(const LoweredStackLimit&) = delete;
    LoweredStackLimit& operator=(const LoweredStackLimit&) = delete;

  private:
    rlimit m_saved{};
};

TEST(RequestLimits, ConstructionsMayTakeHalfTheStack) {
    const LoweredStackLimit limit(4U * 1024U * 1024U);
    ExpressionDictionary expressions;
    const RequestContext context(expressions);
    EXPECT_EQ(context.constructionStackBudget(), 2U * 1024U * 1024U);
}

TEST(RequestLimits, NestingBeyondHalfASmallStackIsRefusedWhateverTheLevels) {
    // 256 KB of the stack for the constructions: far fewer levels than the level limit, in
    // every build, are refused in plain words rather than running out of stack.
    const LoweredStackLimit limit(512U * 1024U);
    const std::string text = repeated("abs(", 1400) + "1d6" + repeated(")", 1400);
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    try {
        static_cast<void>(Expression::expressionWithString(text, context));
        ADD_FAILURE() << "calculated";
    } catch (const core::CalculationTooLarge& refusal) {
        EXPECT_STREQ(refusal.what(), "the expression is nested too deeply to calculate");
    }
    EXPECT_EQ(context.constructionDepth(), 0U);
    EXPECT_TRUE(context.addedKeys().empty() || expressions.size() == context.addedKeys().size());
}

TEST(RequestLimits, ModeratelyNestedCallsAreCalculated) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto nested = Expression::expressionWithString(
        repeated("abs(", 200) + "0-1d6" + repeated(")", 200), context);
    EXPECT_EQ(testing::outcomes(nested->profile()).size(), 6U);
    EXPECT_EQ(context.constructionDepth(), 0U);
}

TEST(RequestLimits, DropCountsNearTheIntegerLimitKeepNothing) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto drop = Expression::expressionWithString("drop(1d6,5,9e18,9e18)", context);
    const auto outcomes = testing::outcomes(drop->profile());
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes.front().first, "0");
}

TEST(RequestLimits, DropWithManyRandomCountsIsBoundedAsAWhole) {
    expectTooLarge("drop(1d6,1d60,1d20,1d20)");
}

TEST(RequestLimits, TiesAmongTooManyOperandsAreRefused) {
    std::string ties = "1d6";
    std::string versus = "1d6";
    for (int i = 0; i < 13; ++i) {
        ties += "tt1d6";
        versus += "vs1d6";
    }
    expectTooLarge(ties);
    expectTooLarge(versus);
    // Without tie patterns, "vt" takes many operands.
    std::string many = "1";
    for (int i = 2; i <= 40; ++i) {
        many += "vt" + std::to_string(i);
    }
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto profile = Expression::expressionWithString(many, context)->profile();
    ASSERT_EQ(profile.evaluations().size(), 1U);
    EXPECT_EQ(profile.evaluations().front().quantity().stringValue(), "-39");
}

TEST(RequestLimits, FunctionsOverTooManyCombinationsAreRefused) {
    expectTooLarge("count(1d10000,1d1000,1d1000)");
    expectTooLarge("keep(1d100,1d100,1d100,1d100)");
    expectTooLarge("confine(1d1000,1d1000,1d1000)");
    expectTooLarge("dier(1d100,1d100)");
}

}  // namespace
}  // namespace talvex::language
