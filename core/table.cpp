#include "core/table.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

#include "core/calculation_limits.h"

namespace talvex::core {

namespace {

constexpr std::string_view kColumnGap = "     ";
// Stands under the ".." and second quantity of a range, so single outcomes line up.
constexpr std::string_view kRangeWidth = "      ";

// Appends `count` rows of `size` outcomes.
void appendRows(std::vector<std::size_t>& rows, std::size_t count, std::size_t size) {
    rows.insert(rows.end(), count, size);
}

// Lays out the rows for group size g; false when they would need more than `maxRows` rows.
bool layoutFits(std::size_t n, std::size_t g, std::size_t maxRows, std::vector<std::size_t>& rows) {
    const std::size_t q = n / g;
    const std::size_t r = n % g;
    rows.clear();
    if (r == 0) {
        if (q > maxRows) {
            return false;
        }
        appendRows(rows, q, g);
        return true;
    }
    if (q % 2 == 0) {
        if (q + 1 > maxRows) {
            return false;
        }
        appendRows(rows, q / 2, g);
        rows.push_back(r);
        appendRows(rows, q / 2, g);
        return true;
    }
    // The middle group and the remainder are shared out between two or three middle rows.
    const std::size_t t = g + r;
    const std::size_t side = (q - 1) / 2;
    if (t % 2 == 0) {
        if (q + 1 > maxRows) {
            return false;
        }
        appendRows(rows, side, g);
        appendRows(rows, 2, t / 2);
    } else {
        if (q + 2 > maxRows) {
            return false;
        }
        const std::size_t a = t / 3;
        appendRows(rows, side, g);
        switch (t % 3) {
            case 0:
                appendRows(rows, 3, a);
                break;
            case 1:
                // t is odd, so a is even here and a - 1 is at least one.
                rows.insert(rows.end(), {a + 1, a - 1, a + 1});
                break;
            default:
                rows.insert(rows.end(), {a + 1, a, a + 1});
                break;
        }
    }
    appendRows(rows, side, g);
    return true;
}

struct TableSettings {
    std::string barString;
    std::size_t maxRows = 1;
    int maxBar = 0;
    int precision = 0;
    int weightPrecision = 0;
    Decimal total;
    bool descending = false;
    bool relativeBar = false;
    bool averageBar = false;
    bool setMaxWeight = false;
    Decimal maxWeight;
    bool includeUndefined = false;
    bool runningWeight = false;
    bool showTotal = false;
};

TableSettings readSettings(const Profile& profile, const Options& options) {
    TableSettings settings;
    settings.barString = optionString(options, "bar string");
    settings.maxRows = tableRowLimit(profile, options);
    settings.maxBar = optionInteger(options, "max bar");
    settings.precision = optionInteger(options, "table precision");
    settings.weightPrecision = optionInteger(options, "table weight precision");
    settings.total = optionDecimal(options, "table total weight");
    settings.descending = optionString(options, "table direction") == "descending";
    settings.relativeBar = optionIsYes(options, "relative bar");
    settings.averageBar = optionIsYes(options, "average bar");
    settings.setMaxWeight = optionIsYes(options, "table set max weight");
    settings.maxWeight = optionDecimal(options, "table max weight");
    settings.includeUndefined = optionIsYes(options, "table include undefined");
    settings.runningWeight = optionIsYes(options, "table running weight");
    settings.showTotal = optionIsYes(options, "table total");
    return settings;
}

struct TableRow {
    std::size_t count = 0;
    Decimal sum;
    // What the row shows and its bar measures: the sum, or the average with "average bar".
    Decimal weight;
    Decimal smallest;
    Decimal largest;
};

std::vector<TableRow> rowsOf(const ScaledOutcomes& scaled, const std::vector<std::size_t>& sizes,
                             bool average, bool descending) {
    std::vector<TableRow> rows;
    rows.reserve(sizes.size());
    std::size_t next = 0;
    for (const std::size_t size : sizes) {
        TableRow row;
        row.count = size;
        for (std::size_t i = next; i < next + size; ++i) {
            row.sum = row.sum + scaled.outcomes[i].weight();
        }
        row.weight =
            average ? row.sum / Decimal::decimalNumberWithInteger(static_cast<std::int64_t>(size))
                    : row.sum;
        const Decimal& first = scaled.outcomes[next].quantity();
        const Decimal& last = scaled.outcomes[next + size - 1].quantity();
        row.smallest = descending ? last : first;
        row.largest = descending ? first : last;
        rows.push_back(row);
        next += size;
    }
    return rows;
}

// The heaviest row, the first of equals in table order.
const TableRow& heaviestRow(const std::vector<TableRow>& rows) {
    return *std::max_element(rows.begin(), rows.end(), [](const TableRow& a, const TableRow& b) {
        return a.weight.compare(b.weight) < 0;
    });
}

std::string barOf(const std::string& barString, const Decimal& weight, const Decimal& scale,
                  int maxBar) {
    // The bar length is a display matter, so binary floating point is good enough.
    const double length =
        std::floor(weight.doubleValue() / scale.doubleValue() * static_cast<double>(maxBar) + 0.5);
    std::string bar;
    if (!(length > 0.0)) {
        return bar;
    }
    // A fixed bar scale far below the row weights could ask for billions of characters.
    constexpr double kMaxBarCharacters = 100000.0;
    if (length * static_cast<double>(barString.size()) > kMaxBarCharacters) {
        throw CalculationTooLarge("a table bar would be longer than 100000 characters");
    }
    const auto count = static_cast<std::size_t>(length);
    bar.reserve(count * barString.size());
    for (std::size_t i = 0; i < count; ++i) {
        bar += barString;
    }
    return bar;
}

void appendCount(ReportWriter& out, std::size_t count) {
    out.string(" (", "interval");
    out.string(std::to_string(count), "interval");
    out.string(")", "interval");
}

void appendTotals(ReportWriter& out, const TableSettings& settings, const ScaledOutcomes& scaled,
                  bool grouped, bool percent) {
    const bool undefinedColumns = scaled.hasUndefined && settings.includeUndefined;
    const int places = settings.weightPrecision;
    if (settings.showTotal) {
        if (undefinedColumns) {
            out.string("Defined ", "item");
        }
        out.string("Total:\n" + std::string(23, ' '), "item");
        appendWeight(out, scaled.total, places, "weight", percent);
        if (undefinedColumns) {
            out.string(std::string(18, ' '), "default");
            appendWeight(out, scaled.definedTotal, places, "total weight", percent);
        }
        out.string("\n", "default");
    }
    if (undefinedColumns) {
        out.string("undefined" + std::string(34, ' '), "undefined");
        if (grouped) {
            out.string(kRangeWidth, "default");
        }
        appendWeight(out, scaled.undefinedWeight, places, "total weight", percent);
        if (settings.averageBar && grouped) {
            appendCount(out, 1);
        }
        if (settings.runningWeight) {
            out.string(kColumnGap, "default");
            appendWeight(out, scaled.total, places, "running total weight", percent);
        }
        out.string("\n", "default");
    }
    if (settings.showTotal) {
        if (undefinedColumns) {
            out.string("Grand Total:\n" + std::string(47, ' '), "item");
            appendWeight(out, scaled.total, places, "total weight", percent);
        }
        out.string("\n", "default");
    }
}

}  // namespace

TableGrouping tableGrouping(std::size_t outcomes, std::size_t maxRows) {
    // A limit of zero rows could never be met; the table always has room for one.
    const std::size_t limit = std::max<std::size_t>(maxRows, 1);
    TableGrouping grouping;
    if (limit >= outcomes) {
        grouping.rowSizes.assign(outcomes, 1);
        return grouping;
    }
    // Ends by g = n at the latest, where one row holds everything.
    for (std::size_t g = 2;; ++g) {
        if (layoutFits(outcomes, g, limit, grouping.rowSizes)) {
            grouping.groupSize = g;
            return grouping;
        }
    }
}

std::vector<std::size_t> tableRowSizes(std::size_t outcomes, std::size_t maxRows) {
    return tableGrouping(outcomes, maxRows).rowSizes;
}

ScaledOutcomes scaledOutcomes(const Profile& profile, const Decimal& total, bool descending) {
    ScaledOutcomes scaled;
    scaled.total = total;
    scaled.hasUndefined = !profile.isAlwaysDefined();
    if (scaled.hasUndefined) {
        // Scaling the whole profile to T multiplies every weight by T / total weight.
        scaled.undefinedWeight = profile.undefinedWeight() * (total / profile.totalWeight());
    }
    scaled.definedTotal = total - scaled.undefinedWeight;
    scaled.definedFraction = scaled.definedTotal / total;

    // A fresh profile of the defined outcomes, so that they alone sum to T.
    Profile defined = profile.definedProfile();
    defined.scaleToTotalWeight(total);
    scaled.outcomes = defined.definedEvaluations();
    if (descending) {
        std::reverse(scaled.outcomes.begin(), scaled.outcomes.end());
    }
    return scaled;
}

const ScaledOutcomes& ScaledOutcomesCache::scaled(const Decimal& total, bool descending) {
    // The same total to the bit, not only in value: the scaled weights keep its form.
    const auto sameForm = [](const Decimal& a, const Decimal& b) {
        return a.isNotANumber() == b.isNotANumber() && a.isNegative() == b.isNegative() &&
               a.exponent() == b.exponent() && a.mantissaHigh() == b.mantissaHigh() &&
               a.mantissaLow() == b.mantissaLow();
    };
    if (!m_scaled || m_descending != descending || !sameForm(m_scaled->total, total)) {
        m_scaled = scaledOutcomes(m_profile, total, descending);
        m_descending = descending;
    }
    return *m_scaled;
}

std::size_t tableRowLimit(const Profile& profile, const Options& options) {
    int limit = optionInteger(options, "table max height");
    if (!profile.isAlwaysDefined()) {
        // The undefined row takes one of the rows.
        --limit;
    }
    return static_cast<std::size_t>(std::max(limit, 1));
}

void appendWeight(ReportWriter& out, const Decimal& value, int precision, std::string_view style,
                  bool percent) {
    out.decimal(value, precision, style);
    if (percent) {
        out.string("%", "percent");
    }
}

StyledText tableWithOptions(const Profile& profile, const Options* options, const Styles& styles,
                            ScaledOutcomesCache* cache) {
    ReportWriter out(styles);
    if (options == nullptr) {
        return out.take();
    }
    if (!profile.isDefined()) {
        out.string("undefined\n", "undefined");
        return out.take();
    }
    const TableSettings settings = readSettings(profile, *options);
    ScaledOutcomesCache own(profile);
    const ScaledOutcomes& scaled =
        (cache != nullptr ? *cache : own).scaled(settings.total, settings.descending);
    const TableGrouping grouping = tableGrouping(scaled.outcomes.size(), settings.maxRows);
    const std::vector<TableRow> rows =
        rowsOf(scaled, grouping.rowSizes, settings.averageBar, settings.descending);

    const bool grouped = grouping.groupSize > 1;
    const bool percent = scaled.total == Decimal::decimalNumberWithInteger(100);
    const bool undefinedColumns = scaled.hasUndefined && settings.includeUndefined;
    const bool showCount = settings.averageBar && grouped;
    const int places = settings.weightPrecision;

    Decimal barScale = settings.relativeBar ? heaviestRow(rows).weight : scaled.total;
    if (settings.setMaxWeight) {
        barScale = settings.maxWeight;
    }

    Decimal running;
    for (const TableRow& row : rows) {
        running = running + row.sum;
        out.string(barOf(settings.barString, row.weight, barScale, settings.maxBar), "bar");
        if (row.count == 1) {
            out.decimal(row.smallest, settings.precision, "quantity");
            if (grouped) {
                out.string(kRangeWidth, "default");
            }
        } else {
            out.decimal(row.smallest, settings.precision, "quantity");
            out.string("..", "default");
            out.decimal(row.largest, settings.precision, "quantity");
        }
        out.string(kColumnGap, "default");
        appendWeight(out, row.weight, places, "weight", percent);
        if (showCount) {
            appendCount(out, row.count);
        }
        if (settings.runningWeight) {
            out.string(kColumnGap, "default");
            appendWeight(out, running, places, "running weight", percent);
        }
        if (undefinedColumns) {
            out.string(kColumnGap, "default");
            appendWeight(out, row.weight * scaled.definedFraction, places, "total weight", percent);
            if (showCount) {
                appendCount(out, row.count);
            }
            if (settings.runningWeight) {
                out.string(kColumnGap, "default");
                appendWeight(out, running * scaled.definedFraction, places, "running total weight",
                             percent);
            }
        }
        out.string("\n", "default");
    }
    appendTotals(out, settings, scaled, grouped, percent);
    return out.take();
}

Evaluation maxBarEvaluationWithOptions(const Profile& profile, const Options* options) {
    if (options == nullptr || !profile.isDefined()) {
        return Evaluation{Decimal::zero(), Decimal::zero()};
    }
    const TableSettings settings = readSettings(profile, *options);
    const ScaledOutcomes scaled = scaledOutcomes(profile, settings.total, settings.descending);
    const std::vector<TableRow> rows =
        rowsOf(scaled, tableRowSizes(scaled.outcomes.size(), settings.maxRows), settings.averageBar,
               settings.descending);
    const TableRow& heaviest = heaviestRow(rows);
    return Evaluation{heaviest.smallest, heaviest.weight};
}

}  // namespace talvex::core
