#include "app/rtf.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "app/request.h"
#include "core/profile.h"
#include "core/report_options.h"

namespace talvex::app {
namespace {

using core::Alignment;
using core::Color;
using core::StyledText;
using core::TextAttributes;

const TextAttributes kBlue{Color{0, 0, 255}, Alignment::Natural};
const TextAttributes kGreen{Color{34, 255, 0}, Alignment::Natural};
const TextAttributes kBlack{Color{0, 0, 0}, Alignment::Natural};
const TextAttributes kRoll{Color{255, 240, 51}, Alignment::Center};

struct RoundTrip {
    const char* name;
    StyledText text;
};

void PrintTo(const RoundTrip& trip, std::ostream* out) { *out << trip.name; }

StyledText styled(
    std::initializer_list<std::pair<const char*, std::optional<TextAttributes>>> runs) {
    StyledText text;
    for (const auto& [piece, attributes] : runs) {
        text.append(piece, attributes);
    }
    return text;
}

class RtfRoundTripTest : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(RtfRoundTripTest, ReadsBackTheSameStyledText) {
    const StyledText& original = GetParam().text;
    const std::string rtf = rtfFromStyledText(original);
    const std::optional<StyledText> read = styledTextFromRtf(rtf);
    ASSERT_TRUE(read.has_value()) << rtf;
    EXPECT_EQ(read->string(), original.string()) << rtf;
    EXPECT_EQ(read->runs(), original.runs()) << rtf;
    // Only ASCII goes into the file; everything else is escaped.
    for (const char c : rtf) {
        EXPECT_LT(static_cast<unsigned char>(c), 0x80U);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RtfRoundTripTest,
    ::testing::Values(RoundTrip{"Empty", StyledText()},
                      RoundTrip{"Plain", styled({{"3d6\n", std::nullopt}})},
                      RoundTrip{"Colours", styled({{"Mean:", kBlue},
                                                   {"\t\t", std::nullopt},
                                                   {"10.5", kBlack},
                                                   {"\n", std::nullopt},
                                                   {"0.46", kGreen},
                                                   {"%", std::nullopt}})},
                      RoundTrip{"CentredRollThenANaturalLineFeed",
                                styled({{"14", kRoll}, {"\n", kBlack}, {"next\n", std::nullopt}})},
                      RoundTrip{"EntrySeparators", styled({{"a\n", kBlue},
                                                           {"\t\t\n", std::nullopt},
                                                           {"b\n", kBlue},
                                                           {"\t\t\n", std::nullopt}})},
                      RoundTrip{"RtfsOwnCharacters", styled({{"{a\\b} \\par {\\rtf1", kBlue}})},
                      RoundTrip{"NonAscii",
                                styled({{"é ü ± ∞ — ‰ ½", kBlue}, {" Ωmega", std::nullopt}})},
                      RoundTrip{"BeyondTheBasicPlane", styled({{"🎲 𝔡6", kGreen}})},
                      RoundTrip{"ControlCharacters", styled({{"a\rb\x01", std::nullopt}})},
                      RoundTrip{"NoFinalLineFeed", styled({{"x", kRoll}})}),
    [](const ::testing::TestParamInfo<RoundTrip>& trip) { return std::string(trip.param.name); });

TEST(RtfTest, AReportOfAProfileReadsBackUnchanged) {
    CalculationSession session;
    core::Profile profile = session.build("3d6 vs 2d10")->profileView();
    core::Options options = core::defaultOptions();
    for (const char* section : {"statistics", "table", "diagram", "legend", "roll"}) {
        options[section] = "yes";
    }
    const StyledText report = CalculationSession::report(profile, options);
    ASSERT_GT(report.runs().size(), 10U);
    const std::optional<StyledText> read = styledTextFromRtf(rtfFromStyledText(report));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, report);
}

TEST(RtfTest, WritesTheColourTableTheParagraphsAndTheRuns) {
    const StyledText text =
        styled({{"7", kRoll}, {"\n", std::nullopt}, {"Mean:", kBlue}, {"\t1{}\n", std::nullopt}});
    EXPECT_EQ(rtfFromStyledText(text),
              "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\\deftab1320\n"
              "{\\fonttbl{\\f0\\fmodern\\fcharset0 Courier;}}\n"
              "{\\colortbl;\\red255\\green240\\blue51;\\red0\\green0\\blue255;}\n"
              "\\f0\\fs20 "
              "\\cf1\\tvxalign1 \\pard\\qc 7"
              "\\cf0\\tvxalign0 \\par\n"
              "\\cf2\\tvxalign0 \\pard\\ql Mean:"
              "\\cf0\\tvxalign0 \\tab 1\\{\\}\\par\n"
              "}\n");
}

TEST(RtfTest, WritesCharactersOutsideAsciiAsUnicodeWordsWithAFallback) {
    const std::string rtf = rtfFromStyledText(StyledText("é€🎲"));
    EXPECT_NE(rtf.find("\\u233?\\u8364?\\u-10180?\\u-8270?"), std::string::npos) << rtf;
}

TEST(RtfTest, ReadsWhatAWordProcessorWrites) {
    // The shape of a document from a word processor: a generator, a font table with a
    // font of its own, a style sheet, a paragraph centred by \qc, Windows-1252 bytes,
    // Unicode words with a two-byte fallback and named punctuation.
    const std::string rtf =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\*\\generator Writer;}"
        "{\\fonttbl{\\f0\\froman Times New Roman;}{\\f1\\fswiss Arial{\\*\\panose 0};}}\n"
        "{\\colortbl;\\red255\\green0\\blue0;}"
        "{\\stylesheet{\\s0 Normal;}}\n"
        "\\pard\\plain\\qc\\cf1 Caf\\'e9\\par\n"
        "\\pard\\ql\\cf0 \\uc2\\u8364\\'80\\'805\\tab x\\line y\\emdash z\\~w\\par}";
    const std::optional<StyledText> read = styledTextFromRtf(rtf);
    ASSERT_TRUE(read.has_value());
    const TextAttributes redCentred{Color{255, 0, 0}, Alignment::Center};
    EXPECT_EQ(*read, styled({{"Café\n", redCentred}, {"€5\tx\ny—z\u00A0w\n", std::nullopt}}))
        << read->string();
}

TEST(RtfTest, AnAutomaticColourInACentredParagraphIsBlackAndCentred) {
    const std::optional<StyledText> read = styledTextFromRtf("{\\rtf1 \\qc 9\\par}");
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, StyledText("9\n", TextAttributes{Color{}, Alignment::Center}));
}

TEST(RtfTest, AColourBeyondTheTableIsTheAutomaticOne) {
    const std::optional<StyledText> read =
        styledTextFromRtf("{\\rtf1{\\colortbl;\\red1\\green2\\blue3;}\\cf7 a\\cf1 b}");
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(*read, styled({{"a", std::nullopt},
                             {"b", TextAttributes{Color{1, 2, 3}, Alignment::Natural}}}));
}

TEST(RtfTest, SomethingThatIsNoRtfDocumentReadsAsNothing) {
    EXPECT_FALSE(styledTextFromRtf("").has_value());
    EXPECT_FALSE(styledTextFromRtf("plain text").has_value());
    EXPECT_FALSE(styledTextFromRtf("{\\rtf1 an open group {\\b bold}").has_value());
}

TEST(RtfTest, EveryCutOfADocumentReadsAsSomethingOrNothingWithoutHarm) {
    const std::string rtf = rtfFromStyledText(
        styled({{"é🎲\t{x}\n", kRoll}, {"Mean:", kBlue}, {"\\u\\'", std::nullopt}}));
    const std::size_t whole = rtf.rfind('}') + 1;
    for (std::size_t length = 0; length < whole; ++length) {
        const std::optional<StyledText> read = styledTextFromRtf(rtf.substr(0, length));
        // Only the whole document closes its group.
        EXPECT_FALSE(read.has_value()) << length;
    }
    for (const char* odd : {"{\\rtf1 \\'", "{\\rtf1 \\'zz}", "{\\rtf1 \\u99999999999 }",
                            "{\\rtf1 \\u-55296?}", "{\\rtf1 \\uc-5\\u65?x}", "{\\rtf1 \\}"}) {
        static_cast<void>(styledTextFromRtf(odd));
    }
}

TEST(RtfTest, WhatFollowsTheDocumentsLastBraceIsIgnored) {
    const std::optional<StyledText> read = styledTextFromRtf("{\\rtf1 x}}trailing");
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->string(), "x");
}

TEST(RtfTest, MalformedUtf8IsWrittenAsTheReplacementCharacter) {
    const std::optional<StyledText> read =
        styledTextFromRtf(rtfFromStyledText(StyledText("a\xff"
                                                       "b")));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->string(),
              "a\xEF\xBF\xBD"
              "b");
}

// An independent reader: unrtf, from Debian's packages, finds the entries in order.
TEST(RtfTest, UnrtfReadsTheTextOfTheEntriesInOrder) {
    StyledText log;
    for (const char* entry : {"4d6 (newest)\n", "2d10\n", "3d6 (oldest)\n"}) {
        log.append(entry, kBlue);
        log.append("Mean:\t\t10.5 é\n", kBlack);
        log.append("\t\t\n", std::nullopt);
    }
    const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                       ("talvex-rtf-test-" + std::to_string(::getpid()) + ".rtf");
    {
        std::ofstream out(file, std::ios::binary);
        out << rtfFromStyledText(log);
    }
    // Its HTML output, as its plain-text output drops characters beyond ASCII.
    const std::string command = "unrtf --html --nopict '" + file.string() + "' 2>/dev/null";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    ASSERT_NE(pipe, nullptr);
    std::string text;
    std::array<char, 4096> buffer{};
    while (const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
        text.append(buffer.data(), n);
    }
    const int status = ::pclose(pipe.release());
    std::filesystem::remove(file);
    ASSERT_EQ(status, 0) << "unrtf is needed (Debian package unrtf)";
    const auto newest = text.find("4d6 (newest)");
    const auto middle = text.find("2d10");
    const auto oldest = text.find("3d6 (oldest)");
    ASSERT_NE(newest, std::string::npos) << text;
    ASSERT_NE(middle, std::string::npos) << text;
    ASSERT_NE(oldest, std::string::npos) << text;
    EXPECT_LT(newest, middle);
    EXPECT_LT(middle, oldest);
    EXPECT_NE(text.find("10.5 &eacute;"), std::string::npos) << text;
}

}  // namespace
}  // namespace talvex::app
