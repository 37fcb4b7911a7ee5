#include "core/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "core/calculation_limits.h"
#include "tests/core/styled_markup.h"

namespace talvex::core {
namespace {

using reporttest::distinctStyles;
using reporttest::markup;
using reporttest::profileOf;
using reporttest::repairedOptions;
using reporttest::spaces;
using Sizes = std::vector<std::size_t>;

Profile oneDie() {
    return profileOf({{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}, {"5", "1"}, {"6", "1"}});
}

// Undefined 1 in 5: u = 20 of 100, f = 0.8; the defined weights scale to 25, 25, 50.
Profile threeWithUndefined() {
    return profileOf({{"NaN", "1"}, {"1", "1"}, {"2", "1"}, {"3", "2"}});
}

// Weights 2, 3, 3, 4, 3, 3, 2 sum to 20, so they scale to 10, 15, 15, 20, 15, 15, 10.
Profile sevenOutcomes() {
    return profileOf(
        {{"1", "2"}, {"2", "3"}, {"3", "3"}, {"4", "4"}, {"5", "3"}, {"6", "3"}, {"7", "2"}});
}

// The seven outcomes beside an undefined weight of 5 in 25: u = 20, f = 0.8.
Profile sevenWithUndefined() {
    Profile profile = sevenOutcomes();
    profile.addQuantity(Decimal::notANumber(), Decimal::decimalNumberWithInteger(5));
    return profile;
}

// Undefined 1 in 5 and four outcomes that scale to 25 each.
Profile fourWithUndefined() {
    return profileOf({{"NaN", "1"}, {"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}});
}

Profile sixtyOutcomes() {
    Profile profile;
    for (int value = 1; value <= 60; ++value) {
        profile.addQuantity(Decimal::decimalNumberWithInteger(value), Decimal::one());
    }
    return profile;
}

// ---- Grouping -------------------------------------------------------------------------------

struct GroupingCase {
    const char* name;
    std::size_t outcomes;
    std::size_t maxRows;
    std::size_t groupSize;
    Sizes rows;
};

std::ostream& operator<<(std::ostream& out, const GroupingCase& c) { return out << c.name; }

class TableGroupingCases : public ::testing::TestWithParam<GroupingCase> {};

TEST_P(TableGroupingCases, ChoosesTheSmallestFittingGroupAndItsRows) {
    const GroupingCase& c = GetParam();
    const TableGrouping grouping = tableGrouping(c.outcomes, c.maxRows);
    EXPECT_EQ(grouping.groupSize, c.groupSize);
    EXPECT_EQ(grouping.rowSizes, c.rows);
    EXPECT_EQ(tableRowSizes(c.outcomes, c.maxRows), c.rows);
}

INSTANTIATE_TEST_SUITE_P(
    HandDerived, TableGroupingCases,
    ::testing::Values(
        GroupingCase{"SixOutcomesFitOnePerRow", 6, 30, 1, {1, 1, 1, 1, 1, 1}},
        GroupingCase{"ElevenInFiveRowsPoolsThreeMiddleRows", 11, 5, 3, {3, 2, 1, 2, 3}},
        GroupingCase{"TenInFiveRowsPairsEvenly", 10, 5, 2, {2, 2, 2, 2, 2}},
        GroupingCase{"SevenInThreeRowsPutsTheRemainderInTheMiddle", 7, 3, 3, {3, 1, 3}},
        GroupingCase{"SevenInFiveRowsSplitsThreeIntoOnes", 7, 5, 2, {2, 1, 1, 1, 2}},
        GroupingCase{
            "TwentyThreeInSevenRowsSplitsSevenAsThreeOneThree", 23, 7, 4, {4, 4, 3, 1, 3, 4, 4}},
        GroupingCase{"TenInFourRowsSplitsFourIntoTwoHalves", 10, 4, 3, {3, 2, 2, 3}},
        GroupingCase{"NineInFiveRowsInsertsTheRemainderRow", 9, 5, 2, {2, 2, 1, 2, 2}},
        GroupingCase{"FiveInOneRowTakesEverything", 5, 1, 5, {5}},
        GroupingCase{"SixtyInSevenRows", 60, 7, 9, {9, 9, 9, 6, 9, 9, 9}},
        GroupingCase{"SixtyInThirtyRowsPairs", 60, 30, 2, Sizes(30, 2)},
        GroupingCase{"OneOutcomeOneRow", 1, 1, 1, {1}},
        GroupingCase{"NoOutcomesNoRows", 0, 5, 1, {}},
        GroupingCase{"ZeroRowsAllowedActsAsOne", 4, 0, 4, {4}}),
    [](const ::testing::TestParamInfo<GroupingCase>& param) {
        return std::string(param.param.name);
    });

// The grouping rule written out plainly: lay out every group size in full and take the first
// layout that fits.
Sizes plainLayout(std::size_t n, std::size_t g) {
    const std::size_t q = n / g;
    const std::size_t r = n % g;
    Sizes rows(q, g);
    if (r == 0) {
        return rows;
    }
    if (q % 2 == 0) {
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(q / 2), r);
        return rows;
    }
    const std::size_t t = g + r;
    Sizes middle;
    if (t % 2 == 0) {
        middle = {t / 2, t / 2};
    } else {
        const std::size_t a = t / 3;
        if (t == 3 * a) {
            middle = {a, a, a};
        } else if (t == 3 * a + 1) {
            middle = {a + 1, a - 1, a + 1};
        } else {
            middle = {a + 1, a, a + 1};
        }
    }
    const auto centre = rows.begin() + static_cast<std::ptrdiff_t>(q / 2);
    rows.erase(centre);
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(q / 2), middle.begin(), middle.end());
    return rows;
}

std::pair<std::size_t, Sizes> plainGrouping(std::size_t n, std::size_t h) {
    if (h >= n) {
        return {1, Sizes(n, 1)};
    }
    for (std::size_t g = 2;; ++g) {
        Sizes rows = plainLayout(n, g);
        if (rows.size() <= h) {
            return {g, rows};
        }
    }
}

void expectAgreesWithPlainRule(std::size_t n, std::size_t h) {
    SCOPED_TRACE("n = " + std::to_string(n) + ", h = " + std::to_string(h));
    const TableGrouping grouping = tableGrouping(n, h);
    const auto [plainSize, plainRows] = plainGrouping(n, h);
    EXPECT_EQ(grouping.groupSize, plainSize);
    EXPECT_EQ(grouping.rowSizes, plainRows);
    EXPECT_LE(grouping.rowSizes.size(), h);
    EXPECT_EQ(std::accumulate(grouping.rowSizes.begin(), grouping.rowSizes.end(), std::size_t{0}),
              n);
    EXPECT_TRUE(
        std::equal(grouping.rowSizes.begin(), grouping.rowSizes.end(), grouping.rowSizes.rbegin()));
    EXPECT_TRUE(std::all_of(grouping.rowSizes.begin(), grouping.rowSizes.end(),
                            [](std::size_t size) { return size >= 1; }));
    for (std::size_t smaller = 2; smaller < plainSize; ++smaller) {
        EXPECT_GT(plainLayout(n, smaller).size(), h) << "group size " << smaller << " fits";
    }
}

TEST(TableGrouping, AgreesWithThePlainRuleOverManySizesAndLimits) {
    for (std::size_t n = 1; n <= 150; ++n) {
        for (std::size_t h = 1; h <= 40; ++h) {
            expectAgreesWithPlainRule(n, h);
        }
    }
    for (const auto& [n, h] : std::vector<std::pair<std::size_t, std::size_t>>{
             {10000, 30}, {9999, 30}, {997, 13}, {1001, 2}, {4096, 1}, {5000, 999}}) {
        expectAgreesWithPlainRule(n, h);
    }
}

// ---- Table text -----------------------------------------------------------------------------

struct TableTextCase {
    std::string name;
    Profile (*profile)();
    std::vector<std::pair<const std::string, std::string>> options;
    std::string expected;
};

std::ostream& operator<<(std::ostream& out, const TableTextCase& c) { return out << c.name; }

class TableText : public ::testing::TestWithParam<TableTextCase> {};

TEST_P(TableText, DrawsExactlyTheseCharacters) {
    const TableTextCase& c = GetParam();
    Options given(c.options.begin(), c.options.end());
    const Options options = patchOptions(&given, defaultStyles());
    EXPECT_EQ(tableWithOptions(c.profile(), &options, defaultStyles()).string(), c.expected);
}

const std::string kDieDescending =
    "||||||||||6     16.67%     16.67%\n"
    "||||||||||5     16.67%     33.33%\n"
    "||||||||||4     16.67%     50%\n"
    "||||||||||3     16.67%     66.67%\n"
    "||||||||||2     16.67%     83.33%\n"
    "||||||||||1     16.67%     100%\n";

std::vector<TableTextCase> tableTextCases() {
    return {
        {"OneDieDefaultsSixRowsOfTenBars", oneDie, {}, kDieDescending},
        {"OneDieWithTotalAddsTheTotalLine",
         oneDie,
         {{"table total", "yes"}},
         kDieDescending + "Total:\n" + spaces(23) + "100%\n\n"},
        {"OneDieTableHeadingLeavesTheTableAlone",
         oneDie,
         {{"table total", "yes"}, {"table heading", "yes"}},
         kDieDescending + "Total:\n" + spaces(23) + "100%\n\n"},
        {"OneDieAscending",
         oneDie,
         {{"table direction", "ascending"}},
         "||||||||||1     16.67%     16.67%\n"
         "||||||||||2     16.67%     33.33%\n"
         "||||||||||3     16.67%     50%\n"
         "||||||||||4     16.67%     66.67%\n"
         "||||||||||5     16.67%     83.33%\n"
         "||||||||||6     16.67%     100%\n"},
        {"OneDieWithoutRunningWeight",
         oneDie,
         {{"table running weight", "no"}},
         "||||||||||6     16.67%\n"
         "||||||||||5     16.67%\n"
         "||||||||||4     16.67%\n"
         "||||||||||3     16.67%\n"
         "||||||||||2     16.67%\n"
         "||||||||||1     16.67%\n"},
        {"OneDieBarsRelativeToTheTotal",
         oneDie,
         {{"relative bar", "no"}},
         "||6     16.67%     16.67%\n"
         "||5     16.67%     33.33%\n"
         "||4     16.67%     50%\n"
         "||3     16.67%     66.67%\n"
         "||2     16.67%     83.33%\n"
         "||1     16.67%     100%\n"},
        {"FixedMaxWeightBelowARowMakesItsBarLongerThanMaxBar",
         oneDie,
         {{"table set max weight", "yes"}, {"table max weight", "10"}},
         "|||||||||||||||||6     16.67%     16.67%\n"
         "|||||||||||||||||5     16.67%     33.33%\n"
         "|||||||||||||||||4     16.67%     50%\n"
         "|||||||||||||||||3     16.67%     66.67%\n"
         "|||||||||||||||||2     16.67%     83.33%\n"
         "|||||||||||||||||1     16.67%     100%\n"},
        {"FixedMaxWeightWinsOverBarsRelativeToTheTotal",
         oneDie,
         {{"relative bar", "no"}, {"table set max weight", "yes"}, {"table max weight", "50"}},
         "|||6     16.67%     16.67%\n"
         "|||5     16.67%     33.33%\n"
         "|||4     16.67%     50%\n"
         "|||3     16.67%     66.67%\n"
         "|||2     16.67%     83.33%\n"
         "|||1     16.67%     100%\n"},
        {"OwnBarStringIsRepeated",
         oneDie,
         {{"bar string", "=-"}, {"max bar", "3"}},
         "=-=-=-6     16.67%     16.67%\n"
         "=-=-=-5     16.67%     33.33%\n"
         "=-=-=-4     16.67%     50%\n"
         "=-=-=-3     16.67%     66.67%\n"
         "=-=-=-2     16.67%     83.33%\n"
         "=-=-=-1     16.67%     100%\n"},
        {"EmptyBarStringDrawsNoBars",
         oneDie,
         {{"bar string", "ProfileEmptyBarString"}},
         "6     16.67%     16.67%\n"
         "5     16.67%     33.33%\n"
         "4     16.67%     50%\n"
         "3     16.67%     66.67%\n"
         "2     16.67%     83.33%\n"
         "1     16.67%     100%\n"},
        {"NegativeWeightPrecisionRoundsToTens",
         oneDie,
         {{"table weight precision", "-1"}},
         "||||||||||6     20%     20%\n"
         "||||||||||5     20%     30%\n"
         "||||||||||4     20%     50%\n"
         "||||||||||3     20%     70%\n"
         "||||||||||2     20%     80%\n"
         "||||||||||1     20%     100%\n"},
        {"QuantitiesRoundHalfAwayFromZero",
         [] {
             return profileOf({{"1.25", "1"}, {"2.75", "1"}});
         },
         {{"table precision", "1"},
          {"table weight precision", "0"},
          {"table direction", "ascending"}},
         "||||||||||1.3     50%     50%\n"
         "||||||||||2.8     50%     100%\n"},
        {"UndefinedOutcomeAddsColumnsAndItsRow",
         threeWithUndefined,
         {},
         "||||||||||3     50%     50%     40%     40%\n"
         "|||||2     25%     75%     20%     60%\n"
         "|||||1     25%     100%     20%     80%\n"
         "undefined" +
             spaces(34) + "20%     100%\n"},
        {"UndefinedOutcomeWithTotals",
         threeWithUndefined,
         {{"table total", "yes"}},
         "||||||||||3     50%     50%     40%     40%\n"
         "|||||2     25%     75%     20%     60%\n"
         "|||||1     25%     100%     20%     80%\n"
         "Defined Total:\n" +
             spaces(23) + "100%" + spaces(18) + "80%\n" + "undefined" + spaces(34) +
             "20%     100%\n" + "Grand Total:\n" + spaces(47) + "100%\n"},
        {"UndefinedOutcomeWithoutRunningWeight",
         threeWithUndefined,
         {{"table running weight", "no"}},
         "||||||||||3     50%     40%\n"
         "|||||2     25%     20%\n"
         "|||||1     25%     20%\n"
         "undefined" +
             spaces(34) + "20%\n"},
        {"UndefinedOutcomeHiddenButStillTakingARow",
         fourWithUndefined,
         {{"table include undefined", "no"}, {"table max height", "4"}},
         "||||||||||3..4     25% (2)     50%\n"
         "||||||||||1..2     25% (2)     100%\n"},
        {"UndefinedOutcomeHiddenWithTotalShowsPlainTotal",
         threeWithUndefined,
         {{"table include undefined", "no"}, {"table total", "yes"}},
         "||||||||||3     50%     50%\n"
         "|||||2     25%     75%\n"
         "|||||1     25%     100%\n"
         "Total:\n" +
             spaces(23) + "100%\n\n"},
        {"TotalWeightOtherThanHundredPrintsNoPercentSigns",
         threeWithUndefined,
         {{"table total weight", "10"}, {"table total", "yes"}},
         "||||||||||3     5     5     4     4\n"
         "|||||2     2.5     7.5     2     6\n"
         "|||||1     2.5     10     2     8\n"
         "Defined Total:\n" +
             spaces(23) + "10" + spaces(18) + "8\n" + "undefined" + spaces(34) + "2     10\n" +
             "Grand Total:\n" + spaces(47) + "10\n"},
        {"GroupedTableLinesUpASingleOutcomeUnderTheRanges",
         sevenOutcomes,
         {{"table max height", "3"}, {"table direction", "ascending"}},
         "|||||||1..3     13.33% (3)     40%\n"
         "||||||||||4" +
             spaces(11) + "20% (1)     60%\n" + "|||||||5..7     13.33% (3)     100%\n"},
        {"GroupedTableWithRowSums",
         sevenOutcomes,
         {{"table max height", "3"}, {"table direction", "ascending"}, {"average bar", "no"}},
         "||||||||||1..3     40%     40%\n"
         "|||||4" +
             spaces(11) + "20%     60%\n" + "||||||||||5..7     40%     100%\n"},
        {"GroupedTableDescendingKeepsSmallestFirstInRanges",
         sevenOutcomes,
         {{"table max height", "3"}},
         "|||||||5..7     13.33% (3)     40%\n"
         "||||||||||4" +
             spaces(11) + "20% (1)     60%\n" + "|||||||1..3     13.33% (3)     100%\n"},
        {"GroupedTableWithUndefinedAndTotals",
         sevenWithUndefined,
         {{"table max height", "4"}, {"table direction", "ascending"}, {"table total", "yes"}},
         "|||||||1..3     13.33% (3)     40%     10.67% (3)     32%\n"
         "||||||||||4" +
             spaces(11) + "20% (1)     60%     16% (1)     48%\n" +
             "|||||||5..7     13.33% (3)     100%     10.67% (3)     80%\n" + "Defined Total:\n" +
             spaces(23) + "100%" + spaces(18) + "80%\n" + "undefined" + spaces(40) +
             "20% (1)     100%\n" + "Grand Total:\n" + spaces(47) + "100%\n"},
        {"SixtyOutcomesInSevenRows",
         sixtyOutcomes,
         {{"table max height", "7"}},
         "||||||||||52..60     1.67% (9)     15%\n"
         "||||||||||43..51     1.67% (9)     30%\n"
         "||||||||||34..42     1.67% (9)     45%\n"
         "||||||||||28..33     1.67% (6)     55%\n"
         "||||||||||19..27     1.67% (9)     70%\n"
         "||||||||||10..18     1.67% (9)     85%\n"
         "||||||||||1..9     1.67% (9)     100%\n"},
        {"EmptyProfileIsUndefined", [] { return Profile{}; }, {}, "undefined\n"},
        {"OnlyUndefinedOutcomesAreUndefined",
         [] {
             return profileOf({{"NaN", "3"}});
         },
         {{"table total", "yes"}},
         "undefined\n"},
    };
}

INSTANTIATE_TEST_SUITE_P(Golden, TableText, ::testing::ValuesIn(tableTextCases()),
                         [](const ::testing::TestParamInfo<TableTextCase>& param) {
                             return param.param.name;
                         });

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> result;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        result.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

TEST(Table, SixtyOutcomesGroupIntoThirtyPairsByDefault) {
    const Options options = repairedOptions({});
    EXPECT_EQ(tableRowSizes(60, tableRowLimit(sixtyOutcomes(), options)), Sizes(30, 2));
    const std::vector<std::string> rows =
        linesOf(tableWithOptions(sixtyOutcomes(), &options, defaultStyles()).string());
    ASSERT_EQ(rows.size(), 30U);
    EXPECT_EQ(rows[0], "||||||||||59..60     1.67% (2)     3.33%");
    EXPECT_EQ(rows[1], "||||||||||57..58     1.67% (2)     6.67%");
    EXPECT_EQ(rows[14], "||||||||||31..32     1.67% (2)     50%");
    EXPECT_EQ(rows[29], "||||||||||1..2     1.67% (2)     100%");
}

TEST(Table, WithoutOptionsIsEmpty) {
    EXPECT_TRUE(tableWithOptions(oneDie(), nullptr, defaultStyles()).empty());
}

TEST(Table, UndefinedProfileLineIsInTheUndefinedStyle) {
    const Options options = repairedOptions({});
    EXPECT_EQ(markup(tableWithOptions(Profile{}, &options, distinctStyles())),
              "{undefined:undefined\n}");
}

TEST(Table, OneDieRunsCarryTheirStyles) {
    const Options options = repairedOptions({{"table total", "yes"}});
    const std::string row =
        "{default:     }{weight:16.67}{percent:%}{default:     }{running weight:";
    EXPECT_EQ(markup(tableWithOptions(oneDie(), &options, distinctStyles())),
              "{bar:||||||||||}{quantity:6}" + row + "16.67}{percent:%}{default:\n}" +
                  "{bar:||||||||||}{quantity:5}" + row + "33.33}{percent:%}{default:\n}" +
                  "{bar:||||||||||}{quantity:4}" + row + "50}{percent:%}{default:\n}" +
                  "{bar:||||||||||}{quantity:3}" + row + "66.67}{percent:%}{default:\n}" +
                  "{bar:||||||||||}{quantity:2}" + row + "83.33}{percent:%}{default:\n}" +
                  "{bar:||||||||||}{quantity:1}" + row + "100}{percent:%}{default:\n}" +
                  "{item:Total:\n" + spaces(23) + "}{weight:100}{percent:%}{default:\n\n}");
}

TEST(Table, UndefinedColumnsAndTotalsCarryTheirStyles) {
    const Options options = repairedOptions({{"table total", "yes"}});
    EXPECT_EQ(
        markup(tableWithOptions(threeWithUndefined(), &options, distinctStyles())),
        "{bar:||||||||||}{quantity:3}{default:     }{weight:50}{percent:%}{default:     }"
        "{running weight:50}{percent:%}{default:     }{total weight:40}{percent:%}"
        "{default:     }{running total weight:40}{percent:%}{default:\n}"
        "{bar:|||||}{quantity:2}{default:     }{weight:25}{percent:%}{default:     }"
        "{running weight:75}{percent:%}{default:     }{total weight:20}{percent:%}"
        "{default:     }{running total weight:60}{percent:%}{default:\n}"
        "{bar:|||||}{quantity:1}{default:     }{weight:25}{percent:%}{default:     }"
        "{running weight:100}{percent:%}{default:     }{total weight:20}{percent:%}"
        "{default:     }{running total weight:80}{percent:%}{default:\n}"
        "{item:Defined Total:\n" +
            spaces(23) + "}{weight:100}{percent:%}{default:" + spaces(18) +
            "}{total weight:80}{percent:%}{default:\n}"
            "{undefined:undefined" +
            spaces(34) +
            "}{total weight:20}{percent:%}{default:     }{running total weight:100}{percent:%}"
            "{default:\n}"
            "{item:Grand Total:\n" +
            spaces(47) + "}{total weight:100}{percent:%}{default:\n}");
}

TEST(Table, GroupedRowsCarryRangeAndCountStyles) {
    const Options options = repairedOptions(
        {{"table max height", "4"}, {"table direction", "ascending"}, {"table total", "yes"}});
    EXPECT_EQ(
        markup(tableWithOptions(sevenWithUndefined(), &options, distinctStyles())),
        "{bar:|||||||}{quantity:1}{default:..}{quantity:3}{default:     }{weight:13.33}"
        "{percent:%}{interval: (3)}{default:     }{running weight:40}{percent:%}{default:     }"
        "{total weight:10.67}{percent:%}{interval: (3)}{default:     }"
        "{running total weight:32}{percent:%}{default:\n}"
        "{bar:||||||||||}{quantity:4}{default:" +
            spaces(11) +
            "}{weight:20}{percent:%}{interval: (1)}{default:     }{running weight:60}"
            "{percent:%}{default:     }{total weight:16}{percent:%}{interval: (1)}"
            "{default:     }{running total weight:48}{percent:%}{default:\n}"
            "{bar:|||||||}{quantity:5}{default:..}{quantity:7}{default:     }{weight:13.33}"
            "{percent:%}{interval: (3)}{default:     }{running weight:100}{percent:%}"
            "{default:     }{total weight:10.67}{percent:%}{interval: (3)}{default:     }"
            "{running total weight:80}{percent:%}{default:\n}"
            "{item:Defined Total:\n" +
            spaces(23) + "}{weight:100}{percent:%}{default:" + spaces(18) +
            "}{total weight:80}{percent:%}{default:\n}"
            "{undefined:undefined" +
            spaces(34) + "}{default:" + spaces(6) +
            "}{total weight:20}{percent:%}{interval: (1)}{default:     }"
            "{running total weight:100}{percent:%}{default:\n}"
            "{item:Grand Total:\n" +
            spaces(47) + "}{total weight:100}{percent:%}{default:\n}");
}

// ---- Heaviest row ---------------------------------------------------------------------------

TEST(TableMaxBar, IsTheHeaviestRowAndItsSmallestQuantity) {
    const Options options = repairedOptions({});
    const Evaluation heaviest = maxBarEvaluationWithOptions(
        profileOf({{"1", "2"}, {"2", "3"}, {"3", "10"}, {"4", "3"}, {"5", "2"}}), &options);
    EXPECT_EQ(heaviest.weight().stringValue(), "50");
    EXPECT_EQ(heaviest.quantity().stringValue(), "3");
}

TEST(TableMaxBar, GroupedRowsWeighTheirAverage) {
    const Options options = repairedOptions({{"table max height", "3"}});
    const Evaluation heaviest = maxBarEvaluationWithOptions(sevenOutcomes(), &options);
    EXPECT_EQ(heaviest.weight().stringValue(), "20");
    EXPECT_EQ(heaviest.quantity().stringValue(), "4");
}

TEST(TableMaxBar, GroupedRowsWeighTheirSumWithoutAverageBar) {
    const Options descending = repairedOptions({{"table max height", "3"}, {"average bar", "no"}});
    const Evaluation first = maxBarEvaluationWithOptions(sevenOutcomes(), &descending);
    EXPECT_EQ(first.weight().stringValue(), "40");
    EXPECT_EQ(first.quantity().stringValue(), "5");

    const Options ascending = repairedOptions(
        {{"table max height", "3"}, {"average bar", "no"}, {"table direction", "ascending"}});
    const Evaluation last = maxBarEvaluationWithOptions(sevenOutcomes(), &ascending);
    EXPECT_EQ(last.weight().stringValue(), "40");
    EXPECT_EQ(last.quantity().stringValue(), "1");
}

TEST(TableMaxBar, FollowsTheTableTotalWeight) {
    const Options options = repairedOptions({{"table total weight", "10"}});
    EXPECT_EQ(maxBarEvaluationWithOptions(threeWithUndefined(), &options).weight().stringValue(),
              "5");
}

TEST(TableMaxBar, UndefinedProfileOrNoOptionsGiveZeroAndZero) {
    const Options options = repairedOptions({});
    for (const Evaluation& result :
         {maxBarEvaluationWithOptions(Profile{}, &options),
          maxBarEvaluationWithOptions(profileOf({{"NaN", "2"}}), &options),
          maxBarEvaluationWithOptions(oneDie(), nullptr)}) {
        EXPECT_TRUE(result.quantity().isZero());
        EXPECT_TRUE(result.weight().isZero());
    }
}

// ---- Shared pieces --------------------------------------------------------------------------

TEST(TableScaledOutcomes, SplitsTheTotalIntoDefinedAndUndefinedShares) {
    const ScaledOutcomes scaled =
        scaledOutcomes(threeWithUndefined(), Decimal::decimalNumberWithInteger(100), true);
    EXPECT_TRUE(scaled.hasUndefined);
    EXPECT_EQ(scaled.total.stringValue(), "100");
    EXPECT_EQ(scaled.undefinedWeight.stringValue(), "20");
    EXPECT_EQ(scaled.definedTotal.stringValue(), "80");
    EXPECT_EQ(scaled.definedFraction.stringValue(), "0.8");
    ASSERT_EQ(scaled.outcomes.size(), 3U);
    EXPECT_EQ(scaled.outcomes[0].quantity().stringValue(), "3");
    EXPECT_EQ(scaled.outcomes[0].weight().stringValue(), "50");
    EXPECT_EQ(scaled.outcomes[2].quantity().stringValue(), "1");
    EXPECT_EQ(scaled.outcomes[2].weight().stringValue(), "25");
}

TEST(TableScaledOutcomes, AlwaysDefinedProfileKeepsTheWholeTotal) {
    const ScaledOutcomes scaled =
        scaledOutcomes(sevenOutcomes(), Decimal::decimalNumberWithInteger(100), false);
    EXPECT_FALSE(scaled.hasUndefined);
    EXPECT_TRUE(scaled.undefinedWeight.isZero());
    EXPECT_EQ(scaled.definedTotal.stringValue(), "100");
    EXPECT_EQ(scaled.definedFraction.stringValue(), "1");
    ASSERT_EQ(scaled.outcomes.size(), 7U);
    EXPECT_EQ(scaled.outcomes[0].quantity().stringValue(), "1");
    EXPECT_EQ(scaled.outcomes[0].weight().stringValue(), "10");
    EXPECT_EQ(scaled.outcomes[3].weight().stringValue(), "20");
}

TEST(TableRowLimit, LeavesOneRowForTheUndefinedOutcomeButNeverFewerThanOne) {
    EXPECT_EQ(tableRowLimit(oneDie(), repairedOptions({{"table max height", "4"}})), 4U);
    EXPECT_EQ(tableRowLimit(fourWithUndefined(), repairedOptions({{"table max height", "4"}})), 3U);
    EXPECT_EQ(tableRowLimit(fourWithUndefined(), repairedOptions({{"table max height", "1"}})), 1U);
}

TEST(Table, ABarTooLongToDrawIsRefusedPlainly) {
    // A fixed bar scale a hundred million times below the row weights.
    const Options options =
        repairedOptions({{"table set max weight", "yes"}, {"table max weight", "0.000001"}});
    EXPECT_THROW(static_cast<void>(tableWithOptions(oneDie(), &options, defaultStyles())),
                 CalculationTooLarge);
}

}  // namespace
}  // namespace talvex::core
