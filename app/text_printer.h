#pragma once

#include <string_view>

#include "core/styled_text.h"

namespace talvex::app {

// A text view as a printer sees it: its storage, and a way to show its beginning.
class TextOutput {
  public:
    virtual ~TextOutput() = default;
    [[nodiscard]] virtual core::StyledText& textStorage() = 0;
    virtual void scrollToTopLeft() = 0;
};

// A cursor over a text view's storage: it inserts text at its print position and moves the
// position behind what it wrote. Positions are byte offsets into the UTF-8 text.
class TextPrinter {
  public:
    TextPrinter() = default;
    explicit TextPrinter(TextOutput* text) { setText(text); }

    [[nodiscard]] static TextPrinter printerWithText(TextOutput* text) { return TextPrinter(text); }

    // Makes the view the output and puts the print position at the end of its text.
    void setText(TextOutput* text);
    [[nodiscard]] TextOutput* outputText() const noexcept { return m_outputText; }

    [[nodiscard]] long printIndex() const noexcept { return m_printIndex; }
    // Clamped to the text: below 0 is 0, beyond the end is the end.
    void setPrintIndex(long index);

    void printString(std::string_view text);
    void printLineWithString(std::string_view text);
    void printStringAtTop(std::string_view text);
    void printTopLineWithString(std::string_view text);
    // A null text changes nothing.
    void printAttributedString(const core::StyledText* text);
    void printAttributedStringAtTop(const core::StyledText* text);

  private:
    [[nodiscard]] long length() const;
    void scrollToTop();

    TextOutput* m_outputText = nullptr;
    long m_printIndex = 0;
};

}  // namespace talvex::app
