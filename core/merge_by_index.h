#pragma once

// Condensing lists of whole-number outcomes by index instead of sorting them. Both functions
// give exactly the list the sort and the walk from the back give, or nothing where they do
// not apply; the profile then takes its general path.

#include <optional>
#include <span>
#include <vector>

#include "core/evaluation.h"

namespace talvex::core {

using PairKernel = Decimal (*)(const Decimal&, const Decimal&);

// The condensed form of `list` at `error`, for lists whose defined quantities are whole
// numbers in a range not much wider than the list, at a non-negative error.
[[nodiscard]] std::optional<std::vector<Evaluation>> mergedByIndex(
    const std::vector<Evaluation>& list, int error);

// The condensed form, at `error`, of the list of every pair (a, b), a from `own` in order and
// for each a every b from `others` in order, as (function(a, b), a's weight * b's weight);
// built without the list. Nothing where `mergedByIndex` would not apply to that list, or
// where a calculation fails (the general path then meets the same fault in its own order).
[[nodiscard]] std::optional<std::vector<Evaluation>> pairsMergedByIndex(
    std::span<const Evaluation> own, std::span<const Evaluation> others, PairKernel function,
    int error);

}  // namespace talvex::core
