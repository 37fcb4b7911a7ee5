#pragma once

// The exit statuses of talvex-cli. --help lists them from this table, so a status added here
// is documented where it is defined.

#include <array>
#include <string_view>

namespace talvex::cli {

constexpr int kExitSuccess = 0;
constexpr int kExitUsage = 2;
constexpr int kExitCalculationFailed = 3;
// What shells report for a program that SIGINT ended; RequestWatch uses the same.
constexpr int kExitInterrupted = 130;

struct ExitStatus {
    int status;
    std::string_view meaning;
};

constexpr std::array<ExitStatus, 4> kExitStatuses = {{
    {kExitSuccess, "every expression was calculated; also after --help, --version, --list-options"},
    {kExitUsage,
     "usage error (unknown or malformed option, unknown report option, repeated divider)"},
    {kExitCalculationFailed,
     "an expression could not be calculated (named on standard error); the others were"},
    {kExitInterrupted,
     "Ctrl-C cancelled an expression (the others were still calculated) or ended the program"},
}};

}  // namespace talvex::cli
