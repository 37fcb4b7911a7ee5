#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/decimal.h"
#include "core/styles.h"

namespace talvex::core {

// Option name -> value, all values text: "yes"/"no", plain decimal numbers, or free text.
using Options = std::map<std::string, std::string, std::less<>>;

// A divider list that holds the same value twice cannot be repaired; the request boundary
// reports it in plain words.
class DividerListError : public std::out_of_range {
  public:
    DividerListError() : std::out_of_range("the divider list holds the same value twice") {}
};

// How an option's value is repaired, and so what it may hold.
enum class OptionRule : std::uint8_t {
    AnyText,    // any text, used unchanged
    Style,      // the name of a style
    Bool,       // "yes" or "no", in any case
    Fixed,      // never taken from the given options: always the default
    Integer,    // a number between lower and upper, rounded to a whole number
    Numeric,    // a number between lower and upper
    Direction,  // one of directionChoices()
    BarString,  // any non-empty text; "ProfileEmptyBarString" stands for the empty one
    Dividers,   // distinct numbers between 0 and the diagram total weight, comma-separated
};

// One option: its name, its default, how it is repaired and, for numbers, the bounds.
struct OptionSpec {
    const char* name;
    const char* defaultValue;
    OptionRule rule;
    const char* lower = nullptr;
    const char* upper = nullptr;
};

// Every option as patchOptions repairs it, in the order of the report sections, "log size"
// included. What a front end tells its users about the options comes from here.
[[nodiscard]] const std::vector<OptionSpec>& optionTable();
// What a Direction option may hold.
[[nodiscard]] const std::vector<std::string>& directionChoices();

// Every option with its default value.
[[nodiscard]] Options defaultOptions();
// Every option name, in the order of the report sections, "log size" included.
[[nodiscard]] const std::vector<std::string>& optionNames();

// A repaired copy: every option present and well formed, anything missing or malformed at its
// default. "range" and "time stamp format" are never taken from the given options. Styles
// named by "header style" and "footer style" must exist in `styles`. Throws DividerListError
// for a divider list that repeats a value.
[[nodiscard]] Options patchOptions(const Options* options, const Styles& styles);

// The repair rules. A missing default gives the empty string.
[[nodiscard]] std::string fixBoolOption(std::optional<std::string_view> value,
                                        std::optional<std::string_view> defaultString);
[[nodiscard]] std::string fixNumericOption(std::optional<std::string_view> value,
                                           std::optional<std::string_view> betweenString,
                                           std::optional<std::string_view> andString,
                                           std::optional<std::string_view> defaultString);
[[nodiscard]] std::string fixIntegerOption(std::optional<std::string_view> value,
                                           std::optional<std::string_view> betweenString,
                                           std::optional<std::string_view> andString,
                                           std::optional<std::string_view> defaultString);
[[nodiscard]] std::string fixStringOption(std::optional<std::string_view> value,
                                          const std::vector<std::string>& amongStrings,
                                          std::optional<std::string_view> defaultString);

// Reading repaired options. Missing keys read as "no", 0 or the empty string.
[[nodiscard]] bool optionIsYes(const Options& options, std::string_view key);
[[nodiscard]] int optionInteger(const Options& options, std::string_view key);
[[nodiscard]] Decimal optionDecimal(const Options& options, std::string_view key);
[[nodiscard]] const std::string& optionString(const Options& options, std::string_view key);

}  // namespace talvex::core
