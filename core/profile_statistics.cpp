#include <cmath>
#include <cstdint>

#include "core/profile.h"

// Summary numbers of a profile. Each walks the condensed list; the undefined outcome, when
// present, is the first element and each statistic decides for itself whether it counts.

namespace talvex::core {

Decimal Profile::mean() const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    return mean(totalWeight());
}

Decimal Profile::mean(const Decimal& totalWeight) const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    Decimal sum = Decimal::zero();
    for (std::size_t i = definedStart(); i < m_evaluations.size(); ++i) {
        sum = sum + m_evaluations[i].quantity() * m_evaluations[i].weight();
    }
    // The undefined weight counts in the divisor: the mean is over every roll.
    return sum / totalWeight;
}

Decimal Profile::variance() const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    const Decimal total = totalWeight();
    return variance(mean(total), total);
}

Decimal Profile::variance(const Decimal& average, const Decimal& totalWeight) const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    Decimal sum = Decimal::zero();
    for (std::size_t i = definedStart(); i < m_evaluations.size(); ++i) {
        const Decimal difference = average - m_evaluations[i].quantity();
        sum = sum + difference * difference * m_evaluations[i].weight();
    }
    return sum / totalWeight;
}

Decimal Profile::standardDeviation() const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    return standardDeviationOf(variance());
}

Decimal Profile::standardDeviationOf(const Decimal& variance) {
    return Decimal::decimalNumberWithDouble(std::sqrt(variance.doubleValue()));
}

Decimal Profile::meanDeviation() const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    const Decimal total = totalWeight();
    return meanDeviation(mean(total), total);
}

Decimal Profile::meanDeviation(const Decimal& average, const Decimal& totalWeight) const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    Decimal sum = Decimal::zero();
    for (std::size_t i = definedStart(); i < m_evaluations.size(); ++i) {
        const Decimal distance =
            (m_evaluations[i].quantity() - average).absoluteValueChanged(nullptr, nullptr);
        sum = sum + distance * m_evaluations[i].weight();
    }
    return sum / totalWeight;
}

Decimal Profile::median() const {
    if (!isDefined()) {
        return Decimal::notANumber();
    }
    const std::size_t start = definedStart();
    const std::size_t count = m_evaluations.size() - start;
    const std::size_t middle = start + count / 2;
    if (count % 2 == 1) {
        return m_evaluations[middle].quantity();
    }
    return (m_evaluations[middle - 1].quantity() + m_evaluations[middle].quantity()) /
           Decimal::decimalNumberWithInteger(2);
}

std::vector<Decimal> Profile::modeFrom(std::size_t start) const {
    Decimal greatest = Decimal::zero();
    for (std::size_t i = start; i < m_evaluations.size(); ++i) {
        if (greatest.compare(m_evaluations[i].weight()) < 0) {
            greatest = m_evaluations[i].weight();
        }
    }
    std::vector<Decimal> result;
    for (std::size_t i = start; i < m_evaluations.size(); ++i) {
        if (decimalIsWithinErrorOf(m_evaluations[i].weight(), greatest)) {
            result.push_back(m_evaluations[i].quantity());
        }
    }
    return result;
}

std::vector<Decimal> Profile::mode() const {
    if (!isDefined()) {
        return {Decimal::notANumber()};
    }
    return modeFrom(definedStart());
}

std::vector<Decimal> Profile::modeIncludingUndefined() const {
    if (!isDefined()) {
        return {Decimal::notANumber()};
    }
    return modeFrom(0);
}

std::array<Decimal, 2> Profile::range() const {
    if (!isDefined()) {
        return {Decimal::notANumber(), Decimal::notANumber()};
    }
    return {m_evaluations[definedStart()].quantity(), m_evaluations.back().quantity()};
}

Decimal Profile::values() const {
    if (!isDefined()) {
        return Decimal::zero();
    }
    return Decimal::decimalNumberWithInteger(
        static_cast<std::int64_t>(m_evaluations.size() - definedStart()));
}

void Profile::roundToPrecision(int places) {
    for (Evaluation& evaluation : m_evaluations) {
        evaluation.setQuantity(decimalWithPrecision(evaluation.quantity(), places));
    }
    condense(0);
}

Decimal Profile::decimalWithPrecision(const Decimal& value, int places) {
    return value.decimalRound(places);
}

bool Profile::decimalIsWithinErrorOf(const Decimal& first, const Decimal& second) const {
    // Only the first argument is tested for undefined: an undefined first matches anything.
    if (first.isNotANumber()) {
        return true;
    }
    if (second.isNotANumber()) {
        return false;
    }
    return first.decimalRound(m_error).compare(second.decimalRound(m_error)) == 0;
}

}  // namespace talvex::core
