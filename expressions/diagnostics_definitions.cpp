// A text with statements: the definitions before each ";", the pieces that are no definition,
// and the expression after the last ";", each read into tokens and checked.

#include <algorithm>
#include <unordered_map>

#include "expressions/diagnostics_internal.h"

namespace talvex::language::diagnostics_detail {
namespace {

// Characters shown each way around a name written into another word.
constexpr std::size_t kShownAround = 20;
// Names with characters other than letters, digits and points that are looked for; a text
// with more is not read beyond its statements.
constexpr std::size_t kMostOddNames = 16;

struct Definition {
    std::size_t nameBegin = 0;  // cleaned positions
    std::size_t nameEnd = 0;
    std::size_t valueBegin = 0;
    std::size_t valueEnd = 0;
    bool replaced = false;  // a later definition has the same name
    bool reachable = false;
    std::vector<Token> tokens;
    std::vector<std::size_t> uses;  // definitions its value names
};

bool isPlainName(std::string_view name) {
    return std::all_of(name.begin(), name.end(), isWordCharacter);
}

class StatementCheck {
  public:
    StatementCheck(Analysis& analysis, const TextUnit& unit) : m_analysis(analysis), m_unit(unit) {}

    void run() {
        if (!cutStatements()) {
            return;
        }
        readDefinitions();
        const bool expressionOdd = mentionsOddName(m_expressionBegin, m_unit.end);
        if (expressionOdd) {
            tokenize(m_analysis.clean, m_analysis.sink, m_names, m_expressionBegin, m_unit.end,
                     m_expression);
        } else if (!readExpression()) {
            return;
        }
        for (Definition& definition : m_definitions) {
            tokenize(m_analysis.clean, m_analysis.sink, m_names, definition.valueBegin,
                     definition.valueEnd, definition.tokens);
            definition.uses = namesIn(definition.tokens);
        }
        markReachable();
        checkDefinitions();
        checkCycles();
        checkWrittenInside();
        for (Definition& definition : m_definitions) {
            if (definition.reachable && !definition.replaced &&
                !mentionsOddName(definition.valueBegin, definition.valueEnd)) {
                checkTokens(definition.tokens, false);
            }
        }
        if (!expressionOdd) {
            checkTokens(m_expression, true);
        }
    }

    [[nodiscard]] bool mentionsOddName(std::size_t begin, std::size_t end) const {
        const std::string_view part = view(begin, end);
        return m_unreadable ||
               std::any_of(m_oddNames.begin(), m_oddNames.end(), [part](std::string_view name) {
                   return part.find(name) != std::string_view::npos;
               });
    }

  private:
    [[nodiscard]] std::string_view view(std::size_t begin, std::size_t end) const {
        return m_analysis.clean.view(begin, end);
    }
    [[nodiscard]] std::string name(const Definition& definition) const {
        return std::string(view(definition.nameBegin, definition.nameEnd));
    }
    [[nodiscard]] std::pair<std::size_t, std::size_t> nameRange(const Definition& d) const {
        return m_analysis.clean.rawRange(d.nameBegin, d.nameEnd);
    }

    // Splits the text at its ";". Answers whether there is an expression to read.
    bool cutStatements() {
        const CleanText& clean = m_analysis.clean;
        long depth = 0;
        std::size_t start = m_unit.begin;
        for (std::size_t p = m_unit.begin; p < m_unit.end; ++p) {
            const char c = clean[p];
            // The language cuts at every ";", even one in what other tools read as a comment;
            // only parentheses there are not counted.
            const bool covered = m_analysis.sink.covered(clean.rawAt(p));
            if (c == '(' && !covered) {
                ++depth;
            } else if (c == ')' && !covered) {
                --depth;
            } else if (c == ';') {
                if (depth > 0) {
                    m_analysis.sink.add(Severity::error, clean.rawRange(p, p + 1),
                                        "';' cannot stand inside parentheses");
                    return false;
                }
                m_statements.emplace_back(start, p);
                start = p + 1;
            }
        }
        if (start == m_unit.end && !m_statements.empty()) {
            // The ";" at the end, and those right before it.
            std::size_t last = m_statements.size() - 1;
            while (last > 0 && m_statements[last].first == m_statements[last].second) {
                --last;
            }
            const auto [first, end] = m_statements[last];
            const auto at = clean.rawRange(m_unit.end - 1, m_unit.end);
            const bool definition = view(first, end).find_first_of("=~") != std::string_view::npos;
            if (definition || first == end) {
                m_analysis.sink.add(Severity::error, at, "nothing to roll follows the last ';'");
            } else {
                const auto semicolons = clean.rawRange(end, m_unit.end);
                m_analysis.sink.add(Severity::error, at, "nothing to roll follows the last ';'",
                                    Suggestion{semicolons.first, semicolons.second, "", {}});
            }
            return false;
        }
        m_expressionBegin = start;
        return true;
    }

    void readDefinitions() {
        std::unordered_map<std::string_view, std::size_t> latest;
        for (const auto& [begin, end] : m_statements) {
            if (begin == end) {
                continue;
            }
            const std::string_view statement = view(begin, end);
            const std::size_t tilde = statement.find('~');
            const std::size_t equals = statement.find('=');
            const std::size_t sign = tilde != std::string_view::npos ? tilde : equals;
            if (sign == std::string_view::npos ||
                (tilde == std::string_view::npos &&
                 statement.find('=', equals + 1) != std::string_view::npos)) {
                dropped(begin, end, sign != std::string_view::npos);
                continue;
            }
            Definition definition;
            definition.nameBegin = begin;
            definition.nameEnd = begin + sign;
            definition.valueBegin = begin + sign + 1;
            definition.valueEnd = end;
            const std::string_view defined = view(definition.nameBegin, definition.nameEnd);
            if (defined.empty()) {
                m_analysis.sink.add(
                    Severity::warning, m_analysis.clean.rawRange(begin + sign, begin + sign + 1),
                    "a definition needs a name before " + quoted(statement.substr(sign, 1)) +
                        "; this one is left out");
                continue;
            }
            if (!isPlainName(defined)) {
                // The language replaces such a name wherever it stands, across operators and
                // all; a part that mentions it is not read here at all.
                if (m_oddNames.size() < kMostOddNames) {
                    m_oddNames.push_back(defined);
                } else {
                    m_unreadable = true;
                }
                continue;
            }
            const std::size_t index = m_definitions.size();
            if (const auto earlier = latest.find(defined); earlier != latest.end()) {
                m_definitions[earlier->second].replaced = true;
            }
            latest[defined] = index;
            m_names.addDefinition(defined, index);
            m_definitions.push_back(std::move(definition));
        }
    }

    // A piece before ";" that defines nothing is left out without a word by the language.
    void dropped(std::size_t begin, std::size_t end, bool equals) {
        const auto at = m_analysis.clean.rawRange(begin, end);
        const std::string_view statement = view(begin, end);
        if (!equals) {
            m_analysis.sink.add(Severity::warning, at,
                                quoted(statement) + " before ';' is no definition and is left out");
            return;
        }
        const std::string message = "this definition has more than one '=' and is left out";
        const std::size_t doubled = statement.find("==");
        if (doubled != std::string_view::npos &&
            statement.find('=', doubled + 2) == std::string_view::npos &&
            statement.find('=') == doubled) {
            const auto signs = m_analysis.clean.rawRange(begin + doubled, begin + doubled + 2);
            m_analysis.sink.add(Severity::warning, at, message,
                                Suggestion{signs.first, signs.second, "=", {}});
        } else {
            m_analysis.sink.add(Severity::warning, at, message);
        }
    }

    // The expression after the last ";", from its second ':' on when it has one at its top
    // level: the language drops what stands before that one too. Answers whether to go on.
    bool readExpression() {
        std::size_t begin = m_expressionBegin;
        const std::size_t end = m_unit.end;
        const auto colon =
            std::lower_bound(m_analysis.colons.begin(), m_analysis.colons.end(), begin);
        if (colon != m_analysis.colons.end() && *colon < end && topLevel(begin, *colon)) {
            begin = *colon + 1;
            const auto at = m_analysis.clean.rawRange(*colon, *colon + 1);
            tokenize(m_analysis.clean, m_analysis.sink, m_names, begin, end, m_expression);
            if (begin == end) {
                m_analysis.sink.add(Severity::error, at, "nothing to roll follows this ':'");
                return false;
            }
            if (standsAlone(begin, end)) {
                m_analysis.sink.add(Severity::warning, at,
                                    "everything before this second ':' is left out too");
            } else {
                const auto rest = m_analysis.clean.rawRange(begin, end);
                m_analysis.sink.add(
                    Severity::error, at,
                    "everything before this second ':' is left out, and " +
                        quoted(view(begin, end)) + " is not read on its own",
                    Suggestion{rest.first,
                               rest.second,
                               "(" + std::string(m_analysis.typed(begin, end)) + ")",
                               {}});
                return false;
            }
            return true;
        }
        tokenize(m_analysis.clean, m_analysis.sink, m_names, begin, end, m_expression);
        if (m_expression.size() == 1 && m_expression[0].kind == TokenKind::number &&
            !onlyHardDefinitions()) {
            // The text around it has structure, so it is not read as a plain number; cut at
            // its operators it has none, and reading it whole would never end.
            const auto at = m_analysis.clean.rawRange(begin, end);
            m_analysis.sink.add(Severity::error, at,
                                "a plain number after ';' is not read on its own",
                                Suggestion{at.first,
                                           at.second,
                                           "(" + std::string(m_analysis.typed(begin, end)) + ")",
                                           {}});
            return false;
        }
        return true;
    }

    // Hard definitions that are not used are set aside one by one, and a plain number left
    // alone after them is read as such.
    [[nodiscard]] bool onlyHardDefinitions() const {
        return std::all_of(m_statements.begin(), m_statements.end(), [this](const auto& piece) {
            return view(piece.first, piece.second).find('~') != std::string_view::npos;
        });
    }

    [[nodiscard]] bool topLevel(std::size_t begin, std::size_t at) const {
        long depth = 0;
        for (std::size_t p = begin; p < at; ++p) {
            depth += m_analysis.clean[p] == '(' ? 1 : (m_analysis.clean[p] == ')' ? -1 : 0);
        }
        return depth == 0;
    }

    // After a second ':' the rest is read as a text that must show operators at its top level,
    // be wrapped in parentheses, or be a name whose value is.
    [[nodiscard]] bool standsAlone(std::size_t begin, std::size_t end) const {
        if (m_expression.size() == 1 && (m_expression[0].kind == TokenKind::name ||
                                         m_expression[0].kind == TokenKind::constant)) {
            return true;
        }
        if (m_analysis.clean[begin] == '(' && m_analysis.partner[begin] == end - 1) {
            return true;
        }
        long depth = 0;
        for (const Token& token : m_expression) {
            depth += token.kind == TokenKind::open ? 1 : (token.kind == TokenKind::close ? -1 : 0);
            if (depth == 0 && (isBinaryOperator(token.kind) || token.kind == TokenKind::function)) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] static std::vector<std::size_t> namesIn(const std::vector<Token>& tokens) {
        std::vector<std::size_t> uses;
        for (const Token& token : tokens) {
            if (token.kind == TokenKind::name) {
                uses.push_back(token.key);
            }
        }
        return uses;
    }

    void markReachable() {
        std::vector<std::size_t> waiting = namesIn(m_expression);
        while (!waiting.empty()) {
            const std::size_t k = waiting.back();
            waiting.pop_back();
            if (m_definitions[k].reachable) {
                continue;
            }
            m_definitions[k].reachable = true;
            waiting.insert(waiting.end(), m_definitions[k].uses.begin(),
                           m_definitions[k].uses.end());
        }
    }

    void checkDefinitions() {
        for (const Definition& definition : m_definitions) {
            const std::string defined = name(definition);
            const auto at = nameRange(definition);
            if (definition.replaced) {
                m_analysis.sink.add(
                    Severity::warning, at,
                    quoted(defined) + " is defined again later; only the last definition counts");
                continue;
            }
            if (!definition.reachable) {
                m_analysis.sink.add(Severity::warning, at,
                                    quoted(defined) + " is defined but never used");
            } else if (definition.valueBegin == definition.valueEnd) {
                m_analysis.sink.add(Severity::error, at, quoted(defined) + " is given no value");
            }
            builtInName(definition, defined);
        }
    }

    // A definition of a function's, comparator's or constant's name replaces it everywhere.
    void builtInName(const Definition& definition, const std::string& defined) {
        NameTable builtIns;
        std::vector<NameTable::Match> matches;
        builtIns.matchesAt(defined, 0, defined.size(), matches);
        for (const NameTable::Match& match : matches) {
            if (match.length != defined.size()) {
                continue;
            }
            const char* what = match.kind == NameTable::Kind::function     ? "a function"
                               : match.kind == NameTable::Kind::comparator ? "a comparison word"
                                                                           : "a constant";
            m_analysis.sink.add(
                Severity::warning, nameRange(definition),
                quoted(defined) + " is " + what + "; this definition replaces it everywhere");
        }
    }

    // Names defined through themselves never stop growing, and are left unreadable.
    void checkCycles() {
        enum class Colour : std::uint8_t { white, grey, black };
        std::vector<Colour> colour(m_definitions.size(), Colour::white);
        std::vector<bool> reported(m_definitions.size(), false);
        std::vector<std::pair<std::size_t, std::size_t>> path;
        for (std::size_t start = 0; start < m_definitions.size(); ++start) {
            if (!m_definitions[start].reachable || colour[start] != Colour::white) {
                continue;
            }
            path.emplace_back(start, 0);
            colour[start] = Colour::grey;
            while (!path.empty()) {
                auto& [node, next] = path.back();
                const auto& uses = m_definitions[node].uses;
                if (next == uses.size()) {
                    colour[node] = Colour::black;
                    path.pop_back();
                    continue;
                }
                const std::size_t used = uses[next++];
                if (colour[used] == Colour::grey && !reported[used] && !readAlone(used)) {
                    reported[used] = true;
                    m_analysis.sink.add(Severity::error, nameRange(m_definitions[used]),
                                        quoted(name(m_definitions[used])) +
                                            " is defined through itself, so it never gets a value");
                } else if (colour[used] == Colour::white) {
                    colour[used] = Colour::grey;
                    path.emplace_back(used, 0);
                }
            }
        }
    }

    // What is left of a name defined through itself once the writing out stops: a dice letter
    // or a function's or constant's name still means something then ("d=1d6;d+d").
    [[nodiscard]] bool readAlone(std::size_t k) const {
        const std::string defined = name(m_definitions[k]);
        if (defined.size() == 1 && isOperatorLetter(defined[0])) {
            return true;
        }
        NameTable builtIns;
        std::vector<NameTable::Match> matches;
        builtIns.matchesAt(defined, 0, defined.size(), matches);
        return std::any_of(matches.begin(), matches.end(),
                           [&defined](const auto& m) { return m.length == defined.size(); });
    }

    // "d=1d6;d+d", "c=2;5c7+c": a name is written out wherever it stands, inside dice and other
    // words as well.
    void checkWrittenInside() {
        std::vector<bool> reported(m_definitions.size(), false);
        const auto look = [this, &reported](const std::vector<Token>& tokens) {
            for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
                const Token& token = tokens[i];
                // A name right before digits: "x2", and the "d" of "1d6" once "d" is defined.
                if (token.kind == TokenKind::name && !reported[token.key] &&
                    tokens[i + 1].kind == TokenKind::number && tokens[i + 1].begin == token.end) {
                    reported[token.key] = true;
                    writtenInside(token);
                }
            }
        };
        look(m_expression);
        for (const Definition& definition : m_definitions) {
            if (definition.reachable && !definition.replaced) {
                look(definition.tokens);
            }
        }
    }

    void writtenInside(const Token& token) {
        const CleanText& clean = m_analysis.clean;
        std::size_t first = token.begin;
        while (first > 0 && token.begin - first < kShownAround &&
               isWordCharacter(clean[first - 1])) {
            --first;
        }
        std::size_t last = token.end;
        while (last < clean.size() && last - token.end < kShownAround &&
               isWordCharacter(clean[last])) {
            ++last;
        }
        m_analysis.sink.add(Severity::warning, m_analysis.rawRange(token),
                            "the name " + quoted(m_analysis.tokenText(token)) +
                                " is also replaced inside " + quoted(view(first, last)) +
                                ": give it a name that appears nowhere else in the text");
    }

    void checkTokens(const std::vector<Token>& tokens, bool expressionProper) {
        std::vector<bool> handled(tokens.size(), false);
        checkStructure(m_analysis, tokens, handled, expressionProper);
        checkWords(m_analysis, m_names, tokens, handled);
        checkNumbers(m_analysis, tokens);
    }

    Analysis& m_analysis;
    TextUnit m_unit;
    std::vector<std::pair<std::size_t, std::size_t>> m_statements;
    std::size_t m_expressionBegin = 0;
    std::vector<Definition> m_definitions;
    NameTable m_names;
    std::vector<Token> m_expression;
    std::vector<std::string_view> m_oddNames;
    bool m_unreadable = false;
};

}  // namespace

void checkStatements(Analysis& analysis, const TextUnit& unit) {
    StatementCheck(analysis, unit).run();
}

}  // namespace talvex::language::diagnostics_detail
