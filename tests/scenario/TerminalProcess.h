// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace scenario {

/// A child process on a terminal of its own, as a user would run it; killed and reaped at the latest when the object goes.
///
/// Each operation throws if it takes longer than a generous deadline, so that a test fails instead of hanging.
class TerminalProcess {
public:
    /// Starts command[0] with the other elements as its arguments. Its terminal is an xterm of 24 lines. `environment` are
    /// settings as env(1) takes them.
    explicit TerminalProcess(std::vector<std::string> const& command, unsigned short columns = 80,
                             std::vector<std::string> const& environment = {});
    ~TerminalProcess();

    TerminalProcess(TerminalProcess const&) = delete;
    TerminalProcess& operator=(TerminalProcess const&) = delete;

    void type(std::string const& keys) const;

    void resize(unsigned short columns) const;

    /// Waits for a text behind the one that was waited for last. Returns what was shown from there on, the text included.
    std::string waitFor(std::string const& text);

    /// All that was shown so far, with what steers the terminal.
    std::string const& shown() const noexcept { return shown_; }

    pid_t pid() const noexcept { return pid_; }

    void signal(int signal) const;

    /// Lines are edited and shown by the terminal itself, as programs find it.
    bool editsLines() const;

    /// Waits for the end of the process: its exit code, or 128 and the signal that ended it.
    int wait();

private:
    bool readMore();

    pid_t pid_ = -1;
    int terminal_ = -1;
    std::string shown_;
    std::size_t waitedFor_ = 0; ///< end of the text that was waited for last
};

// Keys that have no character.
namespace key {

constexpr char const* interrupt = "\x03";
constexpr char const* endOfInput = "\x04";
constexpr char const* enter = "\r";
constexpr char const* tab = "\t";
constexpr char const* up = "\x1b[A";

} // namespace key

} // namespace scenario
