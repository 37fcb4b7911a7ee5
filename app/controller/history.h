#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/controller/controller_state.h"
#include "app/controller/displays.h"
#include "app/ports.h"

namespace talvex::app {

// One past request: the titles selected in the two pop-ups. Revisiting recalculates it.
struct HistoryEntry {
    std::string expressionTitle;
    std::string compareTitle;

    friend bool operator==(const HistoryEntry&, const HistoryEntry&) = default;
};

// The requests displayed in this run, to step back and forward through as in a browser. Kept
// in memory only.
class History {
  public:
    History(MainWindow& window, ControllerState& state, Displays& displays,
            std::function<void()> roll)
        : m_window(window), m_state(state), m_displays(displays), m_roll(std::move(roll)) {}

    void makeHistory();
    void restoreHistoryAtIndex(long index);
    void stepBack();
    void stepForward();
    void clearHistory();

    [[nodiscard]] const std::vector<HistoryEntry>& entries() const noexcept { return m_history; }
    [[nodiscard]] long historyIndex() const noexcept { return m_historyIndex; }

  private:
    MainWindow& m_window;
    ControllerState& m_state;
    Displays& m_displays;
    std::function<void()> m_roll;
    std::vector<HistoryEntry> m_history;
    long m_historyIndex = -1;
};

}  // namespace talvex::app
