#include "expressions/constant_expression.h"

#include <algorithm>
#include <vector>

namespace talvex::language {
namespace {

// The pieces between separators, as a separator-splitting string routine gives them: n
// separators always give n + 1 pieces, empty ones included.
std::vector<std::string_view> split(std::string_view text, bool (*isSeparator)(char)) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isSeparator(text[i])) {
            pieces.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

}  // namespace

bool ConstantExpression::isExpressionString(std::string_view text) {
    const auto signPieces = split(text, [](char c) { return c == '+' || c == '-'; });
    if (signPieces.size() > 2 || (signPieces.size() == 2 && !signPieces.front().empty())) {
        return false;
    }
    const auto digitPieces = split(text, [](char c) { return c >= '0' && c <= '9'; });
    if (digitPieces.size() < 2) {
        return false;
    }
    const auto nonEmpty = std::count_if(digitPieces.begin(), digitPieces.end(),
                                        [](std::string_view piece) { return !piece.empty(); });
    const bool onlyPoints = std::all_of(digitPieces.begin(), digitPieces.end(),
                                        [](std::string_view p) { return p.empty() || p == "."; });
    if (nonEmpty > 1 || !onlyPoints || !Expression::isExpressionString(text)) {
        return false;
    }
    return !core::Decimal::decimalNumberWithString(text).isNotANumber();
}

ExpressionPointer ConstantExpression::create() { return std::make_shared<ConstantExpression>(); }

void ConstantExpression::parseRawString(RequestContext& /*context*/) {
    m_constantDecimal = core::Decimal::decimalNumberWithString(rawString());
}

void ConstantExpression::makeProfile(RequestContext& /*context*/) {
    ownProfile().addQuantity(m_constantDecimal, core::Decimal::one());
}

}  // namespace talvex::language
