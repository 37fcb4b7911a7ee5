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

ExpressionPointer Expression::construct(ExpressionPointer blank, std::string_view text,
                                        RequestContext& context) {
    ExpressionDictionary& expressions = context.expressions();
    std::string key = cleanString(text);
    if (const auto found = expressions.find(key); found != expressions.end()) {
        return found->second;
    }
    // Sub-expressions are built recursively (parentheses, function arguments, operands).
    struct DepthGuard {
        std::size_t& depth;
        explicit DepthGuard(std::size_t& counter) : depth(++counter) {}
        ~DepthGuard() { --depth; }
        DepthGuard(const DepthGuard&) = delete;
        DepthGuard& operator=(const DepthGuard&) = delete;
    } guard(context.m_constructionDepth);
    if (context.m_constructionDepth > core::kMaxConstructionDepth) {
        throw core::CalculationTooLarge("the expression is nested too deeply to calculate");
    }
    if (expressions.size() >= core::kMaxExpressions) {
        throw core::CalculationTooLarge("the calculation needs more than " +
                                        std::to_string(core::kMaxExpressions) +
                                        " distinct sub-expressions");
    }
    context.checkStopped();
    Expression& self = *blank;
    self.m_rawString = std::move(key);
    self.m_titleRawString = std::string(text);
    self.parseRawString(context);
    for (const ExpressionKind& kind : self.descendants()) {
        if (kind.isExpressionString(self.m_titleRawString)) {
            return construct(kind.create(), self.m_titleRawString, context);
        }
    }
    self.makeProfile(context);
    self.m_profile.setTitleString(self.m_rawString);
    // The dictionary keeps it for the rest of the session.
    self.m_profile.shrinkToFit();
    if (expressions.try_emplace(self.m_rawString, blank).second) {
        context.m_added.push_back(self.m_rawString);
        context.hold(self.heldOutcomes());
    }
    return blank;
}

}  // namespace talvex::language
