#include "cli/option_list.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "core/report_options.h"
#include "core/styles.h"

namespace talvex::cli {

namespace {

std::string joined(const std::vector<std::string>& words, std::string_view last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) {
            text += i + 1 == words.size() ? last : std::string_view(", ");
        }
        text += words[i];
    }
    return text;
}

// What the repair of the option lets through, in words.
std::string allowedValues(const core::OptionSpec& option) {
    using core::OptionRule;
    switch (option.rule) {
        case OptionRule::AnyText:
            return "any text";
        case OptionRule::Style: {
            std::vector<std::string> names;
            for (const auto& [name, attributes] : core::defaultStyles()) {
                names.push_back(name);
            }
            return "a style: " + joined(names, " or ");
        }
        case OptionRule::Bool:
            return "yes or no";
        case OptionRule::Fixed:
            return "always the default, whatever is given";
        case OptionRule::Integer:
            return std::string("a whole number from ") + option.lower + " to " + option.upper;
        case OptionRule::Numeric:
            return std::string("a number from ") + option.lower + " to " + option.upper;
        case OptionRule::Direction:
            return joined(core::directionChoices(), " or ");
        case OptionRule::BarString:
            return "any text but the empty one; ProfileEmptyBarString for no bar";
        case OptionRule::Dividers:
            return "distinct numbers between 0 and the diagram total weight, separated by "
                   "commas; empty for none";
    }
    return {};
}

}  // namespace

std::string optionListText() {
    const auto& table = core::optionTable();
    std::vector<std::string> assignments;
    std::size_t width = 0;
    for (const core::OptionSpec& option : table) {
        assignments.push_back(std::string(option.name) + '=' + option.defaultValue);
        width = std::max(width, assignments.back().size());
    }
    std::string text;
    for (std::size_t i = 0; i < table.size(); ++i) {
        std::string line = assignments[i];
        line.resize(width + 2, ' ');
        text += line + allowedValues(table[i]) + '\n';
    }
    return text;
}

bool isReportOptionName(std::string_view name) {
    const auto& names = core::optionNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string nearestReportOptionName(std::string_view name) {
    std::string nearest;
    std::size_t best = 0;
    for (const std::string& known : core::optionNames()) {
        const std::size_t distance = editDistance(name, known);
        if (nearest.empty() || distance < best) {
            nearest = known;
            best = distance;
        }
    }
    return nearest;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
    // One row of the table at a time: row[j] is the distance from a's prefix to b's first j.
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] =
                std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0U : 1U)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace talvex::cli
