#pragma once

#include "app/ports.h"

class QWidget;

namespace talvex::gui {

// Alerts as application-modal message boxes: the message, the informative text, the default
// and the alternate button ("defaultButton", "alternateButton") and, when offered, the check
// box "Preserve expression lists and log" ("preserveCheckBox").
class MessageBoxAlerts final : public app::Alerts {
  public:
    // The alert is centred over the window while the window is shown.
    explicit MessageBoxAlerts(QWidget& window) : m_window(window) {}

    [[nodiscard]] app::AlertAnswer runAlert(const app::AlertRequest& request) override;

  private:
    QWidget& m_window;
};

}  // namespace talvex::gui
