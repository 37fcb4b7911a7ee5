#include "app/text_encoding.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace talvex::app {

namespace {

// glibc's MACINTOSH table follows RFC 1345 at two bytes where Apple's differs: it reads 0xC6 as
// U+0394 GREEK CAPITAL LETTER DELTA and 0xF0 as the private-use U+E01E. A Mac means Apple's
// characters there, so those two are exchanged on the UTF-8 side of iconv. UTF-8 sequences never
// start inside another character, so a plain search finds only whole characters.
struct Exchange {
    std::string_view apple;
    std::string_view glibc;
};
constexpr std::array kAppleForGlibc{
    Exchange{"\xE2\x88\x86", "\xCE\x94"},      // U+2206 for U+0394, at 0xC6
    Exchange{"\xEF\xA3\xBF", "\xEE\x80\x9E"},  // U+F8FF for U+E01E, at 0xF0
};

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

class Converter {
  public:
    Converter(const char* to, const char* from) : m_descriptor(iconv_open(to, from)) {}
    ~Converter() {
        if (isOpen()) {
            iconv_close(m_descriptor);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    [[nodiscard]] bool isOpen() const { return m_descriptor != kFailed; }

    // Nothing on any character the converter rejects, and on any it would only approximate.
    [[nodiscard]] std::optional<std::string> convert(std::string_view input) {
        if (!isOpen()) {
            return std::nullopt;
        }
        // iconv's signature lacks const; it only reads the input.
        char* in = const_cast<char*>(input.data());
        std::size_t inLeft = input.size();
        std::string output(input.size() + 16, '\0');
        std::size_t written = 0;
        for (;;) {
            char* out = output.data() + written;
            std::size_t outLeft = output.size() - written;
            const std::size_t result = iconv(m_descriptor, &in, &inLeft, &out, &outLeft);
            written = output.size() - outLeft;
            if (result != kIconvError) {
                // A positive count is of characters converted irreversibly.
                if (result != 0) {
                    return std::nullopt;
                }
                break;
            }
            if (errno != E2BIG) {
                return std::nullopt;
            }
            output.resize(output.size() * 2);
        }
        output.resize(written);
        return output;
    }

  private:
    static constexpr std::size_t kIconvError = static_cast<std::size_t>(-1);
    inline static const iconv_t kFailed = reinterpret_cast<iconv_t>(static_cast<std::intptr_t>(-1));

    iconv_t m_descriptor;
};

}  // namespace

std::optional<std::string> macRomanFromUtf8(std::string_view utf8) {
    std::string text(utf8);
    for (const auto& [apple, glibc] : kAppleForGlibc) {
        text = replaceAll(std::move(text), apple, glibc);
    }
    std::optional<std::string> bytes = Converter("MACINTOSH", "UTF-8").convert(text);
    if (!bytes) {
        return std::nullopt;
    }
    // glibc's own U+0394 and U+E01E would read back as Apple's characters; like anything else
    // that does not read back as written, they are refused.
    const std::optional<std::string> readBack = utf8FromMacRoman(*bytes);
    if (!readBack || *readBack != utf8) {
        return std::nullopt;
    }
    return bytes;
}

std::optional<std::string> utf8FromMacRoman(std::string_view bytes) {
    std::optional<std::string> text = Converter("UTF-8", "MACINTOSH").convert(bytes);
    if (text) {
        for (const auto& [apple, glibc] : kAppleForGlibc) {
            *text = replaceAll(std::move(*text), glibc, apple);
        }
    }
    return text;
}

bool isUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        char32_t value = 0;
        char32_t least = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        }
        if ((lead & 0xE0U) == 0xC0U) {
            length = 2, value = lead & 0x1FU, least = 0x80;
        } else if ((lead & 0xF0U) == 0xE0U) {
            length = 3, value = lead & 0x0FU, least = 0x800;
        } else if ((lead & 0xF8U) == 0xF0U) {
            length = 4, value = lead & 0x07U, least = 0x10000;
        } else {
            return false;
        }
        if (i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0U) != 0x80U) {
                return false;
            }
            value = (value << 6U) | (next & 0x3FU);
        }
        if (value < least || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
            return false;
        }
        i += length;
    }
    return true;
}

}  // namespace talvex::app
