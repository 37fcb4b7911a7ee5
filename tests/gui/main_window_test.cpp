// The main window driven as a person drives it: typing, choosing, stepping, the tabs, the views.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>
#include <QWheelEvent>

#include "app/controller/controller_state.h"
#include "gui/view_window.h"
#include "gui_fixture.h"

namespace talvex::gui::testing {
namespace {

class MainWindowTest : public GuiTest {
  protected:
    void SetUp() override { start(); }

    [[nodiscard]] QTabWidget* tabs() { return find<QTabWidget>("tabs"); }
    void showTab(const QString& label) {
        QTabWidget* widget = tabs();
        for (int i = 0; i < widget->count(); ++i) {
            if (widget->tabText(i) == label) {
                widget->setCurrentIndex(i);
                return;
            }
        }
        ADD_FAILURE() << "no tab " << label.toStdString();
    }
};

TEST_F(MainWindowTest, TheWindowHasTheFiveTabsInOrder) {
    QStringList labels;
    for (int i = 0; i < tabs()->count(); ++i) {
        labels.append(tabs()->tabText(i));
    }
    EXPECT_EQ(labels, (QStringList{"Profile", "Tables", "Diagrams", "Versus", "Versus with Tie"}));
}

TEST_F(MainWindowTest, AFirstStartShowsTheSampleListAndCalculatesItsFirstExpression) {
    EXPECT_EQ(selected("expressionListPop"), QStringLiteral("Sample Expressions"));
    const QStringList expressions = titles("expressionPop");
    ASSERT_GE(expressions.size(), 21);
    EXPECT_EQ(selected("expressionPop"), expressions[1]);
    EXPECT_EQ(selected("comparePop"), QString::fromLatin1(app::kSelectComparison));
    EXPECT_EQ(selected("compareListPop"), QString::fromLatin1(app::kSelectComparisonList));
    EXPECT_FALSE(shown("statisticsField").isEmpty());
    EXPECT_EQ(statusMessage(), QString());
}

TEST_F(MainWindowTest, ALaterStartShowsThePlaceholdersInEveryPopUp) {
    restart();
    EXPECT_EQ(selected("expressionPop"), QString::fromLatin1(app::kSelectExpression));
    EXPECT_EQ(selected("comparePop"), QString::fromLatin1(app::kSelectComparison));
    EXPECT_EQ(selected("expressionListPop"), QString::fromLatin1(app::kSelectExpressionList));
    EXPECT_EQ(selected("compareListPop"), QString::fromLatin1(app::kSelectComparisonList));
    EXPECT_TRUE(titles("expressionListPop").contains(QStringLiteral("Sample Expressions")));
}

TEST_F(MainWindowTest, TypingAnExpressionAndReturnFillsTheDisplaysAndThePopUp) {
    request(QStringLiteral("3d6"));
    EXPECT_EQ(statusMessage(), QString());
    // The roll is one outcome of three dice.
    bool isNumber = false;
    const int roll = shown("rollField").trimmed().toInt(&isNumber);
    EXPECT_TRUE(isNumber) << shown("rollField").toStdString();
    EXPECT_GE(roll, 3);
    EXPECT_LE(roll, 18);
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("3d6")));
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("10.5")));
    // The table lists the outcomes with their probabilities.
    EXPECT_TRUE(shown("tableField").contains(QStringLiteral("0.46%")));
    EXPECT_FALSE(shown("diagramField").isEmpty());
    EXPECT_TRUE(titles("expressionPop").contains(QStringLiteral("3d6 ")));
    EXPECT_EQ(selected("expressionPop"), QStringLiteral("3d6 "));
}

TEST_F(MainWindowTest, TheRollStandsInTheMiddleOfItsField) {
    request(QStringLiteral("3d6"));
    const QTextEdit* roll = find<QTextEdit>("rollField");
    const QTextBlock first = roll->document()->firstBlock();
    ASSERT_TRUE(first.layout() != nullptr && first.layout()->lineCount() > 0);
    const QTextLine line = first.layout()->lineAt(0);
    const qreal left = line.naturalTextRect().left();
    const qreal right = roll->viewport()->width() - line.naturalTextRect().right();
    EXPECT_GT(left, 10.0);
    EXPECT_NEAR(left, right, 12.0);
}

TEST_F(MainWindowTest, TheRollButtonRollsTheTypedExpression) {
    QLineEdit* field = expressionField();
    QTest::keyClicks(field, QStringLiteral("2d4"));
    click("rollButton");
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("2d4")));
}

TEST_F(MainWindowTest, ChoosingAnEarlierExpressionCalculatesItAgain) {
    request(QStringLiteral("3d6"));
    request(QStringLiteral("2d10"));
    choose("expressionPop", QStringLiteral("3d6 "));
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("3d6")));
    // The title's trailing blank only tells titles apart.
    EXPECT_EQ(expressionField()->text(), QStringLiteral("3d6"));
}

TEST_F(MainWindowTest, WithMirrorOnAnExpressionCanBeComparedOnEveryTab) {
    find<QCheckBox>("mirrorCheckBox")->setChecked(true);
    request(QStringLiteral("3d6"));
    request(QStringLiteral("2d10"));
    ASSERT_TRUE(titles("comparePop").contains(QStringLiteral("3d6 ")));
    choose("comparePop", QStringLiteral("3d6 "));
    EXPECT_EQ(statusMessage(), QString());
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("2d10")));
    EXPECT_TRUE(shown("compareStatisticsField").contains(QStringLiteral("3d6")));
    // Choosing a comparison switches cycling off.
    EXPECT_FALSE(find<QCheckBox>("cycleCheckBox")->isChecked());
    showTab(QStringLiteral("Tables"));
    EXPECT_TRUE(shown("tableCompareField1").startsWith(QStringLiteral("2d10")));
    EXPECT_TRUE(shown("tableCompareField2").startsWith(QStringLiteral("3d6")));
    showTab(QStringLiteral("Diagrams"));
    EXPECT_TRUE(shown("diagramCompareField1").startsWith(QStringLiteral("2d10")));
    EXPECT_TRUE(shown("diagramCompareField2").startsWith(QStringLiteral("3d6")));
    showTab(QStringLiteral("Versus"));
    EXPECT_TRUE(shown("versusField").startsWith(QStringLiteral("(2d10)vs(3d6)")));
    EXPECT_TRUE(shown("versusLegendField").contains(QStringLiteral("dominates")));
    showTab(QStringLiteral("Versus with Tie"));
    EXPECT_TRUE(shown("versusWithTieField").startsWith(QStringLiteral("(2d10)vt(3d6)")));
    EXPECT_FALSE(shown("versusWithTieLegendField").isEmpty());
}

TEST_F(MainWindowTest, WithMirrorAndCycleEachRequestIsComparedWithTheOneBefore) {
    find<QCheckBox>("mirrorCheckBox")->setChecked(true);
    find<QCheckBox>("cycleCheckBox")->setChecked(true);
    request(QStringLiteral("1d6"));
    request(QStringLiteral("1d8"));
    EXPECT_TRUE(shown("statisticsField").startsWith(QStringLiteral("1d8")));
    EXPECT_TRUE(shown("compareStatisticsField").startsWith(QStringLiteral("1d6")));
    EXPECT_EQ(selected("comparePop"), QStringLiteral("1d6 "));
    request(QStringLiteral("1d10"));
    EXPECT_TRUE(shown("compareStatisticsField").startsWith(QStringLiteral("1d8")));
}

TEST_F(MainWindowTest, RequestingTheSameExpressionAgainOnlyRollsAgain) {
    request(QStringLiteral("1d6"));
    request(QStringLiteral("1d1000"));
    const QStringList titlesBefore = titles("expressionPop");
    const QString statistics = shown("statisticsField");
    QStringList rolls{shown("rollField").trimmed()};
    // A thousand faces: ten rolls in a row are the same only once in 10^27 runs.
    for (int i = 0; i < 10; ++i) {
        QTest::keyClick(expressionField(), Qt::Key_Return);
        rolls.append(shown("rollField").trimmed());
    }
    EXPECT_EQ(titles("expressionPop"), titlesBefore);
    EXPECT_EQ(shown("statisticsField"), statistics);
    rolls.removeDuplicates();
    EXPECT_GT(rolls.size(), 1);
    // One step back reaches the request before: the repeats made no history entries.
    click("backButton");
    EXPECT_TRUE(shown("statisticsField").startsWith(QStringLiteral("1d6")));
}

TEST_F(MainWindowTest, CompareWithChoosesTheComparisonAsThePopUpWould) {
    request(QStringLiteral("3d6"));
    window().compareWith(QStringLiteral("2d10"));
    EXPECT_TRUE(find<QCheckBox>("mirrorCheckBox")->isChecked());
    EXPECT_EQ(selected("expressionPop"), QStringLiteral("3d6 "));
    EXPECT_EQ(selected("comparePop"), QStringLiteral("2d10 "));
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("3d6")));
    EXPECT_TRUE(shown("compareStatisticsField").contains(QStringLiteral("2d10")));
}

TEST_F(MainWindowTest, BackAndForwardStepThroughTheRequests) {
    request(QStringLiteral("1d4"));
    request(QStringLiteral("1d8"));
    click("backButton");
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("1d4")));
    EXPECT_EQ(selected("expressionPop"), QStringLiteral("1d4 "));
    click("forwardButton");
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("1d8")));
    trigger("backAction");
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("1d4")));
}

struct BadInput {
    const char* text;
    // The request stops with a message, rather than giving undefined outcomes.
    bool stops;
};

void PrintTo(const BadInput& input, std::ostream* out) { *out << input.text; }

class BadInputTest : public MainWindowTest, public ::testing::WithParamInterface<BadInput> {};

TEST_P(BadInputTest, TheWindowAnswersPlainlyAndKeepsWorking) {
    request(QStringLiteral("3d6"));
    const QString statistics = shown("statisticsField");
    request(QString::fromLatin1(GetParam().text));
    if (GetParam().stops) {
        EXPECT_TRUE(statusMessage().startsWith(QStringLiteral("Cannot calculate \"") +
                                               QString::fromLatin1(GetParam().text)))
            << statusMessage().toStdString();
        EXPECT_EQ(shown("statisticsField"), statistics);
    } else {
        EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("undefined")));
    }
    request(QStringLiteral("2d6"));
    EXPECT_EQ(statusMessage(), QString());
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("2d6")));
}

INSTANTIATE_TEST_SUITE_P(Texts, BadInputTest,
                         ::testing::Values(BadInput{"((", false}, BadInput{"1/0", false},
                                           BadInput{"400d6", true},
                                           BadInput{"1d1000000000", true}));

TEST_F(MainWindowTest, DoubleClickingAFieldOpensItsViewWithTheWholeReport) {
    request(QStringLiteral("3d6"));
    QTextEdit* table = find<QTextEdit>("tableField");
    QTest::mouseDClick(table->viewport(), Qt::LeftButton);
    auto* view = window().findChild<ViewWindow*>(QStringLiteral("tableFieldView"));
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(view->isVisible());
    // The view holds every outcome, the field as many as fit.
    EXPECT_TRUE(view->plainText().contains(QStringLiteral("0.46%     0.46%")));
    EXPECT_TRUE(view->plainText().contains(QStringLiteral("0.46%     100%")));
}

TEST_F(MainWindowTest, TheExpressionViewRollsWhatIsTypedIntoIt) {
    request(QStringLiteral("3d6"));
    window().openView(app::TextView::expression);
    auto* view = window().findChild<ViewWindow*>(QStringLiteral("expressionFieldView"));
    ASSERT_NE(view, nullptr);
    view->editor()->setPlainText(QStringLiteral("4d4"));
    auto* roll = view->findChild<QPushButton*>(QStringLiteral("viewRollButton"));
    ASSERT_NE(roll, nullptr);
    QTest::mouseClick(roll, Qt::LeftButton);
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("4d4")));
    EXPECT_EQ(expressionField()->text(), QStringLiteral("4d4"));
}

TEST_F(MainWindowTest, CtrlRInTheExpressionViewRollsWhatIsTypedThere) {
    request(QStringLiteral("3d6"));
    window().openView(app::TextView::expression);
    auto* view = window().findChild<ViewWindow*>(QStringLiteral("expressionFieldView"));
    ASSERT_NE(view, nullptr);
    view->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), view);
    view->editor()->setPlainText(QStringLiteral("5d4"));
    QTest::keyClick(view->editor(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(shown("statisticsField").startsWith(QStringLiteral("5d4")));
}

TEST_F(MainWindowTest, AWheelTurnedOverAPopUpChoosesNothing) {
    request(QStringLiteral("1d4"));
    request(QStringLiteral("1d8"));
    auto* combo = find<QComboBox>("expressionPop");
    const QString before = combo->currentText();
    const QPoint centre = combo->rect().center();
    for (const int delta : {120, -120, -120}) {
        QWheelEvent wheel(centre, combo->mapToGlobal(centre), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(combo, &wheel);
    }
    EXPECT_EQ(combo->currentText(), before);
    EXPECT_TRUE(shown("statisticsField").startsWith(QStringLiteral("1d8")));
}

TEST_F(MainWindowTest, AnExpressionLongerThanALineEditsDefaultCapIsKeptWhole) {
    // "1+1+...+1" of 40,001 characters, well past the line edit's usual cap of 32767.
    QString longText = QStringLiteral("1");
    while (longText.size() < 40000) {
        longText += QStringLiteral("+1");
    }
    window().openView(app::TextView::expression);
    auto* view = window().findChild<ViewWindow*>(QStringLiteral("expressionFieldView"));
    ASSERT_NE(view, nullptr);
    view->editor()->setPlainText(longText);
    auto* roll = view->findChild<QPushButton*>(QStringLiteral("viewRollButton"));
    ASSERT_NE(roll, nullptr);
    QTest::mouseClick(roll, Qt::LeftButton);
    EXPECT_EQ(expressionField()->text().size(), longText.size());
    // Every one of the ones counts.
    const auto ones = (longText.size() + 1) / 2;
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("Mean:\t\t%1\n").arg(ones)))
        << shown("statisticsField").right(200).toStdString();
}

TEST_F(MainWindowTest, RunningCalculationPutsTheRollIntoTheExpressionField) {
    trigger("runningCalculationAction");
    request(QStringLiteral("3d6"));
    const QString roll = shown("rollField").trimmed();
    EXPECT_EQ(expressionField()->text(), QStringLiteral("(") + roll + QStringLiteral(")"));
}

TEST_F(MainWindowTest, ClosingTheMainWindowQuitsTheApplication) {
    EXPECT_FALSE(window().close());
    EXPECT_TRUE(desktop().terminationRequested());
}

TEST_F(MainWindowTest, ATallerWindowShowsMoreTableRows) {
    request(QStringLiteral("10d10"));
    const auto rows = [this] { return shown("tableField").count(QLatin1Char('\n')); };
    const auto initialRows = rows();
    window().resize(1000, 500);
    // The displays follow once the size settles.
    QTRY_VERIFY(rows() < initialRows);
    const auto shortRows = rows();
    window().resize(1000, 1000);
    QTRY_VERIFY(rows() > shortRows);
}

}  // namespace
}  // namespace talvex::gui::testing
