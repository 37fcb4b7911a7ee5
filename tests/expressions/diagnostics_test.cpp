// The diagnostics pass against its table (the rows live in the other diagnostics_*_test.cpp
// files): every finding exactly, its severity against what the calculation really gives, and
// its suggestion applied to the typed text.

#include "expressions/diagnostics.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/diagnostics_cases.h"
#include "expressions/expression.h"

namespace talvex::language::testing {
namespace {

enum class Outcome { defined, partlyUndefined, unusable };

const char* outcomeName(Outcome outcome) {
    switch (outcome) {
        case Outcome::defined:
            return "defined";
        case Outcome::partlyUndefined:
            return "partly undefined";
        case Outcome::unusable:
            break;
    }
    return "unusable";
}

// What calculating the text gives: only defined outcomes, some undefined ones, or nothing
// usable (no defined outcome, or the calculation refused).
Outcome calculate(const std::string& text) {
    try {
        const core::Profile profile = Expression::expressionWithString(text)->profile();
        bool defined = false;
        bool undefined = false;
        for (const core::Evaluation& evaluation : profile.evaluations()) {
            if (!evaluation.weight().isZero()) {
                (evaluation.quantity().isNotANumber() ? undefined : defined) = true;
            }
        }
        if (!defined) {
            return Outcome::unusable;
        }
        return undefined ? Outcome::partlyUndefined : Outcome::defined;
    } catch (const core::DecimalError&) {
        return Outcome::unusable;
    } catch (const core::CalculationTooLarge&) {
        return Outcome::unusable;
    }
}

bool hasError(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::error) {
            return true;
        }
    }
    return false;
}

std::string listed(const std::vector<Finding>& findings, const std::string& text) {
    std::string list;
    for (const Finding& finding : findings) {
        list += "\n  ";
        list += finding.severity == Severity::error ? "error " : "warning ";
        list += std::to_string(finding.begin) + "-" + std::to_string(finding.end) + ": ";
        list += describe(finding, text);
    }
    return list;
}

TEST_P(Diagnosis, FindsExactlyTheExpectedFindings) {
    const DiagnosisCase& row = GetParam();
    const std::vector<Finding> found = diagnose(row.text);
    ASSERT_EQ(found.size(), row.findings.size()) << listed(found, row.text);
    for (std::size_t i = 0; i < found.size(); ++i) {
        SCOPED_TRACE("finding " + std::to_string(i));
        const Finding& expected = row.findings[i];
        EXPECT_EQ(found[i].severity, expected.severity);
        EXPECT_EQ(found[i].begin, expected.begin);
        EXPECT_EQ(found[i].end, expected.end);
        EXPECT_EQ(found[i].message, expected.message);
        ASSERT_EQ(found[i].suggestion.has_value(), expected.suggestion.has_value());
        if (expected.suggestion) {
            EXPECT_EQ(found[i].suggestion->begin, expected.suggestion->begin);
            EXPECT_EQ(found[i].suggestion->end, expected.suggestion->end);
            EXPECT_EQ(found[i].suggestion->replacement, expected.suggestion->replacement);
            EXPECT_EQ(found[i].suggestion->reason, expected.suggestion->reason);
        }
    }
    if (row.line != nullptr) {
        ASSERT_FALSE(found.empty());
        EXPECT_EQ(describe(found.front(), row.text), row.line);
    }
}

// An error is said only of a text whose result is undefined or cannot be calculated, and a
// text with warnings only (or nothing) calculates to defined outcomes.
TEST_P(Diagnosis, SeverityAgreesWithTheCalculation) {
    const DiagnosisCase& row = GetParam();
    const bool error = hasError(diagnose(row.text));
    const Outcome outcome = calculate(row.text);
    if (row.undefinedByDesign) {
        EXPECT_FALSE(error);
        EXPECT_EQ(outcome, Outcome::partlyUndefined) << outcomeName(outcome);
    } else if (error) {
        EXPECT_NE(outcome, Outcome::defined) << outcomeName(outcome);
    } else {
        EXPECT_EQ(outcome, Outcome::defined) << outcomeName(outcome);
    }
}

TEST_P(Diagnosis, SuggestionsApplyToTheTypedText) {
    const DiagnosisCase& row = GetParam();
    const std::vector<Finding> found = diagnose(row.text);
    for (const Finding& finding : found) {
        EXPECT_LE(finding.begin, finding.end);
        EXPECT_LE(finding.end, row.text.size());
        if (!finding.suggestion) {
            EXPECT_EQ(describe(finding, row.text), finding.message);
            continue;
        }
        EXPECT_LE(finding.suggestion->begin, finding.suggestion->end);
        EXPECT_LE(finding.suggestion->end, row.text.size());
        std::string corrected = applySuggestion(row.text, *finding.suggestion);
        for (char& c : corrected) {
            c = c == '\n' || c == '\r' || c == '\t' ? ' ' : c;
        }
        const std::string line = describe(finding, row.text);
        EXPECT_TRUE(line.starts_with(finding.message + "; ")) << line;
        EXPECT_TRUE(line.ends_with("write " + corrected)) << line;
    }
    if (row.suggestionRepairs) {
        ASSERT_FALSE(found.empty());
        ASSERT_TRUE(found.front().suggestion.has_value());
        const std::string repaired = applySuggestion(row.text, *found.front().suggestion);
        EXPECT_FALSE(hasError(diagnose(repaired))) << repaired;
        EXPECT_EQ(calculate(repaired), Outcome::defined) << repaired;
    }
}

TEST(Diagnose, TheCommandLineExample) {
    const std::string text = "1d20+5>=15";
    const std::vector<Finding> found = diagnose(text);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].severity, Severity::error);
    EXPECT_EQ(found[0].begin, 6U);
    EXPECT_EQ(describe(found[0], text),
              "'>' is not part of the language; for \"at least\" write 1d20+5 cw 15");
}

TEST(Diagnose, AnEmptyTextHasNothingToRoll) {
    const std::vector<Finding> found = diagnose("");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].severity, Severity::error);
    EXPECT_EQ(found[0].begin, 0U);
    EXPECT_EQ(found[0].end, 0U);
    EXPECT_EQ(found[0].message, "there is nothing to roll");
    EXPECT_EQ(calculate(""), Outcome::unusable);
}

TEST(Diagnose, ALabelAloneHasNothingToRoll) {
    const std::vector<Finding> found = diagnose("Attack:  ");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, "there is nothing to roll");
    EXPECT_EQ(found[0].end, 9U);
    EXPECT_EQ(calculate("Attack:  "), Outcome::unusable);
}

TEST(ApplySuggestion, ReplacesTheRange) {
    EXPECT_EQ(applySuggestion("1d20+5>=15", Suggestion{6, 8, " cw ", {}}), "1d20+5 cw 15");
}

TEST(ApplySuggestion, InsertsWhereTheRangeIsEmpty) {
    EXPECT_EQ(applySuggestion("(1d6", Suggestion{4, 4, ")", {}}), "(1d6)");
    EXPECT_EQ(applySuggestion("d20", Suggestion{0, 0, "1", {}}), "1d20");
}

TEST(ApplySuggestion, KeepsARangeBeyondTheTextWithinIt) {
    EXPECT_EQ(applySuggestion("3d6;", Suggestion{3, 99, "", {}}), "3d6");
    EXPECT_EQ(applySuggestion("3d6", Suggestion{7, 9, "+1", {}}), "3d6+1");
}

TEST(Describe, IsTheMessageAloneWithoutASuggestion) {
    const Finding finding{Severity::error, 0, 7, "'explode' is not a known function or name", {}};
    EXPECT_EQ(describe(finding, "explode(1d6)"), "'explode' is not a known function or name");
}

TEST(Describe, LeavesTheReasonOutWhenThereIsNone) {
    const Finding finding{Severity::error, 1, 2, "dice are written with a small 'd'",
                          Suggestion{1, 2, "d", {}}};
    EXPECT_EQ(describe(finding, "3D6"), "dice are written with a small 'd'; write 3d6");
}

TEST(Describe, PutsTheReasonBeforeTheCorrectedText) {
    const Finding finding{Severity::error, 4, 5, "'x' is not a known function or name",
                          Suggestion{4, 5, "*", "for multiplying"}};
    EXPECT_EQ(describe(finding, "1d6 x 2"),
              "'x' is not a known function or name; for multiplying write 1d6 * 2");
}

TEST(Describe, ShowsLineBreaksAsBlanksToStayOnOneLine) {
    const std::string text = "# comment\n3d6\n+2";
    const std::vector<Finding> found = diagnose(text);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(describe(found[0], text),
              "there are no comments: '# comment' is read as part of the roll; write 3d6 +2");
}

TEST(Describe, ShortensLongWordsInMessages) {
    const std::string word(60, 'q');
    const std::vector<Finding> found = diagnose("1d6+" + word);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message,
              "'" + std::string(40, 'q') + "...' is not a known function or name");
    EXPECT_EQ(found[0].begin, 4U);
    EXPECT_EQ(found[0].end, 64U);
}

}  // namespace
}  // namespace talvex::language::testing
