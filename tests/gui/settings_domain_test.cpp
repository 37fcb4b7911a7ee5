#include "gui/settings_domain.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "gui/registration_defaults.h"
#include "gui_fixture.h"

namespace talvex::gui {
namespace {

using app::DefaultValue;
using testing::TemporaryHome;

TEST(SettingsDomainTest, EachValueReadsBackAsTheKindItWasWrittenAfterARestart) {
    TemporaryHome home;
    {
        SettingsDomain domain;
        domain.setValue("didCrash", true);
        domain.setValue("logLength", 42LL);
        domain.setValue("version", std::string("0.1.0"));
        // Texts that look like flags or numbers stay texts.
        domain.setValue("looksLikeAFlag", std::string("true"));
        domain.setValue("looksLikeANumber", std::string("12"));
        domain.setValue("prefs", std::string("Talvex Preferences\n\nheight=300\n"));
        EXPECT_TRUE(domain.flush());
    }
    // Qt keeps what it read of a file for the whole process; a copy under another home is a
    // file it has never seen, so this reads what is on disk.
    TemporaryHome other;
    ASSERT_TRUE(QDir().mkpath(QFileInfo(other.settingsFile()).path()));
    ASSERT_TRUE(QFile::copy(home.settingsFile(), other.settingsFile()));
    SettingsDomain reread;
    EXPECT_EQ(reread.value("didCrash"), DefaultValue(true));
    EXPECT_EQ(reread.value("logLength"), DefaultValue(42LL));
    EXPECT_EQ(reread.value("version"), DefaultValue(std::string("0.1.0")));
    EXPECT_EQ(reread.value("looksLikeAFlag"), DefaultValue(std::string("true")));
    EXPECT_EQ(reread.value("looksLikeANumber"), DefaultValue(std::string("12")));
    EXPECT_EQ(reread.value("prefs"),
              DefaultValue(std::string("Talvex Preferences\n\nheight=300\n")));
    EXPECT_EQ(reread.value("missing"), std::nullopt);
    EXPECT_EQ(reread.fileName(), other.settingsFile());
}

TEST(SettingsDomainTest, TheOrganisationsFileIsNotRead) {
    TemporaryHome home;
    {
        QSettings organisation(QStringLiteral("Corvessa"));
        organisation.setValue(QStringLiteral("flags/didCrash"), true);
        organisation.sync();
        ASSERT_EQ(organisation.status(), QSettings::NoError);
    }
    SettingsDomain domain;
    // A factory reset could not remove what came from there.
    EXPECT_EQ(domain.value("didCrash"), std::nullopt);
}

TEST(SettingsDomainTest, ANewKindReplacesTheOldOne) {
    TemporaryHome home;
    SettingsDomain domain;
    domain.setValue("key", 7LL);
    domain.setValue("key", false);
    EXPECT_EQ(domain.value("key"), DefaultValue(false));
    domain.setValue("key", std::string("text"));
    EXPECT_EQ(domain.value("key"), DefaultValue(std::string("text")));
}

TEST(SettingsDomainTest, RemoveAllEmptiesTheFile) {
    TemporaryHome home;
    SettingsDomain domain;
    domain.setValue("didCrash", true);
    ASSERT_TRUE(domain.flush());
    domain.removeAll();
    ASSERT_TRUE(domain.flush());
    EXPECT_EQ(domain.value("didCrash"), std::nullopt);
    QSettings file(home.settingsFile(), QSettings::IniFormat);
    EXPECT_TRUE(file.allKeys().isEmpty());
}

TEST(RegistrationDefaultsTest, TheShippedResourceGivesTheInitialValues) {
    const auto defaults = readRegistrationDefaults();
    ASSERT_TRUE(defaults.has_value());
    EXPECT_EQ(defaults->at("runningCalculation"), DefaultValue(false));
    EXPECT_EQ(defaults->at("didCrash"), DefaultValue(false));
    EXPECT_EQ(defaults->at("logLength"), DefaultValue(0LL));
}

TEST(RegistrationDefaultsTest, FlagsNumbersAndTextsAreReadAndTheRestSkipped) {
    const auto values = parseRegistrationDefaults(
        R"({"flag": true, "number": 3, "text": "x", "fraction": 0.5, "list": [1]})");
    ASSERT_TRUE(values.has_value());
    EXPECT_EQ(values->size(), 3U);
    EXPECT_EQ(values->at("number"), DefaultValue(3LL));
    EXPECT_EQ(values->at("text"), DefaultValue(std::string("x")));
}

TEST(RegistrationDefaultsTest, AnUnreadableResourceGivesNothing) {
    EXPECT_EQ(parseRegistrationDefaults("not json"), std::nullopt);
    EXPECT_EQ(readRegistrationDefaults(QStringLiteral(":/missing.json")), std::nullopt);
}

}  // namespace
}  // namespace talvex::gui
