#pragma once

// The exit statuses of talvex-cli. --help lists them from this table, so a status added here
// is documented where it is defined. When several apply, the gravest is given, in the order of
// kExitPrecedence: a usage error stops everything, Ctrl-C stops what was asked, a calculation
// that failed leaves a result missing, and an error finding only says a result is suspect.

#include <array>
#include <string_view>

namespace talvex::cli {

constexpr int kExitSuccess = 0;
constexpr int kExitUsage = 2;
constexpr int kExitCalculationFailed = 3;
// The diagnostics pass found an error in an expression; all of them were calculated.
constexpr int kExitErrorFinding = 4;
// What shells report for a program that SIGINT ended; RequestWatch uses the same.
constexpr int kExitInterrupted = 130;

struct ExitStatus {
    int status;
    std::string_view meaning;
};

constexpr std::array<ExitStatus, 5> kExitStatuses = {{
    {kExitSuccess,
     "all calculated, none with an error finding; also after --help, --version, --list-options"},
    {kExitUsage,
     "usage error (unknown or malformed option, unknown report option, repeated divider)"},
    {kExitCalculationFailed,
     "an expression could not be calculated (named on standard error); the others were"},
    {kExitErrorFinding,
     "all calculated, but the diagnostics found an error in one (unless --no-diagnostics)"},
    {kExitInterrupted,
     "Ctrl-C cancelled an expression (the others were still calculated) or ended the program"},
}};

// The statuses that may apply together, the one given first.
constexpr std::array<int, 4> kExitPrecedence = {kExitUsage, kExitInterrupted,
                                                kExitCalculationFailed, kExitErrorFinding};

}  // namespace talvex::cli
