// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Daemon.h"

#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/Confirmable.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <string>
#include <utility>

namespace zorv {

Daemon::Daemon(EventLoop& loop, TcpListener::Endpoint const& local, TcpLimits const& limits,
               NetworkDescription const& network)
    : loop_(loop),
      network_(network),
      bus_(loop, busHandlers()),
      listener_(loop, local, limits, [this](TcpConnection connection) { welcome(std::move(connection)); }) {
    handleMessages();
}

MessageBus::Handlers Daemon::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.badLine = [this](PeerId from, BadMessageError const& error) { reject(from, error); };
    return handlers;
}

/// Which messages the daemon answers, and by what.
void Daemon::handleMessages() {
    bus_.handle<PingMsg>([this](auto const& request, PeerId from) { ping(request, from); });
    bus_.listen<VersionMsg>([this](auto const&, PeerId from) { tellVersion(from); });
}

void Daemon::welcome(TcpConnection connection) {
    Logger::log(LogLevel::info, "zwaved: " + boost::lexical_cast<std::string>(connection.remote()) + " connected",
                BOOST_CURRENT_LOCATION);
    tellVersion(bus_.attach(std::move(connection)));
}

/// The complaint about a client's first message; empty if the message is good.
std::string Daemon::judgeOpening(TMessage const& first) {
    auto const* const version = dynamic_cast<VersionMsg const*>(&first);
    if (version == nullptr) { return first.name() + " instead of VersionMsg"; }
    if (understands(version->protocolVersion())) { return ""; }
    constexpr std::size_t longestShown = 40;
    return "protocol version " + version->protocolVersion().substr(0, longestShown) + ", this is " + protocolVersion;
}

void Daemon::tellVersion(PeerId to) { bus_.send(to, VersionMsg::create(protocolVersion)); }

void Daemon::ping(boost::shared_ptr<PingMsg> const& request, PeerId from) {
    auto const outcome = network_.reach(request->destination());
    auto const latencyMs = outcome.result == ZResult::success ? static_cast<unsigned int>(outcome.delay.count()) : 0;
    auto const response = PingMsg::create(request, outcome.result, latencyMs);
    after(outcome.delay, [this, from, response] { bus_.answer(from, response); });
}

void Daemon::reject(PeerId from, BadMessageError const& error) {
    auto const rejection = boost::make_shared<Confirmable>(ZResult::rejected);
    if (error.header()) { rejection->setResponse(*error.header()); }
    bus_.send(from, rejection);
}

void Daemon::after(std::chrono::milliseconds delay, std::function<void()> work) {
    if (delay.count() == 0) { return work(); }
    auto const id = ++lastTimer_;
    timers_.emplace(id, Timer(loop_, delay, [this, id, work = std::move(work)] {
                        timers_.erase(id);
                        work();
                    }));
}

} // namespace zorv
