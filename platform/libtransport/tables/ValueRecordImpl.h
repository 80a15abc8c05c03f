// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/MemberTable.h"
#include "platform/libtransport/tables/ValueRecord.h"

namespace zorv {

template <class Self> void ValueRecord<Self>::serialInserter(Serializer& s) const {
    insertRecord(s, static_cast<Self const&>(*this), Self::Wire::members);
}

template <class Self> void ValueRecord<Self>::serialExtract(Serializer& s) {
    extractRecord(s, static_cast<Self&>(*this), Self::Wire::members);
}

template <class Self> TypeDescriptor ValueRecord<Self>::describe() {
    return describeRecord(Self::Wire::name, Self(), Self::Wire::members);
}

} // namespace zorv
