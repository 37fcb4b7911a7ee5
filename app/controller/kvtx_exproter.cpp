#include "app/controller/kvtx_exproter.h"

#include <cstdio>

#include "app/rtf.h"
#include "app/text_encoding.h"

namespace talvex::app {

std::string isoDate(const LocalTime& time) {
    char date[32];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", time.year, time.month, time.day);
    return date;
}

void KVTXExproter::tell(const char* message) {
    AlertRequest request;
    request.message = message;
    request.defaultButton = "OK";
    static_cast<void>(m_parts.alerts.runAlert(request));
}

void KVTXExproter::importList() {
    const std::vector<std::string> paths =
        m_parts.dialogs.runOpenPanel(OpenDialogRequest{kImportTitle, kImportMessage, {"txt"}});
    if (paths.empty()) {
        return;
    }
    std::string joined;
    for (const std::string& path : paths) {
        const auto bytes = m_parts.files.readText(path);
        const auto text = bytes ? utf8FromMacRoman(*bytes) : std::nullopt;
        if (!text) {
            tell(kImportErrorMessage);
            return;
        }
        joined += *text;
    }
    if (joined.empty()) {
        tell(kImportEmptyMessage);
        return;
    }
    m_parts.lists.addExpressionsFromString(joined);
}

void KVTXExproter::exprotList() {
    const std::vector<std::string> titles = m_parts.window.popUpTitles(PopUp::expression);
    std::string text;
    for (std::size_t i = 1; i + 1 < titles.size(); ++i) {
        text += titles[i] + "\\\n\n";
    }
    if (!titles.empty()) {
        text += titles.back();
    }
    const long listIndex = m_parts.window.selectedPopUpIndex(PopUp::expressionList);
    const std::string listName = listIndex > 0
                                     ? m_parts.window.selectedPopUpTitle(PopUp::expressionList)
                                     : std::string("Talvex Expression List");
    const auto path = m_parts.dialogs.runSavePanel(
        SaveDialogRequest{kExportListTitle, kExportListMessage,
                          isoDate(m_parts.clock.now()) + " " + listName, "txt", true, true});
    if (!path) {
        return;
    }
    // A character Mac OS Roman cannot hold fails the export rather than change the list.
    const auto bytes = macRomanFromUtf8(text);
    if (!bytes || !m_parts.files.writeTextAtomically(*path, *bytes)) {
        tell(kExportListErrorMessage);
    }
}

void KVTXExproter::exportLog() {
    const auto path = m_parts.dialogs.runSavePanel(
        SaveDialogRequest{kExportLogTitle, kExportLogMessage,
                          isoDate(m_parts.clock.now()) + " Talvex Log", "rtfd", true, true});
    if (!path) {
        return;
    }
    if (!writeRtfd(m_parts.files, *path, m_parts.log.text())) {
        tell(kExportLogErrorMessage);
    }
}

}  // namespace talvex::app
