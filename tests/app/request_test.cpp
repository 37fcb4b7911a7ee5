// The request path every front end takes: building against the session's dictionary, drawing
// rolls, and the plain sentences for whatever stops a calculation.

#include "app/request.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "core/report_options.h"

namespace {

using talvex::app::attempt;
using talvex::app::CalculationSession;
using talvex::app::faultMessage;
using talvex::app::shortenedForMessage;
using talvex::core::CalculationTooLarge;
using talvex::core::Decimal;
using talvex::core::DecimalError;
using talvex::core::DecimalFault;
using talvex::core::kMaxExpressions;

// The ways of rolling each sum of three six-sided dice, counted die by die.
std::array<long long, 19> waysOfThreeDice() {
    std::array<long long, 19> ways{};
    for (int a = 1; a <= 6; ++a) {
        for (int b = 1; b <= 6; ++b) {
            for (int c = 1; c <= 6; ++c) {
                ++ways[static_cast<std::size_t>(a + b + c)];
            }
        }
    }
    return ways;
}

// num/den (0 < num < den) as a plain decimal text, by long division: every digit when the
// fraction ends within 60 digits, otherwise its first 60 digits.
std::string decimalText(long long num, long long den) {
    std::string text = "0.";
    long long remainder = num;
    for (int i = 0; i < 60 && remainder != 0; ++i) {
        remainder *= 10;
        text += static_cast<char>('0' + remainder / den);
        remainder %= den;
    }
    return text;
}

bool within(const Decimal& value, const Decimal& expected, const Decimal& tolerance) {
    return value > expected - tolerance && value < expected + tolerance;
}

// Fills the session's dictionary with stand-in entries up to `size` entries in all.
void fillDictionary(CalculationSession& session, std::size_t size) {
    const auto standIn = session.build("1d2");
    for (std::size_t i = 0; session.expressions().size() < size; ++i) {
        session.expressions()["stand-in " + std::to_string(i)] = standIn;
    }
}

TEST(CalculationSession, ThreeDiceHaveSixteenOutcomesWithTheCountedProbabilities) {
    CalculationSession session;
    const auto result = session.calculate("3d6", 0);
    const auto outcomes = result.profile.evaluations();
    ASSERT_EQ(outcomes.size(), 16U);

    const auto ways = waysOfThreeDice();
    // 38-digit weights carry the rounding of each step in their last digits only.
    const Decimal tolerance = Decimal::decimalNumberWithString("1E-36");
    Decimal sum = Decimal::zero();
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const long long total = 3 + static_cast<long long>(i);
        ASSERT_TRUE(outcomes[i].isDefined());
        EXPECT_EQ(outcomes[i].quantity().longLongValue(), total);
        const std::string exact = decimalText(ways[static_cast<std::size_t>(total)], 216);
        EXPECT_TRUE(
            within(outcomes[i].weight(), Decimal::decimalNumberWithString(exact), tolerance))
            << total << ": " << outcomes[i].weight().stringValue() << " against " << exact;
        sum = sum + outcomes[i].weight();
    }
    EXPECT_EQ(result.profile.totalWeight(), sum);
    EXPECT_TRUE(within(result.profile.totalWeight(), Decimal::one(), tolerance))
        << result.profile.totalWeight().stringValue();
}

TEST(CalculationSession, AProbabilityThatEndsInDecimalsIsExact) {
    CalculationSession session;
    const auto result = session.calculate("3d6", 0);
    const auto ways = waysOfThreeDice();
    int checked = 0;
    for (const auto& outcome : result.profile.evaluations()) {
        const auto total = static_cast<std::size_t>(outcome.quantity().longLongValue());
        if (total == 10 || total == 11) {
            // 27 of 216 ways, one eighth: the long division ends.
            EXPECT_EQ(outcome.weight().stringValue(), decimalText(ways[total], 216));
            ++checked;
        }
    }
    EXPECT_EQ(checked, 2);
}

TEST(CalculationSession, RollsComeInTheRequestedCountAndWithinTheRange) {
    CalculationSession session;
    const auto result = session.calculate("3d6", 200);
    ASSERT_EQ(result.rolls.size(), 200U);
    for (const auto& roll : result.rolls) {
        ASSERT_TRUE(roll.isDefined());
        const auto value = roll.quantity().longLongValue();
        EXPECT_GE(value, 3);
        EXPECT_LE(value, 18);
        EXPECT_EQ(Decimal::decimalNumberWithInteger(value), roll.quantity());
    }
}

TEST(CalculationSession, RollsAreDrawnFromACopyOfTheProfile) {
    CalculationSession session;
    const auto result = session.calculate("2d6", 5);
    const auto history = result.profile.evaluationHistory();
    ASSERT_EQ(history.size(), 5U);
    for (std::size_t i = 0; i < history.size(); ++i) {
        EXPECT_EQ(history[i].quantity(), result.rolls[i].quantity());
    }
    EXPECT_TRUE(result.expression->profile().evaluationHistory().empty());
}

TEST(CalculationSession, NoRollsAreDrawnWhenNoneAreAsked) {
    CalculationSession session;
    const auto result = session.calculate("2d6", 0);
    EXPECT_TRUE(result.rolls.empty());
    EXPECT_TRUE(result.profile.evaluationHistory().empty());
}

TEST(CalculationSession, TheSameTextIsBuiltOnce) {
    CalculationSession session;
    const auto first = session.build("4d8+2");
    const std::size_t entries = session.expressions().size();
    EXPECT_EQ(session.build("4d8+2"), first);
    // A label and blanks do not make another expression.
    EXPECT_EQ(session.build("Attack: 4d8 + 2"), first);
    EXPECT_EQ(session.calculate("4d8+2", 0).expression, first);
    EXPECT_EQ(session.expressions().size(), entries);
}

TEST(CalculationSession, TheDictionaryIsKeptWhileAtMostHalfFull) {
    CalculationSession session;
    const auto built = session.build("3d6");
    fillDictionary(session, kMaxExpressions / 2);
    EXPECT_EQ(session.build("3d6"), built);
    EXPECT_EQ(session.expressions().count("stand-in 0"), 1U);
}

TEST(CalculationSession, TheDictionaryEmptiesPastHalfFullButKeepsThePinnedEntries) {
    CalculationSession session;
    const auto pinned = session.build("2d6");
    session.pin("2d6", pinned);
    const auto unpinned = session.build("3d6");
    fillDictionary(session, kMaxExpressions / 2 + 1);

    static_cast<void>(session.build("1d4"));
    EXPECT_EQ(session.expressions().count("stand-in 0"), 0U);
    EXPECT_EQ(session.expressions().count("3d6"), 0U);
    EXPECT_LT(session.expressions().size(), 10U);
    EXPECT_EQ(session.build("2d6"), pinned);
    // Only a memo was dropped: the rebuilt expression is new but has the same outcomes.
    const auto rebuilt = session.build("3d6");
    EXPECT_NE(rebuilt, unpinned);
    EXPECT_EQ(rebuilt->profile().evaluations().size(), unpinned->profile().evaluations().size());
}

TEST(CalculationSession, APinnedEntryIsWhatBuildingItsKeyFinds) {
    CalculationSession session;
    const auto standIn = session.build("1d20");
    session.pin("nothing", standIn);
    EXPECT_EQ(session.build("nothing"), standIn);
    fillDictionary(session, kMaxExpressions / 2 + 1);
    EXPECT_EQ(session.build("nothing"), standIn);
}

TEST(CalculationSession, ABuildThatFailsLeavesTheSessionUsable) {
    CalculationSession session;
    EXPECT_THROW(static_cast<void>(session.calculate("400d6", 0)), DecimalError);
    EXPECT_EQ(session.calculate("3d6", 0).profile.evaluations().size(), 16U);
}

TEST(CalculationSession, DrawingRefusesMoreRollsTimesOutcomesThanTheBound) {
    CalculationSession session;
    auto thousand = session.build("1d1000")->profile();
    ASSERT_EQ(thousand.evaluations().size(), 1000U);
    // 200,001 rolls of 1,000 outcomes pass 2 x 10^8.
    EXPECT_THROW(static_cast<void>(CalculationSession::drawRolls(thousand, 200'001)),
                 CalculationTooLarge);
    EXPECT_TRUE(thousand.evaluationHistory().empty());
    EXPECT_EQ(CalculationSession::drawRolls(thousand, 1000).size(), 1000U);
}

TEST(CalculationSession, TheBoundOnRollsDependsOnTheOutcomes) {
    CalculationSession session;
    auto coin = session.build("1d2")->profile();
    EXPECT_EQ(CalculationSession::drawRolls(coin, 200'001).size(), 200'001U);
}

TEST(CalculationSession, DrawingNoRollsDrawsNothing) {
    CalculationSession session;
    auto profile = session.build("1d6")->profile();
    EXPECT_TRUE(CalculationSession::drawRolls(profile, 0).empty());
    EXPECT_TRUE(CalculationSession::drawRolls(profile, -3).empty());
    EXPECT_TRUE(profile.evaluationHistory().empty());
}

TEST(CalculationSession, TooManyRollsStopTheRequest) {
    CalculationSession session;
    EXPECT_THROW(static_cast<void>(session.calculate("1d1000", 1'000'000)), CalculationTooLarge);
}

TEST(CalculationSession, AReportShowsTheProfile) {
    CalculationSession session;
    auto result = session.calculate("1d4", 0);
    const talvex::core::Options options = {{"table", "yes"}};
    const std::string text = CalculationSession::report(result.profile, options).string();
    // Each of the four faces has a quarter of the weight.
    EXPECT_NE(text.find("25%"), std::string::npos) << text;
}

TEST(Attempt, NothingWhenTheWorkFinishes) {
    int runs = 0;
    EXPECT_EQ(attempt([&] { ++runs; }), std::nullopt);
    EXPECT_EQ(runs, 1);
}

TEST(Attempt, AnUnderflowIsExplainedWithTheSmallestNumber) {
    CalculationSession session;
    const auto problem = attempt([&] { static_cast<void>(session.calculate("400d6", 0)); });
    ASSERT_TRUE(problem.has_value());
    EXPECT_NE(problem->find("too small"), std::string::npos) << *problem;
    EXPECT_NE(problem->find("1E-128"), std::string::npos) << *problem;
}

TEST(Attempt, ACalculationTooLargeKeepsItsOwnWords) {
    CalculationSession session;
    std::string thrown;
    try {
        static_cast<void>(session.calculate("1d1000000000", 0));
    } catch (const CalculationTooLarge& error) {
        thrown = error.what();
    }
    ASSERT_FALSE(thrown.empty());
    const auto problem = attempt([&] { static_cast<void>(session.calculate("1d1000000000", 0)); });
    EXPECT_EQ(problem, thrown);
}

TEST(FaultMessage, OverflowAndDivisionByZeroAreNamed) {
    EXPECT_NE(
        faultMessage(std::make_exception_ptr(DecimalError(DecimalFault::Overflow))).find("1E165"),
        std::string::npos);
    EXPECT_NE(faultMessage(std::make_exception_ptr(DecimalError(DecimalFault::DivideByZero)))
                  .find("division by zero"),
              std::string::npos);
}

TEST(FaultMessage, ADividerListKeepsItsOwnWords) {
    const talvex::core::DividerListError error;
    EXPECT_EQ(faultMessage(std::make_exception_ptr(error)), error.what());
}

TEST(FaultMessage, RunningOutOfMemoryIsSaidPlainly) {
    const std::string message = faultMessage(std::make_exception_ptr(std::bad_alloc()));
    EXPECT_EQ(message, "the calculation needs more memory than is available");
}

TEST(FaultMessage, AnyOtherExceptionIsQuoted) {
    EXPECT_EQ(faultMessage(std::make_exception_ptr(std::runtime_error("the disk is gone"))),
              "the calculation stopped: the disk is gone");
}

TEST(FaultMessage, SomethingThatIsNoExceptionHasNoReason) {
    EXPECT_EQ(attempt([] { throw 42; }), "the calculation stopped for an unknown reason");
    EXPECT_EQ(faultMessage(nullptr), "the calculation stopped for an unknown reason");
}

TEST(ShortenedForMessage, KeepsTextsOfEightyCharacters) {
    const std::string text(80, 'x');
    EXPECT_EQ(shortenedForMessage(text), text);
    EXPECT_EQ(shortenedForMessage(""), "");
}

TEST(ShortenedForMessage, CutsLongerTextsAtEightyCharacters) {
    std::string text;
    for (int i = 0; i < 30; ++i) {
        text += "1d6+";
    }
    text += "1";
    EXPECT_EQ(shortenedForMessage(text), text.substr(0, 80) + "...");
}

TEST(ShortenedForMessage, NeverCutsACharacterOfSeveralBytesInTwo) {
    // "é" takes bytes 80 and 81: the cut falls before it.
    const std::string text = std::string(79, 'x') + "\xC3\xA9+400d6";
    EXPECT_EQ(shortenedForMessage(text), std::string(79, 'x') + "...");
    // A character that ends at byte 80 is kept whole.
    const std::string ending = std::string(78, 'x') + "\xC3\xA9+400d6";
    EXPECT_EQ(shortenedForMessage(ending), std::string(78, 'x') + "\xC3\xA9...");
}

}  // namespace
