// The largest texts a person might type, through the window's whole request (build, reports,
// history, log, roll) with the real budget: each ends, and the process never holds more than
// 1.5 GB. Its own executable, so that the peak belongs to these requests alone.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <vector>

#include "app/controller_fixture.h"

namespace talvex::app {
namespace {

constexpr long kPeakLimitKilobytes = 1536L * 1024L;

std::string repeated(const std::string& piece, int times, const std::string& separator = "") {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += (i > 0 ? separator : "") + piece;
    }
    return text;
}

long peakResidentKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

std::vector<std::string> largestTexts() {
    std::string versus = "1";
    for (int i = 2; i <= 30000; ++i) {
        versus += "vt" + std::to_string(i);
    }
    return {
        "1d1000000" + repeated("+1", 100),
        "max(1d1000000" + repeated(",1", 100) + ")",
        repeated("count(1d10000,1d1000,1d2)", 20, "+"),
        versus,
        repeated("1d1000000", 100, "+"),
        "13d610",
        "3300c5",
        "2666d2",
        "1d1000000",
        "1d2900*1d2900",
        "(10d10)d10",
        "(12d10)d10",
        "keep(10d10+10d10,20,150,0)",
        "drop(1d20,12,3,3)",
        "dieMult(1d6,1000000000)",
        "(1d6)d1000000",
        repeated("abs(", 1600) + "1" + repeated(")", 1600),
        // The parser fuzzer's slowest inputs.
        "9d813",
        "3e&14d6d63",
        "1d61d61e5d61exv1/71e5d61exv1/7",
        "35d3d22e2e6\xa4",
        "3d2200e0vs ",
        "*5d1115d20-$d1[",
        "1c00a=1d6;14d611/0d\x03"
        "3",
        "3d3d662",
    };
}

class PeakMemory : public testing::ControllerTest {};

TEST_F(PeakMemory, TheLargestTextsEndAndTheProcessStaysUnderOneAndAHalfGigabytes) {
    for (const std::string& text : largestTexts()) {
        request(text);
        const std::string& message = window->message();
        // Calculated, or refused in plain words; never out of memory.
        EXPECT_TRUE(message.empty() || message.find("Cannot calculate") == 0) << message;
        EXPECT_EQ(message.find("more memory than is available"), std::string::npos) << message;
        EXPECT_LT(peakResidentKilobytes(), kPeakLimitKilobytes) << text.substr(0, 60);
    }
    // The window still answers at once.
    request("3d6");
    EXPECT_EQ(window->message(), "");
    EXPECT_NE(field(TextField::statistics).find("10.5"), std::string::npos);
}

}  // namespace
}  // namespace talvex::app
