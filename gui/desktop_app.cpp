#include "gui/desktop_app.h"

#include <QApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>

#include "gui/application_icon.h"
#include "gui/busy_state.h"
#include "gui/file_dialogs.h"
#include "gui/list_panels.h"
#include "gui/log_window.h"
#include "gui/main_window.h"
#include "gui/message_box_alerts.h"
#include "gui/print_service.h"
#include "gui/registration_defaults.h"
#include "gui/settings_dialog.h"
#include "gui/shell_windows.h"

namespace talvex::gui {

void configureApplication() {
    QCoreApplication::setOrganizationName(QStringLiteral("Corvessa"));
    QCoreApplication::setApplicationName(QStringLiteral("Talvex"));
    QCoreApplication::setApplicationVersion(bundleVersion());
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Talvex"));
    QGuiApplication::setDesktopFileName(QStringLiteral("talvex"));
    QApplication::setWindowIcon(applicationIcon());
}

std::optional<std::string> sampleExpressions() {
    QFile resource(QStringLiteral(":/Sample Expressions.txt"));
    if (!resource.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return resource.readAll().toStdString();
}

QString bundleVersion() { return QStringLiteral(TALVEX_VERSION); }

app::LaunchSettings standardLaunchSettings() {
    return app::LaunchSettings{
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString(),
        bundleVersion().toStdString()};
}

DesktopApp::DesktopApp(app::LaunchSettings settings)
    : m_settings(std::move(settings)), m_defaults(m_domain) {
    ensureResources();
    app::TalvexContoller::initialize(m_defaults, readRegistrationDefaults());

    m_window = std::make_unique<MainWindow>();
    m_busy = new BusyState(*m_window, m_window->rollButton());
    m_runner = std::make_unique<app::BackgroundRunner>(*m_busy);
    m_busy->setRunner(*m_runner);
    m_settingsDialog = new SettingsDialog(m_window.get());
    m_panel = std::make_unique<DialogSettingsPanel>(*m_settingsDialog);
    m_alerts = std::make_unique<MessageBoxAlerts>(*m_window);
    m_shell = std::make_unique<ShellWindows>(*m_window);
    m_listPanels = std::make_unique<DialogListPanels>(*m_window);
    m_printer = std::make_unique<QtPrintService>(m_window.get());
    m_dialogs = std::make_unique<QtFileDialogs>(*m_window);
    m_controller = std::make_unique<app::TalvexContoller>(
        app::ControllerPorts{*m_window, *m_panel, *m_alerts, *m_shell, m_defaults, m_files,
                             *m_listPanels, m_window->logWindow(), *m_printer, *m_dialogs, m_clock,
                             *m_runner, [] { return sampleExpressions(); }},
        m_settings);
    m_window->bind(*m_controller, *m_shell, *m_runner);
    m_settingsDialog->bind(*m_controller);
}

DesktopApp::~DesktopApp() = default;

void DesktopApp::launch() { m_controller->applicationWillFinishLaunching(); }

bool DesktopApp::terminationRequested() const { return m_shell->terminationRequested(); }

void DesktopApp::finish() {
    if (m_finished) {
        return;
    }
    m_finished = true;
    m_controller->applicationWillTerminate();
}

void DesktopApp::whenIdle(std::function<void()> work) {
    if (!m_runner->isBusy()) {
        work();
        return;
    }
    m_runner->cancel();
    QTimer::singleShot(20, m_window.get(),
                       [this, work = std::move(work)]() mutable { whenIdle(std::move(work)); });
}

int DesktopApp::exec() {
    // Asked for before the loop runs: the queued exit would be lost, the loop never left.
    if (terminationRequested()) {
        finish();
        return 0;
    }
    // Queued, so that the action asking to end returns before the loop stops. exit() rather
    // than quit(): quit() first asks every window to close, and the main window answers a
    // close by asking to quit again. Connected only here, where the application's loop runs:
    // an exit() with no loop to end would make the next modal loop (an alert's) return at once.
    QObject::connect(
        m_shell.get(), &ShellWindows::terminating, qApp, [] { QCoreApplication::exit(0); },
        Qt::QueuedConnection);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, m_window.get(), [this] { finish(); });
    if (!m_window->isVisible()) {
        m_window->show();
    }
    const int code = QApplication::exec();
    finish();
    return code;
}

}  // namespace talvex::gui
