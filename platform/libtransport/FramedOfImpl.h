#pragma once

#include "platform/libtransport/FramedOf.h"
#include "platform/libtransport/MemberTable.h"
#include "platform/libtransport/SerialRegistrar.h"

#include <memory>

namespace zorv {

template <class Self, class Base> void FramedOf<Self, Base>::serialInserter(Serializer& s) const {
    insertFrame<Base>(s, serialName(), static_cast<Self const&>(*this), Self::Wire::members);
}

template <class Self, class Base> void FramedOf<Self, Base>::serialExtract(Serializer& s) {
    extractFrame<Base>(s, static_cast<Self&>(*this), Self::Wire::members);
}

template <class Self, class Base>
Serializable* FramedOf<Self, Base>::serialFactory(Serializer& s, Serializable* target) {
    return extractOrMake(s, target, [] { return std::make_unique<Self>(); });
}

template <class Self, class Base> char const* FramedOf<Self, Base>::serialName() noexcept {
    return Self::registrar.serialName().c_str();
}

template <class Self, class Base> TypeDescriptor FramedOf<Self, Base>::describe() {
    return describeRecord(Self::NAME, Self(), Self::Wire::members);
}

} // namespace zorv
