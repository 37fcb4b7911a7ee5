#include "app/controller/preferencer.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>

#include "core/decimal.h"
#include "core/profile.h"

namespace talvex::app {

namespace {

constexpr std::string_view kHeader = "Talvex Preferences\n\n";

// The panel's text fields, their keys in the stored form and under the renderer.
struct PanelFieldKeys {
    PanelField field;
    const char* rendererKey;
};
constexpr PanelFieldKeys kPatchedFields[] = {
    {PanelField::dividers, "dividers"},
    {PanelField::height, "table max height"},
    {PanelField::diagramHeight, "diagram height"},
    {PanelField::maxBar, "max bar"},
    {PanelField::statisticPrecision, "statistics precision"},
    {PanelField::valuePrecision, "table precision"},
    {PanelField::weightPrecision, "table weight precision"},
    {PanelField::logSize, "log size"},
};

std::string yesNo(bool flag) { return flag ? "yes" : "no"; }

bool equalsIgnoringCase(std::string_view text, std::string_view expected) {
    return text.size() == expected.size() &&
           std::equal(text.begin(), text.end(), expected.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

}  // namespace

int leadingIntValue(std::string_view text) noexcept {
    std::size_t i = 0;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i])) != 0) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    long long value = 0;
    for (; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])) != 0; ++i) {
        value = std::min<long long>(value * 10 + (text[i] - '0'), INT_MAX);
    }
    return static_cast<int>(negative ? -value : value);
}

std::string Preferencer::optionStringWithString(std::string_view key, std::string_view value) {
    std::string line(key);
    line += '=';
    line += value;
    line += '\n';
    return line;
}

std::string Preferencer::optionStringWithBool(std::string_view key, bool flag) {
    return optionStringWithString(key, stringForBool(flag));
}

std::string Preferencer::stringForBool(bool flag) { return yesNo(flag); }

std::string Preferencer::stringForOption(std::string_view key, std::string_view text) {
    const std::string needle = std::string(key) + "=";
    const std::size_t found = text.find(needle);
    if (found == std::string_view::npos) {
        return {};
    }
    const std::size_t start = found + needle.size();
    const std::size_t end = text.find('\n', start);
    return std::string(text.substr(start, end == std::string_view::npos ? end : end - start));
}

bool Preferencer::boolForOption(std::string_view key, std::string_view text) {
    return equalsIgnoringCase(stringForOption(key, text), "yes");
}

std::string Preferencer::preferencesString() const {
    std::string text(kHeader);
    text += optionStringWithString("dividers", m_dividers);
    text += optionStringWithString("height", std::to_string(m_height));
    text += optionStringWithString("diagramHeight", std::to_string(m_diagramHeight));
    text += optionStringWithString("maxBar", std::to_string(m_maxBar));
    text += optionStringWithBool("relativeBars", m_relativeBars);
    text += optionStringWithBool("averageIntervalWeights", m_averageIntervalWeights);
    text += optionStringWithBool("sameBar", m_sameBar);
    text += optionStringWithBool("displayLegend", m_dLegend);
    text += optionStringWithBool("logStatistics", m_lStatistics);
    text += optionStringWithBool("logTable", m_lTable);
    text += optionStringWithBool("logDiagram", m_lDiagram);
    text += optionStringWithBool("logRolls", m_lRolls);
    text += optionStringWithBool("logLegend", m_lLegend);
    text += optionStringWithString("logSize", std::to_string(m_logSize));
    text += optionStringWithString("statisticPrecision", std::to_string(m_statisticPrecision));
    text += optionStringWithString("valuePrecision", std::to_string(m_valuePrecision));
    text += optionStringWithString("weightPrecision", std::to_string(m_weightPrecision));
    text += optionStringWithString("listsFolderPath", m_listsFolderPath);
    text += optionStringWithBool("welcomed", m_welcomed);
    text += optionStringWithBool("links", m_links);
    return text;
}

bool Preferencer::prefsToDefaults() {
    m_defaults.setString("prefs", preferencesString());
    return true;
}

void Preferencer::prefsFromDefaults() {
    const auto stored = m_defaults.stringForKey("prefs");
    if (!stored || stored->find(kHeader) == std::string::npos) {
        prefsFromPanel();
        return;
    }
    const std::string& text = *stored;
    const auto integer = [&text](std::string_view key) {
        return leadingIntValue(stringForOption(key, text));
    };
    const auto flag = [&text](std::string_view key) { return boolForOption(key, text); };
    m_dividers = stringForOption("dividers", text);
    m_height = integer("height");
    m_diagramHeight = integer("diagramHeight");
    m_maxBar = integer("maxBar");
    m_relativeBars = flag("relativeBars");
    m_averageIntervalWeights = flag("averageIntervalWeights");
    m_sameBar = flag("sameBar");
    m_dLegend = flag("displayLegend");
    m_lStatistics = flag("logStatistics");
    m_lTable = flag("logTable");
    m_lDiagram = flag("logDiagram");
    m_lRolls = flag("logRolls");
    m_lLegend = flag("logLegend");
    m_logSize = integer("logSize");
    m_statisticPrecision = integer("statisticPrecision");
    m_valuePrecision = integer("valuePrecision");
    m_weightPrecision = integer("weightPrecision");
    m_listsFolderPath = stringForOption("listsFolderPath", text);
    m_welcomed = flag("welcomed");
    m_links = flag("links");
}

void Preferencer::prefsToPanel() {
    m_panel.setText(PanelField::dividers, m_dividers);
    m_panel.setText(PanelField::height, std::to_string(m_height));
    m_panel.setText(PanelField::diagramHeight, std::to_string(m_diagramHeight));
    m_panel.setText(PanelField::maxBar, std::to_string(m_maxBar));
    m_panel.selectRow(PanelMatrix::bars, m_relativeBars ? 0 : 1);
    m_panel.selectRow(PanelMatrix::intervalWeights, m_averageIntervalWeights ? 0 : 1);
    m_panel.setChecked(PanelCheckBox::displaySameBar, m_sameBar);
    m_panel.setChecked(PanelCheckBox::displayLegend, m_dLegend);
    m_panel.setChecked(PanelCheckBox::logStatistics, m_lStatistics);
    m_panel.setChecked(PanelCheckBox::logTable, m_lTable);
    m_panel.setChecked(PanelCheckBox::logDiagram, m_lDiagram);
    m_panel.setChecked(PanelCheckBox::logRolls, m_lRolls);
    m_panel.setChecked(PanelCheckBox::logLegend, m_lLegend);
    m_panel.setText(PanelField::logSize, std::to_string(m_logSize));
    m_panel.setText(PanelField::statisticPrecision, std::to_string(m_statisticPrecision));
    m_panel.setText(PanelField::valuePrecision, std::to_string(m_valuePrecision));
    m_panel.setText(PanelField::weightPrecision, std::to_string(m_weightPrecision));
}

void Preferencer::prefsFromPanel() {
    patchPanel();
    m_dividers = m_panel.text(PanelField::dividers);
    m_height = leadingIntValue(m_panel.text(PanelField::height));
    m_diagramHeight = leadingIntValue(m_panel.text(PanelField::diagramHeight));
    m_maxBar = leadingIntValue(m_panel.text(PanelField::maxBar));
    m_relativeBars = m_panel.selectedRow(PanelMatrix::bars) == 0;
    m_averageIntervalWeights = m_panel.selectedRow(PanelMatrix::intervalWeights) == 0;
    m_sameBar = m_panel.isChecked(PanelCheckBox::displaySameBar);
    m_dLegend = m_panel.isChecked(PanelCheckBox::displayLegend);
    m_lStatistics = m_panel.isChecked(PanelCheckBox::logStatistics);
    m_lTable = m_panel.isChecked(PanelCheckBox::logTable);
    m_lDiagram = m_panel.isChecked(PanelCheckBox::logDiagram);
    m_lRolls = m_panel.isChecked(PanelCheckBox::logRolls);
    m_lLegend = m_panel.isChecked(PanelCheckBox::logLegend);
    m_logSize = leadingIntValue(m_panel.text(PanelField::logSize));
    m_statisticPrecision = leadingIntValue(m_panel.text(PanelField::statisticPrecision));
    m_valuePrecision = leadingIntValue(m_panel.text(PanelField::valuePrecision));
    m_weightPrecision = leadingIntValue(m_panel.text(PanelField::weightPrecision));
}

void Preferencer::defaultsToPanel() {
    m_panel.setText(PanelField::dividers, "25,50,75");
    m_panel.setText(PanelField::height, "300");
    m_panel.setText(PanelField::diagramHeight, "20");
    m_panel.setText(PanelField::maxBar, "10");
    m_panel.selectRow(PanelMatrix::bars, 0);
    m_panel.selectRow(PanelMatrix::intervalWeights, 0);
    m_panel.setChecked(PanelCheckBox::displaySameBar, true);
    m_panel.setChecked(PanelCheckBox::displayLegend, true);
    m_panel.setChecked(PanelCheckBox::logStatistics, true);
    m_panel.setChecked(PanelCheckBox::logTable, true);
    m_panel.setChecked(PanelCheckBox::logDiagram, false);
    m_panel.setChecked(PanelCheckBox::logRolls, true);
    m_panel.setChecked(PanelCheckBox::logLegend, true);
    m_panel.setText(PanelField::logSize, "100");
    m_panel.setText(PanelField::statisticPrecision, "2");
    m_panel.setText(PanelField::valuePrecision, "2");
    m_panel.setText(PanelField::weightPrecision, "2");
}

void Preferencer::setDefaultPreferences() {
    m_listsFolderPath.clear();
    m_tableScale = -1;
    m_welcomed = false;
    m_links = true;
    defaultsToPanel();
    prefsFromPanel();
}

void Preferencer::patchPanel() {
    core::Options given;
    for (const auto& [field, key] : kPatchedFields) {
        given[key] = m_panel.text(field);
    }
    const core::Options patched = core::Profile::profile().patchOptions(&given);
    for (const auto& [field, key] : kPatchedFields) {
        m_panel.setText(field, core::optionString(patched, key));
    }
}

core::Options Preferencer::optionsForField(std::string_view field, int height,
                                           bool comparison) const {
    const int h = std::min(height, m_height);
    const std::string hText = std::to_string(h);
    const std::string valuePrecision = std::to_string(m_valuePrecision);
    const std::string weightPrecision = std::to_string(m_weightPrecision);
    const std::string statisticPrecision = std::to_string(m_statisticPrecision);
    const bool scaled = m_tableScale > -0.5;
    core::Options options;

    const auto legendOptions = [&] {
        options["title"] = "yes";
        options["legend"] = "yes";
        options["legend precision"] = valuePrecision;
    };
    const auto diagramLegend = [&](const std::string& diagramHeight) {
        if (comparison && m_dLegend) {
            legendOptions();
            return;
        }
        options["title"] = "yes";
        options["diagram"] = "yes";
        options["dividers"] = m_dividers;
        options["diagram shrink to table height"] = "yes";
        options["diagram height"] = diagramHeight;
        options["diagram max height"] = hText;
        options["table max height"] = hText;
        options["diagram precision"] = valuePrecision;
        options["diagram weight precision"] = weightPrecision;
    };
    const auto diagram = [&](const std::string& diagramHeight) {
        options["title"] = "yes";
        options["diagram"] = "yes";
        options["dividers"] = m_dividers;
        options["diagram height"] = diagramHeight;
        options["diagram max height"] = hText;
        options["diagram precision"] = valuePrecision;
        options["diagram weight precision"] = weightPrecision;
    };
    const auto rolls = [&](bool logged, bool continuation) {
        options["past rolls"] = logged ? yesNo(m_lRolls) : "yes";
        options["past rolls number"] = "1";
        options["past rolls unfinished"] = "yes";
        options["past rolls continuation"] = yesNo(continuation);
        options["past rolls precision"] = valuePrecision;
    };

    if (field == "statistics") {
        options["title"] = "yes";
        options["statistics"] = "yes";
        options["statistics precision"] = statisticPrecision;
        options["mode precision"] = valuePrecision;
    } else if (field == "table") {
        options["title"] = "yes";
        options["table"] = "yes";
        options["table max height"] = hText;
        if (m_sameBar && m_relativeBars && scaled) {
            options["table set max weight"] = "yes";
            options["table max weight"] =
                core::Decimal::decimalNumberWithDouble(m_tableScale).stringValue();
        }
        options["max bar"] = std::to_string(m_maxBar);
        options["relative bar"] = yesNo(m_relativeBars);
        options["average bar"] = yesNo(m_averageIntervalWeights);
        options["table precision"] = valuePrecision;
        options["table weight precision"] = weightPrecision;
    } else if (field == "diagram/legend") {
        diagramLegend(hText);
    } else if (field == "diagram/legendView") {
        diagramLegend(std::to_string(m_diagramHeight));
    } else if (field == "diagram") {
        // Rounded half up: 7.5 gives 8.
        diagram(scaled ? std::to_string(static_cast<long long>(std::floor(m_tableScale + 0.5)))
                       : hText);
    } else if (field == "diagramView") {
        diagram(std::to_string(m_diagramHeight));
    } else if (field == "legend") {
        legendOptions();
    } else if (field == "log") {
        options["time stamp"] = "yes";
        options["title"] = "yes";
        options["statistics"] = yesNo(m_lStatistics);
        options["statistics precision"] = statisticPrecision;
        options["mode precision"] = statisticPrecision;
        options["table"] = yesNo(m_lTable);
        options["table max height"] = hText;
        options["max bar"] = std::to_string(m_maxBar);
        options["relative bar"] = yesNo(m_relativeBars);
        options["average bar"] = yesNo(m_averageIntervalWeights);
        options["table precision"] = valuePrecision;
        options["table weight precision"] = weightPrecision;
        options["diagram"] = yesNo(m_lDiagram);
        options["dividers"] = m_dividers;
        options["diagram height"] = std::to_string(m_diagramHeight);
        options["diagram max height"] = hText;
        options["diagram precision"] = valuePrecision;
        options["diagram weight precision"] = weightPrecision;
        options["legend"] = yesNo(comparison && m_lLegend);
        options["legend precision"] = valuePrecision;
        options["past rolls"] = yesNo(m_lRolls);
        options["past rolls number"] = "0";
        options["past rolls precision"] = valuePrecision;
    } else if (field == "firstRoll") {
        rolls(true, false);
    } else if (field == "rollLog") {
        rolls(true, true);
    } else if (field == "roll") {
        rolls(false, false);
    }
    return options;
}

}  // namespace talvex::app
