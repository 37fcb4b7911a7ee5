// Feeds arbitrary bytes to the expression parser as a typed text. Building an expression must end
// with a profile or with one of the two faults that the request boundary reports; anything else
// (another exception, a crash, a hang, a sanitizer report) is a finding.

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/expression.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        talvex::language::ExpressionDictionary expressions;
        const auto expression =
            talvex::language::Expression::expressionWithString(text, expressions);
        // Even an empty profile reports one (undefined) outcome.
        if (expression->profile().evaluations().empty()) {
            __builtin_trap();
        }
    } catch (const talvex::core::DecimalError&) {
    } catch (const talvex::core::CalculationTooLarge&) {
    }
    return 0;
}
