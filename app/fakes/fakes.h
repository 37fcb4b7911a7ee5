#pragma once

// In-memory stand-ins for everything the controller reaches outside itself.

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/controller/request_log.h"
#include "app/defaults_store.h"
#include "app/file_system.h"
#include "app/ports.h"

namespace talvex::app::fakes {

struct FakePopUp {
    std::vector<std::string> titles;
    // -1 when nothing is selected.
    long selected = -1;
};

class FakeWindow final : public MainWindow {
  public:
    FakeWindow();

    [[nodiscard]] std::string fieldText(TextField field) const override;
    [[nodiscard]] core::StyledText fieldAttributedText(TextField field) const override;
    void setFieldText(TextField field, const std::string& text) override;
    void setFieldAttributedText(TextField field, const core::StyledText& text) override;
    [[nodiscard]] std::string viewText(TextView view) const override;
    void setViewAttributedText(TextView view, const core::StyledText& text) override;
    void clearView(TextView view) override;
    [[nodiscard]] std::vector<std::string> popUpTitles(PopUp popUp) const override;
    void insertPopUpTitle(PopUp popUp, const std::string& title, std::size_t index) override;
    void selectPopUpTitle(PopUp popUp, const std::string& title) override;
    void selectPopUpIndex(PopUp popUp, std::size_t index) override;
    [[nodiscard]] std::string selectedPopUpTitle(PopUp popUp) const override;
    void removeAllPopUpItems(PopUp popUp) override;
    void removePopUpItem(PopUp popUp, std::size_t index) override;
    [[nodiscard]] long selectedPopUpIndex(PopUp popUp) const override;
    [[nodiscard]] bool isChecked(CheckBox box) const override;
    void setChecked(CheckBox box, bool on) override;
    void setCheckBoxEnabled(CheckBox box, bool enabled) override;
    [[nodiscard]] bool isCheckBoxEnabled(CheckBox box) const;
    [[nodiscard]] double tableFieldHeight() const override { return m_tableFieldHeight; }
    void placeCaretAtEnd() override { ++m_caretPlacements; }
    [[nodiscard]] std::string selectedTabLabel() const override { return m_tab; }
    void selectTab(const std::string& label) override { m_tab = label; }
    void showMessage(const std::string& message) override { m_message = message; }
    void runOnNextTurn(std::function<void()> work) override;

    // For the tests.
    void setTableFieldHeight(double height) { m_tableFieldHeight = height; }
    // Runs what the one-shot timer holds, as the event loop's next turn would.
    void runPendingTimers();
    [[nodiscard]] std::size_t pendingTimers() const { return m_timers.size(); }
    [[nodiscard]] int caretPlacements() const { return m_caretPlacements; }
    [[nodiscard]] const std::string& message() const { return m_message; }
    [[nodiscard]] std::string viewPlainText(TextView view) const { return viewText(view); }
    // How often each field was written: a repeated request must not redisplay.
    [[nodiscard]] int fieldWrites(TextField field) const;

  private:
    std::array<core::StyledText, kDisplayPairCount> m_fields;
    std::array<core::StyledText, kDisplayPairCount> m_views;
    std::array<int, kDisplayPairCount> m_fieldWrites{};
    std::array<FakePopUp, 4> m_popUps;
    std::array<bool, 3> m_checks{};
    std::array<bool, 3> m_enabled{true, true, true};
    double m_tableFieldHeight = 100;
    int m_caretPlacements = 0;
    std::string m_tab = "Profile";
    std::string m_message;
    std::deque<std::function<void()>> m_timers;
};

class FakeSettingsPanel final : public SettingsPanel {
  public:
    [[nodiscard]] std::string text(PanelField field) const override;
    void setText(PanelField field, const std::string& text) override;
    [[nodiscard]] int selectedRow(PanelMatrix matrix) const override;
    void selectRow(PanelMatrix matrix, int row) override;
    [[nodiscard]] bool isChecked(PanelCheckBox box) const override;
    void setChecked(PanelCheckBox box, bool on) override;
    void show() override { m_shown = true; }
    void close() override { m_shown = false; }
    void showProblem(const std::string& message) override { m_problem = message; }

    [[nodiscard]] bool shown() const { return m_shown; }
    [[nodiscard]] const std::string& problem() const { return m_problem; }

  private:
    std::array<std::string, 8> m_texts;
    std::array<int, 2> m_rows{};
    std::array<bool, 7> m_checks{};
    bool m_shown = false;
    std::string m_problem;
};

// Answers each alert with the next scripted answer (the default button when none is left) and
// keeps what it was asked.
class FakeAlerts final : public Alerts {
  public:
    [[nodiscard]] AlertAnswer runAlert(const AlertRequest& request) override;

    std::deque<AlertAnswer> answers;
    std::vector<AlertRequest> asked;
};

class FakeShell final : public ApplicationShell {
  public:
    void terminate() override { ++terminations; }
    void setAboutVersionText(const std::string& text) override { aboutVersion = text; }
    void selectHelpTab(const std::string& label) override { helpTab = label; }
    void showLinks(bool shown, const std::string& menuItemTitle) override {
        linksShown = shown;
        linksMenuTitle = menuItemTitle;
    }

    int terminations = 0;
    std::string aboutVersion;
    std::string helpTab;
    bool linksShown = false;
    std::string linksMenuTitle;
};

// A defaults domain in memory; `flushed` is what reached the disk.
class MemoryDomain final : public PersistentDomain {
  public:
    [[nodiscard]] std::optional<DefaultValue> value(const std::string& key) const override;
    void setValue(const std::string& key, const DefaultValue& value) override;
    void removeAll() override { values.clear(); }
    bool flush() override {
        flushed = values;
        ++flushes;
        return true;
    }

    DefaultValues values;
    DefaultValues flushed;
    int flushes = 0;
};

// Folders and files in memory.
class MemoryFileSystem final : public FileSystem {
  public:
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] bool isDirectory(const std::string& path) const override;
    bool createDirectories(const std::string& path) override;
    bool removeAll(const std::string& path) override;
    bool removeFile(const std::string& path) override;
    [[nodiscard]] std::optional<std::vector<std::string>> filesUnder(
        const std::string& folder) const override;
    [[nodiscard]] std::optional<std::string> readText(const std::string& path) const override;
    // Fails, as a real one would, into a missing or read-only folder or over a folder.
    bool writeTextAtomically(const std::string& path, const std::string& text) override;

    std::set<std::string> folders;
    std::map<std::string, std::string> files;
    // Folders whose files can be neither written nor removed.
    std::set<std::string> readOnlyFolders;
    // Files that exist but cannot be read.
    std::set<std::string> unreadable;
    int writes = 0;
};

// Runs each panel with the next scripted script; a panel with no script left is cancelled.
class FakeListPanels final : public ListPanels {
  public:
    // Edits the editor's text and answers Load (true) or Close.
    using EditorScript = std::function<bool(std::string&)>;
    // Fills the Save As fields; returns false to press Cancel, true to press Save. Called again
    // while the panel stays open.
    using SaveAsScript = std::function<bool(SaveAsFields&, int attempt)>;
    // Chooses a button for the folder panel; called again while it stays open.
    using FolderScript = std::function<FolderButton(FolderFields&, int attempt)>;

    [[nodiscard]] bool runExpressionsPanel(std::string& text) override;
    void runSaveAsPanel(SaveAsFields& fields,
                        const std::function<bool(SaveAsFields&)>& save) override;
    void runListsFolderPanel(
        FolderFields& fields,
        const std::function<bool(FolderButton, FolderFields&)>& press) override;

    std::deque<EditorScript> editor;
    std::deque<SaveAsScript> saveAs;
    std::deque<FolderScript> folder;
    // What each panel showed when it closed.
    std::vector<SaveAsFields> saveAsShown;
    std::vector<FolderFields> folderShown;
    int saveAsOpenings = 0;
};

class FakeLogWindow final : public LogWindow {
  public:
    void redraw(const core::StyledText& log) override {
        shown = log;
        ++redraws;
    }
    void scrollToTop() override { ++scrolls; }

    core::StyledText shown;
    int redraws = 0;
    int scrolls = 0;
};

class FakePrintService final : public PrintService {
  public:
    void printPage(const PrintPage& page) override { pages.push_back(page); }
    void printLog(const core::StyledText& log) override { logs.push_back(log); }

    std::vector<PrintPage> pages;
    std::vector<core::StyledText> logs;
};

class FakeFileDialogs final : public FileDialogs {
  public:
    [[nodiscard]] std::vector<std::string> runOpenPanel(const OpenDialogRequest& request) override {
        openRequests.push_back(request);
        return openAnswer;
    }
    [[nodiscard]] std::optional<std::string> runSavePanel(
        const SaveDialogRequest& request) override {
        saveRequests.push_back(request);
        return saveAnswer;
    }

    std::vector<std::string> openAnswer;
    std::optional<std::string> saveAnswer;
    std::vector<OpenDialogRequest> openRequests;
    std::vector<SaveDialogRequest> saveRequests;
};

class FakeClock final : public Clock {
  public:
    [[nodiscard]] LocalTime now() const override { return time; }
    LocalTime time{2026, 11, 15, 18, 23, 5};
};

}  // namespace talvex::app::fakes
