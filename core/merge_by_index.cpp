#include "core/merge_by_index.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace talvex::core {

namespace {

// A whole number written with exponent zero, the form every sum and product of dice faces
// keeps; its value is then its mantissa, and equal values have equal representations.
bool isPlainInteger(const Decimal& quantity, std::int64_t& value) noexcept {
    constexpr std::uint64_t kLimit = std::uint64_t{1} << 62;
    if (quantity.isNotANumber() || quantity.exponent() != 0 || quantity.mantissaHigh() != 0 ||
        quantity.mantissaLow() >= kLimit) {
        return false;
    }
    const auto magnitude = static_cast<std::int64_t>(quantity.mantissaLow());
    value = quantity.isNegative() ? -magnitude : magnitude;
    return true;
}

// Operands written alike give products written alike: the product is a function of the
// representations.
bool sameRepresentation(const Decimal& a, const Decimal& b) noexcept {
    return a.mantissaLow() == b.mantissaLow() && a.mantissaHigh() == b.mantissaHigh() &&
           a.exponent() == b.exponent() && a.isNegative() == b.isNegative() &&
           a.isNotANumber() == b.isNotANumber();
}

// An index range is worth its slots when it is not much wider than the list.
bool isDense(std::int64_t low, std::int64_t high, std::size_t count) noexcept {
    const auto width = static_cast<std::uint64_t>(high - low) + 1;
    return width <= 4 * static_cast<std::uint64_t>(count) + 64;
}

// One slot per whole number from `low` to `high` and one for the undefined outcomes. Fed the
// outcomes from the last to the first, each slot forms sum := earlier weight + sum, which is
// the order in which the walk from the back adds the members of a group of equal quantities
// after a stable sort. The undefined outcomes sort first.
class IndexedSums {
  public:
    IndexedSums(std::int64_t low, std::int64_t high, bool anyDefined)
        : m_low(low),
          m_sums(anyDefined ? static_cast<std::size_t>(high - low) + 1 : 0),
          m_used(m_sums.size()) {}

    void addEarlier(std::int64_t value, const Decimal& weight) {
        const auto slot = static_cast<std::size_t>(value - m_low);
        m_sums[slot] = m_used[slot] != 0 ? weight + m_sums[slot] : weight;
        m_used[slot] = 1;
    }

    void addEarlierUndefined(const Decimal& weight) {
        m_undefinedSum = m_anyUndefined ? weight + m_undefinedSum : weight;
        m_anyUndefined = true;
    }

    [[nodiscard]] std::vector<Evaluation> list(std::size_t capacity) const {
        std::vector<Evaluation> merged;
        merged.reserve(capacity);
        if (m_anyUndefined) {
            merged.emplace_back(Decimal::notANumber(), m_undefinedSum);
        }
        for (std::size_t slot = 0; slot < m_sums.size(); ++slot) {
            if (m_used[slot] != 0) {
                const std::int64_t value = m_low + static_cast<std::int64_t>(slot);
                merged.emplace_back(Decimal::decimalNumberWithInteger(value), m_sums[slot]);
            }
        }
        return merged;
    }

  private:
    std::int64_t m_low;
    std::vector<Decimal> m_sums;
    std::vector<unsigned char> m_used;
    Decimal m_undefinedSum;
    bool m_anyUndefined = false;
};

// Marks an undefined quantity among whole numbers, which stay within +-2^62.
constexpr std::int64_t kUndefined = std::numeric_limits<std::int64_t>::min();

}  // namespace

// A non-negative error never joins distinct integers (rounding them to whole numbers or finer
// leaves them apart), so equal quantities form the groups. Non-positive weights are left out,
// as condensing leaves them out before it sorts.
std::optional<std::vector<Evaluation>> mergedByIndex(const std::vector<Evaluation>& list,
                                                     int error) {
    if (error < 0 || list.size() < 2) {
        return std::nullopt;
    }
    std::int64_t low = 0;
    std::int64_t high = 0;
    bool anyDefined = false;
    for (const Evaluation& evaluation : list) {
        std::int64_t value = 0;
        if (evaluation.quantity().isNotANumber()) {
            continue;
        }
        if (!isPlainInteger(evaluation.quantity(), value)) {
            return std::nullopt;
        }
        low = anyDefined ? std::min(low, value) : value;
        high = anyDefined ? std::max(high, value) : value;
        anyDefined = true;
    }
    if (!isDense(low, high, list.size())) {
        return std::nullopt;
    }
    IndexedSums sums(low, high, anyDefined);
    for (auto it = list.rbegin(); it != list.rend(); ++it) {
        std::int64_t value = 0;
        if (!it->weight().isPositive()) {
            continue;
        }
        if (isPlainInteger(it->quantity(), value)) {
            sums.addEarlier(value, it->weight());
        } else {
            sums.addEarlierUndefined(it->weight());
        }
    }
    return sums.list(list.size());
}

// The pairs' quantities come first, in list order, as integers (a quarter of the space a pair
// takes); the weights follow from the last pair to the first straight into the slots. A pair
// list that does not qualify is never built here, and its integers are freed before the
// general path builds it, so that path needs no more memory than before.
std::optional<std::vector<Evaluation>> pairsMergedByIndex(std::span<const Evaluation> own,
                                                          std::span<const Evaluation> others,
                                                          PairKernel function, int error) {
    const std::size_t count = own.size() * others.size();
    if (error < 0 || count < 2) {
        return std::nullopt;
    }
    try {
        std::vector<std::int64_t> values(count);
        std::int64_t low = 0;
        std::int64_t high = 0;
        bool anyDefined = false;
        std::size_t index = 0;
        for (const Evaluation& a : own) {
            for (const Evaluation& b : others) {
                const Decimal quantity = function(a.quantity(), b.quantity());
                std::int64_t value = kUndefined;
                if (!quantity.isNotANumber()) {
                    if (!isPlainInteger(quantity, value)) {
                        return std::nullopt;
                    }
                    low = anyDefined ? std::min(low, value) : value;
                    high = anyDefined ? std::max(high, value) : value;
                    anyDefined = true;
                }
                values[index++] = value;
            }
        }
        if (!isDense(low, high, count)) {
            return std::nullopt;
        }
        IndexedSums sums(low, high, anyDefined);
        for (std::size_t i = own.size(); i-- > 0;) {
            const Decimal& ownWeight = own[i].weight();
            Decimal weight;
            for (std::size_t j = others.size(); j-- > 0;) {
                // Equal face weights, as a fair die has, repeat the previous product.
                if (j + 1 == others.size() ||
                    !sameRepresentation(others[j].weight(), others[j + 1].weight())) {
                    weight = ownWeight * others[j].weight();
                }
                if (!weight.isPositive()) {
                    continue;
                }
                const std::int64_t value = values[(i * others.size()) + j];
                if (value == kUndefined) {
                    sums.addEarlierUndefined(weight);
                } else {
                    sums.addEarlier(value, weight);
                }
            }
        }
        return sums.list(std::min(count, static_cast<std::size_t>(high - low) + 2));
    } catch (const DecimalError&) {
        return std::nullopt;
    }
}

}  // namespace talvex::core
