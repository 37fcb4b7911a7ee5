// Cancelling a long calculation from the window: the request ends with "Calculation
// cancelled.", and the window, the history, the log and the dictionary stay as they were before
// it; the next request works at once.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "app/background_runner.h"
#include "app/controller_fixture.h"

namespace talvex::app {
namespace {

// Turns of the window's event loop; Cancel is pressed on the given turn.
class CancellingWindow final : public BusyWindow {
  public:
    void showBusy(bool busy) override { busyShown = busyShown || busy; }
    void showProgress(double /*share*/) override {}
    void stayResponsiveUntil(const std::function<bool()>& finished,
                             const std::function<void()>& tick) override {
        int turn = 0;
        while (!finished()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            tick();
            if (++turn == cancelOnTurn && runner != nullptr) {
                runner->cancel();
            }
        }
    }

    BackgroundRunner* runner = nullptr;
    int cancelOnTurn = 2;
    bool busyShown = false;
};

// Far more than a moment of work: a million-sided die and a hundred additions.
std::string longText() {
    std::string text = "1d1000000";
    for (int i = 0; i < 100; ++i) {
        text += "+1";
    }
    return text;
}

class CancelTest : public testing::ControllerTest {
  protected:
    CancelTest() {
        busyWindow.runner = &background;
        runnerInUse = &background;
        relaunch();
    }

    CancellingWindow busyWindow;
    BackgroundRunner background{busyWindow};
};

TEST_F(CancelTest, CancelLeavesTheWindowTheHistoryAndTheLogAsTheyWere) {
    request("3d6");
    const std::string statistics = field(TextField::statistics);
    const std::string table = field(TextField::table);
    const std::string roll = field(TextField::roll);
    const long entries = logEntries();
    const std::string log = logText();
    const auto historySize = controller->history().entries().size();
    ASSERT_NE(statistics.find("10.5"), std::string::npos);

    request(longText());

    EXPECT_EQ(window->message(), "Calculation cancelled.");
    EXPECT_EQ(field(TextField::statistics), statistics);
    EXPECT_EQ(field(TextField::table), table);
    EXPECT_EQ(field(TextField::roll), roll);
    EXPECT_EQ(logEntries(), entries);
    EXPECT_EQ(logText(), log);
    EXPECT_EQ(controller->history().entries().size(), historySize);
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
}

TEST_F(CancelTest, TheDictionaryKeepsNothingOfACancelledRequest) {
    request("3d6");
    const auto before = controller->state().session.expressions().size();
    request(longText());
    ASSERT_EQ(window->message(), "Calculation cancelled.");
    EXPECT_EQ(controller->state().session.expressions().size(), before);
    EXPECT_FALSE(controller->state().session.expressions().contains("1d1000000"));
}

TEST_F(CancelTest, TheNextRequestWorksAtOnce) {
    request(longText());
    ASSERT_EQ(window->message(), "Calculation cancelled.");
    request("2d8");
    EXPECT_EQ(window->message(), "");
    EXPECT_NE(field(TextField::statistics).find("9"), std::string::npos);
    EXPECT_EQ(controller->state().expression->rawString(), "2d8");
    EXPECT_FALSE(background.isBusy());
}

// Whose busy state waits long enough that a small request always ends before it, however loaded
// the machine.
class PatientRunnerTest : public testing::ControllerTest {
  protected:
    PatientRunnerTest() {
        runnerInUse = &background;
        relaunch();
    }

    CancellingWindow busyWindow;
    BackgroundRunner background{busyWindow, std::chrono::seconds(20)};
};

TEST_F(PatientRunnerTest, ARequestEndingWithinTheBusyDelayShowsNoBusyState) {
    request("4d6");
    EXPECT_EQ(window->message(), "");
    EXPECT_FALSE(busyWindow.busyShown);
    EXPECT_EQ(controller->state().expression->rawString(), "4d6");
}

}  // namespace
}  // namespace talvex::app
