#include "cli/terminal_output.h"

#include <string_view>

namespace talvex::cli {

std::string terminalText(const core::StyledText& text, bool colour) {
    if (!colour) {
        return text.string();
    }
    const std::string_view characters = text.string();
    std::string out;
    out.reserve(characters.size() * 2);
    for (const core::StyledRun& run : text.runs()) {
        const std::string_view piece = characters.substr(run.start, run.length);
        if (!run.attributes) {
            out.append(piece);
            continue;
        }
        const core::Color& c = run.attributes->foreground;
        // Colour each line separately so that a pager or a cut line keeps its colour.
        std::size_t start = 0;
        while (start < piece.size()) {
            const std::size_t end = piece.find('\n', start);
            const std::size_t stop = end == std::string_view::npos ? piece.size() : end;
            if (stop > start) {
                out += "\x1b[38;2;" + std::to_string(c.red) + ';' + std::to_string(c.green) + ';' +
                       std::to_string(c.blue) + 'm';
                out.append(piece.substr(start, stop - start));
                out += "\x1b[0m";
            }
            if (end == std::string_view::npos) {
                break;
            }
            out.push_back('\n');
            start = end + 1;
        }
    }
    return out;
}

bool shouldColour(const std::string& mode, bool isTerminal, bool noColourSet) {
    if (mode == "always") {
        return true;
    }
    if (mode == "never") {
        return false;
    }
    return isTerminal && !noColourSet;
}

}  // namespace talvex::cli
