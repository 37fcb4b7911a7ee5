// talvex-cli: exact dice distributions from the command line.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "app/request.h"
#include "app/startup.h"
#include "cli/exit_status.h"
#include "cli/finding_output.h"
#include "cli/function_help.h"
#include "cli/json_output.h"
#include "cli/language_help.h"
#include "cli/option_list.h"
#include "cli/request_watch.h"
#include "cli/terminal_output.h"
#include "core/report_options.h"
#include "core/styles.h"
#include "expressions/diagnostics.h"
#include "expressions/expression.h"
#include "kernels/definitions.h"

namespace {

using talvex::app::CalculationSession;
using talvex::cli::kExitCalculationFailed;
using talvex::cli::kExitErrorFinding;
using talvex::cli::kExitInterrupted;
using talvex::cli::kExitUsage;
using talvex::language::Finding;

static_assert(talvex::cli::RequestWatch::kInterruptedStatus == talvex::cli::kExitInterrupted);
// The order main() tests them in, which --help states.
static_assert(talvex::cli::kExitPrecedence ==
              std::array{kExitUsage, kExitInterrupted, kExitCalculationFailed, kExitErrorFinding});

struct Settings {
    std::vector<std::string> expressions;
    bool json = false;
    std::optional<double> timeout;
    std::optional<long long> seed;
    int rolls = 0;
    bool colour = false;
    bool diagnostics = true;
    // Whether the findings are shown under the text, for a reader at a terminal.
    bool markFindings = false;
    talvex::core::Options options;
};

// What became of one expression.
struct Outcome {
    bool calculated = false;
    bool errorFound = false;
};

std::string optionName(const std::string& assignment) {
    return assignment.substr(0, assignment.find('='));
}

// The report options: the chosen sections, then every --option KEY=VALUE, which wins over
// them. With no section chosen the report is the title, the statistics and the table, unless
// rolls are asked for: then they are all that is printed. The roll section beside anything
// else carries its heading, so that its number is not read as a line of a table or diagram.
talvex::core::Options reportOptions(const std::vector<std::string>& sections,
                                    const std::vector<std::string>& assignments, int rolls) {
    talvex::core::Options options;
    if (sections.empty() && rolls == 0) {
        options["title"] = "yes";
        options["statistics"] = "yes";
        options["table"] = "yes";
    }
    for (const std::string& section : sections) {
        options[section] = "yes";
    }
    const auto isRoll = [](const std::string& section) { return section == "roll"; };
    if (std::any_of(sections.begin(), sections.end(), isRoll) &&
        (rolls > 0 || !std::all_of(sections.begin(), sections.end(), isRoll))) {
        options["roll heading"] = "yes";
    }
    for (const std::string& assignment : assignments) {
        const auto equals = assignment.find('=');
        options[optionName(assignment)] =
            equals == std::string::npos ? std::string() : assignment.substr(equals + 1);
    }
    return options;
}

// A name the reports do not know is a typing mistake that would otherwise go unnoticed.
bool checkOptionNames(const std::vector<std::string>& assignments) {
    for (const std::string& assignment : assignments) {
        const std::string name = optionName(assignment);
        if (!talvex::cli::isReportOptionName(name)) {
            std::cerr << "talvex-cli: there is no report option \""
                      << talvex::cli::terminalSafe(talvex::app::shortenedForMessage(name), false)
                      << "\"; the nearest is \"" << talvex::cli::nearestReportOptionName(name)
                      << "\" (--list-options shows them all)\n";
            return false;
        }
    }
    return true;
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

// A positive, finite number of seconds. CLI::PositiveNumber would let "nan" through.
std::string checkSeconds(const std::string& text) {
    double seconds = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc() || stop != end || !std::isfinite(seconds) || seconds <= 0) {
        return "must be a positive number of seconds, such as 10 or 0.5";
    }
    return {};
}

bool shouldColourOutput(const std::string& mode) {
    return talvex::cli::shouldColour(
        mode, isatty(STDOUT_FILENO) == 1,
        std::getenv("NO_COLOR") != nullptr && *std::getenv("NO_COLOR") != '\0');
}

// The expression as a message names it on a terminal.
std::string messageName(const std::string& text) {
    return talvex::cli::terminalSafe(talvex::app::shortenedForMessage(text), false);
}

// Looks the text over, and tells the findings on standard error unless they go in the JSON.
// They come before the result, and before a calculation that may take a while.
std::vector<Finding> lookOver(const std::string& text, const Settings& settings) {
    if (!settings.diagnostics) {
        return {};
    }
    std::vector<Finding> findings = talvex::language::diagnose(text);
    if (!settings.json && !findings.empty()) {
        std::cerr << talvex::cli::findingLines(messageName(text), text, findings,
                                               settings.markFindings);
    }
    return findings;
}

// Looks over, calculates and prints one expression.
Outcome evaluate(const std::string& text, const Settings& settings, CalculationSession& session) {
    const std::vector<Finding> findings = lookOver(text, settings);
    Outcome outcome;
    outcome.errorFound = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == talvex::language::Severity::error;
    });
    const auto problem = talvex::app::attempt([&] {
        auto result = session.calculate(text, settings.rolls);
        if (settings.json) {
            talvex::cli::writeResultJson(std::cout, result.expression->rawString(), result.profile,
                                         settings.rolls > 0 ? &result.rolls : nullptr, text,
                                         findings);
        } else {
            // The title is typed text: on a terminal it may not hold commands, nor tabs and
            // line breaks that would pass for the report's own.
            result.profile.setTitleString(
                talvex::cli::terminalSafe(result.profile.titleString(), false));
            const auto report = CalculationSession::report(result.profile, settings.options);
            if (settings.rolls > 0) {
                // Labelled beside a report; alone, the bare numbers on one line.
                const char* separator = report.empty() ? "" : "rolls: ";
                for (const auto& roll : result.rolls) {
                    std::cout << separator
                              << (roll.isDefined() ? roll.quantity().stringValue() : "undefined");
                    separator = " ";
                }
                std::cout << '\n';
            }
            std::cout << talvex::cli::terminalText(report, settings.colour);
        }
    });
    // What is finished goes out before the next calculation starts: Ctrl-C then loses nothing
    // of it, and a reader of the pipe sees each result as it comes.
    std::cout.flush();
    if (!problem) {
        outcome.calculated = true;
        return outcome;
    }
    std::cerr << "talvex-cli: cannot calculate \"" << messageName(text) << "\": " << *problem
              << '\n';
    // A JSON reader gets a line for every expression, so that it can pair them.
    if (settings.json) {
        talvex::cli::writeFailureJson(std::cout, talvex::language::Expression::cleanString(text),
                                      *problem, text, findings);
        std::cout.flush();
    }
    return outcome;
}

}  // namespace

int main(int argc, char** argv) {
    talvex::app::tuneMemoryAllocator();
    CLI::App app{"Talvex: exact probability distributions of dice expressions.", "talvex-cli"};
    Settings settings;
    app.add_option("EXPRESSION", settings.expressions,
                   "Dice expressions such as 3d6 or 5c7 (read from standard input, one per "
                   "line, when none are given; put -- before an expression that starts with -)");
    app.add_flag("--json", settings.json,
                 "Print one JSON object per expression (JSON Lines), with \"error\" for one that "
                 "could not be calculated; findings go in its \"diagnostics\", not to standard "
                 "error");
    bool noDiagnostics = false;
    app.add_flag("--no-diagnostics", noDiagnostics,
                 "Do not look the expressions over for likely mistakes: no findings on standard "
                 "error or in the JSON, and no exit status 4");
    app.add_option("--seed", settings.seed, "Seed the random generator for the rolls");
    app.add_option("--timeout", settings.timeout,
                   "Stop each expression that has calculated for SECONDS (fractions allowed); "
                   "it is reported as too large and the others are still calculated")
        ->type_name("SECONDS")
        ->check(CLI::Validator(checkSeconds, ""));
    app.add_option("--rolls", settings.rolls,
                   "Draw N random rolls from each expression; without a report section, only "
                   "the rolls are printed, one line per expression")
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
                   "(repeatable; an unknown name is an error, bad values fall back to the "
                   "defaults)")
        ->allow_extra_args(false);
    bool listOptions = false;
    app.add_flag("--list-options", listOptions,
                 "Print every report option with its default and the values it takes, and exit");
    std::string colourMode = "auto";
    app.add_option("--color", colourMode, "Colour the reports: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.footer(talvex::cli::diceLetterHelpText() + '\n' + talvex::cli::comparatorHelpText() + '\n' +
               talvex::cli::functionHelpText() + '\n' + talvex::cli::statisticsHelpText() + '\n' +
               talvex::cli::diagnosticsHelpText() + '\n' + talvex::cli::exitStatusHelpText());
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

    if (listOptions) {
        std::cout << talvex::cli::optionListText();
        return EXIT_SUCCESS;
    }
    if (!checkOptionNames(assignments)) {
        return kExitUsage;
    }
    settings.options = reportOptions(sections, assignments, settings.rolls);
    settings.colour = shouldColourOutput(colourMode);
    settings.diagnostics = !noDiagnostics;
    settings.markFindings = isatty(STDERR_FILENO) == 1;
    try {
        static_cast<void>(
            talvex::core::patchOptions(&settings.options, talvex::core::defaultStyles()));
    } catch (const talvex::core::DividerListError& error) {
        std::cerr << "talvex-cli: cannot use the report options: " << error.what() << '\n';
        return kExitUsage;
    }

    // From here on Ctrl-C cancels the expression being calculated, or ends the program when
    // none is; no other thread may start before this one blocks SIGINT.
    std::optional<talvex::cli::RequestWatch::Seconds> timeLimit;
    if (settings.timeout) {
        timeLimit = talvex::cli::RequestWatch::Seconds(*settings.timeout);
    }
    talvex::cli::RequestWatch watch(timeLimit);

    talvex::language::KVTXInitializeDefinitions();
    if (settings.seed) {
        srandom(static_cast<unsigned>(*settings.seed));
    }
    if (settings.expressions.empty()) {
        settings.expressions = readExpressions(std::cin);
    }
    // One session for the whole run, so that what one expression built serves the next ones.
    CalculationSession session;
    session.setRunner(&watch);
    bool allCalculated = true;
    bool errorFound = false;
    for (const std::string& text : settings.expressions) {
        const Outcome outcome = evaluate(text, settings, session);
        allCalculated = allCalculated && outcome.calculated;
        errorFound = errorFound || outcome.errorFound;
    }
    // The gravest status that applies, in the order of kExitPrecedence.
    if (watch.interrupted()) {
        return kExitInterrupted;
    }
    if (!allCalculated) {
        return kExitCalculationFailed;
    }
    return errorFound ? kExitErrorFinding : EXIT_SUCCESS;
}
