#include "cli/request_watch.h"

#include <pthread.h>
#include <signal.h>

#include <cstdlib>
#include <system_error>

namespace talvex::cli {

namespace {

sigset_t interruptSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    return signals;
}

}  // namespace

RequestWatch::RequestWatch() {
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
        if (sigwaitinfo(&signals, nullptr) != SIGINT) {
            continue;  // interrupted (EINTR)
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
