#include "gui/styled_document.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextOption>
#include <string_view>

namespace talvex::gui {

namespace {

QTextCharFormat charFormat(const std::optional<core::TextAttributes>& attributes) {
    QTextCharFormat format;
    if (attributes) {
        const core::Color& c = attributes->foreground;
        format.setForeground(QColor(c.red, c.green, c.blue));
    }
    return format;
}

Qt::Alignment alignmentOf(const std::optional<core::TextAttributes>& attributes) {
    return attributes && attributes->alignment == core::Alignment::Center ? Qt::AlignHCenter
                                                                          : Qt::AlignLeft;
}

}  // namespace

void writeStyledText(QTextDocument& document, const core::StyledText& text) {
    document.clear();
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    // A report of a million outcomes runs to megabytes (its mode alone lists every value);
    // laying that out would keep the window busy for many seconds, so a text view shows its
    // beginning, up to a whole line, and says how much it leaves out.
    std::string_view all = text.string();
    std::size_t leftOut = 0;
    if (all.size() > kMaxShownCharacters) {
        // At the end of a line when one ends near the limit; inside a very long line (a mode of
        // a million values) at the limit, never inside a UTF-8 character.
        const std::size_t lineEnd = all.rfind('\n', kMaxShownCharacters);
        std::size_t cut = kMaxShownCharacters;
        if (lineEnd != std::string_view::npos && kMaxShownCharacters - lineEnd < 2000) {
            cut = lineEnd + 1;
        }
        while (cut > 0 && (static_cast<unsigned char>(all[cut]) & 0xC0U) == 0x80U) {
            --cut;
        }
        leftOut = all.size() - cut;
        all = all.substr(0, cut);
    }
    bool paragraphStart = true;
    const auto write = [&](std::string_view piece,
                           const std::optional<core::TextAttributes>& attributes) {
        const QTextCharFormat format = charFormat(attributes);
        while (!piece.empty()) {
            if (paragraphStart) {
                QTextBlockFormat block = cursor.blockFormat();
                block.setAlignment(alignmentOf(attributes));
                cursor.setBlockFormat(block);
                paragraphStart = false;
            }
            const std::size_t lineEnd = piece.find('\n');
            const std::string_view line = piece.substr(0, lineEnd);
            if (!line.empty()) {
                cursor.insertText(
                    QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())), format);
            }
            if (lineEnd == std::string_view::npos) {
                return;
            }
            cursor.insertBlock(QTextBlockFormat(), format);
            paragraphStart = true;
            piece.remove_prefix(lineEnd + 1);
        }
    };
    std::size_t written = 0;
    for (const core::StyledRun& run : text.runs()) {
        if (run.start >= all.size()) {
            break;
        }
        if (run.start > written) {
            write(all.substr(written, run.start - written), std::nullopt);
        }
        write(all.substr(run.start, run.length), run.attributes);
        written = std::min(run.start + run.length, all.size());
    }
    if (written < all.size()) {
        write(all.substr(written), std::nullopt);
    }
    if (leftOut > 0) {
        const std::string note = "\n… " + std::to_string(leftOut) + " more characters not shown.";
        write(note, std::nullopt);
    }
    cursor.endEditBlock();
}

QFont reportFont() { return QFontDatabase::systemFont(QFontDatabase::FixedFont); }

void useReportTabStops(QTextDocument& document, const QFont& font) {
    QTextOption option = document.defaultTextOption();
    option.setTabStopDistance(QFontMetricsF(font).horizontalAdvance(QLatin1Char('0')) *
                              kTabStopColumns);
    document.setDefaultTextOption(option);
}

}  // namespace talvex::gui
