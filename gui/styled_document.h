#pragma once

#include <QFont>
#include <QString>
#include <QTextDocument>
#include <string>

#include "core/styled_text.h"

namespace talvex::gui {

// Replaces the document's content with the styled text: each run in its foreground colour, and
// each paragraph centred when its first character asks for centring (as a paragraph style
// applies to a whole paragraph). Only the first kMaxShownCharacters (to a whole line) are
// shown, with a last line that says how many more there are.
void writeStyledText(QTextDocument& document, const core::StyledText& text);

inline constexpr std::size_t kMaxShownCharacters = 200'000;

// The font of every report: reports line up their columns with blanks and tabs.
[[nodiscard]] QFont reportFont();

// Tab stops every `columns` characters of the font. Eleven puts every value of the statistics
// block, whose labels end with one or two tabs, in one column.
inline constexpr int kTabStopColumns = 11;
void useReportTabStops(QTextDocument& document, const QFont& font);

[[nodiscard]] inline QString toQString(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace talvex::gui
