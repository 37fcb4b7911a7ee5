#include "cli/json_output.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cli/finding_output.h"

namespace talvex::cli {

using core::Decimal;

namespace {

// What is written is gathered into blocks of about this size before it goes to the stream:
// a stream call per number would cost more than the numbers.
constexpr std::size_t kBlockSize = 64 * 1024;

// Whether nlohmann's serializer would write the text unchanged between its quotes. Decimal
// texts, nearly all of what is written, always are.
bool needsNoEscaping(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\';
    });
}

// One line of JSON, written piece by piece. Every string comes out exactly as nlohmann's
// serializer writes it in a compact dump (no ASCII escaping, invalid UTF-8 replaced), so the
// line is the same as that of a document built first and dumped.
class JsonLine {
  public:
    explicit JsonLine(std::ostream& out) : m_out(out) { m_block.reserve(kBlockSize * 2); }

    void raw(std::string_view text) {
        m_block += text;
        if (m_block.size() >= kBlockSize) {
            spill();
        }
    }

    void string(std::string_view text) {
        if (needsNoEscaping(text)) {
            m_block += '"';
            m_block += text;
            raw("\"");
        } else {
            raw(nlohmann::json(std::string(text))
                    .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
        }
    }

    // A number's text, written straight into the block: Decimal texts need no escaping.
    void decimal(const Decimal& value) {
        m_block += '"';
        value.appendStringValue(m_block);
        raw("\"");
    }

    void quantity(const Decimal& value) {
        if (value.isNotANumber()) {
            raw("null");
        } else {
            decimal(value);
        }
    }

    void number(std::size_t value) { raw(std::to_string(value)); }

    template <typename Values>
    void quantities(const Values& values) {
        raw("[");
        bool first = true;
        for (const Decimal& value : values) {
            if (!first) {
                raw(",");
            }
            first = false;
            quantity(value);
        }
        raw("]");
    }

    // Ends the line and hands the rest to the stream.
    void finish() {
        m_block += '\n';
        spill();
    }

  private:
    void spill() {
        m_out.write(m_block.data(), static_cast<std::streamsize>(m_block.size()));
        m_block.clear();
    }

    std::ostream& m_out;
    std::string m_block;
};

// The summary numbers, undefined (NaN) where there is none.
struct Statistics {
    Decimal mean;
    Decimal variance;
    Decimal standardDeviation;
    Decimal meanDeviation;
    Decimal median;
    std::vector<Decimal> mode;
    std::vector<Decimal> modeIncludingUndefined;
    std::array<Decimal, 2> range;
    Decimal values;
};

Statistics statisticsOf(const core::Profile& profile, const Decimal& total) {
    // A statistic that leaves the 38-digit range (the variance of outcomes near 1E100) is
    // null like an undefined one; the distribution itself is still printed. The total weight
    // and the mean are worked out once: where one of them fails, every average that starts
    // from it would have failed too.
    const auto guarded = [](auto statistic) {
        try {
            return statistic();
        } catch (const core::DecimalError&) {
            return Decimal::notANumber();
        }
    };
    const Decimal mean = guarded([&] { return profile.mean(total); });
    const bool meanFailed = profile.isDefined() && mean.isNotANumber();
    const auto fromMean = [&](auto statistic) {
        return meanFailed ? Decimal::notANumber() : guarded(statistic);
    };
    const Decimal variance = fromMean([&] { return profile.variance(mean, total); });
    return {
        mean,
        variance,
        profile.isDefined() ? core::Profile::standardDeviationOf(variance) : Decimal::notANumber(),
        fromMean([&] { return profile.meanDeviation(mean, total); }),
        profile.median(),
        profile.mode(),
        profile.modeIncludingUndefined(),
        profile.range(),
        profile.values()};
}

// Throws what dividing any of the weights by the total would throw. Weights are never
// negative and the quotient grows with the weight, so the smallest and the largest stand
// for all of them.
void checkProbabilities(const std::vector<core::Evaluation>& outcomes, const Decimal& total) {
    const auto [smallest, largest] = std::minmax_element(
        outcomes.begin(), outcomes.end(), [](const core::Evaluation& a, const core::Evaluation& b) {
            return a.weightCompare(b) < 0;
        });
    if (smallest != outcomes.end()) {
        static_cast<void>(smallest->weight() / total);
        static_cast<void>(largest->weight() / total);
    }
}

void writeLabel(JsonLine& line, std::string_view typed) {
    if (const auto label = labelOf(typed)) {
        line.raw(",\"label\":");
        line.string(*label);
    }
}

// Offsets in bytes of the typed text, the column in its characters as on standard error.
void writeDiagnostics(JsonLine& line, std::string_view typed,
                      const std::vector<language::Finding>& findings) {
    if (findings.empty()) {
        return;
    }
    const CharacterColumns columns(typed);
    line.raw(",\"diagnostics\":[");
    bool first = true;
    for (const language::Finding& finding : findings) {
        line.raw(first ? "{\"severity\":" : ",{\"severity\":");
        first = false;
        line.string(severityName(finding.severity));
        line.raw(",\"begin\":");
        line.number(finding.begin);
        line.raw(",\"end\":");
        line.number(finding.end);
        line.raw(",\"column\":");
        line.number(columns.column(finding.begin));
        line.raw(",\"message\":");
        line.string(finding.message);
        if (const auto& suggestion = finding.suggestion) {
            line.raw(",\"suggestion\":{\"begin\":");
            line.number(suggestion->begin);
            line.raw(",\"end\":");
            line.number(suggestion->end);
            line.raw(",\"replacement\":");
            line.string(suggestion->replacement);
            line.raw(",\"reason\":");
            line.string(suggestion->reason);
            line.raw(",\"text\":");
            line.string(language::applySuggestion(typed, *suggestion));
            line.raw("}");
        }
        line.raw("}");
    }
    line.raw("]");
}

}  // namespace

std::optional<std::string> labelOf(std::string_view typed) {
    const auto colon = typed.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::string_view label = typed.substr(0, colon);
    const auto start = label.find_first_not_of(kBlanks);
    if (start == std::string_view::npos) {
        return std::nullopt;
    }
    return std::string(label.substr(start, label.find_last_not_of(kBlanks) + 1 - start));
}

void writeFailureJson(std::ostream& out, const std::string& expression, const std::string& error,
                      std::string_view typed, const std::vector<language::Finding>& findings) {
    JsonLine line(out);
    line.raw("{\"expression\":");
    line.string(expression);
    writeLabel(line, typed);
    line.raw(",\"error\":");
    line.string(error);
    writeDiagnostics(line, typed, findings);
    line.raw("}");
    line.finish();
}

void writeResultJson(std::ostream& out, const std::string& expression, const core::Profile& profile,
                     const std::vector<core::Evaluation>* rolls, std::string_view typed,
                     const std::vector<language::Finding>& findings) {
    const Decimal total = profile.totalWeight();
    const std::vector<core::Evaluation> outcomes = profile.evaluations();
    checkProbabilities(outcomes, total);
    const Statistics statistics = statisticsOf(profile, total);

    JsonLine line(out);
    line.raw("{\"expression\":");
    line.string(expression);
    writeLabel(line, typed);
    line.raw(",\"comparator\":");
    line.string(profile.comparatorString());
    line.raw(",\"total_weight\":");
    line.decimal(total);
    line.raw(",\"outcomes\":[");
    bool first = true;
    for (const core::Evaluation& outcome : outcomes) {
        line.raw(first ? "{\"quantity\":" : ",{\"quantity\":");
        first = false;
        line.quantity(outcome.quantity());
        line.raw(",\"weight\":");
        line.decimal(outcome.weight());
        line.raw(",\"probability\":");
        line.decimal(outcome.weight() / total);
        line.raw("}");
    }
    line.raw("],\"statistics\":{\"mean\":");
    line.quantity(statistics.mean);
    line.raw(",\"variance\":");
    line.quantity(statistics.variance);
    line.raw(",\"standard_deviation\":");
    line.quantity(statistics.standardDeviation);
    line.raw(",\"mean_deviation\":");
    line.quantity(statistics.meanDeviation);
    line.raw(",\"median\":");
    line.quantity(statistics.median);
    line.raw(",\"mode\":");
    line.quantities(statistics.mode);
    line.raw(",\"mode_including_undefined\":");
    line.quantities(statistics.modeIncludingUndefined);
    line.raw(",\"range\":");
    line.quantities(statistics.range);
    line.raw(",\"values\":");
    line.quantity(statistics.values);
    line.raw("}");
    if (rolls != nullptr) {
        line.raw(",\"rolls\":[");
        first = true;
        for (const core::Evaluation& roll : *rolls) {
            if (!first) {
                line.raw(",");
            }
            first = false;
            line.quantity(roll.quantity());
        }
        line.raw("]");
    }
    writeDiagnostics(line, typed, findings);
    line.raw("}");
    line.finish();
}

}  // namespace talvex::cli
