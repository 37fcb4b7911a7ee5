#include "gui/view_window.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTextEdit>
#include <QVBoxLayout>

#include "gui/styled_document.h"

namespace talvex::gui {

ViewWindow::ViewWindow(const QString& title, bool editable, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    setWindowTitle(title);
    setObjectName(QStringLiteral("viewWindow"));
    auto* layout = new QVBoxLayout(this);
    m_editor = new QTextEdit(this);
    m_editor->setObjectName(QStringLiteral("viewEditor"));
    const QFont font = reportFont();
    m_editor->setFont(font);
    m_editor->document()->setDefaultFont(font);
    useReportTabStops(*m_editor->document(), font);
    m_editor->setLineWrapMode(editable ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
    m_editor->setReadOnly(!editable);
    m_editor->setAcceptRichText(false);
    m_editor->setUndoRedoEnabled(editable);
    layout->addWidget(m_editor);
    if (editable) {
        auto* buttons = new QDialogButtonBox(this);
        QPushButton* cancel =
            buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
        QPushButton* roll =
            buttons->addButton(QStringLiteral("Roll"), QDialogButtonBox::AcceptRole);
        cancel->setObjectName(QStringLiteral("viewCancelButton"));
        roll->setObjectName(QStringLiteral("viewRollButton"));
        // Ctrl+R rolls what is typed here, as it rolls the expression field in the main window.
        for (const QKeySequence& keys : {QKeySequence(QStringLiteral("Ctrl+R")),
                                         QKeySequence(QStringLiteral("Ctrl+Return"))}) {
            auto* shortcut = new QShortcut(keys, this);
            shortcut->setContext(Qt::WindowShortcut);
            connect(shortcut, &QShortcut::activated, this, &ViewWindow::rollRequested);
        }
        roll->setToolTip(QStringLiteral("Calculate this expression (Ctrl+R)"));
        connect(roll, &QPushButton::clicked, this, &ViewWindow::rollRequested);
        connect(cancel, &QPushButton::clicked, this, [this] {
            emit cancelRequested();
            hide();
        });
        layout->addWidget(buttons);
        resize(560, 220);
    } else {
        resize(640, 720);
    }
}

void ViewWindow::setStyledText(const core::StyledText& text) {
    writeStyledText(*m_editor->document(), text);
    m_editor->moveCursor(QTextCursor::Start);
    m_editor->verticalScrollBar()->setValue(0);
    m_editor->horizontalScrollBar()->setValue(0);
}

QString ViewWindow::plainText() const { return m_editor->toPlainText(); }

}  // namespace talvex::gui
