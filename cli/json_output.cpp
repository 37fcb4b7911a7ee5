#include "cli/json_output.h"

namespace talvex::cli {

using core::Decimal;
using nlohmann::ordered_json;

namespace {

ordered_json quantityJson(const Decimal& quantity) {
    return quantity.isNotANumber() ? ordered_json(nullptr) : ordered_json(quantity.stringValue());
}

}  // namespace

ordered_json profileJson(const std::string& expression, const core::Profile& profile) {
    const Decimal total = profile.totalWeight();
    ordered_json outcomes = ordered_json::array();
    for (const core::Evaluation& evaluation : profile.evaluations()) {
        outcomes.push_back({{"quantity", quantityJson(evaluation.quantity())},
                            {"weight", evaluation.weight().stringValue()},
                            {"probability", (evaluation.weight() / total).stringValue()}});
    }
    return {{"expression", expression},
            {"comparator", profile.comparatorString()},
            {"total_weight", total.stringValue()},
            {"outcomes", std::move(outcomes)}};
}

ordered_json statisticsJson(const core::Profile& profile) {
    const auto list = [](const std::vector<Decimal>& values) {
        ordered_json array = ordered_json::array();
        for (const Decimal& value : values) {
            array.push_back(quantityJson(value));
        }
        return array;
    };
    // A statistic that leaves the 38-digit range (the variance of outcomes near 1E100) is
    // null like an undefined one; the distribution itself is still printed.
    const auto guarded = [](auto statistic) -> ordered_json {
        try {
            return quantityJson(statistic());
        } catch (const core::DecimalError&) {
            return nullptr;
        }
    };
    const auto range = profile.range();
    return {{"mean", guarded([&] { return profile.mean(); })},
            {"variance", guarded([&] { return profile.variance(); })},
            {"standard_deviation", guarded([&] { return profile.standardDeviation(); })},
            {"mean_deviation", guarded([&] { return profile.meanDeviation(); })},
            {"median", quantityJson(profile.median())},
            {"mode", list(profile.mode())},
            {"mode_including_undefined", list(profile.modeIncludingUndefined())},
            {"range", list({range[0], range[1]})},
            {"values", quantityJson(profile.values())}};
}

ordered_json rollsJson(const std::vector<core::Evaluation>& rolls) {
    ordered_json list = ordered_json::array();
    for (const core::Evaluation& roll : rolls) {
        list.push_back(quantityJson(roll.quantity()));
    }
    return list;
}

}  // namespace talvex::cli
