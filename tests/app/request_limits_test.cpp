// Requests too large for an interactive calculator end within one budget for the whole
// request, with a plain message, through the same session the window and talvex-cli use;
// nothing the failed request built stays in the dictionary.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/request.h"
#include "core/calculation_limits.h"

namespace talvex::app {
namespace {

std::string repeated(const std::string& piece, int times, const std::string& separator = "") {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += (i > 0 ? separator : "") + piece;
    }
    return text;
}

// Runs builds in place and notes what their request spent, and of how much.
class MeteringRunner final : public CalculationRunner {
  public:
    void run(language::RequestContext& context, const std::function<void()>& work) override {
        struct Note {
            MeteringRunner& runner;
            language::RequestContext& context;
            ~Note() {
                runner.spent = context.spent();
                runner.ceiling = context.limits().work;
                runner.heldBytes = context.heldBytes();
            }
        } note{*this, context};
        work();
    }

    std::uint64_t spent = 0;
    std::uint64_t ceiling = 0;
    std::uint64_t heldBytes = 0;
};

// A smaller budget than the real one, so that the texts end quickly in every build; the real
// ceiling is exercised by the peak-memory test.
constexpr language::RequestLimits kSmallLimits{.work = 1'500'000,
                                               .profileBytes = 128ULL * 1024ULL * 1024ULL};

struct LargeText {
    const char* name;
    std::string text;
};

void PrintTo(const LargeText& large, std::ostream* out) { *out << large.name; }

std::vector<LargeText> largeTexts() {
    std::string versus = "1";
    for (int i = 2; i <= 30000; ++i) {
        versus += "vt" + std::to_string(i);
    }
    return {
        {"hugeDiePlusAHundredOnes", "1d1000000" + repeated("+1", 100)},
        {"maxOfAHugeDieAndAHundredOnes", "max(1d1000000" + repeated(",1", 100) + ")"},
        {"twentyLargeCounts", repeated("count(1d10000,1d1000,1d2)", 20, "+")},
        {"versusWithThirtyThousandOperands", versus},
        {"aHundredHugeDice", repeated("1d1000000", 100, "+")},
        {"thirteenD610", "13d610"},
        {"manyCoins", "3300c5"},
        {"manyTwoSidedDice", "2666d2"},
        {"deeplyNestedAbs", repeated("abs(", 1600) + "1" + repeated(")", 1600)},
        {"deeplyNestedMax", repeated("max(", 1600) + "1d6" + repeated(")", 1600)},
        {"dropWithRandomCounts", "drop(1d6,1d60,1d20,1d20)"},
        {"tiesAmongThirteen", "1d6" + repeated("tt1d6", 13)},
        {"versusAmongFourteen", "1d6" + repeated("vs1d6", 13)},
        {"countOverTooManyCombinations", "count(1d10000,1d1000,1d1000)"},
        {"keepOverTooManyCombinations", "keep(1d100,1d100,1d100,1d100)"},
        {"confineOverTooManyCombinations", "confine(1d1000,1d1000,1d1000)"},
        {"randomDiceTooLarge", "dier(1d100,1d100)"},
        {"randomCountOfHugeDice", "(1d6)d1000000"},
        {"hugeRepeatedRoll", "dieMult(1d6,1000000000)"},
    };
}

class RequestLimitsTable : public ::testing::TestWithParam<LargeText> {};

TEST_P(RequestLimitsTable, EndsWithinTheBudgetWithAPlainMessageAndKeepsNothing) {
    MeteringRunner runner;
    CalculationSession session(kSmallLimits);
    session.setRunner(&runner);
    static_cast<void>(session.build("3d6"));
    const auto before = session.expressions().size();

    // Refused as too large (also by the limits that protect the stack and the digits of a tie
    // pattern), never stopped by anything else.
    try {
        static_cast<void>(session.build(GetParam().text));
        ADD_FAILURE() << "calculated";
    } catch (const core::CalculationTooLarge& refusal) {
        const std::string message = refusal.what();
        EXPECT_TRUE(message.find("too large to calculate") != std::string::npos ||
                    message.find(" too ") != std::string::npos)
            << message;
    }
    EXPECT_LE(runner.spent, runner.ceiling);
    EXPECT_EQ(session.expressions().size(), before);
    EXPECT_TRUE(session.expressions().contains("3d6"));
    // The session goes on as before.
    EXPECT_EQ(session.build("2d6")->profileView().evaluationCount(), 11U);
}

INSTANTIATE_TEST_SUITE_P(Texts, RequestLimitsTable, ::testing::ValuesIn(largeTexts()),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST(RequestLimits, ASessionCarriesTheNamedCeilings) {
    const CalculationSession session;
    EXPECT_EQ(session.limits().work, language::kMaxRequestWork);
    EXPECT_EQ(session.limits().profileBytes, language::kMaxRequestProfileBytes);
}

TEST(RequestLimits, EveryBuildOfARequestSharesOneBudget) {
    MeteringRunner runner;
    // Room for the 10d10 chain (4284 units), but not for 10d11 (5193 more) after it.
    CalculationSession session({.work = 9'000, .profileBytes = 64ULL * 1024ULL * 1024ULL});
    session.setRunner(&runner);
    {
        const CalculationSession::Request request(session);
        static_cast<void>(session.build("10d10"));
        EXPECT_THROW(static_cast<void>(session.build("10d11")), core::CalculationTooLarge);
    }
    // A new request has the whole budget again.
    EXPECT_NO_THROW(static_cast<void>(session.build("10d11")));
}

TEST(RequestLimits, AFailedRequestTakesOutEverythingItAddedEvenFromEarlierBuilds) {
    CalculationSession session({.work = 9'000, .profileBytes = 64ULL * 1024ULL * 1024ULL});
    {
        const CalculationSession::Request request(session);
        static_cast<void>(session.build("10d10"));
        EXPECT_TRUE(session.expressions().contains("10d10"));
        EXPECT_THROW(static_cast<void>(session.build("10d11")), core::CalculationTooLarge);
    }
    EXPECT_FALSE(session.expressions().contains("10d10"));
    EXPECT_FALSE(session.expressions().contains("9d10"));
}

TEST(RequestLimits, AStoppedRequestEndsWithCalculationCancelled) {
    class StoppingRunner final : public CalculationRunner {
      public:
        void run(language::RequestContext& context, const std::function<void()>& work) override {
            context.cancel();
            work();
        }
    } runner;
    CalculationSession session;
    session.setRunner(&runner);
    const auto problem = attempt([&] { static_cast<void>(session.build("3d6")); });
    ASSERT_TRUE(problem.has_value());
    EXPECT_EQ(*problem, core::kCalculationCancelled);
    EXPECT_FALSE(session.expressions().contains("3d6"));
}

TEST(RequestLimits, ATimedOutRequestEndsAsTooLarge) {
    class TimingOutRunner final : public CalculationRunner {
      public:
        void run(language::RequestContext& context, const std::function<void()>& work) override {
            context.timeOut();
            work();
        }
    } runner;
    CalculationSession session;
    session.setRunner(&runner);
    const auto problem = attempt([&] { static_cast<void>(session.build("3d6")); });
    ASSERT_TRUE(problem.has_value());
    EXPECT_EQ(*problem, "it is too large to calculate: it did not finish within the time limit");
}

TEST(RequestLimits, TheSessionLetsGoOfLargeProfilesFromEarlierRequests) {
    CalculationSession session;
    const auto pinned = session.build("");
    session.pin("", pinned);
    // Each holds a million outcomes; together they pass what the session keeps.
    for (const char* text :
         {"1d1000000", "1d999999", "1d999998", "1d999997", "1d999996", "1d999995"}) {
        static_cast<void>(session.build(text));
    }
    EXPECT_GT(session.heldProfileBytes(), CalculationSession::kMaxSessionProfileBytes);
    static_cast<void>(session.build("3d6"));
    EXPECT_LE(session.heldProfileBytes(), CalculationSession::kMaxSessionProfileBytes);
    EXPECT_TRUE(session.expressions().contains(""));
    EXPECT_FALSE(session.expressions().contains("1d1000000"));
}

}  // namespace
}  // namespace talvex::app
