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
    const auto range = profile.range();
    return {{"mean", quantityJson(profile.mean())},
            {"variance", quantityJson(profile.variance())},
            {"standard_deviation", quantityJson(profile.standardDeviation())},
            {"mean_deviation", quantityJson(profile.meanDeviation())},
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
