// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/toText.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/Catalogue.h"

#include <CLI/CLI.hpp>
#include <json/reader.h>
#include <json/value.h>

#include <iostream>
#include <memory>
#include <string>

namespace zorv {

namespace {

/// The message's own rows; none if it shows only its header, or if showing it fails.
StringVecVec tableOf(TMessage const& message) {
    StringVecVec rows;
    StringVecVec header;
    try {
        message.accumulateDisplay(rows);
        message.TMessage::accumulateDisplay(header);
    } catch (std::exception const&) { return {}; }
    return rows == header ? StringVecVec() : rows;
}

/// A title, the result and the members of the message's class, with their values as they are written.
StringVecVec membersOf(TMessage const& message) {
    Json::Value frame;
    auto const text = toText(message);
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &frame, nullptr);
    auto const asWritten = [&text](Json::Value const& value) {
        auto const start = static_cast<std::size_t>(value.getOffsetStart());
        return text.substr(start, static_cast<std::size_t>(value.getOffsetLimit()) - start);
    };

    StringVecVec rows;
    displayRow(rows, message.name() + ':');
    auto const* const confirmable = dynamic_cast<TConfirmable const*>(&message);
    if (confirmable != nullptr) { displayRow(rows, "result_", '"' + toString(confirmable->result()) + '"'); }
    for (auto const& type : describeCatalogue()) {
        if (type.name != frame[Serializer::name].asString()) { continue; }
        for (auto const& member : type.members) { displayRow(rows, member.key, asWritten(frame[member.key])); }
    }
    return rows;
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
        for (std::string line; std::getline(std::cin, line);) {
            ++number;
            if (line.find_first_not_of(" \t\r") == std::string::npos) { continue; }
            try {
                auto const message = readMessage(line);
                auto const table = tableOf(*message);
                output.show(table.empty() ? membersOf(*message) : table, toText(*message));
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
