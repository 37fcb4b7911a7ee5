#include "app/controller/expression_lists.h"

#include <algorithm>
#include <utility>

#include "app/text_encoding.h"

namespace talvex::app {

namespace {

constexpr const char* kBetweenExpressions = "\\\n\n";

bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::vector<std::string> splitExpressionList(std::string_view text) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(kExpressionDelimiter, start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        std::string_view piece = text.substr(start, end - start);
        while (!piece.empty() && isLineBreak(piece.front())) {
            piece.remove_prefix(1);
        }
        while (!piece.empty() && isLineBreak(piece.back())) {
            piece.remove_suffix(1);
        }
        if (!piece.empty()) {
            pieces.emplace_back(piece);
        }
        start = end + 1;
    }
    return pieces;
}

bool ExpressionLists::validateListName(std::string_view name) {
    return name.find_first_of("[]:") == std::string_view::npos;
}

std::string ExpressionLists::defaultListsFolder() const {
    return joinPath(m_parts.supportFolder, "Expression Lists");
}

std::string ExpressionLists::listPath(const std::string& name) const {
    return joinPath(m_parts.state.listsFolderPath,
                    name + "." + std::string(kExpressionListExtension));
}

std::string ExpressionLists::storedText(const std::string& name) const {
    const auto found = m_expressionLists.find(name);
    return found == m_expressionLists.end() ? std::string() : found->second;
}

template <typename Work>
auto ExpressionLists::modally(Work&& work) {
    struct Enable {
        bool& flag;
        ~Enable() { flag = true; }
    } enable{m_controllerEnabled};
    m_controllerEnabled = false;
    return std::forward<Work>(work)();
}

AlertButton ExpressionLists::ask(const std::string& question, bool withCancel) {
    AlertRequest request;
    request.message = question;
    request.defaultButton = "Yes";
    if (withCancel) {
        request.alternateButton = "No";
        request.otherButton = "Cancel";
    } else {
        request.otherButton = "No";
    }
    const AlertButton button = modally([&] { return m_parts.alerts.runAlert(request).button; });
    // Without a Cancel button, the "No" in the other place means no.
    if (!withCancel && button == AlertButton::otherButton) {
        return AlertButton::alternateButton;
    }
    return button;
}

void ExpressionLists::tell(const char* message, const char* informative) {
    AlertRequest request;
    request.message = message;
    request.informativeText = informative;
    request.defaultButton = "OK";
    static_cast<void>(modally([&] { return m_parts.alerts.runAlert(request); }));
}

void ExpressionLists::writeError() { tell(kWriteErrorMessage, kWriteErrorInformative); }

void ExpressionLists::loadExpressionLists() {
    FileSystem& files = m_parts.files;
    const std::string& folder = m_parts.state.listsFolderPath;
    m_expressionLists.clear();
    if (!files.isDirectory(folder) && !files.createDirectories(folder)) {
        tell(kListErrorMessage, kListErrorInformative);
        m_expressionLists[""] = "";
        return;
    }
    const std::string samplePath = listPath(kSampleListName);
    if (m_parts.defaults.boolForKey("firstRun") && m_parts.sampleList &&
        !files.exists(samplePath)) {
        if (const auto sample = m_parts.sampleList()) {
            static_cast<void>(files.writeTextAtomically(samplePath, *sample));
        }
    }

    auto paths = files.filesUnder(folder).value_or(std::vector<std::string>());
    // A list directly in the folder is the one Save writes, so it wins over a namesake in a
    // subfolder.
    const std::string prefix = joinPath(folder, "");
    std::stable_partition(paths.begin(), paths.end(), [&](const std::string& path) {
        return path.find('/', prefix.size()) == std::string::npos;
    });
    const std::string extension = "." + std::string(kExpressionListExtension);
    std::vector<std::string> rejected;
    for (const std::string& path : paths) {
        const std::string fileName = fileNameOf(path);
        if (fileName.size() <= extension.size() || !fileName.ends_with(extension)) {
            continue;
        }
        const std::string name = fileName.substr(0, fileName.size() - extension.size());
        if (m_expressionLists.contains(name)) {
            continue;
        }
        if (!validateListName(name)) {
            rejected.push_back(name);
            continue;
        }
        const auto text = files.readText(path);
        if (!text) {
            continue;
        }
        if (!isUtf8(*text)) {
            rejected.push_back(name);
            continue;
        }
        m_expressionLists[name] = *text;
        addExpressionListTitle(name);
    }
    if (!rejected.empty()) {
        std::string names;
        for (const std::string& name : rejected) {
            names += (names.empty() ? "" : ",   ") + name;
        }
        AlertRequest request;
        request.message = "List Parsing Error";
        request.informativeText =
            "The following lists could not be loaded due to their names or contents:\n" + names;
        request.defaultButton = "OK";
        static_cast<void>(modally([&] { return m_parts.alerts.runAlert(request); }));
    }
    m_expressionLists[""] = "";
}

void ExpressionLists::addExpressionListTitle(const std::string& name) {
    MainWindow& window = m_parts.window;
    const auto titles = window.popUpTitles(PopUp::expressionList);
    if (std::find(titles.begin() + (titles.empty() ? 0 : 1), titles.end(), name) != titles.end()) {
        return;
    }
    std::size_t index = 1;
    while (index < titles.size() && titles[index] < name) {
        ++index;
    }
    const std::size_t at = std::min(index, titles.size());
    window.insertPopUpTitle(PopUp::expressionList, name, at);
    window.insertPopUpTitle(PopUp::compareList, name,
                            std::min(at, window.popUpTitles(PopUp::compareList).size()));
}

void ExpressionLists::resetLastRequest() { m_parts.state.lastRoll = LastRoll{"", "", "blank"}; }

void ExpressionLists::loadExpressions() {
    MainWindow& window = m_parts.window;
    ControllerState& state = m_parts.state;
    // 1.
    const bool displaying = state.displaying;
    state.displaying = false;
    m_parts.displays.blankDisplay();
    // 2.
    window.removeAllPopUpItems(PopUp::expression);
    window.insertPopUpTitle(PopUp::expression, kSelectExpression, 0);
    if (window.isChecked(CheckBox::mirror)) {
        window.removeAllPopUpItems(PopUp::compare);
        window.insertPopUpTitle(PopUp::compare, kSelectComparison, 0);
    }
    // 3, 4. From the last to the first, each at index 1.
    const std::vector<std::string> expressions = splitExpressionList(m_editorText);
    if (!expressions.empty()) {
        window.setFieldText(TextField::expression, expressions.back());
        m_parts.requests.roll();
        for (std::size_t i = expressions.size() - 1; i-- > 0;) {
            const bool repeated = expressions[i] == expressions[i + 1];
            if (repeated) {
                window.setFieldText(TextField::expression, kFodderString + expressions[i]);
                m_parts.requests.roll();
            }
            window.setFieldText(TextField::expression, expressions[i]);
            m_parts.requests.roll();
            if (repeated) {
                window.removePopUpItem(PopUp::expression, 2);
                window.removePopUpItem(PopUp::compare, 2);
            }
        }
    }
    // 5.
    m_parts.displays.blankDisplay();
    m_parts.history.clearHistory();
    resetLastRequest();
    window.selectPopUpTitle(PopUp::expression, kSelectExpression);
    window.selectPopUpTitle(PopUp::compare, kSelectComparison);
    state.lastExpressionTitle = window.selectedPopUpTitle(PopUp::expression);
    state.lastCompareExpressionTitle = window.selectedPopUpTitle(PopUp::compare);
    state.expression = state.session.build("");
    state.compareExpression = state.expression;
    state.displaying = displaying;
}

void ExpressionLists::openExpressions() {
    std::string text;
    for (const std::string& title : m_parts.window.popUpTitles(PopUp::expression)) {
        if (title == kSelectExpression) {
            continue;
        }
        text += title;
        while (!text.empty() && text.back() == ' ') {
            text.pop_back();
        }
        text += kBetweenExpressions;
    }
    if (!text.empty()) {
        text.erase(text.size() - std::string_view(kBetweenExpressions).size());
    }
    m_editorText = std::move(text);
}

void ExpressionLists::openExpressionsWithModal() {
    openExpressions();
    std::string edited = m_editorText;
    if (modally([&] { return m_parts.panels.runExpressionsPanel(edited); })) {
        m_editorText = std::move(edited);
        loadExpressions();
    }
}

void ExpressionLists::addExpressionsFromString(const std::string& text) {
    openExpressions();
    if (!m_editorText.empty()) {
        m_editorText += kBetweenExpressions;
    }
    m_editorText += text;
    loadExpressions();
}

bool ExpressionLists::offerToSaveChanges() {
    openExpressions();
    m_cancel = false;
    if (m_editorText != storedText(expressionList())) {
        expressionListSaveChanges();
    }
    return !m_cancel;
}

void ExpressionLists::selectCurrentLists() {
    MainWindow& window = m_parts.window;
    window.selectPopUpTitle(PopUp::expressionList, expressionList().empty()
                                                       ? std::string(kSelectExpressionList)
                                                       : expressionList());
    window.selectPopUpTitle(PopUp::compareList, m_compareList.empty()
                                                    ? std::string(kSelectComparisonList)
                                                    : m_compareList);
}

void ExpressionLists::expressionListSelect() {
    listSelect(m_parts.window.selectedPopUpTitle(PopUp::expressionList));
}

void ExpressionLists::listSelect(const std::string& title) {
    if (!m_controllerEnabled) {
        return;
    }
    if (title == kEditExpressions && !m_expressionLists.contains(title)) {
        openExpressionsWithModal();
    } else if (!title.empty() && title != kSelectExpressionList &&
               m_expressionLists.contains(title)) {
        if (offerToSaveChanges()) {
            m_parts.state.currentListName = title;
            m_editorText = storedText(title);
            loadExpressions();
        }
    }
    selectCurrentLists();
}

void ExpressionLists::refillComparePop(const std::vector<std::string>& titles) {
    MainWindow& window = m_parts.window;
    window.removeAllPopUpItems(PopUp::compare);
    window.insertPopUpTitle(PopUp::compare, kSelectComparison, 0);
    for (std::size_t i = 0; i < titles.size(); ++i) {
        window.insertPopUpTitle(PopUp::compare, titles[i], i + 1);
    }
    window.selectPopUpIndex(PopUp::compare, 0);
}

std::vector<std::string> ExpressionLists::expressionTitles() const {
    auto titles = m_parts.window.popUpTitles(PopUp::expression);
    if (!titles.empty()) {
        titles.erase(titles.begin());
    }
    return titles;
}

void ExpressionLists::compareListSelect() {
    MainWindow& window = m_parts.window;
    const std::string title = window.selectedPopUpTitle(PopUp::compareList);
    if (m_controllerEnabled && !title.empty() && title != kSelectComparisonList &&
        title != m_compareList && m_expressionLists.contains(title)) {
        m_parts.history.clearHistory();
        m_parts.displays.blankDisplay();
        resetLastRequest();
        window.setChecked(CheckBox::mirror, false);
        window.setCheckBoxEnabled(CheckBox::cycle, false);
        m_compareList = title;
        openExpressions();
        const std::string own = m_editorText;
        m_editorText = storedText(title);
        loadExpressions();
        const std::vector<std::string> titles = expressionTitles();
        m_editorText = own;
        loadExpressions();
        refillComparePop(titles);
    }
    selectCurrentLists();
}

void ExpressionLists::mirrorSelect() {
    MainWindow& window = m_parts.window;
    ControllerState& state = m_parts.state;
    m_parts.history.clearHistory();
    m_parts.displays.blankDisplay();
    resetLastRequest();
    state.lastExpressionTitle = kSelectExpression;
    state.lastCompareExpressionTitle = kSelectComparison;
    state.compareExpression = state.session.build("");
    refillComparePop({});
    window.selectPopUpTitle(PopUp::expression, kSelectExpression);
    if (!window.isChecked(CheckBox::mirror)) {
        window.setCheckBoxEnabled(CheckBox::cycle, false);
        return;
    }
    window.setCheckBoxEnabled(CheckBox::cycle, true);
    refillComparePop(expressionTitles());
    m_compareList.clear();
    window.selectPopUpTitle(PopUp::compareList, kSelectComparisonList);
}

void ExpressionLists::stepPopUp(PopUp popUp, int step) {
    MainWindow& window = m_parts.window;
    const long index = window.selectedPopUpIndex(popUp);
    const long count = static_cast<long>(window.popUpTitles(popUp).size());
    const long target = index + step;
    if ((step < 0 && index < 2) || (step > 0 && (index < 0 || target >= count))) {
        return;
    }
    window.selectPopUpIndex(popUp, static_cast<std::size_t>(target));
    if (popUp == PopUp::expression) {
        m_parts.requests.expressionSelect();
    } else {
        m_parts.requests.compareSelect();
    }
}

void ExpressionLists::expressionUp() { stepPopUp(PopUp::expression, -1); }
void ExpressionLists::expressionDown() { stepPopUp(PopUp::expression, 1); }
void ExpressionLists::compareUp() { stepPopUp(PopUp::compare, -1); }
void ExpressionLists::compareDown() { stepPopUp(PopUp::compare, 1); }

void ExpressionLists::expressionListSave() {
    const std::string name = expressionList();
    if (name.empty()) {
        expressionListSaveAs();
        return;
    }
    openExpressions();
    m_expressionLists[name] = m_editorText;
    if (!m_parts.files.writeTextAtomically(listPath(name), m_editorText)) {
        writeError();
    }
    if (name == m_compareList) {
        refillComparePop(expressionTitles());
    }
}

void ExpressionLists::expressionListSaveChanges() {
    const std::string& name = expressionList();
    const std::string question =
        name.empty() ? std::string("Would you like to save your current expressions as a list?")
                     : "Would you like to save changes to " + name + "?";
    switch (ask(question, true)) {
        case AlertButton::defaultButton:
            if (name.empty()) {
                expressionListSaveAs();
            } else {
                expressionListSave();
            }
            break;
        case AlertButton::alternateButton:
            break;
        case AlertButton::otherButton:
            m_cancel = true;
            break;
    }
}

void ExpressionLists::expressionListSaveAs() {
    openExpressions();
    SaveAsFields fields{expressionList(), m_editorText};
    modally([&] {
        m_parts.panels.runSaveAsPanel(
            fields, [this](SaveAsFields& shown) { return expressionListSaveAsSave(shown); });
    });
}

bool ExpressionLists::expressionListSaveAsSave(SaveAsFields& fields) {
    if (!validateListName(fields.name)) {
        AlertRequest request;
        request.message = "Invalid List Name";
        request.informativeText =
            "The following characters are not allowed in list names:\n" + std::string("[]:");
        request.defaultButton = "OK";
        static_cast<void>(m_parts.alerts.runAlert(request));
        return false;
    }
    if (fields.name.empty()) {
        fields.name = "Enter a name";
        return false;
    }
    m_cancel = false;
    if (m_expressionLists.contains(fields.name)) {
        AlertRequest request;
        request.message =
            "A list named " + fields.name + " already exists.\nDo you want to overwrite it?";
        request.defaultButton = "Yes";
        request.otherButton = "Cancel";
        if (m_parts.alerts.runAlert(request).button != AlertButton::defaultButton) {
            m_cancel = true;
            return false;
        }
    }
    m_editorText = fields.expressions;
    loadExpressions();
    m_parts.state.currentListName = fields.name;
    expressionListSave();
    addExpressionListTitle(fields.name);
    selectCurrentLists();
    return true;
}

void ExpressionLists::expressionListRevert() {
    openExpressions();
    const std::string& name = expressionList();
    if (name.empty() || m_editorText == storedText(name)) {
        return;
    }
    if (ask("Are you sure you want to revert " + name + " to the last saved version?", false) ==
        AlertButton::defaultButton) {
        m_editorText = storedText(name);
        loadExpressions();
    }
}

void ExpressionLists::expressionListDelete() {
    openExpressions();
    const std::string& name = expressionList();
    if (name.empty() && m_editorText.empty()) {
        return;
    }
    const std::string question =
        name.empty() ? std::string("Are you sure you want to delete your entered expressions?")
                     : "Are you sure you want to delete " + name + "?";
    if (ask(question, false) == AlertButton::defaultButton) {
        expressionListDeleteYes();
    }
}

void ExpressionLists::expressionListDeleteYes() {
    MainWindow& window = m_parts.window;
    const std::string name = expressionList();
    if (!name.empty()) {
        for (const PopUp popUp : {PopUp::expressionList, PopUp::compareList}) {
            const auto titles = window.popUpTitles(popUp);
            const auto found = std::find(titles.begin() + 1, titles.end(), name);
            if (found != titles.end()) {
                window.removePopUpItem(popUp, static_cast<std::size_t>(found - titles.begin()));
            }
        }
        window.selectPopUpIndex(PopUp::expressionList, 0);
        window.selectPopUpIndex(PopUp::compareList, 0);
        if (name == m_compareList) {
            m_compareList.clear();
            refillComparePop({});
        }
        const bool removed = m_parts.files.removeFile(listPath(name));
        m_parts.state.currentListName.clear();
        if (!removed) {
            tell(kDeleteErrorMessage, kDeleteErrorInformative);
        }
    }
    m_editorText.clear();
    loadExpressions();
}

void ExpressionLists::reload(const std::string& folder) {
    m_parts.state.listsFolderPath = folder;
    m_parts.fullClean();
    m_compareList.clear();
    m_editorText.clear();
    loadExpressionLists();
}

void ExpressionLists::listsFolder() {
    if (!offerToSaveChanges()) {
        return;
    }
    FolderFields fields{m_parts.state.listsFolderPath, ""};
    modally([&] {
        m_parts.panels.runListsFolderPanel(fields,
                                           [this](FolderButton button, FolderFields& shown) {
                                               return listsFolderPress(button, shown);
                                           });
    });
}

bool ExpressionLists::listsFolderPress(FolderButton button, FolderFields& fields) {
    switch (button) {
        case FolderButton::change:
            if (fields.newFolder.empty()) {
                fields.newFolder = "Enter a directory";
                return false;
            }
            reload(fields.newFolder);
            return true;
        case FolderButton::defaultFolder:
            fields.newFolder = defaultListsFolder();
            return false;
        case FolderButton::reload:
            if (!offerToSaveChanges()) {
                return false;
            }
            fields.newFolder = m_parts.state.listsFolderPath;
            reload(fields.newFolder);
            fields.currentFolder = m_parts.state.listsFolderPath;
            return false;
        case FolderButton::cancel:
            return true;
    }
    return true;
}

}  // namespace talvex::app
