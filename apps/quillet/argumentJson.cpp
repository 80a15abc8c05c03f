// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/argumentJson.h"

#include "apps/commandLine.h"
#include "apps/quillet/parseNode.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/RawCommand.h"

#include <json/reader.h>
#include <json/value.h>

#include <charconv>
#include <cstdint>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace zorv {

namespace {

using Kind = TypeDescriptor::Kind;

std::vector<std::string> split(std::string const& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) { parts.push_back(part); }
    return parts;
}

std::string list(std::vector<std::string> const& words) {
    std::string text;
    for (auto const& word : words) { text += (text.empty() ? "" : ", ") + word; }
    return text;
}

Json::Value framed(Serializable const& object) {
    Json::Value value;
    auto const text = toText(object);
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
}

Json::Value integer(TypeDescriptor const& type, std::string const& text) {
    std::string number = text; // a validator may change what it judges
    auto const complaint =
        wholeNumber(static_cast<std::int64_t>(type.minimum), static_cast<std::int64_t>(type.maximum))(number);
    if (!complaint.empty()) { throw std::invalid_argument(complaint); }
    return static_cast<Json::Int64>(std::stoll(text));
}

/// One text of an enumeration, or several of a flag set, joined as they are written.
Json::Value texts(TypeDescriptor const& type, std::string const& text) {
    std::vector<std::string> known;
    known.reserve(type.texts.size());
    for (auto const& each : type.texts) { known.push_back(each.text); }
    for (auto const& part : type.kind == Kind::flagSet ? split(text, '|') : std::vector<std::string>{text}) {
        if (std::find(known.begin(), known.end(), part) == known.end()) {
            auto const nearest = suggest(part, known);
            throw std::invalid_argument("unknown " + type.name + " \"" + part + '"' +
                                        (nearest.empty() ? "; it is one of " + list(known) : nearest));
        }
    }
    return text;
}

Json::Value node(TypeDescriptor const& type, std::string const& text) {
    auto const address = parseNode(text);
    Json::Value value;
    value[type.members.at(0).key] = address.homeId();
    value[type.members.at(1).key] = address.nodeId();
    return value;
}

unsigned char octet(std::string const& text) {
    unsigned int value = 0;
    auto const start = text.compare(0, 2, "0x") == 0 ? 2U : 0U;
    auto const* const end = text.data() + text.size();
    auto const read = std::from_chars(text.data() + start, end, value, 16);
    constexpr unsigned int largest = 0xFF;
    if (read.ec != std::errc() || read.ptr != end || value > largest) {
        throw std::invalid_argument("not a byte in hex: \"" + text + '"');
    }
    return static_cast<unsigned char>(value);
}

Json::Value list(TypeDescriptor const& type, std::vector<std::string> const& words) {
    Json::Value value = Json::arrayValue;
    for (auto const& word : words) {
        for (auto const& part : split(word, ',')) { value.append(argumentJson(type.elements.at(0), {part})); }
    }
    return value;
}

Json::Value reference(TypeDescriptor const& type, std::vector<std::string> const& words) {
    if (type.name == Device::NAME || type.name == "zorv::" + Device::NAME) {
        return framed(Device(parseNode(words.at(0)), DeviceInfo()));
    }
    std::vector<unsigned char> bytes;
    bytes.reserve(words.size());
    for (auto const& word : words) { bytes.push_back(octet(word)); }
    return framed(RawCommand(bytes));
}

} // namespace

Json::Value argumentJson(TypeDescriptor const& type, std::vector<std::string> const& words) {
    switch (type.kind) {
    case Kind::integer: return integer(type, words.at(0));
    case Kind::enumeration:
    case Kind::flagSet: return texts(type, words.at(0));
    case Kind::record: return node(type, words.at(0));
    case Kind::list: return list(type, words);
    case Kind::reference: return reference(type, words);
    case Kind::text:
    case Kind::boolean:
    case Kind::number:
    case Kind::timeStamp:
    case Kind::uuid:
    case Kind::endpoint:
    case Kind::openSet:
    case Kind::framed:
    case Kind::pairs: break;
    }
    return words.at(0);
}

std::string argumentHelp(TypeDescriptor const& type) {
    std::string help;
    if (type.kind == Kind::enumeration || type.kind == Kind::flagSet) {
        for (auto const& each : type.texts) { help += (help.empty() ? ": " : ", ") + each.text; }
    }
    return help;
}

} // namespace zorv
