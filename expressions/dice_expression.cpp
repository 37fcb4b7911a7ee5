#include "expressions/dice_expression.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "core/calculation_limits.h"
#include "core/decimal.h"

namespace talvex::language {

using core::Decimal;
using core::Evaluation;

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::array<char, 5> kLetterPriority = {'d', 'c', 'p', 'v', 'w'};

// Position of the notation letter: the first "d" if any, else the first "c", and so on.
std::size_t findLetter(std::string_view text) {
    for (const char letter : kLetterPriority) {
        if (const auto position = text.find(letter); position != std::string_view::npos) {
            return position;
        }
    }
    return std::string_view::npos;
}

// The value of leading decimal digits, the largest 32-bit value if it does not fit.
std::int32_t readCount(std::string_view digits) {
    std::int64_t value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') {
            break;
        }
        value = value * 10 + (c - '0');
        if (value > std::numeric_limits<std::int32_t>::max()) {
            return std::numeric_limits<std::int32_t>::max();
        }
    }
    return static_cast<std::int32_t>(value);
}

bool hasLetter(std::string_view text, char letter) {
    return text.find(letter) != std::string_view::npos;
}

std::string diceText(std::int64_t count, char letter, std::int32_t size) {
    return std::to_string(count) + letter + std::to_string(size);
}

std::vector<Evaluation> faces(std::int32_t count) {
    if (static_cast<std::size_t>(count) > core::kMaxOutcomes) {
        throw core::CalculationTooLarge("a die with " + std::to_string(count) +
                                        " faces is too large to calculate");
    }
    std::vector<Evaluation> list;
    list.reserve(static_cast<std::size_t>(count) + 1);
    Decimal quantity = Decimal::one();
    for (std::int32_t face = 1; face <= count; ++face) {
        list.push_back(Evaluation::evaluationWithQuantity(quantity, Decimal::one()));
        quantity = quantity + Decimal::one();
    }
    return list;
}

template <class Kind>
ExpressionPointer makeBlank() {
    return std::make_shared<Kind>();
}

const std::array<ExpressionKind, 5> kNotations = {{
    {XdyExpression::isExpressionString, makeBlank<XdyExpression>},
    {XcyExpression::isExpressionString, makeBlank<XcyExpression>},
    {XpyExpression::isExpressionString, makeBlank<XpyExpression>},
    {XvyExpression::isExpressionString, makeBlank<XvyExpression>},
    {XwyExpression::isExpressionString, makeBlank<XwyExpression>},
}};

}  // namespace

Decimal DiceExpressionF(const Decimal& a, const Decimal& b) { return a + b; }
Decimal XdyExpressionF(const Decimal& a, const Decimal& b) { return a + b; }
Decimal XcyExpressionF(const Decimal& a, const Decimal& b) { return a + b; }
Decimal XpyExpressionF(const Decimal& a, const Decimal& b) { return a + b; }
Decimal XvyExpressionF(const Decimal& a, const Decimal& b) { return a + b; }
Decimal XwyExpressionF(const Decimal& a, const Decimal& b) { return a + b; }

bool DiceExpression::isExpressionString(std::string_view text) {
    if (!Expression::isExpressionString(text)) {
        return false;
    }
    const std::string cleaned = cleanString(text);
    const std::size_t position = findLetter(cleaned);
    if (position == std::string::npos || position == 0 || position + 1 == cleaned.size()) {
        return false;
    }
    const std::string_view view = cleaned;
    return isSubset(view.substr(0, position), kDigits) &&
           isSubset(view.substr(position + 1), kDigits);
}

ExpressionPointer DiceExpression::create() { return std::make_shared<DiceExpression>(); }

std::span<const ExpressionKind> DiceExpression::descendants() const { return kNotations; }

void DiceExpression::parseRawString(RequestContext& /*context*/) {
    const std::string_view text = rawString();
    const std::size_t position = findLetter(text);
    if (position == std::string_view::npos) {
        return;
    }
    m_x = readCount(text.substr(0, position));
    m_y = readCount(text.substr(position + 1));
}

void DiceExpression::checkDiceCount() const {
    if (m_x > core::kMaxDice) {
        throw core::CalculationTooLarge(std::to_string(m_x) + " dice are too many to calculate");
    }
}

void DiceExpression::checkChainWork(std::int64_t fromCount, const RequestContext& context) const {
    // Adding one die to k dice combines at most k(F-1)+1 outcomes with F faces, and every count
    // on the way stays in the dictionary; the steps still to be built are summed before any of
    // them is.
    const auto faces = static_cast<double>(singleDieOutcomes());
    const auto from = static_cast<double>(std::max<std::int64_t>(fromCount, 1));
    const auto to = static_cast<double>(m_x);
    // Sums over k from `from` to x-1 of k(F-1)+1, in closed form.
    const double steps = to - from;
    const double countSum = (from + to - 1) * steps / 2;
    const double outcomes = countSum * (faces - 1) + steps;
    context.refuseBeyondRemaining(outcomes * faces +
                                  steps * static_cast<double>(kCombinationOverhead));
    context.reserveOutcomes(outcomes);
}

void DiceExpression::refuseCertainUnderflow() const {
    // The lowest (or highest) total of x dice comes only from every die showing its lowest
    // (highest) face, so its weight is p^x, formed step by step with a relative error far
    // below 1E-30 until it nears 1E-128. From there each step rounds to whole multiples of
    // 1E-128, adding at most half of one: with p <= 0.45 the stored multiple m becomes at most
    // p^j m + 0.5 / (1 - p) < p^j m + 0.91, which rounds to zero, a fault, once the exact value
    // is below 0.09E-128. A chance of one half would never get there (0.5E-128 rounds up), so
    // only dice well below it are refused, and only with a margin: p^x <= 1E-129.5.
    constexpr double kLargestChance = 0.45;
    constexpr double kCertainDigits = 129.5;
    const double chance = extremeFaceChance();
    if (chance <= kLargestChance &&
        static_cast<double>(m_x) * -std::log10(chance) >= kCertainDigits) {
        throw core::DecimalError(core::DecimalFault::Underflow);
    }
}

void DiceExpression::makeOneDie() {
    checkDiceCount();
    if (m_x == 0 || m_y == 0) {
        ownProfile().addQuantity(Decimal::zero(), Decimal::one());
        return;
    }
    makeSingleDie();
}

void DiceExpression::makeProfile(RequestContext& context) {
    if (letter() == '\0') {
        return;
    }
    if (m_x <= 1) {
        makeOneDie();
        return;
    }
    checkDiceCount();
    ExpressionDictionary& expressions = context.expressions();
    const char notation = letter();
    // Build the missing counts from the largest one already known upwards, so that each
    // construction finds its predecessor and the chain never recurses deeply. The result and
    // the dictionary's contents are those of building (x-1) dice directly.
    std::int64_t known = m_x - 1;
    while (known >= 1 && !expressions.contains(diceText(known, notation, m_y))) {
        --known;
    }
    checkChainWork(known, context);
    refuseCertainUnderflow();
    for (std::int64_t count = known + 1; count < m_x - 1; ++count) {
        static_cast<void>(expressionWithString(diceText(count, notation, m_y), context));
    }
    const ExpressionPointer one = expressionWithString(diceText(1, notation, m_y), context);
    const ExpressionPointer rest = expressionWithString(diceText(m_x - 1, notation, m_y), context);
    context.chargeCombination(rest->profileView().evaluationCount(),
                              one->profileView().evaluationCount());
    ownProfile() = rest->profile();
    ownProfile().assimilateProfile(one->profile(), DiceExpressionF);
}

bool XdyExpression::isExpressionString(std::string_view text) {
    return DiceExpression::isExpressionString(text) && hasLetter(text, 'd');
}
ExpressionPointer XdyExpression::create() { return makeBlank<XdyExpression>(); }

std::int64_t XdyExpression::singleDieOutcomes() const noexcept { return std::max(m_y, 1); }

double XdyExpression::extremeFaceChance() const noexcept { return m_y >= 2 ? 1.0 / m_y : 1.0; }

void XdyExpression::makeSingleDie() { ownProfile().setEvaluations(faces(m_y)); }

bool XcyExpression::isExpressionString(std::string_view text) {
    return DiceExpression::isExpressionString(text) && hasLetter(text, 'c');
}
ExpressionPointer XcyExpression::create() { return makeBlank<XcyExpression>(); }

std::int64_t XcyExpression::singleDieOutcomes() const noexcept {
    return m_y >= 1 && m_y <= 9 ? 2 : 1;
}

double XcyExpression::extremeFaceChance() const noexcept {
    return m_y >= 1 && m_y <= 9 ? std::min(m_y, 10 - m_y) / 10.0 : 1.0;
}

void XcyExpression::makeSingleDie() {
    if (m_y <= 9) {
        ownProfile().addQuantity(Decimal::one(), Decimal::decimalNumberWithInteger(m_y));
        ownProfile().addQuantity(Decimal::zero(), Decimal::decimalNumberWithInteger(10 - m_y));
    } else {
        ownProfile().addQuantity(Decimal::one(), Decimal::one());
    }
}

bool XpyExpression::isExpressionString(std::string_view text) {
    return DiceExpression::isExpressionString(text) && hasLetter(text, 'p');
}
ExpressionPointer XpyExpression::create() { return makeBlank<XpyExpression>(); }

std::int64_t XpyExpression::singleDieOutcomes() const noexcept {
    return m_y >= 1 && m_y <= 99 ? 2 : 1;
}

double XpyExpression::extremeFaceChance() const noexcept {
    return m_y >= 1 && m_y <= 99 ? std::min(m_y, 100 - m_y) / 100.0 : 1.0;
}

void XpyExpression::makeSingleDie() {
    if (m_y <= 99) {
        ownProfile().addQuantity(Decimal::one(), Decimal::decimalNumberWithInteger(m_y));
        ownProfile().addQuantity(Decimal::zero(), Decimal::decimalNumberWithInteger(100 - m_y));
    } else {
        ownProfile().addQuantity(Decimal::one(), Decimal::one());
    }
}

bool XvyExpression::isExpressionString(std::string_view text) {
    return DiceExpression::isExpressionString(text) && hasLetter(text, 'v');
}
ExpressionPointer XvyExpression::create() { return makeBlank<XvyExpression>(); }

std::int64_t XvyExpression::singleDieOutcomes() const noexcept { return std::min(m_y, 10) + 1; }

// The highest face has one chance in ten whatever the size.
double XvyExpression::extremeFaceChance() const noexcept { return m_y >= 1 ? 0.1 : 1.0; }

void XvyExpression::makeSingleDie() {
    m_y = std::min(m_y, 10);
    std::vector<Evaluation> list = faces(m_y);
    list.push_back(Evaluation::evaluationWithQuantity(Decimal::zero(),
                                                      Decimal::decimalNumberWithInteger(10 - m_y)));
    ownProfile().setEvaluations(std::move(list));
}

bool XwyExpression::isExpressionString(std::string_view text) {
    return DiceExpression::isExpressionString(text) && hasLetter(text, 'w');
}
ExpressionPointer XwyExpression::create() { return makeBlank<XwyExpression>(); }

std::int64_t XwyExpression::singleDieOutcomes() const noexcept { return std::min(m_y, 100) + 1; }

// The highest face has one chance in a hundred whatever the size.
double XwyExpression::extremeFaceChance() const noexcept { return m_y >= 1 ? 0.01 : 1.0; }

void XwyExpression::makeSingleDie() {
    m_y = std::min(m_y, 100);
    std::vector<Evaluation> list = faces(m_y);
    list.push_back(Evaluation::evaluationWithQuantity(
        Decimal::zero(), Decimal::decimalNumberWithInteger(100 - m_y)));
    ownProfile().addEvaluations(std::move(list));
}

}  // namespace talvex::language
