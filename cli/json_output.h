#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "core/evaluation.h"
#include "core/profile.h"

namespace talvex::cli {

// Writes one expression's result as one line of JSON (JSON Lines): its text, comparator, total
// weight and outcomes (in the profile's own order, the undefined one first), then the
// statistics and, when `rolls` is given, the rolls; every number as plain decimal text, null
// where undefined. Text that is not valid UTF-8 is shown with replacement characters.
//
// The line is written as it is produced, a block at a time, so that a profile of a million
// outcomes never stands in memory as a document. Whatever can fail is worked out before the
// first byte goes out: a result that cannot be written leaves no half line behind.
void writeResultJson(std::ostream& out, const std::string& expression, const core::Profile& profile,
                     const std::vector<core::Evaluation>* rolls);

}  // namespace talvex::cli
