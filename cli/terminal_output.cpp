#include "cli/terminal_output.h"

#include <algorithm>
#include <string_view>

namespace talvex::cli {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Sets the foreground, or gives it back to the terminal's own.
constexpr std::string_view kDefaultForeground = "\x1b[39m";
constexpr std::string_view kReset = "\x1b[0m";

std::string foregroundSequence(const core::Color& c) {
    if (isNearBlack(c)) {
        return std::string(kDefaultForeground);
    }
    return "\x1b[38;2;" + std::to_string(c.red) + ';' + std::to_string(c.green) + ';' +
           std::to_string(c.blue) + 'm';
}

bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

// The length of the valid UTF-8 sequence at the start of `text`, 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto at = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = at(0);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        // No overlong forms, no surrogates.
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        // No overlong forms, nothing beyond U+10FFFF.
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (text.size() < length || at(1) < low || at(1) > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (!isContinuation(at(i))) {
            return 0;
        }
    }
    return length;
}

bool isSafeAscii(char c, bool keepLayout) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte < 0x7F) || (keepLayout && (c == '\t' || c == '\n'));
}

}  // namespace

std::string terminalSafe(std::string_view text, bool keepLayout) {
    if (std::all_of(text.begin(), text.end(),
                    [keepLayout](char c) { return isSafeAscii(c, keepLayout); })) {
        return std::string(text);
    }
    std::string out;
    out.reserve(text.size() + 8);
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t length = sequenceLength(text.substr(i));
        if (length == 0) {
            out += kReplacement;
            ++i;
            continue;
        }
        // Two bytes from C2 80 to C2 9F are U+0080 to U+009F, the C1 controls.
        const bool c1 = length == 2 && static_cast<unsigned char>(text[i]) == 0xC2 &&
                        static_cast<unsigned char>(text[i + 1]) <= 0x9F;
        const bool control = length == 1 ? !isSafeAscii(text[i], keepLayout) : c1;
        if (control) {
            out += kReplacement;
        } else {
            out.append(text.substr(i, length));
        }
        i += length;
    }
    return out;
}

std::size_t characterLength(std::string_view text) {
    return text.empty() ? 0 : std::max<std::size_t>(sequenceLength(text), 1);
}

bool isNearBlack(const core::Color& colour) {
    const auto [darkest, lightest] = std::minmax({colour.red, colour.green, colour.blue});
    // A grey (channels within 16 of each other) no lighter than 25 %.
    return lightest <= 64 && lightest - darkest <= 16;
}

std::string terminalText(const core::StyledText& text, bool colour) {
    if (!colour) {
        return terminalSafe(text.string(), true);
    }
    const std::string_view characters = text.string();
    std::string out;
    out.reserve(characters.size() * 2);
    for (const core::StyledRun& run : text.runs()) {
        const std::string safe = terminalSafe(characters.substr(run.start, run.length), true);
        const std::string_view piece = safe;
        if (!run.attributes) {
            out.append(piece);
            continue;
        }
        const std::string foreground = foregroundSequence(run.attributes->foreground);
        // Colour each line separately so that a pager or a cut line keeps its colour.
        std::size_t start = 0;
        while (start < piece.size()) {
            const std::size_t end = piece.find('\n', start);
            const std::size_t stop = end == std::string_view::npos ? piece.size() : end;
            if (stop > start) {
                out += foreground;
                out.append(piece.substr(start, stop - start));
                out += kReset;
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
