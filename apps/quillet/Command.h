// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/quillet/ExitCode.h"
#include "apps/quillet/Output.h"

#include "zwave/libclient/DaemonPlace.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace zorv {

class EventLoop;

/// Where the daemon is. A command that needs it opens a Session.
struct DaemonAddress {
    DaemonPlace place;
    std::chrono::milliseconds timeout; ///< for the connection and for each answer
    bool isTimeoutGiven;               ///< it holds for long work as well
    EventLoop* loop = nullptr;         ///< that serves other things meanwhile; null for one of the session's own
};

/// A word that the user is typing.
struct TypedWord {
    std::string argument;            ///< that it stands for, such as "NODE" or "--view"
    std::string text;                ///< so far
    std::vector<std::string> before; ///< the arguments before it that are no options
    std::vector<std::string> nodes;  ///< that the network has
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

    /// Words that may stand where the user types, those that begin otherwise included.
    virtual std::vector<std::string> completions(TypedWord const& /*typed*/) const { return {}; }
};

std::unique_ptr<Command> makeCatalogueCommand();
std::unique_ptr<Command> makeDecodeCommand();
std::unique_ptr<Command> makeExampleCommand();
std::unique_ptr<Command> makeFramesCommand();
std::unique_ptr<Command> makeHelpCommand();
std::unique_ptr<Command> makeNvmCommand();
std::unique_ptr<Command> makeNodeCommand();
std::unique_ptr<Command> makePingCommand();
std::unique_ptr<Command> makeReplayCommand();
std::unique_ptr<Command> makeRequestCommand();
std::unique_ptr<Command> makeStatusCommand();

/// Those that are nothing but requests.
std::vector<std::unique_ptr<Command>> makeMessageCommands();

/// All subcommands, in the order of the help text.
inline std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makePingCommand());
    commands.push_back(makeNodeCommand());
    commands.push_back(makeStatusCommand());
    for (auto& command : makeMessageCommands()) { commands.push_back(std::move(command)); }
    commands.push_back(makeNvmCommand());
    commands.push_back(makeRequestCommand());
    commands.push_back(makeCatalogueCommand());
    commands.push_back(makeDecodeCommand());
    commands.push_back(makeExampleCommand());
    commands.push_back(makeFramesCommand());
    commands.push_back(makeReplayCommand());
    commands.push_back(makeHelpCommand());
    return commands;
}

} // namespace zorv
