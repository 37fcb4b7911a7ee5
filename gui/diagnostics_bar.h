#pragma once

#include <QTimer>
#include <QWidget>
#include <vector>

#include "app/typing_diagnostics.h"

class QLineEdit;
class QVBoxLayout;

namespace talvex::gui {

// Under the expression field: what is probably wrong with the text being typed, shown after a
// short pause in the typing, with the offending characters underlined in the field and each
// suggestion a button that writes it. It only reads the field: the calculation itself runs
// as it always does.
//
// Object names for the tests: "diagnosticsBar", "finding0", "finding1", ... and
// "applySuggestion0", ... for the buttons.
class DiagnosticsBar final : public QWidget {
    Q_OBJECT

  public:
    // The pause after the last keystroke before the findings are looked for.
    static constexpr int kPauseMilliseconds = 400;

    explicit DiagnosticsBar(QLineEdit* field, QWidget* parent = nullptr);

  private:
    void refresh();
    void clearRows();
    // Underlines the findings' characters in the field (none for an empty list).
    void underline(const std::vector<app::FindingLine>& lines);

    QLineEdit* m_field;
    QTimer m_pause;
    QVBoxLayout* m_rows;
};

}  // namespace talvex::gui
