#pragma once

#include <string>
#include <variant>
#include <vector>

#include "app/controller/controller_state.h"
#include "app/controller/preferencer.h"
#include "app/ports.h"
#include "core/profile.h"
#include "core/styled_text.h"

namespace talvex::app {

// The writes of one redisplay, gathered first and made on the window only when every report
// could be calculated, so that a failing request leaves the previous results on screen.
class DisplayFrame {
  public:
    void setField(TextField field, core::StyledText text);
    void setView(TextView view, core::StyledText text);
    // The field's text, copied into its view as well.
    void setFieldAndView(TextField field, const core::StyledText& text);
    void emptyField(TextField field);
    void clearView(TextView view);

    void apply(MainWindow& window) const;
    [[nodiscard]] bool empty() const noexcept { return m_writes.empty(); }

  private:
    struct FieldWrite {
        TextField field;
        core::StyledText text;
    };
    struct ViewWrite {
        TextView view;
        core::StyledText text;
    };
    struct ViewClear {
        TextView view;
    };
    std::vector<std::variant<FieldWrite, ViewWrite, ViewClear>> m_writes;
};

// The reports of the current expression and comparison in every display field.
class Displays {
  public:
    Displays(MainWindow& window, Preferencer& prefer, ControllerState& state)
        : m_window(window), m_prefer(prefer), m_state(state) {}

    // The report of a profile for a display field.
    [[nodiscard]] core::StyledText report(core::Profile& profile, const std::string& field,
                                          int height, bool comparison) const;

    void updateHeight();
    // While held, the height stays as it was last read: the reports may then be calculated away
    // from the window's thread, which alone may ask the window.
    void holdHeight(bool held) noexcept { m_heightHeld = held; }
    // Holds the height for as long as it lives.
    class HeightHold {
      public:
        explicit HeightHold(Displays& displays) : m_displays(displays) {
            m_displays.holdHeight(true);
        }
        ~HeightHold() { m_displays.holdHeight(false); }
        HeightHold(const HeightHold&) = delete;
        HeightHold& operator=(const HeightHold&) = delete;

      private:
        Displays& m_displays;
    };
    // Each of these calculates into the frame; nothing reaches the window.
    void profile(DisplayFrame& frame);
    void tableCompare(DisplayFrame& frame);
    void diagramCompare(DisplayFrame& frame);
    void versus(DisplayFrame& frame);
    void versusWithTie(DisplayFrame& frame);
    // profile, tableCompare, diagramCompare, versus and versusWithTie, in that order.
    void displayAll(DisplayFrame& frame);

    void updateFloatingViews();
    void blankDisplay();

    [[nodiscard]] bool isComparison() const;
    [[nodiscard]] bool isCompareComparison() const;
    [[nodiscard]] static bool isVersusSuitable() { return true; }

  private:
    // Copies of the two profiles, taken once per redisplay.
    struct Profiles {
        core::Profile expression;
        core::Profile compare;
    };
    [[nodiscard]] Profiles currentProfiles() const;
    // The two sides of a side-by-side display (tables or diagrams).
    struct Pair {
        Profiles profiles;
        bool comparison = false;
        bool compareComparison = false;
        bool hasExpression = false;
        bool hasCompare = false;
        // Only then do the two sides share a scale.
        [[nodiscard]] bool bothOfOneKind() const noexcept {
            return hasExpression && hasCompare && comparison == compareComparison;
        }
    };
    [[nodiscard]] Pair currentPair() const;
    struct PairFields {
        const char* fieldKind;
        const char* viewKind;
        TextField field1;
        TextView view1;
        TextField field2;
        TextView view2;
    };
    // Writes each present side on the common scale (−1 for none), then drops the second side
    // when the two are of different kinds.
    void showPair(DisplayFrame& frame, Pair& pair, double scale, const PairFields& fields);
    void versusReport(DisplayFrame& frame, const char* comparator, TextField tableField,
                      TextField legendField, TextView tableView, TextView legendView);

    MainWindow& m_window;
    Preferencer& m_prefer;
    ControllerState& m_state;
    bool m_heightHeld = false;
};

}  // namespace talvex::app
