#include "app/controller/talvex_controller.h"

#include "app/request.h"
#include "core/calculation_limits.h"
#include "core/report_options.h"

namespace talvex::app {

std::optional<std::pair<TextField, TextField>> printDisplayFields(const std::string& tabLabel) {
    using F = TextField;
    if (tabLabel == "Profile") {
        return std::pair{F::table, F::diagram};
    }
    if (tabLabel == "Tables") {
        return std::pair{F::tableCompare1, F::tableCompare2};
    }
    if (tabLabel == "Diagrams") {
        return std::pair{F::diagramCompare1, F::diagramCompare2};
    }
    if (tabLabel == "Versus") {
        return std::pair{F::versus, F::versusLegend};
    }
    if (tabLabel == "Versus with Tie") {
        return std::pair{F::versusWithTie, F::versusWithTieLegend};
    }
    return std::nullopt;
}

TalvexContoller::TalvexContoller(const ControllerPorts& ports, LaunchSettings settings)
    : m_window(ports.window),
      m_panel(ports.settingsPanel),
      m_defaults(ports.defaults),
      m_shell(ports.shell),
      m_files(ports.files),
      m_printer(ports.printer),
      m_clock(ports.clock),
      m_prefer(ports.defaults, ports.settingsPanel),
      m_log(ports.logWindow, [this] { return static_cast<long>(m_prefer.logSize()); }),
      m_displays(ports.window, m_prefer, m_state),
      m_history(ports.window, m_state, m_displays, [this] { m_requests.roll(); }),
      m_requests(ports.window, m_state, m_displays, m_history, m_prefer, m_log, ports.defaults),
      m_lists(ExpressionLists::Parts{ports.window, ports.alerts, ports.listPanels, ports.files,
                                     ports.defaults, m_state, m_displays, m_history, m_requests,
                                     ports.sampleList, [this] { fullClean(); },
                                     settings.supportFolder}),
      m_startUp(StartUp::Parts{ports.window, ports.alerts, ports.shell, ports.defaults, ports.files,
                               m_state, m_prefer, m_history, m_requests, m_log, m_lists},
                std::move(settings)),
      m_exproter(KVTXExproter::Parts{ports.window, ports.dialogs, ports.files, ports.alerts,
                                     ports.clock, m_lists, m_log}) {
    m_state.session.setRunner(&ports.runner);
}

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

void TalvexContoller::TalvexQuit() {
    guarded([this] { m_startUp.TalvexQuit(); });
}

bool TalvexContoller::windowShouldClose(bool isMainWindow) {
    bool close = false;
    guarded([&] { close = m_startUp.windowShouldClose(isMainWindow); });
    return close;
}

void TalvexContoller::windowDidResize() {
    if (m_state.session.isBuilding()) {
        m_resizePending = true;
        return;
    }
    do {
        m_resizePending = false;
        if (m_state.lastRoll.lastFunctionString == "blank" || !m_state.expression ||
            !m_state.compareExpression) {
            return;
        }
        const auto problem = attempt([this] {
            DisplayFrame frame;
            m_displays.updateHeight();
            {
                const Displays::HeightHold hold(m_displays);
                m_state.session.runInRequest([&] {
                    m_displays.profile(frame);
                    m_displays.tableCompare(frame);
                    m_displays.diagramCompare(frame);
                });
            }
            frame.apply(m_window);
        });
        if (problem) {
            m_window.showMessage(*problem == core::kCalculationCancelled
                                     ? *problem + "."
                                     : "Cannot calculate: " + *problem + ".");
            return;
        }
    } while (m_resizePending);
}

void TalvexContoller::resetAllSettingsAndQuit() {
    m_startUp.presentRestoreFactoryDefaultsAlert(true);
}

void TalvexContoller::roll() {
    m_requests.roll();
    if (m_resizePending) {
        windowDidResize();
    }
}

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

void TalvexContoller::clearLog() {
    m_log.clearLog();
    m_state.newRoll = true;
}

void TalvexContoller::exportLog() {
    const std::string path = joinPath(m_state.listsFolderPath, logExportName(m_clock.now()));
    if (!m_log.write(m_files, path)) {
        m_lists.writeError();
    }
}

void TalvexContoller::logPrint() { m_printer.printLog(m_log.text()); }

void TalvexContoller::profilePrint() {
    m_printView.expression = m_window.fieldAttributedText(TextField::expression);
    m_printView.statistics = m_window.fieldAttributedText(TextField::statistics);
    m_printView.compareStatistics = m_window.fieldAttributedText(TextField::compareStatistics);
    m_printView.roll = m_window.fieldAttributedText(TextField::roll);
    if (const auto fields = printDisplayFields(m_window.selectedTabLabel())) {
        m_printView.display1 = m_window.fieldAttributedText(fields->first);
        m_printView.display2 = m_window.fieldAttributedText(fields->second);
    }
    m_printer.printPage(m_printView);
}

// The list commands change the pop-ups and may roll: each is a request boundary.
void TalvexContoller::expressionListSelect() {
    guarded([this] { m_lists.expressionListSelect(); });
}
void TalvexContoller::listSelect(const std::string& title) {
    guarded([&] { m_lists.listSelect(title); });
}
void TalvexContoller::compareListSelect() {
    guarded([this] { m_lists.compareListSelect(); });
}
void TalvexContoller::mirrorSelect() {
    guarded([this] { m_lists.mirrorSelect(); });
}
void TalvexContoller::expressionUp() {
    guarded([this] { m_lists.expressionUp(); });
}
void TalvexContoller::expressionDown() {
    guarded([this] { m_lists.expressionDown(); });
}
void TalvexContoller::compareUp() {
    guarded([this] { m_lists.compareUp(); });
}
void TalvexContoller::compareDown() {
    guarded([this] { m_lists.compareDown(); });
}
void TalvexContoller::expressionListSave() {
    guarded([this] { m_lists.expressionListSave(); });
    m_lists.selectCurrentLists();
}
void TalvexContoller::expressionListSaveAs() {
    guarded([this] { m_lists.expressionListSaveAs(); });
    m_lists.selectCurrentLists();
}
void TalvexContoller::expressionListRevert() {
    guarded([this] { m_lists.expressionListRevert(); });
    m_lists.selectCurrentLists();
}
void TalvexContoller::expressionListDelete() {
    guarded([this] { m_lists.expressionListDelete(); });
    m_lists.selectCurrentLists();
}
void TalvexContoller::openExpressionsWithModal() {
    guarded([this] { m_lists.openExpressionsWithModal(); });
}
void TalvexContoller::listsFolder() {
    guarded([this] { m_lists.listsFolder(); });
}
void TalvexContoller::importList() {
    guarded([this] { m_exproter.importList(); });
}
void TalvexContoller::exprotList() {
    guarded([this] { m_exproter.exprotList(); });
}
void TalvexContoller::exportLogAs() {
    guarded([this] { m_exproter.exportLog(); });
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
