#include "core/profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/core/condense_reference.h"

namespace talvex::core {
namespace {

Pairs pairsOf(const std::vector<Evaluation>& list) {
    Pairs result;
    for (const Evaluation& evaluation : list) {
        result.emplace_back(evaluation.quantity().stringValue(), evaluation.weight().stringValue());
    }
    return result;
}

Pairs pairsOf(const Profile& profile) { return pairsOf(profile.evaluations()); }

// Adds the outcomes one by one, in order.
Profile profileOf(const Pairs& outcomes) {
    Profile profile;
    for (const auto& [quantity, weight] : outcomes) {
        profile.addQuantity(dec(quantity), dec(weight));
    }
    return profile;
}

::testing::AssertionResult satisfiesInvariant(const Profile& profile) {
    const std::vector<Evaluation> list = profile.evaluations();
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].weight().compare(Decimal::zero()) <= 0) {
            return ::testing::AssertionFailure() << "weight not positive at " << i;
        }
        if (i > 0 && (list[i - 1].compare(list[i]) >= 0 ||
                      profile.decimalIsWithinErrorOf(list[i].quantity(), list[i - 1].quantity()))) {
            return ::testing::AssertionFailure() << "not apart from its left neighbour: " << i;
        }
    }
    return ::testing::AssertionSuccess();
}

// |value - 1| <= tolerance
bool isOneWithin(const Decimal& value, std::string_view tolerance) {
    const Decimal distance = (value - Decimal::one()).absoluteValueChanged(nullptr, nullptr);
    return distance.compare(dec(tolerance)) <= 0;
}

Profile die(int faces) {
    Profile profile;
    for (int face = 1; face <= faces; ++face) {
        profile.addQuantity(Decimal::decimalNumberWithInteger(face), Decimal::one());
    }
    return profile;
}

Decimal add(const Decimal& a, const Decimal& b) { return a + b; }
Decimal subtract(const Decimal& a, const Decimal& b) { return a - b; }
Decimal larger(const Decimal& a, const Decimal& b) { return a.compare(b) >= 0 ? a : b; }

TEST(Profile, AddingEqualQuantitiesMergesTheirWeights) {
    EXPECT_EQ(pairsOf(profileOf({{"3", "1"}, {"1", "2"}, {"3", "4"}})),
              (Pairs{{"1", "2"}, {"3", "5"}}));
}

TEST(Profile, QuantitiesAgreeingToTenPlacesMergeOntoTheLarger) {
    EXPECT_EQ(pairsOf(profileOf({{"0.00000000001", "1"}, {"0", "1"}})),
              (Pairs{{"0.00000000001", "2"}}));
    EXPECT_EQ(pairsOf(profileOf({{"0", "1"}, {"0.00000000001", "1"}})),
              (Pairs{{"0.00000000001", "2"}}));
}

TEST(Profile, QuantitiesDifferingAtTheTenthPlaceStayApart) {
    EXPECT_EQ(pairsOf(profileOf({{"0", "1"}, {"0.0000000001", "1"}})),
              (Pairs{{"0", "1"}, {"0.0000000001", "1"}}));
}

TEST(Profile, ARunOfNearEqualQuantitiesCollapsesOntoItsLargestMember) {
    Profile profile;
    profile.setEvaluations({{dec("0.00000000002"), dec("1")},
                            {dec("0"), dec("2")},
                            {dec("0.00000000001"), dec("4")},
                            {dec("1"), dec("8")}});
    EXPECT_EQ(pairsOf(profile), (Pairs{{"0.00000000002", "7"}, {"1", "8"}}));
}

TEST(Profile, EqualQuantitiesKeepTheSpellingAddedLast) {
    ASSERT_NE(spelling(dec("2")), spelling(dec("2.0")));
    EXPECT_EQ(spellingsOf(profileOf({{"2", "1"}, {"2.0", "1"}}).evaluations()),
              (Pairs{{spelling(dec("2.0")), spelling(dec("2"))}}));
    EXPECT_EQ(spellingsOf(profileOf({{"2.0", "1"}, {"2", "1"}}).evaluations()),
              (Pairs{{spelling(dec("2")), spelling(dec("2"))}}));
}

TEST(Profile, UndefinedOutcomesMergeAndSortFirst) {
    EXPECT_EQ(pairsOf(profileOf({{"5", "1"}, {"NaN", "2"}, {"-5", "1"}, {"NaN", "3"}})),
              (Pairs{{"NaN", "5"}, {"-5", "1"}, {"5", "1"}}));
}

TEST(Profile, AddingAZeroOrNegativeWeightLeavesTheProfileUnchanged) {
    Profile profile = die(3);
    const Pairs before = pairsOf(profile);
    profile.addQuantity(dec("2"), dec("0"));
    profile.addQuantity(dec("7"), dec("0"));
    profile.addQuantity(dec("2"), dec("-1"));
    profile.addQuantity(dec("8"), dec("-0.5"));
    profile.addEvaluations({{dec("9"), dec("0")}, {dec("1"), dec("-3")}});
    EXPECT_EQ(pairsOf(profile), before);
}

TEST(Profile, EmptyProfileReportsOneUndefinedOutcomeOfWeightOne) {
    Profile profile;
    EXPECT_EQ(profile.totalWeight().stringValue(), "1");
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "1"}}));
    EXPECT_FALSE(profile.isDefined());
    EXPECT_FALSE(profile.isAlwaysDefined());
    EXPECT_TRUE(profile.definedEvaluations().empty());
}

TEST(Profile, DrawingFromAnEmptyProfileGivesUndefinedOfWeightZeroAndRecordsIt) {
    Profile profile;
    const Evaluation drawn = profile.evaluation();
    EXPECT_FALSE(drawn.isDefined());
    EXPECT_TRUE(drawn.weight().isZero());
    const std::vector<Evaluation> history = profile.evaluationHistory();
    ASSERT_EQ(history.size(), 1U);
    EXPECT_FALSE(history[0].isDefined());
    EXPECT_TRUE(history[0].weight().isZero());
}

TEST(Profile, OnlyTheUndefinedOutcomeIsNotDefined) {
    const Profile profile = profileOf({{"NaN", "2"}});
    EXPECT_FALSE(profile.isDefined());
    EXPECT_FALSE(profile.isAlwaysDefined());
    EXPECT_TRUE(profile.definedEvaluations().empty());
    EXPECT_EQ(profile.undefinedWeight().stringValue(), "2");
    EXPECT_TRUE(profile.definedWeight().isZero());
}

TEST(Profile, UndefinedAndFourIsDefinedButNotAlwaysDefined) {
    const Profile profile = profileOf({{"4", "3"}, {"NaN", "1"}});
    EXPECT_TRUE(profile.isDefined());
    EXPECT_FALSE(profile.isAlwaysDefined());
    EXPECT_EQ(pairsOf(profile.definedEvaluations()), (Pairs{{"4", "3"}}));
    EXPECT_EQ(profile.undefinedWeight().stringValue(), "1");
    EXPECT_EQ(profile.definedWeight().stringValue(), "3");
    EXPECT_EQ(profile.totalWeight().stringValue(), "4");
}

TEST(Profile, AnAlwaysDefinedProfileHasNoUndefinedWeight) {
    Profile profile = die(4);
    EXPECT_TRUE(profile.isAlwaysDefined());
    EXPECT_EQ(pairsOf(profile.definedEvaluations()), pairsOf(profile));
    EXPECT_TRUE(profile.undefinedWeight().isZero());
    EXPECT_EQ(profile.definedWeight().stringValue(), "4");
}

TEST(Profile, ScalingAnEmptyProfileByTwoMakesItsTotalWeightTwo) {
    Profile profile;
    profile.scale(dec("2"));
    EXPECT_EQ(profile.totalWeight().stringValue(), "2");
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "2"}}));
}

TEST(Profile, CopyingAScaledEmptyProfileResetsTheCopysTotalWeightToOne) {
    Profile profile;
    profile.scale(dec("2"));
    EXPECT_EQ(profile.copy().totalWeight().stringValue(), "1");
    EXPECT_EQ(profile.totalWeight().stringValue(), "2");
}

TEST(Profile, CopyConstructorClonesEveryMemberIncludingTheScaledWeight) {
    Profile profile;
    profile.scale(dec("2"));
    const Profile clone = profile;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(clone.totalWeight().stringValue(), "2");
}

TEST(Profile, CopyCarriesErrorTitleComparatorAndHistory) {
    Profile profile = die(6);
    profile.setError(3);
    profile.setTitleString("d6");
    profile.setComparatorString("vs");
    srandom(7);
    const Evaluation drawn = profile.evaluation();
    const Profile copy = profile.copy();
    EXPECT_EQ(copy.error(), 3);
    EXPECT_EQ(copy.titleString(), "d6");
    EXPECT_EQ(copy.comparatorString(), "vs");
    EXPECT_EQ(pairsOf(copy.evaluationHistory()), pairsOf(std::vector<Evaluation>{drawn}));
    EXPECT_EQ(pairsOf(copy), pairsOf(profile));
}

TEST(Profile, CopyCondensesAtTheDefaultErrorBeforeTakingTheSourceError) {
    Profile profile;
    profile.setError(12);
    profile.addEvaluations({{dec("0.00000000001"), dec("1")}, {dec("0.00000000002"), dec("1")}});
    ASSERT_EQ(profile.evaluations().size(), 2U);
    const Profile copy = profile.copy();
    EXPECT_EQ(pairsOf(copy), (Pairs{{"0.00000000002", "2"}}));
    EXPECT_EQ(copy.error(), 12);
}

TEST(Profile, SetErrorOutsideMinusTwentyToTwentyIsIgnored) {
    Profile profile;
    EXPECT_EQ(profile.error(), 10);
    for (const auto& [error, expected] :
         {std::pair{21, 10}, {-21, 10}, {20, 20}, {-20, -20}, {21, -20}}) {
        profile.setError(error);
        EXPECT_EQ(profile.error(), expected) << error;
    }
}

TEST(Profile, ANewErrorTakesEffectAtTheNextCondenseOnly) {
    Profile profile = profileOf({{"1.001", "1"}, {"1.002", "2"}});
    profile.setError(2);
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1.001", "1"}, {"1.002", "2"}}));
    profile.addEvaluation(nullptr);
    profile.addEvaluations({});
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1.001", "1"}, {"1.002", "2"}}));
    // Even an addition that contributes nothing condenses.
    profile.addQuantity(dec("5"), dec("0"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1.002", "3"}}));
}

TEST(Profile, MissingTitleIsIgnoredAndMissingComparatorStoresEmpty) {
    Profile profile;
    profile.setTitleString("title");
    profile.setTitleString(std::nullopt);
    EXPECT_EQ(profile.titleString(), "title");
    profile.setComparatorString("vt");
    profile.setComparatorString(std::nullopt);
    EXPECT_EQ(profile.comparatorString(), "");
}

TEST(Profile, SetEvaluationsReplacesTheOutcomesAndResetsTheScaledWeight) {
    Profile profile = die(3);
    profile.scale(dec("3"));
    profile.setEvaluations({});
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "1"}}));
    profile.setEvaluations({{dec("2"), dec("1")}, {dec("1"), dec("1")}, {dec("2"), dec("1")}});
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1", "1"}, {"2", "2"}}));
}

TEST(Profile, EvaluationsAreCopies) {
    Profile profile = die(2);
    std::vector<Evaluation> list = profile.evaluations();
    list[0].scale(dec("100"));
    std::vector<Evaluation> history = profile.evaluationHistory();
    history.emplace_back(dec("1"), dec("1"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1", "1"}, {"2", "1"}}));
    EXPECT_TRUE(profile.evaluationHistory().empty());
}

TEST(Profile, AddingAnEmptyProfileAddsOneUndefinedOutcomeOfItsScaledWeight) {
    Profile empty;
    empty.scale(dec("3"));
    Profile profile = die(2);
    profile.addProfile(empty);
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "3"}, {"1", "1"}, {"2", "1"}}));
    profile.addProfile(die(3));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "3"}, {"1", "2"}, {"2", "2"}, {"3", "1"}}));
}

TEST(Profile, ScaleDoesNotCondenseUntilTheNextAddition) {
    Profile profile = die(2);
    profile.scale(dec("0"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1", "0"}, {"2", "0"}}));
    EXPECT_TRUE(profile.totalWeight().isZero());
    profile.addQuantity(dec("3"), dec("1"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"3", "1"}}));

    Profile negative = die(2);
    negative.scale(dec("-1"));
    EXPECT_EQ(pairsOf(negative), (Pairs{{"1", "-1"}, {"2", "-1"}}));
    negative.addEvaluation(nullptr);
    EXPECT_EQ(pairsOf(negative), (Pairs{{"1", "-1"}, {"2", "-1"}}));
    negative.addQuantity(dec("2"), dec("0"));
    EXPECT_EQ(pairsOf(negative), (Pairs{{"NaN", "-1"}}));
}

TEST(Profile, ScaleToTotalWeightAndToNormal) {
    Profile profile = die(6);
    profile.scaleToTotalWeight(dec("12"));
    EXPECT_EQ(pairsOf(profile),
              (Pairs{{"1", "2"}, {"2", "2"}, {"3", "2"}, {"4", "2"}, {"5", "2"}, {"6", "2"}}));
    Profile coin = die(2);
    coin.addQuantity(Decimal::notANumber(), dec("2"));
    coin.scaleToNormal();
    EXPECT_EQ(pairsOf(coin), (Pairs{{"NaN", "0.5"}, {"1", "0.25"}, {"2", "0.25"}}));
    EXPECT_EQ(coin.totalWeight().stringValue(), "1");
}

TEST(Profile, ScaleQuantitiesKeepsUndefinedAndRestoresTheOrder) {
    Profile profile = profileOf({{"1", "1"}, {"2", "2"}, {"NaN", "3"}});
    profile.scaleQuantities(dec("-1.5"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "3"}, {"-3", "2"}, {"-1.5", "1"}}));
    profile.scaleQuantities(dec("0"));
    EXPECT_EQ(pairsOf(profile), (Pairs{{"NaN", "3"}, {"0", "3"}}));
}

TEST(Profile, AssimilatingTwoDiceWithAdditionGivesElevenOutcomesOfTotalWeightOne) {
    Profile profile = die(6);
    profile.assimilateProfile(die(6), add);
    const std::vector<Evaluation> list = profile.evaluations();
    ASSERT_EQ(list.size(), 11U);
    EXPECT_TRUE(isOneWithin(profile.totalWeight(), "1E-36")) << profile.totalWeight().stringValue();
    const Decimal sixth = dec("6") / dec("36");
    for (int sum = 2; sum <= 12; ++sum) {
        const Evaluation& outcome = list[static_cast<std::size_t>(sum - 2)];
        EXPECT_EQ(outcome.quantity().stringValue(), std::to_string(sum));
        const Decimal expected = dec(std::to_string(6 - std::abs(7 - sum))) / dec("36");
        EXPECT_TRUE(Profile{}.decimalIsWithinErrorOf(outcome.weight(), expected)) << sum;
    }
    EXPECT_TRUE(Profile{}.decimalIsWithinErrorOf(list[5].weight(), sixth));
}

TEST(Profile, AssimilationNormalisesBothOperandsFirst) {
    Profile counts = die(4);
    Profile heavy = die(4);
    heavy.scale(dec("2"));
    Profile weighted = die(4);
    weighted.scale(dec("5"));
    counts.assimilateProfile(heavy, larger);
    weighted.assimilateProfile(die(4), larger);
    EXPECT_EQ(pairsOf(counts), pairsOf(weighted));
    EXPECT_EQ(pairsOf(counts),
              (Pairs{{"1", "0.0625"}, {"2", "0.1875"}, {"3", "0.3125"}, {"4", "0.4375"}}));
}

TEST(Profile, FunctionKernelGetsTheReceiversQuantityFirst) {
    Profile profile = die(2);
    profile.assimilateProfile(profileOf({{"10", "1"}}), subtract);
    EXPECT_EQ(pairsOf(profile), (Pairs{{"-9", "0.5"}, {"-8", "0.5"}}));
}

TEST(Profile, KernelsAreCalledWithUndefinedQuantitiesOfAnEmptyProfile) {
    Profile profile;
    profile.assimilateProfile(die(3), add);
    EXPECT_FALSE(profile.isDefined());
    EXPECT_TRUE(isOneWithin(profile.totalWeight(), "1E-37"));

    std::vector<std::pair<bool, bool>> seen;
    Profile receiver = die(1);
    receiver.assimilateProfile(Profile{}, [&seen](const Decimal& a, const Decimal& b) {
        seen.emplace_back(a.isNotANumber(), b.isNotANumber());
        return std::vector<Evaluation>{{a, Decimal::one()}};
    });
    EXPECT_EQ(seen, (std::vector<std::pair<bool, bool>>{{false, true}}));
    EXPECT_EQ(pairsOf(receiver), (Pairs{{"1", "1"}}));
}

TEST(Profile, RelationResultsAreWeightedByTheirPairsWeight) {
    Profile profile = die(2);
    profile.assimilateProfile(die(2), [](const Decimal& a, const Decimal& b) {
        return std::vector<Evaluation>{{a, dec("0.5")}, {a * dec("10") + b, dec("0.5")}};
    });
    EXPECT_EQ(pairsOf(profile), (Pairs{{"1", "0.25"},
                                       {"2", "0.25"},
                                       {"11", "0.125"},
                                       {"12", "0.125"},
                                       {"21", "0.125"},
                                       {"22", "0.125"}}));
    EXPECT_EQ(profile.totalWeight().stringValue(), "1");
}

TEST(Profile, RelationAssimilationKeepsTheScaledWeightWhileFunctionAssimilationResetsIt) {
    const RelationKernel nothing = [](const Decimal&, const Decimal&) {
        return std::vector<Evaluation>{};
    };
    Profile kept;
    kept.scale(dec("2"));
    kept.assimilateProfileWithoutNormalizing(die(2), nothing);
    EXPECT_EQ(pairsOf(kept), (Pairs{{"NaN", "2"}}));

    Profile reset;
    reset.scale(dec("2"));
    reset.assimilateProfileWithoutNormalizing(die(2), add);
    EXPECT_EQ(pairsOf(reset), (Pairs{{"NaN", "4"}}));
    reset.assimilateProfileWithoutNormalizing(die(2), nothing);
    EXPECT_EQ(pairsOf(reset), (Pairs{{"NaN", "1"}}));
}

TEST(Profile, AssimilationWithoutNormalizingMultipliesTheWeightsAsTheyStand) {
    Profile profile = die(2);
    profile.scale(dec("3"));
    profile.assimilateProfileWithoutNormalizing(die(2), add);
    EXPECT_EQ(pairsOf(profile), (Pairs{{"2", "3"}, {"3", "6"}, {"4", "3"}}));
}

TEST(Profile, AProfileCanAssimilateItself) {
    Profile profile = die(3);
    profile.assimilateProfile(profile, add);
    Profile expected = die(3);
    expected.assimilateProfile(die(3), add);
    EXPECT_EQ(pairsOf(profile), pairsOf(expected));
    profile.addProfile(profile);
    EXPECT_TRUE(isOneWithin(profile.totalWeight() / dec("2"), "1E-36"));
}

// The draw walks the running weights and stops at the first that exceeds u x total weight.
TEST(Profile, DrawPicksTheFirstOutcomeWhoseRunningWeightExceedsTheThreshold) {
    Profile profile = profileOf({{"1", "1"}, {"2", "1"}, {"3", "2"}});
    for (unsigned seed = 1; seed <= 300; ++seed) {
        srandom(seed);
        const double unit = static_cast<double>(random()) / 2147483648.0;
        const std::string expected = unit < 0.25 ? "1" : unit < 0.5 ? "2" : "3";
        srandom(seed);
        const Evaluation drawn = profile.evaluation();
        EXPECT_EQ(drawn.quantity().stringValue(), expected) << seed;
        EXPECT_EQ(drawn.weight().stringValue(), expected == "3" ? "2" : "1");
    }
    EXPECT_EQ(profile.evaluationHistory().size(), 300U);
}

TEST(Profile, AThresholdEqualToARunningWeightGoesToTheNextOutcome) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        srandom(seed);
        const Decimal unit =
            Decimal::decimalNumberWithDouble(static_cast<double>(random()) / 2147483648.0);
        Profile profile;
        profile.addEvaluations({{dec("1"), unit}, {dec("2"), Decimal::one() - unit}});
        ASSERT_EQ(profile.totalWeight().stringValue(), "1");
        srandom(seed);
        EXPECT_EQ(profile.evaluate().stringValue(), "2") << seed;
    }
}

TEST(Profile, DrawFrequenciesFollowTheWeightsWithUndefinedIncluded) {
    Profile profile = profileOf({{"NaN", "1"}, {"4", "1"}, {"5", "2"}});
    srandom(42);
    int undefined = 0;
    int fours = 0;
    constexpr int kDraws = 20000;
    for (int i = 0; i < kDraws; ++i) {
        const Decimal quantity = profile.evaluate();
        undefined += quantity.isNotANumber() ? 1 : 0;
        fours += quantity.compare(dec("4")) == 0 ? 1 : 0;
    }
    EXPECT_NEAR(undefined, kDraws / 4, 400);
    EXPECT_NEAR(fours, kDraws / 4, 400);
    EXPECT_EQ(profile.evaluationHistory().size(), static_cast<std::size_t>(kDraws));
}

TEST(Profile, DrawRecordsACopyOfTheResultInTheHistory) {
    Profile profile = die(6);
    srandom(3);
    const Evaluation first = profile.evaluation();
    const Decimal second = profile.evaluate();
    const std::vector<Evaluation> history = profile.evaluationHistory();
    ASSERT_EQ(history.size(), 2U);
    EXPECT_EQ(spelling(history[0].quantity()), spelling(first.quantity()));
    EXPECT_EQ(spelling(history[1].quantity()), spelling(second));
    profile.setEvaluationHistory({});
    EXPECT_TRUE(profile.evaluationHistory().empty());
}

// Random inputs: quantities that often agree at 8 to 12 places, with several spellings of the
// same value and an undefined one now and then; weights that are sometimes zero or negative.
class RandomOutcomes {
  public:
    explicit RandomOutcomes(unsigned seed) : m_engine(seed) {}

    int number(int low, int high) { return std::uniform_int_distribution<>(low, high)(m_engine); }

    Decimal quantity() {
        const int kind = number(0, 9);
        if (kind == 0) {
            return Decimal::notANumber();
        }
        std::string text = std::to_string(number(-m_spread, m_spread));
        if (kind == 4) {
            text += ".0";
        } else if (kind >= 5) {
            std::string fraction(static_cast<std::size_t>(number(8, 12)), '0');
            fraction.back() = static_cast<char>('0' + number(1, 9));
            fraction.front() = static_cast<char>('0' + number(0, 1));
            text += "." + fraction;
        }
        return dec(text);
    }

    Decimal weight() {
        const int kind = number(0, 9);
        if (kind == 0) {
            return dec(std::to_string(number(-2, 0)));
        }
        if (kind == 1) {
            return dec("0." + std::to_string(number(1, 99)));
        }
        if (kind <= 3) {
            // 38 digits, so that the order of summation shows in the last one.
            return Decimal::one() / Decimal::decimalNumberWithInteger(number(3, 13));
        }
        return dec(std::to_string(number(1, 9)));
    }

    Evaluation evaluation() { return {quantity(), weight()}; }

    std::vector<Evaluation> evaluations(int count) {
        std::vector<Evaluation> list;
        for (int i = 0; i < count; ++i) {
            list.push_back(evaluation());
        }
        return list;
    }

    Profile profile(int count) {
        Profile result;
        result.addEvaluations(evaluations(count));
        return result;
    }

    // Integer parts run from -spread to spread.
    void setSpread(int spread) { m_spread = spread; }

  private:
    std::mt19937 m_engine;
    int m_spread = 6;
};

TEST(ProfileProperty, IncrementalCondenseMatchesAFullSortAndMerge) {
    for (unsigned seed = 1; seed <= 48; ++seed) {
        RandomOutcomes random(seed);
        Profile profile;
        std::vector<Evaluation> reference;
        Decimal scaledWeight = Decimal::one();
        int error = Profile::kDefaultError;
        const auto expected = [&] {
            return reference.empty()
                       ? std::vector<Evaluation>{{Decimal::notANumber(), scaledWeight}}
                       : reference;
        };
        // Some runs start long, so that batches of near-duplicates join a long sorted list.
        const bool startsLong = seed % 4 == 0;
        if (startsLong) {
            random.setSpread(300);
            const std::vector<Evaluation> initial = random.evaluations(1200);
            random.setSpread(6);
            profile.setEvaluations(initial);
            reference = referenceCondense(initial, error);
            ASSERT_EQ(spellingsOf(profile.evaluations()), spellingsOf(reference));
        }
        for (int step = 0; step < (startsLong ? 30 : 150); ++step) {
            const int operation = random.number(0, 99);
            bool condenses = true;
            if (operation < 60) {
                const Evaluation added = random.evaluation();
                profile.addEvaluation(added);
                reference.push_back(added);
            } else if (operation < 75) {
                // Ascending additions land behind the last outcome.
                const Evaluation added{dec(std::to_string(step) + ".00000000001"), random.weight()};
                profile.addQuantity(added.quantity(), added.weight());
                reference.push_back(added);
            } else if (operation < 82) {
                const std::vector<Evaluation> batch = random.evaluations(random.number(0, 40));
                profile.addEvaluations(batch);
                reference.insert(reference.end(), batch.begin(), batch.end());
                condenses = !batch.empty();
            } else if (operation < 88) {
                error = random.number(8, 12);
                profile.setError(error);
                condenses = false;
            } else if (operation < 93) {
                const Decimal factor = dec(std::to_string(random.number(-1, 2)));
                profile.scale(factor);
                for (Evaluation& evaluation : reference) {
                    evaluation.scale(factor);
                }
                scaledWeight = scaledWeight * factor;
                condenses = false;
            } else if (operation < 96) {
                const Decimal factor = dec(random.number(0, 1) == 0 ? "-1" : "1.5");
                profile.scaleQuantities(factor);
                for (Evaluation& evaluation : reference) {
                    evaluation.scaleQuantity(factor);
                }
            } else {
                const int places = random.number(9, 11);
                profile.roundToPrecision(places);
                for (Evaluation& evaluation : reference) {
                    evaluation.setQuantity(evaluation.quantity().decimalRound(places));
                }
            }
            if (condenses) {
                reference = referenceCondense(std::move(reference), error);
            }
            ASSERT_EQ(spellingsOf(profile.evaluations()), spellingsOf(expected()))
                << "seed " << seed << " step " << step << " operation " << operation;
        }
    }
}

// Lists of whole numbers, as combinations of dice produce them: duplicates in every order,
// undefined outcomes, negatives, zero, non-positive weights and 38-digit weights whose last
// digit shows the order of summation; dense and sparse ranges, errors of either sign.
TEST(ProfileProperty, WholeNumberListsCondenseAsTheFullSortAndMerge) {
    std::mt19937 engine(20261123);
    const auto number = [&engine](int low, int high) {
        return std::uniform_int_distribution<>(low, high)(engine);
    };
    for (int run = 0; run < 400; ++run) {
        const int spread = run % 5 == 0 ? 100000 : number(0, 40);
        const int count = number(2, 300);
        const int error = run % 7 == 0 ? number(-3, -1) : number(0, 12);
        std::vector<Evaluation> list;
        for (int i = 0; i < count; ++i) {
            const int kind = number(0, 19);
            const Decimal quantity =
                kind == 0 ? Decimal::notANumber()
                          : Decimal::decimalNumberWithInteger(number(-spread / 3, spread));
            const int weightKind = number(0, 9);
            Decimal weight = Decimal::one() / Decimal::decimalNumberWithInteger(number(3, 97));
            if (weightKind == 0) {
                weight = Decimal::decimalNumberWithInteger(number(-1, 0));
            } else if (weightKind <= 2) {
                weight = Decimal::decimalNumberWithInteger(number(1, 9));
            } else if (weightKind == 3) {
                weight = weight * weight * weight;
            }
            list.emplace_back(quantity, weight);
        }
        Profile profile;
        profile.setError(error);
        profile.addEvaluations(list);
        ASSERT_EQ(spellingsOf(profile.evaluations()), spellingsOf(referenceCondense(list, error)))
            << "run " << run;
    }
}

TEST(Profile, DefinedProfileIsTheDefinedOutcomesInstalledAfresh) {
    for (const int error : {Profile::kDefaultError, 2, 12}) {
        // Condensed at its own error: 1.00000000001 and 1.000000000011 stay apart only at 12.
        Profile profile;
        profile.setError(error);
        profile.addEvaluations({{Decimal::notANumber(), dec("2")},
                                {dec("1.001"), dec("1")},
                                {dec("1.002"), dec("0.5")},
                                {dec("1.00000000001"), dec("3")},
                                {dec("1.000000000011"), dec("1")},
                                {dec("7"), dec("1") / dec("3")}});
        Profile expected;
        expected.setEvaluations(profile.definedEvaluations());
        EXPECT_EQ(spellingsOf(profile.definedProfile().evaluations()),
                  spellingsOf(expected.evaluations()))
            << "error " << error;
        EXPECT_EQ(profile.definedProfile().error(), expected.error());
    }
    EXPECT_EQ(spellingsOf(Profile{}.definedProfile().evaluations()),
              spellingsOf(Profile{}.evaluations()));
}

TEST(ProfileProperty, InvariantHoldsAfterEveryOperation) {
    const RelationKernel split = [](const Decimal& a, const Decimal& b) {
        return std::vector<Evaluation>{{a, dec("0.25")}, {b, dec("0.75")}};
    };
    using Operation = std::function<void(Profile&, RandomOutcomes&)>;
    const std::array<Operation, 9> operations{
        [](Profile& p, RandomOutcomes& r) { p.addEvaluation(r.evaluation()); },
        [](Profile& p, RandomOutcomes& r) { p.addEvaluations(r.evaluations(4)); },
        [](Profile& p, RandomOutcomes& r) { p.addProfile(r.profile(3)); },
        [](Profile& p, RandomOutcomes&) { p.scale(dec("0.5")); },
        [](Profile& p, RandomOutcomes&) { p.scaleQuantities(dec("-0.5")); },
        [](Profile& p, RandomOutcomes& r) { p.roundToPrecision(r.number(0, 11)); },
        [](Profile& p, RandomOutcomes& r) { p.assimilateProfile(r.profile(3), add); },
        [&split](Profile& p, RandomOutcomes& r) { p.assimilateProfile(r.profile(2), split); },
        [](Profile& p, RandomOutcomes& r) { p.setEvaluations(r.evaluations(6)); },
    };
    for (unsigned seed = 100; seed < 130; ++seed) {
        RandomOutcomes random(seed);
        Profile profile = random.profile(8);
        ASSERT_TRUE(satisfiesInvariant(profile));
        for (int step = 0; step < 40; ++step) {
            operations[static_cast<std::size_t>(random.number(0, 8))](profile, random);
            ASSERT_TRUE(satisfiesInvariant(profile)) << "seed " << seed << " step " << step;
        }
    }
}

TEST(ProfileProperty, AssimilationPreservesATotalWeightOfOne) {
    const RelationKernel split = [](const Decimal& a, const Decimal& b) {
        return std::vector<Evaluation>{{a - b, dec("0.5")}, {b, dec("0.5")}};
    };
    for (unsigned seed = 200; seed < 260; ++seed) {
        RandomOutcomes random(seed);
        Profile profile = random.profile(random.number(0, 12));
        for (const FunctionKernel function : {add, larger, subtract}) {
            profile.assimilateProfile(random.profile(random.number(0, 12)), function);
            EXPECT_TRUE(isOneWithin(profile.totalWeight(), "1E-35"))
                << profile.totalWeight().stringValue();
        }
        profile.assimilateProfile(random.profile(random.number(1, 6)), split);
        EXPECT_TRUE(isOneWithin(profile.totalWeight(), "1E-35"))
            << profile.totalWeight().stringValue();
    }
}

TEST(ProfileProperty, ChangingACopyLeavesTheOriginalAlone) {
    for (unsigned seed = 300; seed < 330; ++seed) {
        RandomOutcomes random(seed);
        Profile original = random.profile(10);
        original.setTitleString("title");
        srandom(seed);
        (void)original.evaluation();
        const std::vector<Evaluation> outcomes = original.evaluations();
        const std::vector<Evaluation> history = original.evaluationHistory();

        Profile copy = original.copy();
        Profile clone = original;
        for (Profile* changed : {&copy, &clone}) {
            changed->addEvaluation(random.evaluation());
            changed->scale(dec("3"));
            changed->scaleQuantities(dec("2"));
            changed->setError(4);
            changed->setTitleString("changed");
            changed->setComparatorString("vs");
            (void)changed->evaluation();
            changed->assimilateProfile(random.profile(3), add);
        }
        EXPECT_EQ(spellingsOf(original.evaluations()), spellingsOf(outcomes));
        EXPECT_EQ(spellingsOf(original.evaluationHistory()), spellingsOf(history));
        EXPECT_EQ(original.error(), Profile::kDefaultError);
        EXPECT_EQ(original.titleString(), "title");
        EXPECT_EQ(original.comparatorString(), "");
    }
}

}  // namespace
}  // namespace talvex::core
