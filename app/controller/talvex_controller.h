#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/controller/controller_state.h"
#include "app/controller/displays.h"
#include "app/controller/expression_lists.h"
#include "app/controller/history.h"
#include "app/controller/kvtx_exproter.h"
#include "app/controller/log.h"
#include "app/controller/preferencer.h"
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
    ListPanels& listPanels;
    LogWindow& logWindow;
    PrintService& printer;
    FileDialogs& dialogs;
    const Clock& clock;
    // Where the builds of a request run.
    CalculationRunner& runner;
    // The application's own copy of the "Sample Expressions" list, when it has one.
    std::function<std::optional<std::string>()> sampleList;
};

// The two display fields a printed page shows for the selected tab; none for a tab it does not
// know.
[[nodiscard]] std::optional<std::pair<TextField, TextField>> printDisplayFields(
    const std::string& tabLabel);

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
    // Redraws the displays for the new size, on the worker like a request's reports (a
    // million outcomes take a while); a resize during a request is redrawn after it.
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

    // The log.
    void clearLog();
    // A time-stamped copy of the log in the lists folder.
    void exportLog();
    void logPrint();
    void profilePrint();

    // The expression lists.
    void expressionListSelect();
    void listSelect(const std::string& title);
    void compareListSelect();
    void mirrorSelect();
    void expressionUp();
    void expressionDown();
    void compareUp();
    void compareDown();
    void expressionListSave();
    void expressionListSaveAs();
    void expressionListRevert();
    void expressionListDelete();
    void openExpressionsWithModal();
    void listsFolder();

    // Import and export.
    void importList();
    void exprotList();
    void exportLogAs();

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
    [[nodiscard]] Log& log() noexcept { return m_log; }
    [[nodiscard]] ExpressionLists& lists() noexcept { return m_lists; }
    [[nodiscard]] KVTXExproter& exproter() noexcept { return m_exproter; }
    [[nodiscard]] const PrintPage& printView() const noexcept { return m_printView; }

  private:
    // Runs an action; a fault it throws becomes a message in the window.
    template <typename Work>
    void guarded(Work&& work);

    MainWindow& m_window;
    SettingsPanel& m_panel;
    DefaultsStore& m_defaults;
    ApplicationShell& m_shell;
    FileSystem& m_files;
    PrintService& m_printer;
    const Clock& m_clock;
    ControllerState m_state;
    Preferencer m_prefer;
    Log m_log;
    Displays m_displays;
    History m_history;
    Requests m_requests;
    ExpressionLists m_lists;
    StartUp m_startUp;
    KVTXExproter m_exproter;
    // The page profilePrint lays out; a tab it does not know keeps the last display fields.
    PrintPage m_printView;
    // The window was resized while a calculation was under way.
    bool m_resizePending = false;
};

}  // namespace talvex::app
