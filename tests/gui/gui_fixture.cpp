#include "gui_fixture.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include "gui/main_window.h"

namespace talvex::gui::testing {

namespace {

// How long an answer may wait for its modal window.
constexpr int kModalTimeoutMilliseconds = 20000;

}  // namespace

TemporaryHome::TemporaryHome() {
    const QString home = m_dir.path();
    const std::vector<std::pair<const char*, QString>> variables = {
        {"HOME", home},
        {"XDG_CONFIG_HOME", home + QStringLiteral("/.config")},
        {"XDG_DATA_HOME", home + QStringLiteral("/.local/share")},
        {"XDG_CACHE_HOME", home + QStringLiteral("/.cache")},
        {"XDG_RUNTIME_DIR", home + QStringLiteral("/runtime")},
    };
    for (const auto& [name, value] : variables) {
        m_saved.emplace_back(QByteArray(name), qEnvironmentVariableIsSet(name)
                                                   ? std::optional<QByteArray>(qgetenv(name))
                                                   : std::nullopt);
        qputenv(name, value.toLocal8Bit());
    }
    QDir().mkpath(home + QStringLiteral("/runtime"));
    QFile::setPermissions(home + QStringLiteral("/runtime"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    for (const QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, home + QStringLiteral("/.config"));
    }
}

TemporaryHome::~TemporaryHome() {
    for (const auto& [name, value] : m_saved) {
        if (value) {
            qputenv(name.constData(), *value);
        } else {
            qunsetenv(name.constData());
        }
    }
}

QString TemporaryHome::settingsFile() const {
    return path() + QStringLiteral("/.config/Corvessa/Talvex.conf");
}

QString TemporaryHome::supportFolder() const {
    return path() + QStringLiteral("/.local/share/Corvessa/Talvex");
}

QProcessEnvironment TemporaryHome::environment() const {
    // The variables were set in this process, so the system environment already holds them.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    return environment;
}

GuiTest::~GuiTest() {
    delete m_alertPoll;
    if (m_app) {
        m_app->finish();
        m_app.reset();
    }
}

void GuiTest::start() {
    m_app = std::make_unique<DesktopApp>();
    m_app->launch();
    ASSERT_FALSE(m_app->terminationRequested());
    window().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window()));
    window().activateWindow();
    static_cast<void>(QTest::qWaitForWindowActive(&window()));
}

void GuiTest::quit() {
    trigger("quitAction");
    EXPECT_TRUE(m_app->terminationRequested());
    m_app->finish();
    m_app.reset();
}

QLineEdit* GuiTest::expressionField() { return find<QLineEdit>("expressionField"); }

void GuiTest::request(const QString& text) {
    QLineEdit* field = expressionField();
    field->clear();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

QString GuiTest::shown(const char* fieldName) {
    const QTextEdit* field = find<QTextEdit>(fieldName);
    return field == nullptr ? QString() : field->toPlainText();
}

QString GuiTest::statusMessage() { return window().statusBar()->currentMessage(); }

void GuiTest::click(const char* buttonName) {
    // Buttons of dialogs are children of the dialog, which the main window owns.
    auto* button = find<QPushButton>(buttonName);
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
}

void GuiTest::trigger(const char* actionName) {
    auto* action = find<QAction>(actionName);
    ASSERT_NE(action, nullptr);
    action->trigger();
}

void GuiTest::choose(const char* popUpName, const QString& title) {
    auto* combo = find<QComboBox>(popUpName);
    ASSERT_NE(combo, nullptr);
    const int wanted = combo->findText(title);
    ASSERT_GE(wanted, 0) << "no item " << title.toStdString();
    // Opens the list and clicks the item, as a person picks one.
    combo->showPopup();
    QAbstractItemView* list = combo->view();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
    // A release right after the list opened would count as the click that opened it.
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    const QModelIndex index = combo->model()->index(wanted, combo->modelColumn());
    list->scrollTo(index);
    const QPoint centre = list->visualRect(index).center();
    QTest::mouseMove(list->viewport(), centre);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
    ASSERT_TRUE(QTest::qWaitFor([list] { return !list->isVisible(); }));
}

QStringList GuiTest::titles(const char* popUpName) {
    QStringList list;
    if (const auto* combo = find<QComboBox>(popUpName)) {
        for (int i = 0; i < combo->count(); ++i) {
            list.append(combo->itemText(i));
        }
    }
    return list;
}

QString GuiTest::selected(const char* popUpName) {
    const auto* combo = find<QComboBox>(popUpName);
    return combo == nullptr ? QString() : combo->currentText();
}

std::shared_ptr<bool> GuiTest::answerNextDialog(const char* objectName,
                                                std::function<void(QWidget&)> answer) {
    auto answered = std::make_shared<bool>(false);
    auto poll = std::make_unique<QTimer>();
    QTimer* timer = poll.get();
    auto waited = std::make_shared<QElapsedTimer>();
    waited->start();
    timer->setInterval(10);
    const QString name = QString::fromLatin1(objectName);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, waited, answered, answer, name] {
        QWidget* modal = QApplication::activeModalWidget();
        if ((modal == nullptr || modal->objectName() != name) &&
            waited->elapsed() < kModalTimeoutMilliseconds) {
            return;
        }
        timer->stop();
        if (modal != nullptr && modal->objectName() == name) {
            *answered = true;
            answer(*modal);
        }
    });
    timer->start();
    m_dialogPolls.push_back(std::move(poll));
    return answered;
}

std::shared_ptr<bool> GuiTest::answerNextAlertBox(std::function<void(QMessageBox&)> answer) {
    auto answered = std::make_shared<bool>(false);
    // Owned by the test, so that an alert that never came cannot be answered by a later test.
    delete m_alertPoll;
    m_alertPoll = new QTimer;
    QTimer* poll = m_alertPoll;
    auto waited = std::make_shared<QElapsedTimer>();
    waited->start();
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, waited, answered, answer] {
        // Only an alert: the settings dialog is modal too.
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr && waited->elapsed() < kModalTimeoutMilliseconds) {
            return;
        }
        poll->stop();
        if (box != nullptr) {
            *answered = true;
            answer(*box);
        }
    });
    poll->start();
    return answered;
}

}  // namespace talvex::gui::testing
