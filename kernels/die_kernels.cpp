// Dice whose faces are whole expressions, dice of random count and size, and sums and products
// of a random number of rolls.

#include <cmath>
#include <cstdint>
#include <string>

#include "core/calculation_limits.h"
#include "expressions/compound_expression.h"
#include "kernels/definitions.h"
#include "kernels/function_kernels.h"
#include "kernels/kernel_support.h"
#include "kernels/operator_kernels.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;
using kernel_support::constantProfile;

namespace {

// A count split into its whole part k (a 32-bit integer) and the fraction f = d - k.
struct SplitCount {
    std::int32_t whole = 0;
    double fraction = 0;
};

SplitCount splitCount(const Decimal& count) {
    const double value = count.doubleValue();
    const std::int32_t whole = kernel_support::truncatedToInt32(std::floor(value));
    return {whole, value - static_cast<double>(whole)};
}

// Combines `roll` into the accumulator, which already holds one roll, until it holds `whole`.
// A count far beyond what the request can pay is refused before the first combination.
void combineRepeatedly(Profile& accumulator, const Profile& roll, std::int32_t whole,
                       core::FunctionKernel kernel, RequestContext& context) {
    context.refuseBeyondRemaining((static_cast<double>(whole) - 1) *
                                  static_cast<double>(kCombinationOverhead));
    for (std::int32_t i = 1; i < whole; ++i) {
        context.chargeCombination(accumulator.evaluationCount(), roll.evaluationCount());
        accumulator.assimilateProfile(roll, kernel);
    }
}

}  // namespace

Profile KVTXDieF(std::span<Profile> arguments, RequestContext& context) {
    Profile result;
    for (Profile& argument : arguments) {
        context.chargeCombination(argument.evaluationCount(), 1);
        argument.scaleToNormal();
        result.addProfile(argument);
    }
    return result;
}

Profile KVTXDieWF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() % 2 != 0) {
        return Profile{};
    }
    Profile result;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        const Decimal mean = arguments[i + 1].mean();
        if (mean.isNotANumber()) {
            return Profile{};
        }
        if (mean.compare(Decimal::zero()) > 0) {
            arguments[i].scaleToTotalWeight(mean);
            context.chargeCombination(arguments[i].evaluationCount(), 1);
            result.addProfile(arguments[i]);
        }
    }
    return result;
}

Profile KVTXDieRF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 2) {
        return Profile{};
    }
    // The same bound as dice letters used as operators: "dier(1d100,1d100)" is "(1d100)d(1d100)".
    checkDiceExpansionWork(arguments[0].evaluations(), arguments[1].evaluations(), 'd', context);
    Profile result = arguments[0].copy();
    context.chargeCombination(result.evaluationCount(), arguments[1].evaluationCount());
    // Equal dice texts recur for every pair that rounds alike; each is built once.
    DiceRelationCache cache(context);
    result.assimilateProfile(arguments[1], cachedDiceRelation('d', cache));
    return result;
}

Profile KVTXDieMultF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 2) {
        return Profile{};
    }
    const Profile& roll = arguments.front();
    Profile& counts = arguments.back();
    counts.scaleToNormal();

    Profile result;
    Profile x = roll.copy();
    for (const Evaluation& count : counts.evaluations()) {
        const Decimal& weight = count.weight();
        if (!count.isDefined()) {
            result.addQuantity(Decimal::notANumber(), weight);
            continue;
        }
        if (count.quantity().isZero()) {
            Profile zero = constantProfile(Decimal::zero());
            zero.scaleToTotalWeight(weight);
            result.addProfile(zero);
            continue;
        }
        bool changed = false;
        Decimal n = count.quantity();
        if (n.isNegative()) {
            x.scaleQuantities(kKVDecimalNegativeOne);
            n = n * kKVDecimalNegativeOne;
            changed = true;
        }
        // The accumulator starts with one roll even for a whole part of zero: a count between
        // 0 and 1 sums like one between 1 and 2.
        Profile sum = x.copy();
        const SplitCount split = splitCount(n);
        combineRepeatedly(sum, x, split.whole, CompoundExpressionAdditionF, context);
        if (split.fraction > 0) {
            x.scaleQuantities(kernel_support::decimalFromDouble(split.fraction));
            changed = true;
            context.chargeCombination(sum.evaluationCount(), x.evaluationCount());
            sum.assimilateProfile(x, CompoundExpressionAdditionF);
        }
        sum.scaleToTotalWeight(weight);
        result.addProfile(sum);
        if (changed) {
            x = roll.copy();
        }
    }
    return result;
}

Profile KVTXDiePowF(std::span<Profile> arguments, RequestContext& context) {
    if (arguments.size() != 2) {
        return Profile{};
    }
    const Profile& x = arguments.front();
    Profile& counts = arguments.back();
    counts.scaleToNormal();

    Profile result;
    for (const Evaluation& count : counts.evaluations()) {
        const Decimal& weight = count.weight();
        if (!count.isDefined()) {
            result.addQuantity(Decimal::notANumber(), weight);
            continue;
        }
        if (count.quantity().isZero()) {
            // X's own weights, deliberately not scaled by the chance of the count 0.
            result.addQuantity(Decimal::one(), x.definedWeight());
            result.addQuantity(Decimal::notANumber(), x.undefinedWeight());
            continue;
        }
        Profile product = x.copy();
        const SplitCount split =
            splitCount(count.quantity().absoluteValueChanged(nullptr, nullptr));
        combineRepeatedly(product, x, split.whole, CompoundExpressionMultiplicationF, context);
        if (split.fraction > 0) {
            Profile root = x.copy();
            root.assimilateProfile(
                constantProfile(kernel_support::decimalFromDouble(split.fraction)),
                CompoundExpressionPowerF);
            context.chargeCombination(product.evaluationCount(), root.evaluationCount());
            product.assimilateProfile(root, CompoundExpressionMultiplicationF);
        }
        if (count.quantity().isNegative()) {
            Profile reciprocal = constantProfile(Decimal::one());
            context.chargeCombination(1, product.evaluationCount());
            reciprocal.assimilateProfile(product, CompoundExpressionDivisionF);
            product = std::move(reciprocal);
        }
        product.scaleToTotalWeight(weight);
        result.addProfile(product);
    }
    return result;
}

}  // namespace talvex::language
