// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/SerialRegistrar.h"
#include "platform/libtransport/tables/MemberTable.h"
#include "zwave/libquillet/printFromSerial.h"
#include "zwave/libquillet/support/Containers.h"
#include "zwave/libquillet/support/MessageOf.h"

#include <boost/make_shared.hpp>

#include <memory>

namespace zorv {

/// Reads a member by its input operator, with the messages' own way of reading lists and maps.
struct MessageReader {
    template <class T> void operator()(Serializer& s, T& value) const { s >> value; }
};

template <class Self, class Base> boost::shared_ptr<TConfirmable> CloneOf<Self, Base, true>::clone() const {
    return boost::make_shared<Self>(static_cast<Self const&>(*this));
}

template <class Self, class Base> void MessageOf<Self, Base>::serialInserter(Serializer& s) const {
    insertFrame<Base>(s, Self::registrar.serialName(), self(), Self::Wire::members);
}

template <class Self, class Base> void MessageOf<Self, Base>::serialExtract(Serializer& s) {
    extractFrame<Base, MessageReader>(s, static_cast<Self&>(*this), Self::Wire::members);
}

template <class Self, class Base>
Serializable* MessageOf<Self, Base>::serialFactory(Serializer& s, Serializable* target) {
    if (target != nullptr) {
        target->serialExtract(s);
        return target;
    }
    auto message = [] {
        TMessage::NextIsRead const scope;
        return std::make_unique<Self>();
    }();
    message->serialExtract(s);
    message->drawMissing();
    return message.release();
}

template <class Self, class Base> void MessageOf<Self, Base>::print(std::ostream& os) const {
    printFromSerial(os, self());
}

template <class Self, class Base> char const* MessageOf<Self, Base>::serialName() noexcept {
    return Self::registrar.serialName().c_str();
}

template <class Self, class Base> TypeDescriptor MessageOf<Self, Base>::describe() {
    return describeFrame<Base>(serialName(), Self(), Self::Wire::members);
}

} // namespace zorv
