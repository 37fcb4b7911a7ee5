#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/profile.h"
#include "expressions/expression.h"

namespace talvex::language::testing {

// A request of its own, with a fresh dictionary and the whole budget, for kernels and
// combinations called directly.
struct StandaloneRequest {
    ExpressionDictionary expressions;
    RequestContext context{expressions};

    // The context, also of a temporary that lives to the end of the call it is passed to.
    [[nodiscard]] RequestContext& use() noexcept { return context; }
};

// A profile's outcomes as (quantity text, weight text) pairs, undefined as "NaN".
inline std::vector<std::pair<std::string, std::string>> outcomes(const core::Profile& profile) {
    std::vector<std::pair<std::string, std::string>> list;
    for (const auto& evaluation : profile.evaluations()) {
        list.emplace_back(evaluation.quantity().stringValue(), evaluation.weight().stringValue());
    }
    return list;
}

// Probabilities scaled by `denominator` and rounded to whole numbers: exact small fractions
// survive the 38-digit rounding of normalised weights.
inline std::vector<std::pair<std::string, long long>> scaledOutcomes(const core::Profile& profile,
                                                                     long long denominator) {
    const core::Decimal total = profile.totalWeight();
    const core::Decimal scale = core::Decimal::decimalNumberWithInteger(denominator);
    std::vector<std::pair<std::string, long long>> list;
    for (const auto& evaluation : profile.evaluations()) {
        const core::Decimal count = (evaluation.weight() / total * scale).decimalRound(0);
        list.emplace_back(evaluation.quantity().stringValue(), count.longLongValue());
    }
    return list;
}

}  // namespace talvex::language::testing
