// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/Catalogue.h"

namespace zorv {

namespace {

template <class... Messages> std::vector<TypeDescriptor> describe(MessageList<Messages...>) {
    return {Messages::describe()...};
}

} // namespace

std::vector<TypeDescriptor> const& describeCatalogue() {
    static auto const messages = describe(Catalogue());
    return messages;
}

} // namespace zorv
