#include "app/controller/kvtx_exproter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/rtf.h"
#include "app/text_encoding.h"
#include "controller_fixture.h"

namespace talvex::app::testing {
namespace {

using Titles = std::vector<std::string>;

class ExproterTest : public ControllerTest {
  protected:
    static constexpr const char* kExported = "/home/person/out.txt";

    [[nodiscard]] std::string exportedText() {
        dialogs.saveAnswer = kExported;
        controller->exprotList();
        return files.readText(kExported).value_or("<none>");
    }
    void importFiles(const std::vector<std::pair<std::string, std::string>>& contents) {
        dialogs.openAnswer.clear();
        for (const auto& [path, bytes] : contents) {
            files.createDirectories(path.substr(0, path.rfind('/')));
            files.writeTextAtomically(path, bytes);
            dialogs.openAnswer.push_back(path);
        }
        controller->importList();
    }
    [[nodiscard]] std::string editorText() {
        controller->lists().openExpressions();
        return controller->lists().editorText();
    }
};

TEST(IsoDate, YearMonthDay) { EXPECT_EQ(isoDate(LocalTime{2027, 2, 3, 9, 5, 7}), "2027-02-03"); }

TEST_F(ExproterTest, ExportingOnlyThePlaceholderWritesItsTitle) {
    EXPECT_EQ(exportedText(), " Select Expression");
}

TEST_F(ExproterTest, ExportingWritesTheTitlesWithTheirTrailingBlanks) {
    request("2d10");
    request("3d6");
    EXPECT_EQ(exportedText(), "3d6 \\\n\n2d10 ");
}

TEST_F(ExproterTest, TheExportDialogueSaysWhatItWillWrite) {
    static_cast<void>(exportedText());
    ASSERT_EQ(dialogs.saveRequests.size(), 1U);
    const SaveDialogRequest& asked = dialogs.saveRequests[0];
    EXPECT_EQ(asked.title, "Export List");
    EXPECT_EQ(asked.message,
              "The list will be saved as a text file with \"\\\" separating expresssions.");
    EXPECT_EQ(asked.proposedName, "2026-11-15 Talvex Expression List");
    EXPECT_EQ(asked.requiredType, "txt");
    EXPECT_TRUE(asked.canCreateDirectories);
    EXPECT_TRUE(asked.canHideExtension);
}

TEST_F(ExproterTest, TheProposedNameCarriesTheCurrentListsName) {
    files.createDirectories(controller->state().listsFolderPath);
    files.writeTextAtomically(controller->state().listsFolderPath + "/Dice.txt", "3d6");
    controller->applicationWillTerminate();
    relaunch();
    window->selectPopUpTitle(PopUp::expressionList, "Dice");
    controller->expressionListSelect();
    static_cast<void>(exportedText());
    EXPECT_EQ(dialogs.saveRequests.back().proposedName, "2026-11-15 Dice");
}

TEST_F(ExproterTest, ACancelledExportWritesNothing) {
    dialogs.saveAnswer.reset();
    controller->exprotList();
    EXPECT_FALSE(files.exists(kExported));
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(ExproterTest, ExportedFilesAreMacOsRoman) {
    request("1d6 \xc3\xa9\xc3\xbc\xc2\xb1\xe2\x80\xa6");  // é ü ± …
    const std::string bytes = exportedText();
    EXPECT_EQ(bytes, macRomanFromUtf8("1d6 \xc3\xa9\xc3\xbc\xc2\xb1\xe2\x80\xa6 "));
    EXPECT_EQ(bytes, "1d6 \x8e\x9f\xb1\xc9 ");
}

TEST_F(ExproterTest, ACharacterMacOsRomanCannotHoldFailsTheExport) {
    request("1d6 \xe2\x86\x92");  // →
    EXPECT_EQ(exportedText(), "<none>");
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "There was an error saving the list.");
    EXPECT_EQ(alerts.asked[0].defaultButton, "OK");
}

TEST_F(ExproterTest, AFailedWriteShowsTheSaveError) {
    request("1d6");
    dialogs.saveAnswer = "/nowhere/at/all.txt";
    controller->exprotList();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "There was an error saving the list.");
}

TEST_F(ExproterTest, ImportingAsksForTextFilesAndAppendsToTheList) {
    request("3d6");
    importFiles({{"/home/person/in/a.txt", "1d4\\\n\n1d8"}});
    ASSERT_EQ(dialogs.openRequests.size(), 1U);
    EXPECT_EQ(dialogs.openRequests[0].title, "Import Expression List");
    EXPECT_EQ(dialogs.openRequests[0].message,
              "Expressions will be added to the end of the current list.");
    EXPECT_EQ(dialogs.openRequests[0].fileTypes, (Titles{"txt"}));
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 ", "1d4 ", "1d8 "}));
    EXPECT_EQ(editorText(), "3d6\\\n\n1d4\\\n\n1d8");
}

TEST_F(ExproterTest, TwoImportedFilesJoinWithNoDelimiterBetweenThem) {
    request("3d6");
    importFiles({{"/home/person/in/a.txt", "1d4+"}, {"/home/person/in/b.txt", "1"}});
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 ", "1d4+1 "}));
}

TEST_F(ExproterTest, AnEmptyFileFindsNoExpressions) {
    importFiles({{"/home/person/in/empty.txt", ""}});
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "No expressions were found in the list");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression}));
}

TEST_F(ExproterTest, AnUnreadableFileStopsTheImport) {
    files.createDirectories("/home/person/in");
    files.writeTextAtomically("/home/person/in/locked.txt", "1d6");
    files.unreadable.insert("/home/person/in/locked.txt");
    dialogs.openAnswer = {"/home/person/in/locked.txt"};
    controller->importList();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "There was an error opening the list.");
    EXPECT_EQ(alerts.asked[0].informativeText, "");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression}));
}

TEST_F(ExproterTest, ACancelledImportChangesNothing) {
    controller->importList();
    EXPECT_TRUE(alerts.asked.empty());
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression}));
}

TEST_F(ExproterTest, NonAsciiExpressionsComeBackThroughExportAndImport) {
    const std::vector<std::string> expressions{"D\xc3\xa9g\xc3\xa2ts: 2d6",  // Dégâts
                                               "\xc3\xbc\xc2\xb1: 1d6-1",    // ü±
                                               "Etc\xe2\x80\xa6: 3d6"};      // Etc…
    for (const std::string& text : expressions) {
        request(text);
    }
    const std::string bytes = exportedText();
    controller->lists().setEditorText("");
    controller->lists().loadExpressions();
    importFiles({{"/home/person/in/back.txt", bytes}});
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, expressions[2] + " ",
                                                 expressions[1] + " ", expressions[0] + " "}));
}

TEST_F(ExproterTest, ExportingTheLogWritesAPackageWhereChosen) {
    window->setChecked(CheckBox::log, true);
    request("3d6");
    dialogs.saveAnswer = "/home/person/2026-11-15 Talvex Log.rtfd";
    files.createDirectories("/home/person");
    controller->exportLogAs();
    ASSERT_EQ(dialogs.saveRequests.size(), 1U);
    EXPECT_EQ(dialogs.saveRequests[0].title, "Export Log");
    EXPECT_EQ(dialogs.saveRequests[0].message, "The log will be saved as an RTFD file.");
    EXPECT_EQ(dialogs.saveRequests[0].proposedName, "2026-11-15 Talvex Log");
    EXPECT_EQ(dialogs.saveRequests[0].requiredType, "rtfd");
    EXPECT_EQ(readRtfd(files, *dialogs.saveAnswer), controller->log().text());
}

TEST_F(ExproterTest, AFailedLogExportSaysSo) {
    dialogs.saveAnswer = "/nowhere/log.rtfd";
    files.files["/nowhere"] = "a file in the way";
    controller->exportLogAs();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "There was an error saving the log.");
}

struct PrintCase {
    const char* tab;
    TextField first;
    TextField second;
};

class ProfilePrintTest : public ControllerTest, public ::testing::WithParamInterface<PrintCase> {};

TEST_P(ProfilePrintTest, TheSelectedTabChoosesTheTwoDisplayFields) {
    request("3d6 vs 2d10");
    window->setFieldAttributedText(GetParam().first, core::StyledText("first field"));
    window->setFieldAttributedText(GetParam().second, core::StyledText("second field"));
    window->selectTab(GetParam().tab);
    controller->profilePrint();
    ASSERT_EQ(printer.pages.size(), 1U);
    const PrintPage& page = printer.pages[0];
    EXPECT_EQ(page.display1.string(), "first field");
    EXPECT_EQ(page.display2.string(), "second field");
    EXPECT_EQ(page.expression.string(), field(TextField::expression));
    EXPECT_EQ(page.statistics.string(), field(TextField::statistics));
    EXPECT_EQ(page.compareStatistics.string(), field(TextField::compareStatistics));
    EXPECT_EQ(page.roll.string(), field(TextField::roll));
}

INSTANTIATE_TEST_SUITE_P(
    Tabs, ProfilePrintTest,
    ::testing::Values(PrintCase{"Profile", TextField::table, TextField::diagram},
                      PrintCase{"Tables", TextField::tableCompare1, TextField::tableCompare2},
                      PrintCase{"Diagrams", TextField::diagramCompare1, TextField::diagramCompare2},
                      PrintCase{"Versus", TextField::versus, TextField::versusLegend},
                      PrintCase{"Versus with Tie", TextField::versusWithTie,
                                TextField::versusWithTieLegend}));

TEST_F(ControllerTest, PrintingOnAnUnknownTabKeepsTheLastDisplayFields) {
    request("3d6");
    window->selectTab("Profile");
    controller->profilePrint();
    window->setFieldAttributedText(TextField::table, core::StyledText("changed"));
    window->selectTab("Somewhere else");
    controller->profilePrint();
    ASSERT_EQ(printer.pages.size(), 2U);
    EXPECT_EQ(printer.pages[1].display1, printer.pages[0].display1);
    EXPECT_NE(printer.pages[1].display1.string(), "changed");
}

}  // namespace
}  // namespace talvex::app::testing
