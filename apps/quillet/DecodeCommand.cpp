// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/EventView.h"
#include "apps/quillet/messageRows.h"

#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/toText.h"
#include "zwave/libquillet/ObserveMsg.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace zorv {

namespace {

/// A copy as an observer gets it.
bool isRecorded(TMessage const& message) {
    auto const* const copy = dynamic_cast<ObserveMsg const*>(&message);
    return copy != nullptr && copy->message() && copy->direction() != ObserveDirection::none;
}

/// Shows the messages on standard input, one per line. A line that is not a message is reported, and the next ones are
/// still shown.
class DecodeCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        return app.add_subcommand("decode", "Show the messages that come on standard input as lines of JSON");
    }

    ExitCode run(DaemonAddress const&, Output& output) override {
        auto code = ExitCode::ok;
        std::size_t number = 0;
        std::unique_ptr<EventView> traffic; // the rows of a recording
        for (std::string line; std::getline(std::cin, line);) {
            ++number;
            if (line.find_first_not_of(" \t\r") == std::string::npos) { continue; }
            try {
                auto const message = readMessage(line);
                if (!output.isJson() && isRecorded(*message)) {
                    if (!traffic) { traffic = makeEventView(EventForm::traffic, *message, output); }
                    traffic->show(*message, output);
                    continue;
                }
                output.show(messageRows(*message, output.hasTitles()), toText(*message));
            } catch (BadMessageError const& error) {
                std::cerr << "quillet: line " << number << ": " << error.what() << std::endl;
                code = ExitCode::protocolError;
            }
        }
        return code;
    }
};

} // namespace

std::unique_ptr<Command> makeDecodeCommand() { return std::make_unique<DecodeCommand>(); }

} // namespace zorv
