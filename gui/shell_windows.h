#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <string>

#include "app/ports.h"

class QDialog;
class QLabel;
class QTabWidget;
class QWidget;

namespace talvex::gui {

class MainWindow;

// The application around the main window: the about and help windows, the links area and the
// end of the run. Ending is only asked for here (terminating()); whoever runs the event loop
// decides how, so that a request during launch, before the loop runs, is not lost.
class ShellWindows final : public QObject, public app::ApplicationShell {
    Q_OBJECT

  public:
    explicit ShellWindows(MainWindow& window);

    // app::ApplicationShell
    void terminate() override;
    void setAboutVersionText(const std::string& text) override;
    void selectHelpTab(const std::string& label) override;
    void showLinks(bool shown, const std::string& menuItemTitle) override;

    [[nodiscard]] bool terminationRequested() const noexcept { return m_terminationRequested; }
    // Created on first use, owned by the main window.
    [[nodiscard]] QDialog& aboutWindow();
    [[nodiscard]] QWidget& helpWindow();

  public slots:
    void showAbout();
    void showHelp();

  signals:
    // The controller asked the application to end.
    void terminating();

  private:
    void applyHelpTab();

    MainWindow& m_window;
    bool m_terminationRequested = false;
    QString m_versionText;
    QString m_helpTab = QStringLiteral("Overview");
    QPointer<QDialog> m_about;
    QPointer<QLabel> m_aboutVersion;
    QPointer<QWidget> m_help;
    QPointer<QTabWidget> m_helpTabs;
};

}  // namespace talvex::gui
