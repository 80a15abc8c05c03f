// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "platform/libzorvshared/SocketActor.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

namespace SocketEvent {

enum Enum : int { invalid, connect, disconnect, error };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)
ZORV_ENUM_DECLARE_HEX(QUILLET_EXPORT)

} // namespace SocketEvent

/// What happened on a TCP connection, whose remote endpoint is the message's source. Nobody answers it.
class QUILLET_EXPORT SocketStatusMsg : public MessageOf<SocketStatusMsg, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SocketStatusMsg() = default;
    SocketStatusMsg(SocketEvent::Enum status, SocketActor::Enum actor) : status_(status), actor_(actor) {}

    static boost::shared_ptr<SocketStatusMsg> create(Endpoint const& source, SocketEvent::Enum status,
                                                     SocketActor::Enum actor);

    SocketEvent::Enum status() const noexcept { return status_; }
    SocketActor::Enum actor() const noexcept { return actor_; }

private:
    friend MessageOf;
    struct Wire;

    SocketEvent::Enum status_ = SocketEvent::invalid;
    SocketActor::Enum actor_ = SocketActor::none;
};

extern template class MessageOf<SocketStatusMsg, TMessage>;

} // namespace zorv
