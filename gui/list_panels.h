#pragma once

#include <QWidget>

#include "app/ports.h"

namespace talvex::gui {

// The modal panels of the expression lists as Qt dialogues. Object names for the tests:
// "expressionsPanel" (with "loadExpressionsField", "loadButton", "closeButton"), "saveAsPanel"
// ("saveAsNameField", "saveAsExpressionsField", "saveButton", "cancelButton") and
// "listsFolderPanel" ("currentFolderField", "newFolderField", "changeButton", "defaultButton",
// "reloadButton", "chooseButton", "cancelButton").
class DialogListPanels final : public app::ListPanels {
  public:
    explicit DialogListPanels(QWidget& parent) : m_parent(parent) {}

    [[nodiscard]] bool runExpressionsPanel(std::string& text) override;
    void runSaveAsPanel(app::SaveAsFields& fields,
                        const std::function<bool(app::SaveAsFields&)>& save) override;
    void runListsFolderPanel(
        app::FolderFields& fields,
        const std::function<bool(app::FolderButton, app::FolderFields&)>& press) override;

  private:
    QWidget& m_parent;
};

}  // namespace talvex::gui
