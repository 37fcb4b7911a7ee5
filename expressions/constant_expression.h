#pragma once

#include "expressions/expression.h"

namespace talvex::language {

// A plain unsigned number such as "7", "2.5" or ".5".
class ConstantExpression : public Expression {
  public:
    // Digits with at most one "." anywhere among them, and nothing else.
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();

    [[nodiscard]] std::string_view typeString() const override { return "constant"; }
    [[nodiscard]] const core::Decimal& constantDecimal() const noexcept {
        return m_constantDecimal;
    }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    void parseRawString(RequestContext& context) override;
    void makeProfile(RequestContext& context) override;

  private:
    core::Decimal m_constantDecimal;
};

}  // namespace talvex::language
