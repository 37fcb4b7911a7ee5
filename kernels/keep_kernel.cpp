// keep(X, low, high, R): X where it lies between the bounds, otherwise the replacement R.

#include <array>
#include <vector>

#include "kernels/function_kernels.h"
#include "kernels/kernel_support.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;
using kernel_support::decimalFromDouble;
using kernel_support::DefinedOutcomes;

Profile KVTXKeepF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 4) {
        return Profile{};
    }
    // Each argument is checked and scaled in turn; the first wholly undefined one ends the call.
    // X, low and high count as independent for the chance that any of them is undefined.
    const auto prepared = kernel_support::scaledBoundedArguments(arguments, context);
    if (!prepared) {
        return Profile{};
    }
    const DefinedOutcomes& x = prepared->x;
    const DefinedOutcomes& low = prepared->low;
    const DefinedOutcomes& high = prepared->high;
    // An undefined replacement is a replacement like any other, so R keeps all its outcomes.
    Profile& replacement = arguments[3];
    if (!replacement.isDefined()) {
        return Profile{};
    }
    replacement.scaleToNormal();
    const std::vector<Evaluation> replacements = replacement.evaluations();
    kernel_support::checkWork(
        {replacements.size(), x.quantities.size(), low.quantities.size(), high.quantities.size()},
        context);

    Profile result = prepared->undefinedPart();
    // The walk carries its weights as doubles so that the innermost loop does no Decimal
    // arithmetic; only the kept lists are scaled in Decimal.
    std::vector<Evaluation> kept;
    kept.reserve(x.evaluations.size());
    for (const Evaluation& r : replacements) {
        const double replacementWeight = r.weight().doubleValue();
        double outOfRange = 0;
        for (std::size_t h = 0; h < high.evaluations.size(); ++h) {
            const double hi = high.quantities[h];
            for (std::size_t l = 0; l < low.evaluations.size(); ++l) {
                const double lo = low.quantities[l];
                const double pairWeight = replacementWeight * high.weights[h] * low.weights[l];
                for (std::size_t i = 0; i < x.evaluations.size(); ++i) {
                    const double q = x.quantities[i];
                    if (lo > q || q > hi) {
                        outOfRange += x.weights[i] * pairWeight;
                    } else {
                        kept.push_back(x.evaluations[i]);
                    }
                }
                if (!kept.empty()) {
                    Profile part;
                    part.setEvaluations(std::move(kept));
                    part.scale(decimalFromDouble(pairWeight));
                    result.addProfile(part);
                    kept.clear();
                }
            }
        }
        if (outOfRange > 0) {
            result.addQuantity(r.quantity(), decimalFromDouble(outOfRange));
        }
    }
    return result;
}

}  // namespace talvex::language
