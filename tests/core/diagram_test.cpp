#include "core/diagram.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/core/styled_markup.h"

namespace talvex::core {
namespace {

using reporttest::distinctStyles;
using reporttest::lines;
using reporttest::markup;
using reporttest::profileOf;
using reporttest::repairedOptions;
using reporttest::spaces;

Profile oneDie() {
    return profileOf({{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}, {"5", "1"}, {"6", "1"}});
}

// Four outcomes of weight 25 each.
Profile fourEqual() { return profileOf({{"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}}); }

// The same beside an undefined outcome of 1 in 5: u = 20 of 100, f = 0.8.
Profile fourWithUndefined() {
    return profileOf({{"NaN", "1"}, {"1", "1"}, {"2", "1"}, {"3", "1"}, {"4", "1"}});
}

// Symmetric, scaling to 10, 15, 50, 15, 10: the running weight ends exactly on 25 and on 75.
Profile humped() {
    return profileOf({{"1", "2"}, {"2", "3"}, {"3", "10"}, {"4", "3"}, {"5", "2"}});
}

// Scales to 25, 50, 25.
Profile middleHeavy() { return profileOf({{"1", "1"}, {"2", "2"}, {"3", "1"}}); }

std::string draw(const Profile& profile, const Options& options) {
    return diagramWithOptions(profile, &options, defaultStyles()).string();
}

// The four equal outcomes at the default height: blocks of 3 + 1 + 3 lines.
const std::string kFourEqualDescending = lines(".", 3) + ".     25%     25%\n" + lines(".", 3) +
                                         lines("3", 3) + "3     25%     50%\n" + lines("3", 3) +
                                         lines("2", 3) + "2     25%     75%\n" + lines("2", 3) +
                                         lines(".", 3) + ".     25%     100%\n" + lines(".", 3);

TEST(Diagram, FourEqualOutcomesWithDefaultDividers) {
    // 4 is the between block of 25 and 3 its crossing outcome; 50 also falls in 3 and is
    // skipped; 2 crosses 75 with an empty between block; 1 is the tail.
    const Options options = repairedOptions({});
    EXPECT_EQ(draw(fourEqual(), options), kFourEqualDescending);
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &options), 28);
}

TEST(Diagram, FourEqualOutcomesRunsCarryTheirStyles) {
    const Options options = repairedOptions({});
    EXPECT_EQ(markup(diagramWithOptions(fourEqual(), &options, distinctStyles())),
              "{diagram structure:.\n.\n.\n.     }{weight:25}{percent:%}{default:     }"
              "{running weight:25}{percent:%}{default:\n}"
              "{diagram structure:.\n.\n.\n3\n3\n3\n}{quantity:3}{default:     }{weight:25}"
              "{percent:%}{default:     }{running weight:50}{percent:%}{default:\n}"
              "{diagram structure:3\n3\n3\n2\n2\n2\n}{quantity:2}{default:     }{weight:25}"
              "{percent:%}{default:     }{running weight:75}{percent:%}{default:\n}"
              "{diagram structure:2\n2\n2\n.\n.\n.\n.     }{weight:25}{percent:%}"
              "{default:     }{running weight:100}{percent:%}{default:\n}"
              "{diagram structure:.\n.\n.\n}");
}

TEST(Diagram, PrintZerosDrawsTheEmptyBetweenBlockAsItsLabel) {
    const Options options = repairedOptions({{"diagram print zeros", "yes"}});
    EXPECT_EQ(draw(fourEqual(), options),
              lines(".", 3) + ".     25%     25%\n" + lines(".", 3) + lines("3", 3) +
                  "3     25%     50%\n" + lines("3", 3) + ".     0%     50%\n" + lines("2", 3) +
                  "2     25%     75%\n" + lines("2", 3) + lines(".", 3) + ".     25%     100%\n" +
                  lines(".", 3));
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &options), 29);
}

TEST(Diagram, NoDividersDrawOneTailBlock) {
    const Options options = repairedOptions({{"dividers", ""}, {"diagram height", "5"}});
    EXPECT_EQ(draw(oneDie(), options), lines(".", 2) + ".     100%     100%\n" + lines(".", 2));
    EXPECT_EQ(diagramHeightWithOptions(oneDie(), &options), 5);
}

TEST(Diagram, TwoDividersInOneOutcomeDrawItOnce) {
    const Options options = repairedOptions({{"dividers", "40,60"}, {"diagram height", "9"}});
    EXPECT_EQ(draw(middleHeavy(), options), lines(".", 1) + ".     25%     25%\n" + lines(".", 1) +
                                                lines("2", 2) + "2     50%     75%\n" +
                                                lines("2", 2) + lines(".", 1) +
                                                ".     25%     100%\n" + lines(".", 1));
    EXPECT_EQ(diagramHeightWithOptions(middleHeavy(), &options), 11);
}

std::vector<std::size_t> blockHeights(const std::string& text) {
    std::vector<std::size_t> heights;
    char kind = '\0';
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        const char lineKind = text[start] == '.' ? '.' : 'q';
        if (heights.empty() || lineKind != kind) {
            heights.push_back(0);
            kind = lineKind;
        }
        ++heights.back();
        start = end + 1;
    }
    return heights;
}

TEST(Diagram, SymmetricDistributionStaysSymmetric) {
    // 2 ends exactly on 25 and joins the dots before 3; 3 ends exactly on 75 and so is the
    // crossing outcome of 75 as well, drawn once. Either direction draws the same.
    const std::string expected = lines(".", 3) + ".     25%     25%\n" + lines(".", 3) +
                                 lines("3", 7) + "3     50%     75%\n" + lines("3", 7) +
                                 lines(".", 3) + ".     25%     100%\n" + lines(".", 3);
    const Options descending = repairedOptions({});
    const Options ascending = repairedOptions({{"diagram direction", "ascending"}});
    EXPECT_EQ(draw(humped(), descending), expected);
    EXPECT_EQ(draw(humped(), ascending), expected);
    EXPECT_EQ(blockHeights(expected), (std::vector<std::size_t>{7, 15, 7}));
    EXPECT_EQ(diagramHeightWithOptions(humped(), &descending), 29);
}

TEST(Diagram, SingleDividerCountsAsFirstHalf) {
    // The running weight ends on 50 after 3, which therefore joins the dots, and 2 crosses.
    const Options options = repairedOptions({{"dividers", "50"}});
    EXPECT_EQ(draw(fourEqual(), options), lines(".", 7) + ".     50%     50%\n" + lines(".", 7) +
                                              lines("2", 3) + "2     25%     75%\n" +
                                              lines("2", 3) + lines(".", 3) +
                                              ".     25%     100%\n" + lines(".", 3));
}

TEST(Diagram, FirstHalfTakesAnOutcomeEndingWithinErrorAboveTheDivider) {
    const Profile profile =
        profileOf({{"1", "25.00000000001"}, {"2", "50"}, {"3", "24.99999999999"}});
    const Options options =
        repairedOptions({{"dividers", "25"}, {"diagram direction", "ascending"}});
    EXPECT_EQ(draw(profile, options), lines(".", 3) + ".     25%     25%\n" + lines(".", 3) +
                                          lines("2", 7) + "2     50%     75%\n" + lines("2", 7) +
                                          lines(".", 3) + ".     25%     100%\n" + lines(".", 3));
}

TEST(Diagram, SecondHalfStopsAtAnOutcomeEndingWithinErrorBelowTheDivider) {
    const Profile profile =
        profileOf({{"1", "10"}, {"2", "64.99999999999"}, {"3", "25.00000000001"}});
    const Options options =
        repairedOptions({{"dividers", "1,75"}, {"diagram direction", "ascending"}});
    EXPECT_EQ(draw(profile, options), lines("1", 1) + "1     10%     10%\n" + lines("1", 1) +
                                          lines("2", 10) + "2     65%     75%\n" + lines("2", 10) +
                                          lines(".", 3) + ".     25%     100%\n" + lines(".", 3));
}

const std::string kFourWithUndefinedBlocks =
    lines(".", 3) + ".     25%     25%     20%     20%\n" + lines(".", 3) + lines("3", 3) +
    "3     25%     50%     20%     40%\n" + lines("3", 3) + lines("2", 3) +
    "2     25%     75%     20%     60%\n" + lines("2", 3) + lines(".", 3) +
    ".     25%     100%     20%     80%\n" + lines(".", 3);

TEST(Diagram, UndefinedOutcomeAddsColumnsAndItsLine) {
    const Options options = repairedOptions({});
    EXPECT_EQ(draw(fourWithUndefined(), options),
              kFourWithUndefinedBlocks + "undefined" + spaces(15) + "20%     100%\n");
}

TEST(Diagram, TableTotalAddsTotalLines) {
    const Options options = repairedOptions({{"table total", "yes"}});
    EXPECT_EQ(draw(fourWithUndefined(), options),
              kFourWithUndefinedBlocks + "Defined Total:\n    100%" + spaces(18) + "80%\n" +
                  "undefined" + spaces(15) + "20%     100%\n" + "Grand Total:\n" + spaces(28) +
                  "100%\n");
    EXPECT_EQ(draw(fourEqual(), options), kFourEqualDescending + "Total:\n    100%\n\n");
}

TEST(Diagram, TotalLinesCarryTheirStyles) {
    const Options options =
        repairedOptions({{"table total", "yes"}, {"dividers", ""}, {"diagram height", "1"}});
    EXPECT_EQ(markup(diagramWithOptions(fourWithUndefined(), &options, distinctStyles())),
              "{diagram structure:.     }{weight:100}{percent:%}{default:     }"
              "{running weight:100}{percent:%}{default:     }{total weight:80}{percent:%}"
              "{default:     }{running total weight:80}{percent:%}{default:\n}"
              "{item:Defined Total:\n    }{weight:100}{percent:%}{default:" +
                  spaces(18) +
                  "}{total weight:80}{percent:%}{default:\n}"
                  "{undefined:undefined" +
                  spaces(15) +
                  "}{total weight:20}{percent:%}{default:     }{running total weight:100}"
                  "{percent:%}{default:\n}"
                  "{item:Grand Total:\n" +
                  spaces(28) + "}{total weight:100}{percent:%}{default:\n}");
}

TEST(Diagram, DiagramTotalOptionIsNotConsulted) {
    const Options options = repairedOptions({{"diagram total", "yes"}});
    EXPECT_EQ(draw(fourWithUndefined(), options),
              kFourWithUndefinedBlocks + "undefined" + spaces(15) + "20%     100%\n");
}

TEST(Diagram, TableIncludeUndefinedGovernsOnlyTheUndefinedLine) {
    const Options options = repairedOptions({{"table include undefined", "no"}});
    EXPECT_EQ(draw(fourWithUndefined(), options), kFourWithUndefinedBlocks);
}

TEST(Diagram, DiagramIncludeUndefinedGovernsOnlyTheColumns) {
    const Options options = repairedOptions({{"diagram include undefined", "no"}});
    EXPECT_EQ(draw(fourWithUndefined(), options),
              kFourEqualDescending + "undefined" + spaces(15) + "20%     100%\n");
}

TEST(Diagram, RunningWeightColumnsFollowTheirOwnOptions) {
    const Options withoutTableRunning = repairedOptions({{"table running weight", "no"}});
    EXPECT_EQ(draw(fourWithUndefined(), withoutTableRunning),
              kFourWithUndefinedBlocks + "undefined" + spaces(15) + "20%\n");

    const Options withoutDiagramRunning = repairedOptions({{"diagram running weight", "no"}});
    EXPECT_EQ(draw(fourWithUndefined(), withoutDiagramRunning),
              lines(".", 3) + ".     25%     20%\n" + lines(".", 3) + lines("3", 3) +
                  "3     25%     20%\n" + lines("3", 3) + lines("2", 3) + "2     25%     20%\n" +
                  lines("2", 3) + lines(".", 3) + ".     25%     20%\n" + lines(".", 3) +
                  "undefined" + spaces(15) + "20%     100%\n");
}

TEST(Diagram, TotalIsPrintedAtTheQuantityPrecisionWithoutPercentForOtherTotals) {
    // T = 0.5 shows as 1 at the quantity precision 0, every weight at precision 2.
    const Options options = repairedOptions({{"diagram total weight", "0.5"},
                                             {"dividers", ""},
                                             {"diagram precision", "0"},
                                             {"diagram height", "5"},
                                             {"table total", "yes"}});
    EXPECT_EQ(draw(fourWithUndefined(), options),
              lines(".", 2) + ".     0.5     0.5     0.4     0.4\n" + lines(".", 2) +
                  "Defined Total:\n    1" + spaces(18) + "0.4\n" + "undefined" + spaces(15) +
                  "0.1     0.5\n" + "Grand Total:\n" + spaces(28) + "0.5\n");
}

TEST(Diagram, HeightFunctionKeepsTheLineThatTheDrawingLeavesForUndefined) {
    const Options options = repairedOptions({{"dividers", ""}, {"diagram max height", "5"}});
    // Drawn against a limit of 4: three block lines.
    EXPECT_EQ(draw(fourWithUndefined(), options),
              lines(".", 1) + ".     100%     100%     80%     80%\n" + lines(".", 1) +
                  "undefined" + spaces(15) + "20%     100%\n");
    // Measured against the full 5.
    EXPECT_EQ(diagramHeightWithOptions(fourWithUndefined(), &options), 5);
}

TEST(Diagram, LargeHeightGrowsUntilTheNextStepWouldPassTheMaxHeight) {
    // Wanted 1000, limited to 75: 68 lines, since the next height, 76, is too tall.
    const Options options = repairedOptions({{"diagram height", "1000"}});
    EXPECT_EQ(draw(fourEqual(), options),
              lines(".", 8) + ".     25%     25%\n" + lines(".", 8) + lines("3", 8) +
                  "3     25%     50%\n" + lines("3", 8) + lines("2", 8) + "2     25%     75%\n" +
                  lines("2", 8) + lines(".", 8) + ".     25%     100%\n" + lines(".", 8));
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &options), 68);

    const Options roomier =
        repairedOptions({{"diagram height", "1000"}, {"diagram max height", "76"}});
    EXPECT_EQ(draw(fourEqual(), roomier),
              lines(".", 9) + ".     25%     25%\n" + lines(".", 9) + lines("3", 9) +
                  "3     25%     50%\n" + lines("3", 9) + lines("2", 9) + "2     25%     75%\n" +
                  lines("2", 9) + lines(".", 9) + ".     25%     100%\n" + lines(".", 9));
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &roomier), 76);
}

TEST(Diagram, SearchStopsWhenTheFitGetsWorse) {
    // One tail block of 2b + 1 lines: 31 fits 30 as well as 29 does, 33 worse.
    const Options options = repairedOptions({{"dividers", ""}});
    EXPECT_EQ(diagramHeightWithOptions(oneDie(), &options), 31);
    EXPECT_EQ(draw(oneDie(), options), lines(".", 15) + ".     100%     100%\n" + lines(".", 15));
}

TEST(Diagram, TooManyBlocksForTheHeightDrawLabelsOnly) {
    const Options options = repairedOptions({{"diagram height", "2"}});
    EXPECT_EQ(draw(fourEqual(), options),
              ".     25%     25%\n3     25%     50%\n2     25%     75%\n.     25%     100%\n");
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &options), 4);
}

TEST(Diagram, ShrinkToTableHeightTakesTheTableRowCount) {
    const Options options = repairedOptions(
        {{"dividers", ""}, {"table max height", "4"}, {"diagram shrink to table height", "yes"}});
    // Six outcomes in at most four rows make three rows of two.
    EXPECT_EQ(draw(oneDie(), options), lines(".", 1) + ".     100%     100%\n" + lines(".", 1));
    EXPECT_EQ(diagramHeightWithOptions(oneDie(), &options), 3);
}

TEST(Diagram, ShrinkToTableHeightLeavesTheTableRowForUndefined) {
    const Options options = repairedOptions(
        {{"dividers", ""}, {"table max height", "4"}, {"diagram shrink to table height", "yes"}});
    // Four outcomes in three rows make two rows; at a wanted height of 2 the best is 3 lines
    // (the four rows of a table without the undefined row would give 5).
    EXPECT_EQ(draw(fourWithUndefined(), options),
              lines(".", 1) + ".     100%     100%     80%     80%\n" + lines(".", 1) +
                  "undefined" + spaces(15) + "20%     100%\n");
    EXPECT_EQ(diagramHeightWithOptions(fourWithUndefined(), &options), 3);
}

TEST(Diagram, HeightZeroYieldsEmptyText) {
    Options options = repairedOptions({{"diagram shrink to table height", "yes"}});
    options["diagram height"] = "0";
    EXPECT_TRUE(diagramWithOptions(fourEqual(), &options, defaultStyles()).empty());
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), &options), 0);
    EXPECT_EQ(diagramHeightWithOptions(Profile{}, &options), 0);
}

TEST(Diagram, ProfileWithoutDefinedOutcomesYieldsUndefinedLine) {
    const Options options = repairedOptions({{"table total", "yes"}});
    for (const Profile& profile : {Profile{}, profileOf({{"NaN", "2"}})}) {
        EXPECT_EQ(markup(diagramWithOptions(profile, &options, distinctStyles())),
                  "{undefined:undefined\n}");
        EXPECT_EQ(diagramHeightWithOptions(profile, &options), 1);
    }
}

TEST(Diagram, WithoutOptionsIsEmptyAndHasNoHeight) {
    EXPECT_TRUE(diagramWithOptions(fourEqual(), nullptr, defaultStyles()).empty());
    EXPECT_TRUE(diagramWithOptions(Profile{}, nullptr, defaultStyles()).empty());
    EXPECT_EQ(diagramHeightWithOptions(fourEqual(), nullptr), 0);
}

}  // namespace
}  // namespace talvex::core
