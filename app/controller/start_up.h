#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/controller/controller_state.h"
#include "app/controller/expression_lists.h"
#include "app/controller/history.h"
#include "app/controller/log.h"
#include "app/controller/preferencer.h"
#include "app/controller/request_log.h"
#include "app/controller/requests.h"
#include "app/defaults_store.h"
#include "app/file_system.h"
#include "app/ports.h"

namespace talvex::app {

// Where this installation keeps its things and which version it is.
struct LaunchSettings {
    // The support folder (the log, the default lists folder).
    std::string supportFolder;
    // The program's version; a change is a first run of a new version.
    std::string bundleVersion;
};

// The texts of the reset alert.
inline constexpr const char* kResetAskedMessage =
    "Are you sure you wish to reset Talvex to its factory settings and quit?";
inline constexpr const char* kResetCrashMessage =
    "Talvex did not exit normally the last time it was launched. If Talvex is crashing "
    "constantly, you may wish to restore the factory settings.";
inline constexpr const char* kResetInformative =
    "If you restore the factory settings, any customization you have performed will be lost. "
    "Talvex will launch next time as if it were newly installed.";

// How a run begins and ends: registration defaults, the order of start-up, first runs,
// noticing a run that did not end normally, the factory reset and the orderly quit.
class StartUp {
  public:
    struct Parts {
        MainWindow& window;
        Alerts& alerts;
        ApplicationShell& shell;
        DefaultsStore& defaults;
        FileSystem& files;
        ControllerState& state;
        Preferencer& prefer;
        History& history;
        Requests& requests;
        Log& log;
        ExpressionLists& lists;
    };

    StartUp(const Parts& parts, LaunchSettings settings)
        : m_parts(parts), m_settings(std::move(settings)) {}

    // Once, before the first controller: the registration defaults (when the resource could
    // be read) and the start-up definitions.
    static void initialize(DefaultsStore& defaults,
                           const std::optional<DefaultValues>& defaultsResource);

    void applicationWillFinishLaunching();
    void applicationWillTerminate();
    void checkFirstRun();
    void finishFirstRun();
    void createSupportDirectories();
    void setVersion();
    void presentRestoreFactoryDefaultsAlert(bool asked);
    // Offers to save an edited list first; a Cancel keeps the application running.
    void TalvexQuit();
    // Closing the main window is a quit request and is refused; other windows close.
    [[nodiscard]] bool windowShouldClose(bool isMainWindow);

    [[nodiscard]] const std::string& supportDirStr() const noexcept {
        return m_settings.supportFolder;
    }
    [[nodiscard]] std::string logPathStr() const {
        return joinPath(m_settings.supportFolder, "log.rtfd");
    }
    [[nodiscard]] bool writeDefaultsOnTerminate() const noexcept {
        return m_writeDefaultsOnTerminate;
    }
    // True once the application was asked to end (a reset quits at once).
    [[nodiscard]] bool terminating() const noexcept { return m_terminating; }

  private:
    void terminate();

    Parts m_parts;
    LaunchSettings m_settings;
    bool m_writeDefaultsOnTerminate = false;
    bool m_terminating = false;
};

}  // namespace talvex::app
