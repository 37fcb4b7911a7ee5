#include "core/report_options.h"

#include <gtest/gtest.h>

#include <random>

namespace talvex::core {
namespace {

Options patched(const Options& given) { return patchOptions(&given, defaultStyles()); }

TEST(ReportOptions, DefaultsHoldEveryOptionButLogSize) {
    const Options defaults = defaultOptions();
    EXPECT_EQ(defaults.size(), 63U);
    EXPECT_FALSE(defaults.contains("log size"));
    EXPECT_EQ(defaults.at("time stamp format"), "%a, %b %e, %Y,   %H:%M %Ss");
    EXPECT_EQ(defaults.at("bar string"), "|");
    EXPECT_EQ(defaults.at("dividers"), "25,50,75");
    EXPECT_EQ(defaults.at("diagram total weight"), "100");
    EXPECT_EQ(defaults.at("legend precision"), "0");
}

TEST(ReportOptions, PatchingAnEmptyDictionaryGivesTheDefaultsAndLogSize) {
    Options expected = defaultOptions();
    expected["log size"] = "100";
    EXPECT_EQ(patched({}), expected);
}

TEST(ReportOptions, PatchingNoDictionaryGivesTheDefaults) {
    EXPECT_EQ(patchOptions(nullptr, defaultStyles()), defaultOptions());
}

TEST(ReportOptions, BooleansIgnoreCase) {
    EXPECT_EQ(patched({{"statistics", "Yes"}}).at("statistics"), "yes");
    EXPECT_EQ(patched({{"values", "NO"}}).at("values"), "no");
    EXPECT_EQ(patched({{"statistics", "true"}}).at("statistics"), "no");
    EXPECT_EQ(patched({{"values", "true"}}).at("values"), "yes");
}

TEST(ReportOptions, IntegersAreClampedThenRounded) {
    EXPECT_EQ(patched({{"statistics precision", "15"}}).at("statistics precision"), "10");
    EXPECT_EQ(patched({{"statistics precision", "-3.7"}}).at("statistics precision"), "-4");
    EXPECT_EQ(patched({{"statistics precision", "two"}}).at("statistics precision"), "2");
    EXPECT_EQ(patched({{"statistics precision", "10.4"}}).at("statistics precision"), "10");
    EXPECT_EQ(patched({{"statistics precision", "2.5"}}).at("statistics precision"), "3");
    EXPECT_EQ(patched({{"log size", "250000"}}).at("log size"), "100000");
    EXPECT_EQ(patched({{"log size", "-1"}}).at("log size"), "0");
}

TEST(ReportOptions, NumbersAreClampedAndWrittenPlainly) {
    EXPECT_EQ(patched({{"table total weight", "0"}}).at("table total weight"), "0.000001");
    EXPECT_EQ(patched({{"table total weight", "007.50"}}).at("table total weight"), "7.5");
    EXPECT_EQ(patched({{"table max weight", "1e9"}}).at("table max weight"), "1000000");
}

TEST(ReportOptions, DirectionsIgnoreCase) {
    EXPECT_EQ(patched({{"diagram direction", "ASCENDING"}}).at("diagram direction"), "ascending");
    EXPECT_EQ(patched({{"table direction", "DeScEnDiNg"}}).at("table direction"), "descending");
    EXPECT_EQ(patched({{"table direction", "up"}}).at("table direction"), "descending");
}

TEST(ReportOptions, RangeAndTimeStampFormatAreNeverTakenFromTheUser) {
    const Options options = patched({{"range", "no"}, {"time stamp format", "%Y"}});
    EXPECT_EQ(options.at("range"), "yes");
    EXPECT_EQ(options.at("time stamp format"), "%a, %b %e, %Y,   %H:%M %Ss");
}

TEST(ReportOptions, StyleNamesMustExist) {
    EXPECT_EQ(patched({{"header style", "bar"}}).at("header style"), "bar");
    EXPECT_EQ(patched({{"header style", "sparkly"}}).at("header style"), "default");
    EXPECT_EQ(patched({{"footer style", "title"}}).at("footer style"), "title");
}

TEST(ReportOptions, BarString) {
    EXPECT_EQ(patched({{"bar string", ""}}).at("bar string"), "|");
    EXPECT_EQ(patched({{"bar string", "ProfileEmptyBarString"}}).at("bar string"), "");
    EXPECT_EQ(patched({{"bar string", "##"}}).at("bar string"), "##");
}

TEST(ReportOptions, HeaderAndFooterAreTakenAsTheyAre) {
    const Options options = patched({{"header", "  Attack!\n"}, {"footer", "-- end"}});
    EXPECT_EQ(options.at("header"), "  Attack!\n");
    EXPECT_EQ(options.at("footer"), "-- end");
}

TEST(ReportOptions, EmptyDividersMeanNoDividers) {
    EXPECT_EQ(patched({{"dividers", ""}}).at("dividers"), "");
}

TEST(ReportOptions, DividersAreRepairedIntoTheTotalWeight) {
    EXPECT_EQ(patched({{"dividers", "90, 10,abc,250"}}).at("dividers"), "10,90,99.9999999999");
    EXPECT_EQ(patched({{"dividers", "25,50,75"}}).at("dividers"), "25,50,75");
    EXPECT_EQ(patched({{"dividers", "0.5,3"}, {"diagram total weight", "1"}}).at("dividers"),
              "0.5,0.9999999999");
    EXPECT_EQ(patched({{"dividers", "x,y"}}).at("dividers"), "");
}

TEST(ReportOptions, RepeatedDividerWhoseValueNamesAPositionIsRemovedThere) {
    // The repeated 1 is removed at position 1, which happens to be the repeat itself.
    EXPECT_EQ(patched({{"dividers", "1,1"}}).at("dividers"), "1");
    EXPECT_EQ(patched({{"dividers", "0.5, 0.5, 60"}}).at("dividers"), "0.5,60");
}

TEST(ReportOptions, RepeatedDividerBeyondTheListAbortsTheRepair) {
    EXPECT_THROW(static_cast<void>(patched({{"dividers", "50,50"}})), DividerListError);
    try {
        static_cast<void>(patched({{"dividers", "25,75,75"}}));
        FAIL() << "no error";
    } catch (const DividerListError& error) {
        EXPECT_STREQ(error.what(), "the divider list holds the same value twice");
    }
}

TEST(ReportOptions, RepairRulesWithoutADefaultGiveTheEmptyString) {
    EXPECT_EQ(fixBoolOption("yes", std::nullopt), "");
    EXPECT_EQ(fixNumericOption("3", "0", "10", std::nullopt), "");
    EXPECT_EQ(fixIntegerOption("3", "0", "10", std::nullopt), "");
    EXPECT_EQ(fixStringOption("a", {"a"}, std::nullopt), "");
}

TEST(ReportOptions, NumericRepairOrdersItsBounds) {
    EXPECT_EQ(fixNumericOption("50", "10", "1", "5"), "10");
    EXPECT_EQ(fixNumericOption("-50", "10", "1", "5"), "1");
    EXPECT_EQ(fixNumericOption("3", std::nullopt, "1", "5"), "5");
    EXPECT_EQ(fixNumericOption(std::nullopt, "0", "1", "5"), "5");
    EXPECT_EQ(fixIntegerOption("", "0", "1", "1"), "1");
}

TEST(ReportOptions, ChoiceTakesTheAllowedSpelling) {
    EXPECT_EQ(fixStringOption("Ascending", {"ascending", "descending"}, "descending"), "ascending");
    EXPECT_EQ(fixStringOption(std::nullopt, {"a"}, "b"), "b");
}

// Whatever a user puts in the options, the repair never throws (unless the divider list
// repeats a value) and every key comes out present and well formed.
TEST(ReportOptions, RandomDictionariesAlwaysRepairToWellFormedOptions) {
    const std::vector<std::string> values = {"yes",
                                             "No",
                                             "",
                                             "abc",
                                             "-3.5",
                                             "1e3",
                                             "100",
                                             "0",
                                             "2",
                                             "ascending",
                                             "ProfileEmptyBarString",
                                             "bar",
                                             "1,2,3",
                                             "  7 ",
                                             "99999999999999999999999"};
    const Options defaults = defaultOptions();
    std::mt19937 random(99);
    for (int round = 0; round < 300; ++round) {
        Options given;
        for (const auto& [key, value] : defaults) {
            if (random() % 2 == 0) {
                given[key] = values[random() % values.size()];
            }
        }
        given.erase("dividers");
        const Options result = patched(given);
        EXPECT_EQ(result.size(), defaults.size() + 1);
        for (const auto& [key, value] : defaults) {
            ASSERT_TRUE(result.contains(key)) << key;
            if (value == "yes" || value == "no") {
                EXPECT_TRUE(result.at(key) == "yes" || result.at(key) == "no") << key;
            }
        }
        for (const char* key : {"statistics precision", "table max height", "max bar",
                                "diagram height", "log size", "past rolls number"}) {
            const Decimal number = Decimal::decimalNumberWithString(result.at(key));
            ASSERT_FALSE(number.isNotANumber()) << key;
            EXPECT_EQ(number.decimalRound(0).compare(number), 0) << key;
        }
        EXPECT_FALSE(
            Decimal::decimalNumberWithString(result.at("table total weight")).isNotANumber());
    }
}

}  // namespace
}  // namespace talvex::core
