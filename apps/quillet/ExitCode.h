// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

namespace zorv {

/// What the client's exit code tells a script.
enum class ExitCode {
    ok = 0,
    refused = 1, ///< the daemon answered with a result that is no success, or a checked file is not good
    usage = 2,
    noConnection = 3, ///< none could be made, or it was lost
    timedOut = 4,
    protocolError = 5, ///< the daemon sent what a client cannot understand
    noOutput = 6,      ///< standard output cannot be written
    interrupted = 130  ///< as shells report a program that SIGINT ended
};

/// Ends the client with a code and, unless it is empty, a text on stderr.
class ExitError : public std::runtime_error {
public:
    ExitError(ExitCode code, std::string const& text) : std::runtime_error(text), code_(code) {}

    ExitCode code() const noexcept { return code_; }

private:
    ExitCode code_;
};

} // namespace zorv
