#include "kernels/kernel_support.h"

#include <array>
#include <limits>

#include "core/calculation_limits.h"

namespace talvex::language::kernel_support {

using core::Decimal;
using core::Evaluation;
using core::Profile;

Profile constantProfile(const Decimal& quantity, const Decimal& weight) {
    Profile profile;
    profile.addQuantity(quantity, weight);
    return profile;
}

std::int32_t truncatedToInt32(double value) noexcept {
    constexpr double kLowest = -2147483648.0;
    constexpr double kBeyond = 2147483648.0;
    if (!(value >= kLowest && value < kBeyond)) {
        return std::numeric_limits<std::int32_t>::min();
    }
    return static_cast<std::int32_t>(value);
}

DefinedOutcomes definedOutcomesOf(const Profile& profile) {
    DefinedOutcomes outcomes;
    outcomes.evaluations = profile.evaluations();
    if (!profile.isAlwaysDefined() && !outcomes.evaluations.empty()) {
        // The undefined outcome sorts first.
        outcomes.evaluations.erase(outcomes.evaluations.begin());
    }
    outcomes.quantities.reserve(outcomes.evaluations.size());
    outcomes.weights.reserve(outcomes.evaluations.size());
    for (const Evaluation& evaluation : outcomes.evaluations) {
        outcomes.quantities.push_back(evaluation.quantity().doubleValue());
        outcomes.weights.push_back(evaluation.weight().doubleValue());
    }
    return outcomes;
}

DefinedOutcomes scaledToOneFoldingUndefined(Profile& argument, double& undefinedChance) {
    argument.scaleToNormal();
    if (!argument.isAlwaysDefined()) {
        const double undefined = argument.undefinedWeight().doubleValue();
        undefinedChance = (1.0 - undefinedChance) * undefined + undefinedChance;
    }
    return definedOutcomesOf(argument);
}

std::optional<BoundedArguments> scaledBoundedArguments(std::span<Profile> arguments,
                                                       RequestContext& context) {
    BoundedArguments prepared;
    const std::array<DefinedOutcomes*, 3> targets = {&prepared.x, &prepared.low, &prepared.high};
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (!arguments[i].isDefined()) {
            return std::nullopt;
        }
        *targets[i] = scaledToOneFoldingUndefined(arguments[i], prepared.undefinedChance);
    }
    checkWork({prepared.x.quantities.size(), prepared.low.quantities.size(),
               prepared.high.quantities.size()},
              context);
    return prepared;
}

void checkWork(std::initializer_list<std::size_t> sizes, RequestContext& context) {
    // Every combination of the arguments' outcomes is visited once.
    double combinations = 1;
    for (const std::size_t size : sizes) {
        combinations *= static_cast<double>(size);
    }
    context.charge(combinations);
}

Profile BoundedArguments::undefinedPart() const {
    Profile part;
    if (undefinedChance > 0) {
        part.addQuantity(Decimal::notANumber(), decimalFromDouble(undefinedChance));
    }
    return part;
}

}  // namespace talvex::language::kernel_support
