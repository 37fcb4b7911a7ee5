#pragma once

#include <string>

#include "app/controller/expression_lists.h"
#include "app/controller/log.h"
#include "app/file_system.h"
#include "app/ports.h"

namespace talvex::app {

inline constexpr const char* kImportTitle = "Import Expression List";
inline constexpr const char* kImportMessage =
    "Expressions will be added to the end of the current list.";
inline constexpr const char* kImportErrorMessage = "There was an error opening the list.";
inline constexpr const char* kImportEmptyMessage = "No expressions were found in the list";
inline constexpr const char* kExportListTitle = "Export List";
inline constexpr const char* kExportListMessage =
    "The list will be saved as a text file with \"\\\" separating expresssions.";
inline constexpr const char* kExportListErrorMessage = "There was an error saving the list.";
inline constexpr const char* kExportLogTitle = "Export Log";
inline constexpr const char* kExportLogMessage = "The log will be saved as an RTFD file.";
inline constexpr const char* kExportLogErrorMessage = "There was an error saving the log.";

// "yyyy-MM-dd": the date that begins the proposed names of exported files.
[[nodiscard]] std::string isoDate(const LocalTime& time);

// Moves expressions and the log in and out through the open and save dialogues. Files
// exchanged here are in Mac OS Roman (unlike the lists folder's own, in UTF-8), so that what
// older copies exported still imports.
class KVTXExproter {
  public:
    struct Parts {
        MainWindow& window;
        FileDialogs& dialogs;
        FileSystem& files;
        Alerts& alerts;
        const Clock& clock;
        ExpressionLists& lists;
        const Log& log;
    };

    explicit KVTXExproter(const Parts& parts) : m_parts(parts) {}

    void importList();
    // The transposed letters are the command's name.
    void exprotList();
    void exportLog();

  private:
    void tell(const char* message);

    Parts m_parts;
};

}  // namespace talvex::app
