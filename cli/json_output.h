#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/evaluation.h"
#include "core/profile.h"

namespace talvex::cli {

// One expression's result as a JSON object: its text, comparator, total weight and outcomes
// (in the profile's own order, the undefined one first), every number as plain decimal text.
[[nodiscard]] nlohmann::ordered_json profileJson(const std::string& expression,
                                                 const core::Profile& profile);

// The summary numbers as raw decimal texts, null where undefined.
[[nodiscard]] nlohmann::ordered_json statisticsJson(const core::Profile& profile);

// Random rolls as texts, null for an undefined roll.
[[nodiscard]] nlohmann::ordered_json rollsJson(const std::vector<core::Evaluation>& rolls);

}  // namespace talvex::cli
