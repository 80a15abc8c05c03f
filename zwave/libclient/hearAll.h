// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libmessage_bus/MessageBus.h"
#include "zwave/libquillet/Catalogue.h"

#include <type_traits>

namespace zorv {

template <class... Messages, class Heard> void hearAll(MessageBus& bus, MessageList<Messages...>, Heard const& heard) {
    auto const listenTo = [&](auto const* type) {
        using Each = std::remove_const_t<std::remove_pointer_t<decltype(type)>>;
        if constexpr (!std::is_same_v<Each, VersionMsg>) {
            bus.listen<Each>([heard](boost::shared_ptr<Each> const& message, PeerId) { heard(*message); });
        }
    };
    (listenTo(static_cast<Messages const*>(nullptr)), ...);
}

/// Has `heard` called with each message of the catalogue that comes unasked, but for the version, which the bus judges.
template <class Heard> void hearAll(MessageBus& bus, Heard const& heard) { hearAll(bus, Catalogue(), heard); }

} // namespace zorv
