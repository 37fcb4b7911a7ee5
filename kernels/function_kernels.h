#pragma once

#include <cstdint>
#include <span>
#include <variant>
#include <vector>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/profile.h"
#include "expressions/request_context.h"

namespace talvex::language {

// The kernels behind the named functions. Each takes the argument profiles of one call, in the
// order written, and answers a new profile; those that combine outcomes charge the request. A wrong
// number of arguments gives an empty profile (no evaluations), never an error. Several kernels
// scale their arguments in place before they read them, as noted; the caller's profiles are changed
// accordingly.

// --- Dice built from whole expressions -------------------------------------------------------

// An equal-odds choice between the arguments: each is scaled to weight one (in place) and all
// are added together. No arguments give an empty profile.
[[nodiscard]] core::Profile KVTXDieF(std::span<core::Profile> arguments, RequestContext& context);
// Pairs (profile, weight profile): each profile scaled (in place) to the mean of its weight
// profile and added. An odd count or an undefined mean gives an empty profile; a mean of zero
// or below skips its pair.
[[nodiscard]] core::Profile KVTXDieWF(std::span<core::Profile> arguments, RequestContext& context);
// (count, size): that many dice of that size, both random.
[[nodiscard]] core::Profile KVTXDieRF(std::span<core::Profile> arguments, RequestContext& context);
// (X, N): the sum of N independent rolls of X. N is scaled to weight one in place. A count
// with a fraction f adds f times one more roll, and the first roll is always there, so a count
// between 0 and 1 behaves like one between 1 and 2; a negative count negates the sum.
[[nodiscard]] core::Profile KVTXDieMultF(std::span<core::Profile> arguments,
                                         RequestContext& context);
// (X, N): the product of N independent rolls of X. N is scaled to weight one in place. A count
// of zero adds the outcome 1 with X's own defined weight, not scaled by the count's chance; a
// negative count gives the reciprocal of the product.
[[nodiscard]] core::Profile KVTXDiePowF(std::span<core::Profile> arguments,
                                        RequestContext& context);

// --- Keep, count and criterion ---------------------------------------------------------------

// (X, low, high, R): X where low <= X <= high, otherwise R. Weights travel through the
// enumeration as doubles. X, low and high contribute one undefined outcome with the chance
// that any of them is undefined; a wholly undefined argument gives an empty profile.
[[nodiscard]] core::Profile KVTXKeepF(std::span<core::Profile> arguments, RequestContext& context);
// (X, low, high): 1 where low <= X <= high, otherwise 0, with undefined handled as in keep.
[[nodiscard]] core::Profile KVTXCountF(std::span<core::Profile> arguments, RequestContext& context);
// (N, S, T): the successes among N dice of S sides, a success being a roll from 1 to T.
[[nodiscard]] core::Profile KVTXCriterionF(std::span<core::Profile> arguments,
                                           RequestContext& context);

// --- Confine: X conditioned on an interval, renormalised -------------------------------------

// (X, low, high): the outcomes between low and high.
[[nodiscard]] core::Profile KVTXConfineF(std::span<core::Profile> arguments,
                                         RequestContext& context);
// (X, low, high): the outcomes whose probability lies between low and high.
[[nodiscard]] core::Profile KVTXConfineWeightF(std::span<core::Profile> arguments,
                                               RequestContext& context);
// (X, low, high): the outcomes of a band of the cumulative probability; an outcome that
// straddles a bound is kept whole.
[[nodiscard]] core::Profile KVTXConfineWeightRangeF(std::span<core::Profile> arguments,
                                                    RequestContext& context);

// --- Drop ------------------------------------------------------------------------------------

// (X, N, L, H): N independent rolls of X, the L lowest and the H highest dropped, the rest
// summed. The counts are rounded to whole numbers and taken as absolute values; the result is
// the mixture over every combination of their outcomes. An undefined count, or a roll of X
// that shows an undefined outcome, makes the result undefined with its chance. N or H without
// any defined outcome gives an empty profile.
[[nodiscard]] core::Profile KVTXDropF(std::span<core::Profile> arguments, RequestContext& context);
// The distribution of the kept sum for fixed counts: `faces` are the outcomes of one roll with
// relative weights (an undefined face makes any roll that shows it undefined). The answer's
// weights are probabilities that sum to one. The rolls are counted as multisets, face by face
// in ascending order, so the cost grows polynomially in `rolls`; the work is charged to the
// request, and a count certain to cost more than the request has left is refused at once.
[[nodiscard]] std::vector<core::Evaluation> KVDropHelper(const std::vector<core::Evaluation>& faces,
                                                         std::int64_t rolls,
                                                         std::int64_t dropLowest,
                                                         std::int64_t dropHighest,
                                                         RequestContext& context);

// --- Combinators and statistics --------------------------------------------------------------

// The one-argument function `function` applied to every outcome of the first profile (called
// as function(0, outcome)); further profiles are ignored.
[[nodiscard]] core::Profile KVTXSoloCombinatorProfile(core::FunctionKernel function,
                                                      std::span<core::Profile> arguments);
// The left fold of `function` over all profiles: max and min of independent rolls.
[[nodiscard]] core::Profile KVTXChainCombinatorProfile(core::FunctionKernel function,
                                                       std::span<core::Profile> arguments,
                                                       RequestContext& context);

// What a statistic of a profile answers: nothing usable, one number, a list of numbers, a list
// of outcomes, or a whole profile.
using StatisticAnswer = std::variant<std::monostate, core::Decimal, std::vector<core::Decimal>,
                                     std::vector<core::Evaluation>, core::Profile>;
using ProfileStatistic = StatisticAnswer (*)(const core::Profile&);

[[nodiscard]] StatisticAnswer statisticMean(const core::Profile& profile);
[[nodiscard]] StatisticAnswer statisticStandardDeviation(const core::Profile& profile);
// Smallest and largest defined outcome.
[[nodiscard]] StatisticAnswer statisticRange(const core::Profile& profile);
[[nodiscard]] StatisticAnswer statisticValues(const core::Profile& profile);
[[nodiscard]] StatisticAnswer statisticMedian(const core::Profile& profile);
[[nodiscard]] StatisticAnswer statisticMode(const core::Profile& profile);

// The first profile's statistic as a profile: a number becomes a constant, each number of a
// list an outcome of weight one (equal numbers merge), outcomes are taken as they are and a
// profile is answered itself. Further profiles are ignored.
[[nodiscard]] core::Profile KVTXProfileIntegratedProfile(ProfileStatistic statistic,
                                                         std::span<core::Profile> arguments);

}  // namespace talvex::language
