#pragma once

#include <cstdint>

#include "expressions/expression.h"

namespace talvex::language {

// The combining function of every dice kind: the sum of the two quantities.
[[nodiscard]] core::Decimal DiceExpressionF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal XdyExpressionF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal XcyExpressionF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal XpyExpressionF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal XvyExpressionF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal XwyExpressionF(const core::Decimal& a, const core::Decimal& b);

// X dice of one notation: a count, a letter (d, c, p, v or w) and a size, digits only.
// X dice are built as (X-1 dice) + (1 die) through the shared dictionary, so every count on
// the way is built once and reused by later texts.
class DiceExpression : public Expression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();

    [[nodiscard]] std::string_view typeString() const override { return "dice"; }
    [[nodiscard]] std::int32_t x() const noexcept { return m_x; }
    [[nodiscard]] std::int32_t y() const noexcept { return m_y; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override;
    void parseRawString(RequestContext& context) override;
    // X dice as (X-1 dice) + (1 die), the missing counts built from the largest one known.
    void makeProfile(RequestContext& context) override;

    // The notation's letter; the generic dice kind has none and never builds a profile.
    [[nodiscard]] virtual char letter() const noexcept { return '\0'; }
    // The single die of this notation, for the current y.
    virtual void makeSingleDie() {}
    [[nodiscard]] virtual core::FunctionKernel combiningFunction() const noexcept {
        return DiceExpressionF;
    }

    void checkDiceCount() const;
    // Refuses at once a chain whose remaining steps, from `fromCount` dice on, would combine
    // more outcome pairs than the request has left, or hold more outcomes than it may.
    void checkChainWork(std::int64_t fromCount, const RequestContext& context) const;
    // Refuses at once a chain certain to leave the 38-digit range.
    void refuseCertainUnderflow() const;
    // One die of this notation alone.
    void makeOneDie();
    // The outcomes of one die of this notation at the current size.
    [[nodiscard]] virtual std::int64_t singleDieOutcomes() const noexcept { return 1; }
    // The smaller of the chances of a single die's lowest and highest face; one for a die with
    // a single outcome.
    [[nodiscard]] virtual double extremeFaceChance() const noexcept { return 1.0; }

    std::int32_t m_x = 0;
    std::int32_t m_y = 0;
};

class XdyExpression : public DiceExpression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();
    [[nodiscard]] std::string_view typeString() const override { return "xdy"; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    [[nodiscard]] char letter() const noexcept override { return 'd'; }
    void makeSingleDie() override;
    [[nodiscard]] std::int64_t singleDieOutcomes() const noexcept override;
    [[nodiscard]] double extremeFaceChance() const noexcept override;
    [[nodiscard]] core::FunctionKernel combiningFunction() const noexcept override {
        return XdyExpressionF;
    }
};

class XcyExpression : public DiceExpression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();
    [[nodiscard]] std::string_view typeString() const override { return "xcy"; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    [[nodiscard]] char letter() const noexcept override { return 'c'; }
    void makeSingleDie() override;
    [[nodiscard]] std::int64_t singleDieOutcomes() const noexcept override;
    [[nodiscard]] double extremeFaceChance() const noexcept override;
    [[nodiscard]] core::FunctionKernel combiningFunction() const noexcept override {
        return XcyExpressionF;
    }
};

class XpyExpression : public DiceExpression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();
    [[nodiscard]] std::string_view typeString() const override { return "xpy"; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    [[nodiscard]] char letter() const noexcept override { return 'p'; }
    void makeSingleDie() override;
    [[nodiscard]] std::int64_t singleDieOutcomes() const noexcept override;
    [[nodiscard]] double extremeFaceChance() const noexcept override;
    [[nodiscard]] core::FunctionKernel combiningFunction() const noexcept override {
        return XpyExpressionF;
    }
};

class XvyExpression : public DiceExpression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();
    [[nodiscard]] std::string_view typeString() const override { return "xvy"; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    [[nodiscard]] char letter() const noexcept override { return 'v'; }
    void makeSingleDie() override;
    [[nodiscard]] std::int64_t singleDieOutcomes() const noexcept override;
    [[nodiscard]] double extremeFaceChance() const noexcept override;
    [[nodiscard]] core::FunctionKernel combiningFunction() const noexcept override {
        return XvyExpressionF;
    }
};

class XwyExpression : public DiceExpression {
  public:
    [[nodiscard]] static bool isExpressionString(std::string_view text);
    [[nodiscard]] static ExpressionPointer create();
    [[nodiscard]] std::string_view typeString() const override { return "xwy"; }

  protected:
    [[nodiscard]] std::span<const ExpressionKind> descendants() const override { return {}; }
    [[nodiscard]] char letter() const noexcept override { return 'w'; }
    void makeSingleDie() override;
    [[nodiscard]] std::int64_t singleDieOutcomes() const noexcept override;
    [[nodiscard]] double extremeFaceChance() const noexcept override;
    [[nodiscard]] core::FunctionKernel combiningFunction() const noexcept override {
        return XwyExpressionF;
    }
};

}  // namespace talvex::language
