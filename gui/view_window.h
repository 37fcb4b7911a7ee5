#pragma once

#include <QWidget>

#include "core/styled_text.h"

class QTextEdit;

namespace talvex::gui {

// The scrollable twin of a display field in a window of its own, for reports taller or wider
// than the field. The expression's view is editable, for long expressions, with "Roll" and
// "Cancel" buttons.
class ViewWindow final : public QWidget {
    Q_OBJECT

  public:
    ViewWindow(const QString& title, bool editable, QWidget* parent);

    // Replaces the content and scrolls to the top-left corner.
    void setStyledText(const core::StyledText& text);
    [[nodiscard]] QString plainText() const;
    [[nodiscard]] QTextEdit* editor() const { return m_editor; }

  signals:
    void rollRequested();
    void cancelRequested();

  private:
    QTextEdit* m_editor = nullptr;
};

}  // namespace talvex::gui
