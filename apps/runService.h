// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/commandLine.h"

#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <iostream>
#include <string>

namespace zorv {

/// What the main functions share of programs that run until they are told to end: takes the command line into `options`,
/// to which the options of `app` belong, opens the log and calls `run` with them. Returns the exit code: 0; 1 where it
/// cannot run and 2 for wrong usage, with the complaint on standard error.
template <class Options, class Run>
int runService(CLI::App& app, int argc, char const* const* argv, Options const& options, Run run) {
    constexpr int cannotRun = 1;
    constexpr int wrongUsage = 2;
    std::signal(SIGPIPE, SIG_IGN);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) { return endWithUsage(app, error, wrongUsage); }
    Logger::initialize();
    Logger::consoleThreshold(options.logLevel);
    try {
        run(options);
    } catch (std::exception const& error) {
        std::cerr << app.get_name() << ": " << printableLines(error.what()) << '\n';
        return cannotRun;
    }
    return 0;
}

} // namespace zorv
