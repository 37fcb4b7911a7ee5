#pragma once

#include <QObject>
#include <QString>

#include "app/background_runner.h"

class QMainWindow;
class QProgressBar;
class QPushButton;

namespace talvex::gui {

// The main window while a calculation runs on the worker: the Roll button reads "Cancel", a
// progress bar in the status bar shows the share of the request's budget spent, and every key
// and click that would start something else is swallowed. Esc, the Cancel button and closing
// the window cancel the calculation.
class BusyState final : public QObject, public app::BusyWindow {
    Q_OBJECT

  public:
    // The window and its Roll button must outlive this.
    BusyState(QMainWindow& window, QPushButton& rollButton);

    // The runner to stop on Cancel; it must outlive this.
    void setRunner(app::BackgroundRunner& runner) noexcept { m_runner = &runner; }

    // app::BusyWindow
    void showBusy(bool busy) override;
    void showProgress(double share) override;
    void stayResponsiveUntil(const std::function<bool()>& finished,
                             const std::function<void()>& tick) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void cancel();

    QMainWindow& m_window;
    QPushButton& m_rollButton;
    QProgressBar* m_progress = nullptr;
    app::BackgroundRunner* m_runner = nullptr;
    QString m_rollText;
};

}  // namespace talvex::gui
