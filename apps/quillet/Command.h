// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/ExitCode.h"
#include "apps/quillet/Output.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace zorv {

/// Where the daemon is. A command that needs it opens a Session.
struct DaemonAddress {
    std::string host;
    unsigned short port;
    std::chrono::milliseconds timeout; ///< for the connection and for each answer
};

/// One subcommand: its arguments, and what it does.
class Command {
public:
    Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;
    virtual ~Command() = default;

    /// Adds the subcommand and returns its CLI11 object.
    virtual CLI::App* addTo(CLI::App& app) = 0;

    virtual ExitCode run(DaemonAddress const& daemon, Output& output) = 0;
};

std::unique_ptr<Command> makeCatalogueCommand();
std::unique_ptr<Command> makeDecodeCommand();
std::unique_ptr<Command> makeExampleCommand();
std::unique_ptr<Command> makeFramesCommand();
std::unique_ptr<Command> makeNvmCommand();
std::unique_ptr<Command> makePingCommand();

/// All subcommands, in the order of the help text.
inline std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makePingCommand());
    commands.push_back(makeNvmCommand());
    commands.push_back(makeCatalogueCommand());
    commands.push_back(makeDecodeCommand());
    commands.push_back(makeExampleCommand());
    commands.push_back(makeFramesCommand());
    return commands;
}

} // namespace zorv
