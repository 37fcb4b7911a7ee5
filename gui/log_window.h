#pragma once

#include <QWidget>

#include "app/ports.h"
#include "core/styled_text.h"

class QTextEdit;

namespace talvex::gui {

// The log window ("logPanel"): the whole log in "logField", newest entry first, with buttons to
// clear it ("clearLogButton"), to put a time-stamped copy into the lists folder
// ("exportLogButton") and to print it ("printLogButton"). A closed window only remembers the
// log and draws it when it opens, so a long log costs nothing while nobody looks.
class LogWindow final : public QWidget, public app::LogWindow {
    Q_OBJECT

  public:
    explicit LogWindow(QWidget* parent);

    void redraw(const core::StyledText& log) override;
    void scrollToTop() override;

    [[nodiscard]] QTextEdit* field() const { return m_field; }

  signals:
    void clearRequested();
    void exportRequested();
    void printRequested();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void draw();

    QTextEdit* m_field = nullptr;
    core::StyledText m_text;
    bool m_stale = true;
};

}  // namespace talvex::gui
