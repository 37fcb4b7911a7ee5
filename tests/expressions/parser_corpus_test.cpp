// Every input the parser fuzzer found interesting, kept as a regression test: building it ends
// with a profile or with one of the two faults that the request boundary reports.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/expression.h"

namespace talvex::language {
namespace {

std::vector<std::string> corpusFiles() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TALVEX_PARSER_CORPUS_DIR)) {
        if (entry.is_regular_file()) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string contents(const std::string& name) {
    std::ifstream file(std::filesystem::path(TALVEX_PARSER_CORPUS_DIR) / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ParserCorpus : public ::testing::TestWithParam<std::string> {};

TEST_P(ParserCorpus, BuildsOrStopsAtABoundaryFault) {
    const std::string text = contents(GetParam());
    try {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        const auto expression = Expression::expressionWithString(text, context);
        const core::Profile profile = expression->profile();
        EXPECT_FALSE(profile.evaluations().empty());
    } catch (const core::DecimalError&) {
    } catch (const core::CalculationTooLarge&) {
    }
}

std::string testName(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Inputs, ParserCorpus, ::testing::ValuesIn(corpusFiles()), testName);

TEST(ParserCorpusFolder, IsNotEmpty) { EXPECT_FALSE(corpusFiles().empty()); }

}  // namespace
}  // namespace talvex::language
