// --json and the diagnostics: one line for every expression, "error" for one that could not be
// calculated, the label in "label" and the findings in "diagnostics" rather than on standard
// error.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/cli_runner.h"
#include "expressions/diagnostics.h"

namespace {

using nlohmann::ordered_json;
using talvex::cli::testing::CliRun;
using talvex::cli::testing::run;

std::vector<ordered_json> orderedLines(const std::string& text) {
    std::vector<ordered_json> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = text.find('\n', start);
        lines.push_back(ordered_json::parse(text.substr(start, end - start)));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

std::vector<std::string> keysOf(const ordered_json& object) {
    std::vector<std::string> keys;
    for (const auto& item : object.items()) {
        keys.push_back(item.key());
    }
    return keys;
}

TEST(CliDiagnosticsJson, AFailedCalculationIsALineWithItsError) {
    const CliRun result = run({"--json", "1d4", "400d6", "Big: 400d6", "2d2"});
    EXPECT_EQ(result.status, 3);
    const auto lines = orderedLines(result.out);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(keysOf(lines[1]), (std::vector<std::string>{"expression", "error"}));
    EXPECT_EQ(lines[1]["expression"], "400d6");
    EXPECT_EQ(lines[1]["error"],
              "a probability or value became too small for 38-digit arithmetic (below 1E-128)");
    EXPECT_EQ(keysOf(lines[2]), (std::vector<std::string>{"expression", "label", "error"}));
    EXPECT_EQ(lines[2]["expression"], "400d6");
    EXPECT_EQ(lines[2]["label"], "Big");
    EXPECT_EQ(lines[2]["error"], lines[1]["error"]);
    EXPECT_EQ(lines[3]["expression"], "2d2");
    // The failures are still named on standard error.
    const CliRun errors = run({"--json", "1d4", "400d6", "Big: 400d6", "2d2"}, "", true);
    EXPECT_NE(errors.out.find("cannot calculate \"400d6\""), std::string::npos) << errors.out;
    EXPECT_NE(errors.out.find("cannot calculate \"Big: 400d6\""), std::string::npos) << errors.out;
}

TEST(CliDiagnosticsJson, EveryExpressionFromStandardInputIsOneLine) {
    const CliRun result = run({"--json"}, "3D6\n\n400d6\n(3d6\n1d6\n");
    EXPECT_EQ(result.status, 3);
    const auto lines = orderedLines(result.out);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0]["expression"], "3D6");
    EXPECT_TRUE(lines[1].contains("error"));
    EXPECT_EQ(lines[2]["expression"], "(3d6");
    EXPECT_EQ(lines[3]["expression"], "1d6");
}

TEST(CliDiagnosticsJson, FindingsAreInTheLineAndNotOnStandardError) {
    const std::string text = "Attack: 1d20+5>=15";
    const CliRun result = run({"--json", text});
    EXPECT_EQ(result.status, 4);
    const auto lines = orderedLines(result.out);
    ASSERT_EQ(lines.size(), 1U);
    const ordered_json& line = lines.front();
    // The label after the expression, the findings last.
    const auto keys = keysOf(line);
    ASSERT_GE(keys.size(), 3U);
    EXPECT_EQ(keys[0], "expression");
    EXPECT_EQ(keys[1], "label");
    EXPECT_EQ(keys.back(), "diagnostics");
    EXPECT_EQ(line["expression"], "1d20+5>=15");
    EXPECT_EQ(line["label"], "Attack");
    const ordered_json expected = ordered_json::parse(R"([{
        "severity": "error", "begin": 14, "end": 15, "column": 15,
        "message": "'>' is not part of the language",
        "suggestion": {"begin": 14, "end": 16, "replacement": " cw ", "reason": "for \"at least\"",
                       "text": "Attack: 1d20+5 cw 15"}}])");
    EXPECT_EQ(line["diagnostics"], expected);
    EXPECT_EQ(run({"--json", text}, "", true).out, "");
}

TEST(CliDiagnosticsJson, OffsetsAreBytesAndTheColumnCharacters) {
    const std::string text = "\u00e9\u00e9: 3d6\u22122";
    const auto lines = orderedLines(run({"--json", text}).out);
    ASSERT_EQ(lines.size(), 1U);
    const auto& finding = lines.front()["diagnostics"].at(0);
    EXPECT_EQ(finding["begin"], 9);
    EXPECT_EQ(finding["end"], 12);
    EXPECT_EQ(finding["column"], 8);
    EXPECT_EQ(finding["suggestion"]["replacement"], "-");
    EXPECT_EQ(finding["suggestion"]["reason"], "");
    EXPECT_EQ(finding["suggestion"]["text"], "\u00e9\u00e9: 3d6-2");
    EXPECT_EQ(lines.front()["label"], "\u00e9\u00e9");
}

TEST(CliDiagnosticsJson, EachFindingIsAsTheLanguageGivesIt) {
    const std::vector<std::string> texts = {"3D6",    "d20",      "(3d6", "3d6+", "Max(1d20,1d20)",
                                            "1d20 5", "d=1d6;d+d"};
    std::vector<std::string> arguments = {"--json"};
    arguments.insert(arguments.end(), texts.begin(), texts.end());
    const auto lines = orderedLines(run(arguments).out);
    ASSERT_EQ(lines.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto findings = talvex::language::diagnose(texts[i]);
        const ordered_json& written = lines[i]["diagnostics"];
        ASSERT_EQ(written.size(), findings.size()) << texts[i];
        for (std::size_t j = 0; j < findings.size(); ++j) {
            const auto& finding = findings[j];
            EXPECT_EQ(written[j]["severity"],
                      finding.severity == talvex::language::Severity::error ? "error" : "warning");
            EXPECT_EQ(written[j]["begin"], finding.begin);
            EXPECT_EQ(written[j]["end"], finding.end);
            // These texts are ASCII: the column is the byte offset plus one.
            EXPECT_EQ(written[j]["column"], finding.begin + 1);
            EXPECT_EQ(written[j]["message"], finding.message);
            ASSERT_EQ(written[j].contains("suggestion"), finding.suggestion.has_value())
                << texts[i];
            if (finding.suggestion) {
                EXPECT_EQ(written[j]["suggestion"]["text"],
                          talvex::language::applySuggestion(texts[i], *finding.suggestion));
            }
        }
    }
    // A warning keeps the status 0; a name written into the dice has no one fix to give.
    EXPECT_EQ(lines[5]["diagnostics"][0]["severity"], "warning");
    EXPECT_FALSE(lines[6]["diagnostics"][0].contains("suggestion"));
}

TEST(CliDiagnosticsJson, AFailedCalculationKeepsItsFindings) {
    const CliRun result = run({"--json", "Big: 400d6+3D6"});
    EXPECT_EQ(result.status, 3);
    const auto lines = orderedLines(result.out);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(keysOf(lines[0]),
              (std::vector<std::string>{"expression", "label", "error", "diagnostics"}));
    EXPECT_EQ(lines[0]["diagnostics"][0]["column"], 13);
    EXPECT_EQ(lines[0]["diagnostics"][0]["suggestion"]["text"], "Big: 400d6+3d6");
}

TEST(CliDiagnosticsJson, NoFindingsNoArray) {
    const CliRun result = run({"--json", "3d6", "Roll: 2d6", "1d20+5 cw 15"});
    EXPECT_EQ(result.status, 0);
    for (const auto& line : orderedLines(result.out)) {
        EXPECT_FALSE(line.contains("diagnostics")) << line;
    }
    // Without the pass the findings are not looked for.
    const CliRun off = run({"--json", "--no-diagnostics", "1d20+5>=15", "400d6+3D6"});
    EXPECT_EQ(off.status, 3);
    const auto lines = orderedLines(off.out);
    ASSERT_EQ(lines.size(), 2U);
    for (const auto& line : lines) {
        EXPECT_FALSE(line.contains("diagnostics")) << line;
    }
}

TEST(CliDiagnosticsJson, TheSuggestedTextHasNoFindingLeft) {
    const auto lines = orderedLines(run({"--json", "1d20+5>=15"}).out);
    ASSERT_EQ(lines.size(), 1U);
    const std::string corrected = lines[0]["diagnostics"][0]["suggestion"]["text"];
    EXPECT_EQ(corrected, "1d20+5 cw 15");
    const CliRun again = run({"--json", corrected});
    EXPECT_EQ(again.status, 0);
    EXPECT_FALSE(orderedLines(again.out).at(0).contains("diagnostics"));
}

TEST(CliDiagnosticsJson, TheLabelIsWhatStandsBeforeTheFirstColon) {
    const CliRun result =
        run({"--json", "  Attack roll \t: 1d20", "1d20", ": 1d20", "A: B: 1d20", "Hit:1d4"});
    const auto lines = orderedLines(result.out);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0]["label"], "Attack roll");
    EXPECT_FALSE(lines[1].contains("label"));
    // Only blanks before the ':' are no label.
    EXPECT_FALSE(lines[2].contains("label"));
    EXPECT_EQ(lines[3]["label"], "A");
    EXPECT_EQ(lines[4]["label"], "Hit");
    EXPECT_EQ(lines[4]["expression"], "1d4");
}

TEST(CliDiagnosticsJson, StandardOutputOfValidTextsIsTheSameWithAndWithout) {
    const std::vector<std::string> texts = {"--json", "--seed", "4",         "--rolls",
                                            "2",      "3d6",    "Roll: 2d6", "max(1d20,1d20)"};
    std::vector<std::string> without = {"--no-diagnostics"};
    without.insert(without.end(), texts.begin(), texts.end());
    const CliRun told = run(texts);
    EXPECT_FALSE(told.out.empty());
    EXPECT_EQ(told.out, run(without).out);
}

}  // namespace
