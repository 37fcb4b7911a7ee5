#include "core/legend.h"

#include <algorithm>

#include "core/report_writer.h"

namespace talvex::core {

namespace {

enum class Family { None, Versus, Challenge, Ties };

Family familyOf(std::string_view comparator) {
    if (comparator == "vs" || comparator == "vt") {
        return Family::Versus;
    }
    if (comparator == "ch" || comparator == "cw" || comparator == "cl" || comparator == "cu") {
        return Family::Challenge;
    }
    if (comparator == "tt") {
        return Family::Ties;
    }
    return Family::None;
}

// Outermost parentheses stay, everything inside them becomes "=".
std::string maskOf(std::string_view title) {
    std::string mask;
    mask.reserve(title.size());
    int depth = 0;
    for (const char c : title) {
        if (c == '(') {
            mask.push_back(depth == 0 ? '(' : '=');
            ++depth;
        } else if (c == ')') {
            --depth;
            mask.push_back(depth == 0 ? ')' : '=');
        } else {
            mask.push_back(depth == 0 ? c : '=');
        }
    }
    return mask;
}

}  // namespace

std::vector<std::string> legendOperands(std::string_view title, std::string_view comparator) {
    std::vector<std::string> operands;
    std::string rest(title);
    std::string mask = maskOf(title);
    if (!comparator.empty()) {
        for (auto at = mask.find(comparator); at != std::string::npos; at = mask.find(comparator)) {
            operands.push_back(rest.substr(0, at));
            rest.erase(0, at + comparator.size());
            mask.erase(0, at + comparator.size());
        }
    }
    if (!rest.empty()) {
        operands.push_back(rest);
    }
    return operands;
}

StyledText legendWithOptions(const Profile& profile, const Options* options, const Styles& styles) {
    const std::string& comparator = profile.comparatorString();
    const Family family = familyOf(comparator);
    if (options == nullptr || family == Family::None) {
        return StyledText{};
    }
    const int precision = optionInteger(*options, "legend precision");
    const bool reverse = optionIsYes(*options, "reverse versus");
    const std::vector<std::string> operands = legendOperands(profile.titleString(), comparator);
    std::vector<Evaluation> outcomes = profile.evaluations();
    if (reverse) {
        std::reverse(outcomes.begin(), outcomes.end());
    }

    ReportWriter writer(styles);
    const auto startLine = [&](const Decimal& code) {
        writer.decimal(code, precision, "quantity");
        writer.string(" = ", "operator");
    };
    const Decimal sign = Decimal::decimalNumberWithInteger(reverse ? -1 : 1);
    for (const Evaluation& outcome : outcomes) {
        const Decimal& quantity = outcome.quantity();
        switch (family) {
            case Family::Versus: {
                bool named = false;
                for (std::size_t k = 0; k < operands.size() && !named; ++k) {
                    const auto code = k == 0 ? -1 : static_cast<std::int64_t>(k);
                    if (quantity.compare(Decimal::decimalNumberWithInteger(code) * sign) == 0) {
                        startLine(quantity);
                        writer.string(operands[k], "legend key");
                        writer.string(" dominates\n", "legend circumstance");
                        named = true;
                    }
                }
                if (!named && quantity.compare(Decimal::zero()) == 0) {
                    startLine(quantity);
                    writer.string("tie\n", "legend circumstance");
                }
                break;
            }
            case Family::Challenge: {
                const std::string first = operands.empty() ? std::string() : operands.front();
                const Decimal success = Decimal::decimalNumberWithInteger(-1) * sign;
                if (quantity.compare(success) == 0) {
                    startLine(quantity);
                    writer.string(first, "legend key");
                    writer.string(" succeeds\n", "legend circumstance");
                } else if (quantity.compare(Decimal::zero()) == 0) {
                    startLine(quantity);
                    writer.string(first, "legend key");
                    writer.string(" fails\n", "legend circumstance");
                }
                break;
            }
            case Family::Ties: {
                if (!outcome.isDefined()) {
                    break;
                }
                // One digit per operand after the leading marker digit.
                const std::string digits = quantity.stringValue().substr(1);
                startLine(quantity);
                bool any = false;
                for (std::size_t k = 0; k < digits.size() && k < operands.size(); ++k) {
                    if (digits[k] == '1') {
                        if (any) {
                            writer.string(", ", "default");
                        }
                        writer.string(operands[k], "legend key");
                        any = true;
                    }
                }
                writer.string(any ? " tie\n" : "no tie\n", "legend circumstance");
                break;
            }
            case Family::None:
                break;
        }
    }
    return writer.take();
}

}  // namespace talvex::core
