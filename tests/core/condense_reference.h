#pragma once

// Condensing as a plain reading of its definition, and the spellings that tell 2 from 2.0, for
// tests that hold a profile's lists against it.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/evaluation.h"

namespace talvex::core {

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline Decimal dec(std::string_view text) {
    return text == "NaN" ? Decimal::notANumber() : Decimal::decimalNumberWithString(text);
}

// The value with its exponent, which tells 2 from 2.0: a merge must keep the right spelling.
inline std::string spelling(const Decimal& value) {
    return value.stringValue() + "e" + std::to_string(value.exponent());
}

inline Pairs spellingsOf(const std::vector<Evaluation>& list) {
    Pairs result;
    for (const Evaluation& evaluation : list) {
        result.emplace_back(spelling(evaluation.quantity()), spelling(evaluation.weight()));
    }
    return result;
}

// With no shortcut.
inline bool referenceWithinError(const Decimal& first, const Decimal& second, int error) {
    if (first.isNotANumber()) {
        return true;
    }
    if (second.isNotANumber()) {
        return false;
    }
    return first.decimalRound(error).compare(second.decimalRound(error)) == 0;
}

inline std::vector<Evaluation> referenceCondense(std::vector<Evaluation> list, int error) {
    for (std::size_t i = 0; i < list.size();) {
        if (list[i].weight().compare(Decimal::zero()) > 0) {
            ++i;
        } else {
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const Evaluation& a, const Evaluation& b) { return a.compare(b) < 0; });
    for (auto left = static_cast<std::ptrdiff_t>(list.size()) - 2; left >= 0; --left) {
        Evaluation& leftOne = list[static_cast<std::size_t>(left)];
        Evaluation& rightOne = list[static_cast<std::size_t>(left) + 1];
        if (referenceWithinError(rightOne.quantity(), leftOne.quantity(), error)) {
            rightOne.setWeight(leftOne.weight() + rightOne.weight());
            list.erase(list.begin() + left);
        }
    }
    return list;
}

}  // namespace talvex::core
