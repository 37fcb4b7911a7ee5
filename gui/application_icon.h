#pragma once

#include <QIcon>

namespace talvex::gui {

// Registers the resources compiled into the library (the icon, the registration defaults);
// calling it again does nothing.
void ensureResources();

// The die of the application's icon: the drawing where Qt can read SVG, and its 256-pixel
// rendering everywhere.
[[nodiscard]] QIcon applicationIcon();

}  // namespace talvex::gui
