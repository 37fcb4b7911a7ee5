// The diagnostics pass over every text the parser fuzzer kept and every token of its
// dictionary: it never throws, its ranges stay in the text, it reports no error for a text
// that calculates to defined outcomes, and calculating a text gives the very same profile
// whether or not it ran. And its time grows linearly with the text.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/diagnostics.h"
#include "expressions/expression.h"

namespace talvex::language {
namespace {

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> corpusTexts() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(TALVEX_PARSER_CORPUS_DIR)) {
        if (entry.is_regular_file()) {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> texts;
    for (const auto& path : paths) {
        texts.push_back(contents(path));
    }
    return texts;
}

// The quoted tokens of the fuzzer's dictionary, each alone and between two sums.
std::vector<std::string> dictionaryTexts() {
    std::vector<std::string> texts;
    std::ifstream file(TALVEX_PARSER_DICTIONARY);
    for (std::string line; std::getline(file, line);) {
        const auto open = line.find('"');
        const auto close = line.rfind('"');
        if (line.starts_with("#") || open == std::string::npos || close <= open) {
            continue;
        }
        const std::string token = line.substr(open + 1, close - open - 1);
        texts.push_back(token);
        texts.push_back("2+" + token + "+3");
    }
    return texts;
}

// Everything a calculation leaves behind that a reader could see.
struct Calculated {
    std::string failure;
    std::string kind;
    std::string rawString;
    std::string title;
    std::string comparator;
    std::vector<std::pair<std::string, std::string>> outcomes;

    bool operator==(const Calculated&) const = default;
};

Calculated calculate(const std::string& text) {
    Calculated calculated;
    try {
        const ExpressionPointer expression = Expression::expressionWithString(text);
        const core::Profile profile = expression->profile();
        calculated.kind = std::string(expression->typeString());
        calculated.rawString = expression->rawString();
        calculated.title = profile.titleString();
        calculated.comparator = profile.comparatorString();
        for (const core::Evaluation& evaluation : profile.evaluations()) {
            calculated.outcomes.emplace_back(evaluation.quantity().stringValue(),
                                             evaluation.weight().stringValue());
        }
    } catch (const core::DecimalError& error) {
        calculated.failure = error.what();
    } catch (const core::CalculationTooLarge& error) {
        calculated.failure = error.what();
    }
    return calculated;
}

bool fullyDefined(const Calculated& calculated) {
    if (!calculated.failure.empty() || calculated.outcomes.empty()) {
        return false;
    }
    return std::none_of(calculated.outcomes.begin(), calculated.outcomes.end(),
                        [](const auto& outcome) { return outcome.first == "NaN"; });
}

// The first calculation of each text in this run, made before the text was diagnosed:
// calculating takes far longer than diagnosing, so both tests share it.
const Calculated& calculatedFirst(const std::string& text) {
    static std::map<std::string, Calculated> calculated;
    auto found = calculated.find(text);
    if (found == calculated.end()) {
        found = calculated.emplace(text, calculate(text)).first;
    }
    return found->second;
}

class DiagnosedText : public ::testing::TestWithParam<std::string> {};

TEST_P(DiagnosedText, NeverThrowsAndLeavesTheCalculationAsItWas) {
    const std::string& text = GetParam();
    const Calculated& before = calculatedFirst(text);
    std::vector<Finding> findings;
    ASSERT_NO_THROW(findings = diagnose(text));
    for (const Finding& finding : findings) {
        EXPECT_LE(finding.begin, finding.end);
        EXPECT_LE(finding.end, text.size());
        EXPECT_FALSE(finding.message.empty());
        if (finding.suggestion) {
            EXPECT_LE(finding.suggestion->begin, finding.suggestion->end);
            EXPECT_LE(finding.suggestion->end, text.size());
        }
        EXPECT_NO_THROW(static_cast<void>(describe(finding, text)));
    }
    EXPECT_TRUE(
        std::is_sorted(findings.begin(), findings.end(),
                       [](const Finding& a, const Finding& b) { return a.begin < b.begin; }));
    EXPECT_EQ(calculate(text), before);
}

TEST_P(DiagnosedText, ReportsNoErrorForATextThatCalculatesToDefinedOutcomes) {
    const std::string& text = GetParam();
    if (!fullyDefined(calculatedFirst(text))) {
        return;
    }
    for (const Finding& finding : diagnose(text)) {
        EXPECT_EQ(finding.severity, Severity::warning) << describe(finding, text);
    }
}

INSTANTIATE_TEST_SUITE_P(ParserCorpus, DiagnosedText, ::testing::ValuesIn(corpusTexts()));
INSTANTIATE_TEST_SUITE_P(FuzzDictionary, DiagnosedText, ::testing::ValuesIn(dictionaryTexts()));

TEST(DiagnosedTextSources, AreNotEmpty) {
    EXPECT_FALSE(corpusTexts().empty());
    EXPECT_FALSE(dictionaryTexts().empty());
}

// The least of a few runs, so that a busy machine disturbs the comparison little.
double fastestSeconds(const std::string& text, int runs) {
    double fastest = 1e9;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const std::vector<Finding> findings = diagnose(text);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        fastest = std::min(fastest, took.count());
    }
    return fastest;
}

std::string repeated(const std::string& piece, const std::string& separator, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += i == 0 ? "" : separator;
        text += piece;
    }
    return text;
}

std::string nestedCalls(std::size_t depth) {
    return repeated("max(", "", depth) + "1" + repeated(",Max(1d6,))", "", depth);
}

std::string definitions(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "a" + std::to_string(i) + "=1d6+b" + std::to_string(i) + ";";
    }
    return text + repeated("a1+a2", "+", count);
}

// A long name and a run of the same letter: every place of the run starts a match that goes
// on for the whole name.
std::string lettersAgainstALongName(std::size_t count) {
    return std::string(30, 'q') + "=1;" + std::string(count, 'q');
}

// One of most of the mistakes the pass knows.
constexpr const char* kMistakes =
    "Max(1d6,)+3D6+d20>=15+1d20 5+4d6dl1+explode(1d6)+2^1000+1e5+(1d6+1,5+x+#y\n+1d6!";

// Each text is built for a size n (at least 16 KB, so that a run takes milliseconds) and for
// 16n. Linear time gives a ratio near 16, quadratic near 256; 128 leaves room for a loaded
// machine and for the caches, which a text of a few hundred thousand findings outgrows.
TEST(DiagnosticsLimits, AThousandMistakesGiveAHundredFindingsInOrder) {
    const std::vector<Finding> findings = diagnose(std::string(1000, '(') + "3D6+#");
    EXPECT_EQ(findings.size(), kMaxFindings);
    EXPECT_TRUE(
        std::is_sorted(findings.begin(), findings.end(),
                       [](const Finding& a, const Finding& b) { return a.begin < b.begin; }));
}

TEST(DiagnosticsTime, GrowsLinearlyWithTheText) {
    const std::vector<std::pair<const char*, std::string (*)(std::size_t)>> shapes = {
        {"mistakes", [](std::size_t n) { return repeated(kMistakes, "+", n); }},
        {"corpus", [](std::size_t n) { return repeated(corpusTexts().front(), "+", n); }},
        {"nested calls", [](std::size_t n) { return nestedCalls(n); }},
        {"definitions", [](std::size_t n) { return definitions(n); }},
        {"open parentheses", [](std::size_t n) { return std::string(n * 4, '('); }},
        {"letters", [](std::size_t n) { return lettersAgainstALongName(n * 4); }},
    };
    for (const auto& [name, make] : shapes) {
        SCOPED_TRACE(name);
        std::size_t count = 1;
        while (make(count).size() < 16 * 1024) {
            count *= 2;
        }
        const std::string small = make(count);
        const std::string large = make(count * 16);
        const double smallSeconds = std::max(fastestSeconds(small, 5), 1e-6);
        const double largeSeconds = fastestSeconds(large, 3);
        EXPECT_LT(largeSeconds / smallSeconds, 128.0)
            << small.size() << " bytes: " << smallSeconds << " s, " << large.size()
            << " bytes: " << largeSeconds << " s";
    }
}

}  // namespace
}  // namespace talvex::language
