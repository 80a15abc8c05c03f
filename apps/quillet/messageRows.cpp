// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/messageRows.h"

#include "apps/quillet/findMessage.h"

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/GenericCommand.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "transport/displayRow.h"

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <string>
#include <vector>

namespace zorv {

namespace {

StringVecVec ownRows(TMessage const& message, bool hasTitles) {
    StringVecVec rows;
    // A message draws its titles above the first row only.
    if (!hasTitles) { rows.emplace_back(); }
    StringVecVec header;
    try {
        message.accumulateDisplay(rows);
        message.TMessage::accumulateDisplay(header);
    } catch (std::exception const&) { return {}; }
    if (!hasTitles) { rows.erase(rows.begin()); }
    return rows == header ? StringVecVec() : rows;
}

/// The message as JSON, and the text of it.
struct Written {
    std::string text;
    Json::Value frame;
    std::vector<MemberDescriptor> const* members =
        nullptr; ///< of its class; null where the catalogue has no such class

    explicit Written(TMessage const& message) : text(toText(message)) {
        std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
        reader->parse(text.data(), text.data() + text.size(), &frame, nullptr);
        auto const name = frame[Serializer::name].asString();
        if (complaintAboutMessage(name).empty()) { members = &findMessage(name).members; }
    }

    std::string operator[](std::string const& key) const {
        auto const& value = frame[key];
        auto const start = static_cast<std::size_t>(value.getOffsetStart());
        return text.substr(start, static_cast<std::size_t>(value.getOffsetLimit()) - start);
    }
};

std::string hexText(std::vector<unsigned char> const& bytes) {
    std::string text;
    for (auto const byte : bytes) { text += (text.empty() ? "" : " ") + hexDigits(byte, 2); }
    return text;
}

std::string write(Json::Value const& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

/// A device is shown by its address and how it is, a command by its bytes; empty for any other object.
std::string objectText(Json::Value const& value) {
    auto const object = readSerializable(write(value));
    if (auto const* const device = dynamic_cast<Device const*>(object.get())) {
        return device->address().address() + ' ' + toString(device->deviceStatus());
    }
    auto const* const command = dynamic_cast<GenericCommand const*>(object.get());
    return command == nullptr ? std::string() : hexText(command->bytes());
}

/// Takes the frames off, at every depth: what an object is, a reader of a row knows.
Json::Value bare(Json::Value value) {
    if (value.isObject()) { value.removeMember(Serializer::bases); }
    if (value.isObject() || value.isArray()) {
        for (auto& part : value) { part = bare(part); }
    }
    return value;
}

/// A value as people read it: texts without quotes, bytes in hex, nodes as they are typed.
std::string readable(TypeDescriptor const& type, Json::Value const& value) {
    constexpr double largestByte = 255;
    if (value.isString()) { return value.asString(); }
    if (type.name == "ZwaveAddress") {
        ZwaveAddress const address(value[type.members.at(0).key].asUInt(),
                                   static_cast<unsigned char>(value[type.members.at(1).key].asUInt()));
        return address.address();
    }
    if (type.kind == TypeDescriptor::Kind::list && type.elements.at(0).maximum == largestByte) {
        std::vector<unsigned char> bytes;
        bytes.reserve(value.size());
        for (auto const& byte : value) { bytes.push_back(static_cast<unsigned char>(byte.asUInt())); }
        return hexText(bytes);
    }
    if (type.kind == TypeDescriptor::Kind::reference && value.isObject()) {
        auto text = objectText(value);
        if (!text.empty()) { return text; }
    }
    return write(bare(value));
}

} // namespace

StringVecVec messageRows(TMessage const& message, bool hasTitles) {
    auto rows = ownRows(message, hasTitles);
    if (!rows.empty()) { return rows; }
    displayRow(rows, message.name() + ':');
    auto const* const confirmable = dynamic_cast<TConfirmable const*>(&message);
    if (confirmable != nullptr) { displayRow(rows, "result_", '"' + toString(confirmable->result()) + '"'); }
    Written const written(message);
    if (written.members == nullptr) { return rows; }
    for (auto const& member : *written.members) { displayRow(rows, member.key, written[member.key]); }
    return rows;
}

std::vector<MemberText> memberTexts(TMessage const& message) {
    std::vector<MemberText> texts;
    Written const written(message);
    if (written.members == nullptr) { return texts; }
    for (auto const& member : *written.members) {
        auto name = member.key;
        if (!name.empty() && name.back() == '_') { name.pop_back(); }
        texts.push_back({name, readable(member.type, written.frame[member.key])});
    }
    return texts;
}

std::string membersLine(TMessage const& message) {
    std::string line;
    for (auto const& member : memberTexts(message)) {
        line += (line.empty() ? "" : " ") + member.name + '=' + member.value;
    }
    return line;
}

} // namespace zorv
