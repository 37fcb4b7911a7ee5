#pragma once

#include <span>

namespace talvex::gui {

// One tab of the help window: its label and its text in HTML.
struct HelpPage {
    const char* label;
    const char* html;
};

// The help, in tab order; the first is "Overview".
[[nodiscard]] std::span<const HelpPage> helpPages();

}  // namespace talvex::gui
