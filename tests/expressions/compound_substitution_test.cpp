#include "expressions/compound_substitution.h"

#include <gtest/gtest.h>

#include "core/calculation_limits.h"

namespace talvex::language {
namespace {

TEST(StringShortnessCompare, LongerSortsFirstAndEqualLengthsAreEqual) {
    EXPECT_EQ(CompoundExpressionStringShortnessCompare("exp", "ex"), -1);
    EXPECT_EQ(CompoundExpressionStringShortnessCompare("ex", "exp"), 1);
    EXPECT_EQ(CompoundExpressionStringShortnessCompare("vs", "pi"), 0);
    EXPECT_EQ(CompoundExpressionStringShortnessCompare("", ""), 0);
}

TEST(DefineStrings, LongestKeyFirstSoAShorterKeyIsNotFoundInsideIt) {
    const SubstitutionTable table{{"ex", "E"}, {"exp", "X"}};
    const DefinedStrings result = defineStrings(table, "exp+ex", "exp+ex");
    EXPECT_EQ(result.target, "X+E");
    EXPECT_EQ(result.search, "X+E");
    EXPECT_EQ(result.records, (StringPairs{{"X", "exp"}, {"E", "ex"}}));
}

TEST(DefineStrings, RecordsComeInLeftToRightOrderOfTheMarks) {
    const SubstitutionTable table{{"x", "1"}, {"abc", "2"}};
    const DefinedStrings result = defineStrings(table, "x+abc*x", "x+abc*x");
    EXPECT_EQ(result.target, "1+2*1");
    EXPECT_EQ(result.records, (StringPairs{{"1", "x"}, {"2", "abc"}, {"1", "x"}}));
}

TEST(DefineStrings, PositionsComeFromTheSearchTextAndTextFromTheTarget) {
    // Only the top level of the search text counts; the target keeps its own characters.
    const SubstitutionTable table{{"max", "(&)*"}, {"min", "(&)*"}};
    const DefinedStrings result = defineStrings(table, "max(min(1))", "max(======)");
    EXPECT_EQ(result.target, "(&)*(min(1))");
    EXPECT_EQ(result.search, "(&)*(======)");
    EXPECT_EQ(result.records, (StringPairs{{"(&)*", "max"}}));
}

TEST(DefineStrings, AValueIsNotSearchedAgainInTheSameCall) {
    const SubstitutionTable table{{"aa", "b"}, {"b", "c"}};
    const DefinedStrings result = defineStrings(table, "aab", "aab");
    EXPECT_EQ(result.target, "bc");
}

TEST(DefineStrings, ATableOfOneKeyFailsOnceItsKeyIsFound) {
    const SubstitutionTable single{{"a", "b"}};
    const DefinedStrings found = defineStrings(single, "cab", "cab");
    EXPECT_EQ(found.target, "");
    EXPECT_EQ(found.search, "");
    EXPECT_TRUE(found.records.empty());
    const DefinedStrings notFound = defineStrings(single, "xyz", "xyz");
    EXPECT_EQ(notFound.target, "xyz");
}

TEST(DefineStrings, TextsOfDifferentLengthsGiveEmptyTexts) {
    const SubstitutionTable table{{"a", "b"}, {"c", "d"}};
    const DefinedStrings result = defineStrings(table, "abc", "ab");
    EXPECT_EQ(result.target, "");
    EXPECT_EQ(result.search, "");
}

TEST(DefineStrings, RemovesKeysWithAnEmptyValue) {
    const SubstitutionTable blanks{{" ", ""}, {"\n", ""}, {"\r", ""}, {"\t", ""}};
    EXPECT_EQ(defineStrings(blanks, " 3 d\t6\r\n", " 3 d\t6\r\n").target, "3d6");
}

TEST(DefineStrings, ATypedColonIsNeitherAMarkNorPartOfOne) {
    const SubstitutionTable table{{"pi", "(P)"}, {":", "colon"}, {"x", "y"}};
    const DefinedStrings result = defineStrings(table, "a:pi", "a:pi");
    EXPECT_EQ(result.target, "acolon(P)");
    EXPECT_EQ(result.records, (StringPairs{{"colon", ":"}, {"(P)", "pi"}}));
}

TEST(DefineStrings, AnEmptyKeyIsNeverFound) {
    const SubstitutionTable table{{"", "z"}, {"a", "b"}};
    EXPECT_EQ(defineStrings(table, "aa", "aa").target, "bb");
}

TEST(DefineStrings, EqualLengthKeysGoInTheOrderTheyWereAdded) {
    const SubstitutionTable abFirst{{"ab", "1"}, {"bc", "2"}};
    EXPECT_EQ(defineStrings(abFirst, "abc", "abc").target, "1c");
    const SubstitutionTable bcFirst{{"bc", "2"}, {"ab", "1"}};
    EXPECT_EQ(defineStrings(bcFirst, "abc", "abc").target, "a2");
}

TEST(DefineStrings, RefusesAResultLongerThanTheLimit) {
    const std::string huge(1024 * 1024, 'x');
    const SubstitutionTable table{{"a", huge}, {"b", "c"}};
    const std::string text(kMaxRewrittenLength / huge.size() + 1, 'a');
    EXPECT_THROW(static_cast<void>(defineStrings(table, text, text)), core::CalculationTooLarge);
}

TEST(DefineStrings, StopsWhenItsBudgetIsSpent) {
    const SubstitutionTable table{{"a", "b"}, {"c", "d"}};
    RewritingBudget budget(10);
    const std::string text(100, 'a');
    EXPECT_THROW(static_cast<void>(defineStrings(table, text, text, &budget)),
                 core::CalculationTooLarge);
    RewritingBudget enough(10'000);
    EXPECT_EQ(defineStrings(table, text, text, &enough).target, std::string(100, 'b'));
    EXPECT_LT(enough.remaining(), 10'000U);
}

TEST(SubstitutionTable, ALaterValueReplacesTheEarlierOneInItsPlace) {
    SubstitutionTable table{{"a", "1"}, {"b", "2"}};
    table.set("a", "3");
    EXPECT_EQ(table.entries(), (StringPairs{{"a", "3"}, {"b", "2"}}));
    EXPECT_EQ(table.size(), 2U);
}

TEST(ReplaceStrings, ReplacesTheFirstOccurrenceForEachPairInOrder) {
    const StringPairs pairs{{";", "max"}, {";", "vs"}};
    const ReplacedStrings result = replaceStrings(pairs, "1;(2);3", "1;(=);3");
    EXPECT_EQ(result.target, "1max(2)vs3");
    EXPECT_EQ(result.search, "1max(=)vs3");
}

TEST(ReplaceStrings, AMissingTextEmptiesBoth) {
    const ReplacedStrings result = replaceStrings({{";", "a"}, {";", "b"}}, "x;y", "x;y");
    EXPECT_EQ(result.target, "");
    EXPECT_EQ(result.search, "");
}

TEST(ReplaceStrings, SearchesFromTheStartForEveryPair) {
    // The second pair finds what the first one put in.
    const ReplacedStrings chained = replaceStrings({{"a", "ba"}, {"a", "c"}}, "xa", "xa");
    EXPECT_EQ(chained.target, "xbc");
    // A replacement that joins with what follows it forms a new occurrence.
    const ReplacedStrings joined = replaceStrings({{"ab", "a"}, {"ab", "z"}}, "abb", "abb");
    EXPECT_EQ(joined.target, "z");
}

TEST(ReplaceStrings, NoPairsLeaveTheTexts) {
    EXPECT_EQ(replaceStrings({}, "abc", "a=c").search, "a=c");
}

}  // namespace
}  // namespace talvex::language
