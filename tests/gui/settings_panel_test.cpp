// The settings panel through its real dialog: showing, saving, cancelling, defaults, problems.

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "gui/settings_dialog.h"
#include "gui_fixture.h"

namespace talvex::gui::testing {
namespace {

using app::PanelCheckBox;
using app::PanelField;
using app::PanelMatrix;

class SettingsPanelTest : public GuiTest {
  protected:
    void SetUp() override { start(); }

    [[nodiscard]] SettingsDialog& dialog() { return desktop().settingsDialog(); }
    [[nodiscard]] QLineEdit* field(PanelField which) { return dialog().field(which); }

    void openSettings() {
        trigger("settingsAction");
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog()));
    }
    void retype(PanelField which, const QString& text) {
        QLineEdit* edit = field(which);
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    void press(const char* buttonName) {
        auto* button = dialog().findChild<QPushButton*>(QString::fromLatin1(buttonName));
        ASSERT_NE(button, nullptr) << buttonName;
        QTest::mouseClick(button, Qt::LeftButton);
    }
};

TEST_F(SettingsPanelTest, TheSettingsCommandShowsTheSettingsInForce) {
    openSettings();
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_EQ(field(PanelField::dividers)->text(), QStringLiteral("25,50,75"));
    EXPECT_EQ(field(PanelField::height)->text(), QStringLiteral("300"));
    EXPECT_EQ(field(PanelField::diagramHeight)->text(), QStringLiteral("20"));
    EXPECT_EQ(field(PanelField::maxBar)->text(), QStringLiteral("10"));
    EXPECT_EQ(field(PanelField::logSize)->text(), QStringLiteral("100"));
    EXPECT_TRUE(dialog().row(PanelMatrix::bars, 0)->isChecked());
    EXPECT_TRUE(dialog().row(PanelMatrix::intervalWeights, 0)->isChecked());
    EXPECT_TRUE(dialog().checkBox(PanelCheckBox::displaySameBar)->isChecked());
    EXPECT_FALSE(dialog().checkBox(PanelCheckBox::logDiagram)->isChecked());
    EXPECT_TRUE(dialog().checkBox(PanelCheckBox::logRolls)->isChecked());
}

TEST_F(SettingsPanelTest, SaveClosesThePanelAndTheDisplaysFollowAtOnceAtTheNextRequest) {
    request(QStringLiteral("3d6"));
    const QString before = shown("statisticsField");
    openSettings();
    retype(PanelField::statisticPrecision, QStringLiteral("4"));
    press("saveButton");
    EXPECT_FALSE(dialog().isVisible());
    // The same expression again is redisplayed with the new precision.
    request(QStringLiteral("3d6"));
    EXPECT_NE(shown("statisticsField"), before);
    EXPECT_TRUE(shown("statisticsField").contains(QStringLiteral("2.958")))
        << shown("statisticsField").toStdString();
}

TEST_F(SettingsPanelTest, SavedSettingsSurviveARestart) {
    openSettings();
    retype(PanelField::maxBar, QStringLiteral("25"));
    dialog().row(PanelMatrix::bars, 1)->click();
    press("saveButton");
    restart();
    openSettings();
    EXPECT_EQ(field(PanelField::maxBar)->text(), QStringLiteral("25"));
    EXPECT_TRUE(dialog().row(PanelMatrix::bars, 1)->isChecked());
    // They are kept as one text of option lines.
    const std::string stored = desktop().defaults().stringForKey("prefs").value_or("");
    EXPECT_EQ(stored.rfind("Talvex Preferences\n\n", 0), 0U) << stored;
    EXPECT_NE(stored.find("maxBar=25\n"), std::string::npos) << stored;
    // And on disk, not only in what this process remembers of the file.
    QFile file(m_home.settingsFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("maxBar=25"));
}

TEST_F(SettingsPanelTest, CancelTakesNothingAndTheNextShowingHasTheSettingsInForce) {
    openSettings();
    retype(PanelField::height, QStringLiteral("7"));
    press("cancelButton");
    EXPECT_FALSE(dialog().isVisible());
    openSettings();
    EXPECT_EQ(field(PanelField::height)->text(), QStringLiteral("300"));
}

TEST_F(SettingsPanelTest, EscapeIsACancel) {
    openSettings();
    retype(PanelField::height, QStringLiteral("7"));
    QTest::keyClick(&dialog(), Qt::Key_Escape);
    EXPECT_FALSE(dialog().isVisible());
    openSettings();
    EXPECT_EQ(field(PanelField::height)->text(), QStringLiteral("300"));
}

TEST_F(SettingsPanelTest, DefaultsFillThePanelButTakeNothingUntilSave) {
    openSettings();
    retype(PanelField::weightPrecision, QStringLiteral("5"));
    press("saveButton");
    openSettings();
    EXPECT_EQ(field(PanelField::weightPrecision)->text(), QStringLiteral("5"));
    press("defaultsButton");
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_EQ(field(PanelField::weightPrecision)->text(), QStringLiteral("2"));
    press("cancelButton");
    openSettings();
    EXPECT_EQ(field(PanelField::weightPrecision)->text(), QStringLiteral("5"));
}

TEST_F(SettingsPanelTest, AnEntryOutOfRangeIsRepairedWhenSaved) {
    openSettings();
    retype(PanelField::height, QStringLiteral("abc"));
    press("saveButton");
    openSettings();
    // Not a number reads as nothing, which the repair takes up to the least height.
    EXPECT_NE(field(PanelField::height)->text(), QStringLiteral("abc"));
    bool isNumber = false;
    static_cast<void>(field(PanelField::height)->text().toInt(&isNumber));
    EXPECT_TRUE(isNumber);
}

TEST_F(SettingsPanelTest, ARepeatingDividerListKeepsThePanelOpenAndSaysWhy) {
    openSettings();
    retype(PanelField::dividers, QStringLiteral("50,50"));
    press("saveButton");
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_TRUE(dialog().problemLabel()->isVisible());
    EXPECT_FALSE(dialog().problemLabel()->text().isEmpty());
    // A good list then saves, and the problem is gone the next time.
    retype(PanelField::dividers, QStringLiteral("10,90"));
    press("saveButton");
    EXPECT_FALSE(dialog().isVisible());
    openSettings();
    EXPECT_FALSE(dialog().problemLabel()->isVisible());
    EXPECT_EQ(field(PanelField::dividers)->text(), QStringLiteral("10,90"));
}

}  // namespace
}  // namespace talvex::gui::testing
