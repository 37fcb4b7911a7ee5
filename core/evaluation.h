#pragma once

#include <optional>

#include "core/decimal.h"

namespace talvex::core {

// One outcome of a distribution: a quantity (undefined for an outcome without a value) and its
// weight, the number of ways or the probability mass of that outcome. The weight is never
// undefined; it becomes a probability only relative to the total weight of its profile.
class Evaluation {
  public:
    // Undefined quantity, weight zero.
    Evaluation() = default;
    Evaluation(const Decimal& quantity, const Decimal& weight) noexcept
        : m_quantity(quantity), m_weight(weight) {}
    // A missing quantity stores undefined, a missing weight stores zero.
    Evaluation(std::optional<Decimal> quantity, std::optional<Decimal> weight);

    [[nodiscard]] static Evaluation evaluation() { return Evaluation{}; }
    [[nodiscard]] static Evaluation evaluationWithQuantity(std::optional<Decimal> quantity,
                                                           std::optional<Decimal> weight);

    [[nodiscard]] const Decimal& quantity() const noexcept { return m_quantity; }
    [[nodiscard]] const Decimal& weight() const noexcept { return m_weight; }

    void setQuantity(const Decimal& quantity) noexcept { m_quantity = quantity; }
    void setWeight(const Decimal& weight) noexcept { m_weight = weight; }
    // A missing quantity stores undefined.
    void setQuantity(std::optional<Decimal> quantity);
    // A missing weight stores zero.
    void setWeight(std::optional<Decimal> weight);

    [[nodiscard]] bool isDefined() const noexcept { return !m_quantity.isNotANumber(); }
    // Keeps the weight: the outcome still happens, it only loses its value.
    void setToUndefined() noexcept { m_quantity = Decimal::notANumber(); }

    // weight := weight x factor
    void scale(const Decimal& factor);
    // quantity := quantity x factor; an undefined quantity stays undefined.
    void scaleQuantity(const Decimal& factor);

    // Orders by quantity (undefined first): -1, 0 or +1.
    [[nodiscard]] int compare(const Evaluation& other) const noexcept {
        return m_quantity.compare(other.m_quantity);
    }
    // Orders by weight: -1, 0 or +1.
    [[nodiscard]] int weightCompare(const Evaluation& other) const noexcept {
        return m_weight.compare(other.m_weight);
    }

  private:
    Decimal m_quantity = Decimal::notANumber();
    Decimal m_weight = Decimal::zero();
};

}  // namespace talvex::core
