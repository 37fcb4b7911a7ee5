#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "app/controller/talvex_controller.h"
#include "app/fakes/fakes.h"

namespace talvex::app::testing {

inline constexpr const char* kSupportFolder = "/home/person/support/Corvessa/Talvex";

// The controller on in-memory fakes, launched as the desktop app launches it.
class ControllerTest : public ::testing::Test {
  protected:
    ControllerTest() { relaunch(); }

    // A new run on the same defaults and files, as after quitting and starting again.
    void relaunch(const std::string& version = "1.0") {
        window = std::make_unique<fakes::FakeWindow>();
        panel = std::make_unique<fakes::FakeSettingsPanel>();
        defaults = std::make_unique<DefaultsStore>(domain);
        TalvexContoller::initialize(*defaults, DefaultValues{{"runningCalculation", false}});
        controller =
            std::make_unique<TalvexContoller>(ports(), LaunchSettings{kSupportFolder, version});
        controller->applicationWillFinishLaunching();
    }

    // The world around the controller, on the fakes.
    [[nodiscard]] ControllerPorts ports() {
        return ControllerPorts{*window,
                               *panel,
                               alerts,
                               shell,
                               *defaults,
                               files,
                               listPanels,
                               logWindow,
                               printer,
                               dialogs,
                               clock,
                               *runnerInUse,
                               [this] { return sampleList; }};
    }

    [[nodiscard]] std::string logText() const { return controller->log().text().string(); }
    [[nodiscard]] long logEntries() const { return controller->log().entryCount(); }

    // Types the text into the expression field and presses Return.
    void request(const std::string& text) {
        window->setFieldText(TextField::expression, text);
        controller->roll();
    }

    [[nodiscard]] std::string field(TextField f) const { return window->fieldText(f); }
    [[nodiscard]] std::string view(TextView v) const { return window->viewText(v); }
    [[nodiscard]] std::vector<std::string> titles(PopUp p) const { return window->popUpTitles(p); }
    [[nodiscard]] std::string selected(PopUp p) const { return window->selectedPopUpTitle(p); }

    fakes::MemoryDomain domain;
    fakes::MemoryFileSystem files;
    fakes::FakeAlerts alerts;
    fakes::FakeShell shell;
    std::unique_ptr<fakes::FakeWindow> window;
    std::unique_ptr<fakes::FakeSettingsPanel> panel;
    fakes::FakeListPanels listPanels;
    fakes::FakeLogWindow logWindow;
    fakes::FakePrintService printer;
    fakes::FakeFileDialogs dialogs;
    fakes::FakeClock clock;
    InlineCalculationRunner runner;
    // Where the controller's builds run; a test may swap in another before relaunching.
    CalculationRunner* runnerInUse = &runner;
    // What the application ships as its sample list (none in most tests).
    std::optional<std::string> sampleList;
    std::unique_ptr<DefaultsStore> defaults;
    std::unique_ptr<TalvexContoller> controller;
};

}  // namespace talvex::app::testing
