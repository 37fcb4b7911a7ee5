#pragma once

#include <string>
#include <string_view>

#include "app/controller/controller_state.h"
#include "app/controller/displays.h"
#include "app/controller/history.h"
#include "app/controller/preferencer.h"
#include "app/controller/request_log.h"
#include "app/defaults_store.h"
#include "app/ports.h"

namespace talvex::app {

// Calculation requests: what the person typed or picked becomes an expression, a history
// entry, a log entry, every display field and a roll.
class Requests {
  public:
    Requests(MainWindow& window, ControllerState& state, Displays& displays, History& history,
             Preferencer& prefer, RequestLog& log, DefaultsStore& defaults)
        : m_window(window),
          m_state(state),
          m_displays(displays),
          m_history(history),
          m_prefer(prefer),
          m_log(log),
          m_defaults(defaults) {}

    // The calculation request. A calculation that fails leaves the previous results on screen
    // and says why in the window's message line.
    void roll();
    [[nodiscard]] static std::string prepareUserExpressionString(std::string_view text) {
        return std::string(text);
    }
    // The text without line breaks at either end; blanks and tabs are kept.
    [[nodiscard]] static std::string trim(std::string_view text);
    void expressionSelect();
    void compareSelect();
    void panelRoll();
    void panelCancel();
    void setRunningSelection();

  private:
    void emptyRequest();
    void maintainExpressionPop(const std::string& lookupTitle, const std::string& text);
    [[nodiscard]] core::Profile latestRoll() const;
    void logRoll(bool displayed);
    void showRoll();

    MainWindow& m_window;
    ControllerState& m_state;
    Displays& m_displays;
    History& m_history;
    Preferencer& m_prefer;
    RequestLog& m_log;
    DefaultsStore& m_defaults;
};

}  // namespace talvex::app
