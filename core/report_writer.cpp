#include "core/report_writer.h"

namespace talvex::core {

std::string decimalString(const Decimal& value, int precision) {
    return value.decimalRound(precision).stringValue();
}

void ReportWriter::string(std::string_view text, std::string_view style) {
    const auto found = m_styles->find(style);
    m_text.append(text, found == m_styles->end() ? std::optional<TextAttributes>()
                                                 : std::optional<TextAttributes>(found->second));
}

void ReportWriter::decimal(const Decimal& value, int precision, std::string_view style) {
    string(decimalString(value, precision), style);
}

void ReportWriter::decimalOrUndefined(const Decimal& value, int precision, std::string_view style) {
    if (value.isNotANumber()) {
        undefined();
    } else {
        decimal(value, precision, style);
    }
}

}  // namespace talvex::core
