#pragma once

#include <initializer_list>

// Small pieces shared by the function kernels; not part of their interface.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/profile.h"
#include "expressions/request_context.h"

namespace talvex::language::kernel_support {

// The profile that holds only `quantity` with weight `weight`.
[[nodiscard]] core::Profile constantProfile(const core::Decimal& quantity,
                                            const core::Decimal& weight = core::Decimal::one());

// A double as the shortest decimal that reads back as it, without further rounding: how the
// weight walks hand their doubles back to Decimal.
[[nodiscard]] inline core::Decimal decimalFromDouble(double value) noexcept {
    return core::Decimal::decimalNumberWithDouble(value);
}

// The whole part of a double as a 32-bit integer, truncated; out of range the most negative
// value, as the hardware conversion answers.
[[nodiscard]] std::int32_t truncatedToInt32(double value) noexcept;

// The outcomes of an argument after it has been scaled in place, without its undefined one,
// with quantities and weights also as doubles for the inner loops.
struct DefinedOutcomes {
    std::vector<core::Evaluation> evaluations;
    std::vector<double> quantities;
    std::vector<double> weights;
};

[[nodiscard]] DefinedOutcomes definedOutcomesOf(const core::Profile& profile);

// Scales `argument` to weight one in place and answers its defined outcomes; its undefined
// chance u is folded into `undefinedChance` as the chance that any argument so far is
// undefined, (1 - U) x u + U.
[[nodiscard]] DefinedOutcomes scaledToOneFoldingUndefined(core::Profile& argument,
                                                          double& undefinedChance);

// X, low and high of keep and count, after each was checked and scaled in turn, and the chance
// that any of them is undefined.
struct BoundedArguments {
    DefinedOutcomes x;
    DefinedOutcomes low;
    DefinedOutcomes high;
    double undefinedChance = 0;

    // The result's start: one undefined outcome of that chance, if any.
    [[nodiscard]] core::Profile undefinedPart() const;
};

// Charges the request for a call that visits every combination of the arguments' outcomes (the
// product of `sizes`), before it visits any.
void checkWork(std::initializer_list<std::size_t> sizes, RequestContext& context);

// Nothing as soon as one of the three has no defined outcome. Charges, as checkWork, for every
// combination of the three arguments' outcomes.
[[nodiscard]] std::optional<BoundedArguments> scaledBoundedArguments(
    std::span<core::Profile> arguments, RequestContext& context);

}  // namespace talvex::language::kernel_support
