#include "core/report.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/diagram.h"
#include "core/legend.h"
#include "core/report_writer.h"
#include "core/table.h"

namespace talvex::core {

namespace {

// One statistics line: label [item], separator [default], value, line break [default].
class StatisticsBlock {
  public:
    StatisticsBlock(const Profile& profile, const Options& options, ReportWriter& writer)
        : m_profile(profile),
          m_writer(writer),
          m_precision(optionInteger(options, "statistics precision")),
          m_modePrecision(optionInteger(options, "mode precision")),
          m_note(optionIsYes(options, "include undefined in statistics") &&
                 !profile.isAlwaysDefined()) {}

    // The averages, each worked out when first asked for and then kept: the total weight and
    // the mean stand in all four, and a report asks for each more than once.
    const Decimal& mean() {
        if (!m_mean) {
            m_mean = m_profile.mean(total());
        }
        return *m_mean;
    }
    const Decimal& variance() {
        if (!m_variance) {
            m_variance = m_profile.variance(mean(), total());
        }
        return *m_variance;
    }
    Decimal standardDeviation() {
        return m_profile.isDefined() ? Profile::standardDeviationOf(variance())
                                     : Decimal::notANumber();
    }
    Decimal meanDeviation() { return m_profile.meanDeviation(mean(), total()); }

    // Mean, variance and the two deviations fall back to "undefined" together, when the mean
    // is undefined.
    void average(const char* label, const char* separator, const Decimal& value) {
        begin(label, separator);
        if (mean().isNotANumber()) {
            m_writer.undefined();
        } else {
            m_writer.decimal(value, m_precision, "statistic");
            note(" excluding ");
        }
        end();
    }

    void range() {
        begin("Range", ":      \t");
        if (!m_profile.isDefined()) {
            m_writer.undefined();
        } else {
            const auto ends = m_profile.range();
            m_writer.string("[", "default");
            m_writer.decimal(ends[0], m_precision, "statistic");
            m_writer.string("..", "default");
            m_writer.decimal(ends[1], m_precision, "statistic");
            m_writer.string("]", "default");
            note(" + ");
        }
        end();
    }

    void values() {
        begin("Values", ":     \t");
        const Decimal count = m_profile.values();
        if (count.isZero()) {
            m_writer.undefined();
        } else {
            m_writer.decimal(count, m_precision, "statistic");
            note(" + ");
        }
        end();
    }

    void median() {
        begin("Median", ":    \t");
        const Decimal value = m_profile.median();
        if (value.isNotANumber()) {
            m_writer.undefined();
        } else {
            m_writer.decimal(value, m_precision, "statistic");
            note(" excluding ");
        }
        end();
    }

    void mode() {
        begin("Mode", ":\t\t");
        const std::vector<Decimal> modes =
            m_note ? m_profile.modeIncludingUndefined() : m_profile.mode();
        const bool braces = modes.size() > 1;
        if (braces) {
            m_writer.string("{", "default");
        }
        for (std::size_t i = 0; i < modes.size(); ++i) {
            if (i > 0) {
                m_writer.string(", ", "default");
            }
            m_writer.decimalOrUndefined(modes[i], m_modePrecision, "statistic");
        }
        if (braces) {
            m_writer.string("}", "default");
        }
        end();
    }

  private:
    void begin(const char* label, const char* separator) {
        m_writer.string(label, "item");
        m_writer.string(separator, "default");
    }
    void note(const char* words) {
        if (m_note) {
            m_writer.string(words, "item");
            m_writer.undefined();
        }
    }
    void end() { m_writer.string("\n", "default"); }

    const Decimal& total() {
        if (!m_total) {
            m_total = m_profile.totalWeight();
        }
        return *m_total;
    }

    const Profile& m_profile;
    std::optional<Decimal> m_total;
    std::optional<Decimal> m_mean;
    std::optional<Decimal> m_variance;
    ReportWriter& m_writer;
    int m_precision;
    int m_modePrecision;
    bool m_note;
};

void section(ReportWriter& writer, const Options& options, const char* heading,
             const char* headingOption, const StyledText& body) {
    if (optionIsYes(options, headingOption)) {
        writer.string(heading, "heading");
    }
    writer.append(body);
    writer.string("\n", "default");
}

void rollText(ReportWriter& writer, const Evaluation& roll, int precision) {
    if (roll.isDefined()) {
        writer.decimal(roll.quantity(), precision, "roll");
    } else {
        writer.string("undefined", "roll");
    }
}

}  // namespace

std::string timeStampString(const std::string& format, std::time_t now) {
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 512> buffer{};
    const std::size_t length = std::strftime(buffer.data(), buffer.size(), format.c_str(), &local);
    return std::string(buffer.data(), length);
}

StyledText statisticsWithOptions(const Profile& profile, const Options& options,
                                 const Styles& styles) {
    ReportWriter writer(styles);
    if (optionIsYes(options, "statistics heading")) {
        writer.string("STATISTICS:\n\n", "heading");
    }
    StatisticsBlock block(profile, options, writer);
    if (optionIsYes(options, "mean")) {
        block.average("Mean", ":\t\t", block.mean());
    }
    if (optionIsYes(options, "variance")) {
        block.average("Variance", ":\t\t", block.variance());
    }
    if (optionIsYes(options, "standard deviation")) {
        block.average("Stand. Dev.", ":\t", block.standardDeviation());
    }
    if (optionIsYes(options, "mean deviation")) {
        block.average("Mean Dev.", ":\t", block.meanDeviation());
    }
    if (optionIsYes(options, "range")) {
        block.range();
    }
    if (optionIsYes(options, "values")) {
        block.values();
    }
    if (optionIsYes(options, "median")) {
        block.median();
    }
    if (optionIsYes(options, "mode")) {
        block.mode();
    }
    writer.string("\n", "default");
    return writer.take();
}

StyledText attributedProfileStringWithOptions(Profile& profile, const Options* given,
                                              const Styles& styles, std::time_t now) {
    if (given == nullptr) {
        return StyledText{};
    }
    const Options options = patchOptions(given, styles);
    ReportWriter writer(styles);
    writer.string(optionString(options, "header"), optionString(options, "header style"));
    if (optionIsYes(options, "time stamp")) {
        writer.string(timeStampString(optionString(options, "time stamp format"), now), "date");
        writer.string("\n", "default");
    }
    if (optionIsYes(options, "title")) {
        writer.string(profile.titleString(), "title");
        writer.string("\n\n", "default");
    }
    if (optionIsYes(options, "statistics")) {
        writer.append(statisticsWithOptions(profile, options, styles));
    }
    ScaledOutcomesCache scaled(profile);
    if (optionIsYes(options, "table")) {
        section(writer, options, "TABLE:\n\n", "table heading",
                tableWithOptions(profile, &options, styles, &scaled));
    }
    if (optionIsYes(options, "diagram")) {
        section(writer, options, "DIAGRAM:\n\n", "diagram heading",
                diagramWithOptions(profile, &options, styles, &scaled));
    }
    if (optionIsYes(options, "legend")) {
        section(writer, options, "LEGEND:\n\n", "legend heading",
                legendWithOptions(profile, &options, styles));
    }
    if (optionIsYes(options, "roll")) {
        if (optionIsYes(options, "roll heading")) {
            writer.string("ROLL:   ", "heading");
        }
        rollText(writer, profile.evaluation(), optionInteger(options, "roll precision"));
        writer.string("\n\n", "default");
    }
    if (optionIsYes(options, "past rolls")) {
        if (optionIsYes(options, "past rolls heading")) {
            writer.string("ROLLS:   ", "heading");
        }
        const std::vector<Evaluation>& history = profile.evaluationHistory();
        const std::size_t count = std::min(
            history.size(), static_cast<std::size_t>(optionInteger(options, "past rolls number")));
        if (count > 0) {
            if (optionIsYes(options, "past rolls continuation")) {
                writer.string(", ", "roll text");
            }
            const int precision = optionInteger(options, "past rolls precision");
            // The separator goes before every roll but the newest, which follows directly.
            for (std::size_t i = history.size() - count; i < history.size(); ++i) {
                if (i + 1 < history.size()) {
                    writer.string(", ", "roll text");
                }
                rollText(writer, history[i], precision);
            }
        }
        if (!optionIsYes(options, "past rolls unfinished")) {
            writer.string("\n\n", "default");
        }
    }
    writer.string(optionString(options, "footer"), optionString(options, "footer style"));
    return writer.take();
}

}  // namespace talvex::core
