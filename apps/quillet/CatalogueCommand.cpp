// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Command.h"
#include "apps/quillet/findMessage.h"
#include "apps/quillet/words.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/support/typeText.h"

#include <CLI/CLI.hpp>
#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <map>
#include <memory>
#include <string>

namespace zorv {

namespace {

using Kind = TypeDescriptor::Kind;

// ---- as JSON

Json::Value parseJson(std::string const& text) {
    Json::Value value;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
}

char const* kindText(Kind kind) {
    switch (kind) {
    case Kind::boolean: return "boolean";
    case Kind::integer: return "integer";
    case Kind::number: return "number";
    case Kind::text: return "text";
    case Kind::timeStamp: return "timeStamp";
    case Kind::uuid: return "uuid";
    case Kind::endpoint: return "endpoint";
    case Kind::enumeration: return "enumeration";
    case Kind::openSet: return "openSet";
    case Kind::flagSet: return "flagSet";
    case Kind::record: return "record";
    case Kind::framed: return "framed";
    case Kind::reference: return "reference";
    case Kind::list: return "list";
    case Kind::pairs: return "pairs";
    }
    return "";
}

Json::Value toJson(std::vector<MemberDescriptor> const& members);

Json::Value toJson(TypeDescriptor const& type) {
    Json::Value json;
    json["kind"] = kindText(type.kind);
    json["name"] = type.name;
    if (type.kind == Kind::integer) {
        json["minimum"] = static_cast<Json::Int64>(type.minimum);
        json["maximum"] = static_cast<Json::Int64>(type.maximum);
    }
    for (auto const& text : type.texts) {
        Json::Value entry;
        entry["value"] = text.value;
        entry["text"] = text.text;
        json["texts"].append(entry);
    }
    for (auto const& element : type.elements) { json["elements"].append(toJson(element)); }
    if (type.kind == Kind::record) { json["members"] = toJson(type.members); }
    return json;
}

Json::Value toJson(std::vector<MemberDescriptor> const& members) {
    Json::Value json = Json::arrayValue;
    for (auto const& member : members) {
        Json::Value entry;
        entry["key"] = member.key;
        entry["doc"] = member.doc;
        entry["type"] = toJson(member.type);
        entry["default"] = parseJson(member.defaultJson);
        json.append(entry);
    }
    return json;
}

std::string toLine(TypeDescriptor const& message) {
    Json::Value json;
    json["serialName"] = message.name;
    json["base"] = message.base;
    json["members"] = toJson(message.members);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, json);
}

// ---- as a table

std::string keysOf(TypeDescriptor const& message) {
    std::string keys;
    for (auto const& member : message.members) { keys += (keys.empty() ? "" : " ") + member.key; }
    return keys;
}

/// The enumerations of the members, by name.
void collectEnums(std::map<std::string, TypeDescriptor>& enums, TypeDescriptor const& type) {
    if (!type.texts.empty()) {
        enums.emplace(type.name, type);
        return;
    }
    for (auto const& member : type.members) { collectEnums(enums, member.type); }
    for (auto const& element : type.elements) { collectEnums(enums, element); }
}

/// The members' rows; those of a record follow it, under the path by which errors name them.
void addMembers(StringVecVec& rows, std::vector<MemberDescriptor> const& members, std::string const& path) {
    for (auto const& member : members) {
        bool const isRecord = member.type.kind == Kind::record;
        displayRow(rows, path + member.key, typeText(member.type), isRecord ? "" : member.defaultJson, member.doc);
        if (isRecord) { addMembers(rows, member.type.members, path + member.key + '.'); }
    }
}

void addEnum(StringVecVec& rows, TypeDescriptor const& type) {
    rows.emplace_back();
    displayRow(rows, type.name, "Value", "Text");
    auto const addTexts = [&rows](TypeDescriptor const& each) {
        for (auto const& text : each.texts) { displayRow(rows, "", text.value, text.text); }
    };
    addTexts(type);
    if (type.kind == Kind::flagSet) {
        for (auto const& field : type.elements) { addTexts(field); }
    }
    if (type.kind == Kind::openSet) { displayRow(rows, "", "others", "0x and hex digits"); }
}

StringVecVec toRows(TypeDescriptor const& message) {
    StringVecVec rows;
    displayRow(rows, "Message", message.name);
    displayRow(rows, "Base", message.base);
    if (message.members.empty()) { return rows; }
    rows.emplace_back();
    displayRow(rows, "Member", "Type", "Default", "Meaning");
    addMembers(rows, message.members, "");
    std::map<std::string, TypeDescriptor> enums;
    for (auto const& member : message.members) { collectEnums(enums, member.type); }
    for (auto const& entry : enums) { addEnum(rows, entry.second); }
    return rows;
}

/// Lists the messages of the catalogue, or describes one of them.
class CatalogueCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const command = app.add_subcommand("catalogue", "List the messages, or describe one of them");
        command->add_option("CLASS", name_, "Message to describe, such as PingMsg")
            ->type_name("")
            ->check(CLI::Validator(&complaintAboutMessage, ""));
        return command;
    }

    ExitCode run(DaemonAddress const&, Output& output) override {
        if (!name_.empty()) {
            auto const& message = findMessage(name_);
            output.show(toRows(message), toLine(message));
            return ExitCode::ok;
        }
        StringVecVec rows;
        std::string lines;
        for (auto const& message : describeCatalogue()) {
            displayRow(rows, message.name, message.base, keysOf(message));
            lines += (lines.empty() ? "" : "\n") + toLine(message);
        }
        output.titles({"Message", "Base", "Members"});
        output.show(rows, lines);
        return ExitCode::ok;
    }

    std::vector<std::string> completions(TypedWord const& /*typed*/) const override { return messageWords(); }

private:
    std::string name_;
};

} // namespace

std::unique_ptr<Command> makeCatalogueCommand() { return std::make_unique<CatalogueCommand>(); }

} // namespace zorv
