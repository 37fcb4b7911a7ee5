#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace talvex::core {

// Thrown when a calculation would need more memory or time than an interactive calculator
// should spend (a die with a hundred million faces, a million dice). Like DecimalError it
// passes through the calculation layers and the request boundary tells the user.
class CalculationTooLarge : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a cancelled request says.
inline constexpr const char* kCalculationCancelled = "Calculation cancelled";

// Thrown when a request is cancelled from outside (Cancel in the window, Ctrl-C in the
// terminal): the request ends as if it had never started.
class CalculationCancelled : public std::runtime_error {
  public:
    CalculationCancelled() : std::runtime_error(kCalculationCancelled) {}
};

// Outcomes of one profile (a single die, for instance).
inline constexpr std::size_t kMaxOutcomes = 1'000'000;
// Outcome pairs of one combination of two profiles, each an outcome until they are merged:
// the memory a single combination may take when no request bounds it.
inline constexpr std::size_t kMaxOutcomePairs = 20'000'000;
// Expressions under construction one inside the other (each level of parentheses or of a
// function call takes about two); deeper texts would exhaust the stack.
inline constexpr std::size_t kMaxConstructionDepth = 3000;
// The stack a thread is assumed to have when the system sets no limit (Debian's default).
inline constexpr std::size_t kAssumedStackBytes = 8U * 1024U * 1024U;
// Dice in one dice text.
inline constexpr long kMaxDice = 100'000;
// Expressions held by one expressions dictionary: every sub-expression of every calculation
// made with it, so that runaway enumerations (nested hard definitions) stop in bounded time
// and memory.
inline constexpr std::size_t kMaxExpressions = 100'000;

}  // namespace talvex::core
