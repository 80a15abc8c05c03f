#pragma once

#include "platform/libtransport/FramedOf.h"
#include "platform/libtransport/MemberTable.h"
#include "platform/libtransport/SerialRegistrar.h"

#include <memory>
#include <type_traits>

namespace zorv {

/// The base whose frame stands in the frame of a class with this base.
template <class Base> using FramedBase = std::conditional_t<std::is_same_v<Base, Serializable>, NoBase, Base>;

template <class Self, class Base> void FramedOf<Self, Base>::serialInserter(Serializer& s) const {
    insertFrame<FramedBase<Base>>(s, serialName(), static_cast<Self const&>(*this), Self::Wire::members);
}

template <class Self, class Base> void FramedOf<Self, Base>::serialExtract(Serializer& s) {
    extractFrame<FramedBase<Base>>(s, static_cast<Self&>(*this), Self::Wire::members);
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
