// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/findMessage.h"

#include "apps/commandLine.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "zwave/libquillet/Catalogue.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace zorv {

namespace {

std::string const prefix = "zorv::"; // of serial names

} // namespace

TypeDescriptor const& findMessage(std::string const& name) {
    for (auto const& message : describeCatalogue()) {
        if (message.name == name || message.name == prefix + name) { return message; }
    }
    std::vector<std::string> known;
    for (auto const& message : describeCatalogue()) { known.push_back(message.name.substr(prefix.size())); }
    auto const bare = name.compare(0, prefix.size(), prefix) == 0 ? name.substr(prefix.size()) : name;
    throw std::invalid_argument("no message is called " + name + suggest(bare, known) +
                                "; \"quillet catalogue\" lists them");
}

MemberDescriptor const* findMember(TypeDescriptor const& message, std::string const& key) {
    auto const found = std::find_if(message.members.begin(), message.members.end(),
                                    [&key](auto const& member) { return member.key == key; });
    return found == message.members.end() ? nullptr : &*found;
}

std::string complaintAboutMessage(std::string const& name) {
    try {
        findMessage(name);
    } catch (std::invalid_argument const& error) { return error.what(); }
    return {};
}

} // namespace zorv
