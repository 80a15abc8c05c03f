// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/TerminalProcess.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace scenario {

namespace {

constexpr int deadlineMs = 30000;

winsize sizeOf(unsigned short columns) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    return size;
}

/// libedit keeps the name and the description of a function that it was given, a few bytes, which a leak checker reports.
std::string sanitizerOptions() {
    auto const* const given = std::getenv("ASAN_OPTIONS"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return std::string("ASAN_OPTIONS=") + (given == nullptr ? "" : given) + ":detect_leaks=0";
}

} // namespace

TerminalProcess::TerminalProcess(std::vector<std::string> const& command, unsigned short columns,
                                 std::vector<std::string> const& environment) {
    std::vector<std::string> words{"/usr/bin/env", "-u", "NO_COLOR", "-u", "COLUMNS", "TERM=xterm", sanitizerOptions()};
    words.insert(words.end(), environment.begin(), environment.end());
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (auto& word : words) { arguments.push_back(word.data()); }
    arguments.push_back(nullptr);
    auto size = sizeOf(columns);
    pid_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
    if (pid_ < 0) { throw std::runtime_error("no terminal"); }
    if (pid_ == 0) {
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
}

TerminalProcess::~TerminalProcess() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    ::close(terminal_);
}

void TerminalProcess::type(std::string const& keys) const {
    if (::write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::runtime_error("the terminal takes no keys");
    }
}

void TerminalProcess::resize(unsigned short columns) const {
    auto const size = sizeOf(columns);
    ::ioctl(terminal_, TIOCSWINSZ, &size);
}

bool TerminalProcess::editsLines() const {
    termios settings{};
    if (::tcgetattr(terminal_, &settings) != 0) { throw std::runtime_error("the terminal tells no settings"); }
    return (settings.c_lflag & ICANON) != 0 && (settings.c_lflag & ECHO) != 0;
}

void TerminalProcess::signal(int signal) const { ::kill(pid_, signal); }

/// False at the end: when the last process has closed the terminal, reading fails.
bool TerminalProcess::readMore() {
    pollfd ready{terminal_, POLLIN, 0};
    if (::poll(&ready, 1, deadlineMs) != 1) { throw std::runtime_error("nothing more is shown: " + shown_); }
    char buffer[4096];
    auto const size = ::read(terminal_, buffer, sizeof buffer);
    if (size > 0) { shown_.append(buffer, static_cast<std::size_t>(size)); }
    return size > 0;
}

std::string TerminalProcess::waitFor(std::string const& text) {
    auto found = shown_.find(text, waitedFor_);
    auto const start = std::chrono::steady_clock::now();
    while (found == std::string::npos) {
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(deadlineMs)) {
            throw std::runtime_error("\"" + text + "\" is not shown: " + shown_);
        }
        if (!readMore()) { throw std::runtime_error("\"" + text + "\" was not shown: " + shown_); }
        found = shown_.find(text, waitedFor_);
    }
    auto const begin = std::exchange(waitedFor_, found + text.size());
    return shown_.substr(begin, waitedFor_ - begin);
}

int TerminalProcess::wait() {
    while (readMore()) {}
    int status = 0;
    ::waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace scenario
