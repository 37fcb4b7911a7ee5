// Words: how the language cuts a run of letters and digits into names, dice letters and
// numbers, and what is said about the words it does not know.

#include <algorithm>
#include <array>
#include <charconv>

#include "expressions/compound_expression.h"
#include "expressions/diagnostics_internal.h"
#include "expressions/function_expression.h"

namespace talvex::language::diagnostics_detail {
namespace {

// How many values each function takes. The one-value functions use their first value and
// ignore the rest; "max", "min" and "die" take as many as given, but at least one; "diew"
// takes pairs.
FunctionShape shapeOf(std::string_view name) {
    constexpr std::array<std::string_view, 21> kFirstOnly = {
        "ln",     "log",    "exp",    "sin",    "cos",    "tan",    "round",
        "floor",  "ceil",   "abs",    "arcsin", "arccos", "arctan", "mean",
        "stddev", "minval", "maxval", "values", "median", "mode",   "range"};
    if (std::find(kFirstOnly.begin(), kFirstOnly.end(), name) != kFirstOnly.end()) {
        return {name, 1, 1, true, false};
    }
    if (name == "max" || name == "min" || name == "die") {
        return {name, 1, kNone, false, false};
    }
    if (name == "diew") {
        return {name, 2, kNone, false, true};
    }
    if (name == "dieMult" || name == "diePow" || name == "dier") {
        return {name, 2, 2, false, false};
    }
    if (name == "keep" || name == "drop") {
        return {name, 4, 4, false, false};
    }
    if (name == "count" || name == "criterion" || name.starts_with("confine")) {
        return {name, 3, 3, false, false};
    }
    // A function this pass does not know the needs of: nothing is said about its values.
    return {name, 0, kNone, false, false};
}

const std::vector<FunctionShape>& shapes() {
    static const std::vector<FunctionShape> kShapes = [] {
        std::vector<FunctionShape> list;
        for (const std::string_view name : FunctionExpression::functionNames()) {
            list.push_back(shapeOf(name));
        }
        return list;
    }();
    return kShapes;
}

std::uint64_t edgeKey(std::uint32_t node, char c) {
    return (static_cast<std::uint64_t>(node) << 8U) | static_cast<unsigned char>(c);
}

const NameTable::Trie& builtInNames() {
    static const NameTable::Trie kBuiltIn = [] {
        NameTable::Trie trie;
        const auto functions = FunctionExpression::functionNames();
        for (std::size_t i = 0; i < functions.size(); ++i) {
            trie.insert(functions[i], NameTable::Kind::function, i);
        }
        const auto comparators = CompoundExpression::comparatorArray();
        for (std::size_t i = 0; i < comparators.size(); ++i) {
            trie.insert(comparators[i], NameTable::Kind::comparator, i);
        }
        const auto constants = CompoundExpression::constants();
        for (std::size_t i = 0; i < constants.size(); ++i) {
            trie.insert(constants[i].first, NameTable::Kind::constant, i);
        }
        return trie;
    }();
    return kBuiltIn;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lower(x) == lower(y); });
}

// Letters changed, added or removed to turn one word into the other, case aside.
std::size_t editDistance(std::string_view a, std::string_view b, std::vector<std::size_t>& row) {
    row.resize(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            const std::size_t change = diagonal + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
            row[j] = std::min({above + 1, row[j - 1] + 1, change});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

void NameTable::Trie::insert(std::string_view text, Kind kind, std::size_t index) {
    std::uint32_t node = 0;
    for (const char c : text) {
        const auto [edge, added] =
            edges.try_emplace(edgeKey(node, c), static_cast<std::uint32_t>(terminal.size()));
        if (added) {
            terminal.push_back(kNone);
        }
        node = edge->second;
    }
    if (terminal[node] == kNone) {
        terminal[node] = entries.size();
        entries.push_back({text, kind, index});
    } else {
        // A later definition of the same name replaces the earlier one.
        entries[terminal[node]] = {text, kind, index};
    }
}

void NameTable::Trie::matchesAt(std::string_view text, std::size_t at, std::size_t end,
                                std::vector<Match>& found) const {
    std::uint32_t node = 0;
    const std::size_t last = std::min(end, at + kLongestMatched);
    for (std::size_t i = at; i < last; ++i) {
        const auto edge = edges.find(edgeKey(node, text[i]));
        if (edge == edges.end()) {
            return;
        }
        node = edge->second;
        if (terminal[node] != kNone) {
            const Entry& entry = entries[terminal[node]];
            found.push_back({at, i + 1 - at, entry.kind, entry.index});
        }
    }
}

void NameTable::addDefinition(std::string_view name, std::size_t definition) {
    if (name.size() <= kLongestMatched) {
        m_definitions.insert(name, Kind::definition, definition);
    } else {
        m_long[name] = definition;
    }
}

void NameTable::matchesAt(std::string_view text, std::size_t at, std::size_t end,
                          std::vector<Match>& found) const {
    builtInNames().matchesAt(text, at, end, found);
    m_definitions.matchesAt(text, at, end, found);
}

std::size_t NameTable::longDefinition(std::string_view word) const {
    const auto found = m_long.find(word);
    return found == m_long.end() ? kNone : found->second;
}

void NameTable::collectNames(std::vector<std::string_view>& names) const {
    for (const Entry& entry : builtInNames().entries) {
        names.push_back(entry.text);
    }
    for (const Entry& entry : m_definitions.entries) {
        names.push_back(entry.text);
    }
}

const FunctionShape& functionShape(std::size_t functionIndex) { return shapes()[functionIndex]; }

std::string nearestName(std::string_view word, const NameTable& names, SuggestionBudget& budget) {
    constexpr std::size_t kLongestWord = 32;
    if (word.size() > kLongestWord) {
        return {};
    }
    std::vector<std::string_view> candidates;
    names.collectNames(candidates);
    for (const std::string_view candidate : candidates) {
        if (sameIgnoringCase(word, candidate)) {
            return std::string(candidate);
        }
    }
    // Short words are too easily near anything: only their case is corrected.
    const std::size_t allowed = word.size() <= 2 ? 0 : (word.size() <= 5 ? 1 : 2);
    std::vector<std::size_t> row;
    std::string_view best;
    std::size_t bestDistance = allowed + 1;
    for (const std::string_view candidate : candidates) {
        const std::size_t gap = candidate.size() > word.size() ? candidate.size() - word.size()
                                                               : word.size() - candidate.size();
        // Two-letter names ("ex", "pi", "vs") would be near too many words.
        if (gap > allowed || candidate.size() < 3 || candidate.size() > kLongestWord) {
            continue;
        }
        if (!budget.spend((word.size() + 1) * (candidate.size() + 1))) {
            return {};
        }
        const std::size_t distance = editDistance(word, candidate, row);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return std::string(best);
}

namespace {

// Scratch space for cutting one run, kept between runs.
struct RunScratch {
    std::vector<NameTable::Match> matches;
    std::vector<std::size_t> owner;  // per character of the run: accepted match, or kNone
    std::vector<bool> unknown;       // per character: part of a word the language does not know
};

TokenKind kindOf(NameTable::Kind kind) {
    switch (kind) {
        case NameTable::Kind::function:
            return TokenKind::function;
        case NameTable::Kind::comparator:
            return TokenKind::comparator;
        case NameTable::Kind::constant:
            return TokenKind::constant;
        case NameTable::Kind::definition:
            break;
    }
    return TokenKind::name;
}

// A run of letters, digits and points, cut the way the language's substitution cuts it: the
// longest names first, wherever they stand, then single dice letters and numbers. A group of
// letters with anything else left in it is one unknown word.
void cutRun(std::string_view text, const NameTable& names, std::size_t begin, std::size_t end,
            RunScratch& scratch, std::vector<Token>& tokens) {
    const std::size_t length = end - begin;
    if (const std::size_t definition = names.longDefinition(text.substr(begin, length));
        definition != kNone) {
        tokens.push_back({TokenKind::name, begin, end, definition});
        return;
    }
    auto& matches = scratch.matches;
    matches.clear();
    for (std::size_t at = begin; at < end; ++at) {
        if (isLetter(text[at]) || isDigit(text[at])) {
            names.matchesAt(text, at, end, matches);
        }
    }
    std::sort(matches.begin(), matches.end(), [](const auto& a, const auto& b) {
        if (a.length != b.length) {
            return a.length > b.length;
        }
        if (a.begin != b.begin) {
            return a.begin < b.begin;
        }
        // A definition of a function's or constant's name replaces it.
        return a.kind == NameTable::Kind::definition && b.kind != NameTable::Kind::definition;
    });
    scratch.owner.assign(length, kNone);
    scratch.unknown.assign(length, false);
    for (std::size_t m = 0; m < matches.size(); ++m) {
        const auto& match = matches[m];
        const auto first = scratch.owner.begin() + static_cast<std::ptrdiff_t>(match.begin - begin);
        const auto last = first + static_cast<std::ptrdiff_t>(match.length);
        if (std::all_of(first, last, [](std::size_t o) { return o == kNone; })) {
            std::fill(first, last, m);
        }
    }
    // Groups of letters with a letter that is neither in a name nor a dice letter.
    for (std::size_t at = begin; at < end;) {
        if (!isLetter(text[at])) {
            ++at;
            continue;
        }
        std::size_t groupEnd = at;
        bool strange = false;
        while (groupEnd < end && isLetter(text[groupEnd])) {
            strange = strange || (scratch.owner[groupEnd - begin] == kNone &&
                                  !isOperatorLetter(text[groupEnd]));
            ++groupEnd;
        }
        if (strange) {
            for (std::size_t i = at; i < groupEnd; ++i) {
                if (const std::size_t m = scratch.owner[i - begin]; m != kNone) {
                    const auto& match = matches[m];
                    std::fill_n(
                        scratch.owner.begin() + static_cast<std::ptrdiff_t>(match.begin - begin),
                        match.length, kNone);
                }
                scratch.unknown[i - begin] = true;
            }
        }
        at = groupEnd;
    }
    for (std::size_t at = begin; at < end;) {
        const std::size_t offset = at - begin;
        if (const std::size_t m = scratch.owner[offset]; m != kNone) {
            const auto& match = matches[m];
            tokens.push_back({kindOf(match.kind), at, at + match.length, match.index});
            at += match.length;
        } else if (scratch.unknown[offset] || (isLetter(text[at]) && !isOperatorLetter(text[at]))) {
            std::size_t wordEnd = at + 1;
            while (wordEnd < end && scratch.unknown[wordEnd - begin]) {
                ++wordEnd;
            }
            tokens.push_back({TokenKind::unknownWord, at, wordEnd, 0});
            at = wordEnd;
        } else if (isOperatorLetter(text[at])) {
            tokens.push_back(
                {text[at] == 'e' ? TokenKind::exponent : TokenKind::diceLetter, at, at + 1, 0});
            ++at;
        } else {
            std::size_t numberEnd = at;
            while (numberEnd < end && scratch.owner[numberEnd - begin] == kNone &&
                   (isDigit(text[numberEnd]) || text[numberEnd] == '.')) {
                ++numberEnd;
            }
            tokens.push_back({TokenKind::number, at, numberEnd, 0});
            at = numberEnd;
        }
    }
}

bool isComparisonCharacter(char c) { return c == '<' || c == '>' || c == '=' || c == '!'; }

// The typographic comparison signs, three bytes each: >= <= and !=.
bool isWideComparison(std::string_view text, std::size_t at) {
    return text.substr(at, 2) == "\xE2\x89" && at + 2 < text.size() &&
           (text[at + 2] == '\xA5' || text[at + 2] == '\xA4' || text[at + 2] == '\xA0');
}

}  // namespace

void tokenize(const CleanText& clean, const FindingSink& sink, const NameTable& names,
              std::size_t begin, std::size_t end, std::vector<Token>& tokens) {
    const std::string_view text = clean.text();
    RunScratch scratch;
    std::size_t at = begin;
    while (at < end) {
        const char c = text[at];
        std::size_t next = at + 1;
        if (sink.covered(clean.rawAt(at)) && (c == '[' || c == '{' || c == ']' || c == '}')) {
            // Brackets of other tools still group, so that what stands in them is read as such.
            tokens.push_back(
                {c == '[' || c == '{' ? TokenKind::open : TokenKind::close, at, next, 1});
        } else if (sink.covered(clean.rawAt(at))) {
            while (next < end && sink.covered(clean.rawAt(next)) &&
                   std::string_view("[]{}").find(text[next]) == std::string_view::npos) {
                ++next;
            }
            tokens.push_back({TokenKind::stranger, at, next, 0});
        } else if (isWordCharacter(c)) {
            while (next < end && isWordCharacter(text[next]) && !sink.covered(clean.rawAt(next))) {
                ++next;
            }
            cutRun(text, names, at, next, scratch, tokens);
        } else if (isComparisonCharacter(c)) {
            while (next < end && isComparisonCharacter(text[next])) {
                ++next;
            }
            tokens.push_back({TokenKind::comparison, at, next, 0});
        } else if (isWideComparison(text, at)) {
            next = std::min(end, at + 3);
            tokens.push_back({TokenKind::comparison, at, next, 0});
        } else {
            TokenKind kind = TokenKind::stranger;
            switch (c) {
                case '+':
                case '-':
                case '*':
                case '/':
                case '^':
                    kind = TokenKind::arithmetic;
                    break;
                case '(':
                    kind = TokenKind::open;
                    break;
                case ')':
                    kind = TokenKind::close;
                    break;
                case ',':
                    kind = TokenKind::comma;
                    break;
                case ':':
                    kind = TokenKind::colon;
                    break;
                case '~':
                    kind = TokenKind::tilde;
                    break;
                default:
                    break;
            }
            tokens.push_back({kind, at, next, 0});
        }
        at = next;
    }
}

namespace {

std::optional<long> wholeNumber(std::string_view digits) {
    long value = 0;
    if (digits.empty() || digits.size() > 9 ||
        std::from_chars(digits.data(), digits.data() + digits.size(), value).ptr !=
            digits.data() + digits.size()) {
        return std::nullopt;
    }
    return value;
}

// "4d6dl1", "4d6kh3", "2d20kl1" and "4d6d1": dropping and keeping dice as other tools write
// it. Answers the tokens it explained.
void checkDropAndKeep(Analysis& analysis, const std::vector<Token>& tokens,
                      std::vector<bool>& handled) {
    for (std::size_t i = 0; i + 4 < tokens.size(); ++i) {
        const Token& count = tokens[i];
        const Token& letter = tokens[i + 1];
        const Token& sides = tokens[i + 2];
        const Token& how = tokens[i + 3];
        const Token& amount = tokens[i + 4];
        if (count.kind != TokenKind::number || letter.kind != TokenKind::diceLetter ||
            analysis.tokenText(letter) != "d" || sides.kind != TokenKind::number ||
            amount.kind != TokenKind::number || (i > 0 && isBinding(analysis, tokens, i - 1)) ||
            isBinding(analysis, tokens, i + 5)) {
            continue;
        }
        const auto n = wholeNumber(analysis.tokenText(count));
        const auto s = wholeNumber(analysis.tokenText(sides));
        const auto m = wholeNumber(analysis.tokenText(amount));
        if (!n || !s || !m) {
            continue;
        }
        const std::string_view word = analysis.tokenText(how);
        long low = -1;
        long high = -1;
        std::string reason;
        const std::string amountText = std::to_string(*m);
        if (word == "dl" || word == "d") {
            low = *m < *n ? *m : -1;
            high = 0;
            reason = "to drop the lowest " + amountText;
        } else if (word == "dh") {
            low = 0;
            high = *m < *n ? *m : -1;
            reason = "to drop the highest " + amountText;
        } else if (word == "k" || word == "kh") {
            low = *m >= 1 && *m <= *n ? *n - *m : -1;
            high = 0;
            reason = "to keep the highest " + amountText;
        } else if (word == "kl") {
            low = 0;
            high = *m >= 1 && *m <= *n ? *n - *m : -1;
            reason = "to keep the lowest " + amountText;
        } else {
            continue;
        }
        const bool plainDice = how.kind == TokenKind::diceLetter;
        if (plainDice && (*n < 2 || low < 0)) {
            // "1d6d6" or "2d6d6": a roll of rolled dice, which is what it says.
            continue;
        }
        if (!plainDice && how.kind != TokenKind::unknownWord) {
            continue;
        }
        const std::pair range = analysis.clean.rawRange(how.begin, amount.end);
        const auto whole = analysis.clean.rawRange(count.begin, amount.end);
        const std::string dice(analysis.clean.view(count.begin, sides.end));
        std::optional<Suggestion> suggestion;
        if (low >= 0 && high >= 0) {
            suggestion =
                Suggestion{whole.first, whole.second,
                           "drop(1d" + std::to_string(*s) + "," + std::to_string(*n) + "," +
                               std::to_string(low) + "," + std::to_string(high) + ")",
                           reason};
        }
        if (plainDice) {
            analysis.sink.add(Severity::warning, range,
                              quoted(std::string(analysis.clean.view(count.begin, amount.end))) +
                                  " rolls " + dice + " dice with " + amountText +
                                  (*m == 1 ? " side" : " sides") + " each and drops nothing",
                              *suggestion);
        } else if (suggestion) {
            analysis.sink.add(
                Severity::error, range,
                quoted(analysis.clean.view(how.begin, amount.end)) + " is not part of the language",
                *suggestion);
        } else {
            analysis.sink.add(Severity::error, range,
                              quoted(analysis.clean.view(how.begin, amount.end)) +
                                  " is not part of the language");
        }
        handled[i + 3] = true;
    }
}

bool endsOperand(const std::vector<Token>& tokens, std::size_t i) {
    if (i == 0 || i > tokens.size()) {
        return false;
    }
    const TokenKind kind = tokens[i - 1].kind;
    return kind == TokenKind::number || kind == TokenKind::close || kind == TokenKind::name ||
           kind == TokenKind::constant;
}

bool startsOperand(const std::vector<Token>& tokens, std::size_t i) {
    if (i >= tokens.size()) {
        return false;
    }
    const TokenKind kind = tokens[i].kind;
    return kind == TokenKind::number || kind == TokenKind::open || kind == TokenKind::name ||
           kind == TokenKind::constant || kind == TokenKind::function;
}

void reportUnknownWord(Analysis& analysis, const NameTable& names, const std::vector<Token>& tokens,
                       std::size_t i) {
    const Token& token = tokens[i];
    const std::string_view word = analysis.tokenText(token);
    const auto range = analysis.rawRange(token);
    if (word.size() == 1 && isOperatorLetter(lower(word[0])) && word[0] != lower(word[0])) {
        const char small = lower(word[0]);
        const std::string message =
            small == 'e' ? std::string("'E' is written small, as 'e'")
                         : "dice are written with a small '" + std::string(1, small) + "'";
        // A capital letter without a count before it gets the count as well: "D6" is "1d6".
        std::string replacement(1, small);
        if (small != 'e' && !endsOperand(tokens, i) && startsOperand(tokens, i + 1)) {
            replacement = "1" + replacement;
        }
        analysis.sink.add(Severity::error, range, message,
                          Suggestion{range.first, range.second, replacement, {}});
        return;
    }
    const std::string message = quoted(word) + " is not a known function or name";
    if (sameIgnoringCase(word, "versus") && endsOperand(tokens, i) &&
        startsOperand(tokens, i + 1)) {
        analysis.sink.add(Severity::error, range, message,
                          Suggestion{range.first, range.second, "vs", {}});
        return;
    }
    if ((word == "x" || word == "X") && endsOperand(tokens, i) && startsOperand(tokens, i + 1)) {
        analysis.sink.add(Severity::error, range, message,
                          Suggestion{range.first, range.second, "*", "for multiplying"});
        return;
    }
    // The same unknown word gets the same answer; texts repeat their mistakes.
    auto known = analysis.nearest.find(word);
    if (known == analysis.nearest.end()) {
        known = analysis.nearest.emplace(word, nearestName(word, names, analysis.budget)).first;
    }
    const std::string& near = known->second;
    if (near.empty()) {
        analysis.sink.add(Severity::error, range, message);
    } else {
        analysis.sink.add(Severity::error, range, message,
                          Suggestion{range.first, range.second, near, {}});
    }
}

}  // namespace

bool isBinding(const Analysis& analysis, const std::vector<Token>& tokens, std::size_t i) {
    if (i >= tokens.size()) {
        return false;
    }
    const Token& token = tokens[i];
    return token.kind == TokenKind::diceLetter || token.kind == TokenKind::exponent ||
           (token.kind == TokenKind::arithmetic && analysis.clean[token.begin] == '^');
}

void checkWords(Analysis& analysis, const NameTable& names, const std::vector<Token>& tokens,
                std::vector<bool>& handled) {
    checkDropAndKeep(analysis, tokens, handled);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind != TokenKind::unknownWord || handled[i]) {
            continue;
        }
        const std::string_view word = analysis.tokenText(tokens[i]);
        if (std::find(analysis.swallowedNames.begin(), analysis.swallowedNames.end(), word) !=
            analysis.swallowedNames.end()) {
            continue;
        }
        reportUnknownWord(analysis, names, tokens, i);
    }
}

}  // namespace talvex::language::diagnostics_detail
