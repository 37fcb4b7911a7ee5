#pragma once

// Helpers for the table and diagram tests: profiles from text, repaired options, and a markup
// that spells out which style every run of a report carries.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/decimal.h"
#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core::reporttest {

// The report styles, each with a colour of its own. Several default styles share a colour, so
// the defaults cannot tell "default" from "percent"; these can.
inline const Styles& distinctStyles() {
    static const Styles styles = [] {
        Styles result;
        std::uint8_t next = 1;
        for (const auto& [name, attributes] : defaultStyles()) {
            result.emplace(name, TextAttributes{Color{next, 0, 0}, attributes.alignment});
            ++next;
        }
        return result;
    }();
    return styles;
}

// Every run as {style:text}, with the style named as in distinctStyles (or "plain").
inline std::string markup(const StyledText& text) {
    std::string result;
    for (const StyledRun& run : text.runs()) {
        std::string name = "plain";
        for (const auto& [styleName, attributes] : distinctStyles()) {
            if (run.attributes == attributes) {
                name = styleName;
            }
        }
        result += "{" + name + ":" + text.string().substr(run.start, run.length) + "}";
    }
    return result;
}

// Outcomes as (quantity, weight) texts; the quantity "NaN" is the undefined outcome.
inline Profile profileOf(
    const std::vector<std::pair<std::string_view, std::string_view>>& outcomes) {
    Profile profile;
    for (const auto& [quantity, weight] : outcomes) {
        profile.addQuantity(
            quantity == "NaN" ? Decimal::notANumber() : Decimal::decimalNumberWithString(quantity),
            Decimal::decimalNumberWithString(weight));
    }
    return profile;
}

// The given options repaired as a report would repair them.
inline Options repairedOptions(
    std::initializer_list<std::pair<const std::string, std::string>> given) {
    const Options options(given);
    return patchOptions(&options, defaultStyles());
}

inline std::string spaces(std::size_t count) { return std::string(count, ' '); }

// `line` followed by a line break, `count` times.
inline std::string lines(std::string_view line, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += line;
        result += '\n';
    }
    return result;
}

}  // namespace talvex::core::reporttest
