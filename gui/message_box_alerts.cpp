#include "gui/message_box_alerts.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>

#include "gui/application_icon.h"
#include "gui/styled_document.h"

namespace talvex::gui {

app::AlertAnswer MessageBoxAlerts::runAlert(const app::AlertRequest& request) {
    // Before the window is shown (the crash notice at launch) the alert stands on its own.
    QMessageBox box(m_window.isVisible() ? &m_window : nullptr);
    box.setObjectName(QStringLiteral("alert"));
    box.setWindowTitle(QStringLiteral("Talvex"));
    box.setWindowModality(Qt::ApplicationModal);
    box.setIconPixmap(applicationIcon().pixmap(64, 64));
    box.setText(toQString(request.message));
    box.setInformativeText(toQString(request.informativeText));
    QPushButton* other = nullptr;
    if (!request.otherButton.empty()) {
        other = box.addButton(toQString(request.otherButton), QMessageBox::RejectRole);
        other->setObjectName(QStringLiteral("otherButton"));
    }
    QPushButton* alternate = nullptr;
    if (!request.alternateButton.empty()) {
        alternate = box.addButton(toQString(request.alternateButton), QMessageBox::DestructiveRole);
        alternate->setObjectName(QStringLiteral("alternateButton"));
    }
    QPushButton* standard =
        box.addButton(toQString(request.defaultButton), QMessageBox::AcceptRole);
    standard->setObjectName(QStringLiteral("defaultButton"));
    box.setDefaultButton(standard);
    // Escape chooses the safe answer: Cancel where there is one.
    box.setEscapeButton(other != nullptr ? other : standard);
    if (request.offersPreserveListsAndLog) {
        auto* preserve = new QCheckBox(QStringLiteral("Preserve expression lists and log"));
        preserve->setObjectName(QStringLiteral("preserveCheckBox"));
        box.setCheckBox(preserve);
    }
    box.exec();

    app::AlertAnswer answer;
    const QAbstractButton* clicked = box.clickedButton();
    if (clicked != nullptr && clicked == alternate) {
        answer.button = app::AlertButton::alternateButton;
    } else if (clicked != nullptr && clicked == other) {
        answer.button = app::AlertButton::otherButton;
    } else {
        answer.button = app::AlertButton::defaultButton;
    }
    answer.preserveListsAndLog = box.checkBox() != nullptr && box.checkBox()->isChecked();
    return answer;
}

}  // namespace talvex::gui
