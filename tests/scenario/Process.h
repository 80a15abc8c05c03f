// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace scenario {

/// A child process whose output is read; killed and reaped at the latest when the object goes.
///
/// Each operation throws if it takes longer than a generous deadline, so that a test fails instead of hanging.
class Process {
public:
    /// Starts command[0] with the other elements as its arguments.
    explicit Process(std::vector<std::string> const& command);
    ~Process();

    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    /// The next line of the process's standard output, without its end; throws at the end of the output.
    std::string readLine();

    pid_t pid() const noexcept { return pid_; }

    void signal(int signal) const;

    /// Stops reading the process's standard output.
    void closeOutput();

    /// Waits for the end of the output and of the process: its exit code, or 128 and the signal that ended it.
    int wait();

    /// The lines of the standard output that nobody read; complete after wait().
    std::vector<std::string> restOfOutput();

    /// What came on standard error; complete after wait().
    std::string errors() const;

    /// Waits until the text has come on standard error.
    void waitForError(std::string const& text) const;

    /// A number of /proc/PID/status, in KiB: the memory that the process has (VmRSS), the most that it had (VmHWM).
    long memory(std::string const& key) const;

    /// How long the process has been computing.
    std::chrono::milliseconds processorTime() const;

private:
    bool readMore();

    pid_t pid_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::string unread_;
};

/// The port that a daemon announces as it starts.
unsigned short announcedPort(Process& daemon);

/// The daemon on a free port.
class DaemonProcess : public Process {
public:
    explicit DaemonProcess(std::vector<std::string> const& arguments = {});

    unsigned short port() const noexcept { return port_; }

private:
    unsigned short port_;
};

/// The client with arguments, tied to a port.
std::vector<std::string> clientCommand(unsigned short port, std::vector<std::string> const& arguments);

} // namespace scenario
