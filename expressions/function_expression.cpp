#include "expressions/function_expression.h"

#include <array>
#include <utility>

#include "kernels/function_kernels.h"
#include "kernels/operator_kernels.h"

namespace talvex::language {

using core::Profile;

namespace {

constexpr std::array<std::string_view, 35> kFunctionNames = {"ln",
                                                             "log",
                                                             "exp",
                                                             "sin",
                                                             "cos",
                                                             "tan",
                                                             "round",
                                                             "floor",
                                                             "ceil",
                                                             "abs",
                                                             "arcsin",
                                                             "arccos",
                                                             "arctan",
                                                             "mean",
                                                             "stddev",
                                                             "minval",
                                                             "maxval",
                                                             "values",
                                                             "median",
                                                             "mode",
                                                             "range",
                                                             "max",
                                                             "min",
                                                             "dieMult",
                                                             "diePow",
                                                             "diew",
                                                             "dier",
                                                             "die",
                                                             "keep",
                                                             "count",
                                                             "confineweightrange",
                                                             "confineweight",
                                                             "confine",
                                                             "criterion",
                                                             "drop"};

using FunctionKernel = Profile (*)(std::span<Profile> arguments, RequestContext& context);

// "minval" and "maxval" are the range with only its first or its last outcome kept.
template <bool kLast>
Profile rangeEnd(std::span<Profile> arguments, RequestContext& /*context*/) {
    Profile range = KVTXProfileIntegratedProfile(statisticRange, arguments);
    std::vector<core::Evaluation> ends = range.evaluations();
    if (ends.size() > 1) {
        range.setEvaluations({kLast ? ends.back() : ends.front()});
    }
    return range;
}

// One pass over the argument's outcomes: nothing to charge beyond building the argument.
template <core::FunctionKernel kFunction>
Profile solo(std::span<Profile> arguments, RequestContext& /*context*/) {
    return KVTXSoloCombinatorProfile(kFunction, arguments);
}

template <core::FunctionKernel kFunction>
Profile chain(std::span<Profile> arguments, RequestContext& context) {
    return KVTXChainCombinatorProfile(kFunction, arguments, context);
}

template <ProfileStatistic kStatistic>
Profile integrated(std::span<Profile> arguments, RequestContext& /*context*/) {
    return KVTXProfileIntegratedProfile(kStatistic, arguments);
}

struct Dispatch {
    std::string_view name;
    FunctionKernel kernel;
};

// The order in which a name is looked up when the profile is built.
constexpr std::array<Dispatch, 35> kDispatch = {{
    {"ln", solo<CompoundExpressionLnF>},
    {"log", solo<CompoundExpressionLogF>},
    {"exp", solo<CompoundExpressionExpF>},
    {"sin", solo<CompoundExpressionSinF>},
    {"cos", solo<CompoundExpressionCosF>},
    {"tan", solo<CompoundExpressionTanF>},
    {"round", solo<CompoundExpressionRoundF>},
    {"floor", solo<CompoundExpressionFloorF>},
    {"ceil", solo<CompoundExpressionCeilF>},
    {"abs", solo<CompoundExpressionAbsF>},
    {"arcsin", solo<CompoundExpressionArcsinF>},
    {"arccos", solo<CompoundExpressionArccosF>},
    {"arctan", solo<CompoundExpressionArctanF>},
    {"mean", integrated<statisticMean>},
    {"stddev", integrated<statisticStandardDeviation>},
    {"range", integrated<statisticRange>},
    {"minval", rangeEnd<false>},
    {"maxval", rangeEnd<true>},
    {"values", integrated<statisticValues>},
    {"median", integrated<statisticMedian>},
    {"mode", integrated<statisticMode>},
    {"min", chain<CompoundExpressionMinF>},
    {"max", chain<CompoundExpressionMaxF>},
    {"die", KVTXDieF},
    {"dier", KVTXDieRF},
    {"diew", KVTXDieWF},
    {"dieMult", KVTXDieMultF},
    {"diePow", KVTXDiePowF},
    {"keep", KVTXKeepF},
    {"count", KVTXCountF},
    {"confine", KVTXConfineF},
    {"confineweight", KVTXConfineWeightF},
    {"confineweightrange", KVTXConfineWeightRangeF},
    {"criterion", KVTXCriterionF},
    {"drop", KVTXDropF},
}};

}  // namespace

std::span<const std::string_view> FunctionExpression::functionNames() { return kFunctionNames; }

ExpressionPointer FunctionExpression::create() { return std::make_shared<FunctionExpression>(); }

// One whole call: a known name right before the first "(", and the parenthesis that closes it
// as the last character. "max(1,2)+1" is left to the compound kind.
bool FunctionExpression::isExpressionString(std::string_view text) {
    if (!Expression::isExpressionString(text)) {
        return false;
    }
    const std::string cleaned = cleanString(text);
    const std::size_t open = cleaned.find('(');
    bool named = false;
    for (const std::string_view name : kFunctionNames) {
        if (cleaned.find(name) == 0 && open == name.size()) {
            named = true;
            break;
        }
    }
    if (!named) {
        return false;
    }
    std::size_t depth = 1;
    std::size_t position = open + 1;
    while (depth > 0) {
        position = cleaned.find_first_of("()", position);
        if (position == std::string::npos) {
            return false;
        }
        depth = cleaned[position] == '(' ? depth + 1 : depth - 1;
        ++position;
    }
    return position == cleaned.size();
}

void FunctionExpression::parseRawString(RequestContext& context) {
    std::vector<std::string> argumentStrings = cutArguments();
    for (const std::string& argument : argumentStrings) {
        keepArgument(*expressionWithString(argument, context), context);
    }
    m_argumentStrings = std::move(argumentStrings);
}

void FunctionExpression::keepArgument(const Expression& argument, RequestContext& context) {
    // The call keeps a copy of every argument besides the dictionary's.
    context.reserveOutcomes(static_cast<double>(argument.profileView().evaluationCount()));
    m_arguments.push_back(argument.profile());
}

std::vector<std::string> FunctionExpression::cutArguments() {
    const std::string& text = rawString();
    for (const std::string_view name : kFunctionNames) {
        if (text.find(name) == 0) {
            m_function = std::string(name);
            break;
        }
    }

    std::vector<std::string> arguments;
    std::size_t position = text.find('(');
    position = position == std::string::npos ? text.size() : position + 1;
    long depth = 1;
    std::string buffer;
    while (position < text.size()) {
        // Commas split arguments only at the top level; deeper ones belong to an inner call.
        const std::string_view stops = depth == 1 ? ",()" : "()";
        std::size_t next = text.find_first_of(stops, position);
        if (next == std::string::npos) {
            next = text.size();
        }
        buffer.append(text, position, next - position);
        position = next;
        if (position < text.size() && text[position] == '(') {
            buffer += '(';
            ++depth;
            ++position;
        } else if (position < text.size() && text[position] == ')') {
            buffer += ')';
            --depth;
            ++position;
        }
        if (depth == 1 && position < text.size() && text[position] == ',') {
            ++position;
            // An empty argument ("max(1,,2)", "max(,1)") is skipped.
            if (!buffer.empty()) {
                arguments.push_back(std::exchange(buffer, std::string()));
            }
        }
    }
    // What is left is the last argument and the closing parenthesis.
    if (buffer.size() > 1) {
        buffer.pop_back();
        arguments.push_back(std::move(buffer));
    }
    return arguments;
}

void FunctionExpression::makeProfile(RequestContext& context) {
    for (const Dispatch& entry : kDispatch) {
        if (entry.name == m_function) {
            ownProfile() = entry.kernel(m_arguments, context);
            return;
        }
    }
    ownProfile() = Profile{};
}

std::size_t FunctionExpression::heldOutcomes() const noexcept {
    std::size_t held = Expression::heldOutcomes();
    for (const Profile& argument : m_arguments) {
        held += argument.evaluationCount();
    }
    return held;
}

}  // namespace talvex::language
