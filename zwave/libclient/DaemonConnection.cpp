// SPDX-License-Identifier: Apache-2.0
#include "zwave/libclient/DaemonConnection.h"

#include "platform/libio/connectTcp.h"
#include "platform/libio/connectUnix.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/Catalogue.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/pointer_cast.hpp>

#include <type_traits>
#include <typeinfo>

namespace zorv {

namespace {

/// The complaint about a daemon's first message; empty if it is a version that this library understands.
std::string complaintAbout(TMessage const& first) {
    auto const* const version = dynamic_cast<VersionMsg const*>(&first);
    if (version == nullptr) { return "the daemon did not tell its version but sent " + first.name(); }
    if (understands(version->protocolVersion())) { return {}; }
    return "the daemon speaks protocol version " + printable(version->protocolVersion()) + ", this client speaks " +
           protocolVersion;
}

template <class... Messages> void listenToEach(DaemonConnection& connection, MessageList<Messages...>,
                                               std::function<void(TMessage const& message)> const& heard) {
    auto const listenTo = [&](auto const* type) {
        using Each = std::remove_const_t<std::remove_pointer_t<decltype(type)>>;
        if constexpr (!std::is_same_v<Each, VersionMsg>) {
            connection.listen<Each>([heard](auto const& message) { heard(*message); });
        }
    };
    (listenTo(static_cast<Messages const*>(nullptr)), ...);
}

} // namespace

DaemonConnection::DaemonConnection(EventLoop& loop, DaemonPlace place, OpeningTimes times, Handlers handlers)
    : loop_(loop),
      place_(std::move(place)),
      connectionTime_(times.connection),
      handlers_(std::move(handlers)),
      alive_(std::make_shared<bool>(true)),
      bus_(loop, busHandlers(), times.version) {
    // What a daemon sends unasked is its version, events and, where it does not want this client, this one.
    bus_.listen<Confirmable>([this](auto const& message, PeerId) {
        end(ConnectionEnd::refused, "the daemon refused the connection: " + toString(message->result()));
    });
}

DaemonConnection::~DaemonConnection() { *alive_ = false; }

MessageBus::Handlers DaemonConnection::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [this](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.badLine = [this](PeerId, BadMessageError const& error) {
        if (!hasEnded_ && handlers_.badLine) { handlers_.badLine(error); }
    };
    handlers.left = [this](PeerId, std::string const& reason) {
        end(ConnectionEnd::lost, "lost the connection to the daemon: " + reason);
    };
    return handlers;
}

void DaemonConnection::connect() {
    hasEnded_ = false;
    ConnectHandlers handlers;
    // Connecting cannot be called off, and may end when this object is gone.
    handlers.connected = [this, alive = alive_](TcpConnection connection) {
        if (*alive) { open(std::move(connection)); }
    };
    handlers.failed = [this, alive = alive_](std::string const& reason) {
        if (*alive) { end(ConnectionEnd::unreachable, "cannot connect to " + toString(place_) + ": " + reason); }
    };
    if (!place_.socket.empty()) { return connectUnix(loop_, place_.socket, TcpLimits(), std::move(handlers)); }
    connectTcp(loop_, place_.host, place_.port, connectionTime_, TcpLimits(), std::move(handlers));
}

/// Each side sends its version without waiting for the other's. The first request need not wait either.
void DaemonConnection::open(TcpConnection connection) {
    daemon_ = bus_.attach(std::move(connection));
    bus_.send(daemon_, VersionMsg::create(protocolVersion));
    if (handlers_.connected) { handlers_.connected(); }
}

/// The bus ends the connection where there is a complaint.
std::string DaemonConnection::judgeOpening(TMessage const& first) {
    auto complaint = complaintAbout(first);
    if (!complaint.empty()) {
        end(ConnectionEnd::otherVersion, complaint);
    } else if (handlers_.opened) {
        handlers_.opened();
    }
    return complaint;
}

/// The first reason is the cause of those that follow.
void DaemonConnection::end(ConnectionEnd how, std::string const& reason) {
    if (std::exchange(hasEnded_, true)) { return; }
    if (handlers_.ended) { handlers_.ended(how, reason); }
}

void DaemonConnection::listenToAll(std::function<void(TMessage const& message)> const& heard) {
    listenToEach(*this, Catalogue(), heard);
}

DaemonConnection::Answer DaemonConnection::answerTo(Confirmable const& request, MessageBus::ConfirmablePtr const& any) {
    auto answer = boost::dynamic_pointer_cast<Confirmable>(any);
    if (!answer) { return {}; }
    auto const& answered = *answer;
    bool const isRejection = typeid(answered) == typeid(Confirmable) && answered.result() != ZResult::success;
    return isRejection || typeid(answered) == typeid(request) ? answer : Answer();
}

} // namespace zorv
