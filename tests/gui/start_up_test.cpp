// Start-up and the end of a run through the real program: a killed run is noticed, the factory
// reset keeps or drops the support folder, the about and help windows, the real executable.

#include "app/controller/start_up.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <csignal>

#include "gui/settings_dialog.h"
#include "gui/shell_windows.h"
#include "gui_fixture.h"

namespace talvex::gui::testing {
namespace {

// What an alert showed and how it was answered.
struct AlertSeen {
    QString text;
    QStringList buttons;
    bool offeredPreserve = false;
};

class StartUpTest : public GuiTest {
  protected:
    // Answers the next alert with the named button, the preserve box set as asked.
    std::shared_ptr<AlertSeen> answerNextAlert(const char* buttonName, bool preserve = false) {
        auto seen = std::make_shared<AlertSeen>();
        static_cast<void>(answerNextAlertBox([seen, buttonName, preserve](QMessageBox& alert) {
            QMessageBox* box = &alert;
            seen->text = box->text();
            for (QAbstractButton* button : box->buttons()) {
                seen->buttons.append(button->text());
            }
            if (QCheckBox* check = box->checkBox()) {
                seen->offeredPreserve = true;
                check->setChecked(preserve);
            }
            auto* button = box->findChild<QPushButton*>(QString::fromLatin1(buttonName));
            if (button == nullptr) {
                ADD_FAILURE() << "no button " << buttonName;
                box->reject();
                return;
            }
            button->click();
        }));
        return seen;
    }

    // A file in the support folder, standing for the log and the lists.
    QString keepsake() { return m_home.supportFolder() + QStringLiteral("/keepsake.txt"); }
    void writeKeepsake() {
        QFile file(keepsake());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("lists and log");
    }

    [[nodiscard]] QString settingsText() const {
        QFile file(m_home.settingsFile());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    // Starts the real program in this home and sends it the signal once it has started.
    void signalARunningProgram(int signal, QProcess::ExitStatus expected) {
        QProcess program;
        program.setProcessEnvironment(m_home.environment());
        program.start(QStringLiteral(TALVEX_GUI_PATH), {});
        ASSERT_TRUE(program.waitForStarted(20000));
        // Once the window is being prepared, the run is marked as not yet ended normally.
        ASSERT_TRUE(QTest::qWaitFor(
            [this] { return settingsText().contains(QStringLiteral("didCrash=true")); }, 20000))
            << settingsText().toStdString();
        ::kill(static_cast<pid_t>(program.processId()), signal);
        ASSERT_TRUE(program.waitForFinished(20000));
        EXPECT_EQ(program.exitStatus(), expected);
    }
    // As a crash would.
    void killARunningProgram() { signalARunningProgram(SIGKILL, QProcess::CrashExit); }

    // A setting that differs from the factory's.
    void saveMaxBarOf33() {
        trigger("settingsAction");
        desktop().settingsDialog().field(app::PanelField::maxBar)->setText(QStringLiteral("33"));
        click("saveButton");
    }

    // The run asked to end: finish it as the program would and drop it.
    void endTheEndedRun() {
        ASSERT_TRUE(desktop().terminationRequested());
        m_app->finish();
        m_app.reset();
    }

    // Builds and launches the application without expecting it to stay.
    void launch() {
        m_app = std::make_unique<DesktopApp>();
        m_app->launch();
    }
};

TEST_F(StartUpTest, TheAboutWindowShowsTheVersion) {
    start();
    trigger("aboutAction");
    auto* label = window().findChild<QLabel*>(QStringLiteral("aboutVersionLabel"));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("v ") + bundleVersion());
    EXPECT_TRUE(desktop().shell().aboutWindow().isVisible());
}

TEST_F(StartUpTest, HelpOpensOnTheOverview) {
    start();
    trigger("helpAction");
    auto* tabs = window().findChild<QTabWidget*>(QStringLiteral("helpTabs"));
    ASSERT_NE(tabs, nullptr);
    EXPECT_TRUE(desktop().shell().helpWindow().isVisible());
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), QStringLiteral("Overview"));
}

TEST_F(StartUpTest, ARunMarksItselfUnfinishedOnDiskAndAQuitMarksItFinished) {
    start();
    EXPECT_TRUE(settingsText().contains(QStringLiteral("didCrash=true")));
    EXPECT_TRUE(QDir(m_home.supportFolder()).exists());
    quit();
    EXPECT_TRUE(settingsText().contains(QStringLiteral("didCrash=false")));
}

TEST_F(StartUpTest, AKilledRunIsNoticedAndKeepMySettingsGoesOn) {
    start();
    saveMaxBarOf33();
    quit();
    ASSERT_NO_FATAL_FAILURE(killARunningProgram());

    const auto seen = answerNextAlert("defaultButton");
    launch();
    EXPECT_EQ(seen->text, QString::fromLatin1(app::kResetCrashMessage));
    EXPECT_TRUE(seen->buttons.contains(QStringLiteral("Keep my Settings")));
    EXPECT_TRUE(seen->buttons.contains(QStringLiteral("Restore Factory Settings")));
    EXPECT_TRUE(seen->offeredPreserve);
    EXPECT_FALSE(desktop().terminationRequested());
    EXPECT_EQ(desktop().controller().prefer().maxBar(), 33);
}

TEST_F(StartUpTest, RestoringAfterAKilledRunDropsSettingsAndSupportFolderAndEndsTheRun) {
    start();
    saveMaxBarOf33();
    quit();
    ASSERT_NO_FATAL_FAILURE(writeKeepsake());
    ASSERT_NO_FATAL_FAILURE(killARunningProgram());

    static_cast<void>(answerNextAlert("alternateButton"));
    launch();
    ASSERT_NO_FATAL_FAILURE(endTheEndedRun());
    EXPECT_FALSE(QFile::exists(keepsake()));
    EXPECT_FALSE(settingsText().contains(QStringLiteral("maxBar=33")));
    // The next start is a first start with the factory settings and no alert.
    start();
    EXPECT_EQ(desktop().controller().prefer().maxBar(), 10);
}

TEST_F(StartUpTest, AResetWithThePreserveBoxKeepsListsAndLogButDropsTheSettings) {
    start();
    ASSERT_NO_FATAL_FAILURE(writeKeepsake());
    saveMaxBarOf33();

    const auto seen = answerNextAlert("alternateButton", true);
    trigger("resetAction");
    EXPECT_EQ(seen->text, QString::fromLatin1(app::kResetAskedMessage));
    EXPECT_TRUE(seen->buttons.contains(QStringLiteral("Restore Factory Settings and Quit")));
    ASSERT_NO_FATAL_FAILURE(endTheEndedRun());
    EXPECT_TRUE(QFile::exists(keepsake()));
    EXPECT_FALSE(settingsText().contains(QStringLiteral("maxBar")));
    start();
    EXPECT_EQ(desktop().controller().prefer().maxBar(), 10);
}

TEST_F(StartUpTest, AResetWithoutThePreserveBoxDeletesTheSupportFolder) {
    start();
    ASSERT_NO_FATAL_FAILURE(writeKeepsake());
    static_cast<void>(answerNextAlert("alternateButton", false));
    trigger("resetAction");
    ASSERT_NO_FATAL_FAILURE(endTheEndedRun());
    EXPECT_FALSE(QFile::exists(keepsake()));
}

TEST_F(StartUpTest, CancellingTheResetChangesNothing) {
    start();
    ASSERT_NO_FATAL_FAILURE(writeKeepsake());
    static_cast<void>(answerNextAlert("defaultButton", false));
    trigger("resetAction");
    EXPECT_FALSE(desktop().terminationRequested());
    EXPECT_TRUE(QFile::exists(keepsake()));
    request(QStringLiteral("2d6"));
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("2d6")));
}

TEST_F(StartUpTest, TheProgramOpensItsWindowAndEndsNormally) {
    QProcess program;
    program.setProcessEnvironment(m_home.environment());
    program.start(QStringLiteral(TALVEX_GUI_PATH), {QStringLiteral("--measure-startup")});
    ASSERT_TRUE(program.waitForFinished(30000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(QString::fromUtf8(program.readAllStandardOutput())
                    .contains(QStringLiteral("ms to the first paint")));
    // The run ended normally, so the next start offers no reset.
    EXPECT_TRUE(settingsText().contains(QStringLiteral("didCrash=false")));
}

TEST_F(StartUpTest, ALogoutsTerminationSignalEndsTheRunNormally) {
    ASSERT_NO_FATAL_FAILURE(signalARunningProgram(SIGTERM, QProcess::NormalExit));
    EXPECT_TRUE(settingsText().contains(QStringLiteral("didCrash=false")));
}

}  // namespace
}  // namespace talvex::gui::testing
