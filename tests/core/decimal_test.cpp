#include "core/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>

namespace talvex::core {
namespace {

Decimal d(const char* text) { return Decimal::decimalNumberWithString(text); }

static_assert(std::is_trivially_copyable_v<Decimal>);
static_assert(sizeof(Decimal) <= 32);

TEST(Decimal, ConstantsHaveTheirValues) {
    EXPECT_EQ(Decimal::zero().stringValue(), "0");
    EXPECT_EQ(Decimal::one().stringValue(), "1");
    EXPECT_TRUE(Decimal::notANumber().isNotANumber());
    EXPECT_EQ(Decimal::notANumber().stringValue(), "NaN");
    EXPECT_EQ(Decimal{}.compare(Decimal::zero()), 0);
}

TEST(Decimal, UndefinedComparesSameAsUndefined) {
    EXPECT_EQ(Decimal::notANumber().compare(Decimal::notANumber()), 0);
    EXPECT_TRUE(Decimal::notANumber() == Decimal::notANumber());
}

TEST(Decimal, UndefinedComparesBelowEveryNumber) {
    EXPECT_EQ(Decimal::notANumber().compare(d("-7")), -1);
    EXPECT_EQ(d("-7").compare(Decimal::notANumber()), 1);
    EXPECT_EQ(Decimal::notANumber().compare(d("-1E160")), -1);
}

TEST(Decimal, OnlyNumbersAboveZeroArePositive) {
    EXPECT_TRUE(d("1E-128").isPositive());
    EXPECT_TRUE(d("0.5").isPositive());
    EXPECT_FALSE(Decimal::zero().isPositive());
    EXPECT_FALSE(d("-0").isPositive());
    EXPECT_FALSE(d("-1E-128").isPositive());
    EXPECT_FALSE(Decimal::notANumber().isPositive());
}

TEST(Decimal, ValuesCompareByNumberNotRepresentation) {
    EXPECT_EQ(d("2").compare(d("2.000")), 0);
    EXPECT_EQ(d("1").compare(d("10E-1")), 0);
    EXPECT_EQ(d("1.0").compare(d("1")), 0);
    EXPECT_EQ(d("0.1").compare(d("0.10000000000000000000000000000000000001")), -1);
    EXPECT_EQ(d("-3").compare(d("-2")), -1);
    EXPECT_EQ(d("-0").compare(d("0")), 0);
    EXPECT_EQ(d("100").compare(d("99.999")), 1);
}

TEST(Decimal, ArithmeticIsExactDecimal) {
    EXPECT_EQ((d("0.1") + d("0.2")).stringValue(), "0.3");
    EXPECT_EQ((d("5") - d("7.5")).stringValue(), "-2.5");
    EXPECT_EQ((d("1.5") * d("-4")).stringValue(), "-6");
    EXPECT_EQ((d("1") / d("4")).stringValue(), "0.25");
    EXPECT_EQ((d("6") / d("3")).stringValue(), "2");
}

TEST(Decimal, DivisionRoundsTo38DigitsHalfAwayFromZero) {
    EXPECT_EQ((d("1") / d("3")).stringValue(), "0.33333333333333333333333333333333333333");
    EXPECT_EQ((d("2") / d("3")).stringValue(), "0.66666666666666666666666666666666666667");
    EXPECT_EQ((d("-2") / d("3")).stringValue(), "-0.66666666666666666666666666666666666667");
}

TEST(Decimal, AdditionRoundsTheThirtyNinthDigitHalfUp) {
    // 38 nines plus 0.5 is exactly halfway: it rounds away from zero.
    EXPECT_EQ((d("99999999999999999999999999999999999999") + d("0.5")).stringValue(),
              "100000000000000000000000000000000000000");
    EXPECT_EQ((d("12345678901234567890123456789012345678") + d("0.4")).stringValue(),
              "12345678901234567890123456789012345678");
    EXPECT_EQ((d("-12345678901234567890123456789012345678") - d("0.5")).stringValue(),
              "-12345678901234567890123456789012345679");
}

TEST(Decimal, TinyAddendFarBelowPrecisionLeavesValue) {
    EXPECT_EQ((d("1E100") + d("1E-100")).compare(d("1E100")), 0);
    EXPECT_EQ((d("1E100") - d("1E-100")).compare(d("1E100")), 0);
}

TEST(Decimal, AnUndefinedOperandGivesUndefined) {
    const Decimal nan = Decimal::notANumber();
    EXPECT_TRUE((nan + d("1")).isNotANumber());
    EXPECT_TRUE((d("1") - nan).isNotANumber());
    EXPECT_TRUE((nan * d("0")).isNotANumber());
    EXPECT_TRUE((nan / d("0")).isNotANumber());
    EXPECT_TRUE(nan.decimalNumberByRaisingToPower(2).isNotANumber());
}

DecimalFault faultOf(const std::function<Decimal()>& operation) {
    try {
        static_cast<void>(operation());
    } catch (const DecimalError& error) {
        return error.fault();
    }
    ADD_FAILURE() << "no DecimalError thrown";
    return DecimalFault::Overflow;
}

TEST(Decimal, DivisionByZeroThrows) {
    EXPECT_EQ(faultOf([] { return d("1") / d("0"); }), DecimalFault::DivideByZero);
    EXPECT_EQ(faultOf([] { return d("0") / d("0"); }), DecimalFault::DivideByZero);
}

TEST(Decimal, OverflowThrows) {
    EXPECT_EQ(faultOf([] { return d("1E100") * d("1E100"); }), DecimalFault::Overflow);
    EXPECT_EQ(faultOf([] { return d("99999999999999999999999999999999999999E127") + d("1E127"); }),
              DecimalFault::Overflow);
}

TEST(Decimal, LargestValueStillFits) {
    const Decimal largest = d("99999999999999999999999999999999999999E127");
    EXPECT_FALSE(largest.isNotANumber());
    EXPECT_EQ(largest.exponent(), 127);
    // 1E164 needs no more than its leading digit: it is stored with a wider mantissa.
    EXPECT_EQ((d("1E100") * d("1E64")).compare(d("1E164")), 0);
}

TEST(Decimal, ResultBelowTheSmallestExponentIsRoundedThere) {
    // 1E-129 * 5 = 5E-129 rounds to 1E-128 at exponent -128, halves away from zero.
    EXPECT_EQ((d("1E-128") * d("0.5")).compare(d("1E-128")), 0);
    EXPECT_EQ((d("123456789E-128") * d("1E-7")).compare(d("12E-128")), 0);
    EXPECT_EQ((d("125E-128") * d("0.1")).compare(d("13E-128")), 0);
    EXPECT_EQ((d("-125E-128") / d("10")).compare(d("-13E-128")), 0);
}

TEST(Decimal, UnderflowThrowsOnlyWhenTheResultRoundsToZero) {
    EXPECT_EQ(faultOf([] { return d("1E-128") * d("0.4"); }), DecimalFault::Underflow);
    EXPECT_EQ(faultOf([] { return d("1E-100") / d("1E100"); }), DecimalFault::Underflow);
}

TEST(Decimal, ExactZeroIsNoUnderflow) { EXPECT_TRUE((d("1E-128") - d("1E-128")).isZero()); }

TEST(Decimal, IntegerPower) {
    EXPECT_EQ(d("2").decimalNumberByRaisingToPower(10).stringValue(), "1024");
    EXPECT_EQ(d("-3").decimalNumberByRaisingToPower(3).stringValue(), "-27");
    EXPECT_EQ(d("0").decimalNumberByRaisingToPower(0).stringValue(), "1");
    EXPECT_EQ(d("1.5").decimalNumberByRaisingToPower(2).stringValue(), "2.25");
}

struct ParseCase {
    const char* text;
    const char* expected;  // stringValue of the parsed result
};

class DecimalParse : public ::testing::TestWithParam<ParseCase> {};

TEST_P(DecimalParse, ReadsTextAsTheExpectedValue) {
    EXPECT_EQ(d(GetParam().text).stringValue(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DecimalParse,
    ::testing::Values(ParseCase{"3", "3"}, ParseCase{"2.50", "2.5"}, ParseCase{".5", "0.5"},
                      ParseCase{"5.", "5"}, ParseCase{"007", "7"}, ParseCase{"-0.050", "-0.05"},
                      ParseCase{"+4", "4"}, ParseCase{"1e3", "1000"}, ParseCase{"1E-3", "0.001"},
                      ParseCase{"2.5e+2", "250"}, ParseCase{"-0", "0"}, ParseCase{"0.1", "0.1"},
                      ParseCase{"123456789012345678901234567890123456785",
                                "123456789012345678901234567890123456790"},
                      ParseCase{"1e999", "NaN"}, ParseCase{"1e-999", "0"}, ParseCase{"", "NaN"},
                      ParseCase{".", "NaN"}, ParseCase{"1.2.3", "NaN"}, ParseCase{"1..2", "NaN"},
                      ParseCase{"1,5", "NaN"}, ParseCase{" 1", "NaN"}, ParseCase{"1 ", "NaN"},
                      ParseCase{"abc", "NaN"}, ParseCase{"1e", "NaN"}, ParseCase{"1e+", "NaN"},
                      ParseCase{"1e5x", "NaN"}, ParseCase{"--1", "NaN"}, ParseCase{"NaN", "NaN"}));

TEST(Decimal, PlainTextHasNoExponentNorTrailingZeros) {
    EXPECT_EQ(d("1E5").stringValue(), "100000");
    EXPECT_EQ(d("1.2300E-3").stringValue(), "0.00123");
    EXPECT_EQ(d("1E-128").stringValue(), "0." + std::string(127, '0') + "1");
    EXPECT_EQ(Decimal::decimalNumberWithMantissa(25, -1, true).stringValue(), "-2.5");
}

TEST(Decimal, FromDoubleUsesTheShortestRoundTripDigits) {
    EXPECT_EQ(Decimal::decimalNumberWithDouble(0.1).stringValue(), "0.1");
    EXPECT_EQ(Decimal::decimalNumberWithDouble(4.656612873077393e-10).stringValue(),
              "0.0000000004656612873077393");
    EXPECT_EQ(Decimal::decimalNumberWithDouble(1.0 / 3.0).stringValue(), "0.3333333333333333");
    EXPECT_EQ(Decimal::decimalNumberWithDouble(9007199254740992.0).stringValue(),
              "9007199254740992");
    EXPECT_EQ(Decimal::decimalNumberWithDouble(-2.5).stringValue(), "-2.5");
    EXPECT_EQ(Decimal::decimalNumberWithDouble(-0.0).stringValue(), "0");
}

TEST(Decimal, FromDoubleKeepsAtMostSeventeenDigits) {
    const std::string text = Decimal::decimalNumberWithDouble(0.1 + 0.2).stringValue();
    EXPECT_EQ(text, "0.30000000000000004");
}

TEST(Decimal, FromDoubleOfNaNOrInfinityIsUndefined) {
    EXPECT_TRUE(Decimal::decimalNumberWithDouble(std::nan("")).isNotANumber());
    EXPECT_TRUE(
        Decimal::decimalNumberWithDouble(std::numeric_limits<double>::infinity()).isNotANumber());
    EXPECT_TRUE(
        Decimal::decimalNumberWithDouble(-std::numeric_limits<double>::infinity()).isNotANumber());
    EXPECT_TRUE(Decimal::decimalNumberWithDouble(1e300).isNotANumber());
}

TEST(Decimal, ToDoubleIsTheNearestDouble) {
    EXPECT_EQ(d("0.1").doubleValue(), 0.1);
    EXPECT_EQ(d("-2.5").doubleValue(), -2.5);
    EXPECT_EQ(d("0.33333333333333333333333333333333333333").doubleValue(), 1.0 / 3.0);
    EXPECT_EQ(d("1E150").doubleValue(), 1e150);
    EXPECT_TRUE(std::isnan(Decimal::notANumber().doubleValue()));
}

TEST(Decimal, IntValueTruncatesTowardZero) {
    EXPECT_EQ(d("2.9").intValue(), 2);
    EXPECT_EQ(d("-2.9").intValue(), -2);
    EXPECT_EQ(d("0.5").intValue(), 0);
    EXPECT_EQ(d("1E20").intValue(), std::numeric_limits<int>::max());
    EXPECT_EQ(d("-1E20").longLongValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Decimal::notANumber().intValue(), 0);
    EXPECT_EQ(Decimal::decimalNumberWithInteger(-9).intValue(), -9);
}

struct RoundCase {
    const char* value;
    int scale;
    const char* expected;
};

class DecimalRound : public ::testing::TestWithParam<RoundCase> {};

TEST_P(DecimalRound, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(d(GetParam().value).decimalRound(GetParam().scale).stringValue(),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Scales, DecimalRound,
    ::testing::Values(RoundCase{"2.5", 0, "3"}, RoundCase{"-2.5", 0, "-3"},
                      RoundCase{"2.4999", 0, "2"}, RoundCase{"2.345", 2, "2.35"},
                      RoundCase{"-2.345", 2, "-2.35"}, RoundCase{"1234", -2, "1200"},
                      RoundCase{"1250", -2, "1300"}, RoundCase{"49", -2, "0"},
                      RoundCase{"50", -2, "100"}, RoundCase{"0.00000000004", 10, "0"},
                      RoundCase{"NaN", 3, "NaN"}));

TEST(Decimal, RoundingLeavesWholeNumbersOfAnySizeAlone) {
    EXPECT_EQ(d("1E100").decimalRound(0).compare(d("1E100")), 0);
}

TEST(Decimal, RoundToScaleReportsWhetherItChanged) {
    bool changed = false;
    EXPECT_EQ(d("2.5").roundToScale(0, RoundingMode::Plain, &changed).stringValue(), "3");
    EXPECT_TRUE(changed);
    EXPECT_EQ(d("-2.5").roundToScale(0, RoundingMode::Plain, &changed).stringValue(), "-3");
    EXPECT_TRUE(changed);
    EXPECT_EQ(d("2").roundToScale(0, RoundingMode::Plain, &changed).stringValue(), "2");
    EXPECT_FALSE(changed);
    // A null flag is simply not written.
    EXPECT_EQ(d("2.5").roundToScale(0, RoundingMode::Plain, nullptr).stringValue(), "3");
}

TEST(Decimal, AbsoluteValueOfNegativeSetsTheFirstFlag) {
    bool negative = false;
    bool zero = true;
    EXPECT_EQ(d("-3").absoluteValueChanged(&negative, &zero).stringValue(), "3");
    EXPECT_TRUE(negative);
    EXPECT_FALSE(zero);
}

TEST(Decimal, AbsoluteValueOfZeroSetsTheSecondFlag) {
    bool negative = true;
    bool zero = false;
    EXPECT_EQ(d("0").absoluteValueChanged(&negative, &zero).stringValue(), "0");
    EXPECT_FALSE(negative);
    EXPECT_TRUE(zero);
}

TEST(Decimal, AbsoluteValueOfUndefinedIsUndefinedWithTheFirstFlag) {
    bool negative = false;
    bool zero = true;
    EXPECT_TRUE(Decimal::notANumber().absoluteValueChanged(&negative, &zero).isNotANumber());
    EXPECT_TRUE(negative);
    EXPECT_FALSE(zero);
}

TEST(Decimal, AbsoluteValueOfPositiveIsItself) {
    bool negative = true;
    bool zero = true;
    EXPECT_EQ(d("4.5").absoluteValueChanged(&negative, &zero).stringValue(), "4.5");
    EXPECT_FALSE(negative);
    EXPECT_FALSE(zero);
    EXPECT_EQ(d("-1").absoluteValueChanged(nullptr, nullptr).stringValue(), "1");
}

TEST(Decimal, FromMantissaAndExponent) {
    EXPECT_EQ(Decimal::decimalNumberWithMantissa(15, 2, false).stringValue(), "1500");
    EXPECT_EQ(Decimal::decimalNumberWithMantissa(15, -3, true).stringValue(), "-0.015");
    EXPECT_EQ(Decimal::decimalNumberWithMantissa(0, 5, true).stringValue(), "0");
}

}  // namespace
}  // namespace talvex::core
