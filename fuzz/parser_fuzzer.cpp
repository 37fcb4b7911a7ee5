// Feeds arbitrary bytes to the expression parser as a typed text. Building an expression must end
// with a profile or with one of the two faults that the request boundary reports; anything else
// (another exception, a crash, a hang, a sanitizer report) is a finding.
//
// With TALVEX_FUZZ_SHORT_NUMBERS set in the environment, inputs with a run of three or more
// digits are skipped: large dice spend their time in the distribution arithmetic, not in the
// parser, and would otherwise fill a campaign with slow units.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/expression.h"

namespace {

bool hasLongNumber(const std::string& text) {
    std::size_t run = 0;
    for (const char c : text) {
        run = (c >= '0' && c <= '9') ? run + 1 : 0;
        if (run >= 3) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (std::getenv("TALVEX_FUZZ_SHORT_NUMBERS") != nullptr && hasLongNumber(text)) {
        return 0;
    }
    try {
        talvex::language::ExpressionDictionary expressions;
        talvex::language::RequestContext context(expressions);
        const auto expression = talvex::language::Expression::expressionWithString(text, context);
        // Even an empty profile reports one (undefined) outcome.
        if (expression->profile().evaluations().empty()) {
            __builtin_trap();
        }
    } catch (const talvex::core::DecimalError&) {
    } catch (const talvex::core::CalculationTooLarge&) {
    }
    return 0;
}
