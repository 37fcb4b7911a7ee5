#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/controller/controller_state.h"
#include "app/controller/displays.h"
#include "app/controller/history.h"
#include "app/controller/preferencer.h"
#include "app/controller/request_log.h"
#include "app/controller/requests.h"
#include "app/controller/start_up.h"
#include "app/defaults_store.h"
#include "app/file_system.h"
#include "app/ports.h"

namespace talvex::app {

// What the controller is given of the world around it.
struct ControllerPorts {
    MainWindow& window;
    SettingsPanel& settingsPanel;
    Alerts& alerts;
    ApplicationShell& shell;
    DefaultsStore& defaults;
    FileSystem& files;
    // The log the requests write into; null for one that keeps nothing.
    RequestLog* log = nullptr;
};

// The main window's controller and the application's delegate. It owns the run's state and the
// collaborators that do the work (requests and displays, history, preferences, start-up) and
// answers the window's actions. Every action is a request boundary: whatever a calculation
// throws becomes a message in the window, and the program goes on.
class TalvexContoller {
  public:
    TalvexContoller(const ControllerPorts& ports, LaunchSettings settings);
    TalvexContoller(const TalvexContoller&) = delete;
    TalvexContoller& operator=(const TalvexContoller&) = delete;

    static void initialize(DefaultsStore& defaults,
                           const std::optional<DefaultValues>& defaultsResource) {
        StartUp::initialize(defaults, defaultsResource);
    }

    // Start and end.
    void applicationWillFinishLaunching();
    void applicationWillTerminate();
    void TalvexQuit();
    [[nodiscard]] bool windowShouldClose(bool isMainWindow);
    void windowDidResize();
    void resetAllSettingsAndQuit();

    // The main window's actions.
    void roll();
    void expressionSelect();
    void compareSelect();
    void panelRoll();
    void panelCancel();
    void setRunningSelection();
    void stepBack();
    void stepForward();
    void updateFloatingViews();
    void fullClean();

    // The settings panel.
    void settings();
    void settingsSave();
    void settingsCancel();
    void settingsDefaults();

    // The menu's toggles.
    [[nodiscard]] bool runningCalculation() const;
    void setRunningCalculation(bool on);
    void toggleLinks();

    // The collaborators, for the front end and the tests.
    [[nodiscard]] ControllerState& state() noexcept { return m_state; }
    [[nodiscard]] Preferencer& prefer() noexcept { return m_prefer; }
    [[nodiscard]] History& history() noexcept { return m_history; }
    [[nodiscard]] Displays& displays() noexcept { return m_displays; }
    [[nodiscard]] Requests& requests() noexcept { return m_requests; }
    [[nodiscard]] StartUp& startUp() noexcept { return m_startUp; }

  private:
    // Runs an action; a fault it throws becomes a message in the window.
    template <typename Work>
    void guarded(Work&& work);

    MainWindow& m_window;
    SettingsPanel& m_panel;
    DefaultsStore& m_defaults;
    ApplicationShell& m_shell;
    UnkeptLog m_unkeptLog;
    RequestLog& m_log;
    ControllerState m_state;
    Preferencer m_prefer;
    Displays m_displays;
    History m_history;
    Requests m_requests;
    StartUp m_startUp;
};

}  // namespace talvex::app
