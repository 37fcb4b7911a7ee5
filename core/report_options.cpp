#include "core/report_options.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace talvex::core {

namespace {

using Rule = OptionRule;

constexpr const char* kBar = "|";

}  // namespace

// In report order; "log size" is not a default but is always repaired into the result.
const std::vector<OptionSpec>& optionTable() {
    static const std::vector<OptionSpec> rules = {
        {"header", "", Rule::AnyText},
        {"header style", "default", Rule::Style},
        {"time stamp", "no", Rule::Bool},
        {"time stamp format", "%a, %b %e, %Y,   %H:%M %Ss", Rule::Fixed},
        {"title", "no", Rule::Bool},
        {"log size", "100", Rule::Integer, "0", "100000"},
        {"statistics", "no", Rule::Bool},
        {"statistics heading", "no", Rule::Bool},
        {"statistics precision", "2", Rule::Integer, "-10", "10"},
        {"mode precision", "2", Rule::Integer, "-10", "10"},
        {"include undefined in statistics", "no", Rule::Bool},
        {"values", "yes", Rule::Bool},
        {"range", "yes", Rule::Fixed},
        {"mode", "yes", Rule::Bool},
        {"median", "yes", Rule::Bool},
        {"mean", "yes", Rule::Bool},
        {"variance", "no", Rule::Bool},
        {"standard deviation", "yes", Rule::Bool},
        {"mean deviation", "no", Rule::Bool},
        {"diagram", "no", Rule::Bool},
        {"diagram heading", "no", Rule::Bool},
        {"diagram precision", "2", Rule::Integer, "-10", "10"},
        {"diagram weight precision", "2", Rule::Integer, "-10", "10"},
        {"diagram print zeros", "no", Rule::Bool},
        {"diagram include undefined", "yes", Rule::Bool},
        {"diagram total", "no", Rule::Bool},
        {"diagram direction", "descending", Rule::Direction},
        {"diagram running weight", "yes", Rule::Bool},
        {"diagram total weight", "100", Rule::Numeric, "0.000001", "1000000"},
        {"diagram max height", "75", Rule::Integer, "1", "1000"},
        {"diagram height", "30", Rule::Integer, "1", "1000"},
        {"diagram shrink to table height", "no", Rule::Bool},
        {"dividers", "25,50,75", Rule::Dividers},
        {"table", "no", Rule::Bool},
        {"table heading", "no", Rule::Bool},
        {"table precision", "2", Rule::Integer, "-10", "10"},
        {"table weight precision", "2", Rule::Integer, "-10", "10"},
        {"table max height", "30", Rule::Integer, "1", "1000"},
        {"max bar", "10", Rule::Integer, "0", "100"},
        {"bar string", kBar, Rule::BarString},
        {"relative bar", "yes", Rule::Bool},
        {"average bar", "yes", Rule::Bool},
        {"table include undefined", "yes", Rule::Bool},
        {"table total", "no", Rule::Bool},
        {"table direction", "descending", Rule::Direction},
        {"table running weight", "yes", Rule::Bool},
        {"table total weight", "100", Rule::Numeric, "0.000001", "1000000"},
        {"table set max weight", "no", Rule::Bool},
        {"table max weight", "100", Rule::Numeric, "0.000001", "1000000"},
        {"legend", "no", Rule::Bool},
        {"legend heading", "no", Rule::Bool},
        {"reverse versus", "yes", Rule::Bool},
        {"legend precision", "0", Rule::Integer, "-10", "10"},
        {"roll", "no", Rule::Bool},
        {"roll heading", "no", Rule::Bool},
        {"roll precision", "2", Rule::Integer, "-10", "10"},
        {"past rolls", "no", Rule::Bool},
        {"past rolls heading", "no", Rule::Bool},
        {"past rolls precision", "2", Rule::Integer, "-10", "10"},
        {"past rolls number", "1", Rule::Integer, "0", "1000"},
        {"past rolls continuation", "no", Rule::Bool},
        {"past rolls unfinished", "no", Rule::Bool},
        {"footer", "", Rule::AnyText},
        {"footer style", "default", Rule::Style},
    };
    return rules;
}

const std::vector<std::string>& directionChoices() {
    static const std::vector<std::string> choices = {"ascending", "descending"};
    return choices;
}

namespace {

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

std::vector<std::string> splitAtCommas(std::string_view text) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == ',') {
            pieces.emplace_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    return pieces;
}

// Dividers lie strictly inside (0, total weight): each piece is repaired into that range,
// pieces that are no number are dropped, the rest sorted and joined with commas.
std::string repairDividers(std::string_view given, const Decimal& totalWeight) {
    std::string text;
    for (const char c : given) {
        if (c != ' ') {
            text.push_back(c);
        }
    }
    const Decimal margin = Decimal::decimalNumberWithString("0.0000000001");
    const std::string lower = margin.stringValue();
    const std::string upper = (totalWeight - margin).stringValue();
    std::vector<Decimal> dividers;
    for (const std::string& piece : splitAtCommas(text)) {
        const Decimal value =
            Decimal::decimalNumberWithString(fixNumericOption(piece, lower, upper, ""));
        if (!value.isNotANumber()) {
            dividers.push_back(value);
        }
    }
    std::stable_sort(dividers.begin(), dividers.end(),
                     [](const Decimal& a, const Decimal& b) { return a.compare(b) < 0; });
    // A repeated divider is removed at the position its value names rather than at its own
    // index; when that position does not exist the repair cannot go on.
    for (std::size_t i = 1; i < dividers.size();) {
        if (dividers[i].compare(dividers[i - 1]) == 0) {
            const auto position = static_cast<std::size_t>(std::max(0, dividers[i].intValue()));
            if (position >= dividers.size()) {
                throw DividerListError();
            }
            dividers.erase(dividers.begin() + static_cast<std::ptrdiff_t>(position));
        } else {
            ++i;
        }
    }
    std::string joined;
    for (const Decimal& divider : dividers) {
        if (!joined.empty()) {
            joined.push_back(',');
        }
        joined += divider.stringValue();
    }
    return joined;
}

}  // namespace

Options defaultOptions() {
    Options options;
    for (const OptionSpec& rule : optionTable()) {
        if (std::string_view(rule.name) != "log size") {
            options.emplace(rule.name, rule.defaultValue);
        }
    }
    return options;
}

const std::vector<std::string>& optionNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const OptionSpec& rule : optionTable()) {
            list.emplace_back(rule.name);
        }
        return list;
    }();
    return names;
}

std::string fixBoolOption(std::optional<std::string_view> value,
                          std::optional<std::string_view> defaultString) {
    if (!defaultString) {
        return "";
    }
    if (value && equalsIgnoringCase(*value, "yes")) {
        return "yes";
    }
    if (value && equalsIgnoringCase(*value, "no")) {
        return "no";
    }
    return std::string(*defaultString);
}

std::string fixNumericOption(std::optional<std::string_view> value,
                             std::optional<std::string_view> betweenString,
                             std::optional<std::string_view> andString,
                             std::optional<std::string_view> defaultString) {
    if (!defaultString) {
        return "";
    }
    if (!value || !betweenString || !andString) {
        return std::string(*defaultString);
    }
    const Decimal number = Decimal::decimalNumberWithString(*value);
    Decimal minimum = Decimal::decimalNumberWithString(*betweenString);
    Decimal maximum = Decimal::decimalNumberWithString(*andString);
    if (number.isNotANumber() || minimum.isNotANumber() || maximum.isNotANumber()) {
        return std::string(*defaultString);
    }
    if (maximum.compare(minimum) < 0) {
        std::swap(minimum, maximum);
    }
    if (number.compare(minimum) < 0) {
        return minimum.stringValue();
    }
    if (number.compare(maximum) > 0) {
        return maximum.stringValue();
    }
    return number.stringValue();
}

std::string fixIntegerOption(std::optional<std::string_view> value,
                             std::optional<std::string_view> betweenString,
                             std::optional<std::string_view> andString,
                             std::optional<std::string_view> defaultString) {
    const std::string repaired = fixNumericOption(value, betweenString, andString, defaultString);
    if (repaired.empty()) {
        return repaired;
    }
    return Decimal::decimalNumberWithString(repaired).decimalRound(0).stringValue();
}

std::string fixStringOption(std::optional<std::string_view> value,
                            const std::vector<std::string>& amongStrings,
                            std::optional<std::string_view> defaultString) {
    if (!defaultString) {
        return "";
    }
    if (!value) {
        return std::string(*defaultString);
    }
    for (const std::string& allowed : amongStrings) {
        if (equalsIgnoringCase(*value, allowed)) {
            return allowed;
        }
    }
    return std::string(*defaultString);
}

Options patchOptions(const Options* options, const Styles& styles) {
    if (options == nullptr) {
        return defaultOptions();
    }
    Options result = defaultOptions();
    // A missing value reads as the empty string, which every rule turns into its default.
    const auto given = [options](std::string_view key) -> std::string_view {
        const auto found = options->find(key);
        return found == options->end() ? std::string_view() : std::string_view(found->second);
    };
    for (const OptionSpec& rule : optionTable()) {
        const std::string_view value = given(rule.name);
        std::string repaired;
        switch (rule.rule) {
            case Rule::AnyText:
                repaired = std::string(value);
                break;
            case Rule::Style:
                repaired = styles.contains(value) ? std::string(value) : rule.defaultValue;
                break;
            case Rule::Bool:
                repaired = fixBoolOption(value, rule.defaultValue);
                break;
            case Rule::Fixed:
                repaired = rule.defaultValue;
                break;
            case Rule::Integer:
                repaired = fixIntegerOption(value, rule.lower, rule.upper, rule.defaultValue);
                break;
            case Rule::Numeric:
                repaired = fixNumericOption(value, rule.lower, rule.upper, rule.defaultValue);
                break;
            case Rule::Direction:
                repaired = fixStringOption(value, directionChoices(), rule.defaultValue);
                break;
            case Rule::BarString:
                repaired = value.empty() ? std::string(rule.defaultValue) : std::string(value);
                if (repaired == "ProfileEmptyBarString") {
                    repaired.clear();
                }
                break;
            case Rule::Dividers:
                // Without a divider list at all the quartiles stay; a list that is given is
                // repaired, and an empty one means no dividers.
                repaired = options->contains(rule.name)
                               ? repairDividers(value, Decimal::decimalNumberWithString(
                                                           result.at("diagram total weight")))
                               : std::string(rule.defaultValue);
                break;
        }
        result[rule.name] = std::move(repaired);
    }
    return result;
}

bool optionIsYes(const Options& options, std::string_view key) {
    const auto found = options.find(key);
    return found != options.end() && found->second == "yes";
}

int optionInteger(const Options& options, std::string_view key) {
    const auto found = options.find(key);
    return found == options.end() ? 0 : Decimal::decimalNumberWithString(found->second).intValue();
}

Decimal optionDecimal(const Options& options, std::string_view key) {
    const auto found = options.find(key);
    return found == options.end() ? Decimal::zero()
                                  : Decimal::decimalNumberWithString(found->second);
}

const std::string& optionString(const Options& options, std::string_view key) {
    static const std::string kEmpty;
    const auto found = options.find(key);
    return found == options.end() ? kEmpty : found->second;
}

}  // namespace talvex::core
