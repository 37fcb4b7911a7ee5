#include "gui/file_dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>

#include "gui/styled_document.h"

namespace talvex::gui {

namespace {

// Qt's own dialogue (not the platform's), so that the message can stand above the files and
// the tests can drive it.
void prepare(QFileDialog& dialog, const std::string& title, const std::string& message) {
    dialog.setObjectName(QStringLiteral("fileDialog"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setWindowTitle(toQString(title));
    if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout()); grid != nullptr) {
        auto* label = new QLabel(toQString(message), &dialog);
        label->setObjectName(QStringLiteral("fileDialogMessage"));
        label->setWordWrap(true);
        grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
    }
}

QString filterFor(const std::vector<std::string>& types) {
    QStringList patterns;
    for (const std::string& type : types) {
        patterns << QStringLiteral("*.") + toQString(type);
    }
    return QStringLiteral("Files (%1)").arg(patterns.join(QLatin1Char(' ')));
}

}  // namespace

std::vector<std::string> QtFileDialogs::runOpenPanel(const app::OpenDialogRequest& request) {
    QFileDialog dialog(&m_parent);
    prepare(dialog, request.title, request.message);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setNameFilter(filterFor(request.fileTypes));
    dialog.setDirectory(QDir::home());
    std::vector<std::string> chosen;
    if (dialog.exec() == QDialog::Accepted) {
        for (const QString& file : dialog.selectedFiles()) {
            chosen.push_back(file.toStdString());
        }
    }
    return chosen;
}

std::optional<std::string> QtFileDialogs::runSavePanel(const app::SaveDialogRequest& request) {
    QFileDialog dialog(&m_parent);
    prepare(dialog, request.title, request.message);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(filterFor({request.requiredType}));
    dialog.setDefaultSuffix(toQString(request.requiredType));
    dialog.setOption(QFileDialog::ShowDirsOnly, false);
    dialog.setOption(QFileDialog::ReadOnly, !request.canCreateDirectories);
    dialog.setDirectory(QDir::home());
    dialog.selectFile(toQString(request.proposedName + "." + request.requiredType));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    QString path = dialog.selectedFiles().constFirst();
    const QString suffix = QStringLiteral(".") + toQString(request.requiredType);
    if (!path.endsWith(suffix)) {
        path += suffix;
    }
    return path.toStdString();
}

}  // namespace talvex::gui
