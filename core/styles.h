#pragma once

#include <functional>
#include <map>
#include <string>

#include "core/styled_text.h"

namespace talvex::core {

// Style name -> the attributes of that style.
using Styles = std::map<std::string, TextAttributes, std::less<>>;

// The 21 styles of the reports: titles, headings, items, statistics, weights, bars, legend
// keys, the roll (centred) and so on.
[[nodiscard]] const Styles& defaultStyles();

}  // namespace talvex::core
