#include <array>

#include "expressions/compound_expression.h"
#include "expressions/constant_expression.h"
#include "expressions/dice_expression.h"
#include "expressions/expression.h"
#include "expressions/function_expression.h"

namespace talvex::language {

// The order decides ambiguous texts: "3d6" is dice before the compound kind sees its "d", and
// "-5" is compound ("0-5") before the constant kind, which refuses signs, is asked.
std::span<const ExpressionKind> expressionKinds() {
    static constexpr std::array<ExpressionKind, 4> kKinds = {{
        {DiceExpression::isExpressionString, DiceExpression::create},
        // Before the compound kind, so that a whole call such as "max(1d6,3)" is a function
        // and not a compound text.
        {FunctionExpression::isExpressionString, FunctionExpression::create},
        {CompoundExpression::isExpressionString, CompoundExpression::create},
        {ConstantExpression::isExpressionString, ConstantExpression::create},
    }};
    return kKinds;
}

}  // namespace talvex::language
