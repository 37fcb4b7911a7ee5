#pragma once

#include <string>

namespace talvex::cli {

// The closing part of --help: every named function with one line on what it gives.
[[nodiscard]] std::string functionHelpText();

}  // namespace talvex::cli
