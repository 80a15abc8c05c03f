// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/CommandLine.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorv {

namespace {

/// "help" and "help nvm save", as many other programs take them: the same as --help.
class HelpCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("help", "Show all commands, or the options of one");
        command->add_option("COMMAND", words_, "Command to explain, such as nvm save")->type_name("");
        return command;
    }

    ExitCode run(DaemonAddress const&, Output&) override {
        ClientOptions options;
        auto words = words_;
        words.emplace_back("--help");
        return CommandLine(options).run(std::move(words));
    }

    std::vector<std::string> completions(TypedWord const& typed) const override {
        ClientOptions options;
        auto words = typed.before;
        words.push_back(typed.text);
        return CommandLine(options).completions(words, typed.nodes);
    }

private:
    std::vector<std::string> words_;
};

} // namespace

std::unique_ptr<Command> makeHelpCommand() { return std::make_unique<HelpCommand>(); }

} // namespace zorv
