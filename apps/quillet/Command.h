#pragma once

#include "apps/quillet/ExitCode.h"
#include "apps/quillet/Output.h"
#include "apps/quillet/Session.h"

#include <memory>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace zorv {

/// One subcommand: its arguments, and what it does.
class Command {
public:
    Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;
    virtual ~Command() = default;

    /// Adds the subcommand, and gives back what CLI11 made of it.
    virtual CLI::App* addTo(CLI::App& app) = 0;

    virtual ExitCode run(Session& session, Output& output) = 0;
};

std::unique_ptr<Command> makePingCommand();

/// All subcommands, in the order of the help text.
inline std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makePingCommand());
    return commands;
}

} // namespace zorv
