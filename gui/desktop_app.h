#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>

#include "app/background_runner.h"
#include "app/controller/talvex_controller.h"
#include "app/defaults_store.h"
#include "app/file_system.h"
#include "app/local_clock.h"
#include "gui/settings_domain.h"

namespace talvex::gui {

class BusyState;
class DialogListPanels;
class DialogSettingsPanel;
class QtFileDialogs;
class QtPrintService;
class MainWindow;
class MessageBoxAlerts;
class SettingsDialog;
class ShellWindows;

// Names the application ("Corvessa", "Talvex"), so that QSettings and QStandardPaths find its
// folders, and gives it its icon. Once, after the QApplication exists.
void configureApplication();

// The "Sample Expressions" list the application ships, copied into the lists folder on the
// first run; none when the resource cannot be read.
[[nodiscard]] std::optional<std::string> sampleExpressions();

// The version of this build, "0.1.0".
[[nodiscard]] QString bundleVersion();

// The support folder (~/.local/share/Corvessa/Talvex on Linux) and the version.
[[nodiscard]] app::LaunchSettings standardLaunchSettings();

// One run of the desktop application: the defaults domain and store, the windows, the ports
// over them and the controller, wired together. main() runs it; the GUI tests build one per
// start, in a home folder of their own.
class DesktopApp {
  public:
    explicit DesktopApp(app::LaunchSettings settings = standardLaunchSettings());
    ~DesktopApp();
    DesktopApp(const DesktopApp&) = delete;
    DesktopApp& operator=(const DesktopApp&) = delete;

    // The controller's start-up; it may run the crash alert and may ask to end at once (see
    // terminationRequested).
    void launch();
    [[nodiscard]] bool terminationRequested() const;
    // The controller's orderly end; only the first call does anything.
    void finish();
    // Shows the main window (when not shown yet), runs the event loop until the controller
    // ends the run, then finishes. Returns the loop's exit code. Once per run.
    int exec();

    [[nodiscard]] MainWindow& window() { return *m_window; }
    [[nodiscard]] SettingsDialog& settingsDialog() { return *m_settingsDialog; }
    [[nodiscard]] ShellWindows& shell() { return *m_shell; }
    [[nodiscard]] app::TalvexContoller& controller() { return *m_controller; }
    [[nodiscard]] app::DefaultsStore& defaults() { return m_defaults; }
    [[nodiscard]] const app::LaunchSettings& launchSettings() const { return m_settings; }
    [[nodiscard]] app::BackgroundRunner& runner() { return *m_runner; }
    // Runs `work` once no calculation runs, cancelling the one that does: how a request to
    // quit from outside (a signal) waits for the worker.
    void whenIdle(std::function<void()> work);

  private:
    app::LaunchSettings m_settings;
    SettingsDomain m_domain;
    app::DefaultsStore m_defaults;
    app::LocalFileSystem m_files;
    // Declared before the windows, so that it is destroyed after them: every callback of a
    // widget finds it alive.
    std::unique_ptr<app::TalvexContoller> m_controller;
    std::unique_ptr<MainWindow> m_window;
    // Owned by the main window.
    SettingsDialog* m_settingsDialog = nullptr;
    BusyState* m_busy = nullptr;
    std::unique_ptr<app::BackgroundRunner> m_runner;
    std::unique_ptr<DialogSettingsPanel> m_panel;
    std::unique_ptr<MessageBoxAlerts> m_alerts;
    std::unique_ptr<ShellWindows> m_shell;
    std::unique_ptr<DialogListPanels> m_listPanels;
    std::unique_ptr<QtPrintService> m_printer;
    std::unique_ptr<QtFileDialogs> m_dialogs;
    app::LocalClock m_clock;
    bool m_finished = false;
};

}  // namespace talvex::gui
