#include "core/styles.h"

namespace talvex::core {

namespace {

TextAttributes colour(Color color) { return TextAttributes{color, Alignment::Natural}; }
TextAttributes centred(Color color) { return TextAttributes{color, Alignment::Center}; }

Styles makeDefaultStyles() {
    const Color black = Color::grey(0.0);
    const Color blue{0, 0, 255};
    return Styles{
        {"title", colour(Color::grey(0.2))},
        {"heading", colour(Color::grey(0.25))},
        {"item", colour(blue)},
        {"statistic", colour(black)},
        {"quantity", colour(black)},
        {"weight", colour(Color::hsb(111, 1, 1))},
        {"total weight", colour(Color::hsb(0, 1, 0.5))},
        {"running weight", colour(Color::hsb(111, 1, 0.25))},
        {"running total weight", colour(Color::hsb(0, 1, 0.25))},
        {"undefined", colour(Color::hsb(350, 1, 0.75))},
        {"percent", colour(Color::grey(0.25))},
        {"interval", colour(Color::hsb(0, 0, 0.25))},
        {"default", colour(Color::hsb(0, 0, 0.25))},
        {"diagram structure", colour(Color::grey(0.25))},
        {"bar", colour(blue)},
        {"operator", colour(black)},
        {"legend key", colour(Color::hsb(334, 1, 0.5))},
        {"legend circumstance", colour(Color::grey(0.25))},
        {"date", colour(Color::grey(0.25))},
        {"roll", centred(Color::hsb(57, 0.8, 1))},
        {"roll text", centred(black)},
    };
}

}  // namespace

const Styles& defaultStyles() {
    static const Styles styles = makeDefaultStyles();
    return styles;
}

}  // namespace talvex::core
