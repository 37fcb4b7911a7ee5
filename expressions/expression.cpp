#include "expressions/expression.h"

#include <algorithm>
#include <string>

#include "core/calculation_limits.h"

namespace talvex::language {

ExpressionPointer Expression::expressionWithString(std::string_view text, RequestContext& context) {
    return construct(std::make_shared<Expression>(), text, context);
}

ExpressionPointer Expression::expressionWithString(std::string_view text) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    return expressionWithString(text, context);
}

std::string Expression::cleanString(std::string_view text) {
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        text.remove_prefix(colon + 1);
    }
    std::string cleaned;
    cleaned.reserve(text.size());
    for (const char c : text) {
        if (c != ' ' && c != '\n' && c != '\t' && c != '\r') {
            cleaned.push_back(c);
        }
    }
    return cleaned;
}

bool Expression::isSubset(std::string_view text, std::string_view allowed) noexcept {
    return std::all_of(text.begin(), text.end(),
                       [allowed](char c) { return allowed.find(c) != std::string_view::npos; });
}

bool Expression::isExpressionString(std::string_view /*text*/) noexcept { return true; }

std::span<const ExpressionKind> Expression::descendants() const { return expressionKinds(); }

namespace {

// Out of line, so that the message's temporaries take no room in every level of a deep
// construction.
[[noreturn, gnu::noinline]] void refuseMoreExpressions() {
    throw core::CalculationTooLarge("the calculation needs more than " +
                                    std::to_string(core::kMaxExpressions) +
                                    " distinct sub-expressions");
}

}  // namespace

// Sub-expressions are built recursively (parentheses, function arguments, operands), so this
// function is one level of every nesting and keeps its own frame small: the lookup and the
// storing, with their temporaries, are out of line.
ExpressionPointer Expression::construct(ExpressionPointer blank, std::string_view text,
                                        RequestContext& context) {
    if (ExpressionPointer known = lookUp(*blank, text, context)) {
        return known;
    }
    const RequestContext::ConstructionLevel level(context);
    if (context.expressions().size() >= core::kMaxExpressions) {
        refuseMoreExpressions();
    }
    context.checkStopped();
    blank->parseRawString(context);
    for (const ExpressionKind& kind : blank->descendants()) {
        if (kind.isExpressionString(blank->m_titleRawString)) {
            return construct(kind.create(), blank->m_titleRawString, context);
        }
    }
    blank->makeProfile(context);
    store(blank, context);
    return blank;
}

ExpressionPointer Expression::lookUp(Expression& blank, std::string_view text,
                                     RequestContext& context) {
    std::string key = cleanString(text);
    const ExpressionDictionary& expressions = context.expressions();
    if (const auto found = expressions.find(key); found != expressions.end()) {
        return found->second;
    }
    blank.m_rawString = std::move(key);
    blank.m_titleRawString = std::string(text);
    return nullptr;
}

void Expression::store(const ExpressionPointer& built, RequestContext& context) {
    Expression& self = *built;
    self.m_profile.setTitleString(self.m_rawString);
    // The dictionary keeps it for the rest of the session.
    self.m_profile.shrinkToFit();
    if (context.expressions().try_emplace(self.m_rawString, built).second) {
        context.m_added.push_back(self.m_rawString);
        context.hold(self.heldOutcomes());
    }
}

}  // namespace talvex::language
