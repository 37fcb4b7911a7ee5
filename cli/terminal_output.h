#pragma once

#include <string>

#include "core/styled_text.h"

namespace talvex::cli {

// The text with each styled run in its 24-bit foreground colour (ANSI escape sequences), or
// the plain characters when `colour` is off. Alignment has no meaning in a terminal stream.
[[nodiscard]] std::string terminalText(const core::StyledText& text, bool colour);

// Whether to colour: "always", "never", or "auto" (a terminal, and NO_COLOR not set).
[[nodiscard]] bool shouldColour(const std::string& mode, bool isTerminal, bool noColourSet);

}  // namespace talvex::cli
