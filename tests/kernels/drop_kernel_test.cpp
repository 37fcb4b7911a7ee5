// drop(X, N, L, H) against a brute-force enumeration of ordered rolls.

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>
#include <vector>

#include "core/calculation_limits.h"
#include "expressions/test_support.h"
#include "kernels/function_kernels.h"
#include "kernels/function_test_support.h"

namespace talvex::language {
namespace {

using core::Decimal;
using core::Profile;
using testing::constant;
using testing::d;
using testing::Distribution;
using testing::dropByBruteForce;
using testing::dropOf;
using testing::isEmptyProfile;
using testing::kDecimalTolerance;
using testing::matchesWithin;
using testing::maximum;
using testing::mixture;
using testing::Outcome;
using testing::outcomes;
using testing::profileOf;
using testing::profileWith;
using testing::Rational;
using Faces = std::vector<std::pair<Outcome, long long>>;
using Outcomes = std::vector<std::pair<std::string, std::string>>;

Faces dieFaces(long long sides) {
    Faces faces;
    for (long long face = 1; face <= sides; ++face) {
        faces.emplace_back(Rational(face), 1);
    }
    return faces;
}

// The faces as a profile, their weights divided by `divisor`: thirds are not whole numbers, so
// the count then works in chances rather than whole ways.
Profile profileOfFaces(const Faces& faces, long long divisor = 1) {
    std::vector<std::pair<Outcome, Rational>> weighted;
    for (const auto& [value, weight] : faces) {
        weighted.emplace_back(value, Rational(weight, divisor));
    }
    return profileWith(weighted);
}

// A count's outcome as drop reads it: rounded, halves away from zero, and made positive.
long long wholeCount(const Rational& value) {
    const auto whole = static_cast<long long>(value.rounded());
    return whole < 0 ? -whole : whole;
}

// The mixture over every combination of count outcomes, each by brute force.
Distribution expectedDrop(const Faces& faces, const Distribution& rolls, const Distribution& lowest,
                          const Distribution& highest) {
    std::map<long long, std::set<std::pair<long long, long long>>> needed;
    for (const auto& [n, pn] : rolls) {
        for (const auto& [l, pl] : lowest) {
            for (const auto& [h, ph] : highest) {
                if (n && l && h) {
                    needed[wholeCount(*n)].insert({wholeCount(*l), wholeCount(*h)});
                }
            }
        }
    }
    std::map<long long, std::map<std::pair<long long, long long>, Distribution>> sums;
    for (const auto& [n, pairs] : needed) {
        sums[n] = dropByBruteForce(faces, n, {pairs.begin(), pairs.end()});
    }
    Distribution result;
    for (const auto& [n, pn] : rolls) {
        for (const auto& [l, pl] : lowest) {
            for (const auto& [h, ph] : highest) {
                const Rational chance = pn * pl * ph;
                if (!n || !l || !h) {
                    result[std::nullopt] = result[std::nullopt] + chance;
                    continue;
                }
                for (const auto& [sum, p] :
                     sums[wholeCount(*n)][{wholeCount(*l), wholeCount(*h)}]) {
                    result[sum] = result[sum] + chance * p;
                }
            }
        }
    }
    return result;
}

// --- Random faces and counts -----------------------------------------------------------------

class RandomDrop : public ::testing::TestWithParam<unsigned> {
  protected:
    long long between(long long low, long long high) {
        return std::uniform_int_distribution<long long>(low, high)(m_random);
    }

    // Up to eight faces: distinct whole numbers, some halves, random weights, and sometimes an
    // undefined face.
    Faces randomFaces() {
        std::set<Rational> values;
        const long long count = between(1, 8);
        while (static_cast<long long>(values.size()) < count) {
            const long long whole = between(-5, 12);
            values.insert(between(0, 4) == 0 ? Rational(2 * whole + 1, 2) : Rational(whole));
        }
        Faces faces;
        for (const Rational& value : values) {
            faces.emplace_back(value, between(1, 4));
        }
        if (between(0, 4) == 0 && faces.size() < 8) {
            faces.emplace_back(std::nullopt, between(1, 2));
        }
        return faces;
    }

    // One to three outcomes of a count up to `most`, some of them halves or negative, so that
    // rounding and the absolute value come into play; sometimes an undefined one.
    std::vector<std::pair<Outcome, Rational>> randomCount(long long most, bool allowUndefined) {
        std::map<Outcome, Rational> outcomes;
        const long long count = between(1, 3);
        for (long long i = 0; i < count; ++i) {
            const long long whole = between(0, most);
            Rational value(whole);
            switch (between(0, 5)) {
                case 0:
                    value = Rational(0) - value;
                    break;
                case 1:
                    // Halves round away from zero: 2.5 counts 3, -1.5 counts 2.
                    value = whole > 0 ? Rational(2 * whole - 1, 2) : value;
                    break;
                case 2:
                    value = Rational(10 * whole + 3, 10);
                    break;
                default:
                    break;
            }
            outcomes[value] = outcomes[value] + Rational(between(1, 3));
        }
        if (allowUndefined && between(0, 5) == 0) {
            outcomes[std::nullopt] = Rational(1);
        }
        return {outcomes.begin(), outcomes.end()};
    }

    static Distribution normalised(const std::vector<std::pair<Outcome, Rational>>& weighted) {
        Rational total(0);
        for (const auto& entry : weighted) {
            total = total + entry.second;
        }
        Distribution result;
        for (const auto& [value, weight] : weighted) {
            result[value] = weight / total;
        }
        return result;
    }

    std::mt19937 m_random{GetParam()};
};

TEST_P(RandomDrop, MatchesEveryOrderedRoll) {
    const Faces faces = randomFaces();
    const auto rolls = randomCount(6, false);
    const auto lowest = randomCount(4, true);
    const auto highest = randomCount(3, false);
    std::array<Profile, 4> arguments = {profileOfFaces(faces, GetParam() % 2 == 0 ? 3 : 1),
                                        profileWith(rolls), profileWith(lowest),
                                        profileWith(highest)};
    const Distribution expected =
        expectedDrop(faces, normalised(rolls), normalised(lowest), normalised(highest));
    EXPECT_TRUE(matchesWithin(KVTXDropF(arguments, testing::StandaloneRequest().use()), expected,
                              kDecimalTolerance));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDrop, ::testing::Range(1U, 41U));

// --- Expression texts ------------------------------------------------------------------------

using Case = testing::TextCase;

class Drop : public ::testing::TestWithParam<Case> {};

TEST_P(Drop, MatchesTheBruteForce) {
    EXPECT_TRUE(matchesWithin(profileOf(GetParam().text), GetParam().expected, kDecimalTolerance))
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Drop,
    ::testing::Values(
        Case{"drop(1d6,4,1,0)", dropOf(dieFaces(6), 4, 1, 0)},
        // The better of two d20.
        Case{"drop(1d20,2,1,0)", maximum(d(1, 20), d(1, 20))},
        Case{"drop(1d20,2,0,1)", testing::minimum(d(1, 20), d(1, 20))},
        Case{"drop(1d4,1d3,1d2-1,0)",
             expectedDrop(dieFaces(4), d(1, 3), testing::shifted(d(1, 2), -1),
                          constant(Rational(0)))},
        Case{"drop(1d6,1d4,1d2,1d2-1)",
             expectedDrop(dieFaces(6), d(1, 4), d(1, 2), testing::shifted(d(1, 2), -1))},
        Case{"drop(2d4,3,1,1)", dropOf({{Rational(2), 1},
                                        {Rational(3), 2},
                                        {Rational(4), 3},
                                        {Rational(5), 4},
                                        {Rational(6), 3},
                                        {Rational(7), 2},
                                        {Rational(8), 1}},
                                       3, 1, 1)},
        Case{"drop(1d8,5,2,2)", dropOf(dieFaces(8), 5, 2, 2)},
        // Dropping as many dice as were rolled, or more, keeps none.
        Case{"drop(1d6,3,2,1)", constant(0)}, Case{"drop(1d6,2,5,5)", constant(0)},
        Case{"drop(1d6,0,0,0)", constant(0)},
        // Counts are rounded, halves away from zero, and made positive: 3 dice, drop 1 lowest.
        Case{"drop(1d6,0-2.5,0.6,0)", dropOf(dieFaces(6), 3, 1, 0)},
        Case{"drop(1d6,3,0-1,0.4)", dropOf(dieFaces(6), 3, 1, 0)},
        // No dice dropped: the plain sum.
        Case{"drop(1d6,5,0,0)", d(5, 6)}, Case{"drop(1d6,12,0,0)", d(12, 6)},
        // Faces off any grid are summed as decimals.
        Case{"drop(die(0.1234567890123456789,2,3),3,1,0)",
             dropOf({{Rational::fromText("0.1234567890123456789"), 1},
                     {Rational(2), 1},
                     {Rational(3), 1}},
                    3, 1, 0)},
        Case{"drop(die(0-1.5,0.5,1000000000000),4,1,1)",
             dropOf({{Rational(-3, 2), 1}, {Rational(1, 2), 1}, {Rational(1000000000000LL), 1}}, 4,
                    1, 1)}),
    testing::nameOfCase);

TEST(DropKernel, ClassicFourDiceDropTheLowestCountsExactly) {
    // Four dice are 1296 ordered rolls: the counting by faces works in whole numbers, so each
    // weight is the exact fraction rounded once.
    const Profile roll = profileOf("drop(1d6,4,1,0)");
    const auto list = roll.evaluations();
    ASSERT_EQ(list.size(), 16U);
    const auto weightOf = [&](std::size_t index) { return list[index].weight(); };
    const auto exactly = [](long long ways) {
        return Decimal::decimalNumberWithInteger(ways) / Decimal::decimalNumberWithInteger(1296);
    };
    EXPECT_EQ(list[0].quantity().stringValue(), "3");
    EXPECT_EQ(weightOf(0).compare(exactly(1)), 0);
    EXPECT_EQ(list[10].quantity().stringValue(), "13");
    EXPECT_EQ(weightOf(10).compare(exactly(172)), 0);
    EXPECT_EQ(list[15].quantity().stringValue(), "18");
    EXPECT_EQ(weightOf(15).compare(exactly(21)), 0);
}

TEST(DropKernel, WrongCountsAreEmpty) {
    for (const char* text : {"drop(1d6,4,1)", "drop(1d6,4,1,0,0)", "drop()", "drop(1d6)"}) {
        EXPECT_TRUE(isEmptyProfile(profileOf(text))) << text;
    }
}

TEST(DropKernel, RollsOrHighestWithoutAnyDefinedOutcomeAreEmpty) {
    EXPECT_TRUE(isEmptyProfile(profileOf("drop(1d6,1/0,1,0)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("drop(1d6,4,1,1/0)")));
    EXPECT_TRUE(isEmptyProfile(profileOf("drop(1d6,drop(),1,0)")));
}

TEST(DropKernel, LowestWithoutAnyDefinedOutcomeIsUndefined) {
    EXPECT_EQ(outcomes(profileOf("drop(1d6,4,1/0,0)")), (Outcomes{{"NaN", "1"}}));
}

TEST(DropKernel, AnUndefinedFaceMakesEveryRollThatShowsItUndefined) {
    // Two rolls of a die that is undefined with 1/3: undefined with 1 - (2/3)^2 = 5/9, even
    // where the undefined die would have been dropped.
    const Faces faces = {{std::nullopt, 1}, {Rational(1), 1}, {Rational(2), 1}};
    std::array<Profile, 4> arguments = {profileOfFaces(faces), profileOf("2"), profileOf("1"),
                                        profileOf("0")};
    const Distribution expected = dropOf(faces, 2, 1, 0);
    ASSERT_EQ(expected.at(std::nullopt), Rational(5, 9));
    EXPECT_TRUE(matchesWithin(KVTXDropF(arguments, testing::StandaloneRequest().use()), expected,
                              kDecimalTolerance));
}

TEST(DropKernel, ScalesEveryArgumentToWeightOneInPlace) {
    std::array<Profile, 4> arguments = {profileOf("1d2"), profileOf("1d2"), profileOf("1d2"),
                                        profileOf("1d2")};
    static_cast<void>(KVTXDropF(arguments, testing::StandaloneRequest().use()));
    for (const Profile& argument : arguments) {
        EXPECT_EQ(outcomes(argument), (Outcomes{{"1", "0.5"}, {"2", "0.5"}}));
    }
}

TEST(DropKernel, HelperWeightsSumToOne) {
    const auto sums =
        KVDropHelper(profileOf("1d6").evaluations(), 20, 5, 5, testing::StandaloneRequest().use());
    Decimal total = Decimal::zero();
    for (const auto& sum : sums) {
        total = total + sum.weight();
    }
    EXPECT_LT((total - Decimal::one())
                  .absoluteValueChanged(nullptr, nullptr)
                  .compare(Decimal::decimalNumberWithString("1e-35")),
              0);
    // Ten kept dice: sums from 10 to 60.
    EXPECT_EQ(sums.size(), 51U);
    EXPECT_EQ(sums.front().quantity().stringValue(), "10");
}

TEST(DropKernel, CostGrowsPolynomiallyInTheNumberOfRolls) {
    // 6^200 ordered rolls could never be enumerated; the count by faces handles them.
    const Profile many = profileOf("drop(1d6,200,50,50)");
    EXPECT_EQ(many.evaluations().size(), 501U);
    // By symmetry of the die the mean is 100 x 3.5.
    const Decimal gap = (many.mean() - Decimal::decimalNumberWithInteger(350))
                            .absoluteValueChanged(nullptr, nullptr);
    EXPECT_LT(gap.compare(Decimal::decimalNumberWithString("1e-25")), 0);
}

TEST(DropKernel, ManyRollsWorkInChancesThatNeitherOverflowNorUnderflow) {
    // 1000 coins with faces 1 and 2, keeping the middle two: both are 1 when at least 501
    // coins show 1, both 2 when at most 499 do, one of each when exactly 500 do. The rolls
    // number 2^1000 and the chance of a single one is far below 1e-128, yet every kept sum is
    // likely.
    Decimal half = Decimal::one();
    for (long long i = 1; i <= 500; ++i) {
        // C(1000, 500) / 2^1000 as the product of (500 + i) / (4 i).
        half = half * Decimal::decimalNumberWithInteger(500 + i) /
               Decimal::decimalNumberWithInteger(4 * i);
    }
    const Decimal side = (Decimal::one() - half) / Decimal::decimalNumberWithInteger(2);
    const Profile middle = profileOf("drop(1d2,1000,499,499)");
    const auto list = middle.evaluations();
    ASSERT_EQ(list.size(), 3U);
    const std::array<Decimal, 3> expected = {side, half, side};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(list[i].quantity().stringValue(), std::to_string(2 + i));
        const Decimal gap = (list[i].weight() - expected[i]).absoluteValueChanged(nullptr, nullptr);
        EXPECT_LT(gap.compare(Decimal::decimalNumberWithString("1e-30")), 0) << i;
    }
}

TEST(DropKernel, ASumTooUnlikelyFor38DigitsIsRefusedAsTooSmall) {
    // Twenty-five ones of a die that shows 1 once in a million and one times have a chance
    // near 1e-150, as they would in any other sum of 25 such dice.
    EXPECT_THROW(static_cast<void>(profileOf("drop(diew(1,1,2,1000000),25,0,0)")),
                 core::DecimalError);
}

TEST(DropKernel, TooManyRollsAreRefusedPlainly) {
    EXPECT_THROW(static_cast<void>(profileOf("drop(1d6,200000,0,0)")), core::CalculationTooLarge);
    EXPECT_THROW(static_cast<void>(profileOf("drop(1d100,5000,1,1)")), core::CalculationTooLarge);
}

}  // namespace
}  // namespace talvex::language
