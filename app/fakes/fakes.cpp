#include "app/fakes/fakes.h"

#include <algorithm>

namespace talvex::app::fakes {

namespace {

template <typename Enum>
std::size_t at(Enum value) {
    return static_cast<std::size_t>(value);
}

}  // namespace

FakeWindow::FakeWindow() { m_checks[at(CheckBox::log)] = true; }

std::string FakeWindow::fieldText(TextField field) const { return m_fields[at(field)].string(); }

core::StyledText FakeWindow::fieldAttributedText(TextField field) const {
    return m_fields[at(field)];
}

void FakeWindow::setFieldText(TextField field, const std::string& text) {
    m_fields[at(field)] = core::StyledText(text);
    ++m_fieldWrites[at(field)];
}

void FakeWindow::setFieldAttributedText(TextField field, const core::StyledText& text) {
    m_fields[at(field)] = text;
    ++m_fieldWrites[at(field)];
}

std::string FakeWindow::viewText(TextView view) const { return m_views[at(view)].string(); }

void FakeWindow::setViewAttributedText(TextView view, const core::StyledText& text) {
    m_views[at(view)] = text;
}

void FakeWindow::clearView(TextView view) { m_views[at(view)] = core::StyledText(); }

std::vector<std::string> FakeWindow::popUpTitles(PopUp popUp) const {
    return m_popUps[at(popUp)].titles;
}

void FakeWindow::insertPopUpTitle(PopUp popUp, const std::string& title, std::size_t index) {
    FakePopUp& pop = m_popUps[at(popUp)];
    const std::string selected = selectedPopUpTitle(popUp);
    std::erase(pop.titles, title);
    index = std::min(index, pop.titles.size());
    pop.titles.insert(pop.titles.begin() + static_cast<long>(index), title);
    // The selection stays on the item it was on, as a pop-up button keeps it.
    const auto found = std::find(pop.titles.begin(), pop.titles.end(), selected);
    pop.selected = pop.selected < 0 || found == pop.titles.end()
                       ? (pop.titles.size() == 1 ? 0 : -1)
                       : static_cast<long>(found - pop.titles.begin());
}

void FakeWindow::selectPopUpTitle(PopUp popUp, const std::string& title) {
    FakePopUp& pop = m_popUps[at(popUp)];
    const auto found = std::find(pop.titles.begin(), pop.titles.end(), title);
    if (found != pop.titles.end()) {
        pop.selected = static_cast<long>(found - pop.titles.begin());
    }
}

void FakeWindow::selectPopUpIndex(PopUp popUp, std::size_t index) {
    FakePopUp& pop = m_popUps[at(popUp)];
    if (index < pop.titles.size()) {
        pop.selected = static_cast<long>(index);
    }
}

std::string FakeWindow::selectedPopUpTitle(PopUp popUp) const {
    const FakePopUp& pop = m_popUps[at(popUp)];
    return pop.selected < 0 ? std::string() : pop.titles[static_cast<std::size_t>(pop.selected)];
}

void FakeWindow::removeAllPopUpItems(PopUp popUp) { m_popUps[at(popUp)] = FakePopUp{}; }

bool FakeWindow::isChecked(CheckBox box) const { return m_checks[at(box)]; }

void FakeWindow::setChecked(CheckBox box, bool on) { m_checks[at(box)] = on; }

void FakeWindow::setCheckBoxEnabled(CheckBox box, bool enabled) { m_enabled[at(box)] = enabled; }

bool FakeWindow::isCheckBoxEnabled(CheckBox box) const { return m_enabled[at(box)]; }

void FakeWindow::removePopUpItem(PopUp popUp, std::size_t index) {
    FakePopUp& pop = m_popUps[at(popUp)];
    if (index >= pop.titles.size()) {
        return;
    }
    pop.titles.erase(pop.titles.begin() + static_cast<long>(index));
    const long removed = static_cast<long>(index);
    if (pop.selected > removed) {
        --pop.selected;
    } else if (pop.selected == removed) {
        pop.selected =
            pop.titles.empty() ? -1 : std::min(removed, static_cast<long>(pop.titles.size()) - 1);
    }
}

long FakeWindow::selectedPopUpIndex(PopUp popUp) const { return m_popUps[at(popUp)].selected; }

void FakeWindow::runOnNextTurn(std::function<void()> work) { m_timers.push_back(std::move(work)); }

void FakeWindow::runPendingTimers() {
    while (!m_timers.empty()) {
        auto work = std::move(m_timers.front());
        m_timers.pop_front();
        work();
    }
}

int FakeWindow::fieldWrites(TextField field) const { return m_fieldWrites[at(field)]; }

std::string FakeSettingsPanel::text(PanelField field) const { return m_texts[at(field)]; }

void FakeSettingsPanel::setText(PanelField field, const std::string& text) {
    m_texts[at(field)] = text;
}

int FakeSettingsPanel::selectedRow(PanelMatrix matrix) const { return m_rows[at(matrix)]; }

void FakeSettingsPanel::selectRow(PanelMatrix matrix, int row) { m_rows[at(matrix)] = row; }

bool FakeSettingsPanel::isChecked(PanelCheckBox box) const { return m_checks[at(box)]; }

void FakeSettingsPanel::setChecked(PanelCheckBox box, bool on) { m_checks[at(box)] = on; }

AlertAnswer FakeAlerts::runAlert(const AlertRequest& request) {
    asked.push_back(request);
    if (answers.empty()) {
        return {};
    }
    const AlertAnswer answer = answers.front();
    answers.pop_front();
    return answer;
}

std::optional<DefaultValue> MemoryDomain::value(const std::string& key) const {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional<DefaultValue>(found->second);
}

void MemoryDomain::setValue(const std::string& key, const DefaultValue& value) {
    values.insert_or_assign(key, value);
}

bool MemoryFileSystem::exists(const std::string& path) const {
    return folders.contains(path) || files.contains(path);
}

bool MemoryFileSystem::isDirectory(const std::string& path) const { return folders.contains(path); }

bool MemoryFileSystem::createDirectories(const std::string& path) {
    if (files.contains(path)) {
        return false;
    }
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        if (files.contains(path.substr(0, slash))) {
            return false;
        }
    }
    // Every parent folder too.
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        folders.insert(path.substr(0, slash));
    }
    folders.insert(path);
    return true;
}

bool MemoryFileSystem::removeAll(const std::string& path) {
    const std::string prefix = path + "/";
    std::erase_if(folders,
                  [&](const std::string& f) { return f == path || f.starts_with(prefix); });
    std::erase_if(files,
                  [&](const auto& f) { return f.first == path || f.first.starts_with(prefix); });
    return true;
}

namespace {

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? std::string("/") : path.substr(0, slash);
}

}  // namespace

bool MemoryFileSystem::removeFile(const std::string& path) {
    if (!files.contains(path) || readOnlyFolders.contains(parentOf(path))) {
        return false;
    }
    files.erase(path);
    return true;
}

std::optional<std::vector<std::string>> MemoryFileSystem::filesUnder(
    const std::string& folder) const {
    if (!folders.contains(folder)) {
        return std::nullopt;
    }
    std::vector<std::string> found;
    const std::string prefix = folder + "/";
    for (const auto& [path, text] : files) {
        if (path.starts_with(prefix)) {
            found.push_back(path);
        }
    }
    return found;
}

std::optional<std::string> MemoryFileSystem::readText(const std::string& path) const {
    const auto found = files.find(path);
    if (found == files.end() || unreadable.contains(path)) {
        return std::nullopt;
    }
    return found->second;
}

bool MemoryFileSystem::writeTextAtomically(const std::string& path, const std::string& text) {
    const std::string parent = parentOf(path);
    if (folders.contains(path) || !folders.contains(parent) || readOnlyFolders.contains(parent)) {
        return false;
    }
    files[path] = text;
    ++writes;
    return true;
}

bool FakeListPanels::runExpressionsPanel(std::string& text) {
    if (editor.empty()) {
        return false;
    }
    auto script = std::move(editor.front());
    editor.pop_front();
    return script(text);
}

void FakeListPanels::runSaveAsPanel(SaveAsFields& fields,
                                    const std::function<bool(SaveAsFields&)>& save) {
    ++saveAsOpenings;
    if (saveAs.empty()) {
        saveAsShown.push_back(fields);
        return;
    }
    auto script = std::move(saveAs.front());
    saveAs.pop_front();
    // A panel left open forever would be a test that never ends.
    for (int attempt = 0; attempt < 20; ++attempt) {
        if (!script(fields, attempt) || save(fields)) {
            break;
        }
    }
    saveAsShown.push_back(fields);
}

void FakeListPanels::runListsFolderPanel(
    FolderFields& fields, const std::function<bool(FolderButton, FolderFields&)>& press) {
    if (folder.empty()) {
        folderShown.push_back(fields);
        return;
    }
    auto script = std::move(folder.front());
    folder.pop_front();
    for (int attempt = 0; attempt < 20; ++attempt) {
        const FolderButton button = script(fields, attempt);
        if (button == FolderButton::cancel || press(button, fields)) {
            break;
        }
    }
    folderShown.push_back(fields);
}

}  // namespace talvex::app::fakes
