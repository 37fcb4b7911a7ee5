// Lists, the log, import and export and printing, driven through the real window and its
// dialogues.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include "gui/log_window.h"
#include "gui_fixture.h"

namespace talvex::gui::testing {
namespace {

class ListsAndLogTest : public GuiTest {
  protected:
    void SetUp() override { start(); }

    [[nodiscard]] QString listsFolder() const {
        return m_home.supportFolder() + QStringLiteral("/Expression Lists");
    }
    // The list menu is built as it opens; so are the actions the tests trigger.
    void triggerListMenuItem(const char* actionName) {
        static_cast<void>(window().listMenuTitles());
        trigger(actionName);
    }
    [[nodiscard]] QString logShown() {
        trigger("showLogAction");
        auto* field = window().logWindow().findChild<QTextEdit*>(QStringLiteral("logField"));
        return field == nullptr ? QString() : field->toPlainText();
    }
    void saveListAs(const QString& name) {
        const auto answered = answerNextDialog("saveAsPanel", [name](QWidget& panel) {
            panel.findChild<QLineEdit*>(QStringLiteral("saveAsNameField"))->setText(name);
            panel.findChild<QPushButton*>(QStringLiteral("saveButton"))->click();
        });
        choose("expressionListPop", QStringLiteral("Save As..."));
        EXPECT_TRUE(*answered);
    }
    // Types the path into the dialogue's name field and accepts, as a person would. (selectFile
    // leaves the field alone while it has the focus.)
    static void chooseFile(QFileDialog& dialog, const QString& path) {
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(path);
        static_cast<QDialog&>(dialog).accept();
        EXPECT_FALSE(dialog.isVisible());
    }
    static void click(QWidget& dialog, const char* buttonName) {
        auto* button = dialog.findChild<QPushButton*>(QString::fromLatin1(buttonName));
        ASSERT_NE(button, nullptr) << buttonName;
        button->click();
    }
};

TEST_F(ListsAndLogTest, AListAndTheLogOfThreeCalculationsAndFiveRollsSurviveARestart) {
    request(QStringLiteral("2d4+1"));
    request(QStringLiteral("3d8"));
    request(QStringLiteral("1d12"));
    for (int roll = 2; roll <= 5; ++roll) {
        GuiTest::click("rollButton");
    }
    saveListAs(QStringLiteral("Keepers"));
    EXPECT_EQ(selected("expressionListPop"), QStringLiteral("Keepers"));
    EXPECT_TRUE(QFile::exists(listsFolder() + QStringLiteral("/Keepers.txt")));
    const QString logBefore = logShown();

    restart();
    EXPECT_TRUE(QFile::exists(m_home.supportFolder() + QStringLiteral("/log.rtfd/TXT.rtf")));
    EXPECT_TRUE(titles("expressionListPop").contains(QStringLiteral("Keepers")));
    const QString log = logShown();
    EXPECT_EQ(log, logBefore);
    // Newest first: the 1d12 entry with its five rolls, then 3d8, then 2d4+1.
    const qsizetype d12 = log.indexOf(QStringLiteral("\n1d12\n"));
    const qsizetype d8 = log.indexOf(QStringLiteral("\n3d8\n"));
    const qsizetype d4 = log.indexOf(QStringLiteral("\n2d4+1\n"));
    ASSERT_GE(d12, 0);
    EXPECT_LT(d12, d8);
    EXPECT_LT(d8, d4);
    const QString entry = log.mid(d12, log.indexOf(QStringLiteral("\t\t\n"), d12) - d12);
    const QStringList lines = entry.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_EQ(lines.last().split(QStringLiteral(", ")).size(), 5) << lines.last().toStdString();

    choose("expressionListPop", QStringLiteral("Keepers"));
    const QStringList kept = titles("expressionPop");
    EXPECT_TRUE(kept.contains(QStringLiteral("1d12 ")));
    EXPECT_TRUE(kept.contains(QStringLiteral("2d4+1 ")));
}

TEST_F(ListsAndLogTest, ClosingTheWindowWithUnsavedChangesAsksAndCancelKeepsItOpen) {
    request(QStringLiteral("1d6+1"));
    const auto answered = answerNextAlertBox([](QMessageBox& box) {
        EXPECT_EQ(box.text(),
                  QStringLiteral("Would you like to save changes to Sample Expressions?"));
        box.findChild<QPushButton*>(QStringLiteral("otherButton"))->click();
    });
    window().close();
    EXPECT_TRUE(*answered);
    EXPECT_TRUE(window().isVisible());
    EXPECT_FALSE(desktop().terminationRequested());
    // No: the application ends without saving.
    const auto answeredNo = answerNextAlertBox([](QMessageBox& box) {
        box.findChild<QPushButton*>(QStringLiteral("alternateButton"))->click();
    });
    trigger("quitAction");
    EXPECT_TRUE(*answeredNo);
    EXPECT_TRUE(desktop().terminationRequested());
    QFile sample(listsFolder() + QStringLiteral("/Sample Expressions.txt"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    EXPECT_FALSE(sample.readAll().contains("1d6+1"));
    desktop().finish();
    m_app.reset();
}

TEST_F(ListsAndLogTest, TheEditorsTextBecomesThePopUpsContent) {
    const auto answered = answerNextDialog("expressionsPanel", [](QWidget& panel) {
        panel.findChild<QPlainTextEdit*>(QStringLiteral("loadExpressionsField"))
            ->setPlainText(QStringLiteral("1d4\\\n\n1d6\\\n\n1d4"));
        click(panel, "loadButton");
    });
    triggerListMenuItem("editExpressionsAction");
    EXPECT_TRUE(*answered);
    EXPECT_EQ(titles("expressionPop"),
              (QStringList{QString::fromLatin1(app::kSelectExpression), "1d4  ", "1d6 ", "1d4 "}));
}

TEST_F(ListsAndLogTest, TheListsFolderPanelChangesToAnotherFolder) {
    const QString other = m_home.path() + QStringLiteral("/my lists");
    QDir().mkpath(other + QStringLiteral("/old"));
    QFile list(other + QStringLiteral("/old/Foes.txt"));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write("1d8\\\n\n2d4");
    list.close();
    const auto answered = answerNextDialog("listsFolderPanel", [other](QWidget& panel) {
        auto* current = panel.findChild<QLineEdit*>(QStringLiteral("currentFolderField"));
        EXPECT_TRUE(current->text().endsWith(QStringLiteral("Expression Lists")));
        auto* chosen = panel.findChild<QLineEdit*>(QStringLiteral("newFolderField"));
        click(panel, "changeButton");
        EXPECT_EQ(chosen->text(), QStringLiteral("Enter a directory"));
        chosen->setText(other);
        click(panel, "changeButton");
    });
    triggerListMenuItem("listsFolderAction");
    EXPECT_TRUE(*answered);
    // The first run also puts the sample list into the new folder.
    const QStringList lists = titles("expressionListPop");
    ASSERT_GE(lists.size(), 3);
    EXPECT_EQ(lists.mid(0, 3), (QStringList{QString::fromLatin1(app::kSelectExpressionList), "Foes",
                                            "Sample Expressions"}));
    choose("compareListPop", QStringLiteral("Foes"));
    EXPECT_EQ(titles("comparePop"),
              (QStringList{QString::fromLatin1(app::kSelectComparison), "1d8 ", "2d4 "}));
}

TEST_F(ListsAndLogTest, ExportedListsAreMacOsRomanAndImportBackWhole) {
    restart();
    const QString typed = QStringLiteral("D\u00e9g\u00e2ts \u00b1: 2d6");
    expressionField()->setText(typed);
    GuiTest::click("rollButton");
    const QString exported = m_home.path() + QStringLiteral("/exported.txt");
    const auto saved = answerNextDialog("fileDialog", [exported](QWidget& dialog) {
        auto& files = static_cast<QFileDialog&>(dialog);
        EXPECT_EQ(files.windowTitle(), QStringLiteral("Export List"));
        chooseFile(files, exported);
    });
    trigger("exportListAction");
    EXPECT_TRUE(*saved);
    QFile file(exported);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    // Mac OS Roman: é 0x8E, â 0x89, ± 0xB1.
    EXPECT_EQ(file.readAll(), QByteArray("D\x8eg\x89ts \xb1: 2d6 "));
    file.close();

    const auto deleted = answerNextAlertBox([](QMessageBox& box) {
        EXPECT_EQ(box.text(),
                  QStringLiteral("Are you sure you want to delete your entered expressions?"));
        box.findChild<QPushButton*>(QStringLiteral("defaultButton"))->click();
    });
    choose("expressionListPop", QStringLiteral("Delete"));
    EXPECT_TRUE(*deleted);
    EXPECT_EQ(titles("expressionPop"), (QStringList{QString::fromLatin1(app::kSelectExpression)}));
    const auto opened = answerNextDialog("fileDialog", [exported](QWidget& dialog) {
        auto& files = static_cast<QFileDialog&>(dialog);
        EXPECT_EQ(files.windowTitle(), QStringLiteral("Import Expression List"));
        chooseFile(files, exported);
    });
    trigger("importListAction");
    EXPECT_TRUE(*opened);
    EXPECT_EQ(titles("expressionPop"),
              (QStringList{QString::fromLatin1(app::kSelectExpression), typed + " "}));
}

TEST_F(ListsAndLogTest, TheLogWindowShowsEachRequestAndClearEmptiesIt) {
    request(QStringLiteral("4d4"));
    EXPECT_TRUE(logShown().contains(QStringLiteral("\n4d4\n")));
    click(window().logWindow(), "clearLogButton");
    EXPECT_EQ(logShown(), QString());
}

TEST_F(ListsAndLogTest, CancellingThePrintDialogueLeavesTheWindowAsItWas) {
    request(QStringLiteral("3d6"));
    const QString before = shown("statisticsField");
    const auto answered = answerNextDialog(
        "printDialog", [](QWidget& dialog) { static_cast<QDialog&>(dialog).reject(); });
    trigger("printAction");
    EXPECT_TRUE(*answered);
    EXPECT_EQ(shown("statisticsField"), before);
}

}  // namespace
}  // namespace talvex::gui::testing
