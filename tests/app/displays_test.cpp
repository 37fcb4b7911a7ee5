#include "app/controller/displays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <sstream>
#include <utility>

#include "app/controller/split_view_bounds.h"
#include "controller_fixture.h"
#include "core/diagram.h"

namespace talvex::app {
namespace {

using testing::ControllerTest;

// The bars of each table line, in order.
std::vector<std::size_t> barLengths(const std::string& table) {
    std::vector<std::size_t> lengths;
    std::istringstream lines(table);
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t bar = line.find_first_not_of('|');
        if (bar > 0 && bar != std::string::npos) {
            lengths.push_back(bar);
        }
    }
    return lengths;
}

class DisplaysTest : public ControllerTest {
  protected:
    // Shows `compare` as the comparison of `expression`, as choosing it in the pop-up does.
    void compare(const std::string& expression, const std::string& comparison) {
        window->setChecked(CheckBox::mirror, true);
        request(comparison);
        request(expression);
        window->selectPopUpTitle(PopUp::compare, comparison + " ");
        controller->compareSelect();
        ASSERT_EQ(controller->state().compareExpression->rawString(),
                  language::Expression::cleanString(comparison));
    }
};

TEST_F(DisplaysTest, ATableField100PointsHighGivesHeight3) {
    window->setTableFieldHeight(100);
    controller->displays().updateHeight();
    EXPECT_EQ(controller->state().height, 3);
    window->setTableFieldHeight(100.9);
    controller->displays().updateHeight();
    EXPECT_EQ(controller->state().height, 3);
    window->setTableFieldHeight(34);
    controller->displays().updateHeight();
    EXPECT_EQ(controller->state().height, 0);
}

TEST_F(DisplaysTest, TheTableFieldHoldsAtMostHeightRowsAndItsViewAllOfThem) {
    window->setTableFieldHeight(100);
    request("1d20");
    EXPECT_EQ(barLengths(field(TextField::table)).size(), 3U);
    EXPECT_EQ(barLengths(view(TextView::profileA)).size(), 20U);
}

TEST_F(DisplaysTest, ComparedTablesShareTheScaleOfTheHeavierBar) {
    window->setTableFieldHeight(1000);
    compare("1d4", "1d2");
    // 1d2's bars are twice as heavy as 1d4's, so they set the scale: ten bars against five.
    EXPECT_EQ(barLengths(field(TextField::tableCompare1)), std::vector<std::size_t>(4, 5));
    EXPECT_EQ(barLengths(field(TextField::tableCompare2)), std::vector<std::size_t>(2, 10));
    // On its own, the table uses its own scale.
    EXPECT_EQ(barLengths(field(TextField::table)), std::vector<std::size_t>(4, 10));
    EXPECT_EQ(controller->prefer().tableScale(), -1);
}

TEST_F(DisplaysTest, WithAbsoluteBarsTheTablesKeepTheirOwnScales) {
    window->setTableFieldHeight(1000);
    panel->selectRow(PanelMatrix::bars, 1);
    controller->settingsSave();
    compare("1d4", "1d2");
    const auto first = barLengths(field(TextField::tableCompare1));
    const auto own = barLengths(field(TextField::table));
    EXPECT_EQ(first, own);
}

TEST_F(DisplaysTest, ComparedDiagramsShareTheSmallerHeight) {
    window->setTableFieldHeight(17 * 12);  // 10 lines
    compare("1d2", "3d6");
    Preferencer& prefer = controller->prefer();
    auto a = controller->state().expression->profile();
    auto b = controller->state().compareExpression->profile();
    const core::Options options = a.patchOptions(
        std::make_unique<core::Options>(prefer.optionsForField("diagram", 10, false)).get());
    const int common = std::min(core::diagramHeightWithOptions(a, &options),
                                core::diagramHeightWithOptions(b, &options));
    ASSERT_GE(common, 2);
    ASSERT_LT(common, 10);
    prefer.setTableScale(common);
    EXPECT_EQ(field(TextField::diagramCompare1),
              controller->displays().report(a, "diagram", 10, false).string());
    EXPECT_EQ(field(TextField::diagramCompare2),
              controller->displays().report(b, "diagram", 10, false).string());
    prefer.setTableScale(-1);
}

TEST_F(DisplaysTest, WhenOnlyOneIsAComparisonEachIsDrawnOnItsOwnAndTheSecondIsEmptied) {
    window->setTableFieldHeight(1000);
    compare("1d4", "1d2");
    const std::string compareStatistics = field(TextField::compareStatistics);
    ASSERT_NE(compareStatistics, "");
    request("1d6 vs 1d8");
    // Its own scale: the heaviest bar is as long as max bar.
    const auto bars = barLengths(field(TextField::tableCompare1));
    EXPECT_EQ(*std::max_element(bars.begin(), bars.end()), 10U);
    EXPECT_EQ(field(TextField::tableCompare2), "");
    EXPECT_EQ(view(TextView::tablesB), "");
    EXPECT_EQ(field(TextField::diagramCompare2), "");
    EXPECT_EQ(view(TextView::diagramsB), "");
    EXPECT_EQ(field(TextField::compareStatistics), compareStatistics);
}

TEST_F(DisplaysTest, AComparisonsDiagramFieldShowsItsLegend) {
    request("3d6 vs 2d10");
    EXPECT_NE(field(TextField::diagram).find("3d6 dominates"), std::string::npos);
    EXPECT_NE(view(TextView::profileB).find("2d10 dominates"), std::string::npos);
}

TEST_F(DisplaysTest, WithoutTheLegendSettingAComparisonsDiagramFieldShowsTheDiagram) {
    panel->setChecked(PanelCheckBox::displayLegend, false);
    controller->settingsSave();
    request("3d6 vs 2d10");
    EXPECT_EQ(field(TextField::diagram).find("dominates"), std::string::npos);
    EXPECT_NE(field(TextField::diagram).find('%'), std::string::npos);
}

TEST_F(DisplaysTest, VersusReportsJoinTheTwoTextsInParentheses) {
    compare("3d6", "2d10");
    EXPECT_NE(field(TextField::versus).find("(3d6)vs(2d10)"), std::string::npos);
    EXPECT_NE(field(TextField::versusLegend).find("dominates"), std::string::npos);
    EXPECT_NE(view(TextView::versusA).find("(3d6)vs(2d10)"), std::string::npos);
    EXPECT_NE(view(TextView::versusB).find("dominates"), std::string::npos);
    EXPECT_NE(field(TextField::versusWithTie).find("(3d6)vt(2d10)"), std::string::npos);
    EXPECT_NE(field(TextField::versusWithTieLegend), "");
    EXPECT_NE(view(TextView::versusWithTieA), "");
    EXPECT_NE(view(TextView::versusWithTieB), "");
}

TEST_F(DisplaysTest, UpdateFloatingViewsCopiesEveryFieldIntoItsView) {
    request("3d6");
    for (std::size_t i = 0; i < kDisplayPairCount; ++i) {
        window->clearView(static_cast<TextView>(i));
    }
    controller->updateFloatingViews();
    for (std::size_t i = 0; i < kDisplayPairCount; ++i) {
        const auto f = static_cast<TextField>(i);
        EXPECT_EQ(view(viewOf(f)), field(f)) << i;
    }
}

TEST_F(DisplaysTest, BlankDisplayShowsTheWordExpressionAndEmptiesTheRest) {
    request("3d6");
    controller->displays().blankDisplay();
    EXPECT_EQ(field(TextField::expression), "Expression");
    EXPECT_EQ(view(TextView::expression), "Expression");
    for (std::size_t i = 1; i < kDisplayPairCount; ++i) {
        EXPECT_EQ(field(static_cast<TextField>(i)), "") << i;
        EXPECT_EQ(view(static_cast<TextView>(i)), "") << i;
    }
}

TEST_F(DisplaysTest, AResizeRedrawsTheSingleAndComparisonDisplays) {
    window->setTableFieldHeight(1000);
    request("1d20");
    EXPECT_EQ(barLengths(field(TextField::table)).size(), 20U);
    window->setTableFieldHeight(100);
    controller->windowDidResize();
    EXPECT_EQ(barLengths(field(TextField::table)).size(), 3U);
    EXPECT_EQ(barLengths(field(TextField::tableCompare1)).size(), 3U);
}

TEST_F(DisplaysTest, AResizeAfterTheDisplayWasEmptiedDrawsNothing) {
    request("1d20");
    request("");
    const auto writes = window->fieldWrites(TextField::table);
    controller->windowDidResize();
    EXPECT_EQ(window->fieldWrites(TextField::table), writes);
}

// Runs the work where it is, after what the test wants to happen while a calculation is under
// way (the window's event loop turns while the worker calculates).
class ObservingRunner final : public CalculationRunner {
  public:
    void run(language::RequestContext& /*context*/, const std::function<void()>& work) override {
        if (++runs == runWatched && whileRunning) {
            std::exchange(whileRunning, nullptr)();
        }
        work();
    }

    int runs = 0;
    int runWatched = 0;
    std::function<void()> whileRunning;
};

class ResizeTest : public DisplaysTest {
  protected:
    ResizeTest() {
        runnerInUse = &observing;
        relaunch();
    }

    ObservingRunner observing;
};

TEST_F(ResizeTest, AResizeRedrawsAwayFromTheWindowLikeARequest) {
    window->setTableFieldHeight(1000);
    request("1d20");
    const int runs = observing.runs;
    window->setTableFieldHeight(100);
    controller->windowDidResize();
    EXPECT_EQ(observing.runs, runs + 1);
    EXPECT_EQ(barLengths(field(TextField::table)).size(), 3U);
    EXPECT_EQ(window->message(), "");
}

TEST_F(ResizeTest, AResizeDuringARequestIsRedrawnWhenTheRequestEnds) {
    window->setTableFieldHeight(1000);
    const int before = observing.runs;
    request("1d20");
    // The last run of a request makes its reports.
    observing.runWatched = observing.runs + (observing.runs - before);
    observing.whileRunning = [this] {
        window->setTableFieldHeight(100);
        controller->windowDidResize();
    };
    request("1d12");
    EXPECT_EQ(barLengths(field(TextField::table)).size(), 3U);
    EXPECT_EQ(barLengths(field(TextField::tableCompare1)).size(), 3U);
}

TEST_F(DisplaysTest, VersusIsAlwaysSuitable) { EXPECT_TRUE(Displays::isVersusSuitable()); }

}  // namespace
}  // namespace talvex::app

namespace talvex::app {
namespace {

TEST(SplitViewBounds, AVerticalSplitKeeps10PointsLeftAnd20Right) {
    EXPECT_EQ(KVTXSplitViewDelegate::splitViewConstrainMinCoordinate(true), 10.0);
    EXPECT_EQ(KVTXSplitViewDelegate::splitViewConstrainMaxCoordinate(true, 600, 400), 580.0);
}

TEST(SplitViewBounds, AHorizontalSplitKeeps50PointsAboveAndBelow) {
    EXPECT_EQ(KVTXSplitViewDelegate::splitViewConstrainMinCoordinate(false), 50.0);
    EXPECT_EQ(KVTXSplitViewDelegate::splitViewConstrainMaxCoordinate(false, 600, 400), 350.0);
}

}  // namespace
}  // namespace talvex::app
