#include "core/evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace talvex::core {
namespace {

Decimal dec(std::string_view text) {
    return text == "NaN" ? Decimal::notANumber() : Decimal::decimalNumberWithString(text);
}

TEST(Evaluation, NewEvaluationIsUndefinedWithWeightZero) {
    const Evaluation fresh;
    EXPECT_FALSE(fresh.isDefined());
    EXPECT_TRUE(fresh.quantity().isNotANumber());
    EXPECT_TRUE(fresh.weight().isZero());
    EXPECT_FALSE(fresh.weight().isNotANumber());

    const Evaluation made = Evaluation::evaluation();
    EXPECT_TRUE(made.quantity().isNotANumber());
    EXPECT_TRUE(made.weight().isZero());
}

TEST(Evaluation, EvaluationWithQuantityAndWeightStoresBoth) {
    const Evaluation evaluation = Evaluation::evaluationWithQuantity(dec("3.5"), dec("2"));
    EXPECT_TRUE(evaluation.isDefined());
    EXPECT_EQ(evaluation.quantity().stringValue(), "3.5");
    EXPECT_EQ(evaluation.weight().stringValue(), "2");
}

TEST(Evaluation, SettingAMissingWeightGivesZeroNotUndefined) {
    Evaluation evaluation{dec("1"), dec("5")};
    evaluation.setWeight(std::nullopt);
    EXPECT_TRUE(evaluation.weight().isZero());
    EXPECT_FALSE(evaluation.weight().isNotANumber());
}

TEST(Evaluation, SettingAMissingQuantityGivesUndefined) {
    Evaluation evaluation{dec("1"), dec("5")};
    evaluation.setQuantity(std::nullopt);
    EXPECT_FALSE(evaluation.isDefined());
    EXPECT_EQ(evaluation.weight().stringValue(), "5");
}

TEST(Evaluation, FactoryWithMissingValuesGoesThroughTheSetters) {
    const Evaluation evaluation = Evaluation::evaluationWithQuantity(std::nullopt, std::nullopt);
    EXPECT_TRUE(evaluation.quantity().isNotANumber());
    EXPECT_TRUE(evaluation.weight().isZero());
    EXPECT_FALSE(evaluation.weight().isNotANumber());
}

TEST(Evaluation, SetToUndefinedKeepsTheWeight) {
    Evaluation evaluation{dec("4"), dec("7")};
    evaluation.setToUndefined();
    EXPECT_FALSE(evaluation.isDefined());
    EXPECT_EQ(evaluation.weight().stringValue(), "7");
}

TEST(Evaluation, ScaleMultipliesTheWeightOnly) {
    Evaluation evaluation{dec("4"), dec("1.5")};
    evaluation.scale(dec("4"));
    EXPECT_EQ(evaluation.weight().stringValue(), "6");
    EXPECT_EQ(evaluation.quantity().stringValue(), "4");
}

TEST(Evaluation, ScaleQuantityMultipliesADefinedQuantityOnly) {
    Evaluation evaluation{dec("-2.5"), dec("3")};
    evaluation.scaleQuantity(dec("4"));
    EXPECT_EQ(evaluation.quantity().stringValue(), "-10");
    EXPECT_EQ(evaluation.weight().stringValue(), "3");
}

TEST(Evaluation, ScaleQuantityLeavesAnUndefinedQuantityUndefinedWhileScaleStillWorks) {
    Evaluation evaluation{std::nullopt, dec("3")};
    evaluation.scaleQuantity(dec("4"));
    EXPECT_FALSE(evaluation.isDefined());
    evaluation.scale(dec("2"));
    EXPECT_FALSE(evaluation.isDefined());
    EXPECT_EQ(evaluation.weight().stringValue(), "6");
}

struct CompareCase {
    std::string left;
    std::string right;
    int expected;
};

void PrintTo(const CompareCase& value, std::ostream* os) {
    *os << value.left << " vs " << value.right;
}

class EvaluationCompare : public ::testing::TestWithParam<CompareCase> {};

TEST_P(EvaluationCompare, ComparesQuantitiesWithUndefinedBelowEveryNumber) {
    const CompareCase& c = GetParam();
    const Evaluation left{dec(c.left), dec("1")};
    const Evaluation right{dec(c.right), dec("9")};
    EXPECT_EQ(left.compare(right), c.expected);
    EXPECT_EQ(right.compare(left), -c.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, EvaluationCompare,
                         ::testing::Values(CompareCase{"NaN", "NaN", 0},
                                           CompareCase{"NaN", "-7", -1},
                                           CompareCase{"2", "2.000", 0},
                                           CompareCase{"10E-1", "1", 0}, CompareCase{"-3", "2", -1},
                                           CompareCase{"0.5", "0.25", 1}));

TEST(Evaluation, SortingByCompareOrdersAscendingWithUndefinedFirst) {
    std::vector<Evaluation> list{{dec("3"), dec("1")},
                                 {dec("-1"), dec("1")},
                                 {std::nullopt, dec("1")},
                                 {dec("0.5"), dec("1")}};
    std::stable_sort(list.begin(), list.end(),
                     [](const Evaluation& a, const Evaluation& b) { return a.compare(b) < 0; });
    EXPECT_FALSE(list[0].isDefined());
    EXPECT_EQ(list[1].quantity().stringValue(), "-1");
    EXPECT_EQ(list[2].quantity().stringValue(), "0.5");
    EXPECT_EQ(list[3].quantity().stringValue(), "3");
}

TEST(Evaluation, WeightCompareOrdersByWeight) {
    const Evaluation light{dec("100"), dec("0.25")};
    const Evaluation heavy{dec("1"), dec("2")};
    EXPECT_EQ(light.weightCompare(heavy), -1);
    EXPECT_EQ(heavy.weightCompare(light), 1);
    EXPECT_EQ(light.weightCompare(Evaluation{dec("7"), dec("0.250")}), 0);
}

TEST(Evaluation, CopiesAreIndependent) {
    const Evaluation original{dec("2"), dec("3")};
    Evaluation copy = original;
    copy.scale(dec("10"));
    copy.scaleQuantity(dec("10"));
    EXPECT_EQ(original.quantity().stringValue(), "2");
    EXPECT_EQ(original.weight().stringValue(), "3");
    EXPECT_EQ(copy.quantity().stringValue(), "20");
    EXPECT_EQ(copy.weight().stringValue(), "30");
}

}  // namespace
}  // namespace talvex::core
