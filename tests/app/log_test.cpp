#include "app/controller/log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "app/rtf.h"
#include "app/text_printer.h"
#include "controller_fixture.h"

namespace talvex::app::testing {
namespace {

// A text view as the printer tests need it: storage and a count of scrolls to the top.
struct Output final : TextOutput {
    core::StyledText& textStorage() override { return text; }
    void scrollToTopLeft() override { ++scrolls; }
    core::StyledText text;
    int scrolls = 0;
};

TEST(TextPrinter, StartsAtTheEndOfTheViewsText) {
    Output output;
    output.text = core::StyledText("abc");
    const TextPrinter printer = TextPrinter::printerWithText(&output);
    EXPECT_EQ(printer.printIndex(), 3);
}

TEST(TextPrinter, SetPrintIndexClampsToTheText) {
    Output output;
    output.text = core::StyledText("abcd");
    TextPrinter printer(&output);
    printer.setPrintIndex(-5);
    EXPECT_EQ(printer.printIndex(), 0);
    printer.setPrintIndex(99);
    EXPECT_EQ(printer.printIndex(), 4);
    printer.setPrintIndex(2);
    EXPECT_EQ(printer.printIndex(), 2);
}

TEST(TextPrinter, TwoPrintsAtTheStartLandInCallOrder) {
    Output output;
    output.text = core::StyledText("tail");
    TextPrinter printer(&output);
    printer.setPrintIndex(0);
    printer.printString("one ");
    printer.printString("two ");
    EXPECT_EQ(output.text.string(), "one two tail");
    EXPECT_EQ(printer.printIndex(), 8);
}

TEST(TextPrinter, ANullAttributedTextChangesNothing) {
    Output output;
    output.text = core::StyledText("abc");
    TextPrinter printer(&output);
    printer.setPrintIndex(1);
    printer.printAttributedString(nullptr);
    EXPECT_EQ(output.text.string(), "abc");
    EXPECT_EQ(printer.printIndex(), 1);
}

TEST(TextPrinter, PrintingAtTheTopInsertsThereAndScrollsUp) {
    Output output;
    output.text = core::StyledText("end");
    TextPrinter printer(&output);
    printer.printTopLineWithString("first");
    EXPECT_EQ(output.text.string(), "first\nend");
    EXPECT_EQ(printer.printIndex(), 6);
    EXPECT_EQ(output.scrolls, 1);
    const core::StyledText red("R", core::TextAttributes{core::Color{255, 0, 0}});
    printer.printAttributedStringAtTop(&red);
    EXPECT_EQ(output.text.string(), "Rfirst\nend");
    EXPECT_EQ(output.text.attributesAt(0), red.attributesAt(0));
    EXPECT_EQ(printer.printIndex(), 1);
    printer.printLineWithString("x");
    EXPECT_EQ(output.text.string(), "Rx\nfirst\nend");
}

TEST(TextPrinter, WithoutAViewNothingIsPrinted) {
    TextPrinter printer;
    printer.printString("lost");
    EXPECT_EQ(printer.printIndex(), 0);
}

TEST(LogExportName, MonthDayYearThenTheTimeOfDay) {
    EXPECT_EQ(logExportName(LocalTime{2027, 2, 3, 9, 5, 7}), "log 02-03-2027 09h05m07s.rtfd");
    EXPECT_EQ(logExportName(LocalTime{2026, 11, 15, 18, 23, 5}), "log 11-15-2026 18h23m05s.rtfd");
}

class LogTest : public ControllerTest {
  protected:
    LogTest() { window->setChecked(CheckBox::log, true); }

    void setLogSize(int size) {
        panel->setText(PanelField::logSize, std::to_string(size));
        controller->settingsSave();
    }

    // The expressions of the entries, newest first: the second line of each entry.
    [[nodiscard]] std::vector<std::string> entryExpressions() const {
        std::vector<std::string> found;
        const std::string text = logText();
        std::size_t start = 0;
        while (start < text.size()) {
            const std::size_t end = text.find(Log::kSeparator, start);
            const std::string entry = text.substr(start, end - start);
            const std::size_t line = entry.find('\n');
            found.push_back(entry.substr(line + 1, entry.find('\n', line + 1) - line - 1));
            if (end == std::string::npos) {
                break;
            }
            start = end + 3;
        }
        return found;
    }

    void requestAll(int count) {
        for (int i = 1; i <= count; ++i) {
            request(std::to_string(i) + "d6");
        }
    }
};

TEST_F(LogTest, EachRequestAddsAnEntryAtTheTopEndedByTheSeparator) {
    request("1d6");
    request("2d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"2d6", "1d6"}));
    EXPECT_TRUE(logText().ends_with("\n\t\t\n"));
    EXPECT_EQ(logEntries(), 2);
    EXPECT_EQ(logWindow.shown.string(), logText());
    EXPECT_GE(logWindow.scrolls, 2);
}

TEST_F(LogTest, WithLimitThreeAFourthRequestRemovesTheOldest) {
    setLogSize(3);
    requestAll(3);
    request("4d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"4d6", "3d6", "2d6"}));
    EXPECT_EQ(logEntries(), 3);
}

TEST_F(LogTest, LoweringTheLimitToTwoRemovesEightAtTheNextRequest) {
    requestAll(10);
    EXPECT_EQ(logEntries(), 10);
    setLogSize(2);
    request("11d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"11d6", "10d6"}));
    EXPECT_EQ(logEntries(), 2);
}

TEST_F(LogTest, WithLimitZeroEveryRequestEmptiesTheLogFirst) {
    setLogSize(0);
    request("1d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"1d6"}));
    request("2d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"2d6"}));
    EXPECT_EQ(logEntries(), 1);
}

class LogLimitTest : public LogTest, public ::testing::WithParamInterface<int> {};

TEST_P(LogLimitTest, TheLogNeverHoldsMoreThanItsLimitAfterARequest) {
    const int limit = GetParam();
    setLogSize(limit);
    for (int i = 1; i <= 12; ++i) {
        request(std::to_string(i) + "d4");
        const auto expected = static_cast<std::size_t>(std::max(1, std::min(i, limit)));
        ASSERT_EQ(entryExpressions().size(), expected) << "after request " << i;
        EXPECT_EQ(entryExpressions().front(), std::to_string(i) + "d4");
        EXPECT_EQ(logEntries(), static_cast<long>(expected));
    }
}

INSTANTIATE_TEST_SUITE_P(Limits, LogLimitTest, ::testing::Values(0, 2, 3, 100));

TEST_F(LogTest, FiveRollsOfOneExpressionMakeOneEntryWithTheRollsInOrder) {
    for (int i = 0; i < 5; ++i) {
        request("1d1000");
    }
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"1d1000"}));
    const auto& rolls = controller->state().expression->profileView().evaluationHistory();
    ASSERT_EQ(rolls.size(), 5U);
    std::string expected;
    for (const core::Evaluation& roll : rolls) {
        expected += (expected.empty() ? "" : ", ") + roll.quantity().stringValue();
    }
    EXPECT_NE(logText().find("\n" + expected + "\n\n\t\t\n"), std::string::npos) << logText();
}

TEST_F(LogTest, WithTheLogBoxOffRequestsAndRollsLeaveTheLogAlone) {
    request("1d6");
    const std::string before = logText();
    window->setChecked(CheckBox::log, false);
    request("2d6");
    request("2d6");
    EXPECT_EQ(logText(), before);
    EXPECT_EQ(logEntries(), 1);
}

TEST_F(LogTest, ClearingEmptiesTheLogAndLogsTheNextRepeat) {
    request("1d6");
    controller->clearLog();
    EXPECT_EQ(logText(), "");
    EXPECT_EQ(logEntries(), 0);
    EXPECT_EQ(controller->log().printIndex(), 0);
    request("1d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"1d6"}));
}

TEST_F(LogTest, ACountWithTooFewSeparatorsEmptiesTheLogAtTheNextOverflow) {
    setLogSize(3);
    request("1d6");
    request("2d6");
    controller->log().setEntryCount(5);
    request("3d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"3d6"}));
    EXPECT_EQ(logEntries(), 1);
}

TEST_F(LogTest, TheLogAndItsCountSurviveARestart) {
    request("1d6");
    request("2d6");
    const core::StyledText before = controller->log().text();
    controller->TalvexQuit();
    controller->applicationWillTerminate();
    EXPECT_TRUE(files.exists(std::string(kSupportFolder) + "/log.rtfd/TXT.rtf"));
    relaunch();
    EXPECT_EQ(controller->log().text(), before);
    EXPECT_EQ(logEntries(), 2);
    EXPECT_EQ(controller->log().printIndex(), static_cast<long>(before.string().size()));
    window->setChecked(CheckBox::log, true);
    request("3d6");
    EXPECT_EQ(entryExpressions(), (std::vector<std::string>{"3d6", "2d6", "1d6"}));
}

TEST_F(LogTest, AMissingOrBrokenLogFileLeavesTheLogEmpty) {
    files.folders.insert(std::string(kSupportFolder) + "/log.rtfd");
    files.writeTextAtomically(std::string(kSupportFolder) + "/log.rtfd/TXT.rtf", "no rtf");
    relaunch();
    EXPECT_EQ(logText(), "");
}

TEST_F(LogTest, ExportingWritesATimeStampedPackageIntoTheListsFolder) {
    request("1d6");
    clock.time = LocalTime{2027, 2, 3, 9, 5, 7};
    controller->exportLog();
    const std::string path =
        controller->state().listsFolderPath + "/log 02-03-2027 09h05m07s.rtfd/TXT.rtf";
    const auto rtf = files.readText(path);
    ASSERT_TRUE(rtf.has_value());
    EXPECT_EQ(styledTextFromRtf(*rtf), controller->log().text());
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(LogTest, AFailedExportShowsTheWriteErrorPanel) {
    request("1d6");
    files.readOnlyFolders.insert(controller->state().listsFolderPath);
    // The package folder cannot be made in a read-only folder either.
    files.folders.insert(controller->state().listsFolderPath + "/log 11-15-2026 18h23m05s.rtfd");
    files.readOnlyFolders.insert(controller->state().listsFolderPath +
                                 "/log 11-15-2026 18h23m05s.rtfd");
    controller->exportLog();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, kWriteErrorMessage);
}

TEST_F(LogTest, PrintingTheLogHandsOverTheWholeLog) {
    request("1d6");
    controller->logPrint();
    ASSERT_EQ(printer.logs.size(), 1U);
    EXPECT_EQ(printer.logs[0], controller->log().text());
}

TEST(LogPackage, RoundTripsThroughARealFolder) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("talvex-log-" + std::to_string(::getpid()));
    std::filesystem::remove_all(folder);
    LocalFileSystem files;
    ASSERT_TRUE(files.createDirectories(folder.string()));
    core::StyledText text("Tue, Mar 3, 2026\n", core::TextAttributes{core::Color{0, 0, 255}});
    text.append("3d6 \xc3\xa9\xe2\x80\xa6\n\nMean:\t\t10.5\n\t\t\n", std::nullopt);
    const std::string package = (folder / "log.rtfd").string();
    ASSERT_TRUE(writeRtfd(files, package, text));
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "log.rtfd" / "TXT.rtf"));
    EXPECT_EQ(readRtfd(files, package), text);
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace talvex::app::testing
