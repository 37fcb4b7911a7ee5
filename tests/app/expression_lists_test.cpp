#include "app/controller/expression_lists.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "controller_fixture.h"

namespace talvex::app::testing {
namespace {

using Titles = std::vector<std::string>;

TEST(SplitExpressionList, DropsLineBreaksAtTheEndsAndEmptyPieces) {
    EXPECT_EQ(splitExpressionList("3d6\\\n\n\n2d10\\\\4d4\n"), (Titles{"3d6", "2d10", "4d4"}));
}

TEST(SplitExpressionList, KeepsBlanksAndInnerLineBreaks) {
    EXPECT_EQ(splitExpressionList(" 1d6 \\\r\n2d6\n+1\r\n"), (Titles{" 1d6 ", "2d6\n+1"}));
    EXPECT_TRUE(splitExpressionList("").empty());
    EXPECT_TRUE(splitExpressionList("\\\n\\\r\n\\").empty());
}

TEST(ValidateListName, RejectsBracketsAndColons) {
    EXPECT_TRUE(ExpressionLists::validateListName("Dice old"));
    EXPECT_TRUE(ExpressionLists::validateListName(""));
    EXPECT_FALSE(ExpressionLists::validateListName("Dice [old]"));
    EXPECT_FALSE(ExpressionLists::validateListName("a:b"));
    EXPECT_FALSE(ExpressionLists::validateListName("x]"));
}

class ListsTest : public ControllerTest {
  protected:
    [[nodiscard]] std::string folder() const { return controller->state().listsFolderPath; }
    [[nodiscard]] std::string path(const std::string& name) const {
        return folder() + "/" + name + ".txt";
    }
    // Writes list files and starts again, as a person who put files into the folder would.
    void relaunchWith(const std::vector<std::pair<std::string, std::string>>& lists) {
        for (const auto& [name, text] : lists) {
            const std::string file = folder() + "/" + name + ".txt";
            files.createDirectories(file.substr(0, file.rfind('/')));
            ASSERT_TRUE(files.writeTextAtomically(file, text));
        }
        controller->applicationWillTerminate();
        alerts.asked.clear();
        relaunch();
    }
    void chooseList(const std::string& name) {
        window->selectPopUpTitle(PopUp::expressionList, name);
        controller->expressionListSelect();
    }
    void chooseCompareList(const std::string& name) {
        window->selectPopUpTitle(PopUp::compareList, name);
        controller->compareListSelect();
    }
    [[nodiscard]] ExpressionLists& lists() { return controller->lists(); }
    static AlertAnswer press(AlertButton button) { return AlertAnswer{button, false}; }
};

TEST_F(ListsTest, ListsLoadFromTheFolderAndItsSubfolders) {
    relaunchWith({{"Dice", "3d6\\\n\n2d10"}, {"old/Attacks", "1d20+5"}});
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Attacks", "Dice"}));
    EXPECT_EQ(titles(PopUp::compareList), (Titles{kSelectComparisonList, "Attacks", "Dice"}));
    EXPECT_EQ(lists().expressionLists().at("Attacks"), "1d20+5");
    EXPECT_EQ(lists().expressionLists().at(""), "");
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(ListsTest, OnlyFilesEndingInTxtAreLists) {
    relaunchWith({{"Dice", "3d6"}});
    files.writeTextAtomically(folder() + "/notes.md", "x");
    files.writeTextAtomically(folder() + "/.Dice.txt.partial-12", "half");
    files.writeTextAtomically(folder() + "/txt", "x");
    relaunch();
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Dice"}));
}

TEST_F(ListsTest, NamesWithBracketsOrColonsAreRejectedAndNamedInTheParsingAlert) {
    relaunchWith({{"Dice [old]", "3d6"}, {"a:b", "2d6"}, {"Good", "1d6"}});
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Good"}));
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "List Parsing Error");
    EXPECT_EQ(alerts.asked[0].informativeText,
              "The following lists could not be loaded due to their names or contents:\n"
              "Dice [old],   a:b");
    EXPECT_EQ(alerts.asked[0].defaultButton, "OK");
    EXPECT_EQ(alerts.asked[0].alternateButton, "");
}

TEST_F(ListsTest, AnUnreadableFileOfAValidNameIsLeftOutWithoutAWord) {
    relaunchWith({{"Dice", "3d6"}, {"Locked", "2d6"}});
    files.unreadable.insert(path("Locked"));
    relaunchWith({});
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Dice"}));
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(ListsTest, AFileThatIsNoUtf8TextIsNamedInTheParsingAlert) {
    relaunchWith({{"Latin", "1d6 \xe9t\xe9"}});
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList}));
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_TRUE(alerts.asked[0].informativeText.ends_with("\nLatin"));
}

TEST_F(ListsTest, AListsFolderThatCannotBeMadeShowsTheListErrorPanel) {
    files.files[std::string(kSupportFolder) + "/Blocked"] = "a file, not a folder";
    panel->setText(PanelField::dividers, "");
    controller->state().listsFolderPath = std::string(kSupportFolder) + "/Blocked/Lists";
    lists().loadExpressionLists();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, kListErrorMessage);
    EXPECT_EQ(lists().expressionLists().size(), 1U);
}

TEST_F(ListsTest, ListNamesSortCaseSensitively) {
    relaunchWith({{"alpha", "1d6"}, {"Zeta", "2d6"}, {"Beta", "3d6"}});
    EXPECT_EQ(titles(PopUp::expressionList),
              (Titles{kSelectExpressionList, "Beta", "Zeta", "alpha"}));
}

TEST_F(ListsTest, ChoosingAListFillsTheExpressionPopUpInFileOrder) {
    relaunchWith({{"Dice", "3d6\\\n\n2d10\\\n\n4d4"}});
    chooseList("Dice");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 ", "2d10 ", "4d4 "}));
    EXPECT_EQ(selected(PopUp::expression), kSelectExpression);
    EXPECT_EQ(selected(PopUp::expressionList), "Dice");
    EXPECT_EQ(lists().expressionList(), "Dice");
    EXPECT_EQ(controller->state().expression->rawString(), "");
    EXPECT_TRUE(controller->history().entries().empty());
}

TEST_F(ListsTest, AListHoldingOneExpressionTwiceShowsTwoDistinctTitles) {
    relaunchWith({{"Twice", "3d6\\\n\n3d6"}});
    chooseList("Twice");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6  ", "3d6 "}));
}

TEST_F(ListsTest, ChoosingTheSecondOfTwoEqualTitlesCalculatesIt) {
    relaunchWith({{"Twice", "3d6\\\n\n3d6"}});
    chooseList("Twice");
    window->selectPopUpIndex(PopUp::expression, 2);
    controller->expressionSelect();
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
    EXPECT_NE(field(TextField::statistics).find("10.5"), std::string::npos);
}

TEST_F(ListsTest, TypingThenChoosingAnotherListAsksToSaveTheCurrentOne) {
    relaunchWith({{"Dice", "3d6"}, {"Other", "1d6"}});
    chooseList("Dice");
    request("2d8");
    alerts.answers.push_back(press(AlertButton::alternateButton));  // No
    chooseList("Other");
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "Would you like to save changes to Dice?");
    EXPECT_EQ(alerts.asked[0].defaultButton, "Yes");
    EXPECT_EQ(alerts.asked[0].alternateButton, "No");
    EXPECT_EQ(alerts.asked[0].otherButton, "Cancel");
    EXPECT_EQ(lists().expressionList(), "Other");
    EXPECT_EQ(files.readText(path("Dice")), "3d6");
}

TEST_F(ListsTest, YesToSavingChangesWritesTheListInItsCanonicalLayout) {
    relaunchWith({{"Dice", "3d6"}, {"Other", "1d6"}});
    chooseList("Dice");
    request("2d8");
    alerts.answers.push_back(press(AlertButton::defaultButton));
    chooseList("Other");
    EXPECT_EQ(files.readText(path("Dice")), "2d8\\\n\n3d6");
    EXPECT_EQ(lists().expressionList(), "Other");
}

TEST_F(ListsTest, CancelToSavingChangesStaysOnTheCurrentList) {
    relaunchWith({{"Dice", "3d6"}, {"Other", "1d6"}});
    chooseList("Dice");
    request("2d8");
    alerts.answers.push_back(press(AlertButton::otherButton));
    chooseList("Other");
    EXPECT_EQ(lists().expressionList(), "Dice");
    EXPECT_EQ(selected(PopUp::expressionList), "Dice");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "2d8 ", "3d6 "}));
}

TEST_F(ListsTest, WithoutACurrentListTheQuestionOffersToSaveAsAList) {
    relaunchWith({{"Other", "1d6"}});
    request("2d8");
    alerts.answers.push_back(press(AlertButton::alternateButton));
    chooseList("Other");
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message,
              "Would you like to save your current expressions as a list?");
}

TEST_F(ListsTest, AHandWrittenLayoutCountsAsChangedAndSavingMakesItCanonical) {
    relaunchWith({{"Hand", "3d6\\2d10\n"}, {"Other", "1d6"}});
    chooseList("Hand");
    alerts.answers.push_back(press(AlertButton::defaultButton));
    chooseList("Other");
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "Would you like to save changes to Hand?");
    EXPECT_EQ(files.readText(path("Hand")), "3d6\\\n\n2d10");
}

TEST_F(ListsTest, ACanonicalListLeftUnchangedAsksNothing) {
    relaunchWith({{"Dice", "3d6\\\n\n2d10"}, {"Other", "1d6"}});
    chooseList("Dice");
    chooseList("Other");
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(ListsTest, SaveWritesTheEditorsTextUnderTheCurrentName) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    controller->expressionListSave();
    EXPECT_EQ(files.readText(path("Dice")), "1d4\\\n\n3d6");
    EXPECT_EQ(lists().expressionLists().at("Dice"), "1d4\\\n\n3d6");
}

TEST_F(ListsTest, AFailedSaveShowsTheWriteErrorPanel) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    files.readOnlyFolders.insert(folder());
    controller->expressionListSave();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, kWriteErrorMessage);
    EXPECT_EQ(files.readText(path("Dice")), "3d6");
}

TEST_F(ListsTest, SaveWithoutACurrentListOpensSaveAs) {
    request("3d6");
    listPanels.saveAs.push_back([](SaveAsFields& fields, int) {
        fields.name = "Mine";
        return true;
    });
    controller->expressionListSave();
    EXPECT_EQ(files.readText(path("Mine")), "3d6");
    EXPECT_EQ(lists().expressionList(), "Mine");
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Mine"}));
    EXPECT_EQ(selected(PopUp::expressionList), "Mine");
}

TEST_F(ListsTest, SaveAsShowsTheCurrentNameAndTheEditorsText) {
    relaunchWith({{"Dice", "3d6\\\n\n2d10"}});
    chooseList("Dice");
    controller->expressionListSaveAs();
    ASSERT_EQ(listPanels.saveAsShown.size(), 1U);
    EXPECT_EQ(listPanels.saveAsShown[0].name, "Dice");
    EXPECT_EQ(listPanels.saveAsShown[0].expressions, "3d6\\\n\n2d10");
}

TEST_F(ListsTest, SaveAsTakesTheTextAsEditedInThePanel) {
    request("3d6");
    listPanels.saveAs.push_back([](SaveAsFields& fields, int) {
        fields.name = "Edited";
        fields.expressions = "1d8\\\n\n1d12";
        return true;
    });
    controller->expressionListSaveAs();
    EXPECT_EQ(files.readText(path("Edited")), "1d8\\\n\n1d12");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "1d8 ", "1d12 "}));
}

TEST_F(ListsTest, SavingUnderAnExistingNameAsksAndCancelKeepsTheFileAndThePanel) {
    relaunchWith({{"Dice", "3d6"}});
    request("1d4");
    alerts.answers.push_back(press(AlertButton::otherButton));
    int attempts = 0;
    listPanels.saveAs.push_back([&](SaveAsFields& fields, int attempt) {
        attempts = attempt + 1;
        fields.name = "Dice";
        return attempt == 0;  // Save once, then Cancel the panel that stayed open.
    });
    controller->expressionListSaveAs();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message,
              "A list named Dice already exists.\nDo you want to overwrite it?");
    EXPECT_EQ(attempts, 2);
    EXPECT_EQ(files.readText(path("Dice")), "3d6");
}

TEST_F(ListsTest, SavingUnderAnExistingNameOverwritesAfterYes) {
    relaunchWith({{"Dice", "3d6"}});
    request("1d4");
    alerts.answers.push_back(press(AlertButton::defaultButton));
    listPanels.saveAs.push_back([](SaveAsFields& fields, int) {
        fields.name = "Dice";
        return true;
    });
    controller->expressionListSaveAs();
    EXPECT_EQ(files.readText(path("Dice")), "1d4");
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Dice"}));
}

TEST_F(ListsTest, AnInvalidNameIsRefusedWithAnAlertAndThePanelStaysOpen) {
    request("3d6");
    std::vector<std::string> namesSeen;
    listPanels.saveAs.push_back([&](SaveAsFields& fields, int attempt) {
        namesSeen.push_back(fields.name);
        if (attempt == 0) {
            fields.name = "Bad:name";
            return true;
        }
        if (attempt == 1) {
            fields.name = "";
            return true;
        }
        return false;
    });
    controller->expressionListSaveAs();
    ASSERT_GE(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "Invalid List Name");
    EXPECT_EQ(alerts.asked[0].informativeText,
              "The following characters are not allowed in list names:\n[]:");
    EXPECT_EQ(namesSeen, (Titles{"", "Bad:name", "Enter a name"}));
    EXPECT_FALSE(files.exists(path("Bad:name")));
    EXPECT_EQ(lists().expressionList(), "");
}

TEST_F(ListsTest, RevertPutsTheSavedTextBackAfterYes) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    controller->expressionListRevert();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message,
              "Are you sure you want to revert Dice to the last saved version?");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 "}));
}

TEST_F(ListsTest, RevertAsksNothingWithoutChangesOrWithoutAList) {
    relaunchWith({{"Dice", "3d6"}});
    request("1d4");
    controller->expressionListRevert();
    chooseList("Dice");
    alerts.asked.clear();
    controller->expressionListRevert();
    EXPECT_TRUE(alerts.asked.empty());
}

TEST_F(ListsTest, RevertNoKeepsTheEdits) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    alerts.answers.push_back(press(AlertButton::otherButton));
    controller->expressionListRevert();
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "1d4 ", "3d6 "}));
}

TEST_F(ListsTest, DeleteRemovesTheListItsFileAndItsTitles) {
    relaunchWith({{"Dice", "3d6"}, {"Keep", "1d6"}});
    chooseList("Dice");
    controller->expressionListDelete();
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "Are you sure you want to delete Dice?");
    EXPECT_FALSE(files.exists(path("Dice")));
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Keep"}));
    EXPECT_EQ(titles(PopUp::compareList), (Titles{kSelectComparisonList, "Keep"}));
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression}));
    EXPECT_EQ(lists().expressionList(), "");
}

TEST_F(ListsTest, DeletingWithoutAListClearsTheEnteredExpressions) {
    controller->expressionListDelete();
    EXPECT_TRUE(alerts.asked.empty());
    request("3d6");
    alerts.answers.push_back(press(AlertButton::otherButton));
    controller->expressionListDelete();
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 "}));
    controller->expressionListDelete();
    ASSERT_EQ(alerts.asked.size(), 2U);
    EXPECT_EQ(alerts.asked[1].message, "Are you sure you want to delete your entered expressions?");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression}));
}

TEST_F(ListsTest, DeletingAListFromASubfolderRemovesNothingAndShowsTheDeleteErrorPanel) {
    relaunchWith({{"old/Attacks", "1d20"}});
    chooseList("Attacks");
    controller->expressionListDelete();
    ASSERT_EQ(alerts.asked.size(), 2U);
    EXPECT_EQ(alerts.asked[1].message, kDeleteErrorMessage);
    EXPECT_TRUE(files.exists(folder() + "/old/Attacks.txt"));
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList}));
}

TEST_F(ListsTest, DeletingInAReadOnlyFolderShowsTheDeleteErrorPanel) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    files.readOnlyFolders.insert(folder());
    controller->expressionListDelete();
    ASSERT_EQ(alerts.asked.size(), 2U);
    EXPECT_EQ(alerts.asked[1].message, kDeleteErrorMessage);
    EXPECT_TRUE(files.exists(path("Dice")));
}

TEST_F(ListsTest, TheEditorsLoadReplacesThePopUpsContent) {
    listPanels.editor.push_back([](std::string& text) {
        EXPECT_EQ(text, "");
        text = "1d6\\\n\n2d6";
        return true;
    });
    controller->openExpressionsWithModal();
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "1d6 ", "2d6 "}));
    listPanels.editor.push_back([](std::string& text) {
        EXPECT_EQ(text, "1d6\\\n\n2d6");
        text = "junk";
        return false;
    });
    controller->listSelect(kEditExpressions);
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "1d6 ", "2d6 "}));
}

TEST_F(ListsTest, TypedExpressionsBecomePartOfTheEditorsText) {
    request("3d6");
    request("2d10  ");
    lists().openExpressions();
    EXPECT_EQ(lists().editorText(), "2d10\\\n\n3d6");
}

TEST_F(ListsTest, AddingExpressionsFromATextPutsTheDelimiterOnlyBetween) {
    lists().addExpressionsFromString("1d4");
    EXPECT_EQ(lists().editorText(), "1d4");
    lists().addExpressionsFromString("1d6\\\n\n1d8");
    EXPECT_EQ(lists().editorText(), "1d4\\\n\n1d6\\\n\n1d8");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "1d4 ", "1d6 ", "1d8 "}));
}

TEST_F(ListsTest, AComparisonListFillsTheComparisonPopUp) {
    relaunchWith({{"Dice", "3d6"}, {"Foes", "1d8\\\n\n2d4"}});
    chooseList("Dice");
    window->setChecked(CheckBox::mirror, true);
    chooseCompareList("Foes");
    EXPECT_EQ(titles(PopUp::compare), (Titles{kSelectComparison, "1d8 ", "2d4 "}));
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 "}));
    EXPECT_EQ(selected(PopUp::compareList), "Foes");
    EXPECT_EQ(lists().compareList(), "Foes");
    EXPECT_FALSE(window->isChecked(CheckBox::mirror));
    EXPECT_FALSE(window->isCheckBoxEnabled(CheckBox::cycle));
    window->selectPopUpIndex(PopUp::expression, 1);
    controller->expressionSelect();
    window->selectPopUpIndex(PopUp::compare, 2);
    controller->compareSelect();
    EXPECT_EQ(controller->state().compareExpression->rawString(), "2d4");
}

TEST_F(ListsTest, SavingTheComparisonListRefillsTheComparisonPopUp) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    chooseCompareList("Dice");
    request("1d12");
    controller->expressionListSave();
    EXPECT_EQ(titles(PopUp::compare), (Titles{kSelectComparison, "1d12 ", "3d6 "}));
}

TEST_F(ListsTest, DeletingTheComparisonListEmptiesTheComparisonPopUp) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    chooseCompareList("Dice");
    controller->expressionListDelete();
    EXPECT_EQ(lists().compareList(), "");
    EXPECT_EQ(titles(PopUp::compare), (Titles{kSelectComparison}));
    EXPECT_EQ(selected(PopUp::compareList), kSelectComparisonList);
}

TEST_F(ListsTest, MirrorCopiesTheExpressionsIntoTheComparisonPopUp) {
    relaunchWith({{"Dice", "3d6\\\n\n2d10"}, {"Foes", "1d8"}});
    chooseList("Dice");
    chooseCompareList("Foes");
    window->setChecked(CheckBox::mirror, true);
    controller->mirrorSelect();
    EXPECT_EQ(titles(PopUp::compare), (Titles{kSelectComparison, "3d6 ", "2d10 "}));
    EXPECT_EQ(lists().compareList(), "");
    EXPECT_EQ(selected(PopUp::compareList), kSelectComparisonList);
    EXPECT_TRUE(window->isCheckBoxEnabled(CheckBox::cycle));
    window->setChecked(CheckBox::mirror, false);
    controller->mirrorSelect();
    EXPECT_EQ(titles(PopUp::compare), (Titles{kSelectComparison}));
    EXPECT_FALSE(window->isCheckBoxEnabled(CheckBox::cycle));
}

TEST_F(ListsTest, UpAndDownStepThroughThePopUpAndCalculate) {
    relaunchWith({{"Dice", "1d4\\\n\n1d6\\\n\n1d8"}});
    chooseList("Dice");
    controller->expressionUp();
    EXPECT_EQ(selected(PopUp::expression), kSelectExpression);
    controller->expressionDown();
    EXPECT_EQ(selected(PopUp::expression), "1d4 ");
    EXPECT_EQ(controller->state().expression->rawString(), "1d4");
    controller->expressionUp();
    EXPECT_EQ(selected(PopUp::expression), "1d4 ");
    controller->expressionDown();
    controller->expressionDown();
    controller->expressionDown();
    EXPECT_EQ(selected(PopUp::expression), "1d8 ");
    EXPECT_EQ(controller->state().expression->rawString(), "1d8");
    controller->expressionUp();
    EXPECT_EQ(controller->state().expression->rawString(), "1d6");
}

TEST_F(ListsTest, CompareUpAndDownStepThroughTheComparisons) {
    relaunchWith({{"Dice", "3d6"}, {"Foes", "1d8\\\n\n2d4"}});
    chooseList("Dice");
    chooseCompareList("Foes");
    window->selectPopUpIndex(PopUp::expression, 1);
    controller->expressionSelect();
    controller->compareDown();
    EXPECT_EQ(controller->state().compareExpression->rawString(), "1d8");
    controller->compareDown();
    EXPECT_EQ(controller->state().compareExpression->rawString(), "2d4");
    controller->compareDown();
    EXPECT_EQ(selected(PopUp::compare), "2d4 ");
    controller->compareUp();
    EXPECT_EQ(controller->state().compareExpression->rawString(), "1d8");
}

TEST_F(ListsTest, TheFolderPanelAsksForADirectoryThenChangesToIt) {
    relaunchWith({{"Dice", "3d6"}});
    const std::string other = "/home/person/other lists";
    files.createDirectories(other);
    files.writeTextAtomically(other + "/Elsewhere.txt", "1d6");
    listPanels.folder.push_back([&](FolderFields& fields, int attempt) {
        if (attempt == 1) {
            EXPECT_EQ(fields.newFolder, "Enter a directory");
            fields.newFolder = other;
        }
        return FolderButton::change;
    });
    controller->listsFolder();
    EXPECT_EQ(folder(), other);
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Elsewhere"}));
    controller->TalvexQuit();
    controller->applicationWillTerminate();
    relaunch();
    EXPECT_EQ(folder(), other);
}

TEST_F(ListsTest, TheFolderPanelsDefaultProposesTheSupportFolder) {
    listPanels.folder.push_back([](FolderFields&, int attempt) {
        return attempt == 0 ? FolderButton::defaultFolder : FolderButton::cancel;
    });
    controller->listsFolder();
    ASSERT_EQ(listPanels.folderShown.size(), 1U);
    EXPECT_EQ(listPanels.folderShown[0].newFolder,
              std::string(kSupportFolder) + "/Expression Lists");
    EXPECT_EQ(listPanels.folderShown[0].currentFolder, folder());
}

TEST_F(ListsTest, ReloadFindsListsAddedMeanwhile) {
    relaunchWith({{"Dice", "3d6"}});
    files.writeTextAtomically(path("New"), "1d6");
    listPanels.folder.push_back([](FolderFields&, int attempt) {
        return attempt == 0 ? FolderButton::reload : FolderButton::cancel;
    });
    controller->listsFolder();
    EXPECT_EQ(titles(PopUp::expressionList), (Titles{kSelectExpressionList, "Dice", "New"}));
}

TEST_F(ListsTest, TheFolderPanelFirstOffersToSaveAndCancelStopsIt) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    alerts.answers.push_back(press(AlertButton::otherButton));
    controller->listsFolder();
    EXPECT_TRUE(listPanels.folderShown.empty());
}

TEST_F(ListsTest, QuittingWithUnsavedChangesAsksAndCancelKeepsRunning) {
    relaunchWith({{"Dice", "3d6"}});
    chooseList("Dice");
    request("1d4");
    alerts.answers.push_back(press(AlertButton::otherButton));
    EXPECT_FALSE(controller->windowShouldClose(true));
    EXPECT_EQ(shell.terminations, 0);
    ASSERT_EQ(alerts.asked.size(), 1U);
    EXPECT_EQ(alerts.asked[0].message, "Would you like to save changes to Dice?");
    alerts.answers.push_back(press(AlertButton::defaultButton));
    controller->TalvexQuit();
    EXPECT_EQ(shell.terminations, 1);
    EXPECT_EQ(files.readText(path("Dice")), "1d4\\\n\n3d6");
}

TEST_F(ListsTest, AFirstRunCopiesTheSampleListSelectsItAndCalculatesItsFirstExpression) {
    domain.values.clear();
    files.files.clear();
    sampleList = "Three dice: 3d6\\\n\nAdvantage: max(1d20,1d20)";
    relaunch();
    EXPECT_EQ(files.readText(path(kSampleListName)), sampleList);
    EXPECT_EQ(selected(PopUp::expressionList), kSampleListName);
    EXPECT_EQ(selected(PopUp::expression), "Three dice: 3d6 ");
    EXPECT_EQ(controller->state().expression->rawString(), "3d6");
    EXPECT_NE(field(TextField::statistics).find("10.5"), std::string::npos);
}

TEST_F(ListsTest, TheSampleListIsNotCopiedOverAnExistingOneNorOnLaterRuns) {
    sampleList = "1d6";
    relaunch();
    EXPECT_FALSE(files.exists(path(kSampleListName)));
    domain.values.clear();
    files.writeTextAtomically(path(kSampleListName), "mine");
    relaunch();
    EXPECT_EQ(files.readText(path(kSampleListName)), "mine");
}

TEST_F(ListsTest, ARestartKeepsTheSavedLists) {
    request("3d6");
    listPanels.saveAs.push_back([](SaveAsFields& fields, int) {
        fields.name = "Kept";
        return true;
    });
    controller->expressionListSaveAs();
    controller->TalvexQuit();
    controller->applicationWillTerminate();
    relaunch();
    chooseList("Kept");
    EXPECT_EQ(titles(PopUp::expression), (Titles{kSelectExpression, "3d6 "}));
}

}  // namespace
}  // namespace talvex::app::testing
