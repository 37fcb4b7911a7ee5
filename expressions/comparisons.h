#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/decimal.h"
#include "core/profile.h"
#include "expressions/request_context.h"

namespace talvex::language {

// The comparisons of independent operands, in text order. Outcomes are codes: for "vt" 1 when
// the first operand is strictly highest, -k when operand k is, 0 for a tie at the top; for the
// challenges 1 (the first succeeds) and 0 (it fails); for "tt" the marker digit 8 followed by
// one digit per operand, 1 for each operand in the tie for the highest value. Undefined
// outcomes of the operands become one undefined outcome of the result. Each operation
// normalises its operands in place.

// "vt": which operand is strictly highest, or a tie.
[[nodiscard]] core::Profile versusProfile(std::vector<core::Profile>& profiles);
// "vs": as "vt", a tie's chance shared equally among the operands taking part in it.
[[nodiscard]] core::Profile versusProfileNoTies(std::vector<core::Profile>& profiles);
// "tt": the chance of every pattern of operands sharing the highest value.
[[nodiscard]] core::Profile tieProfile(std::vector<core::Profile>& profiles);
// "ch": success of the first operand, its share of ties counting as success.
[[nodiscard]] core::Profile challengeProfile(std::vector<core::Profile>& profiles);
// "cw": ties in which the first operand takes part count as successes.
[[nodiscard]] core::Profile challengeProfileWinTie(std::vector<core::Profile>& profiles);
// "cl": ties count as failures.
[[nodiscard]] core::Profile challengeProfileLoseTie(std::vector<core::Profile>& profiles);
// "cu": ties are undefined.
[[nodiscard]] core::Profile challengeProfileUndefinedTie(std::vector<core::Profile>& profiles);

// One tie pattern and its chance: digits, one per operand from the first one given.
struct TiePattern {
    std::string digits;
    core::Decimal weight;
};

// The patterns in which the first entry ties for a value with one or more later entries.
// first[j] is the chance that entry j shows the value, running[j] that it shows less.
[[nodiscard]] std::vector<TiePattern> tiesWithFirstInArray(std::span<const core::Decimal> first,
                                                           std::span<const core::Decimal> running);

// The operation a comparator keyword names; an unknown keyword gives an empty profile. Every
// outcome of every operand meets every other operand: that much work is charged to the request
// before any of it is done.
[[nodiscard]] core::Profile comparisonProfileForKeyword(std::string_view comparator,
                                                        std::vector<core::Profile>& profiles,
                                                        RequestContext& context);

}  // namespace talvex::language
