// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/SimulatedNetwork.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpListener.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "zwave/libquillet/PingMsg.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace zorv {

/// The reference daemon: answers the messages of its clients from a simulated network.
class Daemon {
public:
    Daemon(EventLoop& loop, TcpListener::Endpoint const& local, TcpLimits const& limits,
           NetworkDescription const& network);

    TcpListener::Endpoint local() const { return listener_.local(); }

private:
    MessageBus::Handlers busHandlers();
    void handleMessages();
    void welcome(TcpConnection connection);
    void ping(boost::shared_ptr<PingMsg> const& request, PeerId from);

    static std::string judgeOpening(TMessage const& first);
    void reject(PeerId from, BadMessageError const& error);
    void tellVersion(PeerId to);
    void after(std::chrono::milliseconds delay, std::function<void()> work);

    EventLoop& loop_;
    SimulatedNetwork network_;
    MessageBus bus_;
    std::uint64_t lastTimer_ = 0;
    std::map<std::uint64_t, Timer> timers_; // of the outcomes that the network has still to deliver
    TcpListener listener_;
};

} // namespace zorv
