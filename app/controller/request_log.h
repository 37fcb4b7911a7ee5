#pragma once

#include "core/styled_text.h"

namespace talvex::app {

// The log as a request reaches it: entries newest first, each followed by the separator, with a
// print position at which rolls are added to the newest entry.
class RequestLog {
  public:
    static constexpr long kSeparatorLength = 3;  // "\t\t\n"

    virtual ~RequestLog() = default;

    // Adds an entry at the top when the log box is on; otherwise only redraws.
    virtual void log(const core::StyledText& entry, bool logBoxOn) = 0;
    [[nodiscard]] virtual long printIndex() const = 0;
    virtual void setPrintIndex(long index) = 0;
    // Inserts at the print position and moves it behind the text.
    virtual void printAttributedString(const core::StyledText& text) = 0;
    [[nodiscard]] virtual long entryCount() const = 0;
    virtual void setEntryCount(long count) = 0;
};

}  // namespace talvex::app
