#pragma once

// The pieces of the diagnostics pass, shared between its files. Everything here reads the
// typed text only; nothing builds an expression.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "expressions/diagnostics.h"

namespace talvex::language::diagnostics_detail {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

[[nodiscard]] constexpr bool isBlank(char c) noexcept {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}
[[nodiscard]] constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
[[nodiscard]] constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
// Characters that run together into numbers, dice, names and function names.
[[nodiscard]] constexpr bool isWordCharacter(char c) noexcept {
    return isDigit(c) || isLetter(c) || c == '.';
}
// The letters that the language reads as operators: the dice notations and "e".
[[nodiscard]] constexpr bool isDiceLetter(char c) noexcept {
    return c == 'd' || c == 'c' || c == 'p' || c == 'v' || c == 'w';
}
[[nodiscard]] constexpr bool isOperatorLetter(char c) noexcept {
    return isDiceLetter(c) || c == 'e';
}

// The text after the label, with blanks, line breaks and tabs removed, as the language reads
// it. Every character remembers the byte of the typed text it came from.
class CleanText {
  public:
    CleanText(std::string_view raw, std::size_t bodyBegin);

    [[nodiscard]] const std::string& text() const noexcept { return m_text; }
    [[nodiscard]] std::size_t size() const noexcept { return m_text.size(); }
    [[nodiscard]] char operator[](std::size_t i) const noexcept { return m_text[i]; }
    [[nodiscard]] std::string_view view(std::size_t begin, std::size_t end) const noexcept {
        return std::string_view(m_text).substr(begin, end - begin);
    }
    // The byte of the typed text where cleaned character i stands.
    [[nodiscard]] std::size_t rawAt(std::size_t i) const noexcept { return m_rawAt[i]; }
    // The typed bytes of the cleaned characters [begin, end); an empty range gives the place
    // where something would be inserted before `begin`.
    [[nodiscard]] std::pair<std::size_t, std::size_t> rawRange(std::size_t begin,
                                                               std::size_t end) const noexcept;
    // The place just behind cleaned character i - 1 in the typed text.
    [[nodiscard]] std::size_t rawAfter(std::size_t i) const noexcept;
    // Whether blanks were removed between cleaned characters i - 1 and i.
    [[nodiscard]] bool blankBefore(std::size_t i) const noexcept {
        return i > 0 && i < m_text.size() && m_rawAt[i] != m_rawAt[i - 1] + 1;
    }

  private:
    std::string m_text;
    std::vector<std::size_t> m_rawAt;
    std::size_t m_bodyBegin;
    std::size_t m_rawSize;
};

// The findings gathered so far, and the bytes already explained by one of them (their
// contents are not looked at again, so that one mistake does not echo through the rest).
class FindingSink {
  public:
    explicit FindingSink(std::size_t rawSize) : m_covered(rawSize, false) {}

    void add(Severity severity, std::pair<std::size_t, std::size_t> range, std::string message);
    void add(Severity severity, std::pair<std::size_t, std::size_t> range, std::string message,
             Suggestion suggestion);
    void cover(std::pair<std::size_t, std::size_t> range);
    [[nodiscard]] bool covered(std::size_t byte) const noexcept {
        return byte < m_covered.size() && m_covered[byte];
    }
    // The findings, in the order of their ranges.
    [[nodiscard]] std::vector<Finding> take();

  private:
    std::vector<Finding> m_findings;
    std::vector<bool> m_covered;
};

// What a piece of the cleaned text is to the language.
enum class TokenKind : std::uint8_t {
    number,       // digits and points
    diceLetter,   // d, c, p, v, w between a count and a size
    exponent,     // e between a number and a power of ten
    arithmetic,   // + - * / ^
    open,         // (
    close,        // )
    comma,        // ,
    function,     // a function name; `key` is its place in the function table
    comparator,   // vs, vt, tt, ch, cw, cl, cu
    constant,     // pi, ex
    name,         // a defined name; `key` is the definition's index
    unknownWord,  // letters that are nothing the language knows
    comparison,   // > >= < <= = == != and their typographic forms: other tools' comparisons
    stranger,     // any other character, or text already explained by a finding
    colon,        // a ':' after the label
    tilde,        // a '~' outside a definition
};

struct Token {
    TokenKind kind = TokenKind::stranger;
    std::size_t begin = 0;  // cleaned positions
    std::size_t end = 0;
    // A function's table place, a definition's index; 1 for a bracket written for a
    // parenthesis.
    std::size_t key = 0;
};

[[nodiscard]] constexpr bool isBinaryOperator(TokenKind kind) noexcept {
    return kind == TokenKind::diceLetter || kind == TokenKind::exponent ||
           kind == TokenKind::arithmetic || kind == TokenKind::comparator ||
           kind == TokenKind::comparison;
}

// The names one text knows: function names, comparators, constants and its own definitions.
// Looked up with tries, so that every place of a word is tried against every name at once.
class NameTable {
  public:
    enum class Kind : std::uint8_t { function, comparator, constant, definition };
    // A name found in a text: where, how long, and what it is (function table place,
    // comparator or constant place, or definition index).
    struct Match {
        std::size_t begin;
        std::size_t length;
        Kind kind;
        std::size_t index;
    };
    struct Entry {
        std::string_view text;
        Kind kind;
        std::size_t index;
    };
    struct Trie {
        // (node << 8 | character) -> child node; node 0 is the root.
        std::unordered_map<std::uint64_t, std::uint32_t> edges;
        std::vector<std::size_t> terminal{kNone};  // node -> entry, kNone when no name ends there
        std::vector<Entry> entries;

        void insert(std::string_view text, Kind kind, std::size_t index);
        void matchesAt(std::string_view text, std::size_t at, std::size_t end,
                       std::vector<Match>& found) const;
    };

    // Names longer than this are matched only as whole words, which keeps every lookup short.
    static constexpr std::size_t kLongestMatched = 64;

    // A later definition of the same name replaces an earlier one, and a definition replaces a
    // function, comparator or constant of its name.
    void addDefinition(std::string_view name, std::size_t definition);
    // Every name that starts at `at` of `text` and ends by `end`.
    void matchesAt(std::string_view text, std::size_t at, std::size_t end,
                   std::vector<Match>& found) const;
    // The definition whose long name is exactly `word`, or kNone.
    [[nodiscard]] std::size_t longDefinition(std::string_view word) const;
    // Every name, for suggestions.
    void collectNames(std::vector<std::string_view>& names) const;

  private:
    Trie m_definitions;
    std::unordered_map<std::string_view, std::size_t> m_long;
};

// Cuts the cleaned text [begin, end) into tokens, reading words with `names`. Bytes that a
// finding already covers become one opaque token each run.
void tokenize(const CleanText& clean, const FindingSink& sink, const NameTable& names,
              std::size_t begin, std::size_t end, std::vector<Token>& tokens);

// The function table: each name with the values it takes.
struct FunctionShape {
    std::string_view name;
    std::size_t fewest;
    std::size_t most;  // kNone: no limit
    bool firstOnly;    // further values are ignored
    bool pairs;        // the values come in pairs
};
[[nodiscard]] const FunctionShape& functionShape(std::size_t functionIndex);

// Spends a budget proportional to the text on name suggestions, so that a text full of
// unknown names still takes linear time.
class SuggestionBudget {
  public:
    explicit SuggestionBudget(std::size_t cells) : m_cells(cells) {}
    [[nodiscard]] bool spend(std::size_t cells) noexcept {
        if (cells > m_cells) {
            m_cells = 0;
            return false;
        }
        m_cells -= cells;
        return true;
    }

  private:
    std::size_t m_cells;
};

// The nearest name to an unknown word: the same letters in another case first, then a few
// letters changed. Empty when nothing is near enough.
[[nodiscard]] std::string nearestName(std::string_view word, const NameTable& names,
                                      SuggestionBudget& budget);

// One text the language builds as a whole: the typed text itself, or an argument of a
// function call that is the whole text (its arguments are texts of their own).
struct TextUnit {
    std::size_t begin = 0;  // cleaned positions
    std::size_t end = 0;
    bool top = false;
};

// Everything the passes share.
struct Analysis {
    std::string_view raw;
    std::size_t labelColon = kNone;  // byte of the ':' that ends the label
    CleanText clean;
    FindingSink sink;
    SuggestionBudget budget;
    // For each cleaned "(" or ")", the place of its partner, or kNone.
    std::vector<std::size_t> partner;
    // Cleaned places of every ':' after the label, ascending.
    std::vector<std::size_t> colons;
    // Characters that are no part of the language, in the order of their bytes. They are
    // reported only when the part of the text they stand in is read at all (a character in a
    // definition that is never used changes nothing).
    std::vector<Finding> characterFindings;
    std::vector<bool> characterReported;
    // Names defined in the label, where the language never sees them.
    std::vector<std::string> swallowedNames;
    // Unknown words and the name suggested for each. Keyed by views into the cleaned text.
    std::unordered_map<std::string_view, std::string> nearest;

    Analysis(std::string_view text, std::size_t colon);

    [[nodiscard]] std::pair<std::size_t, std::size_t> rawRange(const Token& token) const noexcept {
        return clean.rawRange(token.begin, token.end);
    }
    [[nodiscard]] std::string_view tokenText(const Token& token) const noexcept {
        return clean.view(token.begin, token.end);
    }
    // The typed text of a cleaned range, blanks at either end left out.
    [[nodiscard]] std::string_view typed(std::size_t begin, std::size_t end) const noexcept;
};

// Reports the characters of `characterFindings` that stand in the typed bytes [begin, end).
void reportCharacters(Analysis& analysis, std::pair<std::size_t, std::size_t> range);

// The passes, in the order they run.
// Comments and characters that are no part of the language, over the typed text after the
// label.
void checkCharacters(Analysis& analysis);
// The label and what it does to the rest; whether the text after it is worth reading further.
[[nodiscard]] bool checkLabel(Analysis& analysis);
// Parentheses over the whole cleaned text; fills `partner`.
void checkParentheses(Analysis& analysis);
// One text: a function call given whole (its arguments go back on `pending`), a lone number,
// a dice text, or a text with definitions and operators.
void checkUnit(Analysis& analysis, const TextUnit& unit, std::vector<TextUnit>& pending);

// The parts of a text with operators: its statements, and every operator, function call and
// comparison of one statement's tokens.
void checkStatements(Analysis& analysis, const TextUnit& unit);
// Operators without a number on a side, function calls and their values, commas,
// comparisons; marks in `handled` the tokens it explained.
void checkStructure(Analysis& analysis, const std::vector<Token>& tokens,
                    std::vector<bool>& handled, bool expressionProper);
// A function call's values: too few, too many, or not in pairs.
void checkCallValues(Analysis& analysis, std::size_t function,
                     std::pair<std::size_t, std::size_t> nameRange, std::size_t values);
// An empty value of a call, which the language skips: before the first comma, between two, or
// after the last. `comma` is the cleaned place of the comma to remove.
enum class EmptyValue : std::uint8_t { before, between, after };
void reportEmptyValue(Analysis& analysis, std::size_t comma, EmptyValue where);
// Unknown words (with the nearest name) and dice dropped or kept as other tools write it;
// `handled` marks tokens another finding already explains.
void checkWords(Analysis& analysis, const NameTable& names, const std::vector<Token>& tokens,
                std::vector<bool>& handled);
// Numbers: written wrong, too large or too small, worked out only approximately, or joined by
// removed blanks.
void checkNumbers(Analysis& analysis, const std::vector<Token>& tokens);
// Whether token i binds tighter than "*" and "/" (a dice letter, "e" or "^").
[[nodiscard]] bool isBinding(const Analysis& analysis, const std::vector<Token>& tokens,
                             std::size_t i);

// Quoting for messages: the text between single quotes, shortened when long.
[[nodiscard]] std::string quoted(std::string_view text);

}  // namespace talvex::language::diagnostics_detail
