// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/CommandLine.h"
#include "apps/quillet/Interactive.h"

#include "platform/libzorvlogger/Logger.h"

#include <unistd.h>

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

namespace {

using zorv::ExitCode;

/// What shells ask for: the words that the last one of these, after the first, can become.
constexpr char const* completionRequest = "--complete";

ExitCode run(std::vector<std::string> const& words) {
    zorv::ClientOptions options;
    zorv::CommandLine line(options);
    if (!words.empty() && words.front() == completionRequest) {
        for (auto const& word : line.completions({words.begin() + 1, words.end()}, {})) { std::cout << word << '\n'; }
        return ExitCode::ok;
    }
    auto const code = line.run(words);
    if (line.hasCommand() || code != ExitCode::ok || line.hasSaidAll()) { return code; }
    if (::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1) { return zorv::runInteractively(options); }
    std::cerr << "quillet: a command is missing\nRun with --help for more information.\n";
    return ExitCode::usage;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN); // the client ends quietly when the reader closes the output
    // What the library has to log is of interest to whoever asks for it; the client itself says what went wrong.
    zorv::Logger::consoleThreshold(zorv::LogLevel::error);
    return static_cast<int>(run({argv + 1, argv + argc}));
}
