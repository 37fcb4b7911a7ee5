#include "app/text_printer.h"

#include <algorithm>
#include <string>

namespace talvex::app {

void TextPrinter::setText(TextOutput* text) {
    m_outputText = text;
    m_printIndex = length();
}

long TextPrinter::length() const {
    return m_outputText == nullptr ? 0
                                   : static_cast<long>(m_outputText->textStorage().string().size());
}

void TextPrinter::setPrintIndex(long index) { m_printIndex = std::clamp(index, 0L, length()); }

void TextPrinter::printString(std::string_view text) {
    const core::StyledText plain{std::string(text)};
    printAttributedString(&plain);
}

void TextPrinter::printLineWithString(std::string_view text) {
    printString(std::string(text) + "\n");
}

void TextPrinter::printStringAtTop(std::string_view text) {
    m_printIndex = 0;
    printString(text);
    scrollToTop();
}

void TextPrinter::printTopLineWithString(std::string_view text) {
    printStringAtTop(std::string(text) + "\n");
}

void TextPrinter::printAttributedString(const core::StyledText* text) {
    if (text == nullptr || m_outputText == nullptr) {
        return;
    }
    // The position may be stale if someone else changed the text meanwhile.
    setPrintIndex(m_printIndex);
    m_outputText->textStorage().insert(static_cast<std::size_t>(m_printIndex), *text);
    m_printIndex += static_cast<long>(text->string().size());
}

void TextPrinter::printAttributedStringAtTop(const core::StyledText* text) {
    m_printIndex = 0;
    printAttributedString(text);
    scrollToTop();
}

void TextPrinter::scrollToTop() {
    if (m_outputText != nullptr) {
        m_outputText->scrollToTopLeft();
    }
}

}  // namespace talvex::app
