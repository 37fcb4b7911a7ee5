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
};

void spend(RewritingBudget* budget, std::size_t units) {
    if (budget != nullptr) {
        budget->spend(units);
    }
}

// The keys of a table, found by their first character and length, so that one scan of the
// text finds every occurrence of every key however many keys there are.
class KeyIndex {
  public:
    // `order` lists the table's entries in the order their keys are replaced.
    KeyIndex(const StringPairs& entries, const std::vector<std::size_t>& order) {
        for (std::size_t rank = 0; rank < order.size(); ++rank) {
            const std::string& key = entries[order[rank]].first;
            // An empty key is never found, as a string search never finds the empty string.
            if (!key.empty()) {
                m_keys.push_back({key, rank});
            }
        }
        std::sort(m_keys.begin(), m_keys.end(), [](const Key& a, const Key& b) {
            if (a.text.front() != b.text.front()) {
                return static_cast<unsigned char>(a.text.front()) <
                       static_cast<unsigned char>(b.text.front());
            }
            if (a.text.size() != b.text.size()) {
                return a.text.size() < b.text.size();
            }
            return a.text < b.text;
        });
        for (std::size_t i = 0; i < m_keys.size(); ++i) {
            const bool newGroup = i == 0 || m_keys[i].text.front() != m_keys[i - 1].text.front() ||
                                  m_keys[i].text.size() != m_keys[i - 1].text.size();
            if (newGroup) {
                m_groups.push_back({m_keys[i].text.size(), i, i});
            }
            ++m_groups.back().end;
        }
        std::size_t group = 0;
        for (std::size_t c = 0; c < 256; ++c) {
            m_firstGroup[c] = group;
            while (group < m_groups.size() &&
                   static_cast<unsigned char>(m_keys[m_groups[group].begin].text.front()) == c) {
                ++group;
            }
        }
        m_firstGroup[256] = m_groups.size();
    }

    // Calls found(rank, length) for every key that occurs at `position` of `text`.
    template <class Found>
    void occurrencesAt(std::string_view text, std::size_t position, RewritingBudget* budget,
                       Found found) const {
        const auto c = static_cast<unsigned char>(text[position]);
        for (std::size_t g = m_firstGroup[c]; g < m_firstGroup[c + 1U]; ++g) {
            const Group& group = m_groups[g];
            if (position + group.length > text.size()) {
                break;  // the groups of one character go by increasing length
            }
            spend(budget, group.length);
            const std::string_view candidate = text.substr(position, group.length);
            const auto begin = m_keys.begin() + static_cast<std::ptrdiff_t>(group.begin);
            const auto end = m_keys.begin() + static_cast<std::ptrdiff_t>(group.end);
            const auto match =
                std::lower_bound(begin, end, candidate,
                                 [](const Key& key, std::string_view t) { return key.text < t; });
            if (match != end && match->text == candidate) {
                found(match->rank, group.length);
            }
        }
    }

  private:
    struct Key {
        std::string_view text;
        std::size_t rank;
    };
    struct Group {
        std::size_t length;
        std::size_t begin;
        std::size_t end;
    };

    std::vector<Key> m_keys;
    std::vector<Group> m_groups;
    std::array<std::size_t, 257> m_firstGroup{};
};

// An occurrence of the key of rank `rank` at `position`.
struct Occurrence {
    std::size_t rank;
    std::size_t position;
    std::size_t length;
};

// One pass: every key, in rank order, replaces its occurrences left to right by marks. All
// occurrences are found first and then taken in that order, skipping any that overlap one
// already taken (or a mark of an earlier pass): replacing key after key, each time searching
// the rewritten text, finds exactly these, since a mark can never be part of an occurrence.
// Returns the occurrences taken, in rank order.
std::vector<Occurrence> passOccurrences(const MarkedTexts& texts, const KeyIndex& index,
                                        RewritingBudget* budget) {
    const std::string_view search = texts.search;
    std::vector<Occurrence> candidates;
    spend(budget, search.size());
    for (std::size_t position = 0; position < search.size(); ++position) {
        index.occurrencesAt(search, position, budget, [&](std::size_t rank, std::size_t length) {
            candidates.push_back({rank, position, length});
        });
    }
    std::sort(candidates.begin(), candidates.end(), [](const Occurrence& a, const Occurrence& b) {
        return a.rank != b.rank ? a.rank < b.rank : a.position < b.position;
    });
    std::vector<bool> taken(search.size());
    for (std::size_t i = 0; i < search.size(); ++i) {
        taken[i] = texts.marks[i] != kNoMark;
    }
    std::vector<Occurrence> accepted;
    for (const Occurrence& candidate : candidates) {
        spend(budget, candidate.length);
        const auto first = taken.begin() + static_cast<std::ptrdiff_t>(candidate.position);
        const auto last = first + static_cast<std::ptrdiff_t>(candidate.length);
        if (std::find(first, last, true) == last) {
            std::fill(first, last, true);
            accepted.push_back(candidate);
        }
    }
    return accepted;
}

// Replaces the occurrences by marks for the records numbered from `firstRecord` on, in the
// order given.
void markOccurrences(MarkedTexts& texts, std::vector<Occurrence> occurrences,
                     std::int32_t firstRecord) {
    std::vector<std::int32_t> records(occurrences.size());
    std::iota(records.begin(), records.end(), firstRecord);
    std::vector<std::size_t> byPosition(occurrences.size());
    std::iota(byPosition.begin(), byPosition.end(), std::size_t{0});
    std::sort(byPosition.begin(), byPosition.end(), [&occurrences](std::size_t a, std::size_t b) {
        return occurrences[a].position < occurrences[b].position;
    });
    MarkedTexts marked;
    marked.target.reserve(texts.target.size());
    marked.search.reserve(texts.search.size());
    marked.marks.reserve(texts.marks.size());
    std::size_t cursor = 0;
    for (const std::size_t i : byPosition) {
        const Occurrence& occurrence = occurrences[i];
        marked.target.append(texts.target, cursor, occurrence.position - cursor);
        marked.search.append(texts.search, cursor, occurrence.position - cursor);
        marked.marks.insert(marked.marks.end(),
                            texts.marks.begin() + static_cast<std::ptrdiff_t>(cursor),
                            texts.marks.begin() + static_cast<std::ptrdiff_t>(occurrence.position));
        marked.target.push_back(kMark);
        marked.search.push_back(kMark);
        marked.marks.push_back(records[i]);
        cursor = occurrence.position + occurrence.length;
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

    const KeyIndex index(entries, order);
    MarkedTexts texts{std::string(target), std::string(search),
                      std::vector<std::int32_t>(search.size(), kNoMark)};
    StringPairs made;  // (value, key), in the order the marks were made
    std::size_t passes = 0;
    bool found = false;
    do {
        ++passes;
        std::vector<Occurrence> occurrences = passOccurrences(texts, index, budget);
        found = !occurrences.empty();
        if (found) {
            const auto firstRecord = static_cast<std::int32_t>(made.size());
            for (const Occurrence& occurrence : occurrences) {
                const auto& entry = entries[order[occurrence.rank]];
                made.emplace_back(entry.second, entry.first);
            }
            markOccurrences(texts, std::move(occurrences), firstRecord);
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
