#include "app/controller/start_up.h"

#include <algorithm>
#include <array>
#include <utility>

#include "expressions/expression.h"
#include "kernels/definitions.h"

namespace talvex::app {

void StartUp::initialize(DefaultsStore& defaults,
                         const std::optional<DefaultValues>& defaultsResource) {
    if (defaultsResource) {
        defaults.registerDefaults(*defaultsResource);
    }
    language::KVTXInitializeDefinitions();
}

void StartUp::applicationWillFinishLaunching() {
    ControllerState& state = m_parts.state;
    MainWindow& window = m_parts.window;
    // 1, 2.
    m_writeDefaultsOnTerminate = true;
    if (m_parts.defaults.boolForKey("didCrash")) {
        presentRestoreFactoryDefaultsAlert(false);
        if (m_terminating) {
            return;
        }
    }
    // 3, 4.
    checkFirstRun();
    m_parts.log.setEntryCount(static_cast<long>(m_parts.defaults.integerForKey("logLength")));

    // 5. The placeholders of the pop-ups name the empty expression.
    const auto empty = state.session.build("");
    state.session.pin("", empty);
    state.session.pin(language::Expression::cleanString(kSelectExpression), empty);
    state.session.pin(language::Expression::cleanString(kSelectComparison), empty);
    state.expression = empty;
    state.compareExpression = empty;

    // 6.
    state.displaying = true;
    state.newRoll = false;
    state.lastRoll = LastRoll{"", "", "blank"};
    state.height = 0;
    state.rollIndex = 0;

    // 7.
    m_parts.prefer.defaultsToPanel();
    m_parts.prefer.prefsFromDefaults();
    m_parts.prefer.prefsToPanel();

    // 8, 9.
    state.listsFolderPath = m_parts.prefer.listsFolderPath().empty()
                                ? joinPath(m_settings.supportFolder, "Expression Lists")
                                : m_parts.prefer.listsFolderPath();
    state.currentListName.clear();
    // The pop-ups hold their placeholders before any list is added to them.
    const std::array placeholders{std::pair{PopUp::expression, kSelectExpression},
                                  std::pair{PopUp::compare, kSelectComparison},
                                  std::pair{PopUp::expressionList, kSelectExpressionList},
                                  std::pair{PopUp::compareList, kSelectComparisonList}};
    for (const auto& [popUp, placeholder] : placeholders) {
        if (window.popUpTitles(popUp).empty()) {
            window.insertPopUpTitle(popUp, placeholder, 0);
        }
    }
    createSupportDirectories();
    m_parts.lists.loadExpressionLists();

    // 10. Every pop-up starts with its placeholder selected.
    state.lastExpressionTitle = kSelectExpression;
    state.lastCompareExpressionTitle = kSelectComparison;
    for (const auto& [popUp, placeholder] : placeholders) {
        window.selectPopUpTitle(popUp, placeholder);
    }
    m_parts.history.clearHistory();

    // 11.
    m_parts.log.read(m_parts.files, logPathStr());

    // 12.
    if (m_parts.prefer.links()) {
        m_parts.shell.showLinks(true, "Hide Report/Donate Links");
    } else {
        m_parts.shell.showLinks(false, "Show Report/Donate Links");
    }
    // 14.
    m_parts.shell.selectHelpTab("Overview");
    setVersion();

    // 15. From here on a crash is noticed at the next start.
    m_parts.defaults.setBool("didCrash", true);
    m_parts.defaults.synchronize();

    // 16.
    finishFirstRun();
}

void StartUp::checkFirstRun() {
    DefaultsStore& defaults = m_parts.defaults;
    const auto stored = defaults.stringForKey("version");
    defaults.setBool("firstRun", !stored || stored->empty());
    defaults.setBool("firstVersionRun", !stored || *stored != m_settings.bundleVersion);
    defaults.setString("version", m_settings.bundleVersion);
}

void StartUp::finishFirstRun() {
    if (!m_parts.defaults.boolForKey("firstRun")) {
        return;
    }
    MainWindow& window = m_parts.window;
    const auto lists = window.popUpTitles(PopUp::expressionList);
    if (std::find(lists.begin(), lists.end(), kSampleListName) != lists.end()) {
        window.selectPopUpTitle(PopUp::expressionList, kSampleListName);
        m_parts.lists.expressionListSelect();
    }
    if (window.popUpTitles(PopUp::expression).size() >= 2) {
        window.selectPopUpIndex(PopUp::expression, 1);
        m_parts.requests.expressionSelect();
    }
}

void StartUp::createSupportDirectories() {
    // Failures show when the lists are loaded.
    for (const std::string& folder : {m_settings.supportFolder, m_parts.state.listsFolderPath}) {
        if (!m_parts.files.exists(folder)) {
            static_cast<void>(m_parts.files.createDirectories(folder));
        }
    }
}

void StartUp::setVersion() {
    const auto version = m_parts.defaults.stringForKey("version");
    m_parts.shell.setAboutVersionText(version ? "v " + *version : std::string());
}

void StartUp::presentRestoreFactoryDefaultsAlert(bool asked) {
    AlertRequest request;
    request.message = asked ? kResetAskedMessage : kResetCrashMessage;
    request.informativeText = kResetInformative;
    request.defaultButton = asked ? "Cancel" : "Keep my Settings";
    request.alternateButton =
        asked ? "Restore Factory Settings and Quit" : "Restore Factory Settings";
    request.offersPreserveListsAndLog = true;
    const AlertAnswer answer = m_parts.alerts.runAlert(request);
    if (answer.button != AlertButton::alternateButton) {
        return;
    }
    m_parts.defaults.removePersistentDomain();
    m_parts.defaults.synchronize();
    if (!answer.preserveListsAndLog && m_parts.files.isDirectory(m_settings.supportFolder)) {
        // A folder that cannot be removed is left in place without a message.
        static_cast<void>(m_parts.files.removeAll(m_settings.supportFolder));
    }
    m_writeDefaultsOnTerminate = false;
    terminate();
}

void StartUp::TalvexQuit() {
    if (m_parts.lists.offerToSaveChanges()) {
        terminate();
    }
}

bool StartUp::windowShouldClose(bool isMainWindow) {
    if (!isMainWindow) {
        return true;
    }
    TalvexQuit();
    return false;
}

void StartUp::terminate() {
    m_terminating = true;
    m_parts.shell.terminate();
}

void StartUp::applicationWillTerminate() {
    m_parts.prefer.setListsFolderPath(m_parts.state.listsFolderPath);
    if (!m_writeDefaultsOnTerminate) {
        return;
    }
    DefaultsStore& defaults = m_parts.defaults;
    // The log first, so that the count stored next describes the text on disk. A failed save
    // is not reported: the application is on its way out.
    static_cast<void>(m_parts.log.write(m_parts.files, logPathStr()));
    defaults.setInteger("logLength", m_parts.log.entryCount());
    defaults.setBool("didCrash", false);
    m_parts.prefer.prefsToDefaults();
    defaults.synchronize();
}

}  // namespace talvex::app
