#pragma once

// The findings of the diagnostics pass as talvex-cli tells them on standard error, one line
// each in the style of a compiler:
//
//   talvex-cli: 1d20+5>=15: error at 7: '>' is not part of the language; for "at least" ...
//
// and, for a reader at a terminal, the text again with a caret line under the finding:
//
//     1d20+5>=15
//           ^

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "expressions/diagnostics.h"

namespace talvex::cli {

// "error" or "warning".
[[nodiscard]] std::string_view severityName(language::Severity severity);

// Where each character of a typed text starts, so that a byte offset becomes a column. A
// character is what terminalSafe shows as one: a valid UTF-8 sequence, or a byte that is not
// part of one.
class CharacterColumns {
  public:
    explicit CharacterColumns(std::string_view text);

    // The 1-based column of the character holding byte `byte`; one past the last character
    // for the end of the text.
    [[nodiscard]] std::size_t column(std::size_t byte) const;
    // The first byte of the character at the 0-based `index`; the text's size past the last.
    [[nodiscard]] std::size_t byteOf(std::size_t index) const;
    // The characters of the text.
    [[nodiscard]] std::size_t count() const noexcept { return m_starts.size(); }

  private:
    std::vector<std::size_t> m_starts;
    std::size_t m_size;
};

// Every finding of `text` as its lines, each ending in a line break. `name` is how the text is
// named at the start of the line (already safe for a terminal, and cut when long); columns
// count the characters of the whole text. With `showText`, each finding's line is followed by
// the text and a caret line: '^' under the first character of the range, '~' under the rest.
// Around a finding in a long text only a window of it is shown, its cut ends marked "...".
[[nodiscard]] std::string findingLines(std::string_view name, std::string_view text,
                                       const std::vector<language::Finding>& findings,
                                       bool showText);

}  // namespace talvex::cli
