// Full reports checked character for character against golden files: each NAME.args holds the
// arguments of one talvex-cli run (one per line), NAME.txt what it must print.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_runner.h"

namespace {

namespace fs = std::filesystem;
using talvex::cli::testing::CliRun;
using talvex::cli::testing::run;

std::vector<std::string> goldenNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(TALVEX_GOLDEN_DIR)) {
        if (entry.path().extension() == ".args") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream contents;
    contents << stream.rdbuf();
    return contents.str();
}

std::vector<std::string> readLines(const fs::path& path) {
    std::ifstream stream(path);
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(stream, line)) {
        lines.push_back(line);
    }
    return lines;
}

class GoldenReport : public ::testing::TestWithParam<std::string> {};

TEST_P(GoldenReport, PrintsExactlyTheGoldenText) {
    const fs::path base = fs::path(TALVEX_GOLDEN_DIR) / GetParam();
    std::vector<std::string> arguments = {"--color=never"};
    for (const std::string& line : readLines(base.string() + ".args")) {
        arguments.push_back(line);
    }
    const CliRun result = run(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, readFile(base.string() + ".txt"));
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenReport, ::testing::ValuesIn(goldenNames()),
                         [](const ::testing::TestParamInfo<std::string>& file) {
                             return file.param;
                         });

TEST(GoldenReport, ThereAreGoldenFiles) { EXPECT_GE(goldenNames().size(), 10U); }

}  // namespace
