// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/frameText.h"

#include "transport/displayRow.h"
#include "zwave/libserialapi/functions/FrameDissector.h"

#include <CLI/CLI.hpp>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

namespace zorv {

namespace {

using serialapi::Byte;
using serialapi::Bytes;
using serialapi::FieldValue;
using serialapi::FieldValues;
using serialapi::Frame;
using serialapi::FrameDissector;
namespace control = serialapi::control;
using serialapi::Side;

/// What one side said on one line of a recording.
struct RecordedLine {
    Side sender;
    Bytes bytes;
};

/// Adds the bytes of a word of hex digits; false if the word is not made of pairs of hex digits.
bool addBytes(std::string const& word, Bytes& bytes) {
    if (word.size() % 2 != 0) { return false; }
    for (std::size_t i = 0; i < word.size(); i += 2) {
        auto const isDigit = [&](std::size_t at) { return std::isxdigit(static_cast<unsigned char>(word[at])) != 0; };
        if (!isDigit(i) || !isDigit(i + 1)) { return false; }
        bytes.push_back(static_cast<Byte>(std::stoul(word.substr(i, 2), nullptr, 16)));
    }
    return true;
}

/// Parses `host|module HEX...`; nothing if the text has another form.
std::optional<RecordedLine> parseLine(std::string const& text) {
    std::istringstream words(text);
    std::string word;
    words >> word;
    if (word != "host" && word != "module") { return std::nullopt; }
    RecordedLine line{word == "host" ? Side::host : Side::module, {}};
    while (words >> word) {
        if (!addBytes(word, line.bytes)) { return std::nullopt; }
    }
    if (line.bytes.empty()) { return std::nullopt; }
    return line;
}

char const* controlName(Byte byte) {
    switch (byte) {
    case control::ack: return "ACK";
    case control::nak: return "NAK";
    case control::can: return "CAN";
    default: return nullptr;
    }
}

Json::Value valueJson(FieldValue const& value) {
    switch (value.kind) {
    case FieldValue::Kind::number: return static_cast<Json::Int64>(value.number);
    case FieldValue::Kind::bytes: return hexText(value.bytes);
    case FieldValue::Kind::text: {
        // The module may send any byte for a character, JSON may not hold any.
        auto text = value.text;
        std::replace_if(
            text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) > 0x7E; }, '?');
        return text;
    }
    case FieldValue::Kind::numbers: break;
    }
    Json::Value list = Json::arrayValue;
    for (auto const number : value.numbers) { list.append(number); }
    return list;
}

/// The frames of a recording, as rows and as lines of JSON, and what is wrong with them.
class FrameListing {
public:
    void add(std::size_t lineNumber, std::string const& text) {
        number_ = lineNumber;
        auto const line = parseLine(text);
        if (!line) { return complain("expected host or module, and bytes in hex"); }
        std::size_t position = 0;
        while (position < line->bytes.size()) { position += addNext(*line, position); }
    }

    StringVecVec const& rows() const noexcept { return rows_; }
    std::string const& json() const noexcept { return json_; }
    bool isGood() const noexcept { return good_; }

private:
    /// Adds the frame or the single byte at the position and returns its size.
    std::size_t addNext(RecordedLine const& line, std::size_t position) {
        auto const* const name = controlName(line.bytes[position]);
        if (name != nullptr) {
            addRow(line.sender, name, "control", {});
            return 1;
        }
        auto const left = line.bytes.size() - position;
        auto const begin = line.bytes.begin() + static_cast<std::ptrdiff_t>(position);
        if (line.bytes[position] != control::startOfFrame) {
            addRow(line.sender, "", "raw", {{"bytes", FieldValue::Kind::bytes, 0, Bytes(begin, line.bytes.end())}});
            return left;
        }
        auto const size = left > 1 ? std::min(left, line.bytes[position + 1] + std::size_t{2}) : left;
        addFrame(line.sender, Bytes(begin, begin + static_cast<std::ptrdiff_t>(size)));
        return size;
    }

    void addFrame(Side sender, Bytes const& bytes) {
        std::string why;
        auto const frame = Frame::decode(bytes, why);
        if (!frame) { return complain(why + ": " + hexText(bytes)); }
        auto const dissection = dissector_.dissect(sender, *frame);
        addRow(sender, dissection.function, formText(dissection.kind), membersOf(dissection));
        if (dissection.encoded.encode() != bytes) { complain("encodes back to other bytes: " + hexText(bytes)); }
    }

    void addRow(Side sender, std::string const& function, char const* form, FieldValues const& members) {
        Json::Value json;
        json["line"] = static_cast<Json::UInt64>(number_);
        json["sender"] = senderText(sender);
        json["function"] = function;
        json["form"] = form;
        json["members"] = Json::objectValue;
        for (auto const& member : members) { json["members"][member.name] = valueJson(member); }
        displayRow(rows_, senderText(sender), function, form, membersText(members));
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        json_ += (json_.empty() ? "" : "\n") + Json::writeString(builder, json);
    }

    void complain(std::string const& what) {
        std::cerr << "quillet: line " << number_ << ": " << what << '\n';
        good_ = false;
    }

    FrameDissector dissector_;
    StringVecVec rows_;
    std::string json_;
    std::size_t number_ = 0;
    bool good_ = true;
};

/// Decodes recorded serial traffic; needs no daemon.
class FramesCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("frames", "Decode recorded traffic of a module's serial line");
        command->add_option("FILE", file_, "Lines of host or module, and what it sent in hex")
            ->required()
            ->type_name("");
        return command;
    }

    ExitCode run(DaemonAddress const&, Output& output) override {
        std::ifstream file(file_);
        if (!file) { throw ExitError(ExitCode::usage, file_ + ": cannot be read"); }
        FrameListing listing;
        std::string text;
        for (std::size_t number = 1; std::getline(file, text); ++number) {
            text.erase(std::min(text.find('#'), text.size()));
            if (text.find_first_not_of(" \t\r") != std::string::npos) { listing.add(number, text); }
        }
        output.titles({"Sender", "Function", "Form", "Members"});
        output.show(listing.rows(), listing.json());
        return listing.isGood() ? ExitCode::ok : ExitCode::protocolError;
    }

private:
    std::string file_;
};

} // namespace

std::unique_ptr<Command> makeFramesCommand() { return std::make_unique<FramesCommand>(); }

} // namespace zorv
