#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace talvex::app {

// Whether the bytes are well-formed UTF-8: no overlong forms, surrogates or values past
// U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view text);

// Mac OS Roman, the encoding of lists written on the classic Mac, following Apple's own mapping
// (0xC6 is U+2206 INCREMENT, 0xF0 the Apple logo U+F8FF). Line endings pass through untouched.

// Nothing when the text is not valid UTF-8 or holds a character Mac OS Roman cannot represent:
// characters are never approximated or dropped.
[[nodiscard]] std::optional<std::string> macRomanFromUtf8(std::string_view utf8);

// Every byte stands for a character, so this fails only when the converter itself does.
[[nodiscard]] std::optional<std::string> utf8FromMacRoman(std::string_view bytes);

}  // namespace talvex::app
