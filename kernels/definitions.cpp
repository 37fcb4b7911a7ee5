#include "kernels/definitions.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace talvex::language {

core::Decimal DecimalRoundingBehaviour::round(const core::Decimal& value) const noexcept {
    try {
        return value.decimalRound(scale, mode);
    } catch (const core::DecimalError&) {
        return core::Decimal::notANumber();
    }
}

unsigned KVTXSeedForUptime(long long milliseconds) noexcept {
    // The up-time is taken as a signed 32-bit duration, made non-negative.
    auto duration = static_cast<std::int32_t>(static_cast<std::uint32_t>(milliseconds));
    std::int64_t value = duration;
    if (value < 0) {
        value = -value;
    }
    return static_cast<unsigned>(value % 3667679);
}

void KVTXInitializeDefinitions() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const long long milliseconds =
        static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
    srandom(KVTXSeedForUptime(milliseconds));
}

}  // namespace talvex::language
