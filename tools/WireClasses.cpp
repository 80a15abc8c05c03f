// SPDX-License-Identifier: Apache-2.0
#include "tools/WireClasses.h"

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/tables/MemberTable.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/RawCommand.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <json/reader.h>

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>

namespace zorv {

namespace {

using Classes = std::map<std::string, WireClass>;

/// By default the daemon's device information names the type of the machine; the reference is the same on every one.
void dropMachineDependentDefault(std::vector<MemberDescriptor>& members) {
    auto const found = std::find_if(members.begin(), members.end(),
                                    [](MemberDescriptor const& member) { return member.key == "deviceInfo_"; });
    found->defaultJson.clear();
}

/// A base whose frame is written without a member table.
TypeDescriptor describeBase(char const* serialName, std::string base, std::vector<MemberDescriptor> members) {
    TypeDescriptor type{TypeDescriptor::Kind::framed, serialName};
    type.base = std::move(base);
    type.members = std::move(members);
    return type;
}

std::map<std::string, TypeDescriptor> describeAll() {
    auto types = describeCatalogue();
    types.insert(types.end(),
                 {Confirmable::describe(), TConfirmable::describe(), TMessage::describe(), Blob::describe(),
                  Device::describe(), RawCommand::describe(),
                  describeBase(GenericCommand::serialName(), Serializable::serialName(), {}),
                  describeBase(Serializable::serialName(), "",
                               {{"version_", "version of the class's wire form", describeType(Type<int>()), "1"}})});
    std::map<std::string, TypeDescriptor> all;
    for (auto const& type : types) { all.emplace(type.name, type); }
    dropMachineDependentDefault(all.at(ControllerInfoMsg::serialName()).members);
    return all;
}

void requireDescribed(Json::Value const& frame, std::vector<MemberDescriptor> const& members) {
    std::set<std::string> described{"__name__", "__bases__"};
    for (auto const& member : members) { described.insert(member.key); }
    for (auto const& key : frame.getMemberNames()) {
        if (described.count(key) == 0) {
            throw std::logic_error("nothing describes " + key + " of " + frame["__name__"].asString());
        }
    }
}

/// Adds the class that a frame shows, and those of the frames inside it.
void add(Classes& classes, Json::Value const& frame, std::map<std::string, TypeDescriptor> const& all) {
    auto const name = frame["__name__"].asString();
    auto& entry = classes[name];
    entry.type = all.at(name);
    entry.frame = frame;
    requireDescribed(frame, entry.type.members);
    for (auto const& base : frame["__bases__"]) {
        add(classes, base, all);
        if (entry.type.base != base["__name__"].asString()) {
            throw std::logic_error(name + " has another base than it is described with");
        }
    }
}

bool derivesFrom(Classes const& classes, std::string name, std::string const& base) {
    while (name != base) {
        auto const found = classes.find(name);
        if (found == classes.end()) { return false; }
        name = found->second.type.base;
    }
    return true;
}

void collect(std::map<std::string, TypeDescriptor>& types, TypeDescriptor const& type,
             std::vector<TypeDescriptor::Kind> const& kinds) {
    if (std::find(kinds.begin(), kinds.end(), type.kind) != kinds.end()) { types.emplace(type.name, type); }
    for (auto const& member : type.members) { collect(types, member.type, kinds); }
    if (type.kind == TypeDescriptor::Kind::flagSet) { return; } // its field is described with it
    for (auto const& element : type.elements) { collect(types, element, kinds); }
}

} // namespace

Json::Value parseJson(std::string const& text) {
    Json::Value value;
    std::string errors;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors)) { throw std::runtime_error(errors); }
    return value;
}

Classes wireClasses() {
    auto const all = describeAll();
    Classes classes;
    for (auto const& name : SerialRegistry::names()) {
        auto const object = readSerializable("{\"__name__\":\"" + name + "\"}");
        add(classes, parseJson(toText(*object)), all);
        classes.at(name).registered = true;
    }
    for (auto& entry : classes) { entry.second.isMessage = derivesFrom(classes, entry.first, TMessage::serialName()); }
    return classes;
}

std::vector<std::string> kindsOf(Classes const& classes, std::string const& name) {
    std::vector<std::string> kinds;
    for (auto const& entry : classes) {
        if (entry.second.registered && derivesFrom(classes, entry.first, name)) { kinds.push_back(entry.first); }
    }
    return kinds;
}

std::map<std::string, TypeDescriptor> typesOfKind(Classes const& classes,
                                                  std::vector<TypeDescriptor::Kind> const& kinds) {
    std::map<std::string, TypeDescriptor> types;
    for (auto const& entry : classes) {
        for (auto const& member : entry.second.type.members) { collect(types, member.type, kinds); }
    }
    return types;
}

} // namespace zorv
