#include "gui/log_window.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollBar>
#include <QTextEdit>
#include <QVBoxLayout>

#include "gui/styled_document.h"

namespace talvex::gui {

LogWindow::LogWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("logPanel"));
    setWindowTitle(QStringLiteral("Talvex Log"));
    auto* layout = new QVBoxLayout(this);
    m_field = new QTextEdit(this);
    m_field->setObjectName(QStringLiteral("logField"));
    m_field->setReadOnly(true);
    m_field->setLineWrapMode(QTextEdit::NoWrap);
    m_field->setFont(reportFont());
    layout->addWidget(m_field);

    auto* buttons = new QHBoxLayout;
    const auto addButton = [&](const QString& title, const char* name,
                               void (LogWindow::*signal)()) {
        auto* button = new QPushButton(title, this);
        button->setObjectName(QString::fromLatin1(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, signal);
        buttons->addWidget(button);
    };
    addButton(QStringLiteral("Clear Log"), "clearLogButton", &LogWindow::clearRequested);
    buttons->addStretch();
    addButton(QStringLiteral("Export to Lists Folder"), "exportLogButton",
              &LogWindow::exportRequested);
    addButton(QStringLiteral("Print..."), "printLogButton", &LogWindow::printRequested);
    layout->addLayout(buttons);
    resize(640, 720);
}

void LogWindow::redraw(const core::StyledText& log) {
    m_text = log;
    m_stale = true;
    if (isVisible()) {
        draw();
    }
}

void LogWindow::scrollToTop() {
    if (isVisible() && !m_stale) {
        m_field->verticalScrollBar()->setValue(0);
        m_field->horizontalScrollBar()->setValue(0);
    }
}

void LogWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_stale) {
        draw();
    }
}

void LogWindow::draw() {
    writeStyledText(*m_field->document(), m_text);
    useReportTabStops(*m_field->document(), m_field->font());
    m_stale = false;
    // The newest entry is at the top.
    m_field->verticalScrollBar()->setValue(0);
    m_field->horizontalScrollBar()->setValue(0);
}

}  // namespace talvex::gui
