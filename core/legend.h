#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core {

// The operand texts of a comparison title: the pieces between top-level occurrences of the
// comparator, exactly as they stand (nothing trimmed).
[[nodiscard]] std::vector<std::string> legendOperands(std::string_view title,
                                                      std::string_view comparator);

// Explains the outcome codes of a comparison profile: one line per code, naming the operands
// it stands for. Reads the profile's title and comparator; an unknown or empty comparator
// gives empty text, and so do missing options.
[[nodiscard]] StyledText legendWithOptions(const Profile& profile, const Options* options,
                                           const Styles& styles);

}  // namespace talvex::core
