#include "gui/diagnostics_bar.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextCharFormat>
#include <QVBoxLayout>
#include <string>

namespace talvex::gui {

namespace {

const QColor kErrorColour(176, 0, 32);
const QColor kWarningColour(150, 90, 0);

// The findings' ranges are bytes of the UTF-8 text; the field counts UTF-16 units.
int fieldPosition(const std::string& text, std::size_t byte) {
    return static_cast<int>(
        QString::fromUtf8(text.data(), static_cast<qsizetype>(std::min(byte, text.size()))).size());
}

}  // namespace

DiagnosticsBar::DiagnosticsBar(QLineEdit* field, QWidget* parent)
    : QWidget(parent), m_field(field), m_rows(new QVBoxLayout(this)) {
    setObjectName(QStringLiteral("diagnosticsBar"));
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(2);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPauseMilliseconds);
    connect(&m_pause, &QTimer::timeout, this, &DiagnosticsBar::refresh);
    // Every change, typed or written by the program (the pop-ups, the history, a suggestion),
    // is looked at once the typing pauses; the old underlines no longer fit the text at once.
    connect(m_field, &QLineEdit::textChanged, this, [this] {
        underline({});
        m_pause.start();
    });
    hide();
}

void DiagnosticsBar::clearRows() {
    while (QLayoutItem* item = m_rows->takeAt(0)) {
        if (QLayout* row = item->layout()) {
            while (QLayoutItem* inner = row->takeAt(0)) {
                delete inner->widget();
                delete inner;
            }
        }
        delete item->widget();
        delete item;
    }
}

void DiagnosticsBar::refresh() {
    const std::string text = m_field->text().toStdString();
    const app::TypingDiagnostics shown = app::diagnoseTyping(text);
    clearRows();
    for (std::size_t i = 0; i < shown.lines.size(); ++i) {
        const app::FindingLine& line = shown.lines[i];
        auto* row = new QHBoxLayout;
        auto* label = new QLabel(QString::fromStdString(line.text));
        label->setObjectName(QStringLiteral("finding%1").arg(i));
        label->setTextFormat(Qt::PlainText);
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, line.isError ? kErrorColour : kWarningColour);
        label->setPalette(palette);
        row->addWidget(label);
        if (!line.correctedText.empty()) {
            auto* apply = new QPushButton(QString::fromStdString(line.suggestionLabel));
            apply->setObjectName(QStringLiteral("applySuggestion%1").arg(i));
            apply->setFlat(true);
            apply->setCursor(Qt::PointingHandCursor);
            apply->setToolTip(QStringLiteral("Write this into the expression field"));
            apply->setStyleSheet(QStringLiteral(
                "QPushButton { color: palette(link); text-decoration: underline; border: none;"
                " padding: 0px 4px; text-align: left; }"));
            const QString corrected = QString::fromStdString(line.correctedText);
            connect(apply, &QPushButton::clicked, this, [this, corrected] {
                m_field->setText(corrected);
                m_field->setFocus();
            });
            row->addWidget(apply);
        }
        row->addStretch(1);
        m_rows->addLayout(row);
    }
    if (shown.notShown > 0) {
        auto* more = new QLabel(QStringLiteral("… and %1 more").arg(shown.notShown));
        more->setObjectName(QStringLiteral("findingsNotShown"));
        m_rows->addWidget(more);
    }
    setVisible(!shown.lines.empty());
    underline(shown.lines);
}

void DiagnosticsBar::underline(const std::vector<app::FindingLine>& lines) {
    // A line edit has no rich text, but takes text formats through an input-method event
    // that neither commits nor pre-edits anything; its positions count from the cursor.
    const std::string text = m_field->text().toStdString();
    const int cursor = m_field->cursorPosition();
    QList<QInputMethodEvent::Attribute> formats;
    for (const app::FindingLine& line : lines) {
        const int begin = fieldPosition(text, line.begin);
        const int end = std::max(fieldPosition(text, line.end), begin + 1);
        QTextCharFormat format;
        format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        format.setUnderlineColor(line.isError ? kErrorColour : kWarningColour);
        formats.append(QInputMethodEvent::Attribute(QInputMethodEvent::TextFormat, begin - cursor,
                                                    end - begin, format));
    }
    QInputMethodEvent event(QString(), formats);
    QCoreApplication::sendEvent(m_field, &event);
}

}  // namespace talvex::gui
