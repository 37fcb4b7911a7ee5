#pragma once

#include <array>
#include <cstddef>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core {

// Combines an outcome of the receiving profile (first) with one of the other profile (second)
// into one quantity. Called with undefined quantities too.
using FunctionKernel = Decimal (*)(const Decimal&, const Decimal&);
// Splits a pair of outcomes (the receiver's first) into several, with weights relative to one.
using RelationKernel = std::function<std::vector<Evaluation>(const Decimal&, const Decimal&)>;

// The exact distribution of an expression: one evaluation per distinct outcome.
//
// After every change to the outcomes the list is condensed: only positive weights remain, the
// list is sorted by quantity with the undefined outcome first, and no two neighbours agree to
// `error` decimal places (such outcomes are merged, keeping the larger quantity). Weights stay
// as the builder added them until something asks for normal form; an empty profile reports one
// undefined outcome of weight `scaledWeight`.
class Profile {
  public:
    static constexpr int kDefaultError = 10;
    static constexpr int kMaxError = 20;

    Profile() = default;

    [[nodiscard]] static Profile profile() { return Profile{}; }

    // A fresh profile that receives the outcomes (condensed anew, so the scaled weight returns
    // to one), then the error, the title, the comparator and the roll history. The copy
    // constructor, by contrast, clones every member as it is.
    [[nodiscard]] Profile copy() const;

    // Replaces the outcomes by the given ones (condensed) and resets the scaled weight to one.
    void setEvaluations(std::vector<Evaluation> evaluations);
    // Copies of the outcomes; for an empty profile one undefined outcome of the scaled weight.
    [[nodiscard]] std::vector<Evaluation> evaluations() const;
    // How many outcomes evaluations() would list, without copying them.
    [[nodiscard]] std::size_t evaluationCount() const noexcept {
        return m_evaluations.empty() ? 1 : m_evaluations.size();
    }
    // The outcomes without the undefined one.
    [[nodiscard]] std::vector<Evaluation> definedEvaluations() const;
    // A fresh profile of the defined outcomes, as setEvaluations(definedEvaluations()) would
    // make it.
    [[nodiscard]] Profile definedProfile() const;

    [[nodiscard]] const std::string& titleString() const noexcept { return m_titleString; }
    // A missing title is ignored.
    void setTitleString(std::optional<std::string> titleString);
    [[nodiscard]] const std::string& comparatorString() const noexcept {
        return m_comparatorString;
    }
    // A missing comparator stores the empty string.
    void setComparatorString(std::optional<std::string> comparatorString);

    [[nodiscard]] int error() const noexcept { return m_error; }
    // Values outside -20..20 are ignored. Takes effect at the next condense.
    void setError(int error) noexcept;

    // Every roll drawn so far, oldest first.
    [[nodiscard]] const std::vector<Evaluation>& evaluationHistory() const noexcept {
        return m_evaluationHistory;
    }
    void setEvaluationHistory(std::vector<Evaluation> evaluationHistory);

    // Adding outcomes; each condenses.
    void addQuantity(const Decimal& quantity, const Decimal& weight);
    void addEvaluation(const Evaluation& evaluation);
    // A null evaluation is ignored (nothing is condensed).
    void addEvaluation(const Evaluation* evaluation);
    // An empty list is ignored (nothing is condensed).
    void addEvaluations(std::vector<Evaluation> evaluations);
    // Adds the other profile's `evaluations()`, so an empty one adds an undefined outcome.
    void addProfile(const Profile& other);

    // Weights.
    [[nodiscard]] Decimal totalWeight() const;
    [[nodiscard]] Decimal undefinedWeight() const;
    [[nodiscard]] Decimal definedWeight() const;
    [[nodiscard]] bool isDefined() const noexcept;
    [[nodiscard]] bool isAlwaysDefined() const noexcept;

    // Multiplies every weight and the scaled weight. Does not condense: a factor of zero or
    // below leaves non-positive weights until the next condense.
    void scale(const Decimal& factor);
    void scaleToTotalWeight(const Decimal& target);
    // Weights become probabilities.
    void scaleToNormal();
    // Multiplies every defined quantity, then condenses.
    void scaleQuantities(const Decimal& factor);

    // The cross product of both distributions through a kernel, after bringing the receiver
    // and a copy of the other profile to normal form.
    void assimilateProfile(const Profile& other, FunctionKernel function);
    void assimilateProfile(const Profile& other, const RelationKernel& relation);
    // The cross product as the weights stand. The function form resets the scaled weight to
    // one; the relation form keeps it.
    void assimilateProfileWithoutNormalizing(const Profile& other, FunctionKernel function);
    void assimilateProfileWithoutNormalizing(const Profile& other, const RelationKernel& relation);

    // Gives back the room the outcome list no longer uses (a combination makes room for every
    // pair, and merging leaves far fewer): for profiles that are kept a long time.
    void shrinkToFit() { m_evaluations.shrink_to_fit(); }

    // Draws one outcome at random (POSIX random()), records a copy in the history and returns
    // it. An empty profile draws an undefined outcome of weight zero.
    [[nodiscard]] Evaluation evaluation();
    // The quantity of a fresh draw.
    [[nodiscard]] Decimal evaluate();

    // Styles of the reports, shared between copies until one of them changes its own.
    [[nodiscard]] const Styles& styles() const noexcept;
    void setDefaultStyles();
    void setStyles(Styles styles);
    void clearStyles();
    void setAttributes(const TextAttributes& attributes, const std::string& forStyle);

    // Reports (report.cpp and friends). Options are repaired first; none gives empty text.
    // Drawing the report's roll records it in the history.
    [[nodiscard]] StyledText attributedProfileStringWithOptions(
        const Options* options, std::time_t now = std::time(nullptr));
    [[nodiscard]] std::string profileStringWithOptions(const Options* options,
                                                       std::time_t now = std::time(nullptr));
    [[nodiscard]] Options patchOptions(const Options* options) const;

    // Statistics (profile_statistics.cpp). A profile that is not defined gives undefined
    // results. The undefined outcome's weight counts in the divisor of the averages.
    [[nodiscard]] Decimal mean() const;
    [[nodiscard]] Decimal variance() const;
    // Square root taken in double precision.
    [[nodiscard]] Decimal standardDeviation() const;
    [[nodiscard]] Decimal meanDeviation() const;
    // The same, given the total weight (and the mean) that they would work out first, for
    // callers that need several of them without walking the outcomes again for each.
    [[nodiscard]] Decimal mean(const Decimal& totalWeight) const;
    [[nodiscard]] Decimal variance(const Decimal& mean, const Decimal& totalWeight) const;
    [[nodiscard]] static Decimal standardDeviationOf(const Decimal& variance);
    [[nodiscard]] Decimal meanDeviation(const Decimal& mean, const Decimal& totalWeight) const;
    // The middle of the distinct defined quantities; weights are not consulted.
    [[nodiscard]] Decimal median() const;
    // The defined quantities of greatest weight (within error), ascending.
    [[nodiscard]] std::vector<Decimal> mode() const;
    // As mode, with the undefined outcome taking part (it comes first).
    [[nodiscard]] std::vector<Decimal> modeIncludingUndefined() const;
    // Smallest defined quantity and largest quantity.
    [[nodiscard]] std::array<Decimal, 2> range() const;
    // The number of distinct defined outcomes.
    [[nodiscard]] Decimal values() const;
    // Rounds every quantity to `places` decimals and condenses.
    void roundToPrecision(int places);

    // Plain rounding (halves away from zero); undefined stays undefined.
    [[nodiscard]] static Decimal decimalWithPrecision(const Decimal& value, int places);
    // Whether two quantities are the same outcome at `error` decimal places. An undefined first
    // argument matches anything; a defined one never matches an undefined second.
    [[nodiscard]] bool decimalIsWithinErrorOf(const Decimal& first, const Decimal& second) const;

  private:
    // A fresh profile holding the source's outcomes as setEvaluations would install them.
    [[nodiscard]] static Profile withOutcomesOf(const Profile& source);
    // Restores the invariant. The first `sortedCount` elements are known to be in order.
    void condense(std::size_t sortedCount);
    // Adds one outcome to a condensed list without re-sorting it.
    void insertIntoCondensed(Evaluation evaluation);
    // Index of the first defined outcome: 0 or 1.
    [[nodiscard]] std::size_t definedStart() const noexcept;
    [[nodiscard]] std::vector<Decimal> modeFrom(std::size_t start) const;

    std::vector<Evaluation> m_evaluations;
    std::vector<Evaluation> m_evaluationHistory;
    int m_error = kDefaultError;
    std::string m_titleString;
    std::string m_comparatorString;
    Decimal m_scaledWeight = Decimal::one();
    // Null means the default styles.
    std::shared_ptr<const Styles> m_styles;
    // Whether m_evaluations satisfies the whole invariant at the current error. The list is
    // always sorted; weights can turn non-positive through scale() and neighbours can come
    // within error through setError(), and then the next addition condenses in full.
    bool m_isCondensed = true;
};

}  // namespace talvex::core
