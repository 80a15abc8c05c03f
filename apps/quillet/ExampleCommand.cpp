// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/findMessage.h"
#include "apps/quillet/words.h"

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/toText.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace zorv {

namespace {

/// Prints a message with every member at its default, as one line of JSON.
class ExampleCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("example", "Print a message with every member at its default");
        command->add_option("CLASS", name_, "Message to print, such as PingMsg")
            ->required()
            ->type_name("")
            ->check(CLI::Validator(&complaintAboutMessage, ""));
        return command;
    }

    ExitCode run(DaemonAddress const&, Output& output) override {
        Serializer request;
        request << opencurly << Serializer::name << colon << findMessage(name_).name << closecurly;
        output.showLine(toText(*readSerializable(request.str())));
        return ExitCode::ok;
    }

    std::vector<std::string> completions(TypedWord const& /*typed*/) const override { return messageWords(); }

private:
    std::string name_;
};

} // namespace

std::unique_ptr<Command> makeExampleCommand() { return std::make_unique<ExampleCommand>(); }

} // namespace zorv
