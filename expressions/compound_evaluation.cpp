// Evaluating a parsed compound text: precedence levels, operator kernels, dice letters used as
// operators, and the comparator level.

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "core/calculation_limits.h"
#include "expressions/comparisons.h"
#include "expressions/compound_expression.h"
#include "kernels/operator_kernels.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;

namespace {

constexpr int kComparisonPlaces = 10;

// Whether the profile holds no evaluations at all (an omitted operand), as opposed to one
// undefined outcome: both report a single undefined outcome, but only the second keeps it when
// another outcome is added.
bool hasNoEvaluations(const Profile& profile) {
    const std::vector<Evaluation> list = profile.evaluations();
    if (list.size() != 1 || list.front().isDefined()) {
        return false;
    }
    Profile probe = profile.copy();
    probe.addQuantity(Decimal::zero(), Decimal::one());
    return probe.evaluations().size() == 1;
}

std::vector<Evaluation> storedEvaluations(const Profile& profile) {
    return hasNoEvaluations(profile) ? std::vector<Evaluation>{} : profile.evaluations();
}

core::FunctionKernel arithmeticKernel(char op) {
    switch (op) {
        case 'e':
            return CompoundExpressionEEF;
        case '^':
            return CompoundExpressionPowerF;
        case '*':
            return CompoundExpressionMultiplicationF;
        case '/':
            return CompoundExpressionDivisionF;
        case '+':
            return CompoundExpressionAdditionF;
        case '-':
            return CompoundExpressionSubtractionF;
        default:
            return nullptr;
    }
}

bool isDiceLetter(char op) { return std::string_view("dcpvw").find(op) != std::string_view::npos; }

// Faces of one die of `size` in the notation `letter`, as the dice kinds build it.
double facesOfOneDie(char letter, double size) {
    switch (letter) {
        case 'c':
            return size <= 9 ? 2 : 1;
        case 'p':
            return size <= 99 ? 2 : 1;
        case 'v':
            return std::min(size, 10.0) + 1;
        case 'w':
            return std::min(size, 100.0) + 1;
        default:
            return size;
    }
}

// An upper estimate of the outcome pairs that building every dice text of a re-expansion
// would combine: for each size, the chain of counts up to the largest one, each count one
// convolution with a single die.
double expansionWork(const std::vector<Evaluation>& counts, const std::vector<Evaluation>& sizes,
                     char letter) {
    double largestCount = 0;
    for (const Evaluation& count : counts) {
        if (count.isDefined()) {
            largestCount =
                std::max(largestCount, std::round(std::fabs(count.quantity().doubleValue())));
        }
    }
    if (largestCount == 0) {
        return 0;
    }
    double work = 0;
    for (const Evaluation& size : sizes) {
        if (size.isDefined()) {
            const double faces =
                facesOfOneDie(letter, std::round(std::fabs(size.quantity().doubleValue())));
            work += faces + faces * faces * largestCount * (largestCount - 1) / 2;
        }
    }
    return work;
}

}  // namespace

void checkDiceExpansionWork(const std::vector<Evaluation>& counts,
                            const std::vector<Evaluation>& sizes, char letter,
                            const RequestContext& context) {
    context.refuseBeyondRemaining(expansionWork(counts, sizes, letter));
}

Profile diceReexpansion(const Profile& left, const Profile& right, char letter,
                        RequestContext& context) {
    Profile result;
    const std::vector<Evaluation> counts = storedEvaluations(left);
    const std::vector<Evaluation> sizes = storedEvaluations(right);
    if (counts.empty() || sizes.empty()) {
        return result;
    }
    context.chargeCombination(counts.size(), sizes.size());
    checkDiceExpansionWork(counts, sizes, letter, context);
    HeldOutcomes held(context);
    for (const Evaluation& count : counts) {
        for (const Evaluation& size : sizes) {
            const Decimal weight = count.weight() * size.weight();
            if (!count.isDefined() || !size.isDefined()) {
                result.addQuantity(Decimal::notANumber(), weight);
                continue;
            }
            // Each distinct text is built once per dictionary and shared after that.
            const std::string text = diceRelationText(letter, count.quantity(), size.quantity());
            const ExpressionPointer built = Expression::expressionWithString(text, context);
            // Copying and merging the dice in costs as much as their outcomes.
            const std::size_t outcomes = built->profileView().evaluationCount();
            held.set(result.evaluationCount() + outcomes);
            context.charge(static_cast<std::uint64_t>(outcomes));
            Profile dice = built->profile();
            dice.scaleToTotalWeight(weight);
            if (hasNoEvaluations(dice)) {
                result.addQuantity(Decimal::notANumber(), weight);
            } else {
                result.addEvaluations(dice.evaluations());
            }
        }
    }
    return result;
}

void roundComparisonOperands(std::vector<Profile>& profiles) {
    for (Profile& profile : profiles) {
        profile.roundToPrecision(kComparisonPlaces);
    }
}

Profile comparisonProfile(std::string_view comparator, std::vector<Profile>& profiles,
                          RequestContext& context) {
    return comparisonProfileForKeyword(comparator, profiles, context);
}

Profile CompoundExpression::combineProfiles(std::vector<Profile> profiles, char op,
                                            RequestContext& context) const {
    if (profiles.size() < 2 || op == '\0') {
        return Profile{};
    }
    for (Profile& profile : profiles) {
        profile.scaleToNormal();
    }
    Profile result = profiles.front().copy();
    if (const core::FunctionKernel kernel = arithmeticKernel(op); kernel != nullptr) {
        for (std::size_t i = 1; i < profiles.size(); ++i) {
            context.chargeCombination(result.evaluationCount(), profiles[i].evaluationCount());
            result.assimilateProfile(profiles[i], kernel);
        }
    } else if (isDiceLetter(op)) {
        for (std::size_t i = 1; i < profiles.size(); ++i) {
            result = diceReexpansion(result, profiles[i], op, context);
        }
    } else if (op == '%') {
        roundComparisonOperands(profiles);
        result = comparisonProfile(m_comparator, profiles, context);
    } else {
        for (std::size_t i = 1; i < profiles.size(); ++i) {
            context.chargeCombination(result.evaluationCount(), profiles[i].evaluationCount());
            result.assimilateProfile(profiles[i], CompoundExpressionUndefinedF);
        }
    }
    return result;
}

void CompoundExpression::makeProfile(RequestContext& context) {
    ownProfile() = Profile{};
    if (m_subExpressions.empty() || m_subOperators.size() + 1 != m_subExpressions.size()) {
        return;
    }
    // The copies of the operands and the results on the way are counted while they live.
    HeldOutcomes held(context);
    std::size_t live = 0;
    std::vector<Profile> profiles;
    profiles.reserve(m_subExpressions.size());
    for (const ExpressionPointer& operand : m_subExpressions) {
        live += operand->profileView().evaluationCount();
        held.set(live);
        profiles.push_back(operand->profile());
    }
    std::vector<char> operators = m_subOperators;

    // Every level but the comparator's, highest first; within a level left to right, so every
    // operator is left-associative: 2^3^2 is (2^3)^2.
    const auto levels = operatorLevelArray();
    for (std::size_t level = 0; level + 1 < levels.size(); ++level) {
        const std::string_view members = levels[level];
        if (members.empty()) {
            continue;
        }
        std::vector<Profile> keptProfiles;
        std::vector<char> keptOperators;
        keptProfiles.push_back(std::move(profiles.front()));
        for (std::size_t i = 0; i < operators.size(); ++i) {
            if (members.find(operators[i]) != std::string_view::npos) {
                std::vector<Profile> pair;
                pair.push_back(std::move(keptProfiles.back()));
                pair.push_back(std::move(profiles[i + 1]));
                const std::size_t before = pair[0].evaluationCount() + pair[1].evaluationCount();
                keptProfiles.back() = combineProfiles(std::move(pair), operators[i], context);
                live = live - std::min(live, before) + keptProfiles.back().evaluationCount();
                held.set(live);
            } else {
                keptOperators.push_back(operators[i]);
                keptProfiles.push_back(std::move(profiles[i + 1]));
            }
        }
        profiles = std::move(keptProfiles);
        operators = std::move(keptOperators);
    }

    Profile result;
    if (profiles.size() >= 2) {
        // Only comparator marks are left; a comparator takes all its operands at once.
        const bool oneOperator =
            operators.size() + 1 == profiles.size() &&
            std::all_of(operators.begin(), operators.end(),
                        [&operators](char op) { return op == operators.front(); });
        if (oneOperator) {
            result = combineProfiles(std::move(profiles), operators.front(), context);
        }
    } else {
        result = std::move(profiles.front());
    }
    ownProfile() = result.copy();
    ownProfile().setComparatorString(m_comparator);
}

}  // namespace talvex::language
