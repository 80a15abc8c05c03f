// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/tables/FramedRecord.h"
#include "platform/libtransport/tables/MemberTable.h"

#include <memory>

namespace zorv {

template <class Self, class Base> void FramedRecord<Self, Base>::serialInserter(Serializer& s) const {
    insertFrame<Base>(s, Self::registrar.serialName(), static_cast<Self const&>(*this), Self::Wire::members);
}

template <class Self, class Base> void FramedRecord<Self, Base>::serialExtract(Serializer& s) {
    extractFrame<Base>(s, static_cast<Self&>(*this), Self::Wire::members);
}

template <class Self, class Base>
Serializable* FramedRecord<Self, Base>::serialFactory(Serializer& s, Serializable* target) {
    if (target != nullptr) {
        target->serialExtract(s);
        return target;
    }
    auto record = std::make_unique<Self>();
    record->serialExtract(s);
    return record.release();
}

template <class Self, class Base> char const* FramedRecord<Self, Base>::serialName() noexcept {
    return Self::registrar.serialName().c_str();
}

template <class Self, class Base> TypeDescriptor FramedRecord<Self, Base>::describe() {
    return describeFrame<Base>(serialName(), Self(), Self::Wire::members);
}

} // namespace zorv
