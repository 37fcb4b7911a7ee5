#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/styled_text.h"

namespace talvex::cli {

// The text with each styled run in its 24-bit foreground colour (ANSI escape sequences), or
// the plain characters when `colour` is off. Black and dark greys are written in the
// terminal's own foreground colour instead, so that they read on dark backgrounds too.
// Alignment has no meaning in a terminal stream. Either way the text is made terminalSafe,
// keeping the report's tabs and line breaks.
[[nodiscard]] std::string terminalText(const core::StyledText& text, bool colour);

// Whether to colour: "always", "never", or "auto" (a terminal, and NO_COLOR not set).
[[nodiscard]] bool shouldColour(const std::string& mode, bool isTerminal, bool noColourSet);

// The text with every control character (C0, DEL and C1) and every byte that is not part of
// valid UTF-8 replaced by U+FFFD, so that no typed text reaches a terminal as a command. Tab
// and line feed are kept when `keepLayout`.
[[nodiscard]] std::string terminalSafe(std::string_view text, bool keepLayout);

// The bytes of the first character of a non-empty text as terminalSafe reads it: a valid
// UTF-8 sequence, or else the one byte, which it shows as a U+FFFD of its own.
[[nodiscard]] std::size_t characterLength(std::string_view text);

// Whether a foreground is black or a dark grey, which would vanish on a dark background.
[[nodiscard]] bool isNearBlack(const core::Color& colour);

}  // namespace talvex::cli
