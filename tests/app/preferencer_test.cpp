#include "app/controller/preferencer.h"

#include <gtest/gtest.h>

#include "app/fakes/fakes.h"

namespace talvex::app {
namespace {

constexpr const char* kDefaultString =
    "Talvex Preferences\n\n"
    "dividers=25,50,75\n"
    "height=300\n"
    "diagramHeight=20\n"
    "maxBar=10\n"
    "relativeBars=yes\n"
    "averageIntervalWeights=yes\n"
    "sameBar=yes\n"
    "displayLegend=yes\n"
    "logStatistics=yes\n"
    "logTable=yes\n"
    "logDiagram=no\n"
    "logRolls=yes\n"
    "logLegend=yes\n"
    "logSize=100\n"
    "statisticPrecision=2\n"
    "valuePrecision=2\n"
    "weightPrecision=2\n"
    "listsFolderPath=\n"
    "welcomed=no\n"
    "links=yes\n";

class PreferencerTest : public ::testing::Test {
  protected:
    PreferencerTest() {
        prefer.defaultsToPanel();
        prefer.prefsFromPanel();
    }

    void store(const std::string& text) { defaults.setString("prefs", text); }

    fakes::MemoryDomain domain;
    DefaultsStore defaults{domain};
    fakes::FakeSettingsPanel panel;
    Preferencer prefer{defaults, panel};
};

TEST_F(PreferencerTest, OptionLinesAreKeyEqualsValueAndALineFeed) {
    EXPECT_EQ(Preferencer::optionStringWithString("dividers", "10,90"), "dividers=10,90\n");
    EXPECT_EQ(Preferencer::optionStringWithBool("sameBar", true), "sameBar=yes\n");
    EXPECT_EQ(Preferencer::optionStringWithBool("sameBar", false), "sameBar=no\n");
    EXPECT_EQ(Preferencer::stringForBool(true), "yes");
}

TEST_F(PreferencerTest, AValueRunsFromBehindTheKeyToTheNextLineFeed) {
    EXPECT_EQ(Preferencer::stringForOption("height", "a=1\nheight=12\nb=2"), "12");
    EXPECT_EQ(Preferencer::stringForOption("height", "height=12"), "12");
    EXPECT_EQ(Preferencer::stringForOption("height", "width=12\n"), "");
    EXPECT_EQ(Preferencer::stringForOption("height", ""), "");
    // The search is by plain substring.
    EXPECT_EQ(Preferencer::stringForOption("Height", "diagramHeight=20\n"), "20");
    EXPECT_TRUE(Preferencer::boolForOption("links", "links=YES\n"));
    EXPECT_FALSE(Preferencer::boolForOption("links", "links=1\n"));
}

TEST_F(PreferencerTest, TheStoredFormOfTheDefaults) {
    EXPECT_TRUE(prefer.prefsToDefaults());
    EXPECT_EQ(defaults.stringForKey("prefs"), kDefaultString);
}

TEST_F(PreferencerTest, AStoredStringIsReadBack) {
    store(
        "Talvex Preferences\n\ndividers=10,90\nheight=40\ndiagramHeight=12\nmaxBar=30\n"
        "relativeBars=no\naverageIntervalWeights=no\nsameBar=no\ndisplayLegend=no\n"
        "logStatistics=no\nlogTable=no\nlogDiagram=yes\nlogRolls=no\nlogLegend=no\n"
        "logSize=7\nstatisticPrecision=4\nvaluePrecision=3\nweightPrecision=1\n"
        "listsFolderPath=/lists\nwelcomed=yes\nlinks=no\n");
    prefer.prefsFromDefaults();
    EXPECT_EQ(prefer.dividers(), "10,90");
    EXPECT_EQ(prefer.height(), 40);
    EXPECT_EQ(prefer.diagramHeight(), 12);
    EXPECT_EQ(prefer.maxBar(), 30);
    EXPECT_FALSE(prefer.relativeBars());
    EXPECT_FALSE(prefer.averageIntervalWeights());
    EXPECT_FALSE(prefer.sameBar());
    EXPECT_FALSE(prefer.displayLegend());
    EXPECT_FALSE(prefer.logStatistics());
    EXPECT_FALSE(prefer.logTable());
    EXPECT_TRUE(prefer.logDiagram());
    EXPECT_FALSE(prefer.logRolls());
    EXPECT_FALSE(prefer.logLegend());
    EXPECT_EQ(prefer.logSize(), 7);
    EXPECT_EQ(prefer.statisticPrecision(), 4);
    EXPECT_EQ(prefer.valuePrecision(), 3);
    EXPECT_EQ(prefer.weightPrecision(), 1);
    EXPECT_EQ(prefer.listsFolderPath(), "/lists");
    EXPECT_TRUE(prefer.welcomed());
    EXPECT_FALSE(prefer.links());
    // And written back the same way.
    prefer.prefsToDefaults();
    prefer.prefsFromDefaults();
    EXPECT_EQ(prefer.preferencesString(), *defaults.stringForKey("prefs"));
}

TEST_F(PreferencerTest, AStringOfTheHeaderAndHeightAbcGivesHeightZeroAndEveryBooleanFalse) {
    store("Talvex Preferences\n\nheight=abc\n");
    prefer.prefsFromDefaults();
    EXPECT_EQ(prefer.height(), 0);
    EXPECT_FALSE(prefer.relativeBars());
    EXPECT_FALSE(prefer.averageIntervalWeights());
    EXPECT_FALSE(prefer.sameBar());
    EXPECT_FALSE(prefer.displayLegend());
    EXPECT_FALSE(prefer.logStatistics());
    EXPECT_FALSE(prefer.logTable());
    EXPECT_FALSE(prefer.logDiagram());
    EXPECT_FALSE(prefer.logRolls());
    EXPECT_FALSE(prefer.logLegend());
    EXPECT_FALSE(prefer.welcomed());
    EXPECT_FALSE(prefer.links());
    EXPECT_EQ(prefer.dividers(), "");
    EXPECT_EQ(prefer.logSize(), 0);
}

TEST_F(PreferencerTest, AStringWithoutTheHeaderIsIgnoredAndThePanelIsTaken) {
    store("height=12\n");
    panel.setText(PanelField::height, "44");
    prefer.prefsFromDefaults();
    EXPECT_EQ(prefer.height(), 44);
}

TEST_F(PreferencerTest, IntegersAreReadByTheirLeadingDigits) {
    store("Talvex Preferences\n\nheight=12abc\nmaxBar= 7\nlogSize=-3\n");
    prefer.prefsFromDefaults();
    EXPECT_EQ(prefer.height(), 12);
    EXPECT_EQ(prefer.maxBar(), 7);
    EXPECT_EQ(prefer.logSize(), -3);
}

TEST_F(PreferencerTest, ThePanelRoundTripsEverySetting) {
    store(
        "Talvex Preferences\n\ndividers=10,90\nheight=40\ndiagramHeight=12\nmaxBar=30\n"
        "relativeBars=no\naverageIntervalWeights=yes\nsameBar=no\ndisplayLegend=yes\n"
        "logStatistics=no\nlogTable=yes\nlogDiagram=yes\nlogRolls=no\nlogLegend=yes\n"
        "logSize=7\nstatisticPrecision=4\nvaluePrecision=3\nweightPrecision=1\n");
    prefer.prefsFromDefaults();
    prefer.prefsToPanel();
    EXPECT_EQ(panel.text(PanelField::dividers), "10,90");
    EXPECT_EQ(panel.selectedRow(PanelMatrix::bars), 1);
    EXPECT_EQ(panel.selectedRow(PanelMatrix::intervalWeights), 0);
    EXPECT_FALSE(panel.isChecked(PanelCheckBox::displaySameBar));
    const std::string before = prefer.preferencesString();
    prefer.prefsFromPanel();
    EXPECT_EQ(prefer.preferencesString(), before);
}

TEST_F(PreferencerTest, ThePanelsEntriesAreRepairedBeforeTheyAreTaken) {
    panel.setText(PanelField::height, "abc");
    panel.setText(PanelField::maxBar, "5000");
    panel.setText(PanelField::valuePrecision, "3");
    panel.setText(PanelField::logSize, "-4");
    prefer.prefsFromPanel();
    EXPECT_EQ(panel.text(PanelField::height), "30");
    EXPECT_EQ(prefer.height(), 30);
    // Out of range is clamped to the nearer bound.
    EXPECT_EQ(panel.text(PanelField::maxBar), "100");
    EXPECT_EQ(prefer.maxBar(), 100);
    EXPECT_EQ(prefer.valuePrecision(), 3);
    EXPECT_EQ(panel.text(PanelField::logSize), "0");
}

TEST_F(PreferencerTest, ADividerListRepeatingAValueCannotBeTaken) {
    panel.setText(PanelField::dividers, "50,50");
    EXPECT_THROW(prefer.prefsFromPanel(), core::DividerListError);
    EXPECT_EQ(prefer.dividers(), "25,50,75");
}

TEST_F(PreferencerTest, DefaultsFillThePanelWithoutTakingThem) {
    panel.setText(PanelField::height, "12");
    prefer.prefsFromPanel();
    prefer.defaultsToPanel();
    EXPECT_EQ(panel.text(PanelField::height), "300");
    EXPECT_EQ(prefer.height(), 12);
}

TEST_F(PreferencerTest, SetDefaultPreferencesResetsTheTransientAndStoredOnlySettings) {
    prefer.setListsFolderPath("/x");
    prefer.setTableScale(4);
    prefer.setWelcomed(true);
    prefer.setLinks(false);
    panel.setText(PanelField::height, "12");
    prefer.setDefaultPreferences();
    EXPECT_EQ(prefer.listsFolderPath(), "");
    EXPECT_EQ(prefer.tableScale(), -1);
    EXPECT_FALSE(prefer.welcomed());
    EXPECT_TRUE(prefer.links());
    EXPECT_EQ(prefer.height(), 300);
}

// --- options for each field ------------------------------------------------------------

TEST_F(PreferencerTest, TableHeightIsTheSmallerOfTheAskedHeightAndTheSetting) {
    EXPECT_EQ(prefer.optionsForField("table", 1000, false).at("table max height"), "300");
    EXPECT_EQ(prefer.optionsForField("table", 12, false).at("table max height"), "12");
}

TEST_F(PreferencerTest, DiagramHeightFollowsTheTableScaleRoundedHalfUp) {
    prefer.setTableScale(7.5);
    EXPECT_EQ(prefer.optionsForField("diagram", 12, false).at("diagram height"), "8");
    prefer.setTableScale(-1);
    EXPECT_EQ(prefer.optionsForField("diagram", 12, false).at("diagram height"), "12");
    EXPECT_EQ(prefer.optionsForField("diagram", 12, false).at("diagram max height"), "12");
}

TEST_F(PreferencerTest, DiagramLegendForAComparisonWithTheLegendOnIsOnlyTheLegend) {
    const core::Options expected{{"title", "yes"}, {"legend", "yes"}, {"legend precision", "2"}};
    EXPECT_EQ(prefer.optionsForField("diagram/legend", 12, true), expected);
    EXPECT_EQ(prefer.optionsForField("diagram/legendView", 12, true), expected);
}

TEST_F(PreferencerTest, DiagramLegendOtherwiseIsTheDiagramShrunkToTheTable) {
    const core::Options options = prefer.optionsForField("diagram/legend", 12, false);
    const core::Options expected{{"title", "yes"},
                                 {"diagram", "yes"},
                                 {"dividers", "25,50,75"},
                                 {"diagram shrink to table height", "yes"},
                                 {"diagram height", "12"},
                                 {"diagram max height", "12"},
                                 {"table max height", "12"},
                                 {"diagram precision", "2"},
                                 {"diagram weight precision", "2"}};
    EXPECT_EQ(options, expected);
    EXPECT_EQ(prefer.optionsForField("diagram/legendView", 1000, false).at("diagram height"), "20");
}

TEST_F(PreferencerTest, TheMaxWeightIsSentOnlyWhenBarsAreRelativeAndOnTheSameScale) {
    prefer.setTableScale(12.5);
    auto options = prefer.optionsForField("table", 10, false);
    EXPECT_EQ(options.at("table set max weight"), "yes");
    EXPECT_EQ(options.at("table max weight"), "12.5");
    panel.selectRow(PanelMatrix::bars, 1);
    prefer.prefsFromPanel();
    prefer.setTableScale(12.5);
    options = prefer.optionsForField("table", 10, false);
    EXPECT_FALSE(options.contains("table set max weight"));
    EXPECT_FALSE(options.contains("table max weight"));
    EXPECT_EQ(options.at("relative bar"), "no");
    prefer.setTableScale(-1);
    panel.selectRow(PanelMatrix::bars, 0);
    prefer.prefsFromPanel();
    EXPECT_FALSE(prefer.optionsForField("table", 10, false).contains("table max weight"));
}

TEST_F(PreferencerTest, StatisticsTakeModePrecisionFromValuePrecisionAndTheLogFromStatistics) {
    panel.setText(PanelField::statisticPrecision, "4");
    panel.setText(PanelField::valuePrecision, "1");
    prefer.prefsFromPanel();
    const auto statistics = prefer.optionsForField("statistics", 1000, false);
    EXPECT_EQ(statistics.at("statistics precision"), "4");
    EXPECT_EQ(statistics.at("mode precision"), "1");
    const auto log = prefer.optionsForField("log", 1000, false);
    EXPECT_EQ(log.at("statistics precision"), "4");
    EXPECT_EQ(log.at("mode precision"), "4");
}

TEST_F(PreferencerTest, TheLogShowsTheLegendOnlyForComparisons) {
    EXPECT_EQ(prefer.optionsForField("log", 1000, true).at("legend"), "yes");
    EXPECT_EQ(prefer.optionsForField("log", 1000, false).at("legend"), "no");
    const auto log = prefer.optionsForField("log", 1000, false);
    EXPECT_EQ(log.at("time stamp"), "yes");
    EXPECT_EQ(log.at("diagram"), "no");
    EXPECT_EQ(log.at("diagram height"), "20");
    EXPECT_EQ(log.at("table max height"), "300");
    EXPECT_EQ(log.at("past rolls"), "yes");
    EXPECT_EQ(log.at("past rolls number"), "0");
}

TEST_F(PreferencerTest, RollFieldsDifferInContinuationAndInFollowingTheLogRollsSetting) {
    panel.setChecked(PanelCheckBox::logRolls, false);
    prefer.prefsFromPanel();
    const auto first = prefer.optionsForField("firstRoll", 1000, false);
    const auto further = prefer.optionsForField("rollLog", 1000, false);
    const auto shown = prefer.optionsForField("roll", 1000, false);
    EXPECT_EQ(first.at("past rolls"), "no");
    EXPECT_EQ(first.at("past rolls continuation"), "no");
    EXPECT_EQ(further.at("past rolls continuation"), "yes");
    EXPECT_EQ(shown.at("past rolls"), "yes");
    for (const auto* options : {&first, &further, &shown}) {
        EXPECT_EQ(options->at("past rolls number"), "1");
        EXPECT_EQ(options->at("past rolls unfinished"), "yes");
        EXPECT_EQ(options->at("past rolls precision"), "2");
    }
}

TEST_F(PreferencerTest, AnUnknownFieldGetsNoOptions) {
    EXPECT_TRUE(prefer.optionsForField("nothing", 10, false).empty());
}

TEST_F(PreferencerTest, LegendOptions) {
    const core::Options expected{{"title", "yes"}, {"legend", "yes"}, {"legend precision", "2"}};
    EXPECT_EQ(prefer.optionsForField("legend", 5, true), expected);
}

TEST_F(PreferencerTest, DiagramViewTakesTheDiagramHeightSetting) {
    const auto options = prefer.optionsForField("diagramView", 1000, false);
    EXPECT_EQ(options.at("diagram height"), "20");
    EXPECT_EQ(options.at("diagram max height"), "300");
}

}  // namespace
}  // namespace talvex::app
