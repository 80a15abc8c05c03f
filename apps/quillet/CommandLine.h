// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/Command.h"
#include "apps/quillet/Output.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

/// What the options of all commands say.
struct ClientOptions {
    DaemonPlace place;
    double timeout = 10;
    bool isTimeoutGiven = false;
    OutputStyle style;
    int verbosity = 0;
    EventLoop* loop = nullptr;

    DaemonAddress daemon() const;
};

/// All that can be said on the command line; one of them reads one line.
class CommandLine {
public:
    /// `options` are the defaults, and hold what the line says when it has been run.
    explicit CommandLine(ClientOptions& options);

    /// Runs the command of the words; errors are said on standard error. Without a command, nothing is done.
    ExitCode run(std::vector<std::string> words);

    bool hasCommand() const { return !app_.get_subcommands().empty(); }

    /// It was asked for help or for the version only.
    bool hasSaidAll() const noexcept { return hasSaidAll_; }

    std::string help() const { return app_.help(); }

    /// The words that the last one of these can become.
    std::vector<std::string> completions(std::vector<std::string> const& words,
                                         std::vector<std::string> const& nodes) const;

private:
    void addOptions();
    ExitCode runCommand();

    ClientOptions& options_;
    CLI::App app_;
    std::vector<std::unique_ptr<Command>> commands_;
    std::map<CLI::App const*, Command*> byApp_;
    bool hasSaidAll_ = false;
};

} // namespace zorv
