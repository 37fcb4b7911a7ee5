#pragma once

// Builds a request's expressions on a worker thread while the window stays alive: it repaints,
// shows that it is busy once a build takes noticeably long, shows how much of the request's
// budget is spent, and lets the person cancel.

#include <chrono>
#include <functional>

#include "app/request.h"

namespace talvex::app {

// What the window does while a build runs.
class BusyWindow {
  public:
    virtual ~BusyWindow() = default;
    // Turns the busy state on (Roll becomes Cancel, a progress indication appears, nothing
    // else that would start a request is accepted) or off again.
    virtual void showBusy(bool busy) = 0;
    // The share of the request's work ceiling spent so far, 0 to 1.
    virtual void showProgress(double share) = 0;
    // Handles the toolkit's events (repaints, Cancel, Esc) until `finished` answers true,
    // calling `tick` every few dozen milliseconds meanwhile.
    virtual void stayResponsiveUntil(const std::function<bool()>& finished,
                                     const std::function<void()>& tick) = 0;
};

class BackgroundRunner final : public CalculationRunner {
  public:
    // A build that ends within this time never shows the busy state (unless told otherwise).
    static constexpr std::chrono::milliseconds kBusyDelay{150};
    // How long the window simply waits for a build before it handles events meanwhile: most
    // builds end well within it, and then nothing flickers.
    static constexpr std::chrono::milliseconds kQuietWait{30};

    explicit BackgroundRunner(BusyWindow& window,
                              std::chrono::milliseconds busyDelay = kBusyDelay) noexcept
        : m_window(window), m_busyDelay(busyDelay) {}

    // One build at a time; the calling (window) thread returns when it has ended.
    void run(language::RequestContext& context, const std::function<void()>& work) override;

    // Whether a build is running now.
    [[nodiscard]] bool isBusy() const noexcept { return m_context != nullptr; }
    // Stops the running build, if any; it ends with "Calculation cancelled".
    void cancel() noexcept;

  private:
    BusyWindow& m_window;
    std::chrono::milliseconds m_busyDelay;
    language::RequestContext* m_context = nullptr;
};

}  // namespace talvex::app
