// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/support/typeText.h"

#include "platform/libtransport/tables/TypeDescriptor.h"

namespace zorv {

std::string typeText(TypeDescriptor const& type) {
    using Kind = TypeDescriptor::Kind;
    switch (type.kind) {
    case Kind::boolean:
    case Kind::integer:
    case Kind::number:
    case Kind::text:
    case Kind::timeStamp:
    case Kind::uuid:
    case Kind::endpoint:
    case Kind::enumeration:
    case Kind::openSet:
    case Kind::record:
    case Kind::framed: return type.name;
    case Kind::flagSet: return type.name + " flags";
    case Kind::reference: return type.name + " or null";
    case Kind::list: return "list of " + typeText(type.elements.at(0));
    case Kind::pairs: return "pairs of " + typeText(type.elements.at(0)) + " and " + typeText(type.elements.at(1));
    }
    return {};
}

} // namespace zorv
