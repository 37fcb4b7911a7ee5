// What the window shows under the expression field while a person types.

#include "app/typing_diagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace talvex::app {
namespace {

TEST(TypingDiagnostics, AnUnclosedParenthesisIsAnErrorWithItsClosingOffered) {
    const TypingDiagnostics shown = diagnoseTyping("(3d6");
    ASSERT_EQ(shown.lines.size(), 1U);
    const FindingLine& line = shown.lines[0];
    EXPECT_TRUE(line.isError);
    EXPECT_EQ(line.begin, 0U);
    EXPECT_EQ(line.end, 1U);
    EXPECT_EQ(line.text, "Error: '(' is never closed");
    EXPECT_EQ(line.correctedText, "(3d6)");
    EXPECT_EQ(line.suggestionLabel, "write (3d6)");
    EXPECT_EQ(shown.notShown, 0U);
}

TEST(TypingDiagnostics, AValidTextShowsNothing) {
    for (const char* text : {"3d6+2", "4c7", "max(1d20,1d20)", "a~1d6;a+a", "3d6 vs 2d8",
                             "Attack: 1d20+5", "", "  "}) {
        const TypingDiagnostics shown = diagnoseTyping(text);
        EXPECT_TRUE(shown.lines.empty()) << text;
        EXPECT_EQ(shown.notShown, 0U) << text;
    }
}

TEST(TypingDiagnostics, TheSuggestionSaysWhatItIsFor) {
    const TypingDiagnostics shown = diagnoseTyping("1d20+5>=15");
    ASSERT_FALSE(shown.lines.empty());
    EXPECT_EQ(shown.lines[0].text, "Error: '>' is not part of the language");
    EXPECT_EQ(shown.lines[0].correctedText, "1d20+5 cw 15");
    EXPECT_EQ(shown.lines[0].suggestionLabel, "for \"at least\", write 1d20+5 cw 15");
}

TEST(TypingDiagnostics, AWarningIsMarkedAsOne) {
    const TypingDiagnostics shown = diagnoseTyping("1d20 5");
    ASSERT_EQ(shown.lines.size(), 1U);
    EXPECT_FALSE(shown.lines[0].isError);
    EXPECT_EQ(shown.lines[0].text, "Warning: blanks are removed, so this reads '1d205'");
    EXPECT_EQ(shown.lines[0].correctedText, "1d20+5");
}

TEST(TypingDiagnostics, ErrorsComeBeforeWarnings) {
    const TypingDiagnostics shown = diagnoseTyping("1d20 5+3D6");
    ASSERT_GE(shown.lines.size(), 2U);
    EXPECT_TRUE(shown.lines.front().isError);
    EXPECT_FALSE(shown.lines.back().isError);
    EXPECT_TRUE(std::is_partitioned(shown.lines.begin(), shown.lines.end(),
                                    [](const FindingLine& line) { return line.isError; }));
}

TEST(TypingDiagnostics, BeyondTheLinesShownTheRestAreCounted) {
    const TypingDiagnostics shown = diagnoseTyping("3D6+3D6+3D6+3D6+3D6", 3);
    EXPECT_EQ(shown.lines.size(), 3U);
    EXPECT_EQ(shown.notShown, 2U);
}

TEST(TypingDiagnostics, ALongCorrectionIsShortenedOnItsButtonButAppliedWhole) {
    std::string text = "(1d6";
    for (int i = 0; i < 40; ++i) {
        text += "+1d6";
    }
    const TypingDiagnostics shown = diagnoseTyping(text);
    ASSERT_EQ(shown.lines.size(), 1U);
    EXPECT_EQ(shown.lines[0].correctedText, text + ")");
    EXPECT_LT(shown.lines[0].suggestionLabel.size(), 80U);
    EXPECT_EQ(shown.lines[0].suggestionLabel.substr(shown.lines[0].suggestionLabel.size() - 3),
              "…");
}

}  // namespace
}  // namespace talvex::app
