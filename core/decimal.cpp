#include "core/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "core/wide_integer.h"

namespace talvex::core {

using wide::U128;
using wide::U256;

namespace {

constexpr U128 kMantissaLimit = wide::kPow10[Decimal::kMaxDigits];  // 10^38
static_assert(wide::make128(Decimal::kMantissaLimitHigh, Decimal::kMantissaLimitLow) ==
              kMantissaLimit);

const char* faultText(DecimalFault fault) noexcept {
    switch (fault) {
        case DecimalFault::Overflow:
            return "the result is too large to represent";
        case DecimalFault::Underflow:
            return "the result is too small to represent";
        case DecimalFault::DivideByZero:
            return "division by zero";
    }
    return "decimal arithmetic fault";
}

[[nodiscard]] U128 mantissaOf(const Decimal& d) noexcept {
    return wide::make128(d.mantissaHigh(), d.mantissaLow());
}

[[nodiscard]] Decimal make(U128 mantissa, int exponent, bool negative) noexcept {
    return Decimal{wide::high(mantissa), wide::low(mantissa), exponent, negative, false};
}

// Rounds an exact magnitude to a Decimal. `n` is the integer part of |x| / 10^exponent: callers
// either pass an exact value or one that loses at least one digit here. Halves round away from
// zero, which depends only on the first digit removed, so the fraction below n never matters.
// A result needing an exponent below the minimum is rounded at the minimum exponent instead.
[[nodiscard]] [[gnu::noinline]] Decimal roundExact(const U256& n, long exponent, bool negative) {
    if (n.isZero()) {
        return Decimal::zero();
    }
    if (n.fits128() && n.low128() < kMantissaLimit && exponent >= Decimal::kMinExponent &&
        exponent <= Decimal::kMaxExponent) {
        return make(n.low128(), static_cast<int>(exponent), negative);
    }
    const int digits = wide::digitCount(n);
    long drop = digits > Decimal::kMaxDigits ? digits - Decimal::kMaxDigits : 0;
    if (exponent + drop < Decimal::kMinExponent) {
        drop = Decimal::kMinExponent - exponent;
    }
    U128 mantissa = 0;
    if (drop > 0) {
        // Divide by 10^drop in chunks of at most 19 digits, lowest first; whether to round up
        // is decided by the last chunk's remainder alone, since the lower ones are below it.
        U256 kept;
        bool roundUp = false;
        if (drop <= digits) {
            kept = n;
            long remaining = drop;
            while (remaining > 0) {
                const long step = remaining > 19 ? 19 : remaining;
                std::uint64_t remainder = 0;
                kept = wide::divideSmall(
                    kept, static_cast<std::uint64_t>(wide::pow10(static_cast<int>(step))),
                    remainder);
                remaining -= step;
                if (remaining == 0) {
                    roundUp = remainder >= 5 * static_cast<std::uint64_t>(
                                                   wide::pow10(static_cast<int>(step - 1)));
                }
            }
        }
        mantissa = kept.low128() + (roundUp ? 1 : 0);
        exponent += drop;
        if (mantissa == kMantissaLimit) {
            mantissa = wide::pow10(Decimal::kMaxDigits - 1);
            exponent += 1;
        }
        if (mantissa == 0) {
            throw DecimalError(DecimalFault::Underflow);
        }
    } else {
        mantissa = n.low128();
    }
    if (exponent > Decimal::kMaxExponent) {
        const long extra = exponent - Decimal::kMaxExponent;
        if (wide::digitCount(mantissa) + extra > Decimal::kMaxDigits) {
            throw DecimalError(DecimalFault::Overflow);
        }
        mantissa *= wide::pow10(static_cast<int>(extra));
        exponent = Decimal::kMaxExponent;
    }
    return make(mantissa, static_cast<int>(exponent), negative);
}

// roundExact for a product of two 64-bit mantissas: directly where the result keeps its
// exponent or drops one digit and stays inside the exponent range. The product is below 2^128,
// so it has at most 39 digits.
[[nodiscard]] Decimal roundNarrowProduct(U128 product, long exponent, bool negative) {
    if (product < kMantissaLimit) {
        if (exponent < Decimal::kMinExponent || exponent > Decimal::kMaxExponent) {
            return roundExact(U256::from128(product), exponent, negative);
        }
        return product == 0 ? Decimal::zero() : make(product, static_cast<int>(exponent), negative);
    }
    // 39 digits: drop the last one, halves away from zero, as roundExact does.
    long keptExponent = exponent + 1;
    if (keptExponent < Decimal::kMinExponent) {
        return roundExact(U256::from128(product), exponent, negative);
    }
    std::uint64_t lastDigit = 0;
    U128 kept = wide::divide128By10(product, lastDigit) + (lastDigit >= 5 ? 1 : 0);
    if (kept == kMantissaLimit) {
        kept = wide::pow10(Decimal::kMaxDigits - 1);
        keptExponent += 1;
    }
    if (keptExponent > Decimal::kMaxExponent) {
        return roundExact(U256::from128(product), exponent, negative);
    }
    return make(kept, static_cast<int>(keptExponent), negative);
}

// roundExact for a product with a mantissa of more than 64 bits. Between two 38-digit weights,
// as every combination forms them, 20 to 38 digits are dropped by one reciprocal
// multiplication instead of two passes of hardware divisions. The quotient and remainder are
// exact, so rounding half away from zero is decided exactly as roundExact decides it. Results
// at the exponent range's ends and products that keep every digit go to roundExact.
[[nodiscard]] Decimal roundWideProduct(const U256& product, long exponent, bool negative) {
    const int digits = wide::digitCount(product);
    const int drop = digits - Decimal::kMaxDigits;
    long keptExponent = exponent + drop;
    if (drop < 1 || keptExponent < Decimal::kMinExponent) {
        return roundExact(product, exponent, negative);
    }
    U128 remainder = 0;
    U128 kept = 0;
    if (drop >= 20) {
        kept = wide::divideWideByPow10(product, drop, remainder);
    } else {
        // A 38-digit weight times a small whole number: one division by a 64-bit power.
        std::uint64_t smallRemainder = 0;
        kept = wide::divideSmall(product, static_cast<std::uint64_t>(wide::pow10(drop)),
                                 smallRemainder)
                   .low128();
        remainder = smallRemainder;
    }
    if (remainder >= 5 * wide::pow10(drop - 1)) {
        ++kept;
    }
    if (kept == kMantissaLimit) {
        kept = wide::pow10(Decimal::kMaxDigits - 1);
        keptExponent += 1;
    }
    if (keptExponent > Decimal::kMaxExponent) {
        return roundExact(product, exponent, negative);
    }
    return make(kept, static_cast<int>(keptExponent), negative);
}

// Removes trailing zeros while the exponent allows; used on exact quotients so that 6/3 is
// stored as 2 rather than as 2 followed by 38 zeros.
[[nodiscard]] Decimal stripTrailingZeros(const Decimal& d) noexcept {
    U128 m = mantissaOf(d);
    int e = d.exponent();
    if (m == 0) {
        return d;
    }
    for (int step : {16, 8, 4, 2, 1}) {
        const U128 p = wide::pow10(step);
        while (e + step <= Decimal::kMaxExponent && m % p == 0) {
            m /= p;
            e += step;
        }
    }
    return make(m, e, d.isNegative());
}

// Compares |a| and |b| for nonzero finite values.
[[nodiscard]] int compareMagnitude(const Decimal& a, const Decimal& b) noexcept {
    const U128 ma = mantissaOf(a);
    const U128 mb = mantissaOf(b);
    const int ea = a.exponent();
    const int eb = b.exponent();
    if (ea == eb) {
        return ma == mb ? 0 : (ma < mb ? -1 : 1);
    }
    const int topA = ea + wide::digitCount(ma);
    const int topB = eb + wide::digitCount(mb);
    if (topA != topB) {
        return topA < topB ? -1 : 1;
    }
    // Same leading position: the operand with the larger exponent has fewer digits and can be
    // scaled up without leaving 128 bits.
    if (ea > eb) {
        const U128 scaled = ma * wide::pow10(ea - eb);
        return scaled == mb ? 0 : (scaled < mb ? -1 : 1);
    }
    const U128 scaled = mb * wide::pow10(eb - ea);
    return ma == scaled ? 0 : (ma < scaled ? -1 : 1);
}

// The sum of operands whose exponents differ by more than the larger one's spare digits,
// exactly in 256 bits and then rounded.
[[nodiscard]] [[gnu::noinline]] Decimal addExact(U128 mBig, int exponentBig, int digitsBig,
                                                 bool negative, U128 mSmall, int exponentSmall,
                                                 bool sameSign) {
    const int shift = exponentBig - exponentSmall;
    // The smaller operand lies entirely below the 40th digit of the larger one: it cannot move
    // the rounded result, so the larger operand is the answer.
    const int gap = digitsBig + shift - wide::digitCount(mSmall);
    if (gap >= 40) {
        return make(mBig, exponentBig, negative);
    }
    // Here the aligned larger operand has at most 77 digits, which 256 bits hold; it also has
    // more digits than the smaller one, so a difference keeps the larger operand's sign.
    U256 scaledBig = U256::from128(mBig);
    for (int remaining = shift; remaining > 0;) {
        const int step = remaining < 38 ? remaining : 38;
        scaledBig = wide::multiply(scaledBig, wide::pow10(step));
        remaining -= step;
    }
    const U256 other = U256::from128(mSmall);
    const U256 exact = sameSign ? wide::add(scaledBig, other) : wide::subtract(scaledBig, other);
    return roundExact(exact, exponentSmall, negative);
}

// The common case of adding operands whose exponents differ by more than the larger one's
// spare digits, in 128 bits: the larger operand is widened to 38 digits and the smaller one
// is split at that precision into a whole part and a remainder that decides the rounding.
// Where that is not enough (a borrow that loses a digit, results at the ends of the exponent
// range) the exact 256-bit path takes over.
[[nodiscard]] Decimal addShifted(U128 mBig, int exponentBig, int digitsBig, bool negative,
                                 U128 mSmall, int exponentSmall, bool sameSign) {
    const int widen = Decimal::kMaxDigits - digitsBig;
    const int exponent = exponentBig - widen;
    const int split = exponent - exponentSmall;  // digits of the smaller operand below the unit
    if (exponent < Decimal::kMinExponent || exponent >= Decimal::kMaxExponent || split > 38) {
        return addExact(mBig, exponentBig, digitsBig, negative, mSmall, exponentSmall, sameSign);
    }
    const U128 wideBig = widen == 0 ? mBig : mBig * wide::pow10(widen);
    U128 whole = 0;
    U128 remainder = 0;
    if (split == 1) {
        std::uint64_t r = 0;
        whole = wide::divide128By10(mSmall, r);
        remainder = r;
    } else if (split <= 19) {
        std::uint64_t r = 0;
        whole = wide::divide128(mSmall, static_cast<std::uint64_t>(wide::pow10(split)), r);
        remainder = r;
    } else {
        // mSmall < 10^38 < 10^19 * 2^64, so one hardware division by 10^19 leaves a quotient
        // that fits 64 bits, and a plain 64-bit division finishes the split.
        constexpr int kChunk = 19;
        constexpr auto kChunkDivisor = static_cast<std::uint64_t>(wide::pow10(kChunk));
        std::uint64_t low = 0;
        const std::uint64_t partial =
            wide::divide128By64(wide::high(mSmall), wide::low(mSmall), kChunkDivisor, low);
        const auto divisor = static_cast<std::uint64_t>(wide::pow10(split - kChunk));
        whole = partial / divisor;
        remainder = static_cast<U128>(partial % divisor) * kChunkDivisor + low;
    }
    const U128 half = 5 * wide::pow10(split - 1);
    if (sameSign) {
        const U128 sum = wideBig + whole;
        if (sum < kMantissaLimit) {
            U128 rounded = sum + (remainder >= half ? 1 : 0);
            if (rounded == kMantissaLimit) {
                return make(wide::pow10(Decimal::kMaxDigits - 1), exponent + 1, negative);
            }
            return make(rounded, exponent, negative);
        }
        std::uint64_t lastDigit = 0;
        const U128 kept = wide::divide128By10(sum, lastDigit) + (lastDigit >= 5 ? 1 : 0);
        return make(kept, exponent + 1, negative);
    }
    if (remainder == 0) {
        return make(wideBig - whole, exponent, negative);
    }
    const U128 floor = wideBig - whole - 1;
    if (floor < wide::pow10(Decimal::kMaxDigits - 1)) {
        return addExact(mBig, exponentBig, digitsBig, negative, mSmall, exponentSmall, sameSign);
    }
    return make(floor + (remainder <= half ? 1 : 0), exponent, negative);
}

// a + b or a - b of two nonzero finite values, signs already resolved: `bNegative` is the sign
// with which b enters the sum.
[[nodiscard]] Decimal addNonzero(const Decimal& a, const Decimal& b, bool bNegative) {
    const Decimal* big = &a;
    const Decimal* small = &b;
    bool bigNegative = a.isNegative();
    bool smallNegative = bNegative;
    if (a.exponent() < b.exponent()) {
        std::swap(big, small);
        std::swap(bigNegative, smallNegative);
    }
    const U128 mBig = mantissaOf(*big);
    const U128 mSmall = mantissaOf(*small);
    const int shift = big->exponent() - small->exponent();
    const int exponent = small->exponent();
    const bool sameSign = bigNegative == smallNegative;

    // Aligned operands need no digit count: both are below 10^38, so their sum fits 128 bits.
    // Products and quotients are mostly 38 digits long; one comparison says so.
    const int digitsBig = shift == 0                                     ? 0
                          : mBig >= wide::pow10(Decimal::kMaxDigits - 1) ? Decimal::kMaxDigits
                                                                         : wide::digitCount(mBig);
    if (shift == 0 || digitsBig + shift <= Decimal::kMaxDigits) {
        // Both fit 128 bits once aligned: the usual case for whole numbers and probabilities.
        const U128 aligned = mBig * wide::pow10(shift);
        if (sameSign) {
            const U128 sum = aligned + mSmall;
            if (sum < kMantissaLimit) {
                return make(sum, exponent, bigNegative);
            }
            if (exponent < Decimal::kMaxExponent) {
                // One digit too many: drop it, rounding half away from zero.
                std::uint64_t lastDigit = 0;
                const U128 kept = wide::divide128By10(sum, lastDigit) + (lastDigit >= 5 ? 1 : 0);
                return make(kept, exponent + 1, bigNegative);
            }
            return roundExact(U256::from128(sum), exponent, bigNegative);
        }
        if (aligned == mSmall) {
            return Decimal::zero();
        }
        return aligned > mSmall ? make(aligned - mSmall, exponent, bigNegative)
                                : make(mSmall - aligned, exponent, smallNegative);
    }
    return addShifted(mBig, big->exponent(), digitsBig, bigNegative, mSmall, small->exponent(),
                      sameSign);
}

}  // namespace

DecimalError::DecimalError(DecimalFault fault)
    : std::runtime_error(faultText(fault)), m_fault(fault) {}

Decimal Decimal::decimalNumberWithMantissa(std::uint64_t mantissa, int exponent, bool isNegative) {
    const long e = std::clamp(static_cast<long>(exponent), -100000L, 100000L);
    return roundExact(U256::from128(mantissa), e, isNegative);
}

Decimal Decimal::decimalNumberWithInteger(std::int64_t value) noexcept {
    const bool negative = value < 0;
    const std::uint64_t magnitude = negative ? std::uint64_t{0} - static_cast<std::uint64_t>(value)
                                             : static_cast<std::uint64_t>(value);
    return Decimal{0, magnitude, 0, negative, false};
}

Decimal Decimal::decimalNumberWithString(std::string_view text) noexcept {
    std::size_t i = 0;
    const std::size_t n = text.size();
    bool negative = false;
    if (i < n && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    // Keep the first 38 significant digits and the first digit after them; the rest cannot
    // change a rounding that sends halves away from zero.
    U128 kept = 0;
    int keptDigits = 0;
    int firstDropped = 0;
    long dropped = 0;     // significant digits beyond the kept ones
    long afterPoint = 0;  // digits written after the point
    bool anyDigit = false;
    bool point = false;
    for (; i < n; ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9') {
            anyDigit = true;
            const int digit = c - '0';
            if (point) {
                ++afterPoint;
            }
            if (keptDigits == 0 && digit == 0) {
                continue;  // leading zero
            }
            if (keptDigits < kMaxDigits) {
                kept = kept * 10 + static_cast<unsigned>(digit);
                ++keptDigits;
            } else {
                if (dropped == 0) {
                    firstDropped = digit;
                }
                ++dropped;
            }
        } else if (c == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (!anyDigit) {
        return notANumber();
    }
    long exponent = 0;
    if (i < n) {
        if (text[i] != 'e' && text[i] != 'E') {
            return notANumber();
        }
        ++i;
        bool exponentNegative = false;
        if (i < n && (text[i] == '+' || text[i] == '-')) {
            exponentNegative = text[i] == '-';
            ++i;
        }
        if (i == n) {
            return notANumber();
        }
        for (; i < n; ++i) {
            if (text[i] < '0' || text[i] > '9') {
                return notANumber();
            }
            if (exponent < 1000000000000000L) {
                exponent = exponent * 10 + (text[i] - '0');
            }
        }
        if (exponentNegative) {
            exponent = -exponent;
        }
    }
    if (kept == 0) {
        return zero();
    }
    // Value = (kept.firstDropped...) x 10^(exponent - afterPoint + dropped).
    long scale = exponent - afterPoint + dropped;
    U256 exact = U256::from128(kept);
    if (dropped > 0) {
        exact = wide::add(wide::multiply(exact, 10),
                          U256::from128(static_cast<unsigned>(firstDropped)));
        scale -= 1;
    }
    scale = std::clamp(scale, -100000L, 100000L);
    try {
        return roundExact(exact, scale, negative);
    } catch (const DecimalError& error) {
        return error.fault() == DecimalFault::Underflow ? zero() : notANumber();
    }
}

Decimal Decimal::decimalNumberWithDouble(double value) noexcept {
    if (!std::isfinite(value)) {
        return notANumber();
    }
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return decimalNumberWithString(
        std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)));
}

int Decimal::compareSlow(const Decimal& other) const noexcept {
    if (isNotANumber() || other.isNotANumber()) {
        if (isNotANumber() && other.isNotANumber()) {
            return 0;
        }
        return isNotANumber() ? -1 : 1;
    }
    const int signA = isZero() ? 0 : (isNegative() ? -1 : 1);
    const int signB = other.isZero() ? 0 : (other.isNegative() ? -1 : 1);
    if (signA != signB) {
        return signA < signB ? -1 : 1;
    }
    if (signA == 0) {
        return 0;
    }
    const int magnitude = compareMagnitude(*this, other);
    return signA > 0 ? magnitude : -magnitude;
}

Decimal Decimal::addGeneral(const Decimal& other) const {
    if (isNotANumber() || other.isNotANumber()) {
        return notANumber();
    }
    if (other.isZero()) {
        return *this;
    }
    if (isZero()) {
        return other;
    }
    return addNonzero(*this, other, other.isNegative());
}

Decimal Decimal::decimalNumberBySubtracting(const Decimal& other) const {
    if (isNotANumber() || other.isNotANumber()) {
        return notANumber();
    }
    if (other.isZero()) {
        return *this;
    }
    if (isZero()) {
        return Decimal{other.m_hi, other.m_lo, other.exponent(), !other.isNegative(), false};
    }
    return addNonzero(*this, other, !other.isNegative());
}

Decimal Decimal::decimalNumberByMultiplyingBy(const Decimal& other) const {
    if (isNotANumber() || other.isNotANumber()) {
        return notANumber();
    }
    if (isZero() || other.isZero()) {
        return zero();
    }
    const bool negative = isNegative() != other.isNegative();
    const long exponent = static_cast<long>(this->exponent()) + other.exponent();
    if (m_hi == 0 && other.m_hi == 0) {
        return roundNarrowProduct(static_cast<U128>(m_lo) * other.m_lo, exponent, negative);
    }
    return roundWideProduct(wide::multiplyFull(mantissaOf(*this), mantissaOf(other)), exponent,
                            negative);
}

Decimal Decimal::decimalNumberByDividingBy(const Decimal& other) const {
    if (isNotANumber() || other.isNotANumber()) {
        return notANumber();
    }
    if (other.isZero()) {
        throw DecimalError(DecimalFault::DivideByZero);
    }
    if (isZero()) {
        return zero();
    }
    const bool negative = isNegative() != other.isNegative();
    const U128 a = mantissaOf(*this);
    const U128 b = mantissaOf(other);
    const int digitsA = wide::digitCount(a);
    const int digitsB = wide::digitCount(b);
    // Scale a so that the quotient has exactly 39 digits: one more than we keep, which is all
    // that rounding halves away from zero needs.
    const U128 leadA = a * wide::pow10(kMaxDigits - digitsA);
    const U128 leadB = b * wide::pow10(kMaxDigits - digitsB);
    const int scale = kMaxDigits - digitsA + digitsB + (leadA < leadB ? 1 : 0);
    U256 numerator = U256::from128(a);
    int remaining = scale;
    while (remaining > 0) {
        const int step = remaining < 38 ? remaining : 38;
        numerator = wide::multiply(numerator, wide::pow10(step));
        remaining -= step;
    }
    U256 quotient;
    bool exact = false;
    if (wide::high(b) == 0) {
        std::uint64_t rem = 0;
        quotient = wide::divideSmall(numerator, wide::low(b), rem);
        exact = rem == 0;
    } else {
        quotient = wide::divideLarge(numerator, b, exact);
    }
    const long exponent = static_cast<long>(this->exponent()) - other.exponent() - scale;
    const Decimal result = roundExact(quotient, exponent, negative);
    return exact ? stripTrailingZeros(result) : result;
}

Decimal Decimal::decimalNumberByRaisingToPower(unsigned power) const {
    if (isNotANumber()) {
        return notANumber();
    }
    Decimal result = one();
    Decimal base = *this;
    while (power != 0) {
        if ((power & 1U) != 0) {
            result = result * base;
        }
        power >>= 1U;
        if (power != 0) {
            base = base * base;
        }
    }
    return result;
}

std::string Decimal::stringValue() const {
    std::string text;
    appendStringValue(text);
    return text;
}

void Decimal::appendStringValue(std::string& text) const {
    if (isNotANumber()) {
        text += "NaN";
        return;
    }
    if (isZero()) {
        text += '0';
        return;
    }
    const U128 m = mantissaOf(*this);
    char digits[48];
    char* end = digits;
    if (wide::high(m) == 0) {
        end = std::to_chars(digits, digits + sizeof digits, wide::low(m)).ptr;
    } else {
        const U128 chunk = wide::pow10(19);
        const auto top = static_cast<std::uint64_t>(m / chunk);
        const auto bottom = static_cast<std::uint64_t>(m % chunk);
        end = std::to_chars(digits, digits + sizeof digits, top).ptr;
        char tail[20];
        const char* tailEnd = std::to_chars(tail, tail + sizeof tail, bottom).ptr;
        const auto tailLength = static_cast<std::size_t>(tailEnd - tail);
        for (std::size_t k = tailLength; k < 19; ++k) {
            *end++ = '0';
        }
        for (const char* p = tail; p != tailEnd; ++p) {
            *end++ = *p;
        }
    }
    long exponent = this->exponent();
    while (end[-1] == '0') {
        --end;
        ++exponent;
    }
    const long length = end - digits;
    text.reserve(text.size() + static_cast<std::size_t>(length + std::labs(exponent) + 3));
    if (isNegative()) {
        text.push_back('-');
    }
    if (exponent >= 0) {
        text.append(digits, end);
        text.append(static_cast<std::size_t>(exponent), '0');
    } else if (length + exponent > 0) {
        char* point = end + exponent;
        text.append(digits, point);
        text.push_back('.');
        text.append(point, end);
    } else {
        text.append("0.");
        text.append(static_cast<std::size_t>(-(length + exponent)), '0');
        text.append(digits, end);
    }
}

double Decimal::doubleValue() const noexcept {
    if (isNotANumber()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (isZero()) {
        return 0.0;
    }
    const U128 m = mantissaOf(*this);
    constexpr U128 kExactLimit = U128{1} << 53;
    static constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    double value = 0.0;
    if (m < kExactLimit && exponent() >= -22 && exponent() <= 22) {
        // Both factors are exact doubles, so one correctly rounded operation gives the answer.
        const auto mantissa = static_cast<double>(static_cast<std::uint64_t>(m));
        value = exponent() >= 0 ? mantissa * kExactPowers[exponent()]
                                : mantissa / kExactPowers[-exponent()];
    } else {
        char text[64];
        const std::string digits = make(m, 0, false).stringValue();
        auto* end = std::copy(digits.begin(), digits.end(), text);
        *end++ = 'e';
        end = std::to_chars(end, text + sizeof text, static_cast<int>(exponent())).ptr;
        std::from_chars(text, end, value);
    }
    return isNegative() ? -value : value;
}

std::int64_t Decimal::longLongValue() const noexcept {
    if (isNotANumber() || isZero()) {
        return 0;
    }
    const U128 m = mantissaOf(*this);
    constexpr U128 kLimit = static_cast<U128>(std::numeric_limits<std::int64_t>::max()) + 1;
    U128 whole = 0;
    if (exponent() >= 0) {
        if (exponent() >= 20 || m > kLimit / wide::pow10(exponent())) {
            whole = kLimit;
        } else {
            whole = m * wide::pow10(exponent());
        }
    } else if (-exponent() <= kMaxDigits) {
        whole = m / wide::pow10(-exponent());
    }
    if (isNegative()) {
        return whole >= kLimit ? std::numeric_limits<std::int64_t>::min()
                               : -static_cast<std::int64_t>(whole);
    }
    return whole >= kLimit ? std::numeric_limits<std::int64_t>::max()
                           : static_cast<std::int64_t>(whole);
}

int Decimal::intValue() const noexcept {
    const std::int64_t value = longLongValue();
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

Decimal Decimal::decimalRound(int scale, RoundingMode /*mode*/) const {
    if (isNotANumber() || isZero() || exponent() >= -static_cast<long>(scale)) {
        return *this;
    }
    const long target = -static_cast<long>(scale);
    const long drop = target - exponent();  // at least one digit
    const U128 m = mantissaOf(*this);
    const int digits = wide::digitCount(m);
    U128 kept = 0;
    if (drop - 1 < digits) {
        // m / 10^(drop - 1) by 64-bit hardware divisions, then the last digit by the
        // reciprocal: comparing weights within error rounds every one of them.
        U128 shifted = m;
        for (int remaining = static_cast<int>(drop - 1); remaining > 0;) {
            const int step = remaining < 19 ? remaining : 19;
            std::uint64_t ignored = 0;
            shifted =
                wide::divide128(shifted, static_cast<std::uint64_t>(wide::pow10(step)), ignored);
            remaining -= step;
        }
        std::uint64_t lastDigit = 0;
        kept = wide::divide128By10(shifted, lastDigit) + (lastDigit >= 5 ? 1 : 0);
    }
    if (kept == 0) {
        return zero();
    }
    return roundExact(U256::from128(kept), target, isNegative());
}

Decimal Decimal::roundToScale(int scale, RoundingMode mode, bool* changed) const {
    const Decimal rounded = decimalRound(scale, mode);
    const bool differs = rounded.compare(*this) != 0;
    if (changed != nullptr) {
        *changed = differs;
    }
    return differs ? rounded : *this;
}

Decimal Decimal::absoluteValueChanged(bool* negative, bool* zero) const {
    const int sign = compare(Decimal::zero());
    if (negative != nullptr) {
        *negative = sign < 0;
    }
    if (zero != nullptr) {
        *zero = sign == 0;
    }
    return sign < 0 ? Decimal::zero() - *this : *this;
}

}  // namespace talvex::core

namespace talvex::core::wide {

U256 divideLarge(const U256& n, U128 d, bool& remainderIsZero) noexcept {
    // Knuth's algorithm D with 64-bit digits and a two-digit divisor.
    const std::uint64_t d1 = high(d);
    const std::uint64_t d0 = low(d);
    const int shift = std::countl_zero(d1);
    const std::uint64_t v1 = shift == 0 ? d1 : (d1 << shift) | (d0 >> (64 - shift));
    const std::uint64_t v0 = d0 << shift;
    std::array<std::uint64_t, 5> u{};
    u[4] = shift == 0 ? 0 : n.limb[3] >> (64 - shift);
    for (std::size_t i = 3; i >= 1; --i) {
        u[i] = shift == 0 ? n.limb[i] : (n.limb[i] << shift) | (n.limb[i - 1] >> (64 - shift));
    }
    u[0] = n.limb[0] << shift;

    U256 q;
    constexpr U128 kBase = U128{1} << 64;
    for (int jj = 2; jj >= 0; --jj) {
        const auto j = static_cast<std::size_t>(jj);
        const U128 top = make128(u[j + 2], u[j + 1]);
        U128 qhat = top / v1;
        U128 rhat = top - qhat * v1;
        while (qhat >= kBase || qhat * v0 > make128(low(rhat), u[j])) {
            --qhat;
            rhat += v1;
            if (rhat >= kBase) {
                break;
            }
        }
        const std::uint64_t qd = low(qhat);
        // u[j..j+2] -= qd * (v1:v0)
        U128 p = static_cast<U128>(qd) * v0;
        std::uint64_t carry = high(p);
        std::uint64_t t = u[j];
        u[j] = t - low(p);
        std::uint64_t borrow = t < low(p) ? 1 : 0;
        p = static_cast<U128>(qd) * v1 + carry;
        carry = high(p);
        t = u[j + 1];
        std::uint64_t diff = t - low(p);
        std::uint64_t b1 = t < low(p) ? 1 : 0;
        u[j + 1] = diff - borrow;
        std::uint64_t b2 = diff < borrow ? 1 : 0;
        borrow = b1 + b2;
        t = u[j + 2];
        diff = t - carry;
        b1 = t < carry ? 1 : 0;
        u[j + 2] = diff - borrow;
        b2 = diff < borrow ? 1 : 0;
        if ((b1 | b2) != 0) {
            // The estimate was one too large: add the divisor back.
            q.limb[j] = qd - 1;
            U128 s = static_cast<U128>(u[j]) + v0;
            u[j] = low(s);
            s = static_cast<U128>(u[j + 1]) + v1 + high(s);
            u[j + 1] = low(s);
            u[j + 2] += high(s);
        } else {
            q.limb[j] = qd;
        }
    }
    remainderIsZero = (u[0] | u[1]) == 0;
    return q;
}

}  // namespace talvex::core::wide
