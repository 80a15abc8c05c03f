// SPDX-License-Identifier: Apache-2.0
#include "tools/writeReference.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "zwave/libquillet/ZorvError.h"
#include "zwave/libquillet/support/typeText.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <fstream>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace zorv {

namespace {

using Classes = std::map<std::string, WireClass>;
using Kind = TypeDescriptor::Kind;

std::string bareName(std::string const& serialName) { return serialName.substr(serialName.rfind(':') + 1); }

/// A table cell; a bar would end it.
std::string cell(std::string text) {
    boost::algorithm::replace_all(text, "|", "\\|");
    return text;
}

std::string code(std::string const& text) { return '`' + cell(text) + '`'; }

std::string linkTo(std::string const& name) {
    std::string anchor;
    for (char const c : name) {
        if (c != ':') { anchor += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
    }
    return '[' + name + "](#" + anchor + ')';
}

/// The type in words, with the names of types that have a section of their own as links.
std::string typeCell(TypeDescriptor const& type) {
    switch (type.kind) {
    case Kind::boolean:
    case Kind::number:
    case Kind::text:
    case Kind::timeStamp:
    case Kind::uuid:
    case Kind::endpoint: return typeText(type);
    case Kind::integer: {
        std::ostringstream os;
        os << std::fixed << std::setprecision(0) << type.minimum << " to " << type.maximum;
        return os.str();
    }
    case Kind::enumeration:
    case Kind::openSet:
    case Kind::flagSet:
    case Kind::record:
    case Kind::framed: return linkTo(type.name);
    case Kind::reference: return linkTo(type.name) + " or null";
    case Kind::list: return "list of: " + typeCell(type.elements.at(0));
    case Kind::pairs: return "list of pairs: " + typeCell(type.elements.at(0)) + ", " + typeCell(type.elements.at(1));
    }
    return {};
}

void writeMembers(std::ostream& os, std::vector<MemberDescriptor> const& members) {
    if (members.empty()) {
        os << "\nNo members of its own.\n";
        return;
    }
    os << "\n| Key | Type | Default | Meaning |\n|---|---|---|---|\n";
    for (auto const& member : members) {
        auto const byDefault = member.defaultJson.empty() ? "not fixed" : code(member.defaultJson);
        os << "| " << code(member.key) << " | " << typeCell(member.type) << " | " << byDefault << " | "
           << cell(member.doc) << " |\n";
    }
}

/// The first paragraph of a class's comment in one of the headers, on one line.
std::string classComment(std::string const& className, std::vector<std::string> const& headers) {
    std::string const opening = "///";
    for (auto const& header : headers) {
        std::ifstream file(header);
        std::string comment;
        bool isFirstParagraph = true;
        for (std::string line; std::getline(file, line);) {
            if (boost::algorithm::starts_with(line, opening)) {
                isFirstParagraph = isFirstParagraph && line != opening;
                if (isFirstParagraph) { comment += line.substr(comment.empty() ? opening.size() + 1 : opening.size()); }
                continue;
            }
            bool const isClass = boost::algorithm::starts_with(line, "class ") &&
                                 (line + ' ').find(' ' + className + ' ') != std::string::npos;
            if (isClass && !comment.empty()) { return comment; }
            comment.clear();
            isFirstParagraph = true;
        }
    }
    throw std::runtime_error("no comment at class " + className);
}

std::string purpose(WireClass const& wireClass, std::string const& sourceDir) {
    auto const name = bareName(wireClass.type.name);
    return classComment(name,
                        {sourceDir + "/zwave/libquillet/" + name + ".h", sourceDir + "/zwave/libquillet/ManageNvmMsg.h",
                         sourceDir + "/platform/libzorvshared/" + name + ".h",
                         sourceDir + "/platform/libtransport/" + name + ".h"});
}

void writeClass(std::ostream& os, WireClass const& wireClass, std::string const& sourceDir) {
    os << "\n### " << wireClass.type.name << "\n\n" << purpose(wireClass, sourceDir) << '\n';
    if (!wireClass.frame.isMember("__bases__")) {
        os << "\nTravels without the frames of its base classes.\n";
    } else if (!wireClass.type.base.empty()) {
        os << "\nBase: " << linkTo(wireClass.type.base) << ".\n";
    }
    writeMembers(os, wireClass.type.members);
}

void writeEnum(std::ostream& os, TypeDescriptor const& type) {
    os << "\n### " << type.name << "\n\n";
    if (type.kind == Kind::flagSet) { os << "A set: texts in this order, each at most once, joined by `|`.\n\n"; }
    if (type.kind == Kind::openSet) { os << "Numbers without a text are written as `0x` and hex digits.\n\n"; }
    os << "| Value | Text |\n|---|---|\n";
    auto const writeTexts = [&os](TypeDescriptor const& each) {
        for (auto const& text : each.texts) { os << "| " << text.value << " | " << code(text.text) << " |\n"; }
    };
    writeTexts(type);
    for (auto const& field : type.elements) { writeTexts(field); }
}

/// The error of reading a text.
std::string refusal(std::string const& text) {
    try {
        readSerializable(text);
    } catch (SerializerError const& error) {
        return std::string("`SerializerError` | ") + code(error.what());
    } catch (InvalidEnumError const& error) {
        return std::string("`InvalidEnumError` | ") + code(error.what());
    } catch (SyntaxError const& error) { return std::string("`SyntaxError` | ") + code(error.briefWhat()); }
    throw std::logic_error("is read, although it should not be: " + text);
}

void writeErrors(std::ostream& os) {
    os << "\n## Errors of reading\n\n"
          "What the reader said to a line of each kind when this page was written; `docs/errors.md` lists all "
          "errors.\n\n"
          "| Line | Type | Text |\n|---|---|---|\n";
    for (auto const* const text :
         {R"({"__name__":"zorv::QuitMsg")", R"([])", R"({"a":1})", R"({"__name__":"zorv::NoSuchMsg"})",
          R"({"__name__":"zorv::SubscribeMsg","unsubscribe_":1})", R"({"__name__":"zorv::SubscribeMsg","events_":1})",
          R"({"__name__":"zorv::SubscribeMsg","events_":["a",1]})",
          R"({"__name__":"zorv::SendNifMsg","destination_":"5"})",
          R"({"__name__":"zorv::SendNifMsg","destination_":256})",
          R"({"__name__":"zorv::SendNifMsg","options_":"ack|x"})", R"({"__name__":"zorv::LearnModeMsg","timeout_":-1})",
          R"({"__name__":"zorv::LearnModeMsg","mode_":"x"})", R"({"__name__":"zorv::PingMsg","destination_":5})",
          R"({"__name__":"zorv::PingMsg","destination_":{"nodeId_":true}})",
          R"({"__name__":"zorv::ObserveMsg","message_":[]})"}) {
        os << "| " << code(text) << " | " << refusal(text) << " |\n";
    }
}

} // namespace

void writeReference(std::ostream& os, Classes const& classes, std::string const& sourceDir) {
    os << "# Messages\n\n"
          "Written by `scripts/reference` from the tables that the library reads and writes by; do not edit.\n"
          "`docs/messages.schema.json` says the same as a JSON Schema, `docs/wire.md` how messages travel.\n\n"
          "An object names its class under `__name__` and holds the frames of its base classes, from the direct base\n"
          "down to the header, in `__bases__`. A key that is absent leaves its member at the default.\n"
          "\n## Messages\n";
    for (auto const& entry : classes) {
        if (entry.second.registered && entry.second.isMessage) { writeClass(os, entry.second, sourceDir); }
    }
    os << "\n## Bases\n";
    for (auto const& entry : classes) {
        if (!entry.second.registered) { writeClass(os, entry.second, sourceDir); }
    }
    os << "\n## Records\n\nThose whose names begin with `zorv::` are framed like messages, the others are plain "
          "objects.\n";
    for (auto const& entry : classes) {
        if (entry.second.registered && !entry.second.isMessage) { writeClass(os, entry.second, sourceDir); }
    }
    for (auto const& entry : typesOfKind(classes, {Kind::record})) {
        os << "\n### " << entry.first << '\n';
        writeMembers(os, entry.second.members);
    }
    os << "\n## Enumerations\n";
    for (auto const& entry : typesOfKind(classes, {Kind::enumeration, Kind::openSet, Kind::flagSet})) {
        writeEnum(os, entry.second);
    }
    writeErrors(os);
}

} // namespace zorv
