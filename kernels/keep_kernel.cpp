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

Profile KVTXKeepF(std::span<Profile> arguments) {
    if (arguments.size() != 4) {
        return Profile{};
    }
    // Each argument is checked and scaled in turn; the first wholly undefined one ends the call.
    // U is the chance that X, low or high is undefined, taking them as independent.
    double undefinedChance = 0;
    std::array<DefinedOutcomes, 3> prepared;
    for (std::size_t i = 0; i < prepared.size(); ++i) {
        if (!arguments[i].isDefined()) {
            return Profile{};
        }
        prepared[i] = kernel_support::scaledToOneFoldingUndefined(arguments[i], undefinedChance);
    }
    const DefinedOutcomes& x = prepared[0];
    const DefinedOutcomes& low = prepared[1];
    const DefinedOutcomes& high = prepared[2];
    // An undefined replacement is a replacement like any other, so R keeps all its outcomes.
    Profile& replacement = arguments[3];
    if (!replacement.isDefined()) {
        return Profile{};
    }
    replacement.scaleToNormal();
    const std::vector<Evaluation> replacements = replacement.evaluations();

    Profile result;
    if (undefinedChance > 0) {
        result.addQuantity(Decimal::notANumber(), decimalFromDouble(undefinedChance));
    }
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
