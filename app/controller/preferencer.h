#pragma once

#include <string>
#include <string_view>

#include "app/defaults_store.h"
#include "app/ports.h"
#include "core/report_options.h"

namespace talvex::app {

// The display and logging settings: kept in the user defaults as one text of option lines,
// shown in the settings panel, and turned into the report options of every display field.
class Preferencer {
  public:
    Preferencer(DefaultsStore& defaults, SettingsPanel& panel)
        : m_defaults(defaults), m_panel(panel) {}

    // The option line helpers of the stored form.
    [[nodiscard]] static std::string optionStringWithString(std::string_view key,
                                                            std::string_view value);
    [[nodiscard]] static std::string optionStringWithBool(std::string_view key, bool flag);
    [[nodiscard]] static std::string stringForBool(bool flag);
    // The value of the first "key=" anywhere in the text, up to the next line feed; empty
    // when absent.
    [[nodiscard]] static std::string stringForOption(std::string_view key, std::string_view text);
    [[nodiscard]] static bool boolForOption(std::string_view key, std::string_view text);

    // The stored form: "Talvex Preferences\n\n" and one line per setting.
    [[nodiscard]] std::string preferencesString() const;
    bool prefsToDefaults();
    void prefsFromDefaults();
    void prefsToPanel();
    // Throws DividerListError when the panel's divider list repeats a value.
    void prefsFromPanel();
    void defaultsToPanel();
    void setDefaultPreferences();
    // Has the renderer repair the panel's texts and writes the corrections back.
    void patchPanel();

    [[nodiscard]] core::Options optionsForField(std::string_view field, int height,
                                                bool comparison) const;

    [[nodiscard]] int logSize() const noexcept { return m_logSize; }
    [[nodiscard]] double tableScale() const noexcept { return m_tableScale; }
    void setTableScale(double scale) noexcept { m_tableScale = scale; }
    [[nodiscard]] bool links() const noexcept { return m_links; }
    void setLinks(bool links) noexcept { m_links = links; }
    [[nodiscard]] bool welcomed() const noexcept { return m_welcomed; }
    void setWelcomed(bool welcomed) noexcept { m_welcomed = welcomed; }
    [[nodiscard]] const std::string& listsFolderPath() const noexcept { return m_listsFolderPath; }
    void setListsFolderPath(const std::string& path) { m_listsFolderPath = path; }

    // The settings as they stand, for the displays and the tests.
    [[nodiscard]] const std::string& dividers() const noexcept { return m_dividers; }
    [[nodiscard]] int height() const noexcept { return m_height; }
    [[nodiscard]] int diagramHeight() const noexcept { return m_diagramHeight; }
    [[nodiscard]] int maxBar() const noexcept { return m_maxBar; }
    [[nodiscard]] bool relativeBars() const noexcept { return m_relativeBars; }
    [[nodiscard]] bool averageIntervalWeights() const noexcept { return m_averageIntervalWeights; }
    [[nodiscard]] bool sameBar() const noexcept { return m_sameBar; }
    [[nodiscard]] bool displayLegend() const noexcept { return m_dLegend; }
    [[nodiscard]] bool logStatistics() const noexcept { return m_lStatistics; }
    [[nodiscard]] bool logTable() const noexcept { return m_lTable; }
    [[nodiscard]] bool logDiagram() const noexcept { return m_lDiagram; }
    [[nodiscard]] bool logRolls() const noexcept { return m_lRolls; }
    [[nodiscard]] bool logLegend() const noexcept { return m_lLegend; }
    [[nodiscard]] int statisticPrecision() const noexcept { return m_statisticPrecision; }
    [[nodiscard]] int valuePrecision() const noexcept { return m_valuePrecision; }
    [[nodiscard]] int weightPrecision() const noexcept { return m_weightPrecision; }

  private:
    DefaultsStore& m_defaults;
    SettingsPanel& m_panel;

    std::string m_dividers = "25,50,75";
    int m_height = 300;
    int m_diagramHeight = 20;
    int m_maxBar = 10;
    bool m_relativeBars = true;
    bool m_averageIntervalWeights = true;
    bool m_sameBar = true;
    bool m_dLegend = true;
    bool m_lStatistics = true;
    bool m_lTable = true;
    bool m_lDiagram = false;
    bool m_lRolls = true;
    bool m_lLegend = true;
    int m_logSize = 100;
    int m_statisticPrecision = 2;
    int m_valuePrecision = 2;
    int m_weightPrecision = 2;
    std::string m_listsFolderPath;
    bool m_welcomed = false;
    bool m_links = true;
    double m_tableScale = -1;
};

// The leading whole number of a text (blanks, a sign, digits); 0 when there is none.
[[nodiscard]] int leadingIntValue(std::string_view text) noexcept;

}  // namespace talvex::app
