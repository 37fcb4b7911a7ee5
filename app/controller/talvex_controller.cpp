#include "app/controller/talvex_controller.h"

#include "app/request.h"
#include "core/report_options.h"

namespace talvex::app {

TalvexContoller::TalvexContoller(const ControllerPorts& ports, LaunchSettings settings)
    : m_window(ports.window),
      m_panel(ports.settingsPanel),
      m_defaults(ports.defaults),
      m_shell(ports.shell),
      m_log(ports.log != nullptr ? *ports.log : m_unkeptLog),
      m_prefer(ports.defaults, ports.settingsPanel),
      m_displays(ports.window, m_prefer, m_state),
      m_history(ports.window, m_state, m_displays, [this] { m_requests.roll(); }),
      m_requests(ports.window, m_state, m_displays, m_history, m_prefer, m_log, ports.defaults),
      m_startUp(StartUp::Parts{ports.window, ports.alerts, ports.shell, ports.defaults, ports.files,
                               m_state, m_prefer, m_history, m_requests, m_log},
                std::move(settings)) {}

template <typename Work>
void TalvexContoller::guarded(Work&& work) {
    if (const auto problem = attempt(std::forward<Work>(work))) {
        m_window.showMessage("Cannot calculate: " + *problem + ".");
    }
}

void TalvexContoller::applicationWillFinishLaunching() {
    guarded([this] { m_startUp.applicationWillFinishLaunching(); });
}

void TalvexContoller::applicationWillTerminate() { m_startUp.applicationWillTerminate(); }

void TalvexContoller::TalvexQuit() { m_startUp.TalvexQuit(); }

bool TalvexContoller::windowShouldClose(bool isMainWindow) {
    return m_startUp.windowShouldClose(isMainWindow);
}

void TalvexContoller::windowDidResize() {
    if (m_state.lastRoll.lastFunctionString == "blank" || !m_state.expression ||
        !m_state.compareExpression) {
        return;
    }
    guarded([this] {
        DisplayFrame frame;
        m_displays.profile(frame);
        m_displays.tableCompare(frame);
        m_displays.diagramCompare(frame);
        frame.apply(m_window);
    });
}

void TalvexContoller::resetAllSettingsAndQuit() {
    m_startUp.presentRestoreFactoryDefaultsAlert(true);
}

void TalvexContoller::roll() { m_requests.roll(); }

void TalvexContoller::expressionSelect() {
    guarded([this] { m_requests.expressionSelect(); });
}

void TalvexContoller::compareSelect() {
    guarded([this] { m_requests.compareSelect(); });
}

void TalvexContoller::panelRoll() { m_requests.panelRoll(); }

void TalvexContoller::panelCancel() { m_requests.panelCancel(); }

void TalvexContoller::setRunningSelection() { m_requests.setRunningSelection(); }

void TalvexContoller::stepBack() {
    guarded([this] { m_history.stepBack(); });
}

void TalvexContoller::stepForward() {
    guarded([this] { m_history.stepForward(); });
}

void TalvexContoller::updateFloatingViews() { m_displays.updateFloatingViews(); }

void TalvexContoller::fullClean() {
    m_history.clearHistory();
    m_displays.blankDisplay();
    m_state.lastRoll = LastRoll{"", "", "blank"};
    m_state.lastExpressionTitle.clear();
    m_state.lastCompareExpressionTitle.clear();
    m_state.currentListName.clear();
    for (const auto& [popUp, placeholder] :
         {std::pair{PopUp::compare, kSelectComparison},
          std::pair{PopUp::expression, kSelectExpression},
          std::pair{PopUp::compareList, kSelectComparisonList},
          std::pair{PopUp::expressionList, kSelectExpressionList}}) {
        m_window.removeAllPopUpItems(popUp);
        m_window.insertPopUpTitle(popUp, placeholder, 0);
        m_window.selectPopUpIndex(popUp, 0);
    }
}

void TalvexContoller::settings() {
    m_prefer.prefsToPanel();
    m_panel.show();
}

void TalvexContoller::settingsSave() {
    try {
        m_prefer.prefsFromPanel();
    } catch (const core::DividerListError& error) {
        // The panel stays open with the settings in force until the list is mended.
        m_panel.showProblem(std::string("The dividers cannot be used: ") + error.what() + ".");
        return;
    }
    m_panel.close();
    m_state.newRoll = true;
}

void TalvexContoller::settingsCancel() { m_panel.close(); }

void TalvexContoller::settingsDefaults() { m_prefer.defaultsToPanel(); }

bool TalvexContoller::runningCalculation() const {
    return m_defaults.boolForKey("runningCalculation");
}

void TalvexContoller::setRunningCalculation(bool on) {
    m_defaults.setBool("runningCalculation", on);
}

void TalvexContoller::toggleLinks() {
    m_prefer.setLinks(!m_prefer.links());
    m_shell.showLinks(m_prefer.links(),
                      m_prefer.links() ? "Hide Report/Donate Links" : "Show Report/Donate Links");
}

}  // namespace talvex::app
