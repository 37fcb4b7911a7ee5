#include "core/styled_text.h"

#include <algorithm>
#include <cmath>

namespace talvex::core {

namespace {

std::uint8_t channel(double value) noexcept {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
}

}  // namespace

Color Color::grey(double level) noexcept {
    const std::uint8_t v = channel(level);
    return Color{v, v, v};
}

Color Color::hsb(double hueDegrees, double saturation, double brightness) noexcept {
    // The usual hexcone model: six sectors of 60 degrees.
    const double h = std::fmod(std::fmod(hueDegrees, 360.0) + 360.0, 360.0) / 60.0;
    const int sector = static_cast<int>(std::floor(h)) % 6;
    const double fraction = h - std::floor(h);
    const double p = brightness * (1.0 - saturation);
    const double q = brightness * (1.0 - saturation * fraction);
    const double t = brightness * (1.0 - saturation * (1.0 - fraction));
    double r = 0;
    double g = 0;
    double b = 0;
    switch (sector) {
        case 0:
            r = brightness, g = t, b = p;
            break;
        case 1:
            r = q, g = brightness, b = p;
            break;
        case 2:
            r = p, g = brightness, b = t;
            break;
        case 3:
            r = p, g = q, b = brightness;
            break;
        case 4:
            r = t, g = p, b = brightness;
            break;
        default:
            r = brightness, g = p, b = q;
            break;
    }
    return Color{channel(r), channel(g), channel(b)};
}

StyledText::StyledText(std::string text, std::optional<TextAttributes> attributes) {
    append(text, attributes);
}

void StyledText::append(std::string_view text, const std::optional<TextAttributes>& attributes) {
    if (text.empty()) {
        return;
    }
    if (!m_runs.empty() && m_runs.back().attributes == attributes) {
        m_runs.back().length += text.size();
    } else {
        m_runs.push_back(StyledRun{m_text.size(), text.size(), attributes});
    }
    m_text.append(text);
}

void StyledText::append(const StyledText& other) {
    for (const StyledRun& run : other.m_runs) {
        append(std::string_view(other.m_text).substr(run.start, run.length), run.attributes);
    }
}

StyledText StyledText::substring(std::size_t position, std::size_t length) const {
    StyledText part;
    if (position >= m_text.size()) {
        return part;
    }
    const std::size_t end = length >= m_text.size() - position ? m_text.size() : position + length;
    for (const StyledRun& run : m_runs) {
        const std::size_t from = std::max(run.start, position);
        const std::size_t to = std::min(run.start + run.length, end);
        if (from < to) {
            part.append(std::string_view(m_text).substr(from, to - from), run.attributes);
        }
    }
    return part;
}

void StyledText::insert(std::size_t position, const StyledText& text) {
    if (text.empty()) {
        return;
    }
    if (position >= m_text.size()) {
        append(text);
        return;
    }
    StyledText joined = substring(0, position);
    joined.append(text);
    joined.append(substring(position));
    *this = std::move(joined);
}

void StyledText::erase(std::size_t position, std::size_t length) {
    if (position >= m_text.size() || length == 0) {
        return;
    }
    StyledText kept = substring(0, position);
    if (length < m_text.size() - position) {
        kept.append(substring(position + length));
    }
    *this = std::move(kept);
}

std::optional<TextAttributes> StyledText::attributesAt(std::size_t position) const {
    const auto found =
        std::upper_bound(m_runs.begin(), m_runs.end(), position,
                         [](std::size_t p, const StyledRun& run) { return p < run.start; });
    if (found == m_runs.begin()) {
        return std::nullopt;
    }
    const StyledRun& run = *(found - 1);
    if (position >= run.start + run.length) {
        return std::nullopt;
    }
    return run.attributes;
}

}  // namespace talvex::core
