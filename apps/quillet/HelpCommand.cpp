// SPDX-License-Identifier: Apache-2.0
#include "apps/commandLine.h"
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
        app_ = &app;
        auto* const command = app.add_subcommand("help", "Show all commands, or the options of one");
        command->add_option("COMMAND", words_, "Command to explain, such as nvm save")->type_name("");
        return command;
    }

    ExitCode run(DaemonAddress const&, Output&) override {
        checkWords();
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
    /// The parser overlooks what is unknown before --help.
    void checkWords() const {
        auto const* level = app_;
        for (auto const& word : words_) {
            std::vector<std::string> known;
            CLI::App const* next = nullptr;
            for (auto const* const each : level->get_subcommands({})) {
                known.push_back(each->get_name());
                if (each->check_name(word)) { next = each; }
            }
            if (next == nullptr) {
                throw ExitError(ExitCode::usage, "unknown command \"" + word + '"' + suggest(word, known));
            }
            level = next;
        }
    }

    CLI::App const* app_ = nullptr;
    std::vector<std::string> words_;
};

} // namespace

std::unique_ptr<Command> makeHelpCommand() { return std::make_unique<HelpCommand>(); }

} // namespace zorv
