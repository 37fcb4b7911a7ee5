#pragma once

#include <compare>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace talvex::core {

// Which range fault a plain Decimal operation ran into.
enum class DecimalFault : std::uint8_t { Overflow, Underflow, DivideByZero };

// Thrown by the plain arithmetic operations on a range fault. The calculation layers let it
// pass; the request boundary (controller, command line) catches it and tells the user.
class DecimalError : public std::runtime_error {
  public:
    explicit DecimalError(DecimalFault fault);
    [[nodiscard]] DecimalFault fault() const noexcept { return m_fault; }

  private:
    DecimalFault m_fault;
};

// How a value is rounded to a scale. Talvex only ever rounds halves away from zero.
enum class RoundingMode : std::uint8_t { Plain = 0 };

// A decimal floating-point number: sign, up to 38 significant digits, exponent -128..127,
// and one undefined value ("NaN") that equals itself and sorts below every number.
// There is no infinity and no negative zero. Results of arithmetic are rounded to 38
// significant digits, halves away from zero. The representation is not canonical
// (1, 1.0 and 10E-1 are different bit patterns) but every comparison is numeric.
class Decimal {
  public:
    static constexpr int kMaxDigits = 38;
    static constexpr int kMinExponent = -128;
    static constexpr int kMaxExponent = 127;
    // 10^38, the first mantissa too large, as its two 64-bit halves.
    static constexpr std::uint64_t kMantissaLimitHigh = 0x4B3B4CA85A86C47AULL;
    static constexpr std::uint64_t kMantissaLimitLow = 0x098A224000000000ULL;

    // Zero.
    constexpr Decimal() noexcept = default;

    [[nodiscard]] static constexpr Decimal zero() noexcept { return Decimal{}; }
    [[nodiscard]] static constexpr Decimal one() noexcept { return Decimal{0, 1, 0, false, false}; }
    [[nodiscard]] static constexpr Decimal notANumber() noexcept {
        return Decimal{0, 0, 0, false, true};
    }

    // m x 10^e, rounded into range like any arithmetic result (so it may throw DecimalError).
    [[nodiscard]] static Decimal decimalNumberWithMantissa(std::uint64_t mantissa, int exponent,
                                                           bool isNegative);
    [[nodiscard]] static Decimal decimalNumberWithInteger(std::int64_t value) noexcept;
    // Digits, an optional sign, at most one "." and an optional exponent ("e" or "E"), whatever
    // the locale. Anything else, or a value too large to represent, is undefined; a value too
    // small to represent becomes zero. More than 38 digits are rounded. Never throws.
    [[nodiscard]] static Decimal decimalNumberWithString(std::string_view text) noexcept;
    // The shortest digits that read back as the same double (at most 17 significant digits);
    // NaN, infinities and values too large to represent are undefined. Never throws.
    [[nodiscard]] static Decimal decimalNumberWithDouble(double value) noexcept;

    [[nodiscard]] bool isNotANumber() const noexcept { return (m_tag & kNanBit) != 0; }
    [[nodiscard]] bool isZero() const noexcept { return !isNotANumber() && m_hi == 0 && m_lo == 0; }
    [[nodiscard]] bool isNegative() const noexcept { return (m_tag & kNegativeBit) != 0; }
    // Above zero (undefined is not), without the general comparison.
    [[nodiscard]] bool isPositive() const noexcept {
        return !isNotANumber() && !isZero() && !isNegative();
    }

    // -1, 0 or +1. Undefined equals undefined and is below every number.
    [[nodiscard]] int compare(const Decimal& other) const noexcept {
        // Sorting profiles compares whole numbers of one sign and exponent over and over.
        if (m_tag == other.m_tag && !isNotANumber()) {
            if (m_hi != other.m_hi || m_lo != other.m_lo) {
                const bool less = m_hi != other.m_hi ? m_hi < other.m_hi : m_lo < other.m_lo;
                return (less != isNegative()) ? -1 : 1;
            }
            return 0;
        }
        return compareSlow(other);
    }

    [[nodiscard]] Decimal decimalNumberByAdding(const Decimal& other) const {
        // Whole numbers, and weights of one scale: at one exponent and of one sign, a sum below
        // 10^38 is exact, so nothing rounds.
        if (m_tag == other.m_tag && !isNotANumber()) {
            const std::uint64_t lo = m_lo + other.m_lo;
            const std::uint64_t hi = m_hi + other.m_hi + (lo < m_lo ? 1 : 0);
            if (hi < kMantissaLimitHigh || (hi == kMantissaLimitHigh && lo < kMantissaLimitLow)) {
                return Decimal{hi, lo, m_tag};
            }
        }
        return addGeneral(other);
    }
    [[nodiscard]] Decimal decimalNumberBySubtracting(const Decimal& other) const;
    [[nodiscard]] Decimal decimalNumberByMultiplyingBy(const Decimal& other) const;
    [[nodiscard]] Decimal decimalNumberByDividingBy(const Decimal& other) const;
    // Integer power by repeated squaring, each product rounded to 38 digits; x^0 is one.
    [[nodiscard]] Decimal decimalNumberByRaisingToPower(unsigned power) const;

    // Plain text without exponent and without trailing zeros after the point; "NaN" if undefined.
    [[nodiscard]] std::string stringValue() const;
    // Appends stringValue() to `text`, for writers of many numbers.
    void appendStringValue(std::string& text) const;
    // The nearest double; NaN if undefined.
    [[nodiscard]] double doubleValue() const noexcept;
    // Truncated toward zero, saturated to the type's range; 0 if undefined.
    [[nodiscard]] int intValue() const noexcept;
    [[nodiscard]] std::int64_t longLongValue() const noexcept;

    // Rounds to `scale` digits after the point (a negative scale rounds to tens, hundreds, ...).
    // Undefined stays undefined. Throws DecimalError only when rounding up leaves the range.
    [[nodiscard]] Decimal decimalRound(int scale, RoundingMode mode = RoundingMode::Plain) const;
    // As decimalRound; `changed` (if given) says whether the value changed.
    [[nodiscard]] Decimal roundToScale(int scale, RoundingMode mode, bool* changed) const;
    // |x|; `negative` (if given) is set when x is below zero (undefined included), `zero` when
    // it equals zero.
    [[nodiscard]] Decimal absoluteValueChanged(bool* negative, bool* zero) const;

    [[nodiscard]] friend bool operator==(const Decimal& a, const Decimal& b) noexcept {
        return a.compare(b) == 0;
    }
    [[nodiscard]] friend std::strong_ordering operator<=>(const Decimal& a,
                                                          const Decimal& b) noexcept {
        return a.compare(b) <=> 0;
    }
    [[nodiscard]] friend Decimal operator+(const Decimal& a, const Decimal& b) {
        return a.decimalNumberByAdding(b);
    }
    [[nodiscard]] friend Decimal operator-(const Decimal& a, const Decimal& b) {
        return a.decimalNumberBySubtracting(b);
    }
    [[nodiscard]] friend Decimal operator*(const Decimal& a, const Decimal& b) {
        return a.decimalNumberByMultiplyingBy(b);
    }
    [[nodiscard]] friend Decimal operator/(const Decimal& a, const Decimal& b) {
        return a.decimalNumberByDividingBy(b);
    }

    // Raw parts, for tests and for code that needs the representation.
    [[nodiscard]] std::uint64_t mantissaHigh() const noexcept { return m_hi; }
    [[nodiscard]] std::uint64_t mantissaLow() const noexcept { return m_lo; }
    [[nodiscard]] int exponent() const noexcept {
        return static_cast<std::int16_t>(static_cast<std::uint16_t>(m_tag & kExponentMask));
    }

    // Internal: the parts must already be in range (mantissa below 10^38, exponent -128..127).
    constexpr Decimal(std::uint64_t hi, std::uint64_t lo, int exponent, bool negative,
                      bool nan) noexcept
        : m_lo(lo),
          m_hi(hi),
          m_tag((static_cast<std::uint32_t>(exponent) & kExponentMask) |
                (negative && (hi != 0 || lo != 0) ? kNegativeBit : 0U) | (nan ? kNanBit : 0U)) {}

  private:
    [[nodiscard]] int compareSlow(const Decimal& other) const noexcept;
    [[nodiscard]] Decimal addGeneral(const Decimal& other) const;

    // A sum of one sign and exponent keeps the tag as it is.
    constexpr Decimal(std::uint64_t hi, std::uint64_t lo, std::uint32_t tag) noexcept
        : m_lo(lo), m_hi(hi), m_tag(tag) {}

    // The exponent's 16 bits, the sign and the undefined mark share one word, so that a result
    // is stored as three words and copied as three words. Stored field by field and read back
    // as one word, it would stall the processor's forwarding of stores to loads.
    static constexpr std::uint32_t kExponentMask = 0xFFFFU;
    static constexpr std::uint32_t kNegativeBit = 1U << 16;
    static constexpr std::uint32_t kNanBit = 1U << 17;

    std::uint64_t m_lo = 0;
    std::uint64_t m_hi = 0;
    std::uint32_t m_tag = 0;
};

}  // namespace talvex::core
