#pragma once

#include <QWidget>

#include "app/ports.h"

namespace talvex::gui {

// The open and save dialogues, as Qt's own file dialogues (object name "fileDialog") with the
// message shown above the files.
class QtFileDialogs final : public app::FileDialogs {
  public:
    explicit QtFileDialogs(QWidget& parent) : m_parent(parent) {}

    [[nodiscard]] std::vector<std::string> runOpenPanel(
        const app::OpenDialogRequest& request) override;
    [[nodiscard]] std::optional<std::string> runSavePanel(
        const app::SaveDialogRequest& request) override;

  private:
    QWidget& m_parent;
};

}  // namespace talvex::gui
