#include "core/merge_by_index.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/profile.h"
#include "tests/core/condense_reference.h"

namespace talvex::core {
namespace {

Decimal sum(const Decimal& a, const Decimal& b) { return a + b; }
Decimal difference(const Decimal& a, const Decimal& b) { return a - b; }
Decimal product(const Decimal& a, const Decimal& b) { return a * b; }
// Undefined where b is zero, as division leaves it.
Decimal quotientOrUndefined(const Decimal& a, const Decimal& b) {
    return b.isZero() ? Decimal::notANumber() : a * b;
}
// Far apart: too sparse for slots.
Decimal spread(const Decimal& a, const Decimal& b) {
    return a * Decimal::decimalNumberWithInteger(100000) + b;
}
// Not whole numbers.
Decimal half(const Decimal& a, const Decimal& b) { return (a + b) * dec("0.5"); }

// Every pair as the general path lists it: a in order, and for each a every b in order.
std::vector<Evaluation> pairList(const std::vector<Evaluation>& own,
                                 const std::vector<Evaluation>& others, PairKernel function) {
    std::vector<Evaluation> list;
    for (const Evaluation& a : own) {
        for (const Evaluation& b : others) {
            list.emplace_back(function(a.quantity(), b.quantity()), a.weight() * b.weight());
        }
    }
    return list;
}

class RandomWholeOutcomes {
  public:
    explicit RandomWholeOutcomes(unsigned seed) : m_engine(seed) {}

    int number(int low, int high) { return std::uniform_int_distribution<>(low, high)(m_engine); }

    // Whole numbers from -10 to 30, now and then undefined; weights positive, zero or negative,
    // small integers or 38-digit fractions whose last digit shows the order of summation.
    std::vector<Evaluation> outcomes(int count, bool evenWeights) {
        std::vector<Evaluation> list;
        const Decimal even = Decimal::one() / Decimal::decimalNumberWithInteger(number(3, 13));
        for (int i = 0; i < count; ++i) {
            const Decimal quantity = number(0, 14) == 0
                                         ? Decimal::notANumber()
                                         : Decimal::decimalNumberWithInteger(number(-10, 30));
            list.emplace_back(quantity, evenWeights ? even : weight());
        }
        return list;
    }

  private:
    Decimal weight() {
        const int kind = number(0, 9);
        if (kind == 0) {
            return Decimal::decimalNumberWithInteger(number(-1, 0));
        }
        if (kind <= 2) {
            return Decimal::decimalNumberWithInteger(number(1, 9));
        }
        return Decimal::one() / Decimal::decimalNumberWithInteger(number(3, 97));
    }

    std::mt19937 m_engine;
};

// The combination of two lists of whole numbers, with and without slots, with even and uneven
// weights, undefined outcomes, non-positive weights and errors of either sign, against the
// full pair list condensed by the plain reading of the definition.
TEST(MergeByIndexProperty, PairsCombineAsTheFullPairListCondensed) {
    const std::vector<PairKernel> kernels{sum,    difference, product, quotientOrUndefined,
                                          spread, half};
    RandomWholeOutcomes random(20261123);
    int direct = 0;
    for (int run = 0; run < 300; ++run) {
        const PairKernel kernel = kernels[static_cast<std::size_t>(run) % kernels.size()];
        const std::vector<Evaluation> own = random.outcomes(random.number(1, 60), false);
        const std::vector<Evaluation> others =
            random.outcomes(random.number(1, 12), random.number(0, 1) == 0);
        const int error = run % 9 == 0 ? random.number(-3, -1) : random.number(0, 12);

        Profile profile;
        profile.setError(error);
        profile.setEvaluations(own);
        Profile other;
        other.setEvaluations(others);
        // The profiles hold their lists condensed; the pairs are formed from those.
        const std::vector<Evaluation> ownList = profile.evaluations();
        const std::vector<Evaluation> otherList = other.evaluations();
        profile.assimilateProfileWithoutNormalizing(other, kernel);

        const std::vector<Evaluation> expected =
            referenceCondense(pairList(ownList, otherList, kernel), error);
        ASSERT_EQ(spellingsOf(profile.evaluations()), spellingsOf(expected)) << "run " << run;

        // Straight from the raw lists, non-positive weights and all.
        if (const auto merged = pairsMergedByIndex(own, others, kernel, error)) {
            ASSERT_EQ(spellingsOf(*merged),
                      spellingsOf(referenceCondense(pairList(own, others, kernel), error)))
                << "run " << run;
            ++direct;
        }
    }
    // Both paths were taken.
    EXPECT_GT(direct, 50);
    EXPECT_LT(direct, 250);
}

TEST(MergeByIndex, DenseWholeNumbersAtANonNegativeErrorTakeTheSlots) {
    const std::vector<Evaluation> die{{dec("1"), dec("1")}, {dec("2"), dec("1")}};
    EXPECT_TRUE(pairsMergedByIndex(die, die, sum, 0).has_value());
    EXPECT_TRUE(pairsMergedByIndex(die, die, quotientOrUndefined, 10).has_value());
}

TEST(MergeByIndex, OtherListsAreLeftToTheGeneralPath) {
    const std::vector<Evaluation> die{{dec("1"), dec("1")}, {dec("2"), dec("1")}};
    EXPECT_FALSE(pairsMergedByIndex(die, die, sum, -1).has_value());
    EXPECT_FALSE(pairsMergedByIndex(die, die, half, 10).has_value());
    const std::vector<Evaluation> far{{dec("1"), dec("1")}, {dec("1000000"), dec("1")}};
    EXPECT_FALSE(pairsMergedByIndex(far, die, sum, 10).has_value());
    const std::vector<Evaluation> one{{dec("1"), dec("1")}};
    EXPECT_FALSE(pairsMergedByIndex(one, one, sum, 10).has_value());
}

// 0.5 and 0.50 are equal but give products written differently; a repeated product must come
// from weights written alike.
TEST(MergeByIndex, EqualWeightsWrittenDifferentlyKeepTheirOwnProducts) {
    const std::vector<Evaluation> own{{dec("1"), dec("0.3")}, {dec("2"), dec("0.7")}};
    const std::vector<Evaluation> others{{dec("1"), dec("0.5")}, {dec("2"), dec("0.50")}};
    const auto merged = pairsMergedByIndex(own, others, sum, 10);
    ASSERT_TRUE(merged.has_value());
    EXPECT_EQ(spellingsOf(*merged), spellingsOf(referenceCondense(pairList(own, others, sum), 10)));
}

// Going backwards the overflow of 1E+100 * 1E+100 comes first; in list order the underflow of
// 1E-100 * 1E-100 does, and that is the fault the combination reports.
TEST(MergeByIndex, AFaultIsTheOneTheListOrderMeetsFirst) {
    const std::vector<Evaluation> pair{{dec("1"), dec("1E-100")}, {dec("2"), dec("1E+100")}};
    EXPECT_FALSE(pairsMergedByIndex(pair, pair, sum, 10).has_value());
    Profile profile;
    profile.setEvaluations(pair);
    Profile other;
    other.setEvaluations(pair);
    try {
        profile.assimilateProfileWithoutNormalizing(other, sum);
        FAIL() << "the combination leaves the range";
    } catch (const DecimalError& error) {
        EXPECT_EQ(error.fault(), DecimalFault::Underflow);
    }
}

}  // namespace
}  // namespace talvex::core
