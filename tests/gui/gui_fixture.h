#pragma once

#include <gtest/gtest.h>

#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/ports.h"
#include "gui/desktop_app.h"
#include "gui/main_window.h"

class QComboBox;
class QMessageBox;
class QTimer;
class QLineEdit;
class QTextEdit;
class QWidget;

namespace talvex::gui::testing {

// A home folder of its own for one test: HOME and the XDG folders point into a fresh temporary
// folder (and back when done), and QSettings' user folder follows, since QSettings reads the
// environment only once per process.
class TemporaryHome {
  public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    [[nodiscard]] QString path() const { return m_dir.path(); }
    [[nodiscard]] QString settingsFile() const;
    [[nodiscard]] QString supportFolder() const;
    // The process environment with this home, for a child process.
    [[nodiscard]] QProcessEnvironment environment() const;

  private:
    QTemporaryDir m_dir;
    std::vector<std::pair<QByteArray, std::optional<QByteArray>>> m_saved;
};

// The real application in a temporary home, driven as a person drives it.
class GuiTest : public ::testing::Test {
  protected:
    GuiTest() = default;
    ~GuiTest() override;

    // Builds the application, launches it and shows its window.
    void start();
    // Ends the run as the Quit command does and drops the application.
    void quit();
    void restart() {
        quit();
        start();
    }

    [[nodiscard]] MainWindow& window() { return m_app->window(); }
    [[nodiscard]] DesktopApp& desktop() { return *m_app; }

    template <typename Widget>
    [[nodiscard]] Widget* find(const char* name) {
        auto* found = window().findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << "no widget named " << name;
        return found;
    }

    // Types the text into the (emptied) expression field and presses Return.
    void request(const QString& text);
    [[nodiscard]] QLineEdit* expressionField();
    // The text a display field shows.
    [[nodiscard]] QString shown(const char* fieldName);
    [[nodiscard]] QString statusMessage();
    void click(const char* buttonName);
    void trigger(const char* actionName);
    // Opens the pop-up's list and clicks the item, which is how `activated` reaches the
    // controller.
    void choose(const char* popUpName, const QString& title);
    [[nodiscard]] QStringList titles(const char* popUpName);
    [[nodiscard]] QString selected(const char* popUpName);

    // Runs `answer` on the next alert once it appears, from the event loop the alert runs.
    // Returns a flag that tells whether it was answered.
    std::shared_ptr<bool> answerNextAlertBox(std::function<void(QMessageBox&)> answer);
    // The same for the next modal dialogue of that object name (a panel, a file dialogue).
    std::shared_ptr<bool> answerNextDialog(const char* objectName,
                                           std::function<void(QWidget&)> answer);

    TemporaryHome m_home;
    std::unique_ptr<DesktopApp> m_app;
    QTimer* m_alertPoll = nullptr;
    std::vector<std::unique_ptr<QTimer>> m_dialogPolls;
};

}  // namespace talvex::gui::testing
