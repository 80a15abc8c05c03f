// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/findMessage.h"

#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/support/MessageDescriptor.h"

#include <stdexcept>

namespace zorv {

MessageDescriptor const& findMessage(std::string const& name) {
    for (auto const* const message : describeCatalogue()) {
        if (message->serialName == name || message->serialName == "zorv::" + name) { return *message; }
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
