#pragma once

// Ctrl-C and the time limit in the terminal. SIGINT is blocked in every thread and taken by a
// watcher thread of its own, which knows the calculation under way: Ctrl-C during a calculation
// cancels that one expression and the others go on; Ctrl-C at any other time (waiting on
// standard input, printing) ends the program at once with status 130. A program started with
// SIGINT ignored (a background job of a script) keeps ignoring it. With a time limit, the
// watcher stops an expression that has run that long.

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "app/request.h"

namespace talvex::cli {

// The runner of the session: it runs each build right where it is asked for, on the main
// thread, and the watcher knows its context meanwhile.
class RequestWatch final : public app::CalculationRunner {
  public:
    // The exit status after Ctrl-C: what shells report for a program that SIGINT ended.
    static constexpr int kInterruptedStatus = 130;

    using Seconds = std::chrono::duration<double>;

    // Blocks SIGINT in the calling thread, and so in every thread started from it afterwards,
    // then starts the watcher. Construct it before any other thread is started.
    explicit RequestWatch(std::optional<Seconds> timeLimit = std::nullopt);
    // Stops the watcher; SIGINT stays blocked.
    ~RequestWatch() override;
    RequestWatch(const RequestWatch&) = delete;
    RequestWatch& operator=(const RequestWatch&) = delete;

    // Runs the build, the context registered with the watcher until it ends.
    void run(language::RequestContext& context, const std::function<void()>& work) override;

    // Whether Ctrl-C cancelled a calculation.
    [[nodiscard]] bool interrupted() const;

  private:
    using Clock = std::chrono::steady_clock;

    void watch();

    std::optional<Clock::duration> m_timeLimit;
    bool m_interruptsIgnored = false;
    mutable std::mutex m_mutex;
    // The calculation under way, if any, and when its time is up; guarded by m_mutex.
    language::RequestContext* m_running = nullptr;
    Clock::time_point m_deadline;
    bool m_interrupted = false;
    bool m_stopping = false;
    std::thread m_watcher;
};

}  // namespace talvex::cli
