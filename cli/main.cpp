// talvex-cli: exact dice distributions from the command line.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "app/startup.h"
#include "cli/function_help.h"
#include "cli/json_output.h"
#include "cli/terminal_output.h"
#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "core/report.h"
#include "core/report_options.h"
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
    bool colour = false;
    talvex::core::Options options;
};

// The report options: the chosen sections (by default title, statistics and table), then
// every --option KEY=VALUE, which wins over the sections.
talvex::core::Options reportOptions(const std::vector<std::string>& sections,
                                    const std::vector<std::string>& assignments) {
    talvex::core::Options options;
    if (sections.empty()) {
        options["title"] = "yes";
        options["statistics"] = "yes";
        options["table"] = "yes";
    }
    for (const std::string& section : sections) {
        options[section] = "yes";
    }
    for (const std::string& assignment : assignments) {
        const auto equals = assignment.find('=');
        options[assignment.substr(0, equals)] =
            equals == std::string::npos ? std::string() : assignment.substr(equals + 1);
    }
    return options;
}

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

// An expression as a message names it: long texts are cut, so that a message stays a line.
std::string shortened(const std::string& text) {
    constexpr std::size_t kLongest = 80;
    return text.size() <= kLongest ? text : text.substr(0, kLongest) + "...";
}

bool shouldColourOutput(const std::string& mode) {
    return talvex::cli::shouldColour(
        mode, isatty(STDOUT_FILENO) == 1,
        std::getenv("NO_COLOR") != nullptr && *std::getenv("NO_COLOR") != '\0');
}

// Builds and prints one expression; false when the calculation could not be finished.
bool evaluate(const std::string& text, const Settings& settings,
              ExpressionDictionary& expressions) {
    std::string problem;
    try {
        const auto expression = Expression::expressionWithString(text, expressions);
        talvex::core::Profile profile = expression->profile();
        // Each roll walks the outcomes and is kept until printed.
        constexpr double kMaxRollWork = 200'000'000;
        if (static_cast<double>(settings.rolls) *
                static_cast<double>(profile.evaluations().size()) >
            kMaxRollWork) {
            throw talvex::core::CalculationTooLarge(
                "that many rolls of this many outcomes take too long");
        }
        std::vector<talvex::core::Evaluation> rolls;
        for (int i = 0; i < settings.rolls; ++i) {
            rolls.push_back(profile.evaluation());
        }
        if (settings.json) {
            auto object = talvex::cli::profileJson(expression->rawString(), profile);
            object["statistics"] = talvex::cli::statisticsJson(profile);
            if (settings.rolls > 0) {
                object["rolls"] = talvex::cli::rollsJson(rolls);
            }
            // Text that is not valid UTF-8 is shown with replacement characters, not refused.
            std::cout << object.dump(-1, ' ', false,
                                     nlohmann::ordered_json::error_handler_t::replace)
                      << '\n';
        } else {
            if (settings.rolls > 0) {
                std::cout << "rolls:";
                for (const auto& roll : rolls) {
                    std::cout << ' '
                              << (roll.isDefined() ? roll.quantity().stringValue() : "undefined");
                }
                std::cout << '\n';
            }
            const auto report = talvex::core::attributedProfileStringWithOptions(
                profile, &settings.options, profile.styles());
            std::cout << talvex::cli::terminalText(report, settings.colour);
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
    std::cerr << "talvex-cli: cannot calculate \"" << shortened(text) << "\": " << problem << '\n';
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    talvex::app::tuneMemoryAllocator();
    CLI::App app{"Talvex: exact probability distributions of dice expressions.", "talvex-cli"};
    Settings settings;
    app.add_option("EXPRESSION", settings.expressions,
                   "Dice expressions such as 3d6 or 5c7 (read from standard input, one per "
                   "line, when none are given; put -- before an expression that starts with -)");
    app.add_flag("--json", settings.json, "Print one JSON object per expression (JSON Lines)");
    app.add_option("--seed", settings.seed, "Seed the random generator for the rolls");
    app.add_option("--rolls", settings.rolls, "Draw N random rolls from each expression")
        ->check(CLI::Range(0, 1000000));
    std::vector<std::string> sections;
    for (const char* section : {"statistics", "table", "diagram", "legend", "roll"}) {
        app.add_flag_callback(
            std::string("--") + section, [&sections, section] { sections.emplace_back(section); },
            std::string("Show the ") + section +
                " (any of these replaces the default title, "
                "statistics and table)");
    }
    std::vector<std::string> assignments;
    app.add_option("--option", assignments,
                   "Set a report option by its name, e.g. --option \"table max height=10\" "
                   "(repeatable; bad values fall back to the defaults)")
        ->allow_extra_args(false);
    std::string colourMode = "auto";
    app.add_option("--color", colourMode, "Colour the reports: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.footer(talvex::cli::functionHelpText());
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

    settings.options = reportOptions(sections, assignments);
    settings.colour = shouldColourOutput(colourMode);
    try {
        static_cast<void>(
            talvex::core::patchOptions(&settings.options, talvex::core::defaultStyles()));
    } catch (const talvex::core::DividerListError& error) {
        std::cerr << "talvex-cli: cannot use the report options: " << error.what() << '\n';
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
        // The dictionary is only a memo: emptying it between expressions keeps a long run
        // from reaching its bound, and changes no result.
        if (expressions.size() > talvex::core::kMaxExpressions / 2) {
            expressions.clear();
        }
        if (!evaluate(text, settings, expressions)) {
            allCalculated = false;
        }
    }
    return allCalculated ? EXIT_SUCCESS : kExitCalculationFailed;
}
