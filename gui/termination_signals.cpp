#include "gui/termination_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>

namespace talvex::gui {

namespace {

// A signal handler may only write to a descriptor, so the pipe it writes to must be reachable
// without arguments. Set once while the watcher is made, read only by the handler.
volatile std::sig_atomic_t signalWriteEnd = -1;

void onSignal(int /*signal*/) {
    const int savedErrno = errno;
    const char byte = 1;
    // Nothing more can be done in a handler when the write fails.
    static_cast<void>(::write(signalWriteEnd, &byte, 1));
    errno = savedErrno;
}

constexpr std::array<int, 3> kSignals = {SIGTERM, SIGINT, SIGHUP};

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    std::array<int, 2> ends{};
    if (signalWriteEnd != -1 || ::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    signalWriteEnd = ends[1];
    const int readEnd = ends[0];
    m_notifier = new QSocketNotifier(readEnd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this, readEnd] {
        std::array<char, 16> drained{};
        while (::read(readEnd, drained.data(), drained.size()) > 0) {
        }
        emit received();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    // A second signal ends the process at once, for a window stuck in a long calculation.
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    for (const int signal : kSignals) {
        ::sigaction(signal, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    if (m_notifier == nullptr) {
        return;
    }
    for (const int signal : kSignals) {
        std::signal(signal, SIG_DFL);
    }
    const auto readEnd = static_cast<int>(m_notifier->socket());
    delete m_notifier;
    ::close(readEnd);
    ::close(static_cast<int>(signalWriteEnd));
    signalWriteEnd = -1;
}

}  // namespace talvex::gui
