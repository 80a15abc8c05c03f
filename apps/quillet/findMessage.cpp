// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/findMessage.h"

#include "platform/libtransport/tables/TypeDescriptor.h"
#include "zwave/libquillet/Catalogue.h"

#include <stdexcept>

namespace zorv {

TypeDescriptor const& findMessage(std::string const& name) {
    for (auto const& message : describeCatalogue()) {
        if (message.name == name || message.name == "zorv::" + name) { return message; }
    }
    throw std::invalid_argument("no message is called " + name + "; \"quillet catalogue\" lists them");
}

std::string complaintAboutMessage(std::string const& name) {
    try {
        findMessage(name);
    } catch (std::invalid_argument const& error) { return error.what(); }
    return {};
}

} // namespace zorv
