#include "expressions/compound_substitution.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "core/calculation_limits.h"

namespace talvex::language {
namespace {

constexpr char kMark = ':';
constexpr std::int32_t kNoMark = -1;

// The two texts being rewritten, cell by cell: a cell is either a character of both texts or
// a mark that stands for a record. Marks are kept apart from any ":" the user typed, so such a
// colon is neither taken for a mark nor matched as part of one.
struct MarkedTexts {
    std::string target;
    std::string search;
    std::vector<std::int32_t> marks;  // record index per cell, kNoMark for a plain character

    [[nodiscard]] bool coversMark(std::size_t position, std::size_t length) const {
        return std::any_of(marks.begin() + static_cast<std::ptrdiff_t>(position),
                           marks.begin() + static_cast<std::ptrdiff_t>(position + length),
                           [](std::int32_t mark) { return mark != kNoMark; });
    }
};

void spend(RewritingBudget* budget, std::size_t units) {
    if (budget != nullptr) {
        budget->spend(units);
    }
}

// Non-overlapping occurrences of `key`, left to right, that do not run over a mark. Replacing
// them one after the other, each time searching again from the start, finds the same ones: a
// mark can never be part of a later occurrence.
std::vector<std::size_t> occurrences(const MarkedTexts& texts, std::string_view key) {
    std::vector<std::size_t> found;
    const bool mayRunOverMark = key.find(kMark) != std::string_view::npos;
    const std::string_view search = texts.search;
    std::size_t from = 0;
    while (from + key.size() <= search.size()) {
        const std::size_t position = search.find(key, from);
        if (position == std::string_view::npos) {
            break;
        }
        if (mayRunOverMark && texts.coversMark(position, key.size())) {
            from = position + 1;
            continue;
        }
        found.push_back(position);
        from = position + key.size();
    }
    return found;
}

// Replaces the given occurrences of a key of `length` characters by marks for the records
// numbered from `firstRecord` on.
void markOccurrences(MarkedTexts& texts, const std::vector<std::size_t>& positions,
                     std::size_t length, std::int32_t firstRecord) {
    MarkedTexts marked;
    const std::size_t size = texts.search.size() - positions.size() * (length - 1);
    marked.target.reserve(size);
    marked.search.reserve(size);
    marked.marks.reserve(size);
    std::size_t cursor = 0;
    std::int32_t record = firstRecord;
    for (const std::size_t position : positions) {
        marked.target.append(texts.target, cursor, position - cursor);
        marked.search.append(texts.search, cursor, position - cursor);
        marked.marks.insert(marked.marks.end(),
                            texts.marks.begin() + static_cast<std::ptrdiff_t>(cursor),
                            texts.marks.begin() + static_cast<std::ptrdiff_t>(position));
        marked.target.push_back(kMark);
        marked.search.push_back(kMark);
        marked.marks.push_back(record++);
        cursor = position + length;
    }
    marked.target.append(texts.target, cursor);
    marked.search.append(texts.search, cursor);
    marked.marks.insert(marked.marks.end(),
                        texts.marks.begin() + static_cast<std::ptrdiff_t>(cursor),
                        texts.marks.end());
    texts = std::move(marked);
}

}  // namespace

SubstitutionTable::SubstitutionTable(
    std::initializer_list<std::pair<std::string, std::string>> entries) {
    for (const auto& [key, value] : entries) {
        set(key, value);
    }
}

void SubstitutionTable::set(std::string key, std::string value) {
    if (const auto found = m_places.find(key); found != m_places.end()) {
        m_entries[found->second].second = std::move(value);
        return;
    }
    m_places.emplace(key, m_entries.size());
    m_entries.emplace_back(std::move(key), std::move(value));
}

void RewritingBudget::spend(std::uint64_t units) {
    if (units > m_remaining) {
        m_remaining = 0;
        throw core::CalculationTooLarge(
            "rewriting the expression takes too long (too many or too long definitions)");
    }
    m_remaining -= units;
}

int CompoundExpressionStringShortnessCompare(std::string_view a, std::string_view b) noexcept {
    if (a.size() > b.size()) {
        return -1;
    }
    return a.size() < b.size() ? 1 : 0;
}

DefinedStrings defineStrings(const SubstitutionTable& table, std::string_view target,
                             std::string_view search, RewritingBudget* budget) {
    if (target.size() != search.size()) {
        return {};
    }
    const StringPairs& entries = table.entries();
    std::vector<std::size_t> order(entries.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&entries](std::size_t a, std::size_t b) {
        return CompoundExpressionStringShortnessCompare(entries[a].first, entries[b].first) < 0;
    });

    MarkedTexts texts{std::string(target), std::string(search),
                      std::vector<std::int32_t>(search.size(), kNoMark)};
    StringPairs made;  // (value, key), in the order the marks were made
    std::size_t passes = 0;
    bool found = false;
    do {
        ++passes;
        found = false;
        // A key whose first character does not occur cannot occur; replacing only removes
        // characters (and adds marks), so this holds for the whole pass.
        std::array<bool, 256> present{};
        for (const char c : texts.search) {
            present[static_cast<unsigned char>(c)] = true;
        }
        present[static_cast<unsigned char>(kMark)] = true;
        spend(budget, texts.search.size());
        for (const std::size_t index : order) {
            const std::string& key = entries[index].first;
            // An empty key is never found, as a string search never finds the empty string.
            if (key.empty() || !present[static_cast<unsigned char>(key.front())]) {
                continue;
            }
            spend(budget, texts.search.size());
            const std::vector<std::size_t> positions = occurrences(texts, key);
            if (positions.empty()) {
                continue;
            }
            found = true;
            spend(budget, texts.search.size());
            markOccurrences(texts, positions, key.size(), static_cast<std::int32_t>(made.size()));
            for (std::size_t i = 0; i < positions.size(); ++i) {
                made.emplace_back(entries[index].second, key);
            }
        }
    } while (found && passes <= entries.size());
    if (passes > entries.size()) {
        return {};
    }

    std::size_t length = 0;
    for (const std::int32_t mark : texts.marks) {
        length += mark == kNoMark ? 1 : made[static_cast<std::size_t>(mark)].first.size();
        if (length > kMaxRewrittenLength) {
            throw core::CalculationTooLarge("rewriting the expression makes it longer than " +
                                            std::to_string(kMaxRewrittenLength) + " characters");
        }
    }
    DefinedStrings result;
    result.target.reserve(length);
    result.search.reserve(length);
    result.records.reserve(made.size());
    for (std::size_t i = 0; i < texts.marks.size(); ++i) {
        const std::int32_t mark = texts.marks[i];
        if (mark == kNoMark) {
            result.target.push_back(texts.target[i]);
            result.search.push_back(texts.search[i]);
        } else {
            const auto& record = made[static_cast<std::size_t>(mark)];
            result.target += record.first;
            result.search += record.first;
            result.records.push_back(record);
        }
    }
    return result;
}

ReplacedStrings replaceStrings(const StringPairs& pairs, std::string_view target,
                               std::string_view search) {
    if (target.size() != search.size()) {
        return {};
    }
    ReplacedStrings texts{std::string(target), std::string(search)};
    std::size_t next = 0;
    while (next < pairs.size()) {
        const std::string& find = pairs[next].first;
        if (find.empty()) {
            return {};
        }
        // A run of pairs that find the same single character, none of whose replacements
        // contains it, consumes its occurrences left to right: one pass over the text does
        // the whole run instead of one pass per pair.
        std::size_t end = next + 1;
        if (find.size() == 1) {
            while (end < pairs.size() && pairs[end].first == find) {
                ++end;
            }
        }
        for (std::size_t i = next; i < end; ++i) {
            if (pairs[i].second.find(find) != std::string::npos) {
                end = std::max(i, next + 1);
                break;
            }
        }
        ReplacedStrings replaced;
        std::size_t cursor = 0;
        for (std::size_t i = next; i < end; ++i) {
            const std::size_t position = texts.search.find(find, cursor);
            if (position == std::string::npos) {
                return {};
            }
            replaced.target.append(texts.target, cursor, position - cursor);
            replaced.search.append(texts.search, cursor, position - cursor);
            replaced.target += pairs[i].second;
            replaced.search += pairs[i].second;
            cursor = position + find.size();
        }
        replaced.target.append(texts.target, cursor);
        replaced.search.append(texts.search, cursor);
        texts = std::move(replaced);
        next = end;
    }
    return texts;
}

}  // namespace talvex::language
