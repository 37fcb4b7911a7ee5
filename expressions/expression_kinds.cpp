#include <array>

#include "expressions/constant_expression.h"
#include "expressions/dice_expression.h"
#include "expressions/expression.h"

namespace talvex::language {

// The order decides ambiguous texts: "3d6" is dice before anything else sees its "d".
std::span<const ExpressionKind> expressionKinds() {
    static constexpr std::array<ExpressionKind, 2> kKinds = {{
        {DiceExpression::isExpressionString, DiceExpression::create},
        {ConstantExpression::isExpressionString, ConstantExpression::create},
    }};
    return kKinds;
}

}  // namespace talvex::language
