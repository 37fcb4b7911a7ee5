#pragma once

#include <string>

namespace talvex::cli {

// The dice letters, one line each.
[[nodiscard]] std::string diceLetterHelpText();

// The comparators, one line each, with the codes their results carry.
[[nodiscard]] std::string comparatorHelpText();

// Where the reported numbers differ from what a textbook would print.
[[nodiscard]] std::string statisticsHelpText();

// How the findings of the diagnostics pass are told.
[[nodiscard]] std::string diagnosticsHelpText();

// The exit statuses, one line each.
[[nodiscard]] std::string exitStatusHelpText();

}  // namespace talvex::cli
