#pragma once

#include "platform/libtransport/MemberTable.h"
#include "platform/libtransport/RecordOf.h"

namespace zorv {

template <class Self> void RecordOf<Self>::serialInserter(Serializer& s) const {
    insertRecord(s, static_cast<Self const&>(*this), Self::Wire::members);
}

template <class Self> void RecordOf<Self>::serialExtract(Serializer& s) {
    extractRecord(s, static_cast<Self&>(*this), Self::Wire::members);
}

template <class Self> TypeDescriptor RecordOf<Self>::describe() {
    return describeRecord(Self::Wire::name, Self(), Self::Wire::members);
}

} // namespace zorv
