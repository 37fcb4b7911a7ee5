#include "app/controller/history.h"

#include <gtest/gtest.h>

#include "controller_fixture.h"

namespace talvex::app {
namespace {

using testing::ControllerTest;

class HistoryTest : public ControllerTest {
  protected:
    [[nodiscard]] const std::vector<HistoryEntry>& entries() {
        return controller->history().entries();
    }
    [[nodiscard]] long index() { return controller->history().historyIndex(); }
};

TEST_F(HistoryTest, StartsEmptyWithIndexMinusOne) {
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(index(), -1);
    controller->stepBack();
    controller->stepForward();
    EXPECT_EQ(index(), -1);
}

TEST_F(HistoryTest, WithOneEntryBothButtonsDoNothing) {
    request("3d6");
    const auto rollWrites = window->fieldWrites(TextField::roll);
    controller->stepBack();
    controller->stepForward();
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_EQ(index(), 0);
    EXPECT_EQ(window->fieldWrites(TextField::roll), rollWrites);
}

TEST_F(HistoryTest, AnEntryHoldsTheTitlesOfBothPopUps) {
    request("3d6");
    ASSERT_EQ(entries().size(), 1U);
    EXPECT_EQ(entries()[0], (HistoryEntry{"3d6 ", kSelectComparison}));
}

TEST_F(HistoryTest, SteppingBackTwiceShowsTheFirstAndANewRequestCutsTheRest) {
    request("1d4");
    request("2d6");
    request("3d8");
    controller->stepBack();
    controller->stepBack();
    EXPECT_EQ(index(), 0);
    EXPECT_EQ(entries().size(), 3U);
    EXPECT_EQ(field(TextField::expression), "1d4");
    EXPECT_EQ(controller->state().expression->rawString(), "1d4");
    EXPECT_NE(field(TextField::statistics).find("1d4"), std::string::npos);
    request("5d10");
    ASSERT_EQ(entries().size(), 2U);
    EXPECT_EQ(entries()[0].expressionTitle, "1d4 ");
    EXPECT_EQ(entries()[1].expressionTitle, "5d10 ");
    EXPECT_EQ(index(), 1);
}

TEST_F(HistoryTest, SteppingForwardShowsTheLaterEntry) {
    request("1d4");
    request("2d6");
    controller->stepBack();
    controller->stepForward();
    EXPECT_EQ(index(), 1);
    EXPECT_EQ(controller->state().expression->rawString(), "2d6");
    controller->stepForward();
    EXPECT_EQ(index(), 1);
}

TEST_F(HistoryTest, SteppingChangesNoEntryCountNorTheLogAndRestoresTheBoxes) {
    window->setChecked(CheckBox::cycle, true);
    window->setChecked(CheckBox::log, true);
    request("1d4");
    request("2d6");
    const std::string before = logText();
    controller->stepBack();
    controller->stepForward();
    controller->stepBack();
    EXPECT_EQ(entries().size(), 2U);
    EXPECT_EQ(logText(), before);
    EXPECT_EQ(logEntries(), 2);
    EXPECT_TRUE(window->isChecked(CheckBox::log));
    EXPECT_TRUE(window->isChecked(CheckBox::cycle));
}

TEST_F(HistoryTest, BoxesThatWereOffStayOff) {
    window->setChecked(CheckBox::log, false);
    request("1d4");
    request("2d6");
    controller->stepBack();
    EXPECT_FALSE(window->isChecked(CheckBox::log));
    EXPECT_FALSE(window->isChecked(CheckBox::cycle));
}

TEST_F(HistoryTest, SteppingRestoresTheComparison) {
    window->setChecked(CheckBox::mirror, true);
    window->setChecked(CheckBox::cycle, true);
    request("1d4");
    request("2d6");
    request("3d8");
    EXPECT_EQ(controller->state().compareExpression->rawString(), "2d6");
    controller->stepBack();
    EXPECT_EQ(controller->state().expression->rawString(), "2d6");
    EXPECT_EQ(controller->state().compareExpression->rawString(), "1d4");
    EXPECT_EQ(selected(PopUp::compare), "1d4 ");
    EXPECT_NE(field(TextField::tableCompare2).find("1d4"), std::string::npos);
}

TEST_F(HistoryTest, ARepeatedRequestAddsNoEntry) {
    request("3d6");
    request("3d6");
    request("3d6 ");
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(HistoryTest, TitlesNoLongerInThePopUpsLeaveTheSelectionsAsTheyWere) {
    request("1d4");
    request("2d6");
    // A list was reloaded: the pop-up now holds other titles.
    window->removeAllPopUpItems(PopUp::expression);
    window->insertPopUpTitle(PopUp::expression, kSelectExpression, 0);
    window->insertPopUpTitle(PopUp::expression, "4d4", 1);
    window->selectPopUpIndex(PopUp::expression, 1);
    controller->stepBack();
    EXPECT_EQ(selected(PopUp::expression), "4d4");
    EXPECT_EQ(controller->state().expression->rawString(), "4d4");
    EXPECT_EQ(index(), 0);
    EXPECT_EQ(entries().size(), 2U);
}

TEST_F(HistoryTest, ClearHistoryEmptiesIt) {
    request("1d4");
    request("2d6");
    controller->history().clearHistory();
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(index(), -1);
}

TEST_F(HistoryTest, FullCleanEmptiesHistoryDisplayAndPopUps) {
    request("1d4");
    controller->fullClean();
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(field(TextField::expression), "Expression");
    EXPECT_EQ(view(TextView::expression), "Expression");
    EXPECT_EQ(field(TextField::statistics), "");
    EXPECT_EQ(titles(PopUp::expression), (std::vector<std::string>{kSelectExpression}));
    EXPECT_EQ(titles(PopUp::compare), (std::vector<std::string>{kSelectComparison}));
    EXPECT_EQ(titles(PopUp::expressionList), (std::vector<std::string>{kSelectExpressionList}));
    EXPECT_EQ(titles(PopUp::compareList), (std::vector<std::string>{kSelectComparisonList}));
    EXPECT_EQ(selected(PopUp::expression), kSelectExpression);
    EXPECT_EQ(controller->state().lastRoll.lastFunctionString, "blank");
    EXPECT_EQ(controller->state().lastExpressionTitle, "");
}

}  // namespace
}  // namespace talvex::app
