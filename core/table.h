#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "core/decimal.h"
#include "core/evaluation.h"
#include "core/profile.h"
#include "core/report_options.h"
#include "core/report_writer.h"
#include "core/styled_text.h"
#include "core/styles.h"

namespace talvex::core {

// How the table splits its outcomes into rows: groups of `groupSize` neighbouring outcomes,
// with the uneven remainder pooled into the middle rows so that the layout reads the same from
// either end.
struct TableGrouping {
    std::size_t groupSize = 1;
    // The number of outcomes in each row, in table order.
    std::vector<std::size_t> rowSizes;
};

// The smallest group size whose layout fits `maxRows` rows (at least one row is always
// allowed). A group size of one, one row per outcome, when the outcomes fit as they are.
[[nodiscard]] TableGrouping tableGrouping(std::size_t outcomes, std::size_t maxRows);
// The row sizes of tableGrouping.
[[nodiscard]] std::vector<std::size_t> tableRowSizes(std::size_t outcomes, std::size_t maxRows);

// A profile's weights rescaled for a report to a chosen total T.
struct ScaledOutcomes {
    // T.
    Decimal total;
    // u: the undefined outcome's share of T when the whole profile is scaled to T.
    Decimal undefinedWeight;
    // D = T - u.
    Decimal definedTotal;
    // f = D / T, which turns a defined-only weight into a share of the grand total.
    Decimal definedFraction = Decimal::one();
    bool hasUndefined = false;
    // The defined outcomes alone, scaled so that they sum to T, in report order.
    std::vector<Evaluation> outcomes;
};

[[nodiscard]] ScaledOutcomes scaledOutcomes(const Profile& profile, const Decimal& total,
                                            bool descending);

// The scaled outcomes of one profile, kept for as long as it is not changed, so that the parts
// of one report that scale it alike (the table and the diagram at one total and direction)
// scale it once.
class ScaledOutcomesCache {
  public:
    explicit ScaledOutcomesCache(const Profile& profile) : m_profile(profile) {}
    [[nodiscard]] const ScaledOutcomes& scaled(const Decimal& total, bool descending);

  private:
    const Profile& m_profile;
    std::optional<ScaledOutcomes> m_scaled;
    bool m_descending = false;
};

// The rows the table allows for defined outcomes: "table max height", one fewer when the
// profile has undefined outcomes, never below one.
[[nodiscard]] std::size_t tableRowLimit(const Profile& profile, const Options& options);

// A weight in `style`, then a percent sign when the report's total is 100.
void appendWeight(ReportWriter& out, const Decimal& value, int precision, std::string_view style,
                  bool percent);

// The profile as a text table, one row per outcome or group of outcomes, under repaired
// options. Empty without options; "undefined" for a profile without defined outcomes.
[[nodiscard]] StyledText tableWithOptions(const Profile& profile, const Options* options,
                                          const Styles& styles,
                                          ScaledOutcomesCache* cache = nullptr);

// The heaviest row of the table the same options would draw: its weight is that row's weight
// (sum, or average with "average bar"), its quantity the smallest outcome of the first such row
// in table order. Zero and zero for a profile without defined outcomes or without options.
[[nodiscard]] Evaluation maxBarEvaluationWithOptions(const Profile& profile,
                                                     const Options* options);

}  // namespace talvex::core
