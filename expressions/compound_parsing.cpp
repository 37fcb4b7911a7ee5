// Parsing a compound text: the text is rewritten step by step and cut at its top-level
// operators; each operand becomes an expression of its own, so nesting is handled by
// constructing sub-expressions.

#include <algorithm>
#include <string>
#include <vector>

#include "core/calculation_limits.h"
#include "expressions/compound_expression.h"
#include "expressions/compound_substitution.h"

namespace talvex::language {
namespace {

// The undefined value: every malformed piece is written as a division by zero.
constexpr std::string_view kUndefinedText = "1/0";
// Where a typed internal mark ("&" or "%") stood.
constexpr std::string_view kUndefinedOperand = "(1/0)";
// Stands for a function name while the text is rewritten: the "(" keeps implicit
// multiplication from splitting the name from its arguments, the "*" ends it.
constexpr std::string_view kFunctionMark = "(&)*";
constexpr char kFunctionPlaceholder = '&';
constexpr char kComparatorMark = '%';
// Protects function names and comparators while definitions and constants are written out;
// it cannot occur in the expression proper, which follows the last ";".
constexpr std::string_view kProtected = ";";

// The text and its masked copy: the same length, with everything inside parentheses shown as
// "=" in the mask, so that only top-level symbols are found in it.
struct MaskedText {
    std::string text;
    std::string masked;
};

bool isOperatorCharacter(char c) {
    return CompoundExpression::operatorArray().find(c) != std::string_view::npos;
}

std::string_view withoutLabel(std::string_view text) {
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        text.remove_prefix(colon + 1);
    }
    return text;
}

// Refuses texts whose parsing would recurse too deeply or read too much. A ")" without its
// "(" does not nest anything.
void checkNesting(std::string_view text) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    std::size_t nestedLength = 0;
    for (const char c : text) {
        if (c == '(') {
            deepest = std::max(deepest, ++depth);
        } else if (c == ')' && depth > 0) {
            --depth;
        }
        nestedLength += depth + 1;
    }
    if (deepest > kMaxNestingDepth) {
        throw core::CalculationTooLarge("parentheses (or definitions) nest more than " +
                                        std::to_string(kMaxNestingDepth) + " levels deep");
    }
    if (nestedLength > kMaxNestedTextLength) {
        throw core::CalculationTooLarge("the expression is too long for how deeply it nests");
    }
}

std::string replaceAll(std::string_view text, char c, std::string_view replacement) {
    std::string result;
    result.reserve(text.size());
    for (const char ch : text) {
        if (ch == c) {
            result += replacement;
        } else {
            result += ch;
        }
    }
    return result;
}

// Removes one pair of parentheses around the whole text, if the first one closes only at the
// last character.
std::string withoutOuterParentheses(std::string text) {
    if (text.size() < 2 || text.front() != '(') {
        return text;
    }
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') {
            ++depth;
        } else if (text[i] == ')' && --depth == 0) {
            if (i + 1 == text.size()) {
                return text.substr(1, text.size() - 2);
            }
            break;
        }
    }
    return text;
}

std::string maskedCopy(std::string_view text) {
    std::string masked;
    masked.reserve(text.size());
    std::size_t depth = 0;
    for (const char c : text) {
        if (c == '(') {
            masked += depth == 0 ? '(' : '=';
            ++depth;
        } else if (c == ')' && depth > 0) {
            --depth;
            masked += depth == 0 ? ')' : '=';
        } else {
            masked += depth == 0 ? c : '=';
        }
    }
    return masked;
}

// "2(1d6)" is "2*(1d6)", "(1d4)(1d6)" is "(1d4)*(1d6)": a "*" goes before a top-level "(" and
// after a top-level ")" unless an operator or another parenthesis is already there.
MaskedText withImplicitMultiplication(const MaskedText& in) {
    MaskedText out;
    out.text.reserve(in.text.size() + in.text.size() / 2);
    out.masked.reserve(out.text.capacity());
    const auto insertTimes = [&out] {
        out.text += '*';
        out.masked += '*';
    };
    const std::size_t size = in.masked.size();
    for (std::size_t i = 0; i < size; ++i) {
        const char c = in.masked[i];
        if (c == '(' && i > 0) {
            const char before = out.masked.back();
            if (before != '(' && !isOperatorCharacter(before)) {
                insertTimes();
            }
        }
        out.text += in.text[i];
        out.masked += c;
        if (c == ')' && i + 1 < size) {
            const char after = in.masked[i + 1];
            if (after != ')' && !isOperatorCharacter(after)) {
                insertTimes();
            }
        }
    }
    return out;
}

// The function marks become a single placeholder again, in both texts.
MaskedText withFunctionPlaceholders(const MaskedText& in) {
    MaskedText out;
    out.text.reserve(in.text.size());
    out.masked.reserve(in.masked.size());
    std::size_t cursor = 0;
    for (;;) {
        const std::size_t position = in.masked.find(kFunctionMark, cursor);
        const std::size_t end = position == std::string::npos ? in.masked.size() : position;
        out.text.append(in.text, cursor, end - cursor);
        out.masked.append(in.masked, cursor, end - cursor);
        if (position == std::string::npos) {
            return out;
        }
        out.text += kFunctionPlaceholder;
        out.masked += kFunctionPlaceholder;
        cursor = position + kFunctionMark.size();
    }
}

// What rewriting makes of a title text, ready to be cut.
struct Rewritten {
    std::string rawString;
    // The text as typed after the last ";", before anything was written out.
    std::string expressionProper;
    MaskedText parts;
    std::vector<std::string> functions;
    std::string comparator;
};

// Definitions, names, constants and marks written out. Kept out of the recursive parse so that
// its temporaries are gone before the operands (and their operands, ...) are built.
[[gnu::noinline]] Rewritten rewrite(std::string_view title) {
    RewritingBudget budget(kMaxRewritingWork);
    Rewritten result;

    const SubstitutionTable blanks{{" ", ""}, {"\n", ""}, {"\r", ""}, {"\t", ""}};
    std::string text = defineStrings(blanks, title, title, &budget).target;
    if (text.empty() || text.back() == ';') {
        text = kUndefinedText;
    }

    // Definitions: every statement before a ";" of the form name=value. Anything else there
    // is dropped without a word.
    SubstitutionTable definitions;
    std::size_t statementStart = 0;
    for (std::size_t end = text.find(';'); end != std::string::npos;
         end = text.find(';', statementStart)) {
        const std::string_view statement(text.data() + statementStart, end - statementStart);
        const std::size_t equals = statement.find('=');
        if (equals != std::string_view::npos &&
            statement.find('=', equals + 1) == std::string_view::npos) {
            definitions.set(std::string(statement.substr(0, equals)),
                            "(" + std::string(statement.substr(equals + 1)) + ")");
        }
        statementStart = end + 1;
    }
    result.expressionProper = text.substr(statementStart);
    checkNesting(result.expressionProper);

    SubstitutionTable names;
    for (const std::string_view name : CompoundExpression::functionArray()) {
        names.set(std::string(name), std::string(kProtected));
    }
    for (const std::string_view keyword : CompoundExpression::comparatorArray()) {
        names.set(std::string(keyword), std::string(kProtected));
    }
    for (const auto& [name, value] : CompoundExpression::constants()) {
        names.set(std::string(name), "(" + value + ")");
    }
    for (const auto& [name, value] : definitions.entries()) {
        names.set(name, value);
    }

    // Definitions may use one another and the constants; one that uses itself stops growing
    // at the limit.
    std::string rewritten = result.expressionProper;
    const std::size_t rounds = definitions.size() + 2;
    for (std::size_t round = 0; round < rounds; ++round) {
        const DefinedStrings defined = defineStrings(names, rewritten, rewritten, &budget);
        StringPairs restore;
        for (const auto& [value, key] : defined.records) {
            if (value == kProtected) {
                restore.emplace_back(value, key);
            }
        }
        std::string outcome = replaceStrings(restore, defined.target, defined.search).target;
        checkNesting(outcome);
        if (outcome == rewritten) {
            break;
        }
        rewritten = std::move(outcome);
    }
    result.rawString = Expression::cleanString(rewritten);

    std::string working = replaceAll(result.rawString, kFunctionPlaceholder, kUndefinedOperand);
    working = replaceAll(working, kComparatorMark, kUndefinedOperand);
    working = withoutOuterParentheses(std::move(working));
    if (working.empty()) {
        working = kUndefinedText;
    }
    MaskedText parts{working, maskedCopy(working)};

    SubstitutionTable functionMarks;
    for (const std::string_view name : CompoundExpression::functionArray()) {
        functionMarks.set(std::string(name), std::string(kFunctionMark));
    }
    DefinedStrings marked = defineStrings(functionMarks, parts.text, parts.masked, &budget);
    parts = {std::move(marked.target), std::move(marked.search)};
    for (auto& record : marked.records) {
        result.functions.push_back(std::move(record.second));
    }

    SubstitutionTable comparatorMarks;
    for (const std::string_view keyword : CompoundExpression::comparatorArray()) {
        comparatorMarks.set(std::string(keyword), std::string(1, kComparatorMark));
    }
    DefinedStrings compared = defineStrings(comparatorMarks, parts.text, parts.masked, &budget);
    parts = {std::move(compared.target), std::move(compared.search)};
    if (!compared.records.empty()) {
        result.comparator = compared.records.front().second;
        // The same comparator may join several operands; two different ones at one level
        // cannot be combined.
        for (std::size_t i = 1; i < compared.records.size(); ++i) {
            if (compared.records[i].second != compared.records[i - 1].second) {
                parts = {std::string(kUndefinedText), std::string(kUndefinedText)};
                result.comparator.clear();
                break;
            }
        }
    }

    parts = withImplicitMultiplication(parts);
    if (parts.text.size() > 1 && (parts.text.front() == '+' || parts.text.front() == '-')) {
        parts.text.insert(0, 1, '0');
        parts.masked.insert(0, 1, '0');
    }
    result.parts = withFunctionPlaceholders(parts);
    return result;
}

}  // namespace

void CompoundExpression::parseRawString(RequestContext& context) {
    for (const std::string& operand : cutOperands()) {
        keepOperand(expressionWithString(operand, context));
    }
}

std::vector<std::string> CompoundExpression::cutOperands() {
    Rewritten rewritten = rewrite(withoutLabel(titleRawString()));
    setRawString(std::move(rewritten.rawString));
    m_subFunctions = std::move(rewritten.functions);
    m_comparator = std::move(rewritten.comparator);
    return cutOperands(rewritten.parts.text, rewritten.parts.masked, rewritten.expressionProper);
}

std::vector<std::string> CompoundExpression::cutOperands(std::string_view text,
                                                         std::string_view masked,
                                                         std::string_view expressionProper) {
    std::vector<std::string> operands;
    const std::string_view operators = operatorArray();
    std::size_t operandStart = 0;
    std::size_t searchFrom = 0;
    std::size_t functionIndex = 0;
    bool foundOperator = false;
    for (;;) {
        const std::size_t position = masked.find_first_of(operators, searchFrom);
        // A "+" or "-" right behind another operator is the sign of the next operand: "3*-2".
        if (position != std::string_view::npos && position == operandStart && position != 0 &&
            (masked[position] == '+' || masked[position] == '-')) {
            searchFrom = position + 1;
            continue;
        }
        std::string operand;
        if (position != std::string_view::npos) {
            operand = text.substr(operandStart, position - operandStart);
            m_subOperators.push_back(masked[position]);
            foundOperator = true;
        } else {
            // After a final operator this is the empty text: the omitted operand.
            operand = text.substr(operandStart);
            // A text that cannot be reduced would otherwise rebuild itself forever.
            if (!foundOperator && text == rawString()) {
                operand = kUndefinedText;
            }
        }
        std::string called;
        called.reserve(operand.size());
        for (const char c : operand) {
            if (c == kFunctionPlaceholder && functionIndex < m_subFunctions.size()) {
                called += m_subFunctions[functionIndex++];
            } else {
                called += c;
            }
        }
        // The same guard: an operand that is the whole typed text again.
        if (operands.empty() && called == expressionProper) {
            called = kUndefinedText;
        }
        operands.push_back(std::move(called));
        if (position == std::string_view::npos) {
            return operands;
        }
        operandStart = position + 1;
        searchFrom = position + 1;
    }
}

}  // namespace talvex::language
