// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/GenericCommand.h"

#include "platform/libtransport/tables/MemberTable.h"

namespace zorv {

void GenericCommand::serialInserter(Serializer& s) const {
    insertFrame<Serializable>(s, serialName(), *this, std::tuple());
}

void GenericCommand::serialExtract(Serializer& s) { extractFrame<Serializable>(s, *this, std::tuple()); }

} // namespace zorv
