#include "core/profile.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "core/calculation_limits.h"
#include "core/merge_by_index.h"
#include "core/wide_integer.h"

namespace talvex::core {

namespace {

// Combining two distributions costs one kernel call per pair of outcomes; beyond a limit the
// request is refused rather than left to run for minutes.
void checkPairCount(std::size_t own, std::size_t others) {
    if (own > 0 && others > kMaxOutcomePairs / own) {
        throw CalculationTooLarge("combining distributions of " + std::to_string(own) + " and " +
                                  std::to_string(others) + " outcomes is too large to calculate");
    }
}

// random() yields 31 bits; this maps them onto [0, 1) exactly.
constexpr double kTwoToMinus31 = 1.0 / 2147483648.0;

bool quantityLess(const Evaluation& left, const Evaluation& right) noexcept {
    return left.compare(right) < 0;
}

// A quantity's place in the Decimal order as plain integers, so that a long list sorts without
// a Decimal comparison per step: the class (undefined, negative, zero, positive) with the
// position of the leading digit, then the digits scaled to 38 places, both inverted for
// negative numbers. Equal keys are equal values.
struct OrderKey {
    wide::U128 minor = 0;
    std::uint32_t major = 0;

    [[nodiscard]] friend bool operator==(const OrderKey&, const OrderKey&) noexcept = default;
    [[nodiscard]] friend bool operator<(const OrderKey& a, const OrderKey& b) noexcept {
        return a.major != b.major ? a.major < b.major : a.minor < b.minor;
    }
    [[nodiscard]] std::uint64_t hash() const noexcept {
        std::uint64_t x = wide::low(minor) ^ (wide::high(minor) * 0x9E3779B97F4A7C15U) ^ major;
        x ^= x >> 33;
        x *= 0xFF51AFD7ED558CCDU;
        return x ^ (x >> 33);
    }
};

OrderKey orderKeyOf(const Decimal& quantity) noexcept {
    constexpr std::uint32_t kNegative = 1U << 14;
    constexpr std::uint32_t kZero = 2U << 14;
    constexpr std::uint32_t kPositive = 3U << 14;
    // Leading-digit positions run from -127 to 165; the bias keeps them positive.
    constexpr int kBias = 1024;
    if (quantity.isNotANumber()) {
        return {0, 0};
    }
    if (quantity.isZero()) {
        return {0, kZero};
    }
    const wide::U128 mantissa = wide::make128(quantity.mantissaHigh(), quantity.mantissaLow());
    const int digits = wide::digitCount(mantissa);
    const wide::U128 scaled = mantissa * wide::pow10(Decimal::kMaxDigits - digits);
    const auto leading = static_cast<std::uint32_t>(quantity.exponent() + digits + kBias);
    if (quantity.isNegative()) {
        return {~scaled, kNegative | (2 * kBias - leading)};
    }
    return {scaled, kPositive | leading};
}

// The permutation of a stable sort by quantity: the indices of `list` in sorted order.
// Combined outcomes repeat the same few quantities many times, so equal quantities are first
// gathered (in list order) and only the distinct ones are sorted.
std::vector<std::uint32_t> stableOrder(const std::vector<Evaluation>& list) {
    struct Group {
        OrderKey key;
        std::uint32_t next = 0;  // the count, then the next free place in the order
    };
    constexpr auto kEmpty = static_cast<std::uint32_t>(-1);
    const std::size_t mask = std::bit_ceil(2 * list.size()) - 1;
    std::vector<std::uint32_t> table(mask + 1, kEmpty);
    std::vector<Group> groups;
    std::vector<std::uint32_t> groupOf(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const OrderKey key = orderKeyOf(list[i].quantity());
        std::size_t slot = key.hash() & mask;
        while (table[slot] != kEmpty && !(groups[table[slot]].key == key)) {
            slot = (slot + 1) & mask;
        }
        if (table[slot] == kEmpty) {
            table[slot] = static_cast<std::uint32_t>(groups.size());
            groups.push_back({key, 0});
        }
        groupOf[i] = table[slot];
        ++groups[table[slot]].next;
    }

    std::vector<std::uint32_t> byKey(groups.size());
    for (std::size_t g = 0; g < groups.size(); ++g) {
        byKey[g] = static_cast<std::uint32_t>(g);
    }
    std::sort(byKey.begin(), byKey.end(), [&groups](std::uint32_t a, std::uint32_t b) {
        return groups[a].key < groups[b].key;
    });
    std::uint32_t place = 0;
    for (const std::uint32_t g : byKey) {
        const std::uint32_t count = groups[g].next;
        groups[g].next = place;
        place += count;
    }

    std::vector<std::uint32_t> order(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        order[groups[groupOf[i]].next++] = static_cast<std::uint32_t>(i);
    }
    return order;
}

// The walk over neighbouring pairs of a sorted sequence from the back: a right element within
// error of its left neighbour absorbs it (right weight := left weight + right weight, the right
// quantity kept). `at(i)` is the i-th element in sorted order. Each quantity is rounded once:
// the right element of a pair is always the previous pair's left one, or what absorbed it.
template <typename At>
std::vector<Evaluation> mergedFromTheBack(std::size_t count, const At& at, int error) {
    std::vector<Evaluation> merged;
    merged.reserve(count);
    Evaluation right = at(count - 1);
    Decimal rightRounded =
        right.isDefined() ? right.quantity().decimalRound(error) : Decimal::notANumber();
    for (std::size_t i = count - 1; i-- > 0;) {
        const Evaluation& left = at(i);
        // As decimalIsWithinErrorOf(right, left): an undefined right matches anything.
        bool same = true;
        Decimal leftRounded = Decimal::notANumber();
        if (right.isDefined()) {
            if (left.quantity().compare(right.quantity()) == 0) {
                // Equal values round alike; the right one's rounding still stands.
                same = true;
            } else if (left.isDefined()) {
                leftRounded = left.quantity().decimalRound(error);
                same = leftRounded.compare(rightRounded) == 0;
            } else {
                same = false;
            }
        }
        if (same) {
            right.setWeight(left.weight() + right.weight());
        } else {
            merged.push_back(right);
            right = left;
            rightRounded = leftRounded;
        }
    }
    merged.push_back(right);
    std::reverse(merged.begin(), merged.end());
    return merged;
}

// The stored outcomes, or the single undefined outcome an empty profile stands for.
std::span<const Evaluation> outcomesOrStandIn(const std::vector<Evaluation>& evaluations,
                                              const Evaluation& standIn) {
    if (evaluations.empty()) {
        return {&standIn, 1};
    }
    return evaluations;
}

}  // namespace

Profile Profile::copy() const {
    Profile result = withOutcomesOf(*this);
    result.setError(m_error);
    result.setTitleString(m_titleString);
    result.m_styles = m_styles;
    result.setComparatorString(m_comparatorString);
    result.setEvaluationHistory(m_evaluationHistory);
    return result;
}

Profile Profile::withOutcomesOf(const Profile& source) {
    Profile result;
    result.m_evaluations = source.m_evaluations;
    // Condensing is idempotent, so a list already condensed at the fresh profile's error is
    // taken as it is.
    if (!(source.m_isCondensed && source.m_error == result.m_error)) {
        result.condense(result.m_evaluations.size());
    }
    return result;
}

void Profile::setEvaluations(std::vector<Evaluation> evaluations) {
    m_evaluations.clear();
    m_isCondensed = true;
    addEvaluations(std::move(evaluations));
    m_scaledWeight = Decimal::one();
}

std::vector<Evaluation> Profile::evaluations() const {
    if (m_evaluations.empty()) {
        return {Evaluation{Decimal::notANumber(), m_scaledWeight}};
    }
    return m_evaluations;
}

std::vector<Evaluation> Profile::definedEvaluations() const {
    std::vector<Evaluation> result = evaluations();
    if (isAlwaysDefined()) {
        return result;
    }
    if (result.size() < 2) {
        return {};
    }
    result.erase(result.begin());
    return result;
}

Profile Profile::definedProfile() const {
    Profile result;
    result.m_evaluations = definedEvaluations();
    // Leaving out the first outcome of a condensed list keeps it condensed, so a list condensed
    // at the fresh profile's error is taken as it is, as in withOutcomesOf.
    if (!(m_isCondensed && m_error == result.m_error)) {
        result.condense(result.m_evaluations.size());
    }
    return result;
}

void Profile::setTitleString(std::optional<std::string> titleString) {
    if (titleString) {
        m_titleString = std::move(*titleString);
    }
}

void Profile::setComparatorString(std::optional<std::string> comparatorString) {
    m_comparatorString = std::move(comparatorString).value_or(std::string{});
}

void Profile::setError(int error) noexcept {
    if (error < -kMaxError || error > kMaxError || error == m_error) {
        return;
    }
    m_error = error;
    // Outcomes that were distinct may now agree; a single outcome has no neighbours.
    m_isCondensed = m_isCondensed && m_evaluations.size() < 2;
}

void Profile::setEvaluationHistory(std::vector<Evaluation> evaluationHistory) {
    m_evaluationHistory = std::move(evaluationHistory);
}

void Profile::addQuantity(const Decimal& quantity, const Decimal& weight) {
    addEvaluation(Evaluation{quantity, weight});
}

void Profile::addEvaluation(const Evaluation& evaluation) {
    if (m_isCondensed) {
        // A non-positive weight would be dropped at once and leave the list as it was.
        if (evaluation.weight().isPositive()) {
            insertIntoCondensed(evaluation);
        }
        return;
    }
    const std::size_t sortedCount = m_evaluations.size();
    m_evaluations.push_back(evaluation);
    condense(sortedCount);
}

void Profile::addEvaluation(const Evaluation* evaluation) {
    if (evaluation != nullptr) {
        addEvaluation(*evaluation);
    }
}

void Profile::addEvaluations(std::vector<Evaluation> evaluations) {
    if (evaluations.empty()) {
        return;
    }
    if (evaluations.size() == 1) {
        addEvaluation(evaluations.front());
        return;
    }
    const std::size_t sortedCount = m_evaluations.size();
    if (m_evaluations.empty()) {
        m_evaluations = std::move(evaluations);
    } else {
        m_evaluations.insert(m_evaluations.end(), std::make_move_iterator(evaluations.begin()),
                             std::make_move_iterator(evaluations.end()));
    }
    condense(sortedCount);
}

void Profile::addProfile(const Profile& other) { addEvaluations(other.evaluations()); }

// Equivalent to dropping non-positive weights, a stable sort by quantity and a walk over the
// neighbouring pairs from the back, where a right element within error of its left neighbour
// absorbs it (right weight := left weight + right weight, the right quantity kept). The stored
// list is always sorted: a few appended outcomes are sorted and merged in, a long tail is
// ordered by keys.
void Profile::condense(std::size_t sortedCount) {
    m_isCondensed = false;
    std::vector<Evaluation>& list = m_evaluations;

    std::size_t kept = 0;
    std::size_t keptSorted = 0;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].weight().isPositive()) {
            if (kept != i) {
                list[kept] = std::move(list[i]);
            }
            ++kept;
        }
        if (i < sortedCount) {
            keptSorted = kept;
        }
    }
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(kept), list.end());

    const auto sortedBegin =
        list.begin() + static_cast<std::ptrdiff_t>(keptSorted > 0 ? keptSorted - 1 : 0);
    const auto middle = std::is_sorted_until(sortedBegin, list.end(), quantityLess);
    std::vector<std::uint32_t> order;
    if (middle != list.end()) {
        // A few outcomes added to a long sorted list merge in; anything else sorts afresh,
        // by index where the quantities allow.
        if (static_cast<std::size_t>(list.end() - middle) * 8 < list.size()) {
            std::stable_sort(middle, list.end(), quantityLess);
            std::inplace_merge(list.begin(), middle, list.end(), quantityLess);
        } else if (auto merged = mergedByIndex(list, m_error)) {
            list = std::move(*merged);
            m_isCondensed = true;
            return;
        } else {
            order = stableOrder(list);
        }
    }

    // The merged list is built aside, so that a Decimal fault half way leaves the stored list
    // sorted.
    if (!order.empty()) {
        list = mergedFromTheBack(
            list.size(), [&](std::size_t i) -> const Evaluation& { return list[order[i]]; },
            m_error);
    } else if (list.size() >= 2) {
        list = mergedFromTheBack(
            list.size(), [&](std::size_t i) -> const Evaluation& { return list[i]; }, m_error);
    }
    m_isCondensed = true;
}

// In a condensed list a new outcome can only meet its neighbours: a stable sort would put it
// after every quantity not above its own, the back-to-front walk finds no pair of old
// neighbours within error, and of the pairs that involve the new outcome it meets the right
// one first. Merging there keeps the right quantity, whose left pair is an old one; otherwise
// the new outcome absorbs left neighbours for as long as they agree with it.
void Profile::insertIntoCondensed(Evaluation evaluation) {
    m_isCondensed = false;
    std::vector<Evaluation>& list = m_evaluations;
    auto position = std::upper_bound(list.begin(), list.end(), evaluation, quantityLess);
    auto index = static_cast<std::size_t>(position - list.begin());
    list.insert(position, std::move(evaluation));

    if (index + 1 < list.size() &&
        decimalIsWithinErrorOf(list[index + 1].quantity(), list[index].quantity())) {
        list[index + 1].setWeight(list[index].weight() + list[index + 1].weight());
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    } else {
        while (index > 0 &&
               decimalIsWithinErrorOf(list[index].quantity(), list[index - 1].quantity())) {
            list[index].setWeight(list[index - 1].weight() + list[index].weight());
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(index - 1));
            --index;
        }
    }
    m_isCondensed = true;
}

Decimal Profile::totalWeight() const {
    if (m_evaluations.empty()) {
        return m_scaledWeight;
    }
    Decimal sum = Decimal::zero();
    for (const Evaluation& evaluation : m_evaluations) {
        sum = sum + evaluation.weight();
    }
    return sum;
}

Decimal Profile::undefinedWeight() const {
    if (!isDefined()) {
        return totalWeight();
    }
    if (isAlwaysDefined()) {
        return Decimal::zero();
    }
    return m_evaluations.front().weight();
}

Decimal Profile::definedWeight() const {
    if (!isDefined()) {
        return Decimal::zero();
    }
    if (isAlwaysDefined()) {
        return totalWeight();
    }
    return totalWeight() - m_evaluations.front().weight();
}

bool Profile::isDefined() const noexcept {
    if (m_evaluations.empty()) {
        return false;
    }
    return m_evaluations.front().isDefined() || m_evaluations.size() > 1;
}

bool Profile::isAlwaysDefined() const noexcept {
    return isDefined() && m_evaluations.front().isDefined();
}

std::size_t Profile::definedStart() const noexcept { return isAlwaysDefined() ? 0 : 1; }

void Profile::scale(const Decimal& factor) {
    for (Evaluation& evaluation : m_evaluations) {
        evaluation.scale(factor);
        if (!evaluation.weight().isPositive()) {
            m_isCondensed = false;
        }
    }
    m_scaledWeight = m_scaledWeight * factor;
}

void Profile::scaleToTotalWeight(const Decimal& target) { scale(target / totalWeight()); }

void Profile::scaleToNormal() { scaleToTotalWeight(Decimal::one()); }

void Profile::scaleQuantities(const Decimal& factor) {
    for (Evaluation& evaluation : m_evaluations) {
        evaluation.scaleQuantity(factor);
    }
    condense(0);
}

void Profile::assimilateProfile(const Profile& other, FunctionKernel function) {
    Profile normalOther = withOutcomesOf(other);
    normalOther.scaleToNormal();
    scaleToNormal();
    assimilateProfileWithoutNormalizing(normalOther, function);
}

void Profile::assimilateProfile(const Profile& other, const RelationKernel& relation) {
    Profile normalOther = withOutcomesOf(other);
    normalOther.scaleToNormal();
    scaleToNormal();
    assimilateProfileWithoutNormalizing(normalOther, relation);
}

void Profile::assimilateProfileWithoutNormalizing(const Profile& other, FunctionKernel function) {
    const Evaluation ownStandIn{Decimal::notANumber(), m_scaledWeight};
    const Evaluation otherStandIn{Decimal::notANumber(), other.m_scaledWeight};
    const std::span<const Evaluation> own = outcomesOrStandIn(m_evaluations, ownStandIn);
    const std::span<const Evaluation> others = outcomesOrStandIn(other.m_evaluations, otherStandIn);
    checkPairCount(own.size(), others.size());

    if (auto merged = pairsMergedByIndex(own, others, function, m_error)) {
        m_evaluations = std::move(*merged);
        m_isCondensed = true;
        m_scaledWeight = Decimal::one();
        return;
    }
    std::vector<Evaluation> product;
    product.reserve(own.size() * others.size());
    for (const Evaluation& a : own) {
        for (const Evaluation& b : others) {
            product.emplace_back(function(a.quantity(), b.quantity()), a.weight() * b.weight());
        }
    }
    setEvaluations(std::move(product));
}

void Profile::assimilateProfileWithoutNormalizing(const Profile& other,
                                                  const RelationKernel& relation) {
    const Evaluation ownStandIn{Decimal::notANumber(), m_scaledWeight};
    const Evaluation otherStandIn{Decimal::notANumber(), other.m_scaledWeight};
    const std::span<const Evaluation> own = outcomesOrStandIn(m_evaluations, ownStandIn);
    const std::span<const Evaluation> others = outcomesOrStandIn(other.m_evaluations, otherStandIn);
    checkPairCount(own.size(), others.size());

    std::vector<Evaluation> product;
    product.reserve(own.size() * others.size());
    for (const Evaluation& a : own) {
        for (const Evaluation& b : others) {
            const Decimal pairWeight = a.weight() * b.weight();
            for (Evaluation& part : relation(a.quantity(), b.quantity())) {
                part.setWeight(part.weight() * pairWeight);
                product.push_back(std::move(part));
            }
        }
    }
    m_evaluations.clear();
    m_isCondensed = true;
    addEvaluations(std::move(product));
}

Evaluation Profile::evaluation() {
    Evaluation result;
    if (!m_evaluations.empty()) {
        const double unit = static_cast<double>(random()) * kTwoToMinus31;
        const Decimal threshold = Decimal::decimalNumberWithDouble(unit) * totalWeight();
        Decimal sum = Decimal::zero();
        for (const Evaluation& candidate : m_evaluations) {
            sum = sum + candidate.weight();
            if (threshold.compare(sum) < 0) {
                result = candidate;
                break;
            }
        }
    }
    m_evaluationHistory.push_back(result);
    return result;
}

Decimal Profile::evaluate() { return evaluation().quantity(); }

}  // namespace talvex::core
