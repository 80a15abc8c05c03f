// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/Catalogue.h"

#include "zwave/libquillet/support/MessageDescriptor.h"

namespace zorv {

namespace {

template <class... Messages> std::vector<MessageDescriptor const*> describe(MessageList<Messages...>) {
    return {&Messages::descriptor()...};
}

} // namespace

std::vector<MessageDescriptor const*> const& describeCatalogue() {
    static auto const descriptors = describe(Catalogue());
    return descriptors;
}

} // namespace zorv
