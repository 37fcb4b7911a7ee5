#pragma once

#include <QObject>

class QSocketNotifier;

namespace talvex::gui {

// Turns SIGTERM, SIGINT and SIGHUP (a logout, Ctrl+C in the terminal, a closed terminal) into
// an orderly quit on the event loop, so that the settings and the log are written as after the
// Quit command and the next start offers no factory reset. A second signal ends the process at
// once. One per process.
class TerminationSignals final : public QObject {
    Q_OBJECT

  public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // False when the signals could not be caught; they then end the process as usual.
    [[nodiscard]] bool isWatching() const noexcept { return m_notifier != nullptr; }

  signals:
    void received();

  private:
    QSocketNotifier* m_notifier = nullptr;
};

}  // namespace talvex::gui
