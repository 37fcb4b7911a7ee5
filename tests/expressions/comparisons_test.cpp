#include "expressions/comparisons.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <random>

#include "expressions/expression.h"
#include "expressions/test_support.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Evaluation;
using core::Profile;

Decimal n(std::int64_t value) { return Decimal::decimalNumberWithInteger(value); }

// A distribution from (quantity, weight) pairs; a quantity of nullopt is undefined.
using Outcomes = std::vector<std::pair<std::optional<std::int64_t>, std::int64_t>>;

Profile profileOf(const Outcomes& outcomes) {
    Profile profile;
    for (const auto& [quantity, weight] : outcomes) {
        profile.addQuantity(quantity ? n(*quantity) : Decimal::notANumber(), n(weight));
    }
    return profile;
}

Profile die(int faces) {
    Outcomes outcomes;
    for (int face = 1; face <= faces; ++face) {
        outcomes.emplace_back(face, 1);
    }
    return profileOf(outcomes);
}

// Probabilities by quantity text ("NaN" for undefined).
std::map<std::string, Decimal> probabilities(const Profile& profile) {
    std::map<std::string, Decimal> result;
    const Decimal total = profile.totalWeight();
    for (const Evaluation& e : profile.evaluations()) {
        result[e.quantity().stringValue()] = e.weight() / total;
    }
    return result;
}

// Whether p is num/den to 30 places.
::testing::AssertionResult isFraction(const Decimal& p, std::int64_t num, std::int64_t den) {
    const Decimal difference = p * n(den) - n(num);
    if (difference.decimalRound(30).isZero()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << p.stringValue() << " is not " << num << "/" << den;
}

using Operation = Profile (*)(std::vector<Profile>&);

std::map<std::string, Decimal> compare(Operation operation, std::vector<Profile> operands) {
    return probabilities(operation(operands));
}

TEST(Comparisons, TwoDiceVersusWithTies) {
    const auto result = compare(versusProfile, {die(6), die(6)});
    ASSERT_EQ(result.size(), 3U);
    EXPECT_TRUE(isFraction(result.at("1"), 15, 36));
    EXPECT_TRUE(isFraction(result.at("-1"), 15, 36));
    EXPECT_TRUE(isFraction(result.at("0"), 6, 36));
}

TEST(Comparisons, ConstantsVersus) {
    EXPECT_EQ(compare(versusProfile, {die(1), profileOf({{2, 1}})}).begin()->first, "-1");
    EXPECT_EQ(compare(versusProfile, {profileOf({{2, 1}}), die(1)}).begin()->first, "1");
    const auto tie = compare(versusProfile, {die(1), die(1)});
    ASSERT_EQ(tie.size(), 1U);
    EXPECT_EQ(tie.begin()->first, "0");
}

TEST(Comparisons, ThreeTwoSidedDice) {
    const auto result = compare(versusProfile, {die(2), die(2), die(2)});
    ASSERT_EQ(result.size(), 4U);
    EXPECT_TRUE(isFraction(result.at("1"), 1, 8));
    EXPECT_TRUE(isFraction(result.at("-1"), 1, 8));
    EXPECT_TRUE(isFraction(result.at("-2"), 1, 8));
    EXPECT_TRUE(isFraction(result.at("0"), 5, 8));
}

TEST(Comparisons, AnUndefinedHalfIsSplitOff) {
    const Profile halfUndefined = profileOf({{std::nullopt, 1}, {3, 1}});
    const auto result = compare(versusProfile, {halfUndefined, profileOf({{2, 1}})});
    ASSERT_EQ(result.size(), 2U);
    EXPECT_TRUE(isFraction(result.at("NaN"), 1, 2));
    EXPECT_TRUE(isFraction(result.at("1"), 1, 2));
}

TEST(Comparisons, AnOperandWithoutDefinedOutcomesEmptiesTheResult) {
    std::vector<Profile> operands = {profileOf({{std::nullopt, 1}}), die(6)};
    EXPECT_FALSE(versusProfile(operands).isDefined());
    std::vector<Profile> withEmpty = {Profile{}, die(6)};
    EXPECT_TRUE(challengeProfileLoseTie(withEmpty).evaluations().front().quantity().isNotANumber());
}

TEST(Comparisons, ChallengesOfATie) {
    EXPECT_EQ(compare(challengeProfileLoseTie, {die(1), die(1)}).begin()->first, "0");
    EXPECT_EQ(compare(challengeProfileUndefinedTie, {die(1), die(1)}).begin()->first, "NaN");
    EXPECT_EQ(compare(challengeProfileLoseTie, {profileOf({{2, 1}}), die(1)}).begin()->first, "1");
    const auto shared = compare(challengeProfile, {die(1), die(1)});
    ASSERT_EQ(shared.size(), 2U);
    EXPECT_TRUE(isFraction(shared.at("1"), 1, 2));
    EXPECT_TRUE(isFraction(shared.at("0"), 1, 2));
    const auto won = compare(challengeProfileWinTie, {die(1), die(1)});
    ASSERT_EQ(won.size(), 1U);
    EXPECT_EQ(won.begin()->first, "1");
}

TEST(Comparisons, VersusWithoutTiesSharesThem) {
    const auto result = compare(versusProfileNoTies, {die(6), die(6)});
    ASSERT_EQ(result.size(), 2U);
    EXPECT_TRUE(isFraction(result.at("1"), 1, 2));
    EXPECT_TRUE(isFraction(result.at("-1"), 1, 2));
}

TEST(Comparisons, TiePatterns) {
    const auto two = compare(tieProfile, {die(2), die(2)});
    ASSERT_EQ(two.size(), 2U);
    EXPECT_TRUE(isFraction(two.at("811"), 1, 2));
    EXPECT_TRUE(isFraction(two.at("800"), 1, 2));
    const auto none = compare(tieProfile, {die(1), profileOf({{2, 1}})});
    ASSERT_EQ(none.size(), 1U);
    EXPECT_EQ(none.begin()->first, "800");
}

TEST(Comparisons, TiesOfTheFirstEntry) {
    // Three entries that each show the value with chance 1/2 and lie below it otherwise.
    const std::vector<Decimal> half(3, n(1) / n(2));
    const auto patterns = tiesWithFirstInArray(half, half);
    std::map<std::string, std::string> found;
    for (const TiePattern& tie : patterns) {
        found[tie.digits] = tie.weight.stringValue();
    }
    EXPECT_EQ(found, (std::map<std::string, std::string>{
                         {"110", "0.125"}, {"101", "0.125"}, {"111", "0.125"}}));
}

TEST(Comparisons, UnknownKeywordGivesNothing) {
    std::vector<Profile> operands = {die(6), die(6)};
    testing::StandaloneRequest request;
    EXPECT_FALSE(comparisonProfileForKeyword("xx", operands, request.context).isDefined());
    EXPECT_FALSE(comparisonProfileForKeyword("", operands, request.context).isDefined());
}

// ---- Against a brute-force enumeration of every combination of outcomes ---------------------

struct Combination {
    std::int64_t weight = 1;  // product of the operands' weights
    bool undefined = false;
    std::vector<std::size_t> highest;  // operands showing the highest value
};

// Every combination of the operands' outcomes, with its weight, whether any is undefined and
// which operands share the highest value.
void enumerate(const std::vector<Outcomes>& operands, std::size_t index, Combination current,
               std::optional<std::int64_t> best, const std::function<void(Combination)>& visit) {
    if (index == operands.size()) {
        visit(current);
        return;
    }
    for (const auto& [quantity, weight] : operands[index]) {
        Combination next = current;
        next.weight *= weight;
        std::optional<std::int64_t> nextBest = best;
        if (!quantity) {
            next.undefined = true;
        } else if (!best || *quantity > *best) {
            nextBest = quantity;
            next.highest = {index};
        } else if (*quantity == *best) {
            next.highest.push_back(index);
        }
        enumerate(operands, index + 1, next, nextBest, visit);
    }
}

std::string codeText(std::size_t operand) {
    return operand == 0 ? "1" : "-" + std::to_string(operand);
}

// Expected outcomes as numerators over `denominator` (the product of the operands' totals,
// times 12 so that ties of up to four operands share exactly).
std::map<std::string, std::int64_t> bruteForce(const std::string& keyword,
                                               const std::vector<Outcomes>& operands) {
    std::map<std::string, std::int64_t> expected;
    enumerate(operands, 0, Combination{}, std::nullopt, [&](const Combination& c) {
        const std::int64_t w = c.weight * 12;
        if (c.undefined) {
            expected["NaN"] += w;
            return;
        }
        const bool unique = c.highest.size() == 1;
        const bool firstInTie = !unique && c.highest.front() == 0;
        const std::string vt = unique ? codeText(c.highest.front()) : "0";
        if (keyword == "vt") {
            expected[vt] += w;
        } else if (keyword == "vs" || keyword == "ch") {
            const auto share = w / static_cast<std::int64_t>(c.highest.size());
            for (const std::size_t k : c.highest) {
                expected[keyword == "vs" ? codeText(k) : (k == 0 ? "1" : "0")] += share;
            }
        } else if (keyword == "tt") {
            std::string pattern = "8" + std::string(operands.size(), '0');
            if (!unique) {
                for (const std::size_t k : c.highest) {
                    pattern[k + 1] = '1';
                }
            }
            expected[pattern] += w;
        } else if (keyword == "cl") {
            expected[vt == "1" ? "1" : "0"] += w;
        } else if (keyword == "cu") {
            expected[vt == "1" ? "1" : (vt == "0" ? "NaN" : "0")] += w;
        } else if (keyword == "cw") {
            expected[vt == "1" || firstInTie ? "1" : "0"] += w;
        }
    });
    std::erase_if(expected, [](const auto& item) { return item.second == 0; });
    return expected;
}

class ComparisonAgainstBruteForce : public ::testing::TestWithParam<const char*> {};

TEST_P(ComparisonAgainstBruteForce, AgreesForRandomSmallOperands) {
    const std::string keyword = GetParam();
    std::mt19937 random(static_cast<unsigned>(std::hash<std::string>{}(keyword)));
    for (int round = 0; round < 60; ++round) {
        const std::size_t count = 2 + random() % 3;
        std::vector<Outcomes> operands;
        std::vector<Profile> profiles;
        std::int64_t denominator = 12;
        for (std::size_t k = 0; k < count; ++k) {
            Outcomes outcomes;
            std::int64_t total = 0;
            const std::size_t size = 1 + random() % 3;
            for (std::size_t i = 0; i < size; ++i) {
                const std::int64_t weight = 1 + static_cast<std::int64_t>(random() % 4);
                // Quantities 1..4, and now and then an undefined outcome.
                const bool undefined = random() % 7 == 0;
                const auto quantity = static_cast<std::int64_t>(1 + random() % 4);
                outcomes.emplace_back(undefined ? std::nullopt : std::optional(quantity), weight);
                total += weight;
            }
            denominator *= total;
            profiles.push_back(profileOf(outcomes));
            // The operand as the profile holds it: equal quantities merged.
            Outcomes merged;
            for (const Evaluation& e : profiles.back().evaluations()) {
                merged.emplace_back(
                    e.isDefined() ? std::optional(e.quantity().longLongValue()) : std::nullopt,
                    e.weight().longLongValue());
            }
            operands.push_back(merged);
        }
        const bool someOperandUndefinedOnly = std::any_of(
            profiles.begin(), profiles.end(), [](const Profile& p) { return !p.isDefined(); });
        testing::StandaloneRequest request;
        const Profile result = comparisonProfileForKeyword(keyword, profiles, request.context);
        if (someOperandUndefinedOnly) {
            EXPECT_FALSE(result.isDefined()) << keyword;
            continue;
        }
        const auto expected = bruteForce(keyword, operands);
        auto actual = probabilities(result);
        // Subtracting from one can leave a residue in the last of the 38 digits where the
        // exact chance is zero.
        std::erase_if(actual, [&](const auto& item) {
            const bool negligible = item.second.decimalRound(30).isZero();
            if (negligible) {
                EXPECT_FALSE(expected.contains(item.first)) << keyword << " " << item.first;
                EXPECT_LT(item.second.compare(Decimal::decimalNumberWithString("1e-36")), 0)
                    << keyword << " " << item.first << " " << item.second.stringValue();
            }
            return negligible;
        });
        ASSERT_EQ(actual.size(), expected.size()) << keyword << " round " << round;
        for (const auto& [code, numerator] : expected) {
            ASSERT_TRUE(actual.contains(code)) << keyword << " lacks " << code;
            EXPECT_TRUE(isFraction(actual.at(code), numerator, denominator))
                << keyword << " " << code << " round " << round;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Keywords, ComparisonAgainstBruteForce,
                         ::testing::Values("vs", "vt", "tt", "ch", "cw", "cl", "cu"));

// ---- As typed: the comparator level hands every operand, rounded, to the comparison ------

struct TypedCase {
    const char* text;
    std::map<std::string, std::pair<std::int64_t, std::int64_t>> expected;  // code -> fraction
};

class TypedComparison : public ::testing::TestWithParam<TypedCase> {};

TEST_P(TypedComparison, GivesTheExpectedCodes) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto expression = Expression::expressionWithString(GetParam().text, context);
    const auto actual = probabilities(expression->profile());
    ASSERT_EQ(actual.size(), GetParam().expected.size()) << GetParam().text;
    for (const auto& [code, fraction] : GetParam().expected) {
        ASSERT_TRUE(actual.contains(code)) << GetParam().text << " lacks " << code;
        EXPECT_TRUE(isFraction(actual.at(code), fraction.first, fraction.second))
            << GetParam().text << " " << code;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TypedComparison,
    ::testing::Values(
        TypedCase{"1d6vt1d6", {{"1", {15, 36}}, {"-1", {15, 36}}, {"0", {6, 36}}}},
        TypedCase{"2vt1", {{"1", {1, 1}}}}, TypedCase{"1vt2", {{"-1", {1, 1}}}},
        TypedCase{"1vt1", {{"0", {1, 1}}}},
        TypedCase{"1d2vt1d2vt1d2", {{"1", {1, 8}}, {"-1", {1, 8}}, {"-2", {1, 8}}, {"0", {5, 8}}}},
        TypedCase{"(1/(1d2-1)+2)vt2", {{"NaN", {1, 2}}, {"1", {1, 2}}}},
        TypedCase{"1cl1", {{"0", {1, 1}}}}, TypedCase{"1cu1", {{"NaN", {1, 1}}}},
        TypedCase{"2cl1", {{"1", {1, 1}}}}, TypedCase{"1d6vs1d6", {{"1", {1, 2}}, {"-1", {1, 2}}}},
        TypedCase{"1d6 vs 1d6 vs 1d6", {{"1", {1, 3}}, {"-1", {1, 3}}, {"-2", {1, 3}}}},
        TypedCase{"1ch1", {{"1", {1, 2}}, {"0", {1, 2}}}},
        TypedCase{"1d2tt1d2", {{"811", {1, 2}}, {"800", {1, 2}}}},
        TypedCase{"1tt2", {{"800", {1, 1}}}},
        TypedCase{"2d6cw7", {{"1", {21, 36}}, {"0", {15, 36}}}},
        TypedCase{"2d6 ch 7", {{"1", {18, 36}}, {"0", {18, 36}}}},
        // Operands compare at ten decimals: these two are one value.
        TypedCase{"1.00000000001vt1", {{"0", {1, 1}}}}));

TEST(TypedComparison, TheComparatorIsCarriedIntoTheProfile) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    EXPECT_EQ(
        Expression::expressionWithString("3d6 vs 2d10", context)->profile().comparatorString(),
        "vs");
    EXPECT_EQ(Expression::expressionWithString("3d6+2", context)->profile().comparatorString(), "");
}

TEST(TypedComparison, TwoDifferentComparatorsAtOneLevelAreUndefined) {
    ExpressionDictionary expressions;
    RequestContext context(expressions);
    const auto profile = Expression::expressionWithString("1d6vs1d6vt1d6", context)->profile();
    ASSERT_EQ(profile.evaluations().size(), 1U);
    EXPECT_TRUE(profile.evaluations().front().quantity().isNotANumber());
}

}  // namespace
}  // namespace talvex::language
