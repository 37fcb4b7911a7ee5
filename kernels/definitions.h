#pragma once

#include "core/decimal.h"

namespace talvex::language {

// Negates quantities in the die kernels.
inline constexpr core::Decimal kKVDecimalNegativeOne{0, 1, 0, true, false};

// The shared rounding behaviour for whole numbers: plain rounding (halves away from zero) to
// scale 0 that never raises, not on inexact results and not on range faults.
struct DecimalRoundingBehaviour {
    int scale = 0;
    core::RoundingMode mode = core::RoundingMode::Plain;

    // The rounded value; undefined when rounding would leave the range.
    [[nodiscard]] core::Decimal round(const core::Decimal& value) const noexcept;
};
inline constexpr DecimalRoundingBehaviour kKVRoundToIntDecimalHandler{0, core::RoundingMode::Plain};

// Start-up: seeds the random source that every roll draws from with the milliseconds since the
// machine started, modulo 3667679. Called once, before the first calculation.
void KVTXInitializeDefinitions();

// The seed that KVTXInitializeDefinitions uses for a given up-time in milliseconds.
[[nodiscard]] unsigned KVTXSeedForUptime(long long milliseconds) noexcept;

}  // namespace talvex::language
