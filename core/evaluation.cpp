#include "core/evaluation.h"

#include <utility>

namespace talvex::core {

Evaluation::Evaluation(std::optional<Decimal> quantity, std::optional<Decimal> weight) {
    setQuantity(std::move(quantity));
    setWeight(std::move(weight));
}

Evaluation Evaluation::evaluationWithQuantity(std::optional<Decimal> quantity,
                                              std::optional<Decimal> weight) {
    return Evaluation{std::move(quantity), std::move(weight)};
}

void Evaluation::setQuantity(std::optional<Decimal> quantity) {
    m_quantity = quantity.value_or(Decimal::notANumber());
}

void Evaluation::setWeight(std::optional<Decimal> weight) {
    m_weight = weight.value_or(Decimal::zero());
}

void Evaluation::scale(const Decimal& factor) { m_weight = m_weight * factor; }

void Evaluation::scaleQuantity(const Decimal& factor) {
    if (isDefined()) {
        m_quantity = m_quantity * factor;
    }
}

}  // namespace talvex::core
