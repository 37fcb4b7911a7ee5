#include "app/controller/start_up.h"

#include <gtest/gtest.h>

#include "controller_fixture.h"
#include "core/calculation_limits.h"

namespace talvex::app {
namespace {

using testing::ControllerTest;
using testing::kSupportFolder;

class StartUpTest : public ControllerTest {
  protected:
    // Quits as the menu command does: the front end ends and calls applicationWillTerminate.
    void quit() {
        controller->TalvexQuit();
        controller->applicationWillTerminate();
    }
    [[nodiscard]] bool flag(const std::string& key) { return defaults->boolForKey(key); }
};

TEST_F(StartUpTest, TheFirstStartEverIsAFirstRunAndAFirstRunOfThisVersion) {
    EXPECT_TRUE(flag("firstRun"));
    EXPECT_TRUE(flag("firstVersionRun"));
    EXPECT_EQ(defaults->stringForKey("version"), "1.0");
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(StartUpTest, AFirstRunCalculatesTheFirstExpressionOfThePopUp) {
    domain.values.clear();
    window = std::make_unique<fakes::FakeWindow>();
    window->insertPopUpTitle(PopUp::expression, kSelectExpression, 0);
    window->insertPopUpTitle(PopUp::expression, "3d6", 1);
    panel = std::make_unique<fakes::FakeSettingsPanel>();
    controller = std::make_unique<TalvexContoller>(ports(), LaunchSettings{kSupportFolder, "1.0"});
    controller->applicationWillFinishLaunching();
    EXPECT_EQ(selected(PopUp::expression), "3d6");
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
    EXPECT_NE(field(TextField::statistics).find("3d6"), std::string::npos);
}

TEST_F(StartUpTest, ALaterStartIsNoFirstRun) {
    quit();
    relaunch();
    EXPECT_FALSE(flag("firstRun"));
    EXPECT_FALSE(flag("firstVersionRun"));
}

TEST_F(StartUpTest, AStartAfterAnUpdateIsAFirstRunOfTheNewVersionOnly) {
    quit();
    relaunch("2.0");
    EXPECT_FALSE(flag("firstRun"));
    EXPECT_TRUE(flag("firstVersionRun"));
    EXPECT_EQ(defaults->stringForKey("version"), "2.0");
}

TEST_F(StartUpTest, AnEmptyStoredVersionIsAFirstRun) {
    quit();
    defaults->setString("version", "");
    relaunch();
    EXPECT_TRUE(flag("firstRun"));
}

TEST_F(StartUpTest, DidCrashIsWrittenToDiskAtOnceDuringStartUp) {
    EXPECT_EQ(domain.flushed.at("didCrash"), DefaultValue(true));
}

TEST_F(StartUpTest, ANormalQuitWritesTheStateBack) {
    panel->setText(PanelField::height, "42");
    controller->settingsSave();
    request("3d6");
    quit();
    EXPECT_EQ(shell.terminations, 1);
    EXPECT_EQ(domain.flushed.at("didCrash"), DefaultValue(false));
    EXPECT_EQ(defaults->integerForKey("logLength"), 1);
    EXPECT_NE(defaults->stringForKey("prefs")->find("height=42\n"), std::string::npos);
    EXPECT_NE(defaults->stringForKey("prefs")->find(
                  "listsFolderPath=" + std::string(kSupportFolder) + "/Expression Lists\n"),
              std::string::npos);
}

TEST_F(StartUpTest, SettingsSurviveARestart) {
    panel->setText(PanelField::valuePrecision, "4");
    panel->setChecked(PanelCheckBox::logDiagram, true);
    controller->settingsSave();
    quit();
    relaunch();
    EXPECT_EQ(controller->prefer().valuePrecision(), 4);
    EXPECT_TRUE(controller->prefer().logDiagram());
    EXPECT_EQ(panel->text(PanelField::valuePrecision), "4");
    EXPECT_TRUE(panel->isChecked(PanelCheckBox::logDiagram));
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(StartUpTest, ARunThatDidNotEndNormallyIsNoticedAndKeepMySettingsContinues) {
    panel->setText(PanelField::valuePrecision, "4");
    controller->settingsSave();
    controller->applicationWillTerminate();
    domain.values = domain.flushed;
    // The next run is killed: what reached the disk is all that is left.
    relaunch();
    domain.values = domain.flushed;
    alerts.answers.push_back({AlertButton::defaultButton, false});
    relaunch();
    ASSERT_EQ(alerts.asked.size(), 1U);
    const AlertRequest& alert = alerts.asked[0];
    EXPECT_EQ(alert.message,
              "Talvex did not exit normally the last time it was launched. If Talvex is "
              "crashing constantly, you may wish to restore the factory settings.");
    EXPECT_EQ(alert.informativeText,
              "If you restore the factory settings, any customization you have performed will "
              "be lost. Talvex will launch next time as if it were newly installed.");
    EXPECT_EQ(alert.defaultButton, "Keep my Settings");
    EXPECT_EQ(alert.alternateButton, "Restore Factory Settings");
    EXPECT_TRUE(alert.offersPreserveListsAndLog);
    EXPECT_EQ(shell.terminations, 0);
    EXPECT_EQ(controller->prefer().valuePrecision(), 4);
    EXPECT_TRUE(flag("didCrash"));
    request("3d6");
    EXPECT_NE(field(TextField::statistics).find("3d6"), std::string::npos);
}

TEST_F(StartUpTest, RestoringAfterACrashRemovesTheSettingsAndTheSupportFolderAndQuits) {
    panel->setText(PanelField::valuePrecision, "4");
    controller->settingsSave();
    files.writeTextAtomically(std::string(kSupportFolder) + "/log.rtfd", "log");
    relaunch();  // the previous run never terminated: "Keep my Settings"
    alerts.answers.push_back({AlertButton::alternateButton, false});
    relaunch();  // nor did this one: restore
    EXPECT_EQ(shell.terminations, 1);
    EXPECT_FALSE(files.exists(kSupportFolder));
    EXPECT_FALSE(controller->startUp().writeDefaultsOnTerminate());
    controller->applicationWillTerminate();
    EXPECT_FALSE(domain.values.contains("prefs"));
    EXPECT_FALSE(domain.values.contains("didCrash"));
    // The next start is a first run with the default settings.
    relaunch();
    EXPECT_TRUE(flag("firstRun"));
    EXPECT_EQ(controller->prefer().valuePrecision(), 2);
    EXPECT_EQ(alerts.asked.size(), 2U);
}

TEST_F(StartUpTest, AResetWithThePreserveBoxKeepsListsAndLogButDropsEverySetting) {
    panel->setText(PanelField::valuePrecision, "4");
    controller->settingsSave();
    quit();
    relaunch();
    const std::string list = std::string(kSupportFolder) + "/Expression Lists/Mine.txt";
    const std::string logFile = std::string(kSupportFolder) + "/log.rtfd";
    files.writeTextAtomically(list, "3d6\\2d10");
    files.writeTextAtomically(logFile, "log");
    alerts.answers.push_back({AlertButton::alternateButton, true});
    controller->resetAllSettingsAndQuit();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message,
              "Are you sure you wish to reset Talvex to its factory settings and quit?");
    EXPECT_EQ(alerts.asked[0].defaultButton, "Cancel");
    EXPECT_EQ(alerts.asked[0].alternateButton, "Restore Factory Settings and Quit");
    EXPECT_EQ(shell.terminations, 2);
    controller->applicationWillTerminate();
    EXPECT_TRUE(files.exists(list));
    EXPECT_TRUE(files.exists(logFile));
    EXPECT_TRUE(domain.flushed.empty());
    relaunch();
    EXPECT_TRUE(flag("firstRun"));
    EXPECT_EQ(controller->prefer().valuePrecision(), 2);
}

TEST_F(StartUpTest, AResetWithoutThePreserveBoxDeletesTheSupportFolder) {
    files.writeTextAtomically(std::string(kSupportFolder) + "/log.rtfd", "log");
    alerts.answers.push_back({AlertButton::alternateButton, false});
    controller->resetAllSettingsAndQuit();
    EXPECT_FALSE(files.exists(kSupportFolder));
    EXPECT_EQ(shell.terminations, 1);
}

TEST_F(StartUpTest, CancellingTheResetChangesNothing) {
    alerts.answers.push_back({AlertButton::defaultButton, false});
    controller->resetAllSettingsAndQuit();
    EXPECT_EQ(shell.terminations, 0);
    EXPECT_TRUE(files.exists(kSupportFolder));
    EXPECT_TRUE(controller->startUp().writeDefaultsOnTerminate());
}

TEST_F(StartUpTest, StartUpCreatesTheSupportAndListsFolders) {
    EXPECT_TRUE(files.isDirectory(kSupportFolder));
    EXPECT_TRUE(files.isDirectory(std::string(kSupportFolder) + "/Expression Lists"));
    EXPECT_EQ(controller->state().listsFolderPath,
              std::string(kSupportFolder) + "/Expression Lists");
}

TEST_F(StartUpTest, TheStoredListsFolderIsUsedWhenThereIsOne) {
    defaults->setString("prefs", "Talvex Preferences\n\nlistsFolderPath=/elsewhere/lists\n");
    relaunch();
    EXPECT_EQ(controller->state().listsFolderPath, "/elsewhere/lists");
    EXPECT_TRUE(files.isDirectory("/elsewhere/lists"));
}

TEST_F(StartUpTest, ThePlaceholdersNameTheEmptyExpression) {
    const auto& expressions = controller->state().session.expressions();
    const auto empty = expressions.at("");
    EXPECT_EQ(expressions.at(language::Expression::cleanString(kSelectExpression)), empty);
    EXPECT_EQ(expressions.at(language::Expression::cleanString(kSelectComparison)), empty);
    EXPECT_EQ(controller->state().expression, empty);
    EXPECT_EQ(controller->state().compareExpression, empty);
    EXPECT_EQ(selected(PopUp::expression), kSelectExpression);
    EXPECT_EQ(selected(PopUp::compare), kSelectComparison);
    EXPECT_EQ(selected(PopUp::expressionList), kSelectExpressionList);
    EXPECT_EQ(selected(PopUp::compareList), kSelectComparisonList);
    EXPECT_EQ(controller->state().lastRoll.lastFunctionString, "blank");
    EXPECT_TRUE(controller->state().displaying);
    EXPECT_FALSE(controller->state().newRoll);
}

TEST_F(StartUpTest, TheDictionaryIsEmptiedWhenHalfFullAndKeepsThePlaceholders) {
    auto& expressions = controller->state().session.expressions();
    const auto empty = expressions.at("");
    for (std::size_t i = 0; expressions.size() <= core::kMaxExpressions / 2; ++i) {
        expressions.emplace("filler" + std::to_string(i), empty);
    }
    request("3d6");
    EXPECT_LT(expressions.size(), 100U);
    EXPECT_EQ(expressions.at(language::Expression::cleanString(kSelectExpression)), empty);
    EXPECT_EQ(expressions.at(language::Expression::cleanString(kSelectComparison)), empty);
    EXPECT_NE(field(TextField::statistics).find("3d6"), std::string::npos);
}

TEST_F(StartUpTest, TheAboutWindowShowsTheVersionAndHelpOpensOnTheOverview) {
    EXPECT_EQ(shell.aboutVersion, "v 1.0");
    EXPECT_EQ(shell.helpTab, "Overview");
}

TEST_F(StartUpTest, TheLinksAreaFollowsItsSettingAndItsMenuItemToggles) {
    EXPECT_TRUE(shell.linksShown);
    EXPECT_EQ(shell.linksMenuTitle, "Hide Report/Donate Links");
    controller->toggleLinks();
    EXPECT_FALSE(shell.linksShown);
    EXPECT_EQ(shell.linksMenuTitle, "Show Report/Donate Links");
    quit();
    relaunch();
    EXPECT_FALSE(shell.linksShown);
    EXPECT_EQ(shell.linksMenuTitle, "Show Report/Donate Links");
}

TEST_F(StartUpTest, ClosingTheMainWindowIsAQuitAndIsRefused) {
    EXPECT_FALSE(controller->windowShouldClose(true));
    EXPECT_EQ(shell.terminations, 1);
    EXPECT_TRUE(controller->windowShouldClose(false));
    EXPECT_EQ(shell.terminations, 1);
}

TEST_F(StartUpTest, RegistrationDefaultsGiveTheInitialValues) {
    EXPECT_FALSE(controller->runningCalculation());
    controller->setRunningCalculation(true);
    EXPECT_TRUE(controller->runningCalculation());
    EXPECT_EQ(domain.values.at("runningCalculation"), DefaultValue(true));
}

// --- the settings panel ------------------------------------------------------------------

TEST_F(StartUpTest, SettingsShowThePanelWithTheSettingsInForce) {
    panel->setText(PanelField::height, "77");
    controller->settings();
    EXPECT_TRUE(panel->shown());
    EXPECT_EQ(panel->text(PanelField::height), "300");
}

TEST_F(StartUpTest, SaveTakesThePanelAndTheNextRequestIsRedisplayed) {
    request("3d6");
    const std::string statistics = field(TextField::statistics);
    controller->settings();
    panel->setText(PanelField::statisticPrecision, "5");
    controller->settingsSave();
    EXPECT_FALSE(panel->shown());
    EXPECT_TRUE(controller->state().newRoll);
    request("3d6");
    EXPECT_NE(field(TextField::statistics), statistics);
    EXPECT_NE(field(TextField::statistics).find("2.95804"), std::string::npos);
}

TEST_F(StartUpTest, CancelTakesNothing) {
    controller->settings();
    panel->setText(PanelField::statisticPrecision, "5");
    controller->settingsCancel();
    EXPECT_FALSE(panel->shown());
    EXPECT_EQ(controller->prefer().statisticPrecision(), 2);
    controller->settings();
    EXPECT_EQ(panel->text(PanelField::statisticPrecision), "2");
}

TEST_F(StartUpTest, DefaultsFillThePanelWithoutTakingThem) {
    panel->setText(PanelField::statisticPrecision, "5");
    controller->settingsSave();
    controller->settings();
    controller->settingsDefaults();
    EXPECT_EQ(panel->text(PanelField::statisticPrecision), "2");
    EXPECT_EQ(controller->prefer().statisticPrecision(), 5);
}

TEST_F(StartUpTest, ADividerListThatCannotBeRepairedKeepsThePanelOpenAndSaysWhy) {
    controller->settings();
    panel->setText(PanelField::dividers, "50,50");
    controller->settingsSave();
    EXPECT_TRUE(panel->shown());
    EXPECT_NE(panel->problem().find("same value twice"), std::string::npos);
    EXPECT_EQ(controller->prefer().dividers(), "25,50,75");
    EXPECT_FALSE(controller->state().newRoll);
}

}  // namespace
}  // namespace talvex::app
