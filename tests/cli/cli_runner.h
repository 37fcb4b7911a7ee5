#pragma once

// Runs the real talvex-cli binary through the shell and collects what it prints.

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace talvex::cli::testing {

struct CliRun {
    std::string out;
    int status = -1;
};

inline std::string quote(const std::string& argument) {
    std::string quoted = "'";
    for (const char c : argument) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

// Runs the binary through the shell with the given arguments (and optional standard input);
// standard error is discarded unless `captureErrors`, then it is all that is captured.
inline CliRun run(const std::vector<std::string>& arguments, const std::string& input = "",
                  bool captureErrors = false) {
    std::string command;
    if (!input.empty()) {
        command = "printf %s " + quote(input) + " | ";
    }
    command += quote(TALVEX_CLI_PATH);
    for (const auto& argument : arguments) {
        command += " " + quote(argument);
    }
    command += captureErrors ? " 2>&1 >/dev/null" : " 2>/dev/null";
    if (input.empty()) {
        command += " </dev/null";
    }
    CliRun result;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    std::array<char, 4096> buffer{};
    std::size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.out.append(buffer.data(), n);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

inline std::vector<nlohmann::json> jsonLines(const std::string& text) {
    std::vector<nlohmann::json> lines;
    std::istringstream stream(text);
    std::string line;
    while (std::getline(stream, line)) {
        lines.push_back(nlohmann::json::parse(line));
    }
    return lines;
}

}  // namespace talvex::cli::testing
