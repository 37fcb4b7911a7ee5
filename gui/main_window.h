#pragma once

#include <QMainWindow>
#include <QStringList>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "app/ports.h"
#include "core/styled_text.h"

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTabWidget;
class QTextEdit;
class QTimer;

namespace talvex::app {
class BackgroundRunner;
class TalvexContoller;
}  // namespace talvex::app

namespace talvex::gui {

class LogWindow;
class ShellWindows;
class ViewWindow;

// Marks the commands that end the expression-list pop-up, which are no entries of it.
inline constexpr int kCommandRole = Qt::UserRole + 1;

// The labels of the tabs, in their order.
inline constexpr std::array<const char*, 5> kTabLabels = {"Profile", "Tables", "Diagrams", "Versus",
                                                          "Versus with Tie"};

// The main window: the expression field, the pop-ups and check boxes, the display fields in
// five tabs, and the menus. It keeps no state of its own beyond what its widgets show; every
// action goes to the controller.
//
// Widgets carry object names for the tests: "expressionField", "rollButton", the fields by
// their port names ("rollField", "statisticsField", "compareStatisticsField", "tableField",
// "diagramField", "tableCompareField1", ...), "expressionPop", "comparePop",
// "expressionListPop", "compareListPop", "cycleCheckBox", "logCheckBox", "mirrorCheckBox",
// "backButton", "forwardButton", "tabs", "linksLabel" and the actions ("settingsAction", ...).
class MainWindow final : public QMainWindow, public app::MainWindow {
    Q_OBJECT

  public:
    MainWindow();
    ~MainWindow() override;

    // Connects the widgets and menus to the controller and the application's other windows;
    // both must outlive the window.
    void bind(app::TalvexContoller& controller, ShellWindows& shell, app::BackgroundRunner& runner);
    // The Roll button; it reads "Cancel" while a calculation runs.
    [[nodiscard]] QPushButton& rollButton() { return *m_rollButton; }

    // The log window; the window owns it.
    [[nodiscard]] LogWindow& logWindow() { return *m_logWindow; }
    void showLog();
    // The titles of the list menu's items, commands included, as the menu would show them now.
    [[nodiscard]] QStringList listMenuTitles();

    // The links area at the bottom and the title of its menu item.
    void setLinksShown(bool shown, const QString& menuItemTitle);
    // The floating window of a view, created on first use.
    ViewWindow& viewWindow(app::TextView view);
    void openView(app::TextView view);
    // Types the text into the expression field and rolls, as a person would.
    void requestExpression(const QString& text);
    // Turns Mirror on, calculates the text and chooses it as the comparison of the expression
    // in the field, as a person would with the pop-up.
    void compareWith(const QString& text);

    // app::MainWindow
    [[nodiscard]] std::string fieldText(app::TextField field) const override;
    [[nodiscard]] core::StyledText fieldAttributedText(app::TextField field) const override;
    void setFieldText(app::TextField field, const std::string& text) override;
    void setFieldAttributedText(app::TextField field, const core::StyledText& text) override;
    [[nodiscard]] std::string viewText(app::TextView view) const override;
    void setViewAttributedText(app::TextView view, const core::StyledText& text) override;
    void clearView(app::TextView view) override;
    [[nodiscard]] std::vector<std::string> popUpTitles(app::PopUp popUp) const override;
    void insertPopUpTitle(app::PopUp popUp, const std::string& title, std::size_t index) override;
    void selectPopUpTitle(app::PopUp popUp, const std::string& title) override;
    void selectPopUpIndex(app::PopUp popUp, std::size_t index) override;
    [[nodiscard]] std::string selectedPopUpTitle(app::PopUp popUp) const override;
    void removeAllPopUpItems(app::PopUp popUp) override;
    void removePopUpItem(app::PopUp popUp, std::size_t index) override;
    [[nodiscard]] long selectedPopUpIndex(app::PopUp popUp) const override;
    [[nodiscard]] bool isChecked(app::CheckBox box) const override;
    void setChecked(app::CheckBox box, bool on) override;
    void setCheckBoxEnabled(app::CheckBox box, bool enabled) override;
    [[nodiscard]] double tableFieldHeight() const override;
    void placeCaretAtEnd() override;
    [[nodiscard]] std::string selectedTabLabel() const override;
    void selectTab(const std::string& label) override;
    void showMessage(const std::string& message) override;
    void runOnNextTurn(std::function<void()> work) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildWidgets();
    void buildMenus();
    QTextEdit* makeField(app::TextField field, const char* name);
    [[nodiscard]] QComboBox* popUp(app::PopUp popUp) const;
    // The number of items before the commands that end the expression-list pop-up.
    [[nodiscard]] int entryCount(app::PopUp popUp) const;
    void runListCommand(const QString& command);
    void fillListMenu();

    static constexpr std::size_t kFieldCount = app::kDisplayPairCount;

    app::TalvexContoller* m_controller = nullptr;
    app::BackgroundRunner* m_runner = nullptr;
    ShellWindows* m_shell = nullptr;

    QLineEdit* m_expressionField = nullptr;
    QPushButton* m_rollButton = nullptr;
    QPushButton* m_backButton = nullptr;
    QPushButton* m_forwardButton = nullptr;
    // Index 0 (the expression) is the line edit above; the others are read-only text fields.
    std::array<QTextEdit*, kFieldCount> m_fields{};
    // What the controller last wrote into each field, with its styles.
    std::array<core::StyledText, kFieldCount> m_fieldTexts;
    // The views' content; a view's window shows it once opened.
    std::array<core::StyledText, kFieldCount> m_viewTexts;
    std::array<ViewWindow*, kFieldCount> m_viewWindows{};
    std::array<QComboBox*, 4> m_popUps{};
    std::array<QCheckBox*, 3> m_checkBoxes{};
    QTabWidget* m_tabs = nullptr;
    QLabel* m_links = nullptr;

    QAction* m_settingsAction = nullptr;
    QAction* m_resetAction = nullptr;
    QAction* m_quitAction = nullptr;
    QAction* m_rollAction = nullptr;
    QAction* m_backAction = nullptr;
    QAction* m_forwardAction = nullptr;
    QAction* m_runningAction = nullptr;
    QAction* m_linksAction = nullptr;
    QAction* m_helpAction = nullptr;
    QAction* m_aboutAction = nullptr;
    QMenu* m_calculateMenu = nullptr;
    QMenu* m_listMenu = nullptr;
    QAction* m_importListAction = nullptr;
    QAction* m_exportListAction = nullptr;
    QAction* m_exportLogAction = nullptr;
    QAction* m_printAction = nullptr;
    QAction* m_printLogAction = nullptr;
    QAction* m_showLogAction = nullptr;
    QAction* m_clearLogAction = nullptr;
    QAction* m_exportLogToFolderAction = nullptr;
    std::array<QAction*, 4> m_stepActions{};
    std::array<QPushButton*, 4> m_stepButtons{};
    LogWindow* m_logWindow = nullptr;
    std::array<QAction*, kFieldCount> m_viewActions{};

    // Resizing redraws the displays once the size settles.
    QTimer* m_resizeSettled = nullptr;
};

}  // namespace talvex::gui
