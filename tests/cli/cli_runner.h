#pragma once

// Runs the real talvex-cli binary, through the shell or beside the test, and collects what it
// prints.

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
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
// What a shell command writes to its standard output, and its exit status.
inline CliRun runShell(const std::string& command) {
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

// The lines of a text, without their line breaks.
inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    std::string line;
    while (std::getline(stream, line)) {
        lines.push_back(line);
    }
    return lines;
}

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
    return runShell(command);
}

// What a process started with CliProcess printed, and how it ended.
struct CliProcessResult {
    std::string out;
    std::string errors;
    // The exit status; -1 when it did not exit by itself (a signal ended it, or it had to be
    // killed because it did not end in time).
    int status = -1;
};

// The binary running beside the test, for what happens only while it runs: signals, and a
// standard input that stays open (a pipe, open until closeInput() or the end).
class CliProcess {
  public:
    using Clock = std::chrono::steady_clock;

    // Starts it with the given arguments; SIGINT as in a terminal, or ignored as in a
    // background job of a script.
    explicit CliProcess(const std::vector<std::string>& arguments, bool interruptsIgnored = false) {
        std::vector<std::string> words = {TALVEX_CLI_PATH};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        std::array<int, 2> input{-1, -1};
        std::array<int, 2> output{-1, -1};
        std::array<int, 2> errors{-1, -1};
        const bool piped = pipe2(input.data(), O_CLOEXEC) == 0 &&
                           pipe2(output.data(), O_CLOEXEC) == 0 &&
                           pipe2(errors.data(), O_CLOEXEC) == 0;
        m_pid = piped ? fork() : -1;
        if (m_pid == 0) {
            dup2(input[0], STDIN_FILENO);
            dup2(output[1], STDOUT_FILENO);
            dup2(errors[1], STDERR_FILENO);
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            std::signal(SIGINT, interruptsIgnored ? SIG_IGN : SIG_DFL);
            execv(argv.front(), argv.data());
            _exit(127);
        }
        for (const int fd : {input[0], output[1], errors[1]}) {
            if (fd >= 0) {
                close(fd);
            }
        }
        m_inputPipe = input[1];
        m_outputPipe = output[0];
        m_errorPipe = errors[0];
    }

    ~CliProcess() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        for (const int fd : {m_inputPipe, m_outputPipe, m_errorPipe}) {
            if (fd >= 0) {
                close(fd);
            }
        }
    }

    CliProcess(const CliProcess&) = delete;
    CliProcess& operator=(const CliProcess&) = delete;

    [[nodiscard]] bool started() const { return m_pid > 0; }

    void closeInput() {
        if (m_inputPipe >= 0) {
            close(m_inputPipe);
            m_inputPipe = -1;
        }
    }

    void signal(int number) const {
        if (m_pid > 0) {
            kill(m_pid, number);
        }
    }

    // Reads what it prints until its standard output holds `text`; false when it ended first
    // or the time ran out.
    bool waitForOutput(const std::string& text, std::chrono::milliseconds limit) {
        const auto end = Clock::now() + limit;
        while (m_out.find(text) == std::string::npos) {
            if (!readUntil(end)) {
                return m_out.find(text) != std::string::npos;
            }
        }
        return true;
    }

    // Waits until its main thread blocks SIGINT (as Linux shows it in /proc): from then on a
    // SIGINT is the program's to handle, no longer the default that ends it.
    bool waitUntilInterruptsBlocked(std::chrono::milliseconds limit) const {
        const auto end = Clock::now() + limit;
        while (Clock::now() < end) {
            std::ifstream status("/proc/" + std::to_string(m_pid) + "/status");
            std::string line;
            while (std::getline(status, line)) {
                if (line.rfind("SigBlk:", 0) == 0 &&
                    (std::stoull(line.substr(7), nullptr, 16) & (1ULL << (SIGINT - 1))) != 0) {
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    // Waits for its end, killing it when it has not ended within the limit.
    CliProcessResult finish(std::chrono::milliseconds limit = std::chrono::seconds(120)) {
        const auto end = Clock::now() + limit;
        while (readUntil(end)) {
        }
        CliProcessResult result;
        if (m_pid > 0) {
            if (m_outputPipe >= 0 || m_errorPipe >= 0) {
                kill(m_pid, SIGKILL);
            }
            int status = 0;
            if (waitpid(m_pid, &status, 0) == m_pid && WIFEXITED(status)) {
                result.status = WEXITSTATUS(status);
            }
            m_pid = -1;
        }
        result.out = m_out;
        result.errors = m_errors;
        return result;
    }

  private:
    // Reads whatever comes before `end`; false once both outputs are closed or the time is up.
    bool readUntil(Clock::time_point end) {
        if (m_outputPipe < 0 && m_errorPipe < 0) {
            return false;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return false;
        }
        std::array<pollfd, 2> fds{pollfd{m_outputPipe, POLLIN, 0}, pollfd{m_errorPipe, POLLIN, 0}};
        if (poll(fds.data(), fds.size(), static_cast<int>(left.count())) < 0) {
            return errno == EINTR;
        }
        drain(fds[0], m_outputPipe, m_out);
        drain(fds[1], m_errorPipe, m_errors);
        return true;
    }

    static void drain(const pollfd& polled, int& fd, std::string& text) {
        if (fd < 0 || (polled.revents & (POLLIN | POLLHUP | POLLERR)) == 0) {
            return;
        }
        std::array<char, 65536> buffer{};
        const ssize_t n = read(fd, buffer.data(), buffer.size());
        if (n > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(n));
        } else if (n == 0 || errno != EINTR) {
            close(fd);
            fd = -1;
        }
    }

    pid_t m_pid = -1;
    int m_inputPipe = -1;
    int m_outputPipe = -1;
    int m_errorPipe = -1;
    std::string m_out;
    std::string m_errors;
};

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
