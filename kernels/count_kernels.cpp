// count(X, low, high): a success indicator; criterion(N, S, T): successes among N dice.

#include <array>
#include <utility>
#include <vector>

#include "kernels/function_kernels.h"
#include "kernels/kernel_support.h"

namespace talvex::language {

using core::Decimal;
using core::Profile;
using kernel_support::constantProfile;
using kernel_support::decimalFromDouble;
using kernel_support::DefinedOutcomes;

Profile KVTXCountF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 3) {
        return Profile{};
    }
    const auto prepared = kernel_support::scaledBoundedArguments(arguments, context);
    if (!prepared) {
        return Profile{};
    }
    const DefinedOutcomes& x = prepared->x;
    const DefinedOutcomes& low = prepared->low;
    const DefinedOutcomes& high = prepared->high;

    Profile result = prepared->undefinedPart();
    double missed = 0;
    for (std::size_t h = 0; h < high.quantities.size(); ++h) {
        const double hi = high.quantities[h];
        for (std::size_t l = 0; l < low.quantities.size(); ++l) {
            const double lo = low.quantities[l];
            const double pairWeight = high.weights[h] * low.weights[l];
            double hit = 0;
            for (std::size_t i = 0; i < x.quantities.size(); ++i) {
                const double q = x.quantities[i];
                if (lo > q || q > hi) {
                    missed += x.weights[i] * pairWeight;
                } else {
                    hit += x.weights[i] * pairWeight;
                }
            }
            if (hit > 0) {
                result.addQuantity(Decimal::one(), decimalFromDouble(hit));
            }
        }
    }
    if (missed > 0) {
        result.addQuantity(Decimal::zero(), decimalFromDouble(missed));
    }
    return result;
}

Profile KVTXCriterionF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 3) {
        return Profile{};
    }
    // One die of S sides, with S random.
    std::array<Profile, 2> dieArguments = {constantProfile(Decimal::one()), arguments[1]};
    // Its success indicator: 1 when the roll is between 1 and T.
    std::array<Profile, 3> countArguments = {KVTXDieRF(dieArguments, context),
                                             constantProfile(Decimal::one()), arguments[2]};
    // The sum of N independent indicators.
    std::array<Profile, 2> sumArguments = {KVTXCountF(countArguments, context), arguments[0]};
    Profile successes = KVTXDieMultF(sumArguments, context);
    // The kernels scale T and N in place, as they would the caller's own profiles.
    arguments[2] = std::move(countArguments[2]);
    arguments[0] = std::move(sumArguments[1]);
    return successes;
}

}  // namespace talvex::language
