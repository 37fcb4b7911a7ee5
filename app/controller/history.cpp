#include "app/controller/history.h"

namespace talvex::app {

void History::makeHistory() {
    if (!m_history.empty()) {
        m_history.resize(static_cast<std::size_t>(m_historyIndex + 1));
    }
    m_history.push_back({m_window.selectedPopUpTitle(PopUp::expression),
                         m_window.selectedPopUpTitle(PopUp::compare)});
    ++m_historyIndex;
}

void History::restoreHistoryAtIndex(long index) {
    if (index < 0 || index >= static_cast<long>(m_history.size())) {
        return;
    }
    const HistoryEntry entry = m_history[static_cast<std::size_t>(index)];
    // The coming request must count as new.
    m_state.lastRoll = LastRoll{"", "", "blank"};
    m_displays.blankDisplay();

    m_window.selectPopUpTitle(PopUp::expression, entry.expressionTitle);
    m_window.selectPopUpTitle(PopUp::compare, entry.compareTitle);
    m_window.setFieldText(TextField::expression, m_window.selectedPopUpTitle(PopUp::expression));
    m_state.compareExpression = m_state.session.build(m_window.selectedPopUpTitle(PopUp::compare));

    // Revisiting writes no log entry and does not recycle the comparison.
    const bool logOn = m_window.isChecked(CheckBox::log);
    const bool cycleOn = m_window.isChecked(CheckBox::cycle);
    m_window.setChecked(CheckBox::log, false);
    m_window.setChecked(CheckBox::cycle, false);

    m_historyIndex = static_cast<long>(m_history.size()) - 1;
    const auto sizeBefore = m_history.size();
    m_roll();
    // The request appended an entry for itself; the history keeps the one revisited instead.
    if (m_history.size() > sizeBefore) {
        m_history.erase(m_history.begin() + m_historyIndex);
    }
    m_historyIndex = index;

    m_window.setChecked(CheckBox::log, logOn);
    m_window.setChecked(CheckBox::cycle, cycleOn);
}

void History::stepBack() {
    if (m_historyIndex >= 1) {
        restoreHistoryAtIndex(m_historyIndex - 1);
    }
}

void History::stepForward() {
    if (m_historyIndex < static_cast<long>(m_history.size()) - 1) {
        restoreHistoryAtIndex(m_historyIndex + 1);
    }
}

void History::clearHistory() {
    m_history.clear();
    m_historyIndex = -1;
}

}  // namespace talvex::app
