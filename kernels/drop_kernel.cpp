// drop(X, N, L, H): N rolls of X, the L lowest and the H highest dropped, the rest summed.
//
// The rolls are never enumerated one by one (N^k of them). A roll sorted ascending is a
// multiset: how many dice show each face. Going through the faces in ascending order, the dice
// given to a face take the next places of the sorted roll, so the places they fill tell at
// once how many of them are kept. The ways of choosing which of the remaining dice show the
// face is a binomial coefficient, so the number of ordered rolls behind every multiset comes
// out of the product of binomials. The state is (dice placed so far, kept sum so far).

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/calculation_limits.h"
#include "kernels/definitions.h"
#include "kernels/function_kernels.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;

namespace {

// States held at once: (dice placed, kept sum) pairs.
constexpr std::uint64_t kMaxDropStates = 4'000'000;
// Whole numbers stay exact in 38 digits below this power of ten.
constexpr double kExactDigits = 37.5;
// Faces with more decimals than this are summed as decimals rather than on a grid of steps.
constexpr int kMaxGridDecimals = 15;
constexpr std::int64_t kMaxGridOffset = 1'000'000'000'000'000;

[[noreturn]] void refuse(std::int64_t rolls) {
    throw core::CalculationTooLarge("dropping dice from " + std::to_string(rolls) +
                                    " rolls is too large to calculate");
}

// The multiply-adds of weights of one count, charged to the request. Each step of the count
// walks at least one; they are charged in batches, so that the inner loops stay free of it.
class DropBudget {
  public:
    explicit DropBudget(RequestContext& context) noexcept : m_context(context) {}
    DropBudget(const DropBudget&) = delete;
    DropBudget& operator=(const DropBudget&) = delete;

    void spend(std::uint64_t work) {
        m_pending += work;
        if (m_pending >= kBatch) {
            m_context.charge(std::exchange(m_pending, 0));
        }
    }

  private:
    static constexpr std::uint64_t kBatch = 4096;
    RequestContext& m_context;
    std::uint64_t m_pending = 0;
};

// One defined face: its value, its offset on the grid of steps (grid counting only) and its
// weight, a whole number of ways or a chance.
struct Face {
    Decimal value;
    std::int64_t offset = 0;
    Decimal weight;
};

// Whole numbers of ways while they fit 38 digits; chances otherwise, which never overflow.
enum class Arithmetic { WholeWays, Chances };

// a x b, or zero when the product is below what 38-digit arithmetic holds. Only chances get
// that small; the outcomes they lead to are checked at the end.
Decimal productOrZero(const Decimal& a, const Decimal& b) {
    if (a.isZero() || b.isZero() ||
        a.exponent() + b.exponent() + 2 * Decimal::kMaxDigits < Decimal::kMinExponent) {
        return Decimal::zero();
    }
    try {
        return a * b;
    } catch (const core::DecimalError& error) {
        if (error.fault() != core::DecimalFault::Underflow) {
            throw;
        }
        return Decimal::zero();
    }
}

// Kept sums on a grid: index = offset from the smallest possible sum, in steps. Every sum that
// some multiset reaches is marked, even when its chance has become too small to hold.
class GridSums {
  public:
    using Key = std::int64_t;
    [[nodiscard]] bool empty() const noexcept { return m_weights.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return m_weights.size(); }
    void add(Key at, const Decimal& weight) {
        const auto index = static_cast<std::size_t>(at);
        if (index >= m_weights.size()) {
            m_weights.resize(index + 1);
            m_reached.resize(index + 1);
        }
        m_weights[index] = m_weights[index] + weight;
        m_reached[index] = true;
    }
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (std::size_t i = 0; i < m_weights.size(); ++i) {
            if (m_reached[i]) {
                visit(static_cast<Key>(i), m_weights[i]);
            }
        }
    }
    [[nodiscard]] static Key shifted(Key key, std::int64_t kept, const Face& face) {
        return key + kept * face.offset;
    }

  private:
    std::vector<Decimal> m_weights;
    std::vector<bool> m_reached;
};

// Kept sums as decimals, for faces that fit no grid.
class DecimalSums {
  public:
    using Key = Decimal;
    [[nodiscard]] bool empty() const noexcept { return m_weights.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return m_weights.size(); }
    void add(const Key& at, const Decimal& weight) {
        auto [position, inserted] = m_weights.try_emplace(at, weight);
        if (!inserted) {
            position->second = position->second + weight;
        }
    }
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (const auto& [sum, weight] : m_weights) {
            visit(sum, weight);
        }
    }
    [[nodiscard]] static Key shifted(const Key& key, std::int64_t kept, const Face& face) {
        return kept == 0 ? key : key + Decimal::decimalNumberWithInteger(kept) * face.value;
    }

  private:
    std::map<Decimal, Decimal> m_weights;
};

// How many of the sorted places [first, first + count) lie in the kept band [low, high).
std::int64_t keptPlaces(std::int64_t first, std::int64_t count, std::int64_t low,
                        std::int64_t high) {
    return std::max<std::int64_t>(0, std::min(first + count, high) - std::max(first, low));
}

// The weight of every kept sum over all multisets of `rolls` defined faces. With whole ways,
// a multiset weighs the number of ordered rolls behind it (a product of binomials) times its
// faces' weights. With chances, each face in turn takes t of the r dice still unplaced with
// the binomial chance of t among r, given that none of them shows a lower face.
template <class Sums>
Sums countKeptSums(const std::vector<Face>& faces, std::int64_t rolls, std::int64_t low,
                   std::int64_t high, Arithmetic arithmetic, RequestContext& context) {
    DropBudget budget(context);
    const auto places = static_cast<std::size_t>(rolls) + 1;
    std::vector<Sums> placed(places);
    placed[0].add(typename Sums::Key{}, Decimal::one());
    Decimal unplaced = Decimal::zero();
    for (const Face& face : faces) {
        unplaced = unplaced + face.weight;
    }
    for (std::size_t f = 0; f < faces.size(); ++f) {
        const Face& face = faces[f];
        const bool lastFace = f + 1 == faces.size();
        // What one unplaced die contributes: showing this face, or a higher one.
        Decimal shows = face.weight;
        Decimal passes = Decimal::one();
        if (arithmetic == Arithmetic::Chances) {
            shows = lastFace ? Decimal::one() : face.weight / unplaced;
            passes = Decimal::one() - shows;
            unplaced = unplaced - face.weight;
        }
        std::vector<Sums> next(places);
        std::uint64_t states = 0;
        // ways[t]: t of r unplaced dice show this face; row r from row r - 1 as in Pascal's
        // triangle. The last face takes every unplaced die, so only ways[r] is kept there.
        std::vector<Decimal> ways{Decimal::one()};
        for (std::int64_t r = 0; r <= rolls; ++r) {
            if (r > 0 && lastFace) {
                ways.front() = productOrZero(ways.front(), shows);
            } else if (r > 0) {
                ways.push_back(productOrZero(ways.back(), shows));
                for (auto t = static_cast<std::size_t>(r) - 1; t > 0; --t) {
                    ways[t] = productOrZero(ways[t], passes) + productOrZero(ways[t - 1], shows);
                }
                ways.front() = productOrZero(ways.front(), passes);
                budget.spend(ways.size());
            }
            const std::int64_t c = rolls - r;
            const Sums& from = placed[static_cast<std::size_t>(c)];
            if (from.empty()) {
                continue;
            }
            for (std::int64_t t = lastFace ? r : 0; t <= r; ++t) {
                budget.spend(1 + from.size());
                const Decimal& factor = ways[lastFace ? 0 : static_cast<std::size_t>(t)];
                const std::int64_t kept = keptPlaces(c, t, low, high);
                Sums& to = next[static_cast<std::size_t>(c + t)];
                from.forEach([&](const typename Sums::Key& sum, const Decimal& weight) {
                    to.add(Sums::shifted(sum, kept, face), productOrZero(weight, factor));
                });
            }
        }
        for (const Sums& row : next) {
            states += row.size();
        }
        if (states > kMaxDropStates) {
            refuse(rolls);
        }
        placed = std::move(next);
    }
    return std::move(placed.back());
}

// The number of decimals of a value's plain text.
int decimalsOf(const Decimal& value) {
    const std::string text = value.stringValue();
    const auto point = text.find('.');
    return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

// Places the faces on a grid of equal steps (their offsets from the smallest face, divided by
// their greatest common divisor) and answers the step, or nothing when they fit no grid small
// enough to count on.
std::optional<Decimal> placeOnGrid(std::vector<Face>& faces, std::int64_t keptDice,
                                   std::int64_t rolls) {
    int decimals = 0;
    for (const Face& face : faces) {
        decimals = std::max(decimals, decimalsOf(face.value));
        if (decimals > kMaxGridDecimals) {
            return std::nullopt;
        }
    }
    const Decimal scale = Decimal::decimalNumberWithMantissa(1, decimals, false);
    std::int64_t divisor = 0;
    for (Face& face : faces) {
        const Decimal offset = (face.value - faces.front().value) * scale;
        if (offset.compare(Decimal::decimalNumberWithInteger(kMaxGridOffset)) > 0) {
            return std::nullopt;
        }
        face.offset = offset.longLongValue();
        divisor = std::gcd(divisor, face.offset);
    }
    divisor = std::max<std::int64_t>(divisor, 1);
    for (Face& face : faces) {
        face.offset /= divisor;
    }
    const double span = static_cast<double>(faces.back().offset) * static_cast<double>(keptDice);
    if ((span + 1) * static_cast<double>(rolls + 1) > static_cast<double>(kMaxDropStates)) {
        return std::nullopt;
    }
    return Decimal::decimalNumberWithMantissa(static_cast<std::uint64_t>(divisor), -decimals,
                                              false);
}

// Whether every weight is a whole number.
bool allWhole(const std::vector<Evaluation>& faces) {
    return std::all_of(faces.begin(), faces.end(), [](const Evaluation& face) {
        return face.weight().compare(face.weight().decimalRound(0)) == 0;
    });
}

}  // namespace

std::vector<Evaluation> KVDropHelper(const std::vector<Evaluation>& faces, std::int64_t rolls,
                                     std::int64_t dropLowest, std::int64_t dropHighest,
                                     RequestContext& context) {
    rolls = std::max<std::int64_t>(rolls, 0);
    dropLowest = std::clamp<std::int64_t>(dropLowest, 0, rolls);
    dropHighest = std::clamp<std::int64_t>(dropHighest, 0, rolls);
    if (rolls == 0) {
        return {Evaluation{Decimal::zero(), Decimal::one()}};
    }
    Decimal total = Decimal::zero();
    Decimal definedTotal = Decimal::zero();
    std::vector<Face> defined;
    for (const Evaluation& face : faces) {
        total = total + face.weight();
        if (face.isDefined() && face.weight().compare(Decimal::zero()) > 0) {
            defined.push_back({face.quantity(), 0, face.weight()});
            definedTotal = definedTotal + face.weight();
        }
    }
    const auto count = static_cast<unsigned>(rolls);
    const Arithmetic arithmetic =
        allWhole(faces) &&
                static_cast<double>(rolls) * std::log10(total.doubleValue()) < kExactDigits
            ? Arithmetic::WholeWays
            : Arithmetic::Chances;
    // The chance that no roll shows an undefined face; with whole ways, the ways of that.
    Decimal allRolls = Decimal::one();
    Decimal definedRolls = Decimal::one();
    if (arithmetic == Arithmetic::WholeWays) {
        allRolls = total.decimalNumberByRaisingToPower(count);
        definedRolls = definedTotal.decimalNumberByRaisingToPower(count);
    } else {
        for (Face& face : defined) {
            face.weight = face.weight / total;
        }
        if (definedTotal.compare(total) != 0) {
            definedRolls = (definedTotal / total).decimalNumberByRaisingToPower(count);
        }
    }
    const Decimal definedShare = definedRolls / allRolls;
    std::vector<Evaluation> result;
    if (definedShare.compare(Decimal::one()) < 0) {
        result.emplace_back(Decimal::notANumber(), Decimal::one() - definedShare);
    }
    if (defined.empty()) {
        return result;
    }
    const std::int64_t keptDice = rolls - dropLowest - dropHighest;
    if (keptDice <= 0) {
        result.emplace_back(Decimal::zero(), definedShare);
        return result;
    }
    std::sort(defined.begin(), defined.end(),
              [](const Face& a, const Face& b) { return a.value.compare(b.value) < 0; });
    // The steps of the count: every face walks all pairs (dice placed so far, dice placed now)
    // but the first, which starts from none placed, and the last, which places all the rest.
    const double rows = static_cast<double>(rolls + 1);
    const double steps =
        2 * rows +
        static_cast<double>(std::max<std::size_t>(defined.size(), 2) - 2) * rows * (rows + 1) / 2;
    context.refuseBeyondRemaining(steps);

    // A sum that some roll reaches but whose chance fell below 38-digit arithmetic is refused
    // like any other value too small to hold.
    const auto add = [&](const Decimal& quantity, const Decimal& weight) {
        if (weight.isZero()) {
            throw core::DecimalError(core::DecimalFault::Underflow);
        }
        result.emplace_back(quantity, arithmetic == Arithmetic::WholeWays ? weight / allRolls
                                                                          : weight * definedShare);
    };
    const std::int64_t keptEnd = rolls - dropHighest;
    if (const std::optional<Decimal> step = placeOnGrid(defined, keptDice, rolls)) {
        const Decimal lowest = Decimal::decimalNumberWithInteger(keptDice) * defined.front().value;
        countKeptSums<GridSums>(defined, rolls, dropLowest, keptEnd, arithmetic, context)
            .forEach([&](std::int64_t offset, const Decimal& weight) {
                add(lowest + Decimal::decimalNumberWithInteger(offset) * *step, weight);
            });
    } else {
        countKeptSums<DecimalSums>(defined, rolls, dropLowest, keptEnd, arithmetic, context)
            .forEach([&](const Decimal& sum, const Decimal& weight) { add(sum, weight); });
    }
    return result;
}

namespace {

// A count argument's outcomes rounded to whole numbers and made positive, equal ones merged;
// nothing stands for the undefined outcome.
using Counts = std::map<std::optional<std::int64_t>, Decimal>;

Counts wholeCounts(const Profile& counts) {
    Counts whole;
    for (const Evaluation& evaluation : counts.evaluations()) {
        std::optional<std::int64_t> count;
        if (evaluation.isDefined()) {
            const Decimal rounded = kKVRoundToIntDecimalHandler.round(evaluation.quantity());
            count = rounded.absoluteValueChanged(nullptr, nullptr).longLongValue();
        }
        auto [position, inserted] = whole.try_emplace(count, evaluation.weight());
        if (!inserted) {
            position->second = position->second + evaluation.weight();
        }
    }
    return whole;
}

}  // namespace

Profile KVTXDropF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 4) {
        return Profile{};
    }
    // The counting is done on X's weights as they stand, which keeps whole counts exact.
    const std::vector<Evaluation> faces = arguments[0].evaluations();
    for (Profile& argument : arguments) {
        argument.scaleToNormal();
    }
    if (!arguments[1].isDefined() || !arguments[3].isDefined()) {
        return Profile{};
    }
    const Counts rolls = wholeCounts(arguments[1]);
    const Counts lowest = wholeCounts(arguments[2]);
    const Counts highest = wholeCounts(arguments[3]);
    for (const auto& [count, weight] : rolls) {
        if (count && *count > core::kMaxDice) {
            refuse(*count);
        }
    }

    std::map<std::tuple<std::int64_t, std::int64_t, std::int64_t>, std::vector<Evaluation>> sums;
    std::vector<Evaluation> mixture;
    Decimal undefinedWeight = Decimal::zero();
    // Every combination of the counts is one mixture entry, each one at least a combination.
    context.chargeCombination(rolls.size() * lowest.size(), highest.size());
    for (const auto& [n, rollsWeight] : rolls) {
        for (const auto& [l, lowestWeight] : lowest) {
            for (const auto& [h, highestWeight] : highest) {
                const Decimal weight = rollsWeight * lowestWeight * highestWeight;
                if (!n || !l || !h) {
                    undefinedWeight = undefinedWeight + weight;
                    continue;
                }
                // Dropping more dice than were rolled keeps none, whichever end they come from.
                const bool keepsNone = *l >= *n || *h >= *n - *l;  // no overflow near 2^63
                const auto key = keepsNone ? std::make_tuple(*n, *n, std::int64_t{0})
                                           : std::make_tuple(*n, *l, *h);
                auto found = sums.find(key);
                if (found == sums.end()) {
                    found =
                        sums.emplace(key, KVDropHelper(faces, std::get<0>(key), std::get<1>(key),
                                                       std::get<2>(key), context))
                            .first;
                }
                for (const Evaluation& sum : found->second) {
                    mixture.emplace_back(sum.quantity(), sum.weight() * weight);
                }
            }
        }
    }
    if (undefinedWeight.compare(Decimal::zero()) > 0) {
        mixture.emplace_back(Decimal::notANumber(), undefinedWeight);
    }
    Profile result;
    result.addEvaluations(std::move(mixture));
    return result;
}

}  // namespace talvex::language
