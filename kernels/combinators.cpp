// The adapters that turn operator kernels and profile statistics into function kernels.

#include <type_traits>

#include "kernels/function_kernels.h"
#include "kernels/kernel_support.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;

Profile KVTXSoloCombinatorProfile(core::FunctionKernel function, std::span<Profile> arguments) {
    if (arguments.empty()) {
        return Profile{};
    }
    // The one-argument kernels read their operand from the right, hence 0 on the left.
    Profile result = kernel_support::constantProfile(Decimal::zero());
    result.assimilateProfile(arguments.front(), function);
    return result;
}

Profile KVTXChainCombinatorProfile(core::FunctionKernel function, std::span<Profile> arguments,
                                   RequestContext& context) {
    if (arguments.empty()) {
        return Profile{};
    }
    Profile result = arguments.front().copy();
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        context.chargeCombination(result.evaluationCount(), arguments[i].evaluationCount());
        result.assimilateProfile(arguments[i], function);
    }
    return result;
}

StatisticAnswer statisticMean(const Profile& profile) { return profile.mean(); }

StatisticAnswer statisticStandardDeviation(const Profile& profile) {
    return profile.standardDeviation();
}

StatisticAnswer statisticRange(const Profile& profile) {
    const auto range = profile.range();
    return std::vector<Decimal>{range[0], range[1]};
}

StatisticAnswer statisticValues(const Profile& profile) { return profile.values(); }

StatisticAnswer statisticMedian(const Profile& profile) { return profile.median(); }

StatisticAnswer statisticMode(const Profile& profile) { return profile.mode(); }

Profile KVTXProfileIntegratedProfile(ProfileStatistic statistic, std::span<Profile> arguments) {
    if (arguments.empty()) {
        return Profile{};
    }
    return std::visit(
        [](auto&& answer) -> Profile {
            using Answer = std::decay_t<decltype(answer)>;
            Profile result;
            if constexpr (std::is_same_v<Answer, Decimal>) {
                result.addQuantity(answer, Decimal::one());
            } else if constexpr (std::is_same_v<Answer, std::vector<Decimal>>) {
                // Equal numbers merge: a range whose ends agree is one outcome of weight two.
                std::vector<Evaluation> outcomes;
                outcomes.reserve(answer.size());
                for (const Decimal& value : answer) {
                    outcomes.emplace_back(value, Decimal::one());
                }
                result.addEvaluations(std::move(outcomes));
            } else if constexpr (std::is_same_v<Answer, std::vector<Evaluation>>) {
                result.addEvaluations(std::move(answer));
            } else if constexpr (std::is_same_v<Answer, Profile>) {
                result = std::move(answer);
            }
            return result;
        },
        statistic(arguments.front()));
}

}  // namespace talvex::language
