#pragma once

// The few things the application logic needs of the toolkit, the user-defaults store and the
// file system. The desktop app implements them with Qt; the tests and benchmarks with
// in-memory fakes.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/styled_text.h"

namespace talvex::app {

// The main window's text fields, in the order of their scrollable views (field i and view i are
// one pair).
enum class TextField : std::uint8_t {
    expression,
    roll,
    statistics,
    compareStatistics,
    table,
    diagram,
    tableCompare1,
    tableCompare2,
    diagramCompare1,
    diagramCompare2,
    versus,
    versusLegend,
    versusWithTie,
    versusWithTieLegend,
};

// The scrollable twin of each field, in the same order.
enum class TextView : std::uint8_t {
    expression,
    roll,
    statistics,
    comparisonStatistics,
    profileA,
    profileB,
    tablesA,
    tablesB,
    diagramsA,
    diagramsB,
    versusA,
    versusB,
    versusWithTieA,
    versusWithTieB,
};

inline constexpr std::size_t kDisplayPairCount = 14;

[[nodiscard]] constexpr TextView viewOf(TextField field) noexcept {
    return static_cast<TextView>(static_cast<std::uint8_t>(field));
}

enum class PopUp : std::uint8_t { expression, compare, expressionList, compareList };

enum class CheckBox : std::uint8_t { cycle, log, mirror };

// The main window as the controller sees it.
class MainWindow {
  public:
    virtual ~MainWindow() = default;

    [[nodiscard]] virtual std::string fieldText(TextField field) const = 0;
    [[nodiscard]] virtual core::StyledText fieldAttributedText(TextField field) const = 0;
    virtual void setFieldText(TextField field, const std::string& text) = 0;
    // Works on fields the user cannot edit as well.
    virtual void setFieldAttributedText(TextField field, const core::StyledText& text) = 0;

    [[nodiscard]] virtual std::string viewText(TextView view) const = 0;
    // Replaces the whole content and scrolls to the top-left corner.
    virtual void setViewAttributedText(TextView view, const core::StyledText& text) = 0;
    virtual void clearView(TextView view) = 0;

    [[nodiscard]] virtual std::vector<std::string> popUpTitles(PopUp popUp) const = 0;
    // An existing item with the same title is removed first.
    virtual void insertPopUpTitle(PopUp popUp, const std::string& title, std::size_t index) = 0;
    // A title the pop-up does not hold leaves the selection as it is.
    virtual void selectPopUpTitle(PopUp popUp, const std::string& title) = 0;
    // An index out of range leaves the selection as it is.
    virtual void selectPopUpIndex(PopUp popUp, std::size_t index) = 0;
    // Empty when nothing is selected.
    [[nodiscard]] virtual std::string selectedPopUpTitle(PopUp popUp) const = 0;
    virtual void removeAllPopUpItems(PopUp popUp) = 0;
    // An index out of range removes nothing.
    virtual void removePopUpItem(PopUp popUp, std::size_t index) = 0;
    // -1 when nothing is selected.
    [[nodiscard]] virtual long selectedPopUpIndex(PopUp popUp) const = 0;

    [[nodiscard]] virtual bool isChecked(CheckBox box) const = 0;
    virtual void setChecked(CheckBox box, bool on) = 0;
    virtual void setCheckBoxEnabled(CheckBox box, bool enabled) = 0;

    // The frame height of the table field, in points.
    [[nodiscard]] virtual double tableFieldHeight() const = 0;
    // The insertion point at the end of the expression field's text.
    virtual void placeCaretAtEnd() = 0;

    [[nodiscard]] virtual std::string selectedTabLabel() const = 0;
    virtual void selectTab(const std::string& label) = 0;

    // A one-line message for the person (a request that could not be calculated); the empty
    // text removes it.
    virtual void showMessage(const std::string& message) = 0;

    // One-shot timer of interval zero: runs the work on the next turn of the event loop.
    virtual void runOnNextTurn(std::function<void()> work) = 0;
};

// The settings panel's controls.
enum class PanelField : std::uint8_t {
    dividers,
    height,
    diagramHeight,
    maxBar,
    logSize,
    statisticPrecision,
    valuePrecision,
    weightPrecision,
};
// Two-row radio matrices: row 0 means true, row 1 false.
enum class PanelMatrix : std::uint8_t { bars, intervalWeights };
enum class PanelCheckBox : std::uint8_t {
    displaySameBar,
    displayLegend,
    logStatistics,
    logTable,
    logDiagram,
    logRolls,
    logLegend,
};

class SettingsPanel {
  public:
    virtual ~SettingsPanel() = default;

    [[nodiscard]] virtual std::string text(PanelField field) const = 0;
    virtual void setText(PanelField field, const std::string& text) = 0;
    [[nodiscard]] virtual int selectedRow(PanelMatrix matrix) const = 0;
    virtual void selectRow(PanelMatrix matrix, int row) = 0;
    [[nodiscard]] virtual bool isChecked(PanelCheckBox box) const = 0;
    virtual void setChecked(PanelCheckBox box, bool on) = 0;

    virtual void show() = 0;
    virtual void close() = 0;
    // Tells the person, inside the panel, why the settings cannot be taken.
    virtual void showProblem(const std::string& message) = 0;
};

// A modal alert with two buttons and, optionally, the "preserve lists and log" check box.
// A modal alert with up to three buttons; an empty title leaves that button out.
struct AlertRequest {
    std::string message;
    std::string informativeText;
    std::string defaultButton;
    std::string alternateButton;
    std::string otherButton;
    bool offersPreserveListsAndLog = false;
};

enum class AlertButton : std::uint8_t { defaultButton, alternateButton, otherButton };

struct AlertAnswer {
    AlertButton button = AlertButton::defaultButton;
    bool preserveListsAndLog = false;
};

class Alerts {
  public:
    virtual ~Alerts() = default;
    // Runs the alert modally and returns what the person chose.
    [[nodiscard]] virtual AlertAnswer runAlert(const AlertRequest& request) = 0;
};

// The application around the main window: its other windows and its end.
class ApplicationShell {
  public:
    virtual ~ApplicationShell() = default;

    // Ends the application; the front end calls applicationWillTerminate on the way out.
    virtual void terminate() = 0;
    // The version text of the about window.
    virtual void setAboutVersionText(const std::string& text) = 0;
    virtual void selectHelpTab(const std::string& label) = 0;
    // Shows or hides the links area and titles the menu item that toggles it.
    virtual void showLinks(bool shown, const std::string& menuItemTitle) = 0;
};

// The fields of the Save As panel.
struct SaveAsFields {
    std::string name;
    std::string expressions;
};

// The fields and buttons of the lists-folder panel.
struct FolderFields {
    std::string currentFolder;
    std::string newFolder;
};
enum class FolderButton : std::uint8_t { change, defaultFolder, reload, cancel };

// The modal panels of the expression lists. Each call returns when its panel has closed.
class ListPanels {
  public:
    virtual ~ListPanels() = default;

    // The expressions editor with the text to edit: true when the person chose Load, and the
    // text is then what they left in it.
    [[nodiscard]] virtual bool runExpressionsPanel(std::string& text) = 0;
    // The Save As panel: `save` answers its Save button, may change the fields shown, and
    // returns true when the panel is to close. Cancel closes it without a call.
    virtual void runSaveAsPanel(SaveAsFields& fields,
                                const std::function<bool(SaveAsFields&)>& save) = 0;
    // The lists-folder panel: `press` answers every button but Cancel, may change the fields
    // shown, and returns true when the panel is to close.
    virtual void runListsFolderPanel(
        FolderFields& fields, const std::function<bool(FolderButton, FolderFields&)>& press) = 0;
};

// The log window, which shows the whole log.
class LogWindow {
  public:
    virtual ~LogWindow() = default;
    // The log changed: show this text (a window that is not open may keep it for later).
    virtual void redraw(const core::StyledText& log) = 0;
    virtual void scrollToTop() = 0;
};

// One printed page of results: the four top fields and the two display fields of the tab.
struct PrintPage {
    core::StyledText expression;
    core::StyledText statistics;
    core::StyledText compareStatistics;
    core::StyledText roll;
    core::StyledText display1;
    core::StyledText display2;
};

// Printing through the system's print dialogue, on pages of 504 by 720 points.
class PrintService {
  public:
    virtual ~PrintService() = default;
    virtual void printPage(const PrintPage& page) = 0;
    virtual void printLog(const core::StyledText& log) = 0;
};

struct OpenDialogRequest {
    std::string title;
    std::string message;
    // File name extensions that may be chosen, without the dot.
    std::vector<std::string> fileTypes;
};

struct SaveDialogRequest {
    std::string title;
    std::string message;
    // The proposed file name without its extension.
    std::string proposedName;
    // The extension the saved name must have, without the dot.
    std::string requiredType;
    bool canCreateDirectories = true;
    bool canHideExtension = true;
};

// The system's open and save dialogues.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;
    // The chosen files in order; none when cancelled.
    [[nodiscard]] virtual std::vector<std::string> runOpenPanel(
        const OpenDialogRequest& request) = 0;
    // The chosen path, with the required extension; none when cancelled.
    [[nodiscard]] virtual std::optional<std::string> runSavePanel(
        const SaveDialogRequest& request) = 0;
};

// The local date and time, for the names of exported files.
struct LocalTime {
    int year = 1970;
    int month = 1;  // 1..12
    int day = 1;    // 1..31
    int hour = 0;   // 0..23
    int minute = 0;
    int second = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual LocalTime now() const = 0;
};

}  // namespace talvex::app
