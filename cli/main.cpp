// talvex-cli: exact dice distributions from the command line.

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "cli/json_output.h"
#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "expressions/expression.h"
#include "kernels/definitions.h"

namespace {

using talvex::language::Expression;
using talvex::language::ExpressionDictionary;

constexpr int kExitUsage = 2;
constexpr int kExitCalculationFailed = 3;

struct Settings {
    std::vector<std::string> expressions;
    bool json = false;
    std::optional<long long> seed;
    int rolls = 0;
};

std::vector<std::string> readExpressions(std::istream& input) {
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(input, line)) {
        if (line.find_first_not_of(" \t\r\n") != std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string decimalFaultMessage(const talvex::core::DecimalError& error) {
    switch (error.fault()) {
        case talvex::core::DecimalFault::Underflow:
            return "a probability or value became too small for 38-digit arithmetic "
                   "(below 1E-128)";
        case talvex::core::DecimalFault::Overflow:
            return "a value became too large for 38-digit arithmetic (above 1E165)";
        case talvex::core::DecimalFault::DivideByZero:
            return "a division by zero occurred";
    }
    return error.what();
}

// Builds and prints one expression; false when the calculation could not be finished.
bool evaluate(const std::string& text, const Settings& settings,
              ExpressionDictionary& expressions) {
    std::string problem;
    try {
        const auto expression = Expression::expressionWithString(text, expressions);
        std::vector<talvex::core::Evaluation> rolls;
        for (int i = 0; i < settings.rolls; ++i) {
            rolls.push_back(expression->evaluation());
        }
        const talvex::core::Profile profile = expression->profile();
        if (settings.json) {
            auto object = talvex::cli::profileJson(expression->rawString(), profile);
            if (settings.rolls > 0) {
                object["rolls"] = talvex::cli::rollsJson(rolls);
            }
            std::cout << object.dump() << '\n';
        } else {
            std::cout << talvex::cli::profileText(profile);
            if (settings.rolls > 0) {
                std::cout << "rolls:";
                for (const auto& roll : rolls) {
                    std::cout << ' '
                              << (roll.isDefined() ? roll.quantity().stringValue() : "undefined");
                }
                std::cout << '\n';
            }
        }
        return true;
    } catch (const talvex::core::DecimalError& error) {
        problem = decimalFaultMessage(error);
    } catch (const talvex::core::CalculationTooLarge& error) {
        problem = error.what();
    } catch (const std::bad_alloc&) {
        problem = "the calculation needs more memory than is available";
    }
    std::cout.flush();
    std::cerr << "talvex-cli: cannot calculate \"" << text << "\": " << problem << '\n';
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Talvex: exact probability distributions of dice expressions.", "talvex-cli"};
    Settings settings;
    app.add_option("EXPRESSION", settings.expressions,
                   "Dice expressions such as 3d6 or 5c7 (read from standard input, one per "
                   "line, when none are given; put -- before an expression that starts with -)");
    app.add_flag("--json", settings.json, "Print one JSON object per expression (JSON Lines)");
    app.add_option("--seed", settings.seed, "Seed the random generator for the rolls");
    app.add_option("--rolls", settings.rolls, "Draw N random rolls from each expression")
        ->check(CLI::NonNegativeNumber);
    app.set_version_flag("--version", std::string("talvex-cli ") + TALVEX_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::cerr << "talvex-cli: " << e.what() << "\nRun with --help for the options.\n";
        return kExitUsage;
    }

    talvex::language::KVTXInitializeDefinitions();
    if (settings.seed) {
        srandom(static_cast<unsigned>(*settings.seed));
    }
    if (settings.expressions.empty()) {
        settings.expressions = readExpressions(std::cin);
    }
    ExpressionDictionary expressions;
    bool allCalculated = true;
    for (const std::string& text : settings.expressions) {
        if (!evaluate(text, settings, expressions)) {
            allCalculated = false;
        }
        if (!settings.json && settings.expressions.size() > 1) {
            std::cout << '\n';
        }
    }
    return allCalculated ? EXIT_SUCCESS : kExitCalculationFailed;
}
