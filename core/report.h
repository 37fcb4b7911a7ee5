#pragma once

#include <ctime>
#include <string>

#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core {

// The report of one profile: header, time stamp, title, statistics, table, diagram, legend,
// roll, past rolls and footer, each switched on by its option. Options are repaired first;
// none at all gives empty text. Drawing the roll records it in the profile's history, which
// is why the profile is not const. `now` is the time stamp's time.
[[nodiscard]] StyledText attributedProfileStringWithOptions(Profile& profile,
                                                            const Options* options,
                                                            const Styles& styles,
                                                            std::time_t now = std::time(nullptr));

// The statistics block alone, with options already repaired.
[[nodiscard]] StyledText statisticsWithOptions(const Profile& profile, const Options& options,
                                               const Styles& styles);

// The time stamp text for a strftime format.
[[nodiscard]] std::string timeStampString(const std::string& format, std::time_t now);

}  // namespace talvex::core
