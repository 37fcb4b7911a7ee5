// The JSON lines talvex-cli writes are exactly those a JSON library writes for the same
// document: the same keys in the same order, the same strings, the same escapes.

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "cli/cli_runner.h"

namespace {

using nlohmann::ordered_json;
using talvex::cli::testing::CliRun;
using talvex::cli::testing::run;

// How the lines were always written: compact, UTF-8 as it is, invalid bytes replaced.
std::string dumped(const ordered_json& document) {
    return document.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = text.find('\n', start);
        if (end == std::string::npos) {
            result.push_back(text.substr(start));
            break;
        }
        result.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

TEST(CliJson, AThousandOutcomesAreTheLineAJsonLibraryWritesForThem) {
    const CliRun result = run({"--json", "--seed", "5", "--rolls", "4", "1d1000"});
    ASSERT_EQ(result.status, 0);
    ASSERT_FALSE(result.out.empty());
    EXPECT_EQ(result.out.back(), '\n');
    const auto written = lines(result.out);
    ASSERT_EQ(written.size(), 1U);
    const auto parsed = ordered_json::parse(written.front());

    ordered_json expected;
    expected["expression"] = "1d1000";
    expected["comparator"] = "";
    expected["total_weight"] = "1000";
    expected["outcomes"] = ordered_json::array();
    std::vector<std::string> faces;
    for (int face = 1; face <= 1000; ++face) {
        faces.push_back(std::to_string(face));
        expected["outcomes"].push_back(
            {{"quantity", faces.back()}, {"weight", "1"}, {"probability", "0.001"}});
    }
    ordered_json statistics;
    statistics["mean"] = "500.5";
    statistics["variance"] = "83333.25";
    // Its digits are the library's square root; only its value is checked here.
    const auto deviation = parsed["statistics"].value("standard_deviation", "");
    EXPECT_NEAR(std::stod(deviation), std::sqrt(83333.25), 1e-9) << deviation;
    statistics["standard_deviation"] = deviation;
    statistics["mean_deviation"] = "250";
    statistics["median"] = "500.5";
    statistics["mode"] = faces;
    statistics["mode_including_undefined"] = faces;
    statistics["range"] = {"1", "1000"};
    statistics["values"] = "1000";
    expected["statistics"] = statistics;
    // The rolls are random; each is one of the faces.
    ASSERT_TRUE(parsed.contains("rolls"));
    ASSERT_EQ(parsed["rolls"].size(), 4U);
    for (const auto& roll : parsed["rolls"]) {
        const int face = std::stoi(roll.get<std::string>());
        EXPECT_TRUE(face >= 1 && face <= 1000) << roll;
    }
    expected["rolls"] = parsed["rolls"];

    EXPECT_EQ(parsed, expected);
    EXPECT_EQ(written.front(), dumped(expected));
}

TEST(CliJson, TextThatNeedsEscapingIsEscapedAsAJsonLibraryDoes) {
    // Each text with the start of its expression as written; spaces are not part of it.
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"\"q\" \\ / 1d2", R"({"expression":"\"q\"\\/1d2",)"},
        {"a\tb\001c\037d\177", "{\"expression\":\"ab\\u0001c\\u001fd\177\","},
        {"ff\fbs\b", R"({"expression":"ff\fbs\b",)"},
        {"caf\xc3\xa9 \xe2\x82\xac", "{\"expression\":\"caf\xc3\xa9\xe2\x82\xac\","},
        {"broken\xc3 \xff", "{\"expression\":\"broken\xef\xbf\xbd\xef\xbf\xbd\","},
    };
    std::vector<std::string> arguments = {"--json", "--"};
    for (const auto& [text, start] : texts) {
        arguments.push_back(text);
    }
    const CliRun result = run(arguments);
    // Calculated, with error findings for the controls and the bytes.
    ASSERT_EQ(result.status, 4);
    const auto written = lines(result.out);
    ASSERT_EQ(written.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(written[i].rfind(texts[i].second, 0), 0U) << written[i];
        EXPECT_EQ(written[i], dumped(ordered_json::parse(written[i])));
    }
}

}  // namespace
