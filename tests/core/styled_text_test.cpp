#include "core/styled_text.h"

#include <gtest/gtest.h>

#include "core/styles.h"

namespace talvex::core {
namespace {

TEST(Color, GreyLevels) {
    EXPECT_EQ(Color::grey(0.2), (Color{51, 51, 51}));
    EXPECT_EQ(Color::grey(0.25), (Color{64, 64, 64}));
    EXPECT_EQ(Color::grey(0), (Color{0, 0, 0}));
}

TEST(Color, HueSaturationBrightness) {
    // Hue 111: the green sector, red at (120 - 111) / 60 of full.
    EXPECT_EQ(Color::hsb(111, 1, 1), (Color{38, 255, 0}));
    EXPECT_EQ(Color::hsb(0, 1, 0.5), (Color{128, 0, 0}));
    EXPECT_EQ(Color::hsb(111, 1, 0.25), (Color{10, 64, 0}));
    EXPECT_EQ(Color::hsb(350, 1, 0.75), (Color{191, 0, 32}));
    EXPECT_EQ(Color::hsb(334, 1, 0.5), (Color{128, 0, 55}));
    EXPECT_EQ(Color::hsb(57, 0.8, 1), (Color{255, 245, 51}));
    EXPECT_EQ(Color::hsb(0, 0, 0.25), (Color{64, 64, 64}));
}

TEST(Styles, TheTwentyOneDefaults) {
    const Styles& styles = defaultStyles();
    EXPECT_EQ(styles.size(), 21U);
    EXPECT_EQ(styles.at("item").foreground, (Color{0, 0, 255}));
    EXPECT_EQ(styles.at("bar").foreground, (Color{0, 0, 255}));
    EXPECT_EQ(styles.at("weight").foreground, (Color{38, 255, 0}));
    EXPECT_EQ(styles.at("title").foreground, (Color{51, 51, 51}));
    EXPECT_EQ(styles.at("undefined").foreground, (Color{191, 0, 32}));
    EXPECT_EQ(styles.at("roll").alignment, Alignment::Center);
    EXPECT_EQ(styles.at("roll text").alignment, Alignment::Center);
    EXPECT_EQ(styles.at("roll text").foreground, (Color{0, 0, 0}));
    EXPECT_EQ(styles.at("statistic").alignment, Alignment::Natural);
}

TEST(StyledText, AppendingJoinsRunsOfOneStyle) {
    const TextAttributes red{Color{255, 0, 0}, Alignment::Natural};
    StyledText text;
    text.append("ab", red);
    text.append("cd", red);
    text.append("e", std::nullopt);
    text.append("", red);
    EXPECT_EQ(text.string(), "abcde");
    ASSERT_EQ(text.runs().size(), 2U);
    EXPECT_EQ(text.runs()[0], (StyledRun{0, 4, red}));
    EXPECT_EQ(text.runs()[1], (StyledRun{4, 1, std::nullopt}));
    EXPECT_EQ(text.attributesAt(3), red);
    EXPECT_EQ(text.attributesAt(4), std::nullopt);
    EXPECT_EQ(text.attributesAt(5), std::nullopt);
}

TEST(StyledText, AppendingStyledTextKeepsItsRuns) {
    const TextAttributes blue{Color{0, 0, 255}, Alignment::Center};
    StyledText first("x", std::nullopt);
    StyledText second;
    second.append("yz", blue);
    first.append(second);
    EXPECT_EQ(first.string(), "xyz");
    EXPECT_EQ(first.attributesAt(1), blue);
    EXPECT_EQ(first.attributesAt(0), std::nullopt);
}

TEST(StyledText, InsertingInTheMiddleSplitsTheRunAroundTheNewText) {
    const TextAttributes red{Color{255, 0, 0}, Alignment::Natural};
    const TextAttributes blue{Color{0, 0, 255}, Alignment::Center};
    StyledText text("abcd", red);
    text.insert(2, StyledText("XY", blue));
    EXPECT_EQ(text.string(), "abXYcd");
    ASSERT_EQ(text.runs().size(), 3U);
    EXPECT_EQ(text.runs()[0], (StyledRun{0, 2, red}));
    EXPECT_EQ(text.runs()[1], (StyledRun{2, 2, blue}));
    EXPECT_EQ(text.runs()[2], (StyledRun{4, 2, red}));
}

TEST(StyledText, InsertingBeyondTheEndAppends) {
    StyledText text("ab", std::nullopt);
    text.insert(99, StyledText("c", std::nullopt));
    text.insert(0, StyledText("_", std::nullopt));
    EXPECT_EQ(text.string(), "_abc");
    EXPECT_EQ(text.runs().size(), 1U);
}

TEST(StyledText, ErasingJoinsTheRunsThatMeet) {
    const TextAttributes red{Color{255, 0, 0}, Alignment::Natural};
    StyledText text("ab", red);
    text.append("--", std::nullopt);
    text.append("cd", red);
    text.erase(2, 2);
    EXPECT_EQ(text.string(), "abcd");
    ASSERT_EQ(text.runs().size(), 1U);
    EXPECT_EQ(text.runs()[0], (StyledRun{0, 4, red}));
    text.erase(1);
    EXPECT_EQ(text.string(), "a");
    text.erase(5, 1);
    EXPECT_EQ(text.string(), "a");
}

TEST(StyledText, SubstringKeepsTheAttributesOfItsPart) {
    const TextAttributes red{Color{255, 0, 0}, Alignment::Natural};
    StyledText text("ab", std::nullopt);
    text.append("cd", red);
    const StyledText part = text.substring(1, 2);
    EXPECT_EQ(part.string(), "bc");
    EXPECT_EQ(part.attributesAt(0), std::nullopt);
    EXPECT_EQ(part.attributesAt(1), red);
    EXPECT_TRUE(text.substring(4).empty());
}

}  // namespace
}  // namespace talvex::core
