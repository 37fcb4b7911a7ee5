#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/controller/controller_state.h"
#include "app/controller/displays.h"
#include "app/controller/history.h"
#include "app/controller/requests.h"
#include "app/defaults_store.h"
#include "app/file_system.h"
#include "app/ports.h"

namespace talvex::app {

inline constexpr char kExpressionDelimiter = '\\';
inline constexpr const char* kExpressionListExtension = "txt";
inline constexpr const char* kEditExpressions = "Edit Expressions...";
inline constexpr const char* kSampleListName = "Sample Expressions";
// Put before a repeated expression while a list loads, so that the repeat gets a title of its
// own instead of selecting the first.
inline constexpr const char* kFodderString = "Talvex fodder string";

// The texts of the three problem panels.
inline constexpr const char* kWriteErrorMessage = "The file could not be saved.";
inline constexpr const char* kWriteErrorInformative =
    "Talvex could not write the file into the expression lists folder. Check that the folder "
    "exists and that you may write to it (Lists Folder... shows which folder it is).";
inline constexpr const char* kDeleteErrorMessage = "The list could not be deleted.";
inline constexpr const char* kDeleteErrorInformative =
    "Talvex deletes a list's file directly in the expression lists folder and could not remove "
    "it there. A list kept in a subfolder, or in a folder you may not change, must be deleted "
    "by hand.";
inline constexpr const char* kListErrorMessage = "The expression lists folder could not be opened.";
inline constexpr const char* kListErrorInformative =
    "Talvex could neither open nor create the folder for your expression lists. Choose another "
    "one with Lists Folder...";

// The list file's reading rule: split at every backslash, take the line breaks off both ends
// of each piece (blanks stay) and drop the pieces left empty.
[[nodiscard]] std::vector<std::string> splitExpressionList(std::string_view text);

// Named lists of expressions in the lists folder, the expressions editor and the commands that
// keep the two in step: choosing, saving, reverting and deleting lists, comparison lists and
// the lists folder itself.
class ExpressionLists {
  public:
    struct Parts {
        MainWindow& window;
        Alerts& alerts;
        ListPanels& panels;
        FileSystem& files;
        DefaultsStore& defaults;
        ControllerState& state;
        Displays& displays;
        History& history;
        Requests& requests;
        // The application's own copy of the sample list, when it has one.
        std::function<std::optional<std::string>()> sampleList;
        std::function<void()> fullClean;
        std::string supportFolder;
    };

    explicit ExpressionLists(Parts parts) : m_parts(std::move(parts)) {}

    void loadExpressionLists();
    [[nodiscard]] static bool validateListName(std::string_view name);
    void addExpressionListTitle(const std::string& name);
    void loadExpressions();
    void addExpressionsFromString(const std::string& text);

    // Choices in the pop-ups and the list menu.
    void expressionListSelect();
    void listSelect(const std::string& title);
    void compareListSelect();
    void mirrorSelect();
    void expressionUp();
    void expressionDown();
    void compareUp();
    void compareDown();

    // The commands.
    void expressionListSave();
    void expressionListSaveAs();
    void expressionListRevert();
    void expressionListDelete();
    void listsFolder();

    // The editor.
    void openExpressions();
    void openExpressionsWithModal();
    [[nodiscard]] const std::string& editorText() const noexcept { return m_editorText; }
    void setEditorText(std::string text) { m_editorText = std::move(text); }

    // Offers to save an edited list; false when the person cancelled.
    [[nodiscard]] bool offerToSaveChanges();

    [[nodiscard]] const std::string& expressionList() const noexcept {
        return m_parts.state.currentListName;
    }
    [[nodiscard]] const std::string& compareList() const noexcept { return m_compareList; }
    [[nodiscard]] const std::map<std::string, std::string>& expressionLists() const noexcept {
        return m_expressionLists;
    }
    [[nodiscard]] bool controllerEnabled() const noexcept { return m_controllerEnabled; }
    [[nodiscard]] std::string defaultListsFolder() const;
    void writeError();
    // Shows the current list and comparison list (or the placeholders) in their pop-ups.
    void selectCurrentLists();

  private:
    [[nodiscard]] std::string listPath(const std::string& name) const;
    [[nodiscard]] std::string storedText(const std::string& name) const;
    void expressionListSaveChanges();
    [[nodiscard]] bool expressionListSaveAsSave(SaveAsFields& fields);
    [[nodiscard]] bool listsFolderPress(FolderButton button, FolderFields& fields);
    void expressionListDeleteYes();
    void resetLastRequest();
    void refillComparePop(const std::vector<std::string>& titles);
    [[nodiscard]] std::vector<std::string> expressionTitles() const;
    void stepPopUp(PopUp popUp, int step);
    // A modal panel or question: the window's list choices wait while it is open.
    template <typename Work>
    auto modally(Work&& work);
    [[nodiscard]] AlertButton ask(const std::string& question, bool withCancel);
    void tell(const char* message, const char* informative);
    void reload(const std::string& folder);

    Parts m_parts;
    std::map<std::string, std::string> m_expressionLists{{"", ""}};
    std::string m_compareList;
    std::string m_editorText;
    bool m_cancel = false;
    bool m_controllerEnabled = true;
};

}  // namespace talvex::app
