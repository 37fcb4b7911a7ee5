#include "expressions/constant_expression.h"

#include <gtest/gtest.h>

#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using testing::outcomes;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

struct ConstantCase {
    const char* text;
    const char* value;
};

class ConstantText : public ::testing::TestWithParam<ConstantCase> {};

TEST_P(ConstantText, IsAConstantOfWeightOne) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto constant = Expression::expressionWithString(GetParam().text, context);
    EXPECT_EQ(constant->typeString(), "constant");
    EXPECT_EQ(outcomes(constant->profile()), (Outcomes{{GetParam().value, "1"}}));
}

INSTANTIATE_TEST_SUITE_P(Numbers, ConstantText,
                         ::testing::Values(ConstantCase{"3", "3"}, ConstantCase{"2.50", "2.5"},
                                           ConstantCase{".5", "0.5"}, ConstantCase{"5.", "5"},
                                           ConstantCase{"007", "7"}, ConstantCase{"0", "0"}));

class NotAConstant : public ::testing::TestWithParam<const char*> {};

TEST_P(NotAConstant, IsRejected) {
    EXPECT_FALSE(ConstantExpression::isExpressionString(GetParam()));
    const auto expression = Expression::expressionWithString(GetParam());
    EXPECT_NE(expression->typeString(), "constant");
}

INSTANTIATE_TEST_SUITE_P(Texts, NotAConstant,
                         ::testing::Values("-3", "+3", "1e3", "1,5", ".", "1.2.3", "1..2", " 3",
                                           "3 ", "", "abc", "+", "1+2", "x: 5"));

TEST(ConstantExpression, ValueIsExactDecimal) {
    const auto tenth = Expression::expressionWithString("0.1");
    const auto evaluations = tenth->profile().evaluations();
    ASSERT_EQ(evaluations.size(), 1U);
    EXPECT_EQ(evaluations.front().quantity().stringValue(), "0.1");
    const core::Decimal three =
        evaluations.front().quantity() * core::Decimal::decimalNumberWithInteger(3);
    EXPECT_EQ(three.stringValue(), "0.3");
}

}  // namespace
}  // namespace talvex::language
