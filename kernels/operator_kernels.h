#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/profile.h"
#include "expressions/request_context.h"

namespace talvex::language {

// The kernels behind the compound operators and the one-argument math functions. A function
// kernel (suffix F) combines two quantities into one; a relation kernel (suffix R) splits a pair
// into a small distribution. Every kernel answers undefined (or one undefined outcome of weight
// one) when either argument is undefined. One-argument kernels look only at the right argument.
//
// Quantities that pass through double precision come back rounded to ten decimals, so their
// binary noise never makes two equal outcomes distinct.

[[nodiscard]] core::Decimal CompoundExpressionAdditionF(const core::Decimal& a,
                                                        const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionSubtractionF(const core::Decimal& a,
                                                           const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionMultiplicationF(const core::Decimal& a,
                                                              const core::Decimal& b);
// Undefined for a zero divisor: "1/0" is how the parser writes an undefined piece.
[[nodiscard]] core::Decimal CompoundExpressionDivisionF(const core::Decimal& a,
                                                        const core::Decimal& b);
// a to the power b. For a negative base the sign follows the fraction of the exponent alone,
// so (-2)^3 is 8 and (-8)^(1/3) is -2; an even root of a negative base is undefined.
[[nodiscard]] core::Decimal CompoundExpressionPowerF(const core::Decimal& a,
                                                     const core::Decimal& b);
// Exponent notation: a x 10^b.
[[nodiscard]] core::Decimal CompoundExpressionEEF(const core::Decimal& a, const core::Decimal& b);
// Also writes the line "0" to the diagnostic channel.
[[nodiscard]] core::Decimal CompoundExpressionMaxF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionMinF(const core::Decimal& a, const core::Decimal& b);
// Always undefined: where no operation applies.
[[nodiscard]] core::Decimal CompoundExpressionUndefinedF(const core::Decimal& a,
                                                         const core::Decimal& b);
// Floor, ceil and round go through a 32-bit integer: beyond its range the answer is
// -2147483648.
[[nodiscard]] core::Decimal CompoundExpressionFloorF(const core::Decimal& a,
                                                     const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionCeilF(const core::Decimal& a, const core::Decimal& b);
// Halves away from zero.
[[nodiscard]] core::Decimal CompoundExpressionRoundF(const core::Decimal& a,
                                                     const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionAbsF(const core::Decimal& a, const core::Decimal& b);
// Undefined unless b > 0.
[[nodiscard]] core::Decimal CompoundExpressionLnF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionLogF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionExpF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionSinF(const core::Decimal& a, const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionCosF(const core::Decimal& a, const core::Decimal& b);
// Undefined within 1e-6 of a whole multiple of pi (where the tangent is zero), not near the
// poles: near pi/2 it answers the large finite value the tangent gives.
[[nodiscard]] core::Decimal CompoundExpressionTanF(const core::Decimal& a, const core::Decimal& b);
// Undefined when |b| - 1 > 1e-6. Only values just above +1 snap to 1; just below -1 the
// result is undefined.
[[nodiscard]] core::Decimal CompoundExpressionArcsinF(const core::Decimal& a,
                                                      const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionArccosF(const core::Decimal& a,
                                                      const core::Decimal& b);
[[nodiscard]] core::Decimal CompoundExpressionArctanF(const core::Decimal& a,
                                                      const core::Decimal& b);

// The shortest decimal form of a double, rounded to ten decimals; NaN and infinities are
// undefined.
[[nodiscard]] core::Decimal CompoundExpressionDecimalFromDouble(double value);

// Dice with a random count a and size b: the distribution of the dice text "aLb" (or "0-aLb"
// when exactly one of them is negative), both rounded to whole numbers, scaled to weight one.
// Each call builds that text afresh, without a dictionary.
[[nodiscard]] std::vector<core::Evaluation> CompoundExpressionXdyR(const core::Decimal& a,
                                                                   const core::Decimal& b);
[[nodiscard]] std::vector<core::Evaluation> CompoundExpressionXcyR(const core::Decimal& a,
                                                                   const core::Decimal& b);
[[nodiscard]] std::vector<core::Evaluation> CompoundExpressionXpyR(const core::Decimal& a,
                                                                   const core::Decimal& b);
[[nodiscard]] std::vector<core::Evaluation> CompoundExpressionXvyR(const core::Decimal& a,
                                                                   const core::Decimal& b);
[[nodiscard]] std::vector<core::Evaluation> CompoundExpressionXwyR(const core::Decimal& a,
                                                                   const core::Decimal& b);

// The dice text a relation kernel with letter `letter` builds for (a, b); empty when either is
// undefined.
[[nodiscard]] std::string diceRelationText(char letter, const core::Decimal& a,
                                           const core::Decimal& b);

// What the dice relation kernels built during one request, by dice text, each built in that
// request. A repeated text is answered from here, already scaled, instead of being looked up and
// scaled again. Owned by whoever starts the assimilation.
class DiceRelationCache {
  public:
    explicit DiceRelationCache(RequestContext& context) noexcept : m_context(context) {}

    // The distribution of `diceText`, scaled to weight one, built on first use.
    [[nodiscard]] const std::vector<core::Evaluation>& evaluations(const std::string& diceText);
    [[nodiscard]] std::size_t size() const noexcept { return m_entries.size(); }

  private:
    RequestContext& m_context;
    std::unordered_map<std::string, std::vector<core::Evaluation>> m_entries;
};

// A relation kernel for the dice letter `letter` ("d", "c", "p", "v" or "w") that gives exactly
// what the matching Compound...R kernel gives, answering repeated dice texts from `cache`. The
// cache must outlive the kernel.
[[nodiscard]] core::RelationKernel cachedDiceRelation(char letter, DiceRelationCache& cache);

// Where leftover diagnostic lines go: standard error when the environment variable
// TALVEX_DIAGNOSTICS is set, nowhere otherwise, so that a terminal is not flooded.
class DiagnosticChannel {
  public:
    // A channel that writes to `sink`, or to nowhere if it is null.
    explicit DiagnosticChannel(std::ostream* sink) noexcept : m_sink(sink) {}
    // Reads the environment now.
    [[nodiscard]] static DiagnosticChannel fromEnvironment();

    [[nodiscard]] bool isOn() const noexcept { return m_sink != nullptr; }
    // Writes the line and a line break, if the channel is on.
    void write(std::string_view line) const;

  private:
    std::ostream* m_sink;
};

}  // namespace talvex::language
