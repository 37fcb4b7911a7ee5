#pragma once

#include <string>
#include <string_view>

#include "expressions/compound_expression.h"

namespace talvex::language {

// A hard definition, "name~value;...": one outcome of the value is fixed and used at every
// occurrence of the name, so "a~1d6;a+a" is twice one die. The outcomes of the value are
// enumerated and the results mixed by their chances; a name used only once is an ordinary
// definition, and several "~" statements nest.
class HardCompoundExpression : public CompoundExpression {
  public:
    // A compound text (label dropped) that contains "~".
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();

    [[nodiscard]] std::string_view typeString() const override { return "hard compound"; }
    [[nodiscard]] const std::string& hardSymbol() const noexcept { return m_hardSymbol; }
    [[nodiscard]] const std::string& hardValue() const noexcept { return m_hardValue; }
    [[nodiscard]] const std::string& remainingExpressionString() const noexcept {
        return m_remainingExpressionString;
    }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    void parseRawString(RequestContext& context) override;
    void makeProfile(RequestContext& context) override;

  private:
    std::string m_hardSymbol;
    std::string m_hardValue;
    std::string m_remainingExpressionString;
};

}  // namespace talvex::language
