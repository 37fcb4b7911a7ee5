// A long calculation in the real window: it stays alive, shows that it is busy, and Cancel (the
// Roll button turned Cancel, or Esc) stops the calculation, leaving the previous results.

#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "gui/gui_fixture.h"
#include "gui/styled_document.h"

namespace talvex::gui::testing {
namespace {

// Several seconds of work without Cancel: a million-sided die and a hundred additions.
QString longText() {
    QString text = QStringLiteral("1d1000000");
    for (int i = 0; i < 100; ++i) {
        text += QStringLiteral("+1");
    }
    return text;
}

class LongCalculationTest : public GuiTest {
  protected:
    void SetUp() override {
        start();
        request(QStringLiteral("3d6"));
        statistics = shown("statisticsField");
        ASSERT_TRUE(statistics.contains(QStringLiteral("10.5")));
    }

    QPushButton* rollButton() { return find<QPushButton>("rollButton"); }

    // Once the window shows that it is busy, runs `act` (as the person would, from the
    // window's own event loop) and notes what the window showed then.
    void whenBusy(std::function<void()> act) {
        m_poll = std::make_unique<QTimer>();
        m_poll->setInterval(10);
        QObject::connect(m_poll.get(), &QTimer::timeout, [this, act] {
            if (rollButton()->text() != QStringLiteral("Cancel")) {
                return;
            }
            m_poll->stop();
            auto* progress = find<QProgressBar>("calculationProgress");
            progressShown = progress != nullptr && progress->isVisible();
            busyMessage = statusMessage();
            act();
        });
        m_poll->start();
    }

    // Sets the text in one go (a long text typed key by key takes a while) and presses Return.
    void requestAtOnce(const QString& text) {
        expressionField()->setText(text);
        QTest::keyClick(expressionField(), Qt::Key_Return);
    }

    QString statistics;
    bool progressShown = false;
    QString busyMessage;
    std::unique_ptr<QTimer> m_poll;
};

TEST_F(LongCalculationTest, TheCancelButtonStopsTheCalculationAndKeepsThePreviousResults) {
    whenBusy([this] { QTest::mouseClick(rollButton(), Qt::LeftButton); });
    requestAtOnce(longText());

    EXPECT_TRUE(progressShown);
    EXPECT_TRUE(busyMessage.contains(QStringLiteral("Calculating")));
    EXPECT_EQ(statusMessage(), QStringLiteral("Calculation cancelled."));
    EXPECT_EQ(shown("statisticsField"), statistics);
    EXPECT_EQ(rollButton()->text(), QStringLiteral("Roll"));
    EXPECT_FALSE(find<QProgressBar>("calculationProgress")->isVisible());
    EXPECT_FALSE(desktop().runner().isBusy());

    // The next request works at once.
    request(QStringLiteral("2d8"));
    EXPECT_EQ(statusMessage(), QString());
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("9")));
    EXPECT_NE(shown("statisticsField"), statistics);
}

TEST_F(LongCalculationTest, EscapeCancels) {
    whenBusy([this] { QTest::keyClick(expressionField(), Qt::Key_Escape); });
    requestAtOnce(longText());
    EXPECT_EQ(statusMessage(), QStringLiteral("Calculation cancelled."));
    EXPECT_EQ(shown("statisticsField"), statistics);
}

TEST_F(LongCalculationTest, NothingTypedWhileBusyStartsAnotherRequest) {
    whenBusy([this] {
        // Typing and Return go nowhere while the calculation runs; then Cancel.
        QTest::keyClicks(expressionField(), QStringLiteral("2d4"));
        QTest::keyClick(expressionField(), Qt::Key_Return);
        QTest::mouseClick(rollButton(), Qt::LeftButton);
    });
    requestAtOnce(longText());
    EXPECT_EQ(statusMessage(), QStringLiteral("Calculation cancelled."));
    EXPECT_EQ(expressionField()->text(), longText());
    EXPECT_EQ(shown("statisticsField"), statistics);
}

}  // namespace
}  // namespace talvex::gui::testing

namespace talvex::gui::testing {
namespace {

class HugeReportTest : public GuiTest {
  protected:
    void SetUp() override { start(); }
};

TEST_F(HugeReportTest, AFieldShowsTheBeginningOfAHugeTextAndSaysHowMuchItLeavesOut) {
    std::string text;
    for (int i = 0; text.size() < 3 * kMaxShownCharacters; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    window().setFieldAttributedText(app::TextField::statistics, core::StyledText(text));
    const QString shownText = shown("statisticsField");
    EXPECT_TRUE(shownText.startsWith(QStringLiteral("line 0\nline 1\n")));
    EXPECT_LT(static_cast<std::size_t>(shownText.size()), kMaxShownCharacters + 100);
    EXPECT_TRUE(shownText.endsWith(QStringLiteral(" more characters not shown.")));
    // The controller still sees the whole text it wrote.
    EXPECT_EQ(window().fieldAttributedText(app::TextField::statistics).string(), text);
}

}  // namespace
}  // namespace talvex::gui::testing
