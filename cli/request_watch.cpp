#include "cli/request_watch.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <system_error>

namespace talvex::cli {

namespace {

sigset_t interruptSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    return signals;
}

timespec timespecOf(std::chrono::nanoseconds duration) {
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(duration);
    return {static_cast<std::time_t>(whole.count()), static_cast<long>((duration - whole).count())};
}

}  // namespace

RequestWatch::RequestWatch(std::optional<Seconds> timeLimit) {
    if (timeLimit) {
        // Below a millisecond the watcher would wake without pause while nothing runs; beyond
        // years a limit is no limit, and the clock's arithmetic must not overflow.
        const Seconds bounded = std::clamp(*timeLimit, Seconds(1e-3), Seconds(1e8));
        m_timeLimit = std::chrono::duration_cast<Clock::duration>(bounded);
    }
    struct sigaction current {};
    m_interruptsIgnored =
        sigaction(SIGINT, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
    const sigset_t signals = interruptSignals();
    if (const int error = pthread_sigmask(SIG_BLOCK, &signals, nullptr); error != 0) {
        throw std::system_error(error, std::generic_category(), "cannot block SIGINT");
    }
    m_watcher = std::thread([this] { watch(); });
}

RequestWatch::~RequestWatch() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    // The watcher waits for SIGINT, so that is what wakes it; it sees that it is to stop.
    pthread_kill(m_watcher.native_handle(), SIGINT);
    m_watcher.join();
}

void RequestWatch::run(language::RequestContext& context, const std::function<void()>& work) {
    {
        const std::lock_guard lock(m_mutex);
        m_running = &context;
        if (m_timeLimit) {
            m_deadline = Clock::now() + *m_timeLimit;
        }
    }
    struct Finished {
        RequestWatch& watch;
        ~Finished() {
            const std::lock_guard lock(watch.m_mutex);
            watch.m_running = nullptr;
        }
    } finished{*this};
    work();
}

bool RequestWatch::interrupted() const {
    const std::lock_guard lock(m_mutex);
    return m_interrupted;
}

void RequestWatch::watch() {
    const sigset_t signals = interruptSignals();
    for (;;) {
        std::optional<Clock::duration> wait;
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping) {
                return;
            }
            if (m_timeLimit) {
                const auto now = Clock::now();
                if (m_running != nullptr && now >= m_deadline) {
                    m_running->timeOut();
                }
                // A calculation that starts while the watcher waits ends its time at least one
                // limit after the wait began, so a wait never longer than the limit meets every
                // deadline without anyone having to wake the watcher.
                wait = m_running != nullptr && m_deadline > now ? m_deadline - now : *m_timeLimit;
            }
        }
        int received = 0;
        if (wait) {
            const timespec timeout = timespecOf(*wait);
            received = sigtimedwait(&signals, nullptr, &timeout);
        } else {
            received = sigwaitinfo(&signals, nullptr);
        }
        if (received != SIGINT) {
            continue;  // the wait is over (EAGAIN) or was interrupted (EINTR)
        }
        const std::lock_guard lock(m_mutex);
        if (m_stopping) {
            return;
        }
        if (m_interruptsIgnored) {
            continue;
        }
        if (m_running == nullptr) {
            // Nothing to cancel: Ctrl-C ends the program, as it always does. Only the main
            // thread writes the output; nothing here may touch it.
            std::_Exit(kInterruptedStatus);
        }
        m_running->cancel();
        m_interrupted = true;
    }
}

}  // namespace talvex::cli
