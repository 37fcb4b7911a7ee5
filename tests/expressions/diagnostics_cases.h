#pragma once

// The table of typed texts for the diagnostics pass: each text with every finding it must give,
// spread over several files by the kind of mistake.

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "expressions/diagnostics.h"

namespace talvex::language::testing {

struct DiagnosisCase {
    const char* name;
    std::string text;
    // Every finding, in order, exactly.
    std::vector<Finding> findings;
    // describe() of the first finding, for the rows that pin the whole line down.
    const char* line = nullptr;
    // Applying the first finding's suggestion leaves a text without errors that calculates.
    bool suggestionRepairs = false;
    // A valid text whose result has undefined outcomes on purpose ("cu" leaves ties undefined).
    bool undefinedByDesign = false;
};

inline std::ostream& operator<<(std::ostream& out, const DiagnosisCase& c) { return out << c.name; }

inline Suggestion fix(std::size_t begin, std::size_t end, std::string replacement,
                      std::string reason = {}) {
    return Suggestion{begin, end, std::move(replacement), std::move(reason)};
}

inline Finding error(std::size_t begin, std::size_t end, std::string message,
                     std::optional<Suggestion> suggestion = std::nullopt) {
    return Finding{Severity::error, begin, end, std::move(message), std::move(suggestion)};
}

inline Finding warning(std::size_t begin, std::size_t end, std::string message,
                       std::optional<Suggestion> suggestion = std::nullopt) {
    return Finding{Severity::warning, begin, end, std::move(message), std::move(suggestion)};
}

class Diagnosis : public ::testing::TestWithParam<DiagnosisCase> {};

inline std::string caseName(const ::testing::TestParamInfo<DiagnosisCase>& info) {
    return info.param.name;
}

}  // namespace talvex::language::testing
