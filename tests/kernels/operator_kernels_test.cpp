#include "kernels/operator_kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <sstream>

#include "expressions/exact_distribution.h"
#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Evaluation;
using testing::d;
using testing::difference;
using testing::Distribution;
using testing::Rational;

Decimal dec(const char* text) { return Decimal::decimalNumberWithString(text); }
const Decimal kUndefined = Decimal::notANumber();
const Decimal kZero = Decimal::zero();

// Checks a kernel's answer against a decimal text, "undefined" for the undefined value.
::testing::AssertionResult is(const Decimal& actual, const char* expected) {
    if (std::string(expected) == "undefined") {
        if (actual.isNotANumber()) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << actual.stringValue() << " is not undefined";
    }
    if (!actual.isNotANumber() && actual.compare(dec(expected)) == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << (actual.isNotANumber() ? "undefined" : actual.stringValue()) << " is not "
           << expected;
}

// Every function kernel answers undefined for an undefined argument on either side.
struct NamedKernel {
    const char* name;
    core::FunctionKernel kernel;
};

class AnyFunctionKernel : public ::testing::TestWithParam<NamedKernel> {};

TEST_P(AnyFunctionKernel, IsUndefinedForAnUndefinedArgument) {
    const auto kernel = GetParam().kernel;
    EXPECT_TRUE(is(kernel(kUndefined, dec("2")), "undefined"));
    EXPECT_TRUE(is(kernel(dec("2"), kUndefined), "undefined"));
    EXPECT_TRUE(is(kernel(kUndefined, kUndefined), "undefined"));
}

std::string kernelName(const ::testing::TestParamInfo<NamedKernel>& param) {
    return param.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Kernels, AnyFunctionKernel,
    ::testing::Values(
        NamedKernel{"Addition", CompoundExpressionAdditionF},
        NamedKernel{"Subtraction", CompoundExpressionSubtractionF},
        NamedKernel{"Multiplication", CompoundExpressionMultiplicationF},
        NamedKernel{"Division", CompoundExpressionDivisionF},
        NamedKernel{"Power", CompoundExpressionPowerF},
        NamedKernel{"Exponent", CompoundExpressionEEF}, NamedKernel{"Max", CompoundExpressionMaxF},
        NamedKernel{"Min", CompoundExpressionMinF},
        NamedKernel{"Undefined", CompoundExpressionUndefinedF},
        NamedKernel{"Floor", CompoundExpressionFloorF},
        NamedKernel{"Ceil", CompoundExpressionCeilF},
        NamedKernel{"Round", CompoundExpressionRoundF}, NamedKernel{"Abs", CompoundExpressionAbsF},
        NamedKernel{"Ln", CompoundExpressionLnF}, NamedKernel{"Log", CompoundExpressionLogF},
        NamedKernel{"Exp", CompoundExpressionExpF}, NamedKernel{"Sin", CompoundExpressionSinF},
        NamedKernel{"Cos", CompoundExpressionCosF}, NamedKernel{"Tan", CompoundExpressionTanF},
        NamedKernel{"Arcsin", CompoundExpressionArcsinF},
        NamedKernel{"Arccos", CompoundExpressionArccosF},
        NamedKernel{"Arctan", CompoundExpressionArctanF}),
    kernelName);

TEST(ArithmeticKernels, AreExactDecimalArithmetic) {
    EXPECT_TRUE(is(CompoundExpressionAdditionF(dec("0.1"), dec("0.2")), "0.3"));
    EXPECT_TRUE(is(CompoundExpressionSubtractionF(dec("3"), dec("5.5")), "-2.5"));
    EXPECT_TRUE(is(CompoundExpressionMultiplicationF(dec("1.5"), dec("-4")), "-6"));
    EXPECT_TRUE(is(CompoundExpressionDivisionF(dec("1"), dec("8")), "0.125"));
    // 38 significant digits, not ten decimals.
    EXPECT_TRUE(is(CompoundExpressionDivisionF(dec("1"), dec("3")),
                   "0.33333333333333333333333333333333333333"));
}

TEST(ArithmeticKernels, DivisionByZeroIsUndefinedNotAnError) {
    EXPECT_TRUE(is(CompoundExpressionDivisionF(dec("1"), kZero), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionDivisionF(kZero, dec("0.000")), "undefined"));
}

TEST(ArithmeticKernels, UndefinedKernelIgnoresItsArguments) {
    EXPECT_TRUE(is(CompoundExpressionUndefinedF(dec("1"), dec("2")), "undefined"));
}

TEST(PowerKernel, NegativeBaseFollowsTheParityOfTheExponentsFraction) {
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-2"), dec("3")), "8"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-2"), dec("2")), "4"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-8"), dec("1") / dec("3")), "-2"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-8"), dec("2") / dec("3")), "4"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-4"), dec("0.5")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-2"), dec("2.5")), "undefined"));
    // A fraction too fine for a denominator below a million has no root sign.
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("-2"), dec("0.1234567")), "undefined"));
}

TEST(PowerKernel, ZeroToAZeroOrNegativePowerIsUndefined) {
    EXPECT_TRUE(is(CompoundExpressionPowerF(kZero, kZero), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(kZero, dec("-1")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("0.0000001"), dec("-2")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(kZero, dec("2")), "0"));
}

TEST(PowerKernel, ResultsCarryTenDecimals) {
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("2"), dec("10")), "1024"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("2"), dec("0.5")), "1.4142135624"));
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("2"), dec("-1")), "0.5"));
    // Beyond what a double holds: undefined rather than infinite.
    EXPECT_TRUE(is(CompoundExpressionPowerF(dec("10"), dec("400")), "undefined"));
}

TEST(ExponentKernel, MultipliesByAPowerOfTen) {
    EXPECT_TRUE(is(CompoundExpressionEEF(dec("1"), dec("3")), "1000"));
    EXPECT_TRUE(is(CompoundExpressionEEF(dec("2.5"), dec("2")), "250"));
    EXPECT_TRUE(is(CompoundExpressionEEF(dec("3"), dec("-1")), "0.3"));
}

TEST(MaxMinKernels, ChooseTheLargerAndTheSmaller) {
    EXPECT_TRUE(is(CompoundExpressionMaxF(dec("2"), dec("3")), "3"));
    EXPECT_TRUE(is(CompoundExpressionMaxF(dec("3"), dec("-2")), "3"));
    EXPECT_TRUE(is(CompoundExpressionMinF(dec("2"), dec("3")), "2"));
    EXPECT_TRUE(is(CompoundExpressionMinF(dec("3"), dec("-2")), "-2"));
    EXPECT_TRUE(is(CompoundExpressionMinF(dec("1.0"), dec("1")), "1"));
}

// Restores (or removes) an environment variable when the test ends.
class ScopedEnvironment {
  public:
    ScopedEnvironment(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name)) {
            m_old = old;
        }
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }
    ~ScopedEnvironment() {
        if (m_old) {
            setenv(m_name.c_str(), m_old->c_str(), 1);
        } else {
            unsetenv(m_name.c_str());
        }
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  private:
    std::string m_name;
    std::optional<std::string> m_old;
};

TEST(MaxKernel, WritesItsDiagnosticLineOnlyWhenDiagnosticsAreOn) {
    {
        const ScopedEnvironment off("TALVEX_DIAGNOSTICS", nullptr);
        ::testing::internal::CaptureStderr();
        static_cast<void>(CompoundExpressionMaxF(dec("1"), dec("2")));
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    }
    {
        const ScopedEnvironment on("TALVEX_DIAGNOSTICS", "1");
        ::testing::internal::CaptureStderr();
        static_cast<void>(CompoundExpressionMaxF(dec("1"), dec("2")));
        static_cast<void>(CompoundExpressionMaxF(kUndefined, dec("2")));
        static_cast<void>(CompoundExpressionMinF(dec("1"), dec("2")));
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "0\n0\n");
    }
}

TEST(DiagnosticChannel, WritesLinesToItsSinkOrNowhere) {
    std::ostringstream sink;
    const DiagnosticChannel on(&sink);
    on.write("0");
    on.write("note");
    EXPECT_TRUE(on.isOn());
    EXPECT_EQ(sink.str(), "0\nnote\n");
    const DiagnosticChannel off(nullptr);
    EXPECT_FALSE(off.isOn());
    off.write("ignored");
}

TEST(RoundingKernels, GoThroughThirtyTwoBitIntegers) {
    EXPECT_TRUE(is(CompoundExpressionRoundF(kZero, dec("-2.5")), "-3"));
    EXPECT_TRUE(is(CompoundExpressionRoundF(kZero, dec("2.5")), "3"));
    EXPECT_TRUE(is(CompoundExpressionRoundF(kZero, dec("2.4999")), "2"));
    EXPECT_TRUE(is(CompoundExpressionFloorF(kZero, dec("-0.5")), "-1"));
    EXPECT_TRUE(is(CompoundExpressionFloorF(kZero, dec("7.9")), "7"));
    EXPECT_TRUE(is(CompoundExpressionCeilF(kZero, dec("-0.5")), "0"));
    EXPECT_TRUE(is(CompoundExpressionCeilF(kZero, dec("3000000000")), "-2147483648"));
    EXPECT_TRUE(is(CompoundExpressionFloorF(kZero, dec("-3000000000")), "-2147483648"));
    EXPECT_TRUE(is(CompoundExpressionRoundF(kZero, dec("2147483647.4")), "2147483647"));
    EXPECT_TRUE(is(CompoundExpressionRoundF(kZero, dec("2147483647.5")), "-2147483648"));
}

TEST(MathKernels, TangentIsUndefinedAtWholeMultiplesOfPi) {
    EXPECT_TRUE(is(CompoundExpressionTanF(kZero, kZero), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionTanF(kZero, dec("1")), "1.5574077247"));
    EXPECT_TRUE(is(CompoundExpressionTanF(kZero, dec("3.141592653589793")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionTanF(kZero, dec("-6.2831853")), "undefined"));
    // Near pi/2 the tangent is large but defined.
    const Decimal nearPole = CompoundExpressionTanF(kZero, dec("1.5707963"));
    ASSERT_FALSE(nearPole.isNotANumber());
    EXPECT_GT(nearPole.doubleValue(), 1e6);
}

TEST(MathKernels, ArcFunctionsSnapOnlyNearPlusOne) {
    EXPECT_TRUE(is(CompoundExpressionArccosF(kZero, dec("1.0000005")), "0"));
    EXPECT_TRUE(is(CompoundExpressionArccosF(kZero, dec("-1.0000005")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionArcsinF(kZero, dec("1.1")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionArcsinF(kZero, dec("1.0000001")), "1.5707963268"));
    EXPECT_TRUE(is(CompoundExpressionArcsinF(kZero, dec("-1")), "-1.5707963268"));
    EXPECT_TRUE(is(CompoundExpressionArccosF(kZero, dec("-1")), "3.1415926536"));
    EXPECT_TRUE(is(CompoundExpressionArcsinF(kZero, dec("0.5")), "0.5235987756"));
    EXPECT_TRUE(is(CompoundExpressionArctanF(kZero, dec("1")), "0.7853981634"));
}

TEST(MathKernels, LogarithmsNeedAPositiveArgument) {
    EXPECT_TRUE(is(CompoundExpressionLnF(kZero, kZero), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionLogF(kZero, dec("-1")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionLogF(kZero, dec("1000")), "3"));
    EXPECT_TRUE(is(CompoundExpressionLnF(kZero, dec("1")), "0"));
    EXPECT_TRUE(is(CompoundExpressionLnF(kZero, dec("2")), "0.6931471806"));
}

TEST(MathKernels, OtherFunctionsInTenDecimals) {
    EXPECT_TRUE(is(CompoundExpressionAbsF(kZero, dec("0.123456789012")), "0.1234567890"));
    EXPECT_TRUE(is(CompoundExpressionAbsF(kZero, dec("-7")), "7"));
    EXPECT_TRUE(is(CompoundExpressionExpF(kZero, dec("1")), "2.7182818285"));
    EXPECT_TRUE(is(CompoundExpressionExpF(kZero, dec("1000")), "undefined"));
    EXPECT_TRUE(is(CompoundExpressionSinF(kZero, dec("1")), "0.8414709848"));
    EXPECT_TRUE(is(CompoundExpressionCosF(kZero, kZero), "1"));
    // One-argument kernels look at the left argument only for the undefined test.
    EXPECT_TRUE(is(CompoundExpressionAbsF(dec("99"), dec("-3")), "3"));
}

TEST(DecimalFromDouble, RoundsToTenDecimals) {
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(0.1), "0.1"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(1.0 / 3.0), "0.3333333333"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(-1.23456789012345), "-1.2345678901"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(1e20), "100000000000000000000"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(1e-12), "0"));
}

TEST(DecimalFromDouble, NotANumberAndInfinitiesAreUndefined) {
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(std::numeric_limits<double>::quiet_NaN()),
                   "undefined"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(std::numeric_limits<double>::infinity()),
                   "undefined"));
    EXPECT_TRUE(is(CompoundExpressionDecimalFromDouble(-std::numeric_limits<double>::infinity()),
                   "undefined"));
}

// A relation kernel's answer as a profile, for comparing with an exact distribution.
core::Profile profileOf(const std::vector<Evaluation>& list) {
    core::Profile profile;
    profile.addEvaluations(list);
    return profile;
}

TEST(DiceRelationKernels, WriteTheDiceTextWithSignAndRounding) {
    EXPECT_EQ(diceRelationText('d', dec("3"), dec("6")), "3d6");
    EXPECT_EQ(diceRelationText('d', dec("-2"), dec("6")), "0-2d6");
    EXPECT_EQ(diceRelationText('c', dec("2"), dec("-7")), "0-2c7");
    EXPECT_EQ(diceRelationText('d', dec("-2"), dec("-6")), "2d6");
    EXPECT_EQ(diceRelationText('p', dec("2.5"), dec("49.5")), "3p50");
    EXPECT_EQ(diceRelationText('d', dec("-0.4"), dec("6")), "0-0d6");
    EXPECT_EQ(diceRelationText('d', kUndefined, dec("6")), "");
}

TEST(DiceRelationKernels, ANegativeCountRollsTheNegatedDice) {
    const auto list = CompoundExpressionXdyR(dec("-2"), dec("6"));
    EXPECT_TRUE(testing::matchesDistribution(profileOf(list),
                                             difference(testing::certain(Rational(0)), d(2, 6))));
    // Weights relative to one.
    Decimal total = kZero;
    for (const auto& evaluation : list) {
        total = total + evaluation.weight();
    }
    EXPECT_LT((total - Decimal::one()).absoluteValueChanged(nullptr, nullptr).doubleValue(), 1e-30);
}

TEST(DiceRelationKernels, EachLetterRollsItsNotation) {
    EXPECT_TRUE(testing::matchesDistribution(profileOf(CompoundExpressionXdyR(dec("2"), dec("4"))),
                                             d(2, 4)));
    EXPECT_TRUE(testing::matchesDistribution(
        profileOf(CompoundExpressionXcyR(dec("2.5"), dec("7"))), testing::dice(3, 'c', 7)));
    EXPECT_TRUE(testing::matchesDistribution(profileOf(CompoundExpressionXpyR(dec("2"), dec("30"))),
                                             testing::dice(2, 'p', 30)));
    EXPECT_TRUE(testing::matchesDistribution(profileOf(CompoundExpressionXvyR(dec("2"), dec("4"))),
                                             testing::dice(2, 'v', 4)));
    EXPECT_TRUE(testing::matchesDistribution(profileOf(CompoundExpressionXwyR(dec("1"), dec("95"))),
                                             testing::dice(1, 'w', 95)));
}

TEST(DiceRelationKernels, AnUndefinedSideGivesOneUndefinedOutcomeOfWeightOne) {
    for (const auto& list : {CompoundExpressionXdyR(kUndefined, dec("6")),
                             CompoundExpressionXcyR(dec("2"), kUndefined)}) {
        ASSERT_EQ(list.size(), 1U);
        EXPECT_TRUE(list.front().quantity().isNotANumber());
        EXPECT_TRUE(is(list.front().weight(), "1"));
    }
}

TEST(DiceRelationKernels, RandomCountAndSizeThroughAProfile) {
    core::Profile counts;
    counts.addQuantity(dec("1"), Decimal::one());
    counts.addQuantity(dec("2"), Decimal::one());
    core::Profile sizes;
    sizes.addQuantity(dec("6"), Decimal::one());
    counts.assimilateProfile(sizes, core::RelationKernel(CompoundExpressionXdyR));
    const Distribution half = testing::randomDice(d(1, 2), 'd', testing::certain(Rational(6)));
    EXPECT_TRUE(testing::matchesDistribution(counts, half));
}

TEST(DiceRelationCache, GivesExactlyWhatThePlainKernelGivesAndBuildsEachTextOnce) {
    testing::StandaloneRequest request;
    DiceRelationCache cache(request.context);
    const core::RelationKernel cached = cachedDiceRelation('d', cache);
    for (int round = 0; round < 3; ++round) {
        for (const char* count : {"1", "2", "-2", "2.4"}) {
            const auto plain = CompoundExpressionXdyR(dec(count), dec("6"));
            const auto fromCache = cached(dec(count), dec("6"));
            ASSERT_EQ(plain.size(), fromCache.size());
            for (std::size_t i = 0; i < plain.size(); ++i) {
                EXPECT_EQ(plain[i].quantity().compare(fromCache[i].quantity()), 0);
                EXPECT_EQ(plain[i].weight().compare(fromCache[i].weight()), 0);
            }
        }
    }
    // "1d6", "2d6" and "0-2d6": 2.4 rounds to the same text as 2.
    EXPECT_EQ(cache.size(), 3U);
    const auto undefined = cached(kUndefined, dec("6"));
    ASSERT_EQ(undefined.size(), 1U);
    EXPECT_TRUE(undefined.front().quantity().isNotANumber());
    EXPECT_EQ(cache.size(), 3U);
}

TEST(DiceRelationCache, ServesAProfileAssimilation) {
    core::Profile counts;
    for (const char* count : {"1", "2", "3"}) {
        counts.addQuantity(dec(count), Decimal::one());
    }
    core::Profile sizes;
    sizes.addQuantity(dec("4"), Decimal::one());
    sizes.addQuantity(dec("6"), Decimal::one());
    core::Profile plain = counts.copy();
    plain.assimilateProfile(sizes, core::RelationKernel(CompoundExpressionXdyR));
    testing::StandaloneRequest request;
    DiceRelationCache cache(request.context);
    counts.assimilateProfile(sizes, cachedDiceRelation('d', cache));
    EXPECT_EQ(cache.size(), 6U);
    const auto expected = plain.evaluations();
    const auto actual = counts.evaluations();
    ASSERT_EQ(expected.size(), actual.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i].quantity().compare(actual[i].quantity()), 0);
        EXPECT_EQ(expected[i].weight().compare(actual[i].weight()), 0);
    }
}

}  // namespace
}  // namespace talvex::language
