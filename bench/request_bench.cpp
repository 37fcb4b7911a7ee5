// The desktop request path through the app layer: the window's controller on in-memory fakes,
// a text typed into the expression field and Return pressed.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "app/controller/talvex_controller.h"
#include "app/fakes/fakes.h"

namespace {

using talvex::app::ControllerPorts;
using talvex::app::DefaultsStore;
using talvex::app::DefaultValues;
using talvex::app::LaunchSettings;
using talvex::app::TalvexContoller;
using talvex::app::TextField;
namespace fakes = talvex::app::fakes;

constexpr const char* kRequest = "3d6 vs 2d10";

// A window just launched as the desktop app launches it, with nothing calculated yet.
class LaunchedWindow {
  public:
    LaunchedWindow() {
        TalvexContoller::initialize(m_defaults, DefaultValues{{"runningCalculation", false}});
        m_controller =
            std::make_unique<TalvexContoller>(ControllerPorts{window,
                                                              m_panel,
                                                              m_alerts,
                                                              m_shell,
                                                              m_defaults,
                                                              m_files,
                                                              m_listPanels,
                                                              m_logWindow,
                                                              m_printer,
                                                              m_dialogs,
                                                              m_clock,
                                                              m_runner,
                                                              {}},
                                              LaunchSettings{"/home/u/support", "0.1.0"});
        m_controller->applicationWillFinishLaunching();
    }

    // Types the text into the expression field and presses Return.
    void request(const std::string& text) {
        window.setFieldText(TextField::expression, text);
        m_controller->roll();
    }

    [[nodiscard]] TalvexContoller& controller() { return *m_controller; }

    fakes::FakeWindow window;

  private:
    fakes::MemoryDomain m_domain;
    fakes::MemoryFileSystem m_files;
    fakes::FakeAlerts m_alerts;
    fakes::FakeShell m_shell;
    fakes::FakeSettingsPanel m_panel;
    fakes::FakeListPanels m_listPanels;
    fakes::FakeLogWindow m_logWindow;
    fakes::FakePrintService m_printer;
    fakes::FakeFileDialogs m_dialogs;
    fakes::FakeClock m_clock;
    talvex::app::InlineCalculationRunner m_runner;
    DefaultsStore m_defaults{m_domain};
    std::unique_ptr<TalvexContoller> m_controller;
};

// A request that did not calculate would time the message instead of the work.
bool calculated(benchmark::State& state, const LaunchedWindow& launched) {
    if (launched.window.message().empty()) {
        return true;
    }
    state.SkipWithError(launched.window.message().c_str());
    return false;
}

// The whole first request of a run: build, every display, the log and the roll. Launching and
// closing the window are left out of the time.
void BM_Request_3d6_vs_2d10(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto launched = std::make_unique<LaunchedWindow>();
        state.ResumeTiming();
        launched->request(kRequest);
        state.PauseTiming();
        const bool ok = calculated(state, *launched);
        launched.reset();
        if (!ok) {
            break;
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_Request_3d6_vs_2d10)->Unit(benchmark::kMillisecond);

// A window that has shown the request once and rolled it `rolls` more times, as a session
// that has been going for a while.
std::unique_ptr<LaunchedWindow> warmWindow(benchmark::State& state, long rolls) {
    auto launched = std::make_unique<LaunchedWindow>();
    launched->request(kRequest);
    if (!calculated(state, *launched)) {
        return nullptr;
    }
    // Drawing on the expression directly leaves the same history as that many requests, in a
    // fraction of the time.
    const auto expression = launched->controller().state().expression;
    for (long i = 0; i < rolls; ++i) {
        benchmark::DoNotOptimize(expression->evaluate());
    }
    return launched;
}

// Every roll joins the expression's history, which each request copies, so a request costs more
// the longer the session. The window is launched anew every so many requests (outside the time)
// so that the figure stands for `rolls` earlier rolls rather than for however many iterations the
// library chose to run.
void repeatRequests(benchmark::State& state, long rolls) {
    constexpr long kRequestsPerWindow = 1000;
    std::unique_ptr<LaunchedWindow> launched;
    int tableWrites = 0;
    // Whether the window's requests all calculated and only rolled.
    const auto onlyRolled = [&] {
        if (!calculated(state, *launched)) {
            return false;
        }
        if (launched->window.fieldWrites(TextField::table) != tableWrites) {
            state.SkipWithError("the repeated request redisplayed");
            return false;
        }
        return true;
    };
    long requests = 0;
    for (auto _ : state) {
        if (requests % kRequestsPerWindow == 0) {
            state.PauseTiming();
            if (launched && !onlyRolled()) {
                return;
            }
            launched = warmWindow(state, rolls);
            if (!launched) {
                return;
            }
            tableWrites = launched->window.fieldWrites(TextField::table);
            state.ResumeTiming();
        }
        launched->request(kRequest);
        ++requests;
    }
    if (launched) {
        static_cast<void>(onlyRolled());
    }
}

// Return pressed again on the same text: the controller only rolls and shows the roll.
void BM_Request_Repeat(benchmark::State& state) { repeatRequests(state, 0); }
BENCHMARK(BM_Request_Repeat)->Unit(benchmark::kMicrosecond);

// The same deep into a session, after range(0) rolls.
void BM_Request_Repeat_LongSession(benchmark::State& state) {
    repeatRequests(state, state.range(0));
}
BENCHMARK(BM_Request_Repeat_LongSession)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

}  // namespace
