// SPDX-License-Identifier: Apache-2.0
#include "tools/writeSchema.h"

#include <json/writer.h>

#include <ostream>
#include <stdexcept>

namespace zorv {

namespace {

using Classes = std::map<std::string, WireClass>;
using Kind = TypeDescriptor::Kind;

Json::Value refTo(std::string const& name) {
    Json::Value ref;
    ref["$ref"] = "#/$defs/" + name;
    return ref;
}

Json::Value ofType(char const* type) {
    Json::Value schema;
    schema["type"] = type;
    return schema;
}

Json::Value textMatching(std::string const& pattern) {
    auto schema = ofType("string");
    schema["pattern"] = "^(?:" + pattern + ")$";
    return schema;
}

Json::Value enumSchema(TypeDescriptor const& type) {
    auto schema = ofType("string");
    for (auto const& text : type.texts) { schema["enum"].append(text.text); }
    return schema;
}

/// The texts of a flag set in their order, each at most once, and then a text of its field.
std::string flagPattern(TypeDescriptor const& type) {
    auto const& texts = type.texts;
    std::string pattern = texts.front().text;
    for (auto first = texts.begin() + 1; first != texts.end(); ++first) {
        pattern += '|' + first->text;
        for (auto next = first + 1; next != texts.end(); ++next) { pattern += "(?:\\|" + next->text + ")?"; }
    }
    if (type.elements.empty()) { return pattern; }
    std::string values;
    for (auto const& value : type.elements.at(0).texts) { values += (values.empty() ? "" : "|") + value.text; }
    return "(?:" + pattern + ")\\|(?:" + values + ")";
}

Json::Value typeSchema(TypeDescriptor const& type) {
    Json::Value schema;
    switch (type.kind) {
    case Kind::boolean: return ofType("boolean");
    case Kind::integer:
        schema = ofType("integer");
        schema["minimum"] = static_cast<Json::Int64>(type.minimum);
        schema["maximum"] = static_cast<Json::Int64>(type.maximum);
        return schema;
    case Kind::number: return ofType("number");
    case Kind::text: return ofType("string");
    case Kind::timeStamp: return textMatching(R"([0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}Z)");
    case Kind::uuid: return textMatching("[0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}");
    case Kind::endpoint: return textMatching(R"((?:[0-9.]+|\[[0-9a-f:.%A-Za-z]+\]):[0-9]{1,5})");
    case Kind::enumeration:
    case Kind::openSet:
    case Kind::flagSet:
    case Kind::record:
    case Kind::framed: return refTo(type.name);
    case Kind::reference:
        schema["anyOf"].append(ofType("null"));
        schema["anyOf"].append(refTo("any-" + type.name));
        return schema;
    case Kind::list:
        schema = ofType("array");
        schema["items"] = typeSchema(type.elements.at(0));
        return schema;
    case Kind::pairs: {
        auto pair = ofType("array");
        pair["prefixItems"].append(typeSchema(type.elements.at(0)));
        pair["prefixItems"].append(typeSchema(type.elements.at(1)));
        pair["minItems"] = 2;
        pair["maxItems"] = 2;
        schema = ofType("array");
        schema["items"] = pair;
        return schema;
    }
    }
    throw std::logic_error("no schema for " + type.name);
}

void addMembers(Json::Value& schema, std::vector<MemberDescriptor> const& members) {
    for (auto const& member : members) {
        auto& property = schema["properties"][member.key];
        property = typeSchema(member.type);
        property["description"] = member.doc;
        if (!member.defaultJson.empty()) { property["default"] = parseJson(member.defaultJson); }
        schema["required"].append(member.key);
    }
}

Json::Value objectSchema() {
    auto schema = ofType("object");
    schema["properties"] = Json::objectValue;
    schema["required"] = Json::arrayValue;
    schema["additionalProperties"] = false;
    return schema;
}

Json::Value recordSchema(TypeDescriptor const& type) {
    auto schema = objectSchema();
    addMembers(schema, type.members);
    return schema;
}

Json::Value classSchema(WireClass const& wireClass) {
    auto schema = objectSchema();
    schema["properties"]["__name__"]["const"] = wireClass.type.name;
    schema["required"].append("__name__");
    if (wireClass.frame.isMember("__bases__")) {
        auto bases = ofType("array");
        for (auto const& base : wireClass.frame["__bases__"]) {
            bases["prefixItems"].append(refTo(base["__name__"].asString()));
        }
        bases["minItems"] = wireClass.frame["__bases__"].size();
        bases["maxItems"] = wireClass.frame["__bases__"].size();
        schema["properties"]["__bases__"] = bases;
        schema["required"].append("__bases__");
    }
    addMembers(schema, wireClass.type.members);
    return schema;
}

Json::Value anyOf(std::vector<std::string> const& names) {
    Json::Value schema;
    for (auto const& name : names) { schema["anyOf"].append(refTo(name)); }
    return schema;
}

Json::Value definitions(Classes const& classes) {
    Json::Value defs;
    auto const define = [&defs](std::string const& name, Json::Value const& schema) {
        if (defs.isMember(name)) { throw std::logic_error("two types are called " + name); }
        defs[name] = schema;
    };
    for (auto const& entry : classes) { define(entry.first, classSchema(entry.second)); }
    for (auto const& entry : typesOfKind(classes, {Kind::record})) { define(entry.first, recordSchema(entry.second)); }
    for (auto const& entry : typesOfKind(classes, {Kind::enumeration})) {
        define(entry.first, enumSchema(entry.second));
    }
    for (auto const& entry : typesOfKind(classes, {Kind::openSet})) {
        Json::Value schema;
        schema["anyOf"].append(enumSchema(entry.second));
        schema["anyOf"].append(textMatching("0x[0-9a-f]+"));
        define(entry.first, schema);
    }
    for (auto const& entry : typesOfKind(classes, {Kind::flagSet})) {
        define(entry.first, textMatching(flagPattern(entry.second)));
    }
    for (auto const& entry : typesOfKind(classes, {Kind::reference})) {
        define("any-" + entry.first, anyOf(kindsOf(classes, entry.first)));
    }
    return defs;
}

} // namespace

void writeSchema(std::ostream& os, Classes const& classes) {
    std::vector<std::string> messages;
    for (auto const& entry : classes) {
        if (entry.second.registered && entry.second.isMessage) { messages.push_back(entry.first); }
    }
    auto schema = anyOf(messages);
    schema["$schema"] = "https://json-schema.org/draft/2020-12/schema";
    schema["title"] = "Messages between a Z-Wave controller daemon and its clients";
    schema["description"] = "What is written. Readers take keys in any order, absent keys and unknown keys as well.";
    schema["$defs"] = definitions(classes);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    os << Json::writeString(builder, schema) << '\n';
}

} // namespace zorv
