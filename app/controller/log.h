#pragma once

#include <functional>
#include <string>
#include <utility>

#include "app/controller/request_log.h"
#include "app/file_system.h"
#include "app/ports.h"
#include "app/text_printer.h"
#include "core/styled_text.h"

namespace talvex::app {

// The log: a report of every logged request, newest first, each entry followed by the
// separator, with the rolls of the newest entry inserted into it. The text lives here; the log
// window shows it.
class Log final : public RequestLog {
  public:
    static constexpr const char* kSeparator = "\t\t\n";

    // `entryLimit` gives the limit in force (the settings may change between two entries).
    Log(LogWindow& window, std::function<long()> entryLimit)
        : m_window(window),
          m_entryLimit(std::move(entryLimit)),
          m_field(window),
          m_printer(&m_field) {}
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void log(const core::StyledText& entry, bool logBoxOn) override;
    [[nodiscard]] long printIndex() const override { return m_printer.printIndex(); }
    void setPrintIndex(long index) override { m_printer.setPrintIndex(index); }
    // A roll added to an entry shows at once.
    void printAttributedString(const core::StyledText& text) override {
        m_printer.printAttributedString(&text);
        redraw();
    }
    [[nodiscard]] long entryCount() const override { return m_logExpressions; }
    void setEntryCount(long count) override { m_logExpressions = count; }

    // Empties the text, the print position and the count.
    void clearLog();
    [[nodiscard]] const core::StyledText& text() const noexcept { return m_field.text; }
    [[nodiscard]] TextPrinter& printer() noexcept { return m_printer; }

    // Reads the package (a missing or unreadable one leaves the log empty) and puts the print
    // position at the end.
    void read(const FileSystem& files, const std::string& packagePath);
    // Writes the whole log as a package, atomically.
    [[nodiscard]] bool write(FileSystem& files, const std::string& packagePath) const;
    void redraw() { m_window.redraw(m_field.text); }

  private:
    // Removes the oldest entries until one fewer than the limit remain.
    void makeRoom();

    struct Field final : TextOutput {
        explicit Field(LogWindow& window) : view(window) {}
        core::StyledText& textStorage() override { return text; }
        void scrollToTopLeft() override { view.scrollToTop(); }

        LogWindow& view;
        core::StyledText text;
    };

    LogWindow& m_window;
    std::function<long()> m_entryLimit;
    Field m_field;
    TextPrinter m_printer;
    long m_logExpressions = 0;
};

// "log MM-DD-YYYY HHhMMmSSs.rtfd": the name of a time-stamped copy of the log.
[[nodiscard]] std::string logExportName(const LocalTime& time);

}  // namespace talvex::app
