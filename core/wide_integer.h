#pragma once

// Fixed-width unsigned integers of 128 and 256 bits for Decimal's exact intermediate results.
// Internal to the core library: nothing here allocates, everything is constexpr-friendly.

#include <array>
#include <bit>
#include <cstdint>

namespace talvex::core::wide {

__extension__ typedef unsigned __int128 U128;

[[nodiscard]] constexpr std::uint64_t low(U128 x) noexcept { return static_cast<std::uint64_t>(x); }
[[nodiscard]] constexpr std::uint64_t high(U128 x) noexcept {
    return static_cast<std::uint64_t>(x >> 64);
}
[[nodiscard]] constexpr U128 make128(std::uint64_t hi, std::uint64_t lo) noexcept {
    return (static_cast<U128>(hi) << 64) | lo;
}

// Four 64-bit limbs, least significant first.
struct U256 {
    std::array<std::uint64_t, 4> limb{};

    [[nodiscard]] static constexpr U256 from128(U128 x) noexcept {
        return U256{{low(x), high(x), 0, 0}};
    }
    [[nodiscard]] constexpr bool fits128() const noexcept { return limb[2] == 0 && limb[3] == 0; }
    [[nodiscard]] constexpr U128 low128() const noexcept { return make128(limb[1], limb[0]); }
    [[nodiscard]] constexpr bool isZero() const noexcept {
        return (limb[0] | limb[1] | limb[2] | limb[3]) == 0;
    }
};

[[nodiscard]] constexpr int compare(const U256& a, const U256& b) noexcept {
    for (int i = 3; i >= 0; --i) {
        const auto k = static_cast<std::size_t>(i);
        if (a.limb[k] != b.limb[k]) {
            return a.limb[k] < b.limb[k] ? -1 : 1;
        }
    }
    return 0;
}

// a + b; the caller guarantees the sum fits.
[[nodiscard]] constexpr U256 add(const U256& a, const U256& b) noexcept {
    U256 r;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const U128 s = static_cast<U128>(a.limb[i]) + b.limb[i] + carry;
        r.limb[i] = low(s);
        carry = high(s);
    }
    return r;
}

// a - b; the caller guarantees a >= b.
[[nodiscard]] constexpr U256 subtract(const U256& a, const U256& b) noexcept {
    U256 r;
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::uint64_t x = a.limb[i];
        const std::uint64_t d1 = x - b.limb[i];
        const std::uint64_t b1 = x < b.limb[i] ? 1 : 0;
        r.limb[i] = d1 - borrow;
        const std::uint64_t b2 = d1 < borrow ? 1 : 0;
        borrow = b1 + b2;
    }
    return r;
}

// a * b, keeping the low 256 bits; the caller guarantees the product fits.
[[nodiscard]] constexpr U256 multiply(const U256& a, U128 b) noexcept {
    const std::uint64_t b0 = low(b);
    const std::uint64_t b1 = high(b);
    U256 r;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const U128 p = static_cast<U128>(a.limb[i]) * b0 + r.limb[i] + carry;
        r.limb[i] = low(p);
        carry = high(p);
    }
    if (b1 != 0) {
        carry = 0;
        for (std::size_t i = 0; i + 1 < 4; ++i) {
            const U128 p = static_cast<U128>(a.limb[i]) * b1 + r.limb[i + 1] + carry;
            r.limb[i + 1] = low(p);
            carry = high(p);
        }
    }
    return r;
}

[[nodiscard]] constexpr U256 multiply128(U128 a, U128 b) noexcept {
    return multiply(U256::from128(a), b);
}

// (hi:lo) / d with hi < d, so that the quotient fits 64 bits.
[[nodiscard]] inline std::uint64_t divide128By64(std::uint64_t hi, std::uint64_t lo,
                                                 std::uint64_t d, std::uint64_t& rem) noexcept {
#if defined(__x86_64__)
    std::uint64_t q = 0;
    std::uint64_t r = 0;
    __asm__("divq %4" : "=a"(q), "=d"(r) : "a"(lo), "d"(hi), "rm"(d));
    rem = r;
    return q;
#else
    const U128 n = make128(hi, lo);
    rem = static_cast<std::uint64_t>(n % d);
    return static_cast<std::uint64_t>(n / d);
#endif
}

// n / d for a 128-bit n and a 64-bit divisor, as two hardware divisions.
[[nodiscard]] inline U128 divide128(U128 n, std::uint64_t d, std::uint64_t& rem) noexcept {
    const std::uint64_t hi = high(n);
    const std::uint64_t qHigh = hi / d;
    const std::uint64_t qLow = divide128By64(hi % d, low(n), d, rem);
    return make128(qHigh, qLow);
}

// n / 10 by multiplying with the reciprocal ceil(2^131 / 10), which is exact for every
// 128-bit n; merging weights divides by ten so often that this pays.
[[nodiscard]] inline U128 divide128By10(U128 n, std::uint64_t& rem) noexcept {
    constexpr std::uint64_t kMagic = 0xCCCCCCCCCCCCCCCCULL;  // both halves; the low one + 1
    const std::uint64_t n0 = low(n);
    const std::uint64_t n1 = high(n);
    const U128 p00 = static_cast<U128>(n0) * (kMagic + 1);
    const U128 p01 = static_cast<U128>(n0) * kMagic;
    const U128 p10 = static_cast<U128>(n1) * (kMagic + 1);
    const U128 p11 = static_cast<U128>(n1) * kMagic;
    const U128 middle = static_cast<U128>(high(p00)) + low(p01) + low(p10);
    const U128 upper = p11 + high(p01) + high(p10) + high(middle);
    const U128 q = upper >> 3;
    rem = static_cast<std::uint64_t>(n - q * 10);
    return q;
}

// n / d for a 64-bit divisor; `rem` receives the remainder.
[[nodiscard]] inline U256 divideSmall(const U256& n, std::uint64_t d, std::uint64_t& rem) noexcept {
    U256 q;
    std::uint64_t r = 0;
    for (int i = 3; i >= 0; --i) {
        const auto k = static_cast<std::size_t>(i);
        if (r == 0 && n.limb[k] < d) {
            r = n.limb[k];
            continue;
        }
        q.limb[k] = divide128By64(r, n.limb[k], d, r);
    }
    rem = r;
    return q;
}

// n / d for a divisor of 65 to 128 bits (long division on 64-bit limbs, normalised divisor).
// `remainderIsZero` tells whether the division was exact.
[[nodiscard]] U256 divideLarge(const U256& n, U128 d, bool& remainderIsZero) noexcept;

constexpr int kPow10Count128 = 39;  // 10^0 .. 10^38
constexpr int kPow10Count256 = 78;  // 10^0 .. 10^77

[[nodiscard]] consteval std::array<U128, kPow10Count128> makePow10Table128() {
    std::array<U128, kPow10Count128> t{};
    U128 v = 1;
    for (auto& x : t) {
        x = v;
        v *= 10;
    }
    return t;
}

[[nodiscard]] consteval std::array<U256, kPow10Count256> makePow10Table256() {
    std::array<U256, kPow10Count256> t{};
    U256 v = U256::from128(1);
    for (auto& x : t) {
        x = v;
        v = multiply(v, 10);
    }
    return t;
}

inline constexpr std::array<U128, kPow10Count128> kPow10 = makePow10Table128();
inline constexpr std::array<U256, kPow10Count256> kPow10Wide = makePow10Table256();

[[nodiscard]] constexpr U128 pow10(int k) noexcept { return kPow10[static_cast<std::size_t>(k)]; }

[[nodiscard]] constexpr int bitLength(U128 x) noexcept {
    return high(x) != 0 ? 128 - std::countl_zero(high(x)) : 64 - std::countl_zero(low(x));
}

// Number of decimal digits of x (0 for zero).
[[nodiscard]] constexpr int digitCount(U128 x) noexcept {
    if (x == 0) {
        return 0;
    }
    int d = (bitLength(x) * 1233) >> 12;  // floor(bits * log10(2)), never too high
    while (d < kPow10Count128 && x >= kPow10[static_cast<std::size_t>(d)]) {
        ++d;
    }
    return d;
}

[[nodiscard]] constexpr int digitCount(const U256& x) noexcept {
    if (x.fits128()) {
        return digitCount(x.low128());
    }
    int bits = 0;
    for (int i = 3; i >= 0; --i) {
        const auto k = static_cast<std::size_t>(i);
        if (x.limb[k] != 0) {
            bits = 64 * i + 64 - std::countl_zero(x.limb[k]);
            break;
        }
    }
    int d = (bits * 1233) >> 12;
    while (d < kPow10Count256 && compare(x, kPow10Wide[static_cast<std::size_t>(d)]) >= 0) {
        ++d;
    }
    return d;
}

// The whole 256-bit product a * b.
[[nodiscard]] constexpr U256 multiplyFull(U128 a, U128 b) noexcept {
    const U128 p00 = static_cast<U128>(low(a)) * low(b);
    const U128 p01 = static_cast<U128>(low(a)) * high(b);
    const U128 p10 = static_cast<U128>(high(a)) * low(b);
    const U128 p11 = static_cast<U128>(high(a)) * high(b);
    const U128 middle = static_cast<U128>(high(p00)) + low(p01) + low(p10);
    const U128 upper = p11 + high(p01) + high(p10) + high(middle);
    return U256{{low(p00), low(middle), low(upper), high(upper)}};
}

// Barrett's reduction (Handbook of Applied Cryptography, 14.42) with 64-bit digits for the
// divisors 10^k, 20 <= k <= 38, which take two digits: mu = floor(2^256 / 10^k) has three.
[[nodiscard]] consteval std::array<U256, kPow10Count128> makeBarrettReciprocals() {
    std::array<U256, kPow10Count128> table{};
    for (int k = 20; k < kPow10Count128; ++k) {
        const U128 d = kPow10[static_cast<std::size_t>(k)];
        U256 quotient;
        U128 remainder = 0;
        for (int bit = 256; bit >= 0; --bit) {
            remainder = 2 * remainder + (bit == 256 ? 1 : 0);  // stays below 2^128: d < 2^127
            if (remainder >= d) {
                remainder -= d;
                quotient.limb[static_cast<std::size_t>(bit / 64)] |= std::uint64_t{1} << (bit % 64);
            }
        }
        table[static_cast<std::size_t>(k)] = quotient;
    }
    return table;
}

inline constexpr std::array<U256, kPow10Count128> kBarrettReciprocals = makeBarrettReciprocals();

// floor(n / 10^k) for 20 <= k <= 38 and any n whose quotient is below 2^128; `rem` gets the
// remainder. The estimate q3 = floor(floor(n / 2^64) * mu / 2^192) is at most two below the
// quotient, so the remainder n - q3 * 10^k is below 3 * 10^38 < 2^128 and is exact in the low
// 128 bits alone.
[[nodiscard]] constexpr U128 divideWideByPow10(const U256& n, int k, U128& rem) noexcept {
    const U256& mu = kBarrettReciprocals[static_cast<std::size_t>(k)];
    const std::uint64_t x0 = n.limb[1];
    const std::uint64_t x1 = n.limb[2];
    const std::uint64_t x2 = n.limb[3];
    // Column sums of the 3 x 3 limb product, each with the carry of the one below it; a column
    // of three products needs a third word.
    U128 column = static_cast<U128>(x0) * mu.limb[0];
    column = static_cast<U128>(high(column));
    std::uint64_t overflow = 0;
    const auto add = [&column, &overflow](U128 term) {
        column += term;
        overflow += column < term ? 1 : 0;
    };
    add(static_cast<U128>(x0) * mu.limb[1]);
    add(static_cast<U128>(x1) * mu.limb[0]);
    column = make128(overflow, high(column));
    overflow = 0;
    add(static_cast<U128>(x0) * mu.limb[2]);
    add(static_cast<U128>(x1) * mu.limb[1]);
    add(static_cast<U128>(x2) * mu.limb[0]);
    column = make128(overflow, high(column));
    overflow = 0;
    add(static_cast<U128>(x1) * mu.limb[2]);
    add(static_cast<U128>(x2) * mu.limb[1]);
    const std::uint64_t qLow = low(column);
    column = make128(overflow, high(column));
    add(static_cast<U128>(x2) * mu.limb[2]);
    U128 q = make128(low(column), qLow);
    const U128 d = pow10(k);
    U128 r = n.low128() - q * d;
    while (r >= d) {
        r -= d;
        ++q;
    }
    rem = r;
    return q;
}

// floor(n / 10^k) for any k >= 0.
[[nodiscard]] inline U256 dividePow10(U256 n, int k) noexcept {
    std::uint64_t rem = 0;
    while (k > 0 && !n.isZero()) {
        const int step = k < 19 ? k : 19;
        n = divideSmall(n, static_cast<std::uint64_t>(pow10(step)), rem);
        k -= step;
    }
    return n;
}

}  // namespace talvex::core::wide
