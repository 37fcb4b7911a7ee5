// talvex: the desktop calculator of dice probabilities.

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTimer>
#include <cstdio>

#include "app/startup.h"
#include "gui/desktop_app.h"
#include "gui/main_window.h"
#include "gui/termination_signals.h"

namespace {

// Reports the time from the start of main() to the main window's first paint, then quits.
class FirstPaintClock final : public QObject {
  public:
    FirstPaintClock(const QElapsedTimer& sinceStart, const QWidget& window,
                    talvex::app::TalvexContoller& controller)
        : m_sinceStart(sinceStart), m_window(window), m_controller(controller) {}

  protected:
    // Watches the whole application: the window's first paint may reach any of its widgets.
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<const QWidget*>(watched);
        if (event->type() == QEvent::Paint && !m_reported && widget != nullptr &&
            widget->window() == &m_window) {
            m_reported = true;
            std::printf("startup: %lld ms to the first paint of the main window\n",
                        static_cast<long long>(m_sinceStart.elapsed()));
            std::fflush(stdout);
            QTimer::singleShot(0, this, [this] { m_controller.TalvexQuit(); });
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    const QElapsedTimer& m_sinceStart;
    const QWidget& m_window;
    talvex::app::TalvexContoller& m_controller;
    bool m_reported = false;
};

}  // namespace

int main(int argc, char* argv[]) {
    QElapsedTimer sinceStart;
    sinceStart.start();
    talvex::app::tuneMemoryAllocator();

    QApplication application(argc, argv);
    talvex::gui::configureApplication();

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Exact probabilities of dice expressions."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption expression(
        QStringList{QStringLiteral("e"), QStringLiteral("expression")},
        QStringLiteral("Calculate <text> once the window is open, as if typed (repeatable)."),
        QStringLiteral("text"));
    const QCommandLineOption tab(QStringLiteral("tab"),
                                 QStringLiteral("Show the tab <label> (Profile, Tables, ...)."),
                                 QStringLiteral("label"));
    const QCommandLineOption compare(
        QStringLiteral("compare"),
        QStringLiteral("Compare the expressions with <text> (turns Mirror on)."),
        QStringLiteral("text"));
    const QCommandLineOption measureStartup(
        QStringLiteral("measure-startup"),
        QStringLiteral("Print the milliseconds until the window is first drawn, then quit."));
    parser.addOptions({expression, compare, tab, measureStartup});
    parser.process(application);

    talvex::gui::DesktopApp desktop;
    // Watched from before the launch marks the run unfinished on disk, so that no moment of a
    // run leaves that mark behind after a logout; a signal during the launch is acted on once
    // an event loop runs (the crash alert's, or the application's).
    talvex::gui::TerminationSignals termination;
    QObject::connect(
        &termination, &talvex::gui::TerminationSignals::received, &desktop.window(),
        [&desktop] { desktop.whenIdle([&desktop] { desktop.controller().TalvexQuit(); }); });
    desktop.launch();
    if (desktop.terminationRequested()) {
        // The crash alert's factory reset (or a signal while it was shown) ends the run before
        // the window opens.
        desktop.finish();
        return 0;
    }

    talvex::gui::MainWindow& window = desktop.window();
    FirstPaintClock clock(sinceStart, window, desktop.controller());
    if (parser.isSet(measureStartup)) {
        application.installEventFilter(&clock);
    }
    window.show();
    const QStringList expressions = parser.values(expression);
    const QString comparison = parser.value(compare);
    const QString tabLabel = parser.value(tab);
    if (!expressions.isEmpty() || !comparison.isEmpty() || !tabLabel.isEmpty()) {
        QTimer::singleShot(0, &window, [&window, expressions, comparison, tabLabel] {
            for (const QString& text : expressions) {
                window.requestExpression(text);
            }
            if (!comparison.isEmpty()) {
                window.compareWith(comparison);
            }
            if (!tabLabel.isEmpty()) {
                window.selectTab(tabLabel.toStdString());
            }
        });
    }
    return desktop.exec();
}
