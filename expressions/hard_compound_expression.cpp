#include "expressions/hard_compound_expression.h"

#include <algorithm>

#include "expressions/compound_substitution.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;
using core::Profile;

namespace {

std::string_view withoutLabel(std::string_view text) {
    const auto colon = text.find(':');
    return colon == std::string_view::npos ? text : text.substr(colon + 1);
}

std::size_t occurrences(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace

bool HardCompoundExpression::isExpressionString(std::string_view text) {
    const std::string_view body = withoutLabel(text);
    return CompoundExpression::isExpressionString(body) && body.find('~') != std::string::npos;
}

ExpressionPointer HardCompoundExpression::create() {
    return std::make_shared<HardCompoundExpression>();
}

void HardCompoundExpression::parseRawString(RequestContext& /*context*/) {
    const SubstitutionTable blanks{{" ", ""}, {"\n", ""}, {"\r", ""}, {"\t", ""}};
    const std::string_view body = withoutLabel(titleRawString());
    std::string text = defineStrings(blanks, body, body).target;
    if (text.empty() || text.back() == ';') {
        text = "1/0";
    }
    setRawString(text);

    // The statements before the first one with "~" stay, each with its ";"; the first with
    // "~" is the hard definition; everything after it follows them.
    std::string kept;
    std::size_t start = 0;
    for (auto end = text.find(';'); end != std::string::npos; end = text.find(';', start)) {
        const std::string_view statement = std::string_view(text).substr(start, end - start);
        start = end + 1;
        if (const auto tilde = statement.find('~'); tilde != std::string_view::npos) {
            m_hardSymbol = std::string(statement.substr(0, tilde));
            m_hardValue = std::string(statement.substr(tilde + 1));
            m_remainingExpressionString = kept + text.substr(start);
            return;
        }
        kept.append(statement);
        kept.push_back(';');
    }
    // A "~" outside every statement defines nothing: the text is malformed, so undefined.
    m_remainingExpressionString = "1/0";
}

void HardCompoundExpression::makeProfile(RequestContext& context) {
    const std::string& name = m_hardSymbol;
    const std::string& remaining = m_remainingExpressionString;
    if (name.empty() || remaining.find(name) == std::string::npos) {
        ownProfile() = expressionWithString(remaining, context)->profile();
        return;
    }
    // The value, seen through the definitions that come before the expression proper.
    const auto lastStatement = remaining.rfind(';');
    const std::string definitions =
        lastStatement == std::string::npos ? std::string() : remaining.substr(0, lastStatement + 1);
    Profile values = expressionWithString(definitions + m_hardValue, context)->profile();
    values.scaleToNormal();

    // Defining the name as itself marks every use, once the other definitions are written out.
    std::string counting = name + "=" + name + ";" + remaining;
    std::replace(counting.begin(), counting.end(), '~', '=');
    const std::string marked = expressionWithString(counting, context)->rawString();
    if (occurrences(marked, "(" + name + ")") <= 1) {
        const Profile once =
            expressionWithString(name + "=" + m_hardValue + ";" + remaining, context)->profile();
        Profile result;
        result.setEvaluations(once.evaluations());
        ownProfile() = std::move(result);
        return;
    }
    Profile result;
    std::string comparator;
    for (const Evaluation& outcome : values.evaluations()) {
        const std::string fixed = outcome.isDefined() ? outcome.quantity().stringValue() : "1/0";
        Profile part =
            expressionWithString(name + "=" + fixed + ";" + remaining, context)->profile();
        part.scaleToTotalWeight(outcome.weight());
        context.chargeCombination(part.evaluationCount(), 1);
        result.addEvaluations(part.evaluations());
        comparator = part.comparatorString();
    }
    result.setComparatorString(comparator);
    ownProfile() = std::move(result);
}

}  // namespace talvex::language
