#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace talvex::language {

// A rewritten text may not grow beyond this many characters (definitions that double at every
// step would otherwise fill the memory).
inline constexpr std::size_t kMaxRewrittenLength = 16U * 1024U * 1024U;

// Pairs of texts: (value, key) records of defineStrings, (find, put) pairs of replaceStrings.
using StringPairs = std::vector<std::pair<std::string, std::string>>;

// Keys and the values that replace them. Setting a key that is already there replaces its
// value and keeps its place, so the order of first appearance decides between keys of equal
// length.
class SubstitutionTable {
  public:
    SubstitutionTable() = default;
    SubstitutionTable(std::initializer_list<std::pair<std::string, std::string>> entries);

    void set(std::string key, std::string value);
    [[nodiscard]] const StringPairs& entries() const noexcept { return m_entries; }
    [[nodiscard]] std::size_t size() const noexcept { return m_entries.size(); }

  private:
    StringPairs m_entries;
    std::unordered_map<std::string, std::size_t> m_places;
};

// Work that one parse may spend on rewriting its text, counted in characters scanned. Runaway
// definitions end with a CalculationTooLarge instead of running for hours.
class RewritingBudget {
  public:
    explicit RewritingBudget(std::uint64_t units) noexcept : m_remaining(units) {}
    // Throws core::CalculationTooLarge once more is spent than there is.
    void spend(std::uint64_t units);
    [[nodiscard]] std::uint64_t remaining() const noexcept { return m_remaining; }

  private:
    std::uint64_t m_remaining;
};

// The order of substitution keys: a longer text sorts before a shorter one (-1), a shorter one
// after (+1); equal lengths compare equal (0).
[[nodiscard]] int CompoundExpressionStringShortnessCompare(std::string_view a,
                                                           std::string_view b) noexcept;

// The outcome of defineStrings: both texts rewritten, and the (value, key) record of every
// substitution, left to right.
struct DefinedStrings {
    std::string target;
    std::string search;
    StringPairs records;
};

// Replaces every occurrence of each key in `search` (and at the same place in `target`, which
// has the same length) by the key's value. Longest keys go first and an occurrence is first
// replaced by a mark, so a shorter key is never found inside a longer one or inside a value.
// Passes repeat while they find something, at most once per key; a table that needs more
// passes than it has keys fails, and so does one of a single key once that key is found. On
// failure, or when the two texts differ in length, both texts are empty and nothing is
// recorded. Throws core::CalculationTooLarge when the result would exceed kMaxRewrittenLength
// or the budget (if any) runs out.
[[nodiscard]] DefinedStrings defineStrings(const SubstitutionTable& table, std::string_view target,
                                           std::string_view search,
                                           RewritingBudget* budget = nullptr);

// Both texts after replaceStrings.
struct ReplacedStrings {
    std::string target;
    std::string search;
};

// For each (find, put) pair in order: the first occurrence of `find` in `search` is replaced
// by `put`, in both texts. If some `find` does not occur (or the texts differ in length), both
// results are empty.
[[nodiscard]] ReplacedStrings replaceStrings(const StringPairs& pairs, std::string_view target,
                                             std::string_view search);

}  // namespace talvex::language
