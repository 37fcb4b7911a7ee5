// confine, confineweight and confineweightrange: X conditioned on an interval whose bounds are
// random, renormalised, the way rerolling until the result lies in range behaves.

#include <array>

#include "kernels/function_kernels.h"
#include "kernels/kernel_support.h"

namespace talvex::language {

using core::Decimal;
using core::Profile;
using kernel_support::DefinedOutcomes;

namespace {

enum class ConfineBy { Quantity, Probability, CumulativeProbability };

// Scales the argument in place and answers its defined outcomes. By value and by cumulative
// probability the undefined share is simply dropped; by probability the defined outcomes alone
// are brought to weight one, so that their probabilities are what the bounds are compared with.
DefinedOutcomes preparedArgument(Profile& argument, ConfineBy test) {
    if (test == ConfineBy::Probability && !argument.isAlwaysDefined()) {
        argument.scale(Decimal::one() / argument.definedWeight());
    } else {
        argument.scaleToNormal();
    }
    return kernel_support::definedOutcomesOf(argument);
}

Profile confined(std::span<Profile> arguments, ConfineBy test, RequestContext& context) {
    if (arguments.size() != 3) {
        return Profile{};
    }
    std::array<DefinedOutcomes, 3> prepared;
    for (std::size_t i = 0; i < prepared.size(); ++i) {
        if (!arguments[i].isDefined()) {
            return Profile{};
        }
        prepared[i] = preparedArgument(arguments[i], test);
    }
    const DefinedOutcomes& x = prepared[0];
    const DefinedOutcomes& low = prepared[1];
    const DefinedOutcomes& high = prepared[2];
    kernel_support::checkWork(
        {prepared[0].quantities.size(), prepared[1].quantities.size(), high.quantities.size()},
        context);

    Profile result;
    // One scratch profile serves every pair of bounds.
    Profile scratch;
    for (std::size_t h = 0; h < high.quantities.size(); ++h) {
        const double hi = high.quantities[h];
        for (std::size_t l = 0; l < low.quantities.size(); ++l) {
            const double lo = low.quantities[l];
            const double pairWeight = high.weights[h] * low.weights[l];
            bool keptAny = false;
            double cumulative = 0;
            for (std::size_t i = 0; i < x.quantities.size(); ++i) {
                bool keep = false;
                if (test == ConfineBy::CumulativeProbability) {
                    // An outcome that starts above the high bound ends the walk; one that
                    // reaches the low bound is kept whole.
                    if (cumulative > hi) {
                        break;
                    }
                    cumulative += x.weights[i];
                    keep = !(cumulative < lo);
                } else {
                    const double tested =
                        test == ConfineBy::Quantity ? x.quantities[i] : x.weights[i];
                    keep = !(lo > tested || tested > hi);
                }
                if (keep) {
                    scratch.addEvaluation(x.evaluations[i]);
                    keptAny = true;
                }
            }
            // A pair that keeps nothing adds nothing (an empty profile would add an undefined
            // outcome).
            if (keptAny) {
                scratch.scaleToTotalWeight(kernel_support::decimalFromDouble(pairWeight));
                result.addProfile(scratch);
                scratch.setEvaluations({});
            }
        }
    }
    return result;
}

}  // namespace

Profile KVTXConfineF(std::span<Profile> arguments, RequestContext& context) {
    return confined(arguments, ConfineBy::Quantity, context);
}

Profile KVTXConfineWeightF(std::span<Profile> arguments, RequestContext& context) {
    return confined(arguments, ConfineBy::Probability, context);
}

Profile KVTXConfineWeightRangeF(std::span<Profile> arguments, RequestContext& context) {
    return confined(arguments, ConfineBy::CumulativeProbability, context);
}

}  // namespace talvex::language
