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

ordered_json rollsJson(const std::vector<core::Evaluation>& rolls) {
    ordered_json list = ordered_json::array();
    for (const core::Evaluation& roll : rolls) {
        list.push_back(quantityJson(roll.quantity()));
    }
    return list;
}

std::string profileText(const core::Profile& profile) {
    const Decimal total = profile.totalWeight();
    std::string text;
    for (const core::Evaluation& evaluation : profile.evaluations()) {
        text += evaluation.isDefined() ? evaluation.quantity().stringValue() : "undefined";
        text += '\t';
        text += (evaluation.weight() / total).stringValue();
        text += '\n';
    }
    return text;
}

}  // namespace talvex::cli
