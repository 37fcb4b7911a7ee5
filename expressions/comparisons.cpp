#include "expressions/comparisons.h"

#include <algorithm>
#include <optional>
#include <string>

#include "core/calculation_limits.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;

namespace {

constexpr std::size_t kMaxTieOperands = 12;

using Comparison = Profile (*)(std::vector<Profile>&);

bool isOne(const Decimal& quantity) { return quantity.compare(Decimal::one()) == 0; }
bool isZero(const Decimal& quantity) { return quantity.compare(Decimal::zero()) == 0; }

Profile profileOf(std::vector<Evaluation> evaluations) {
    Profile profile;
    profile.setEvaluations(std::move(evaluations));
    return profile;
}

// The common first steps: an operand without any defined outcome gives no result at all.
// Otherwise every operand is normalised; if any has undefined outcomes, the defined parts are
// compared on their own (by `recurse`), scaled to the chance p that no operand is undefined,
// and the rest becomes one undefined outcome. Nothing when every operand is always defined.
std::optional<Profile> splitUndefined(std::vector<Profile>& profiles, Comparison recurse) {
    for (const Profile& profile : profiles) {
        if (!profile.isDefined()) {
            return Profile{};
        }
    }
    Decimal p = Decimal::one();
    bool anyUndefined = false;
    std::vector<Profile> definedParts;
    definedParts.reserve(profiles.size());
    for (Profile& profile : profiles) {
        profile.scaleToNormal();
        std::vector<Evaluation> outcomes = profile.evaluations();
        if (!profile.isAlwaysDefined()) {
            p = p * (Decimal::one() - outcomes.front().weight());
            outcomes.erase(outcomes.begin());
            anyUndefined = true;
        }
        definedParts.push_back(profileOf(std::move(outcomes)));
    }
    if (!anyUndefined) {
        return std::nullopt;
    }
    Profile result = recurse(definedParts);
    result.scaleToTotalWeight(p);
    result.addQuantity(Decimal::notANumber(), Decimal::one() - p);
    return result;
}

// The operand index a "vt" code stands for: 1 is the first operand, -k operand k; the tie (0)
// and anything else stand for none.
std::optional<std::size_t> operandOfCode(const Decimal& code, std::size_t operands) {
    if (code.isNotANumber()) {
        return std::nullopt;
    }
    if (isOne(code)) {
        return 0;
    }
    const Decimal index = Decimal::zero() - code;
    if (index.decimalRound(0).compare(index) != 0 || index.compare(Decimal::one()) < 0) {
        return std::nullopt;
    }
    const auto k = static_cast<std::size_t>(index.longLongValue());
    return k < operands ? std::optional<std::size_t>(k) : std::nullopt;
}

Decimal codeOfOperand(std::size_t index) {
    return index == 0 ? Decimal::one()
                      : Decimal::decimalNumberWithInteger(-static_cast<std::int64_t>(index));
}

Decimal patternQuantity(const std::string& digits) {
    return Decimal::decimalNumberWithString(digits);
}

// The challenges: each outcome's quantity mapped by `rule` (1 and undefined are kept).
Profile challengeOf(const Profile& comparison, bool tieIsUndefined) {
    std::vector<Evaluation> outcomes = comparison.evaluations();
    for (Evaluation& outcome : outcomes) {
        const Decimal& quantity = outcome.quantity();
        if (quantity.isNotANumber() || isOne(quantity)) {
            continue;
        }
        if (tieIsUndefined && isZero(quantity)) {
            outcome.setToUndefined();
        } else {
            outcome.setQuantity(Decimal::zero());
        }
    }
    return profileOf(std::move(outcomes));
}

}  // namespace

Profile versusProfile(std::vector<Profile>& profiles) {
    if (auto split = splitUndefined(profiles, versusProfile)) {
        return std::move(*split);
    }
    const std::size_t n = profiles.size();
    // Each operand's outcomes, ascending, and the running weight up to each of them.
    std::vector<std::vector<Evaluation>> outcomes(n);
    std::vector<std::vector<Decimal>> running(n);
    for (std::size_t k = 0; k < n; ++k) {
        outcomes[k] = profiles[k].evaluations();
        Decimal sum = Decimal::zero();
        running[k].reserve(outcomes[k].size());
        for (const Evaluation& e : outcomes[k]) {
            sum = sum + e.weight();
            running[k].push_back(sum);
        }
    }
    std::vector<Evaluation> slots;
    slots.reserve(n + 1);
    for (std::size_t i = 0; i <= n; ++i) {
        slots.emplace_back(Decimal::decimalNumberWithInteger(static_cast<std::int64_t>(i) - 1),
                           Decimal::zero());
    }
    // Walking each operand's outcomes in ascending order, every other operand's count of
    // smaller outcomes only grows: one pass per pair of operands.
    for (std::size_t k = 0; k < n; ++k) {
        std::vector<std::size_t> below(n, 0);
        Evaluation& slot = slots[k == 0 ? 0 : k + 1];
        for (const Evaluation& e : outcomes[k]) {
            Decimal w = e.weight();
            for (std::size_t j = 0; j < n; ++j) {
                if (j == k) {
                    continue;
                }
                std::size_t& count = below[j];
                while (count < outcomes[j].size() &&
                       outcomes[j][count].quantity().compare(e.quantity()) < 0) {
                    ++count;
                }
                w = w * (count == 0 ? Decimal::zero() : running[j][count - 1]);
            }
            slot.setWeight(slot.weight() + w);
        }
    }
    Decimal others = Decimal::zero();
    for (std::size_t i = 0; i <= n; ++i) {
        if (i != 1) {
            others = others + slots[i].weight();
        }
    }
    slots[1].setWeight(Decimal::one() - others);
    for (Evaluation& slot : slots) {
        slot.scaleQuantity(Decimal::decimalNumberWithInteger(-1));
    }
    return profileOf(std::move(slots));
}

Profile versusProfileNoTies(std::vector<Profile>& profiles) {
    if (auto split = splitUndefined(profiles, versusProfileNoTies)) {
        return std::move(*split);
    }
    const std::size_t n = profiles.size();
    const std::vector<Evaluation> versus = versusProfile(profiles).evaluations();
    const std::vector<Evaluation> ties = tieProfile(profiles).evaluations();
    // Every operand gets an outcome of its own; the tie outcome is shared out below.
    std::vector<Decimal> shares(n, Decimal::zero());
    for (const Evaluation& outcome : versus) {
        if (const auto index = operandOfCode(outcome.quantity(), n)) {
            shares[*index] = outcome.weight();
        }
    }
    for (const Evaluation& tie : ties) {
        if (!tie.isDefined()) {
            continue;
        }
        const std::string digits = tie.quantity().stringValue().substr(1);
        const auto taking =
            static_cast<std::int64_t>(std::count(digits.begin(), digits.end(), '1'));
        if (taking == 0) {
            continue;
        }
        const Decimal share = tie.weight() / Decimal::decimalNumberWithInteger(taking);
        for (std::size_t i = 0; i < digits.size() && i < n; ++i) {
            if (digits[i] == '1') {
                shares[i] = shares[i] + share;
            }
        }
    }
    std::vector<Evaluation> result;
    result.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        result.emplace_back(codeOfOperand(i), shares[i]);
    }
    return profileOf(std::move(result));
}

std::vector<TiePattern> tiesWithFirstInArray(std::span<const Decimal> first,
                                             std::span<const Decimal> running) {
    std::vector<TiePattern> patterns;
    const std::size_t m = first.size();
    std::string pattern = "1";
    Decimal q = m == 0 ? Decimal::zero() : first[0];
    for (std::size_t j = 1; j < m; ++j) {
        if (first[j].compare(Decimal::zero()) > 0) {
            // Exactly the first entry and entry j tie; every later one lies below.
            Decimal weight = q * first[j];
            for (std::size_t k = j + 1; k < m; ++k) {
                weight = weight * running[k];
            }
            patterns.push_back({pattern + "1" + std::string(m - 1 - j, '0'), weight});
            if (j + 1 < m) {
                for (const TiePattern& more :
                     tiesWithFirstInArray(first.subspan(j), running.subspan(j))) {
                    patterns.push_back({pattern + more.digits, q * more.weight});
                }
            }
        }
        pattern.push_back('0');
        q = q * running[j];
    }
    return patterns;
}

Profile tieProfile(std::vector<Profile>& profiles) {
    // Tie patterns are one digit per operand after the marker, within 38 digits, and the
    // patterns of a value grow with the subsets of operands that can share it.
    if (profiles.size() > kMaxTieOperands) {
        throw core::CalculationTooLarge("ties among more than " + std::to_string(kMaxTieOperands) +
                                        " operands are too many to calculate");
    }
    if (auto split = splitUndefined(profiles, tieProfile)) {
        return std::move(*split);
    }
    const std::size_t n = profiles.size();
    std::vector<std::vector<Evaluation>> outcomes(n);
    std::vector<Decimal> values;
    for (std::size_t j = 0; j < n; ++j) {
        profiles[j].scaleToNormal();
        outcomes[j] = profiles[j].evaluations();
        for (const Evaluation& e : outcomes[j]) {
            values.push_back(e.quantity());
        }
    }
    // Values that agree to the error's places are one value.
    const Profile& judge = profiles.front();
    std::stable_sort(values.begin(), values.end(),
                     [](const Decimal& a, const Decimal& b) { return a.compare(b) < 0; });
    std::vector<Decimal> distinct;
    for (const Decimal& value : values) {
        if (distinct.empty() || !judge.decimalIsWithinErrorOf(value, distinct.back())) {
            distinct.push_back(value);
        }
    }

    Profile result;
    std::vector<std::size_t> position(n, 0);
    std::vector<Decimal> below(n, Decimal::zero());
    std::vector<Decimal> first(n);
    std::vector<Decimal> running(n);
    for (const Decimal& v : distinct) {
        for (std::size_t j = 0; j < n; ++j) {
            std::size_t& at = position[j];
            while (at < outcomes[j].size() && outcomes[j][at].quantity().compare(v) < 0 &&
                   !judge.decimalIsWithinErrorOf(outcomes[j][at].quantity(), v)) {
                below[j] = below[j] + outcomes[j][at].weight();
                ++at;
            }
            running[j] = below[j];
            first[j] = at < outcomes[j].size() &&
                               judge.decimalIsWithinErrorOf(outcomes[j][at].quantity(), v)
                           ? outcomes[j][at].weight()
                           : Decimal::zero();
        }
        std::string prefix = "8";
        for (std::size_t i = 0; i < n; ++i) {
            if (first[i].compare(Decimal::zero()) > 0) {
                Decimal q = Decimal::one();
                for (std::size_t k = 0; k < i; ++k) {
                    q = q * running[k];
                }
                for (const TiePattern& tie :
                     tiesWithFirstInArray(std::span<const Decimal>(first).subspan(i),
                                          std::span<const Decimal>(running).subspan(i))) {
                    result.addQuantity(patternQuantity(prefix + tie.digits), q * tie.weight);
                }
            }
            prefix.push_back('0');
        }
    }
    // The weight of what was added: zero while nothing was (an empty profile reports one).
    std::string noTie(n + 1, '0');
    noTie.front() = '8';
    result.addQuantity(patternQuantity(noTie), Decimal::one() - result.definedWeight());
    return result;
}

Profile challengeProfile(std::vector<Profile>& profiles) {
    return challengeOf(versusProfileNoTies(profiles), false);
}

Profile challengeProfileLoseTie(std::vector<Profile>& profiles) {
    return challengeOf(versusProfile(profiles), false);
}

Profile challengeProfileUndefinedTie(std::vector<Profile>& profiles) {
    return challengeOf(versusProfile(profiles), true);
}

Profile challengeProfileWinTie(std::vector<Profile>& profiles) {
    const std::vector<Evaluation> versus = versusProfile(profiles).evaluations();
    const std::vector<Evaluation> ties = tieProfile(profiles).evaluations();
    std::vector<Evaluation> result;
    result.reserve(versus.size() + ties.size());
    for (Evaluation outcome : versus) {
        const Decimal& quantity = outcome.quantity();
        if (!quantity.isNotANumber() && isZero(quantity)) {
            outcome.setWeight(Decimal::zero());
        } else if (!quantity.isNotANumber() && !isOne(quantity)) {
            outcome.setQuantity(Decimal::zero());
        }
        result.push_back(outcome);
    }
    for (const Evaluation& tie : ties) {
        const std::string text = tie.quantity().stringValue();
        const std::size_t one = text.find('1');
        if (one == std::string::npos) {
            continue;
        }
        result.emplace_back(one == 1 ? Decimal::one() : Decimal::zero(), tie.weight());
    }
    return profileOf(std::move(result));
}

Profile comparisonProfileForKeyword(std::string_view comparator, std::vector<Profile>& profiles,
                                    RequestContext& context) {
    double meetings = 0;
    for (const Profile& profile : profiles) {
        meetings +=
            static_cast<double>(profile.evaluationCount()) * static_cast<double>(profiles.size());
    }
    context.charge(meetings);
    if (comparator == "vs") {
        return versusProfileNoTies(profiles);
    }
    if (comparator == "vt") {
        return versusProfile(profiles);
    }
    if (comparator == "tt") {
        return tieProfile(profiles);
    }
    if (comparator == "ch") {
        return challengeProfile(profiles);
    }
    if (comparator == "cw") {
        return challengeProfileWinTie(profiles);
    }
    if (comparator == "cl") {
        return challengeProfileLoseTie(profiles);
    }
    if (comparator == "cu") {
        return challengeProfileUndefinedTie(profiles);
    }
    return Profile{};
}

}  // namespace talvex::language
