// SPDX-License-Identifier: Apache-2.0
#include "bench/daemon/Server.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <system_error>

namespace bench {

namespace {

[[noreturn]] void fail(char const* what) { throw std::system_error(errno, std::generic_category(), what); }

[[noreturn]] void become(std::vector<std::string> command, int output) {
    std::vector<char*> arguments;
    for (auto& argument : command) { arguments.push_back(argument.data()); }
    arguments.push_back(nullptr);
    ::dup2(output, STDOUT_FILENO);
    pinTo(0);
    ::execv(arguments.front(), arguments.data());
    std::perror(arguments.front());
    _exit(127);
}

std::string readLine(int from) {
    std::string line;
    for (char c = 0; ::read(from, &c, 1) == 1 && c != '\n';) { line += c; }
    return line;
}

} // namespace

void pinTo(unsigned int processor) noexcept {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    ::sched_setaffinity(0, sizeof set, &set);
}

Server::Server(std::vector<std::string> const& command) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) { fail("pipe2"); }
    pid_ = ::fork();
    if (pid_ < 0) { fail("fork"); }
    if (pid_ == 0) { become(command, ends[1]); }
    ::close(ends[1]);
    auto const line = readLine(ends[0]);
    ::close(ends[0]);
    auto const colon = line.rfind(':');
    if (colon == std::string::npos) { throw std::runtime_error(command.front() + " does not listen: " + line); }
    port_ = static_cast<unsigned short>(std::stoul(line.substr(colon + 1)));
}

Server::~Server() {
    ::kill(pid_, SIGTERM);
    ::waitpid(pid_, nullptr, 0);
}

double Server::cpuSeconds() const {
    clockid_t clock{};
    timespec used{};
    if (::clock_getcpuclockid(pid_, &clock) != 0 || ::clock_gettime(clock, &used) != 0) { fail("clock_gettime"); }
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

} // namespace bench
