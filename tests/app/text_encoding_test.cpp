#include "app/text_encoding.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace talvex::app {
namespace {

using namespace std::string_view_literals;

template <typename Row>
std::string rowName(const ::testing::TestParamInfo<Row>& row) {
    return row.param.name;
}

// Every expected byte and every verdict on a character below comes from Python 3.11's
// "mac_roman" codec (codecs module) and its strict "utf-8" decoder on the development machine,
// not from the code under test: text.encode("mac_roman") and bytes.decode("mac_roman").

struct KnownText {
    const char* name;
    std::string_view utf8;
    std::string_view macRoman;
};

void PrintTo(const KnownText& known, std::ostream* out) { *out << known.name; }

const KnownText kKnownTexts[] = {
    {"AccentsInAName", "Café ü 3d6", "Caf\x8E \x9F 3d6"},
    {"PlusMinus", "2d6 ± 1", "2d6 \xB1 1"},
    {"Ellipsis", "1 … 6", "1 \xC9 6"},
    {"AtMost", "3d6 ≤ 10", "3d6 \xB2 10"},
    {"Division", "10 ÷ 2", "10 \xD6 2"},
    {"Degrees", "90°", "90\xA1"},
    {"Copyright", "© 2d10", "\xA9 2d10"},
    {"Bullet", "• 4d6 drop lowest", "\xA5 4d6 drop lowest"},
    {"Ligature", "ﬁve d6", "\xDEve d6"},
    {"PiAndOmega", "π Ω", "\xB9 \xBD"},
    {"AppleLogo", "\uF8FF d20", "\xF0 d20"},
    {"Increment", "\u2206 1d4", "\xC6 1d4"},
    {"Euro", "5 €", "5 \xDB"},
    {"Relations", "∞ ≠ ≥", "\xB0 \xAD \xB3"},
    {"LineEndingsAsTheyAre", "1d6\r2d6\n3d6\r\n", "1d6\r2d6\n3d6\r\n"},
    {"NulByte", "1d6\0002d6"sv, "1d6\0002d6"sv},
};

class KnownTextTest : public ::testing::TestWithParam<KnownText> {};

TEST_P(KnownTextTest, EncodesToTheKnownBytes) {
    const std::optional<std::string> bytes = macRomanFromUtf8(GetParam().utf8);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(*bytes, GetParam().macRoman);
}

TEST_P(KnownTextTest, DecodesFromTheKnownBytes) {
    const std::optional<std::string> text = utf8FromMacRoman(GetParam().macRoman);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(*text, GetParam().utf8);
}

TEST_P(KnownTextTest, RoundTrips) {
    const std::optional<std::string> bytes = macRomanFromUtf8(GetParam().utf8);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(utf8FromMacRoman(*bytes), std::string(GetParam().utf8));
}

INSTANTIATE_TEST_SUITE_P(MacRoman, KnownTextTest, ::testing::ValuesIn(kKnownTexts),
                         rowName<KnownText>);

struct Refused {
    const char* name;
    std::string_view utf8;
};

void PrintTo(const Refused& refused, std::ostream* out) { *out << refused.name; }

class UnrepresentableTest : public ::testing::TestWithParam<Refused> {};

TEST_P(UnrepresentableTest, IsRefused) {
    EXPECT_EQ(macRomanFromUtf8(GetParam().utf8), std::nullopt);
}

// Valid UTF-8, but not in Mac OS Roman. U+0394 and U+E01E are where glibc's table puts 0xC6
// and 0xF0; taking them would read back as other characters.
INSTANTIATE_TEST_SUITE_P(
    MacRoman, UnrepresentableTest,
    ::testing::Values(Refused{"Arrow", "3d6 → 10"}, Refused{"Times", "2 × d6"},
                      Refused{"Half", "½"}, Refused{"Cjk", "骰子 2d6"}, Refused{"Emoji", "🎲 d20"},
                      Refused{"GreekDelta", "\u0394"}, Refused{"PrivateUseE01E", "\uE01E"},
                      Refused{"OhmSign", "\u2126"}, Refused{"CurrencySign", "\u00A4"},
                      Refused{"CombiningAcute", "e\u0301"}, Refused{"ByteOrderMark", "\uFEFF1d6"}),
    rowName<Refused>);

class InvalidUtf8Test : public ::testing::TestWithParam<Refused> {};

TEST_P(InvalidUtf8Test, IsRefused) { EXPECT_EQ(macRomanFromUtf8(GetParam().utf8), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(MacRoman, InvalidUtf8Test,
                         ::testing::Values(Refused{"TruncatedAtTheEnd", "3d6 \xC3"},
                                           Refused{"TruncatedThreeBytes", "\xE2\x82"},
                                           Refused{"LeadWithoutContinuation", "\xC3("},
                                           Refused{"LoneContinuation", "\x80"},
                                           Refused{"Overlong", "\xC0\x80"},
                                           Refused{"Surrogate", "\xED\xA0\x80"},
                                           Refused{"BeyondUnicode", "\xF4\x90\x80\x80"},
                                           Refused{"ByteFF", "ok\xFF"},
                                           Refused{"MacRomanBytes", "Caf\x8E"}),
                         rowName<Refused>);

TEST(MacRomanTest, EmptyTextIsEmptyBothWays) {
    EXPECT_EQ(macRomanFromUtf8(""), std::string());
    EXPECT_EQ(utf8FromMacRoman(""), std::string());
}

// bytes(range(0x80, 0x100)).decode("mac_roman"), one escape per byte.
constexpr std::string_view kHighHalf =
    "\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1"   // 0x80
    "\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"   // 0x88
    "\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3"   // 0x90
    "\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"   // 0x98
    "\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF"   // 0xA0
    "\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"   // 0xA8
    "\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211"   // 0xB0
    "\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"   // 0xB8
    "\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB"   // 0xC0
    "\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"   // 0xC8
    "\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA"   // 0xD0
    "\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"   // 0xD8
    "\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1"   // 0xE0
    "\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"   // 0xE8
    "\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC"   // 0xF0
    "\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";  // 0xF8

TEST(MacRomanTest, EveryByteDecodesAsAppleSaysAndEncodesBack) {
    std::string everyByte;
    for (int value = 0; value < 256; ++value) {
        everyByte.push_back(static_cast<char>(value));
    }
    const std::optional<std::string> text = utf8FromMacRoman(everyByte);
    ASSERT_TRUE(text.has_value());
    // The lower half is ASCII, unchanged.
    EXPECT_EQ(text->substr(0, 0x80), everyByte.substr(0, 0x80));
    EXPECT_EQ(text->substr(0x80), kHighHalf);
    EXPECT_EQ(macRomanFromUtf8(*text), everyByte);
}

TEST(Utf8Check, AcceptsWellFormedTextAndRefusesTheRest) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("3d6 \xc3\xa9\xe2\x80\xa6 \xf0\x9f\x8e\xb2"));  // é … and a die
    EXPECT_FALSE(isUtf8("\xc3"));                                      // cut short
    EXPECT_FALSE(isUtf8("\x80"));                                      // a lone continuation byte
    EXPECT_FALSE(isUtf8("\xc0\xaf"));                                  // overlong
    EXPECT_FALSE(isUtf8("\xed\xa0\x80"));                              // a surrogate
    EXPECT_FALSE(isUtf8("\xf4\x90\x80\x80"));                          // past U+10FFFF
    EXPECT_FALSE(isUtf8("1d6 \xe9t\xe9"));                             // Latin-1
}

}  // namespace
}  // namespace talvex::app
