#pragma once

#include "core/decimal.h"

namespace talvex::language {

// Negates quantities in the die kernels.
inline constexpr core::Decimal kKVDecimalNegativeOne{0, 1, 0, true, false};

// Start-up: seeds the random source that every roll draws from with the milliseconds since the
// machine started, modulo 3667679. Called once, before the first calculation.
void KVTXInitializeDefinitions();

// The seed that KVTXInitializeDefinitions uses for a given up-time in milliseconds.
[[nodiscard]] unsigned KVTXSeedForUptime(long long milliseconds) noexcept;

}  // namespace talvex::language
