// The shape of one statement: operators with a side missing, parentheses with nothing in them,
// function calls and their values, commas, and the comparisons of other tools.

#include <cstdint>

#include "expressions/diagnostics_internal.h"

namespace talvex::language::diagnostics_detail {
namespace {

// One level of the statement: the statement itself, a pair of parentheses or a function call.
// A segment is what stands between its parentheses and commas.
struct Frame {
    enum class Kind : std::uint8_t { part, group, call };
    Kind kind = Kind::part;
    std::size_t open = kNone;      // token of the "("
    std::size_t function = kNone;  // token of the function name, for a call
    std::size_t segmentFirst = 0;  // first token of the current segment
    bool expectOperand = true;
    std::size_t lastOperator = kNone;
    bool lastOperatorReported = false;
    std::size_t values = 0;
    std::size_t lastComma = kNone;
    std::vector<std::size_t> comparisons;  // other tools' comparison signs in the segment
    std::size_t comparator = kNone;        // the first comparator word in the segment
    bool mixedReported = false;
};

enum class Relation : std::uint8_t { atLeast, moreThan, atMost, lessThan, exactly, other };

Relation relationOf(std::string_view sign) {
    if (sign == ">=" || sign == "=>" || sign == "\xE2\x89\xA5") {
        return Relation::atLeast;
    }
    if (sign == ">") {
        return Relation::moreThan;
    }
    if (sign == "<=" || sign == "=<" || sign == "\xE2\x89\xA4") {
        return Relation::atMost;
    }
    if (sign == "<") {
        return Relation::lessThan;
    }
    if (sign == "=" || sign == "==") {
        return Relation::exactly;
    }
    return Relation::other;
}

std::string symbolOf(std::string_view text) { return quoted(text); }

class StructureCheck {
  public:
    StructureCheck(Analysis& analysis, const std::vector<Token>& tokens, std::vector<bool>& handled,
                   bool expressionProper)
        : m_analysis(analysis),
          m_tokens(tokens),
          m_handled(handled),
          m_expressionProper(expressionProper) {}

    void run() {
        m_stack.push_back(Frame{});
        for (std::size_t i = 0; i < m_tokens.size(); ++i) {
            step(i);
        }
        while (m_stack.size() > 1) {
            // A "(" never closed: reported with the parentheses.
            endSegment(m_stack.back(), m_tokens.size());
            m_stack.pop_back();
        }
        endSegment(m_stack.back(), m_tokens.size());
    }

  private:
    [[nodiscard]] std::string_view text(std::size_t i) const {
        return m_analysis.tokenText(m_tokens[i]);
    }
    [[nodiscard]] std::pair<std::size_t, std::size_t> range(std::size_t i) const {
        return m_analysis.rawRange(m_tokens[i]);
    }
    void error(std::size_t i, std::string message) {
        m_analysis.sink.add(Severity::error, range(i), std::move(message));
    }

    static void operand(Frame& frame) { frame.expectOperand = false; }

    void step(std::size_t i) {
        Frame& frame = m_stack.back();
        const Token& token = m_tokens[i];
        switch (token.kind) {
            case TokenKind::number:
            case TokenKind::constant:
            case TokenKind::name:
                operand(frame);
                break;
            case TokenKind::stranger:
                reportCharacters(m_analysis, range(i));
                operand(frame);
                break;
            case TokenKind::function:
            case TokenKind::unknownWord:
                if (i + 1 < m_tokens.size() && m_tokens[i + 1].kind == TokenKind::open) {
                    // An unknown name before "(" is a call too, so that its commas are read
                    // as such.
                    m_call = i;
                } else if (token.kind == TokenKind::unknownWord) {
                    operand(frame);
                } else {
                    error(i, symbolOf(text(i)) + " must be followed by '('");
                    operand(frame);
                }
                break;
            case TokenKind::open: {
                if (token.key == 1) {
                    reportCharacters(m_analysis, range(i));
                }
                operand(frame);
                Frame inner;
                inner.kind = i > 0 && m_call == i - 1 ? Frame::Kind::call : Frame::Kind::group;
                inner.open = i;
                inner.function = inner.kind == Frame::Kind::call ? m_call : kNone;
                inner.segmentFirst = i + 1;
                m_call = kNone;
                m_stack.push_back(std::move(inner));
                break;
            }
            case TokenKind::close:
                if (token.key == 1) {
                    reportCharacters(m_analysis, range(i));
                }
                if (m_stack.size() > 1) {
                    close(i);
                }
                break;
            case TokenKind::comma:
                comma(i);
                break;
            case TokenKind::colon:
                error(i, "':' can only end a name at the start of the text");
                operand(frame);
                break;
            case TokenKind::tilde:
                error(i, "'~' is only for definitions such as a~1d6");
                operand(frame);
                break;
            case TokenKind::comparison:
                if (text(i).find_first_not_of('!') == std::string_view::npos) {
                    exclamation(i);
                    operand(frame);
                } else {
                    frame.comparisons.push_back(i);
                    binary(frame, i);
                }
                break;
            case TokenKind::comparator:
                if (frame.comparator == kNone) {
                    frame.comparator = i;
                } else if (text(i) != text(frame.comparator) && !frame.mixedReported) {
                    frame.mixedReported = true;
                    error(i, symbolOf(text(i)) + " and " + symbolOf(text(frame.comparator)) +
                                 " cannot be mixed in one comparison");
                }
                binary(frame, i);
                break;
            case TokenKind::diceLetter:
            case TokenKind::exponent:
            case TokenKind::arithmetic:
                binary(frame, i);
                break;
        }
    }

    void exclamation(std::size_t i) {
        // After dice or a closing parenthesis "!" is what other tools write for exploding dice.
        const bool afterRoll = i > 0 && (m_tokens[i - 1].kind == TokenKind::number ||
                                         m_tokens[i - 1].kind == TokenKind::close);
        error(i, afterRoll ? "'!' is not part of the language: there are no exploding dice"
                           : "'!' is not part of the language");
    }

    void binary(Frame& frame, std::size_t i) {
        const Token& token = m_tokens[i];
        if (!frame.expectOperand) {
            frame.expectOperand = true;
            frame.lastOperator = i;
            frame.lastOperatorReported = false;
            return;
        }
        const char c = m_analysis.clean[token.begin];
        if (token.kind == TokenKind::arithmetic && (c == '+' || c == '-')) {
            // A sign: "-3", "3*-2", "(-1d4)".
            frame.lastOperator = i;
            frame.lastOperatorReported = false;
            return;
        }
        missingBefore(frame, i);
        frame.lastOperator = i;
        frame.lastOperatorReported = true;
    }

    void missingBefore(const Frame& frame, std::size_t i) {
        const Token& token = m_tokens[i];
        const std::string_view symbol = text(i);
        const bool afterOperator = frame.lastOperator != kNone && frame.lastOperator + 1 == i;
        if (afterOperator && token.kind == TokenKind::diceLetter &&
            text(frame.lastOperator) == symbol) {
            // "1dd6": the letter typed twice.
            const auto at = range(i);
            m_analysis.sink.add(
                Severity::error, at,
                "nothing stands between " + symbolOf(symbol) + " and " + symbolOf(symbol),
                Suggestion{at.first, at.second, "", {}});
            return;
        }
        if (token.kind == TokenKind::diceLetter) {
            const std::string message = "dice need a count before " + symbolOf(symbol);
            if (i + 1 < m_tokens.size() && (m_tokens[i + 1].kind == TokenKind::number ||
                                            m_tokens[i + 1].kind == TokenKind::open)) {
                const auto at = range(i);
                m_analysis.sink.add(Severity::error, at, message,
                                    Suggestion{at.first, at.second, "1" + std::string(symbol), {}});
            } else {
                error(i, message);
            }
            return;
        }
        if (token.kind == TokenKind::exponent) {
            error(i, "'e' needs a number before it, as in 1e3");
            return;
        }
        if (afterOperator && symbol == "*" && text(frame.lastOperator) == "*" &&
            m_tokens[frame.lastOperator].end == token.begin) {
            const auto first = range(frame.lastOperator);
            m_analysis.sink.add(Severity::error, range(i), "nothing stands between '*' and '*'",
                                Suggestion{first.first, range(i).second, "^", "for a power"});
            return;
        }
        if (afterOperator) {
            error(i, "nothing stands between " + symbolOf(text(frame.lastOperator)) + " and " +
                         symbolOf(symbol));
            return;
        }
        error(i, "nothing comes before " + symbolOf(symbol));
    }

    void missingAfter(const Frame& frame) {
        const std::size_t i = frame.lastOperator;
        const Token& token = m_tokens[i];
        const std::string_view symbol = text(i);
        if (token.kind == TokenKind::diceLetter) {
            error(i, symbol == "d" ? "dice need a number of sides after 'd'"
                                   : "dice need a number after " + symbolOf(symbol));
        } else if (token.kind == TokenKind::exponent) {
            error(i, "'e' needs a number after it, as in 1e3");
        } else {
            // Most often a term was left unfinished or the sign typed once too often; without
            // it the rest reads as it stands.
            const auto operatorRange = range(i);
            m_analysis.sink.add(
                Severity::error, operatorRange, "nothing follows " + symbolOf(symbol),
                Suggestion{operatorRange.first, operatorRange.second, "", "to leave it out"});
        }
    }

    // The segment [frame.segmentFirst, end) is complete.
    void endSegment(Frame& frame, std::size_t end) {
        if (frame.expectOperand && frame.lastOperator != kNone && !frame.lastOperatorReported) {
            missingAfter(frame);
        }
        if (!frame.comparisons.empty()) {
            comparisons(frame, end);
        }
        frame.comparisons.clear();
        frame.comparator = kNone;
        frame.mixedReported = false;
        frame.expectOperand = true;
        frame.lastOperator = kNone;
        frame.lastOperatorReported = false;
    }

    void comma(std::size_t i) {
        Frame& frame = m_stack.back();
        if (frame.kind != Frame::Kind::call) {
            commaOutsideCall(i);
            operand(frame);
            return;
        }
        const bool empty = frame.segmentFirst == i;
        endSegment(frame, i);
        if (empty) {
            reportEmptyValue(m_analysis, m_tokens[i].begin,
                             frame.lastComma == kNone ? EmptyValue::before : EmptyValue::between);
        } else {
            ++frame.values;
        }
        frame.lastComma = i;
        frame.segmentFirst = i + 1;
    }

    void commaOutsideCall(std::size_t i) {
        const std::string message =
            "',' only separates the values of a function, as in max(1d6,1d6)";
        const bool betweenNumbers = i > 0 && i + 1 < m_tokens.size() &&
                                    m_tokens[i - 1].kind == TokenKind::number &&
                                    m_tokens[i + 1].kind == TokenKind::number &&
                                    text(i - 1).find('.') == std::string_view::npos &&
                                    text(i + 1).find('.') == std::string_view::npos;
        if (betweenNumbers) {
            const auto at = range(i);
            m_analysis.sink.add(Severity::error, at, message,
                                Suggestion{at.first, at.second, ".", "for a decimal point"});
        } else {
            error(i, message);
        }
    }

    void close(std::size_t i) {
        Frame& frame = m_stack.back();
        const bool empty = frame.segmentFirst == i;
        endSegment(frame, i);
        if (frame.kind == Frame::Kind::group && empty) {
            m_analysis.sink.add(
                Severity::error,
                m_analysis.clean.rawRange(m_tokens[frame.open].begin, m_tokens[i].end),
                "nothing stands inside '()'");
        } else if (frame.kind == Frame::Kind::call) {
            if (empty && frame.lastComma != kNone) {
                reportEmptyValue(m_analysis, m_tokens[frame.lastComma].begin, EmptyValue::after);
            } else if (!empty) {
                ++frame.values;
            }
            if (m_tokens[frame.function].kind == TokenKind::function) {
                checkCallValues(m_analysis, m_tokens[frame.function].key, range(frame.function),
                                frame.values);
            }
        }
        m_stack.pop_back();
    }

    void comparisons(const Frame& frame, std::size_t end) {
        const bool single = frame.comparisons.size() == 1 && frame.comparator == kNone;
        for (const std::size_t i : frame.comparisons) {
            comparison(frame, i, end, single);
        }
    }

    // A comparison sign of another tool, and the comparator that means the same, if any.
    void comparison(const Frame& frame, std::size_t i, std::size_t end, bool single) {
        const Token& sign = m_tokens[i];
        const std::string_view symbol = text(i);
        const Relation relation = relationOf(symbol);
        const char first = symbol.front();
        std::pair<std::size_t, std::size_t> at = range(i);
        std::string message;
        if (first == '>' || first == '<' || first == '!') {
            at = m_analysis.clean.rawRange(sign.begin, sign.begin + 1);
            message = symbolOf(symbol.substr(0, 1)) + " is not part of the language";
        } else if (relation == Relation::exactly) {
            message = "'=' is only for definitions such as a=1d6";
        } else {
            message = symbolOf(symbol) + " is not part of the language";
        }
        const std::size_t segmentFirst = frame.segmentFirst;
        const bool sides = segmentFirst < i && i + 1 < end;
        if (!single || !sides) {
            m_analysis.sink.add(Severity::error, at, message);
            return;
        }
        if (relation == Relation::exactly && m_expressionProper &&
            frame.kind == Frame::Kind::part && segmentFirst == 0 && i == 1 && symbol == "=" &&
            (m_tokens[0].kind == TokenKind::unknownWord || m_tokens[0].kind == TokenKind::name)) {
            // "a=1d6" alone: a definition with nothing to roll after it.
            m_handled[0] = true;
            const std::size_t insert = m_analysis.clean.rawAfter(m_tokens[end - 1].end);
            m_analysis.sink.add(
                Severity::error, at, "a definition needs ';' and then what to roll",
                Suggestion{insert, insert, ";" + std::string(text(0)), "to roll it"});
            return;
        }
        const std::size_t begin = m_tokens[segmentFirst].begin;
        const std::size_t finish = m_tokens[end - 1].end;
        const std::string left(m_analysis.typed(begin, sign.begin));
        const std::string right(m_analysis.typed(sign.end, finish));
        const auto whole = m_analysis.clean.rawRange(begin, finish);
        std::optional<Suggestion> suggestion;
        switch (relation) {
            case Relation::atLeast:
            case Relation::moreThan: {
                const auto place = range(i);
                const std::string_view raw = m_analysis.raw;
                const bool blankBefore = place.first > 0 && isBlank(raw[place.first - 1]);
                const bool blankAfter = place.second < raw.size() && isBlank(raw[place.second]);
                const std::string word = relation == Relation::atLeast ? "cw" : "cl";
                suggestion = Suggestion{
                    place.first, place.second,
                    (blankBefore ? "" : " ") + word + (blankAfter ? "" : " "),
                    relation == Relation::atLeast ? "for \"at least\"" : "for \"more than\""};
                break;
            }
            case Relation::atMost:
            case Relation::lessThan: {
                const std::string word = relation == Relation::atMost ? " cw " : " cl ";
                suggestion = Suggestion{
                    whole.first, whole.second, right + word + left,
                    relation == Relation::atMost ? "for \"at most\"" : "for \"less than\""};
                break;
            }
            case Relation::exactly:
                if (end == i + 2 && m_tokens[i + 1].kind == TokenKind::number) {
                    suggestion = Suggestion{whole.first, whole.second,
                                            "count(" + left + "," + right + "," + right + ")",
                                            "for \"exactly\""};
                }
                break;
            case Relation::other:
                break;
        }
        if (suggestion) {
            m_analysis.sink.add(Severity::error, at, message, *suggestion);
        } else {
            m_analysis.sink.add(Severity::error, at, message);
        }
    }

    Analysis& m_analysis;
    const std::vector<Token>& m_tokens;
    std::vector<bool>& m_handled;
    bool m_expressionProper;
    std::vector<Frame> m_stack;
    std::size_t m_call = kNone;
};

std::string valuesText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " value" : " values");
}

}  // namespace

void checkStructure(Analysis& analysis, const std::vector<Token>& tokens,
                    std::vector<bool>& handled, bool expressionProper) {
    StructureCheck(analysis, tokens, handled, expressionProper).run();
}

void checkCallValues(Analysis& analysis, std::size_t function,
                     std::pair<std::size_t, std::size_t> nameRange, std::size_t values) {
    const FunctionShape& shape = functionShape(function);
    const std::string name(shape.name);
    const bool tooMany = shape.most != kNone && values > shape.most;
    if (shape.pairs && (values < shape.fewest || values % 2 != 0)) {
        analysis.sink.add(Severity::error, nameRange,
                          name + " needs its values in pairs: a roll, then its weight");
    } else if (values < shape.fewest && shape.most == kNone) {
        analysis.sink.add(Severity::error, nameRange,
                          name + " needs at least " + valuesText(shape.fewest));
    } else if (values < shape.fewest || (tooMany && !shape.firstOnly)) {
        analysis.sink.add(
            Severity::error, nameRange,
            name + " needs " + valuesText(shape.fewest) + ", not " + std::to_string(values));
    } else if (tooMany) {
        analysis.sink.add(Severity::warning, nameRange,
                          name + " uses only its first value; the others are ignored");
    }
}

void reportEmptyValue(Analysis& analysis, std::size_t comma, EmptyValue where) {
    const auto at = analysis.clean.rawRange(comma, comma + 1);
    std::string message;
    switch (where) {
        case EmptyValue::before:
            message = "the value before ',' is empty and is skipped";
            break;
        case EmptyValue::between:
            message = "the value between two ',' is empty and is skipped";
            break;
        case EmptyValue::after:
            message = "the value after ',' is empty and is skipped";
            break;
    }
    analysis.sink.add(Severity::warning, at, message, Suggestion{at.first, at.second, "", {}});
}

}  // namespace talvex::language::diagnostics_detail
