#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace talvex::cli {

// Every report option, one per line: NAME=DEFAULT, then the values it takes.
[[nodiscard]] std::string optionListText();

// Whether the report options have an option of that name (exactly: the names are looked up as
// they are written).
[[nodiscard]] bool isReportOptionName(std::string_view name);

// The report option name nearest to `name` by edit distance, the first in report order among
// equally near ones.
[[nodiscard]] std::string nearestReportOptionName(std::string_view name);

// The number of single-byte insertions, deletions and substitutions that turn a into b.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

}  // namespace talvex::cli
