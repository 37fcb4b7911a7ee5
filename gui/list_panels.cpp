#include "gui/list_panels.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/styled_document.h"

namespace talvex::gui {

namespace {

QPlainTextEdit* expressionsEditor(QWidget* parent, const char* name, const std::string& text) {
    auto* editor = new QPlainTextEdit(parent);
    editor->setObjectName(QString::fromLatin1(name));
    editor->setFont(reportFont());
    editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    editor->setPlainText(toQString(text));
    return editor;
}

QPushButton* button(QWidget* parent, const QString& title, const char* name) {
    auto* made = new QPushButton(title, parent);
    made->setObjectName(QString::fromLatin1(name));
    made->setAutoDefault(false);
    return made;
}

}  // namespace

bool DialogListPanels::runExpressionsPanel(std::string& text) {
    QDialog dialog(&m_parent);
    dialog.setObjectName(QStringLiteral("expressionsPanel"));
    dialog.setWindowTitle(QStringLiteral("Expressions"));
    auto* layout = new QVBoxLayout(&dialog);
    auto* hint = new QLabel(
        QStringLiteral("One expression after another, each ended by a backslash (\\). A label "
                       "before a colon names an expression: Attack: 1d20+5"),
        &dialog);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    QPlainTextEdit* editor = expressionsEditor(&dialog, "loadExpressionsField", text);
    layout->addWidget(editor);
    auto* buttons = new QHBoxLayout;
    QPushButton* close = button(&dialog, QStringLiteral("Close"), "closeButton");
    QPushButton* load = button(&dialog, QStringLiteral("Load"), "loadButton");
    load->setDefault(true);
    buttons->addStretch();
    buttons->addWidget(close);
    buttons->addWidget(load);
    layout->addLayout(buttons);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::reject);
    QObject::connect(load, &QPushButton::clicked, &dialog, &QDialog::accept);
    dialog.resize(520, 420);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    text = editor->toPlainText().toStdString();
    return true;
}

void DialogListPanels::runSaveAsPanel(app::SaveAsFields& fields,
                                      const std::function<bool(app::SaveAsFields&)>& save) {
    QDialog dialog(&m_parent);
    dialog.setObjectName(QStringLiteral("saveAsPanel"));
    dialog.setWindowTitle(QStringLiteral("Save List As"));
    auto* layout = new QVBoxLayout(&dialog);
    auto* form = new QFormLayout;
    auto* name = new QLineEdit(toQString(fields.name), &dialog);
    name->setObjectName(QStringLiteral("saveAsNameField"));
    form->addRow(QStringLiteral("List name:"), name);
    layout->addLayout(form);
    QPlainTextEdit* editor =
        expressionsEditor(&dialog, "saveAsExpressionsField", fields.expressions);
    layout->addWidget(editor);
    auto* buttons = new QHBoxLayout;
    QPushButton* cancel = button(&dialog, QStringLiteral("Cancel"), "cancelButton");
    QPushButton* saveButton = button(&dialog, QStringLiteral("Save"), "saveButton");
    saveButton->setDefault(true);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(saveButton);
    layout->addLayout(buttons);
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    QObject::connect(saveButton, &QPushButton::clicked, &dialog, [&] {
        fields.name = name->text().toStdString();
        fields.expressions = editor->toPlainText().toStdString();
        const bool done = save(fields);
        // The answer may have changed what the panel shows ("Enter a name").
        name->setText(toQString(fields.name));
        if (done) {
            dialog.accept();
        } else {
            dialog.raise();
            dialog.activateWindow();
            name->setFocus();
        }
    });
    dialog.resize(480, 380);
    dialog.exec();
}

void DialogListPanels::runListsFolderPanel(
    app::FolderFields& fields,
    const std::function<bool(app::FolderButton, app::FolderFields&)>& press) {
    QDialog dialog(&m_parent);
    dialog.setObjectName(QStringLiteral("listsFolderPanel"));
    dialog.setWindowTitle(QStringLiteral("Expression Lists Folder"));
    auto* layout = new QVBoxLayout(&dialog);
    auto* form = new QFormLayout;
    auto* current = new QLineEdit(toQString(fields.currentFolder), &dialog);
    current->setObjectName(QStringLiteral("currentFolderField"));
    current->setReadOnly(true);
    auto* chosen = new QLineEdit(toQString(fields.newFolder), &dialog);
    chosen->setObjectName(QStringLiteral("newFolderField"));
    QPushButton* choose = button(&dialog, QStringLiteral("Choose..."), "chooseButton");
    auto* chosenRow = new QHBoxLayout;
    chosenRow->addWidget(chosen);
    chosenRow->addWidget(choose);
    form->addRow(QStringLiteral("Current folder:"), current);
    form->addRow(QStringLiteral("New folder:"), chosenRow);
    layout->addLayout(form);
    auto* buttons = new QHBoxLayout;
    QPushButton* defaults = button(&dialog, QStringLiteral("Default"), "defaultButton");
    QPushButton* reload = button(&dialog, QStringLiteral("Reload"), "reloadButton");
    QPushButton* cancel = button(&dialog, QStringLiteral("Cancel"), "cancelButton");
    QPushButton* change = button(&dialog, QStringLiteral("Change"), "changeButton");
    change->setDefault(true);
    buttons->addWidget(defaults);
    buttons->addWidget(reload);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(change);
    layout->addLayout(buttons);

    const auto answer = [&](app::FolderButton which) {
        fields.newFolder = chosen->text().toStdString();
        const bool done = press(which, fields);
        current->setText(toQString(fields.currentFolder));
        chosen->setText(toQString(fields.newFolder));
        if (done) {
            dialog.accept();
        }
    };
    QObject::connect(change, &QPushButton::clicked, &dialog,
                     [&] { answer(app::FolderButton::change); });
    QObject::connect(defaults, &QPushButton::clicked, &dialog,
                     [&] { answer(app::FolderButton::defaultFolder); });
    QObject::connect(reload, &QPushButton::clicked, &dialog,
                     [&] { answer(app::FolderButton::reload); });
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    QObject::connect(choose, &QPushButton::clicked, &dialog, [&] {
        const QString folder = QFileDialog::getExistingDirectory(
            &dialog, QStringLiteral("Choose the Expression Lists Folder"), current->text());
        if (!folder.isEmpty()) {
            chosen->setText(folder);
        }
    });
    dialog.resize(560, 150);
    dialog.exec();
}

}  // namespace talvex::gui
