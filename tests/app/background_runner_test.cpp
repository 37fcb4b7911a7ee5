// The window's side of a long calculation: the build runs on a worker while the window thread
// keeps handling its events, the busy state appears only for builds that take noticeably long,
// and Cancel ends the request with nothing of it kept.

#include "app/background_runner.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "core/calculation_limits.h"
#include "expressions/expression.h"

namespace talvex::app {
namespace {

// Repeats the window's turns: every "event" is a tick, and the test may act on a given turn as
// a person would (press Cancel).
class FakeBusyWindow final : public BusyWindow {
  public:
    void showBusy(bool busy) override { busyChanges.push_back(busy); }
    void showProgress(double share) override { progress.push_back(share); }
    void stayResponsiveUntil(const std::function<bool()>& finished,
                             const std::function<void()>& tick) override {
        ++waits;
        while (!finished()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            tick();
            ++turns;
            if (onTurn) {
                onTurn(turns);
            }
        }
    }

    std::vector<bool> busyChanges;
    std::vector<double> progress;
    int waits = 0;
    int turns = 0;
    std::function<void(int)> onTurn;
};

// A build that charges its budget a little at a time until it is stopped or `steps` are done.
void chargeSlowly(language::RequestContext& context, int steps) {
    for (int i = 0; i < steps; ++i) {
        context.charge(std::uint64_t{1000});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

// A generous delay, so that even a loaded machine (sanitizers, parallel tests) builds 3d6 within
// it.
constexpr std::chrono::milliseconds kLongBusyDelay{20'000};

TEST(BackgroundRunner, ABuildEndingWithinTheBusyDelayNeverShowsTheBusyState) {
    FakeBusyWindow window;
    BackgroundRunner runner(window, kLongBusyDelay);
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    language::ExpressionPointer built;
    runner.run(context,
               [&] { built = language::Expression::expressionWithString("3d6", context); });
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->rawString(), "3d6");
    EXPECT_TRUE(window.busyChanges.empty());
    EXPECT_FALSE(runner.isBusy());
}

TEST(BackgroundRunner, TheBuildRunsOnAnotherThreadThanTheWindow) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    std::thread::id builder;
    runner.run(context, [&] { builder = std::this_thread::get_id(); });
    EXPECT_NE(builder, std::this_thread::get_id());
}

TEST(BackgroundRunner, ALongBuildShowsTheBusyStateWithProgressThenHidesIt) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions, {.work = 400'000, .profileBytes = 1U << 20});
    // About 0.4 s of work: well past the moment the busy state appears.
    runner.run(context, [&] { chargeSlowly(context, 200); });
    ASSERT_EQ(window.busyChanges, (std::vector<bool>{true, false}));
    ASSERT_FALSE(window.progress.empty());
    EXPECT_GT(window.progress.back(), 0.0);
    EXPECT_LE(window.progress.back(), 1.0);
    EXPECT_TRUE(std::is_sorted(window.progress.begin(), window.progress.end()));
    EXPECT_GE(window.waits, 1);
}

TEST(BackgroundRunner, CancelEndsTheBuildWithCalculationCancelled) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    window.onTurn = [&runner](int turn) {
        EXPECT_TRUE(runner.isBusy());
        if (turn == 3) {
            runner.cancel();
        }
    };
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    try {
        // Would take a minute without Cancel.
        runner.run(context, [&] { chargeSlowly(context, 30'000); });
        ADD_FAILURE() << "the build was not stopped";
    } catch (const core::CalculationCancelled& cancelled) {
        EXPECT_STREQ(cancelled.what(), "Calculation cancelled");
    }
    EXPECT_FALSE(runner.isBusy());
    EXPECT_EQ(context.stopReason(), language::StopReason::cancelled);
}

TEST(BackgroundRunner, CancelWithNothingRunningDoesNothing) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    runner.cancel();
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    runner.run(context, [&] { context.charge(std::uint64_t{10}); });
    EXPECT_EQ(context.stopReason(), language::StopReason::none);
}

TEST(BackgroundRunner, WhatTheBuildThrowsReachesTheWindowThread) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    EXPECT_THROW(runner.run(context, [] { throw core::CalculationTooLarge("too large"); }),
                 core::CalculationTooLarge);
    EXPECT_FALSE(runner.isBusy());
}

TEST(BackgroundRunner, ASecondBuildWhileOneRunsIsRefused) {
    FakeBusyWindow window;
    BackgroundRunner runner(window);
    language::ExpressionDictionary expressions;
    language::RequestContext context(expressions);
    bool refused = false;
    window.onTurn = [&](int turn) {
        if (turn == 1) {
            language::ExpressionDictionary other;
            language::RequestContext second(other);
            try {
                runner.run(second, [] {});
            } catch (const std::logic_error&) {
                refused = true;
            }
            runner.cancel();
        }
    };
    EXPECT_THROW(runner.run(context, [&] { chargeSlowly(context, 30'000); }),
                 core::CalculationCancelled);
    EXPECT_TRUE(refused);
}

}  // namespace
}  // namespace talvex::app
