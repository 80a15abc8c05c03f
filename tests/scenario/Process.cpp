// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/Process.h"
#include "tests/testPaths.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

extern char** environ;

namespace scenario {

namespace {

constexpr int deadlineMs = 30000;

std::vector<std::string> daemonCommand(std::vector<std::string> const& arguments) {
    std::vector<std::string> command{zorv::programPath("zwaved"), "--port", "0"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

} // namespace

Process::Process(std::vector<std::string> const& command) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) { throw std::runtime_error("no pipe"); }
    output_ = ends[0];
    errors_ = ::memfd_create("stderr", MFD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors_, STDERR_FILENO);
    std::vector<char*> arguments;
    for (auto const& argument : command) { arguments.push_back(const_cast<char*>(argument.c_str())); }
    arguments.push_back(nullptr);
    int const failure = ::posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failure != 0) { throw std::runtime_error("cannot start " + command[0]); }
}

Process::~Process() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    closeOutput();
    ::close(errors_);
}

bool Process::readMore() {
    pollfd ready{output_, POLLIN, 0};
    if (::poll(&ready, 1, deadlineMs) != 1) { throw std::runtime_error("the process says nothing: " + errors()); }
    char buffer[4096];
    auto const size = ::read(output_, buffer, sizeof buffer);
    if (size > 0) { unread_.append(buffer, static_cast<std::size_t>(size)); }
    return size > 0;
}

std::string Process::readLine() {
    auto end = unread_.find('\n');
    while (end == std::string::npos) {
        if (!readMore()) { throw std::runtime_error("the output ended: " + errors()); }
        end = unread_.find('\n');
    }
    auto line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return line;
}

void Process::signal(int signal) const { ::kill(pid_, signal); }

void Process::closeOutput() {
    if (output_ >= 0) { ::close(std::exchange(output_, -1)); }
}

int Process::wait() {
    while (output_ >= 0 && readMore()) {}
    siginfo_t info{};
    auto const start = std::chrono::steady_clock::now();
    // Its output has ended, so the process is about to end as well.
    while (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0) {
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(deadlineMs)) {
            throw std::runtime_error("the process does not end: " + errors());
        }
        ::poll(nullptr, 0, 1);
    }
    ::waitpid(std::exchange(pid_, -1), nullptr, 0);
    return info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
}

std::vector<std::string> Process::restOfOutput() {
    std::vector<std::string> lines;
    while (!unread_.empty()) {
        auto const end = unread_.find('\n');
        lines.push_back(unread_.substr(0, end));
        unread_.erase(0, end == std::string::npos ? end : end + 1);
    }
    return lines;
}

std::string Process::errors() const {
    std::string text;
    char buffer[4096];
    for (off_t at = 0;;) {
        auto const size = ::pread(errors_, buffer, sizeof buffer, at);
        if (size <= 0) { return text; }
        text.append(buffer, static_cast<std::size_t>(size));
        at += size;
    }
}

void Process::waitForError(std::string const& text) const {
    for (int waited = 0; errors().find(text) == std::string::npos; ++waited) {
        if (waited == deadlineMs) { throw std::runtime_error("the process does not say " + text); }
        ::poll(nullptr, 0, 1);
    }
}

long Process::memory(std::string const& key) const {
    std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
    for (std::string word; status >> word;) {
        long value = 0;
        if (word == key + ":" && status >> value) { return value; }
    }
    throw std::runtime_error("no " + key + " of the process");
}

std::chrono::milliseconds Process::processorTime() const {
    std::ifstream file("/proc/" + std::to_string(pid_) + "/stat");
    std::string const stat{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::istringstream fields(stat.substr(stat.rfind(')') + 1)); // the name before it may hold anything
    std::string skipped;
    for (int field = 3; field < 14; ++field) { fields >> skipped; }
    long user = 0;
    long system = 0;
    if (!(fields >> user >> system)) { throw std::runtime_error("no times of the process"); }
    return std::chrono::milliseconds((user + system) * 1000 / ::sysconf(_SC_CLK_TCK));
}

unsigned short announcedPort(Process& daemon) {
    std::string const start = "listening on 127.0.0.1:";
    auto const announcement = daemon.readLine();
    if (announcement.compare(0, start.size(), start) != 0) {
        throw std::runtime_error("not an announcement: " + announcement);
    }
    return static_cast<unsigned short>(std::stoul(announcement.substr(start.size())));
}

DaemonProcess::DaemonProcess(std::vector<std::string> const& arguments)
    : Process(daemonCommand(arguments)), port_(announcedPort(*this)) {}

std::vector<std::string> clientCommand(unsigned short port, std::vector<std::string> const& arguments) {
    std::vector<std::string> command{zorv::programPath("quillet"), "--port", std::to_string(port)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

} // namespace scenario
