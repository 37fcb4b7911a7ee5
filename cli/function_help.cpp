#include "cli/function_help.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace talvex::cli {

namespace {

struct FunctionLine {
    std::string_view call;
    std::string_view description;
};

// In the order the calculator matches the names.
constexpr std::array<FunctionLine, 35> kFunctions = {{
    {"ln(X)", "natural logarithm of each outcome"},
    {"log(X)", "base-10 logarithm of each outcome"},
    {"exp(X)", "e raised to each outcome"},
    {"sin(X)", "sine of each outcome (radians)"},
    {"cos(X)", "cosine of each outcome (radians)"},
    {"tan(X)", "tangent of each outcome (radians)"},
    {"round(X)", "each outcome rounded, halves away from zero"},
    {"floor(X)", "each outcome rounded down"},
    {"ceil(X)", "each outcome rounded up"},
    {"abs(X)", "absolute value of each outcome"},
    {"arcsin(X)", "arc sine of each outcome (radians)"},
    {"arccos(X)", "arc cosine of each outcome (radians)"},
    {"arctan(X)", "arc tangent of each outcome (radians)"},
    {"mean(X)", "the mean of X, as a constant"},
    {"stddev(X)", "the standard deviation of X, as a constant"},
    {"minval(X)", "the smallest outcome of X, as a constant"},
    {"maxval(X)", "the largest outcome of X, as a constant"},
    {"values(X)", "the number of distinct outcomes of X, as a constant"},
    {"median(X)", "the middle of the distinct outcomes of X, as a constant"},
    {"mode(X)", "the most likely outcomes of X, equally likely"},
    {"range(X)", "the smallest and the largest outcome of X, equally likely"},
    {"max(X,Y,...)", "the largest of independent rolls, e.g. max(1d20,1d20)"},
    {"min(X,Y,...)", "the smallest of independent rolls"},
    {"dieMult(X,N)", "the sum of N independent rolls of X"},
    {"diePow(X,N)", "the product of N independent rolls of X"},
    {"diew(X,A,Y,B,...)", "X, Y, ... chosen in proportion to the means of A, B, ..."},
    {"dier(N,S)", "N dice of S sides, both random"},
    {"die(X,Y,...)", "X, Y, ... chosen with equal odds"},
    {"keep(X,L,H,R)", "X where L <= X <= H, otherwise R"},
    {"count(X,L,H)", "1 where L <= X <= H, otherwise 0"},
    {"confineweightrange(X,L,H)", "X within a band L..H of its cumulative probability"},
    {"confineweight(X,L,H)", "X on the outcomes whose probability lies in L..H"},
    {"confine(X,L,H)", "X rerolled until it lies in L..H"},
    {"criterion(N,S,T)", "successes among N dice of S sides, a success being 1..T"},
    {"drop(X,N,L,H)", "N rolls of X, the L lowest and H highest dropped, the rest summed"},
}};

constexpr std::size_t kCallColumn = 28;

}  // namespace

std::string functionHelpText() {
    std::string text =
        "Functions (each argument is any expression; bounds and counts may be random):\n";
    for (const FunctionLine& function : kFunctions) {
        std::string line = "  ";
        line += function.call;
        line.resize(std::max(line.size() + 1, kCallColumn), ' ');
        line += function.description;
        text += line + '\n';
    }
    return text;
}

}  // namespace talvex::cli
