#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace talvex::core {

// An opaque foreground colour, 8 bits per channel.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    // A grey level from 0 (black) to 1 (white).
    [[nodiscard]] static Color grey(double level) noexcept;
    // Hue in degrees, saturation and brightness from 0 to 1.
    [[nodiscard]] static Color hsb(double hueDegrees, double saturation,
                                   double brightness) noexcept;

    friend bool operator==(const Color&, const Color&) = default;
};

enum class Alignment : std::uint8_t { Natural, Center };

// What a style sets on a run of text: its colour and its paragraph's alignment. Fonts and sizes
// belong to whatever shows the text.
struct TextAttributes {
    Color foreground;
    Alignment alignment = Alignment::Natural;

    friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

// A stretch of text in one style; plain text has no attributes.
struct StyledRun {
    std::size_t start = 0;
    std::size_t length = 0;
    std::optional<TextAttributes> attributes;

    friend bool operator==(const StyledRun&, const StyledRun&) = default;
};

// Text with runs of attributes, independent of any toolkit: the desktop app maps it onto its
// text formats, the command line onto terminal colours, the log onto rich text.
class StyledText {
  public:
    StyledText() = default;
    explicit StyledText(std::string text, std::optional<TextAttributes> attributes = std::nullopt);

    // Appends text in the given attributes, joining it to the last run when they agree.
    void append(std::string_view text, const std::optional<TextAttributes>& attributes);
    void append(const StyledText& other);

    // The part from `position` on, at most `length` bytes, with its attributes.
    [[nodiscard]] StyledText substring(std::size_t position,
                                       std::size_t length = std::string::npos) const;
    // Puts the text in at a byte position (clamped to the end).
    void insert(std::size_t position, const StyledText& text);
    // Removes at most `length` bytes from `position` on.
    void erase(std::size_t position, std::size_t length = std::string::npos);

    [[nodiscard]] const std::string& string() const noexcept { return m_text; }
    [[nodiscard]] const std::vector<StyledRun>& runs() const noexcept { return m_runs; }
    [[nodiscard]] bool empty() const noexcept { return m_text.empty(); }
    // The attributes at a character position (none for plain text or past the end).
    [[nodiscard]] std::optional<TextAttributes> attributesAt(std::size_t position) const;

    friend bool operator==(const StyledText&, const StyledText&) = default;

  private:
    std::string m_text;
    std::vector<StyledRun> m_runs;
};

}  // namespace talvex::core
