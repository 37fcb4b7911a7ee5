#include "app/controller/log.h"

#include <cstdio>
#include <string_view>

#include "app/rtf.h"

namespace talvex::app {

void Log::log(const core::StyledText& entry, bool logBoxOn) {
    if (!logBoxOn) {
        redraw();
        return;
    }
    if (m_logExpressions >= m_entryLimit()) {
        makeRoom();
    }
    m_printer.printAttributedStringAtTop(&entry);
    m_printer.printString(kSeparator);
    m_field.scrollToTopLeft();
    ++m_logExpressions;
    redraw();
}

void Log::makeRoom() {
    const std::string& plain = m_field.text.string();
    const std::string_view separator = kSeparator;
    std::size_t cut = plain.rfind(separator);
    std::size_t cutLength = separator.size();
    bool exhausted = false;
    const long limit = m_entryLimit();
    while (m_logExpressions >= limit) {
        if (cut == std::string::npos) {
            exhausted = true;
            break;
        }
        // The separator that lies wholly before the cut point.
        cut = cut < separator.size() ? std::string::npos
                                     : plain.rfind(separator, cut - separator.size());
        --m_logExpressions;
    }
    if (exhausted || cut == std::string::npos) {
        m_logExpressions = 0;
        cut = 0;
        cutLength = 0;
    }
    const std::size_t end = cut + cutLength;
    if (end < plain.size()) {
        m_field.text.erase(end);
    }
    m_printer.setPrintIndex(m_printer.printIndex());
}

void Log::clearLog() {
    m_field.text = core::StyledText();
    m_printer.setPrintIndex(0);
    m_logExpressions = 0;
    redraw();
}

void Log::read(const FileSystem& files, const std::string& packagePath) {
    m_field.text = readRtfd(files, packagePath).value_or(core::StyledText());
    m_printer.setText(&m_field);
    redraw();
}

bool Log::write(FileSystem& files, const std::string& packagePath) const {
    return writeRtfd(files, packagePath, m_field.text);
}

std::string logExportName(const LocalTime& time) {
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%02d-%02d-%04d %02dh%02dm%02ds", time.month, time.day,
                  time.year, time.hour, time.minute, time.second);
    return std::string("log ") + stamp + ".rtfd";
}

}  // namespace talvex::app
