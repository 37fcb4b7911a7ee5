#pragma once

namespace talvex::app {

// Bounds of the dividers of the window's split views, so that no pane can be dragged shut:
// a vertical split (panes side by side) keeps 10 points on the left and 20 on the right, a
// horizontal one 50 points above and below. The proposed position and the pane do not matter.
struct KVTXSplitViewDelegate {
    [[nodiscard]] static constexpr double splitViewConstrainMinCoordinate(bool vertical) noexcept {
        return vertical ? 10.0 : 50.0;
    }
    [[nodiscard]] static constexpr double splitViewConstrainMaxCoordinate(bool vertical,
                                                                          double width,
                                                                          double height) noexcept {
        return vertical ? width - 20.0 : height - 50.0;
    }
};

}  // namespace talvex::app
