#include "app/rtf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace talvex::app {

namespace {

using core::Alignment;
using core::Color;
using core::StyledText;
using core::TextAttributes;

constexpr char32_t kReplacement = 0xFFFD;

// Reads one UTF-8 sequence at `at` and moves past it; a malformed byte reads as U+FFFD.
char32_t nextCodePoint(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 1;
    char32_t value = lead;
    if (lead >= 0xF0 && lead < 0xF5) {
        length = 4;
        value = lead & 0x07U;
    } else if (lead >= 0xE0) {
        length = lead < 0xF0 ? 3 : 0;
        value = lead & 0x0FU;
    } else if (lead >= 0xC2) {
        length = 2;
        value = lead & 0x1FU;
    } else if (lead >= 0x80) {
        length = 0;
    }
    if (length == 0 || at + length > text.size()) {
        ++at;
        return kReplacement;
    }
    for (std::size_t k = 1; k < length; ++k) {
        const auto byte = static_cast<unsigned char>(text[at + k]);
        if ((byte & 0xC0U) != 0x80U) {
            ++at;
            return kReplacement;
        }
        value = (value << 6U) | (byte & 0x3FU);
    }
    const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
    if (overlong || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        ++at;
        return kReplacement;
    }
    at += length;
    return value;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0U | (c >> 6U)));
        out.push_back(static_cast<char>(0x80U | (c & 0x3FU)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0U | (c >> 12U)));
        out.push_back(static_cast<char>(0x80U | ((c >> 6U) & 0x3FU)));
        out.push_back(static_cast<char>(0x80U | (c & 0x3FU)));
    } else {
        out.push_back(static_cast<char>(0xF0U | (c >> 18U)));
        out.push_back(static_cast<char>(0x80U | ((c >> 12U) & 0x3FU)));
        out.push_back(static_cast<char>(0x80U | ((c >> 6U) & 0x3FU)));
        out.push_back(static_cast<char>(0x80U | (c & 0x3FU)));
    }
}

// \uN takes a signed 16-bit number, followed by one fallback character for old readers.
void appendUnicodeWord(std::string& out, char32_t unit) {
    const int value = unit > 0x7FFF ? static_cast<int>(unit) - 0x10000 : static_cast<int>(unit);
    out += "\\u" + std::to_string(value) + "?";
}

// The windows code page of \'hh: Latin-1 except for the printable characters at 0x80..0x9F.
char32_t fromWindows1252(unsigned char byte) {
    static constexpr std::array<char32_t, 32> kHigh = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80U] : static_cast<char32_t>(byte);
}

// The paragraph alignment that the window shows: that of the paragraph's first run.
bool centred(const std::optional<TextAttributes>& attributes) {
    return attributes && attributes->alignment == Alignment::Center;
}

// Courier at 10 points: tab stops every eleven columns of 6 points, as in the window.
constexpr const char* kHeader =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\\deftab1320\n"
    "{\\fonttbl{\\f0\\fmodern\\fcharset0 Courier;}}\n";

}  // namespace

std::string rtfFromStyledText(const StyledText& text) {
    std::vector<Color> colours;
    const auto colourIndex = [&colours](const Color& colour) {
        for (std::size_t i = 0; i < colours.size(); ++i) {
            if (colours[i] == colour) {
                return i + 1;
            }
        }
        colours.push_back(colour);
        return colours.size();
    };
    for (const core::StyledRun& run : text.runs()) {
        if (run.attributes) {
            static_cast<void>(colourIndex(run.attributes->foreground));
        }
    }

    std::string out = kHeader;
    out += "{\\colortbl;";
    for (const Color& c : colours) {
        out += "\\red" + std::to_string(c.red) + "\\green" + std::to_string(c.green) + "\\blue" +
               std::to_string(c.blue) + ";";
    }
    out += "}\n\\f0\\fs20 ";

    const std::string_view all = text.string();
    bool paragraphStart = true;
    for (const core::StyledRun& run : text.runs()) {
        const std::size_t colour = run.attributes ? colourIndex(run.attributes->foreground) : 0;
        out += "\\cf" + std::to_string(colour) + "\\tvxalign" +
               (centred(run.attributes) ? "1" : "0") + " ";
        const std::string_view piece = all.substr(run.start, run.length);
        std::size_t at = 0;
        while (at < piece.size()) {
            if (paragraphStart) {
                out += centred(run.attributes) ? "\\pard\\qc " : "\\pard\\ql ";
                paragraphStart = false;
            }
            const char32_t c = nextCodePoint(piece, at);
            if (c == '\n') {
                out += "\\par\n";
                paragraphStart = true;
            } else if (c == '\t') {
                out += "\\tab ";
            } else if (c == '\\' || c == '{' || c == '}') {
                out += '\\';
                out += static_cast<char>(c);
            } else if (c >= 0x20 && c < 0x7F) {
                out += static_cast<char>(c);
            } else if (c < 0x10000) {
                appendUnicodeWord(out, c);
            } else {
                const char32_t offset = c - 0x10000;
                appendUnicodeWord(out, 0xD800 + (offset >> 10U));
                appendUnicodeWord(out, 0xDC00 + (offset & 0x3FFU));
            }
        }
    }
    out += "}\n";
    return out;
}

namespace {

// What a group sets for the text inside it.
struct GroupState {
    std::size_t colour = 0;
    // \tvxalign: the run's own alignment, when written by Talvex.
    std::optional<bool> runCentred;
    bool paragraphCentred = false;
    int fallbackLength = 1;
    bool skipped = false;
    bool colourTable = false;
};

class RtfReader {
  public:
    explicit RtfReader(std::string_view rtf) : m_rtf(rtf) {}

    std::optional<StyledText> read() {
        if (m_rtf.substr(0, 5) != "{\\rtf") {
            return std::nullopt;
        }
        while (m_at < m_rtf.size()) {
            const char c = m_rtf[m_at++];
            if (c == '{') {
                m_groups.push_back(m_groups.empty() ? GroupState{} : m_groups.back());
                m_pendingFallback = 0;
                if (m_rtf.substr(m_at, 2) == "\\*") {
                    m_groups.back().skipped = true;
                }
            } else if (c == '}') {
                if (m_groups.empty()) {
                    return std::nullopt;
                }
                m_groups.pop_back();
                m_pendingFallback = 0;
                if (m_groups.empty()) {
                    return m_text;
                }
            } else if (m_groups.empty()) {
                return std::nullopt;
            } else if (c == '\\') {
                controlSymbolOrWord();
            } else if (c == '\r' || c == '\n') {
                // Line breaks of the file itself mean nothing.
            } else if (m_groups.back().colourTable) {
                if (c == ';') {
                    m_colours.push_back(m_nextColour);
                    m_nextColour.reset();
                }
            } else {
                character(fromWindows1252(static_cast<unsigned char>(c)));
            }
        }
        return std::nullopt;
    }

  private:
    GroupState& state() { return m_groups.back(); }

    void controlSymbolOrWord() {
        if (m_at >= m_rtf.size()) {
            return;
        }
        const char symbol = m_rtf[m_at];
        if ((symbol < 'a' || symbol > 'z') && (symbol < 'A' || symbol > 'Z')) {
            ++m_at;
            controlSymbol(symbol);
            return;
        }
        const std::size_t nameStart = m_at;
        while (m_at < m_rtf.size() && ((m_rtf[m_at] >= 'a' && m_rtf[m_at] <= 'z') ||
                                       (m_rtf[m_at] >= 'A' && m_rtf[m_at] <= 'Z'))) {
            ++m_at;
        }
        const std::string_view name = m_rtf.substr(nameStart, m_at - nameStart);
        std::optional<int> parameter;
        const std::size_t numberStart = m_at;
        if (m_at < m_rtf.size() && m_rtf[m_at] == '-') {
            ++m_at;
        }
        while (m_at < m_rtf.size() && m_rtf[m_at] >= '0' && m_rtf[m_at] <= '9') {
            ++m_at;
        }
        if (m_at > numberStart) {
            int value = 0;
            const auto [end, error] =
                std::from_chars(m_rtf.data() + numberStart, m_rtf.data() + m_at, value);
            if (error == std::errc() && end == m_rtf.data() + m_at) {
                parameter = value;
            }
        }
        if (m_at < m_rtf.size() && m_rtf[m_at] == ' ') {
            ++m_at;
        }
        controlWord(name, parameter);
    }

    void controlSymbol(char symbol) {
        switch (symbol) {
            case '\\':
            case '{':
            case '}':
                character(static_cast<unsigned char>(symbol));
                break;
            case '\'': {
                int byte = 0;
                const auto [end, error] = std::from_chars(
                    m_rtf.data() + m_at, m_rtf.data() + std::min(m_at + 2, m_rtf.size()), byte, 16);
                if (error == std::errc() && end == m_rtf.data() + m_at + 2) {
                    m_at += 2;
                    character(fromWindows1252(static_cast<unsigned char>(byte)));
                }
                break;
            }
            case '~':
                character(0x00A0);
                break;
            case '_':
                character(0x2011);
                break;
            case '*':
                state().skipped = true;
                break;
            case '\n':
            case '\r':
                character('\n');
                break;
            default:
                // \- (an optional hyphen) and the rest show nothing.
                break;
        }
    }

    void controlWord(std::string_view name, std::optional<int> parameter) {
        GroupState& s = state();
        const int value = parameter.value_or(0);
        if (s.colourTable) {
            const auto channel = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
            Color& colour = m_nextColour ? *m_nextColour : m_nextColour.emplace();
            if (name == "red") {
                colour.red = channel;
            } else if (name == "green") {
                colour.green = channel;
            } else if (name == "blue") {
                colour.blue = channel;
            }
            return;
        }
        if (name == "colortbl") {
            s.colourTable = true;
        } else if (name == "fonttbl" || name == "stylesheet" || name == "info" || name == "pict" ||
                   name == "object" || name == "fldinst" || name == "header" || name == "footer" ||
                   name == "footnote" || name == "listtable" || name == "listoverridetable" ||
                   name == "revtbl" || name == "filetbl") {
            s.skipped = true;
        } else if (name == "par" || name == "line") {
            character('\n');
        } else if (name == "tab") {
            character('\t');
        } else if (name == "cf") {
            s.colour = value > 0 ? static_cast<std::size_t>(value) : 0;
        } else if (name == "plain") {
            s.colour = 0;
            s.runCentred.reset();
        } else if (name == "tvxalign") {
            s.runCentred = value == 1;
        } else if (name == "pard") {
            s.paragraphCentred = false;
        } else if (name == "qc") {
            s.paragraphCentred = true;
        } else if (name == "ql" || name == "qr" || name == "qj") {
            s.paragraphCentred = false;
        } else if (name == "uc") {
            s.fallbackLength = std::max(value, 0);
        } else if (name == "u") {
            unicode(static_cast<char32_t>(value < 0 ? value + 0x10000 : value));
        } else if (name == "emdash") {
            character(0x2014);
        } else if (name == "endash") {
            character(0x2013);
        } else if (name == "bullet") {
            character(0x2022);
        } else if (name == "lquote") {
            character(0x2018);
        } else if (name == "rquote") {
            character(0x2019);
        } else if (name == "ldblquote") {
            character(0x201C);
        } else if (name == "rdblquote") {
            character(0x201D);
        }
    }

    void unicode(char32_t unit) {
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            m_highSurrogate = unit;
        } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            const std::optional<char32_t> high = m_highSurrogate;
            m_highSurrogate.reset();
            emit(high ? 0x10000 + ((*high - 0xD800) << 10U) + (unit - 0xDC00) : kReplacement);
        } else {
            emit(unit);
        }
        m_pendingFallback = state().fallbackLength;
    }

    // A character of the text, or of the fallback that follows a \u word.
    void character(char32_t c) {
        if (m_pendingFallback > 0) {
            --m_pendingFallback;
            return;
        }
        emit(c);
    }

    void emit(char32_t c) {
        const GroupState& s = state();
        if (s.skipped || s.colourTable) {
            return;
        }
        if (m_highSurrogate && (c < 0xDC00 || c > 0xDFFF)) {
            m_highSurrogate.reset();
            appendCharacter(kReplacement, s);
        }
        appendCharacter(c, s);
    }

    void appendCharacter(char32_t c, const GroupState& s) {
        const bool isCentred = s.runCentred.value_or(s.paragraphCentred);
        // Entry 0 is the automatic colour; an entry without components is automatic too.
        const std::optional<Color> colour =
            s.colour < m_colours.size() ? m_colours[s.colour] : std::nullopt;
        std::optional<TextAttributes> attributes;
        if (colour || isCentred) {
            attributes = TextAttributes{colour.value_or(Color{}),
                                        isCentred ? Alignment::Center : Alignment::Natural};
        }
        std::string utf8;
        appendUtf8(utf8, c);
        m_text.append(utf8, attributes);
    }

    std::string_view m_rtf;
    std::size_t m_at = 0;
    std::vector<GroupState> m_groups;
    // The colour table by index: a colour, or none for an automatic entry.
    std::vector<std::optional<Color>> m_colours;
    std::optional<Color> m_nextColour;
    int m_pendingFallback = 0;
    std::optional<char32_t> m_highSurrogate;
    StyledText m_text;
};

}  // namespace

std::optional<StyledText> styledTextFromRtf(std::string_view rtf) { return RtfReader(rtf).read(); }

bool writeRtfd(FileSystem& files, const std::string& packagePath, const core::StyledText& text) {
    if (!files.isDirectory(packagePath) && !files.createDirectories(packagePath)) {
        return false;
    }
    return files.writeTextAtomically(joinPath(packagePath, kRtfdTextName), rtfFromStyledText(text));
}

std::optional<core::StyledText> readRtfd(const FileSystem& files, const std::string& packagePath) {
    const auto rtf = files.readText(joinPath(packagePath, kRtfdTextName));
    if (!rtf) {
        return std::nullopt;
    }
    return styledTextFromRtf(*rtf);
}

}  // namespace talvex::app
