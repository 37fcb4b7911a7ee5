#include "core/diagram.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/report_writer.h"
#include "core/table.h"

namespace talvex::core {

namespace {

constexpr std::string_view kColumnGap = "     ";
// Two fits closer than this count as equally good.
constexpr double kFitTolerance = 0.000001;

struct DiagramSettings {
    int height = 0;
    bool shrinkToTable = false;
    int maxHeight = 1;
    int precision = 0;
    int weightPrecision = 0;
    Decimal total;
    std::vector<Decimal> dividers;
    bool printZeros = false;
    bool descending = false;
    bool runningWeight = false;
    bool includeUndefined = false;
    // The total lines under the diagram follow the table's options.
    bool tableTotal = false;
    bool tableIncludeUndefined = false;
    bool tableRunningWeight = false;
};

// The repaired list is ascending and holds numbers only; anything else is passed over.
std::vector<Decimal> dividersOf(std::string_view text) {
    std::vector<Decimal> dividers;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        const std::string_view piece = text.substr(0, comma);
        const Decimal value = Decimal::decimalNumberWithString(piece);
        if (!piece.empty() && !value.isNotANumber()) {
            dividers.push_back(value);
        }
        if (comma == std::string_view::npos) {
            break;
        }
        text.remove_prefix(comma + 1);
    }
    return dividers;
}

DiagramSettings readSettings(const Options& options) {
    DiagramSettings settings;
    settings.height = optionInteger(options, "diagram height");
    settings.shrinkToTable = optionIsYes(options, "diagram shrink to table height");
    settings.maxHeight = optionInteger(options, "diagram max height");
    settings.precision = optionInteger(options, "diagram precision");
    settings.weightPrecision = optionInteger(options, "diagram weight precision");
    settings.total = optionDecimal(options, "diagram total weight");
    settings.dividers = dividersOf(optionString(options, "dividers"));
    settings.printZeros = optionIsYes(options, "diagram print zeros");
    settings.descending = optionString(options, "diagram direction") == "descending";
    settings.runningWeight = optionIsYes(options, "diagram running weight");
    settings.includeUndefined = optionIsYes(options, "diagram include undefined");
    settings.tableTotal = optionIsYes(options, "table total");
    settings.tableIncludeUndefined = optionIsYes(options, "table include undefined");
    settings.tableRunningWeight = optionIsYes(options, "table running weight");
    return settings;
}

// The stretch up to one divider: the outcomes wholly before it, then the outcome in which it
// falls.
struct Segment {
    Decimal between;
    Decimal quantity;
    Decimal weight;
    // The running weight up to and including the crossing outcome.
    Decimal running;
};

struct Layout {
    // Segments whose crossing outcome another divider has already claimed are left out.
    std::vector<Segment> segments;
    Decimal tail;
};

Layout layoutOf(const Profile& profile, const std::vector<Evaluation>& outcomes,
                const std::vector<Decimal>& dividers, const Decimal& total) {
    Layout layout;
    Decimal running;
    std::size_t next = 0;
    std::optional<std::size_t> previousCrossing;
    const std::size_t m = dividers.size();
    // Unsigned on purpose: for a single divider this wraps round and that divider belongs to
    // the first half.
    const std::size_t lastOfFirstHalf = m / 2 - 1;
    for (std::size_t j = 0; j < m; ++j) {
        const Decimal& divider = dividers[j];
        Decimal sum;
        const auto take = [&] {
            running = running + outcomes[next].weight();
            sum = sum + outcomes[next].weight();
            ++next;
        };
        // An outcome that ends exactly on a divider stays before it in the first half and
        // becomes the crossing outcome in the second, so symmetric distributions draw
        // symmetrically.
        if (j <= lastOfFirstHalf) {
            while (next < outcomes.size() &&
                   (running <= divider || profile.decimalIsWithinErrorOf(running, divider))) {
                take();
            }
        } else {
            while (next < outcomes.size() && running < divider &&
                   !profile.decimalIsWithinErrorOf(running, divider)) {
                take();
            }
        }
        if (next == 0 || previousCrossing == next - 1) {
            continue;
        }
        previousCrossing = next - 1;
        const Evaluation& crossing = outcomes[next - 1];
        layout.segments.push_back(
            Segment{sum - crossing.weight(), crossing.quantity(), crossing.weight(), running});
    }
    layout.tail = total - running;
    return layout;
}

bool isDrawn(const Decimal& weight, bool printZeros) {
    return printZeros || weight > Decimal::zero();
}

// b: a block has b lines, its label line, and b lines again.
int halfHeight(double share, int scale) {
    const double b = std::floor((share * static_cast<double>(scale) - 1.0) * 0.5 + 0.5);
    // Only a weight below zero could give less than the label line alone.
    return std::max(static_cast<int>(b), 0);
}

class DiagramMeasure {
  public:
    DiagramMeasure(const Layout& layout, const Decimal& total, bool printZeros) {
        const double whole = total.doubleValue();
        const auto add = [&](const Decimal& weight) {
            if (isDrawn(weight, printZeros)) {
                m_shares.push_back(weight.doubleValue() / whole);
            }
        };
        for (const Segment& segment : layout.segments) {
            add(segment.between);
            add(segment.weight);
        }
        add(layout.tail);
    }

    // L(k): the lines of all drawn blocks at scale k.
    [[nodiscard]] int heightAt(int scale) const {
        int lines = 0;
        for (const double share : m_shares) {
            lines += 2 * halfHeight(share, scale) + 1;
        }
        return lines;
    }

  private:
    std::vector<double> m_shares;
};

struct Fit {
    int scale = 0;
    int height = 0;
};

// Looks for the scale whose height comes closest to `target` without passing `hardLimit`,
// stepping from a first guess that leaves room for the label lines.
Fit fitScale(const DiagramMeasure& measure, int target, int hardLimit, std::size_t dividers) {
    const auto fitOf = [target](int height) {
        return 1.0 - std::fabs(static_cast<double>(target - height) / static_cast<double>(target));
    };
    const long long guess =
        static_cast<long long>(target) - 2 * static_cast<long long>(dividers) - 1;
    Fit best{static_cast<int>(std::max(guess, 0LL)), 0};
    best.height = measure.heightAt(best.scale);
    double bestFit = fitOf(best.height);

    const bool downwards = best.height > target || best.height > hardLimit;
    // Each block adds at most one line beyond its share of the scale, so the first guess is
    // only ever too tall when it is already zero; the downward search is kept for safety.
    if (downwards && best.scale == 0) {
        return best;
    }
    const int step = downwards ? -1 : 1;
    for (int scale = best.scale + step;; scale += step) {
        const int height = measure.heightAt(scale);
        const double fit = fitOf(height);
        if (bestFit - fit > kFitTolerance && height <= hardLimit) {
            break;
        }
        if (!downwards && height > hardLimit) {
            break;
        }
        best = Fit{scale, height};
        bestFit = fit;
        if (downwards && scale == 0) {
            break;
        }
    }
    return best;
}

struct DiagramPlan {
    DiagramSettings settings;
    ScaledOutcomes scaled;
    Layout layout;
    Fit fit;
};

// The layout and scale of a defined profile's diagram at a wanted height above zero.
DiagramPlan planDiagram(const Profile& profile, const Options& options, DiagramSettings settings,
                        bool reserveUndefinedLine, ScaledOutcomesCache& cache) {
    DiagramPlan plan;
    plan.scaled = cache.scaled(settings.total, settings.descending);
    int wanted = settings.height;
    if (settings.shrinkToTable) {
        wanted = static_cast<int>(
            tableRowSizes(plan.scaled.outcomes.size(), tableRowLimit(profile, options)).size());
    }
    int hardLimit = settings.maxHeight;
    if (reserveUndefinedLine && plan.scaled.hasUndefined) {
        hardLimit = std::max(hardLimit - 1, 1);
    }
    const int target = std::min(hardLimit, wanted);
    plan.layout = layoutOf(profile, plan.scaled.outcomes, settings.dividers, settings.total);
    const DiagramMeasure measure(plan.layout, settings.total, settings.printZeros);
    plan.fit = fitScale(measure, target, hardLimit, settings.dividers.size());
    plan.settings = std::move(settings);
    return plan;
}

class DiagramWriter {
  public:
    DiagramWriter(ReportWriter& out, const DiagramPlan& plan)
        : m_out(out),
          m_settings(plan.settings),
          m_scaled(plan.scaled),
          m_whole(plan.scaled.total.doubleValue()),
          m_scale(plan.fit.scale),
          m_percent(plan.scaled.total == Decimal::decimalNumberWithInteger(100)),
          m_undefinedColumns(plan.scaled.hasUndefined && plan.settings.includeUndefined) {}

    void dotBlock(const Decimal& weight, const Decimal& running) {
        if (!isDrawn(weight, m_settings.printZeros)) {
            return;
        }
        const std::string dots = repeated(".\n", halfHeightOf(weight));
        m_out.string(dots, "diagram structure");
        m_out.string(".     ", "diagram structure");
        columns(weight, running);
        m_out.string(dots, "diagram structure");
    }

    void outcomeBlock(const Decimal& quantity, const Decimal& weight, const Decimal& running) {
        if (!isDrawn(weight, m_settings.printZeros)) {
            return;
        }
        const std::string text = decimalString(quantity, m_settings.precision);
        const std::string lines = repeated(text + "\n", halfHeightOf(weight));
        m_out.string(lines, "diagram structure");
        m_out.string(text, "quantity");
        m_out.string(kColumnGap, "default");
        columns(weight, running);
        m_out.string(lines, "diagram structure");
    }

    void totals() {
        const bool undefinedColumns = m_scaled.hasUndefined && m_settings.tableIncludeUndefined;
        const int places = m_settings.weightPrecision;
        if (m_settings.tableTotal) {
            if (undefinedColumns) {
                m_out.string("Defined ", "item");
            }
            m_out.string("Total:\n    ", "item");
            // The total is printed at the quantity precision, unlike every other weight.
            appendWeight(m_out, m_scaled.total, m_settings.precision, "weight", m_percent);
            if (undefinedColumns) {
                m_out.string(std::string(18, ' '), "default");
                appendWeight(m_out, m_scaled.definedTotal, places, "total weight", m_percent);
            }
            m_out.string("\n", "default");
        }
        if (undefinedColumns) {
            m_out.string("undefined" + std::string(15, ' '), "undefined");
            appendWeight(m_out, m_scaled.undefinedWeight, places, "total weight", m_percent);
            if (m_settings.tableRunningWeight) {
                m_out.string(kColumnGap, "default");
                appendWeight(m_out, m_scaled.total, places, "running total weight", m_percent);
            }
            m_out.string("\n", "default");
        }
        if (m_settings.tableTotal) {
            if (undefinedColumns) {
                m_out.string("Grand Total:\n" + std::string(28, ' '), "item");
                appendWeight(m_out, m_scaled.total, places, "total weight", m_percent);
            }
            m_out.string("\n", "default");
        }
    }

  private:
    [[nodiscard]] static std::string repeated(std::string_view line, int count) {
        std::string text;
        text.reserve(line.size() * static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            text += line;
        }
        return text;
    }

    [[nodiscard]] int halfHeightOf(const Decimal& weight) const {
        return halfHeight(weight.doubleValue() / m_whole, m_scale);
    }

    // The label line after its first column: weight, running weight, and their shares of the
    // grand total.
    void columns(const Decimal& weight, const Decimal& running) {
        const int places = m_settings.weightPrecision;
        const Decimal& fraction = m_scaled.definedFraction;
        appendWeight(m_out, weight, places, "weight", m_percent);
        if (m_settings.runningWeight) {
            m_out.string(kColumnGap, "default");
            appendWeight(m_out, running, places, "running weight", m_percent);
        }
        if (m_undefinedColumns) {
            m_out.string(kColumnGap, "default");
            appendWeight(m_out, weight * fraction, places, "total weight", m_percent);
        }
        if (m_settings.runningWeight && m_undefinedColumns) {
            m_out.string(kColumnGap, "default");
            appendWeight(m_out, running * fraction, places, "running total weight", m_percent);
        }
        m_out.string("\n", "default");
    }

    ReportWriter& m_out;
    const DiagramSettings& m_settings;
    const ScaledOutcomes& m_scaled;
    double m_whole;
    int m_scale;
    bool m_percent;
    bool m_undefinedColumns;
};

}  // namespace

StyledText diagramWithOptions(const Profile& profile, const Options* options, const Styles& styles,
                              ScaledOutcomesCache* cache) {
    ReportWriter out(styles);
    if (options == nullptr) {
        return out.take();
    }
    if (!profile.isDefined()) {
        out.string("undefined\n", "undefined");
        return out.take();
    }
    DiagramSettings settings = readSettings(*options);
    if (settings.height <= 0) {
        return out.take();
    }
    ScaledOutcomesCache own(profile);
    const DiagramPlan plan =
        planDiagram(profile, *options, std::move(settings), true, cache != nullptr ? *cache : own);
    DiagramWriter writer(out, plan);
    for (const Segment& segment : plan.layout.segments) {
        writer.dotBlock(segment.between, segment.running - segment.weight);
        writer.outcomeBlock(segment.quantity, segment.weight, segment.running);
    }
    writer.dotBlock(plan.layout.tail, plan.scaled.total);
    writer.totals();
    return out.take();
}

int diagramHeightWithOptions(const Profile& profile, const Options* options) {
    if (options == nullptr) {
        return 0;
    }
    DiagramSettings settings = readSettings(*options);
    if (settings.height <= 0) {
        return 0;
    }
    if (!profile.isDefined()) {
        return 1;
    }
    ScaledOutcomesCache cache(profile);
    return planDiagram(profile, *options, std::move(settings), false, cache).fit.height;
}

}  // namespace talvex::core
