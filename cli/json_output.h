#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "core/evaluation.h"
#include "core/profile.h"
#include "expressions/diagnostics.h"

namespace talvex::cli {

// Writes one expression's result as one line of JSON (JSON Lines): its text, comparator, total
// weight and outcomes (in the profile's own order, the undefined one first), then the
// statistics and, when `rolls` is given, the rolls; every number as plain decimal text, null
// where undefined. Text that is not valid UTF-8 is shown with replacement characters.
//
// The line is written as it is produced, a block at a time, so that a profile of a million
// outcomes never stands in memory as a document. Whatever can fail is worked out before the
// first byte goes out: a result that cannot be written leaves no half line behind.
//
// Beside the result the line tells what it knows of the text as typed: its "label" after the
// "expression" (the text before the first ':', blanks trimmed; absent when there is none), and
// at the end the "diagnostics" array of the findings (absent when there are none).
void writeResultJson(std::ostream& out, const std::string& expression, const core::Profile& profile,
                     const std::vector<core::Evaluation>* rolls, std::string_view typed,
                     const std::vector<language::Finding>& findings);

// Writes the line of an expression that could not be calculated: its "expression", "label",
// the "error" that stopped it and its "diagnostics", each as in writeResultJson.
void writeFailureJson(std::ostream& out, const std::string& expression, const std::string& error,
                      std::string_view typed, const std::vector<language::Finding>& findings);

// The label of a typed text: what stands before its first ':', without the blanks around it;
// nothing when there is no ':' or only blanks before it.
[[nodiscard]] std::optional<std::string> labelOf(std::string_view typed);

}  // namespace talvex::cli
