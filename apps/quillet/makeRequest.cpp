// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/makeRequest.h"

#include "apps/commandLine.h"
#include "apps/quillet/findMessage.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/tables/TypeDescriptor.h"

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace zorv {

namespace {

/// The object; null where the text is none, which the catalogue's reader says better.
Json::Value parse(std::string const& text) {
    Json::Value value;
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    std::unique_ptr<Json::CharReader> const reader(builder.newCharReader());
    bool const isGood = reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return isGood && value.isObject() ? value : Json::Value();
}

std::string write(Json::Value const& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

void checkMembers(TypeDescriptor const& type, Json::Value const& object) {
    std::vector<std::string> known;
    known.reserve(type.members.size());
    for (auto const& member : type.members) { known.push_back(member.key); }
    for (auto const& key : object.getMemberNames()) {
        bool const isKnown = key == Serializer::name || key == Serializer::bases || findMember(type, key) != nullptr;
        if (!isKnown) { throw std::invalid_argument(type.name + " has no member " + key + suggest(key, known)); }
    }
}

} // namespace

boost::shared_ptr<TMessage> makeRequest(std::string const& name, std::string const& json) {
    auto const& type = findMessage(name);
    auto object = parse(json);
    if (object.isNull()) { return readMessage(json); }
    checkMembers(type, object);
    auto& className = object[Serializer::name];
    if (className.isNull()) { className = type.name; }
    if (className != type.name) { throw std::invalid_argument("the message is no " + type.name); }
    auto const given = readMessage(write(object));
    object.removeMember(Serializer::bases);
    auto request = readMessage(write(object));
    request->priority(given->priority());
    return request;
}

} // namespace zorv
