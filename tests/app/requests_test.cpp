#include "app/controller/requests.h"

#include <gtest/gtest.h>

#include "controller_fixture.h"

namespace talvex::app {
namespace {

using testing::ControllerTest;

// --- trim --------------------------------------------------------------------------------

struct TrimCase {
    const char* text;
    const char* trimmed;
};

class TrimTest : public ::testing::TestWithParam<TrimCase> {};

TEST_P(TrimTest, DropsLineBreaksAtEitherEndAndKeepsBlanksAndTabs) {
    EXPECT_EQ(Requests::trim(GetParam().text), GetParam().trimmed);
}

INSTANTIATE_TEST_SUITE_P(Texts, TrimTest,
                         ::testing::Values(TrimCase{"3d6", "3d6"}, TrimCase{"\n3d6\n", "3d6"},
                                           TrimCase{"\r\n3d6\r\n", "3d6"},
                                           TrimCase{" 3d6\t", " 3d6\t"}, TrimCase{"\n", ""},
                                           TrimCase{"\r", ""}, TrimCase{"\n\r", ""},
                                           TrimCase{"\n\n\n", ""}, TrimCase{"\r\n", ""},
                                           TrimCase{"", ""}, TrimCase{"a", "a"},
                                           TrimCase{"\na", "a"}, TrimCase{"a\n", "a"},
                                           TrimCase{"3d6\n\n", "3d6"}, TrimCase{"1\n2", "1\n2"}));

TEST(PrepareUserExpressionString, ReturnsTheTextUnchanged) {
    EXPECT_EQ(Requests::prepareUserExpressionString(" 3d6 + 2 "), " 3d6 + 2 ");
}

// --- roll --------------------------------------------------------------------------------

class RollTest : public ControllerTest {};

TEST_F(RollTest, AFieldOfOnlyLineBreaksIsTreatedAsEmpty) {
    request("3d6");
    request("\n\r\n");
    EXPECT_EQ(field(TextField::expression), "");
    EXPECT_EQ(field(TextField::statistics), "");
    EXPECT_EQ(field(TextField::table), "");
    EXPECT_EQ(field(TextField::roll), "");
    EXPECT_EQ(selected(PopUp::expression), kSelectExpression);
    EXPECT_EQ(controller->state().lastRoll.lastFunctionString, "blank");
    EXPECT_EQ(controller->history().entries().size(), 1U);
}

TEST_F(RollTest, AFieldOfOnlyBlanksBecomesEmptyAndIsTreatedAsEmpty) {
    request("3d6");
    const std::string comparisonTables = field(TextField::tableCompare1);
    request("    ");
    EXPECT_EQ(field(TextField::expression), "");
    EXPECT_EQ(field(TextField::statistics), "");
    EXPECT_EQ(view(TextView::profileA), "");
    EXPECT_EQ(controller->state().lastRoll.lastFunctionString, "blank");
    // The comparison fields are left as they are.
    EXPECT_EQ(field(TextField::tableCompare1), comparisonTables);
    EXPECT_EQ(controller->history().entries().size(), 1U);
}

TEST_F(RollTest, TypingAnExpressionAddsItsTitleWithOneTrailingBlankAtIndexOne) {
    request("3d6");
    ASSERT_EQ(titles(PopUp::expression).size(), 2U);
    EXPECT_EQ(titles(PopUp::expression)[1], "3d6 ");
    EXPECT_EQ(selected(PopUp::expression), "3d6 ");
    EXPECT_EQ(field(TextField::expression), "3d6");
}

TEST_F(RollTest, ChoosingTheTitleStripsTheBlankFindsTheTitleAndAddsNothing) {
    request("3d6");
    request("2d10");
    window->selectPopUpTitle(PopUp::expression, "3d6 ");
    controller->expressionSelect();
    EXPECT_EQ(field(TextField::expression), "3d6");
    EXPECT_EQ(titles(PopUp::expression),
              (std::vector<std::string>{kSelectExpression, "2d10 ", "3d6 "}));
    EXPECT_EQ(selected(PopUp::expression), "3d6 ");
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
}

TEST_F(RollTest, ATitleTakenFurtherDownGetsAnotherBlank) {
    window->insertPopUpTitle(PopUp::expression, "x", 1);
    window->insertPopUpTitle(PopUp::expression, "3d6 ", 2);
    request("3d6");
    EXPECT_EQ(titles(PopUp::expression),
              (std::vector<std::string>{kSelectExpression, "3d6  ", "x", "3d6 "}));
    EXPECT_EQ(selected(PopUp::expression), "3d6  ");
}

TEST_F(RollTest, WithMirrorOnTheTitleGoesIntoTheComparisonPopUpToo) {
    window->setChecked(CheckBox::mirror, true);
    request("3d6");
    EXPECT_EQ(titles(PopUp::compare), (std::vector<std::string>{kSelectComparison, "3d6 "}));
    EXPECT_EQ(selected(PopUp::compare), kSelectComparison);
}

TEST_F(RollTest, ARequestFillsStatisticsTablesDiagramsAndTheRoll) {
    request("3d6");
    EXPECT_NE(field(TextField::statistics).find("3d6"), std::string::npos);
    EXPECT_NE(field(TextField::table), "");
    EXPECT_NE(field(TextField::diagram), "");
    EXPECT_NE(field(TextField::roll), "");
    EXPECT_EQ(view(TextView::statistics), field(TextField::statistics));
    EXPECT_EQ(view(TextView::roll), field(TextField::roll));
    EXPECT_NE(view(TextView::profileA), "");
    EXPECT_NE(view(TextView::profileB), "");
    EXPECT_NE(field(TextField::tableCompare1), "");
    EXPECT_NE(field(TextField::versus), "");
    EXPECT_NE(field(TextField::versusWithTieLegend), "");
    EXPECT_EQ(controller->state().lastRoll.lastFunctionString, "display");
    EXPECT_EQ(controller->state().lastRoll.lastExpressionString, "3d6");
    EXPECT_EQ(window->message(), "");
}

TEST_F(RollTest, TheRollIsAnOutcomeOfTheExpression) {
    for (int i = 0; i < 20; ++i) {
        request("1d6");
        const std::string roll = field(TextField::roll);
        const bool isFace = roll.find_first_of("123456") != std::string::npos;
        EXPECT_TRUE(isFace) << roll;
        EXPECT_EQ(roll.find_first_of("7890"), std::string::npos) << roll;
    }
}

TEST_F(RollTest, RollingTheSameExpressionTwiceOnlyRollsAgain) {
    request("3d6");
    const auto statisticsWrites = window->fieldWrites(TextField::statistics);
    const auto rollWrites = window->fieldWrites(TextField::roll);
    const std::string table = field(TextField::table);
    request("3d6");
    EXPECT_EQ(window->fieldWrites(TextField::statistics), statisticsWrites);
    EXPECT_EQ(window->fieldWrites(TextField::roll), rollWrites + 1);
    EXPECT_EQ(field(TextField::table), table);
    EXPECT_EQ(controller->history().entries().size(), 1U);
    EXPECT_EQ(logEntries(), 1);
    EXPECT_EQ(controller->state().expression->profile().evaluationHistory().size(), 2U);
}

TEST_F(RollTest, WithLoggingOnTheSecondRollIsAppendedIntoTheSameEntryAfterTheFirst) {
    request("1d1");
    const std::string afterFirst = logText();
    request("1d1");
    const std::string afterSecond = logText();
    EXPECT_EQ(logEntries(), 1);
    // One entry: a single separator, at the end, with the rolls just before it.
    EXPECT_EQ(afterSecond.find("\t\t\n"), afterSecond.size() - 3);
    EXPECT_GT(afterSecond.size(), afterFirst.size());
    const std::size_t firstRoll = afterFirst.size() - 5;
    // The first entry's text is kept up to its roll; the second roll follows it.
    EXPECT_EQ(afterSecond.substr(0, firstRoll), afterFirst.substr(0, firstRoll));
    const std::size_t secondRoll = afterSecond.rfind('1', afterSecond.size() - 4);
    EXPECT_GT(secondRoll, afterFirst.rfind('1', afterFirst.size() - 4));
}

TEST_F(RollTest, WithLoggingOffRequestsAndRollsLeaveTheLogUnchanged) {
    window->setChecked(CheckBox::log, false);
    request("3d6");
    request("3d6");
    EXPECT_EQ(logText(), "");
    EXPECT_EQ(logEntries(), 0);
}

TEST_F(RollTest, NewRollRedisplaysAndRelogsAnUnchangedExpression) {
    request("3d6");
    controller->state().newRoll = true;
    request("3d6");
    EXPECT_EQ(controller->history().entries().size(), 2U);
    EXPECT_EQ(logEntries(), 2);
    EXPECT_FALSE(controller->state().newRoll);
}

TEST_F(RollTest, WithMirrorAndCycleTheSecondOfTwoRequestsShowsTheFirstAsComparison) {
    window->setChecked(CheckBox::mirror, true);
    window->setChecked(CheckBox::cycle, true);
    request("3d6");
    EXPECT_EQ(controller->state().compareExpression->rawString(), "");
    request("2d10");
    EXPECT_EQ(controller->state().compareExpression->rawString(), "3d6");
    EXPECT_EQ(selected(PopUp::compare), "3d6 ");
    EXPECT_NE(field(TextField::compareStatistics).find("3d6"), std::string::npos);
    EXPECT_NE(field(TextField::tableCompare2).find("3d6"), std::string::npos);
    EXPECT_NE(field(TextField::versus).find("(2d10)vs(3d6)"), std::string::npos);
}

TEST_F(RollTest, ChoosingAComparisonSwitchesCycleOffAndShowsItOnEveryTab) {
    window->setChecked(CheckBox::mirror, true);
    window->setChecked(CheckBox::cycle, true);
    request("2d10");
    request("1d4");
    request("3d6");
    ASSERT_EQ(selected(PopUp::compare), "1d4 ");
    window->selectPopUpTitle(PopUp::compare, "2d10 ");
    controller->compareSelect();
    EXPECT_FALSE(window->isChecked(CheckBox::cycle));
    EXPECT_EQ(controller->state().compareExpression->rawString(), "2d10");
    EXPECT_NE(field(TextField::compareStatistics).find("2d10"), std::string::npos);
    EXPECT_NE(field(TextField::tableCompare2).find("2d10"), std::string::npos);
    EXPECT_NE(field(TextField::diagramCompare2).find("2d10"), std::string::npos);
    EXPECT_NE(field(TextField::versus).find("(3d6)vs(2d10)"), std::string::npos);
    EXPECT_NE(field(TextField::versusWithTie).find("(3d6)vt(2d10)"), std::string::npos);
    EXPECT_NE(field(TextField::versusLegend), "");
    EXPECT_NE(field(TextField::versusWithTieLegend), "");
}

TEST_F(RollTest, ThePlaceholdersCannotBeChosen) {
    request("3d6");
    window->selectPopUpTitle(PopUp::expression, kSelectExpression);
    controller->expressionSelect();
    EXPECT_EQ(selected(PopUp::expression), "3d6 ");
    window->selectPopUpTitle(PopUp::compare, kSelectComparison);
    controller->compareSelect();
    EXPECT_EQ(selected(PopUp::compare), kSelectComparison);
    EXPECT_EQ(controller->history().entries().size(), 1U);
}

TEST_F(RollTest, ChoosingTheTitleAlreadyShownDoesNothing) {
    request("3d6");
    const auto writes = window->fieldWrites(TextField::roll);
    controller->expressionSelect();
    EXPECT_EQ(window->fieldWrites(TextField::roll), writes);
}

TEST_F(RollTest, RunningCalculationPutsTheRollBackAsAParenthesisedExpression) {
    controller->setRunningCalculation(true);
    request("1d1+2");
    EXPECT_EQ(field(TextField::expression), "(" + field(TextField::roll) + ")");
    EXPECT_EQ(window->caretPlacements(), 0);
    EXPECT_EQ(window->pendingTimers(), 1U);
    window->runPendingTimers();
    EXPECT_EQ(window->caretPlacements(), 1);
    // The result goes on into the next calculation.
    window->setFieldText(TextField::expression, field(TextField::expression) + "*2");
    controller->roll();
    EXPECT_EQ(controller->state().expression->profile().mean().stringValue(), "6");
}

TEST_F(RollTest, WithoutRunningCalculationTheFieldKeepsTheExpression) {
    request("1d1+2");
    EXPECT_EQ(field(TextField::expression), "1d1+2");
    EXPECT_EQ(window->pendingTimers(), 0U);
}

TEST_F(RollTest, APanelRollTakesTheViewsTextAndACancelPutsTheFieldBack) {
    window->setViewAttributedText(TextView::expression, core::StyledText("2d4"));
    controller->panelRoll();
    EXPECT_EQ(field(TextField::expression), "2d4");
    EXPECT_EQ(controller->state().expression->rawString(), "2d4");
    window->setViewAttributedText(TextView::expression, core::StyledText("edited"));
    controller->panelCancel();
    EXPECT_EQ(view(TextView::expression), "2d4");
}

TEST_F(RollTest, WhileAListLoadsNothingIsBuiltDisplayedOrRolled) {
    request("3d6");
    controller->state().displaying = false;
    window->setFieldText(TextField::expression, "2d8");
    controller->roll();
    EXPECT_TRUE(controller->state().displaying == false);
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
    EXPECT_EQ(titles(PopUp::expression)[1], "2d8 ");
    EXPECT_EQ(controller->state().lastRoll.lastExpressionString, "");
    EXPECT_EQ(controller->history().entries().size(), 1U);
}

// --- the request boundary ----------------------------------------------------------------

struct BadText {
    const char* text;
    bool fails;  // the calculation throws, rather than giving undefined outcomes
};

class BadTextTest : public ControllerTest, public ::testing::WithParamInterface<BadText> {};

TEST_P(BadTextTest, LeavesTheWindowWorkingWithAPlainAnswer) {
    request("3d6");
    const std::string statistics = field(TextField::statistics);
    const auto entries = controller->history().entries().size();
    request(GetParam().text);
    if (GetParam().fails) {
        EXPECT_NE(window->message(), "");
        EXPECT_NE(window->message().find(GetParam().text), std::string::npos);
        // The previous results stay on screen and in the state.
        EXPECT_EQ(field(TextField::statistics), statistics);
        EXPECT_EQ(controller->state().expression->rawString(), "3d6");
        EXPECT_EQ(controller->history().entries().size(), entries);
    } else {
        EXPECT_EQ(window->message(), "");
        EXPECT_NE(field(TextField::statistics).find("undefined"), std::string::npos);
    }
    // The window goes on working.
    request("2d6");
    EXPECT_EQ(window->message(), "");
    EXPECT_NE(field(TextField::statistics).find("2d6"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Texts, BadTextTest,
                         ::testing::Values(BadText{"((", false}, BadText{"1/0", false},
                                           BadText{"400d6", true}, BadText{"1d1000000000", true}));

TEST_F(RollTest, AFailingComparisonChoiceKeepsTheComparisonAndSaysWhy) {
    window->setChecked(CheckBox::mirror, true);
    request("3d6");
    window->insertPopUpTitle(PopUp::compare, "400d6", 1);
    window->selectPopUpTitle(PopUp::compare, "400d6");
    controller->compareSelect();
    EXPECT_NE(window->message().find("400d6"), std::string::npos);
    EXPECT_EQ(controller->state().compareExpression->rawString(), "");
    EXPECT_EQ(selected(PopUp::compare), kSelectComparison);
}

}  // namespace
}  // namespace talvex::app
