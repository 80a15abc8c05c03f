// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/Conversation.h"
#include "apps/quillet/completeJson.h"
#include "apps/quillet/findMessage.h"
#include "apps/quillet/makeRequest.h"
#include "apps/quillet/words.h"

#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/tables/TypeDescriptor.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <iterator>
#include <memory>
#include <string>

namespace zorv {

namespace {

/// Sends any message of the catalogue and shows what comes back.
class RequestCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("request", "Send any message and show the answer");
        command->add_option("CLASS", name_, "Message to send, such as ControllerInfoMsg")
            ->required()
            ->type_name("")
            ->check(CLI::Validator(&complaintAboutMessage, ""));
        command
            ->add_option("JSON", json_, "Its members as an object, or - to read them (default: all at their defaults)")
            ->type_name("");
        return command;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        auto const message = makeMessage();
        auto const request = boost::dynamic_pointer_cast<Confirmable>(message);
        Conversation conversation(daemon, output, message->name());
        if (!request) {
            conversation.session().tellLast(message);
            return ExitCode::ok;
        }
        bool const isLong = findMember(findMessage(name_), "timeout_") != nullptr;
        return conversation.show(*conversation.ask(request, isLong ? longestWork(daemon) : daemon.timeout));
    }

    std::vector<std::string> completions(TypedWord const& typed) const override {
        if (typed.argument == "CLASS") { return messageWords(); }
        if (!complaintAboutMessage(typed.before.front()).empty()) { return {}; }
        return completeJson(findMessage(typed.before.front()), typed.text);
    }

private:
    boost::shared_ptr<TMessage> makeMessage() const {
        try {
            return makeRequest(name_, json_ == "-" ? read() : json_);
        } catch (BadMessageError const& error) {
            throw ExitError(ExitCode::usage, error.what());
        } catch (std::invalid_argument const& error) { throw ExitError(ExitCode::usage, error.what()); }
    }

    static std::string read() { return {std::istreambuf_iterator<char>(std::cin), {}}; }

    std::string name_;
    std::string json_ = "{}";
};

} // namespace

std::unique_ptr<Command> makeRequestCommand() { return std::make_unique<RequestCommand>(); }

} // namespace zorv
