// What the window says about the text being typed: the finding under the expression field after
// a pause, and its suggestion written into the field with one click.

#include "gui/diagnostics_bar.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "gui/gui_fixture.h"

namespace talvex::gui::testing {
namespace {

class DiagnosticsBarTest : public GuiTest {
  protected:
    void SetUp() override { start(); }

    void type(const QString& text) {
        expressionField()->clear();
        QTest::keyClicks(expressionField(), text);
    }

    [[nodiscard]] QWidget* bar() { return find<QWidget>("diagnosticsBar"); }
    [[nodiscard]] QLabel* finding(int index) {
        return window().findChild<QLabel*>(QStringLiteral("finding%1").arg(index));
    }
};

TEST_F(DiagnosticsBarTest, TypingAnUnclosedParenthesisShowsTheFindingAfterAPause) {
    type(QStringLiteral("(3d6"));
    // Not at once: the finding waits for a pause in the typing.
    EXPECT_FALSE(bar()->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(bar()->isVisible(), 5000);
    ASSERT_NE(finding(0), nullptr);
    EXPECT_EQ(finding(0)->text(), QStringLiteral("Error: '(' is never closed"));
    EXPECT_EQ(finding(1), nullptr);
}

TEST_F(DiagnosticsBarTest, ApplyingTheSuggestionFixesTheTextAndTheFindingGoes) {
    type(QStringLiteral("(3d6"));
    QTRY_VERIFY_WITH_TIMEOUT(bar()->isVisible(), 5000);
    auto* apply = find<QPushButton>("applySuggestion0");
    ASSERT_NE(apply, nullptr);
    EXPECT_EQ(apply->text(), QStringLiteral("write (3d6)"));
    QTest::mouseClick(apply, Qt::LeftButton);
    EXPECT_EQ(expressionField()->text(), QStringLiteral("(3d6)"));
    QTRY_VERIFY_WITH_TIMEOUT(!bar()->isVisible(), 5000);
    // The fixed text calculates as usual.
    QTest::keyClick(expressionField(), Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(shown("statisticsField").contains(QStringLiteral("10.5")), 5000);
}

TEST_F(DiagnosticsBarTest, AValidTextShowsNothing) {
    type(QStringLiteral("3d6+2"));
    QTest::qWait(DiagnosticsBar::kPauseMilliseconds * 2);
    EXPECT_FALSE(bar()->isVisible());
}

TEST_F(DiagnosticsBarTest, TheCalculationOfAFaultyTextRunsAsAlways) {
    request(QStringLiteral("3D6"));
    QTRY_VERIFY_WITH_TIMEOUT(bar()->isVisible(), 5000);
    EXPECT_EQ(finding(0)->text().left(6), QStringLiteral("Error:"));
    // The request itself was made: the statistics show its (undefined) result.
    EXPECT_FALSE(shown("statisticsField").isEmpty());
}

}  // namespace
}  // namespace talvex::gui::testing
