#pragma once

#include <string>
#include <string_view>

#include "core/decimal.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core {

// The plain text of a value rounded to `precision` places (halves away from zero), without
// trailing zeros; "NaN" for undefined.
[[nodiscard]] std::string decimalString(const Decimal& value, int precision);

// Appends report pieces in named styles. An unknown style name gives plain text.
class ReportWriter {
  public:
    explicit ReportWriter(const Styles& styles) : m_styles(&styles) {}

    // string:inStyle:
    void string(std::string_view text, std::string_view style);
    // decimalString:withPrecision:inStyle:
    void decimal(const Decimal& value, int precision, std::string_view style);
    // The word undefined in the "undefined" style.
    void undefined() { string("undefined", "undefined"); }
    // A number, or the word undefined when it is undefined.
    void decimalOrUndefined(const Decimal& value, int precision, std::string_view style);
    void append(const StyledText& text) { m_text.append(text); }

    [[nodiscard]] const StyledText& text() const noexcept { return m_text; }
    [[nodiscard]] StyledText take() { return std::move(m_text); }

  private:
    const Styles* m_styles;
    StyledText m_text;
};

}  // namespace talvex::core
