// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Daemon.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/Confirmable.h"
#include "zwave/libquillet/SocketStatusMsg.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <chrono>
#include <new>
#include <utility>

namespace zorv::daemon {

namespace {

constexpr std::chrono::minutes endTime{1};            // a memory that is being written is written to its end
constexpr std::chrono::milliseconds goodbyeTime{300}; // for clients to read what is left for them

/// The complaint about a client's first message; empty if the message is good.
std::string judgeOpening(TMessage const& first) {
    auto const* const version = dynamic_cast<VersionMsg const*>(&first);
    if (version == nullptr) { return first.name() + " instead of VersionMsg"; }
    if (understands(version->protocolVersion())) { return ""; }
    constexpr std::size_t longestShown = 40;
    return "protocol version " + version->protocolVersion().substr(0, longestShown) + ", this is " + protocolVersion;
}

} // namespace

bool mayAdminister(TMessage const& message) { return message.source().address().is_loopback(); }

Daemon::Daemon(EventLoop& loop, OpenPort openPort, std::string const& stateFolder, std::string const& firmwareFolder,
               std::function<void()> ended)
    : loop_(loop),
      ended_(std::move(ended)),
      recorder_(stateFolder),
      bus_(loop, busHandlers()),
      announcer_(bus_, link_, recorder_),
      link_(loop, announcer_, std::move(openPort)),
      requests_(bus_, link_, recorder_),
      context_{bus_, link_, requests_, announcer_},
      metrics_(loop, bus_, link_, requests_),
      clientMessages_(
          context_, [this] { return metrics_.rows(); }, [this] { quit(); }),
      networkMessages_(context_),
      nodeMessages_(context_),
      moduleMessages_(context_),
      memoryMessages_(context_),
      firmwareMessages_(context_, firmwareFolder) {
    for (auto const& device : recorder_.devices()) { link_.remember(device); }
    link_.atTurnsEnd([this] { turnEnded(); });
    link_.trace([this](serialapi::Side sender, serialapi::Frame const& frame) { announcer_.traced(sender, frame); });
}

MessageBus::Handlers Daemon::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.badLine = [this](PeerId from, BadMessageError const& error) { reject(from, error); };
    // Nobody can tell a client that has only closed its own half from one that is gone.
    handlers.inputEnded = [this](PeerId peer) { requests_.inputEnded(peer); };
    handlers.left = [this](PeerId peer, std::string const& reason) { left(peer, reason); };
    return handlers;
}

// ---- clients

void Daemon::welcome(TcpConnection connection) {
    auto const remote = connection.remote();
    Logger::log(LogLevel::info, "zwaved: " + boost::lexical_cast<std::string>(remote) + " connected",
                BOOST_CURRENT_LOCATION);
    auto const peer = bus_.attach(std::move(connection));
    try {
        clients_.emplace(peer, remote);
        clientMessages_.tellVersion(peer);
    } catch (std::bad_alloc const&) {
        insist([&] { bus_.disconnect(peer); });
        throw;
    }
    ifMemoryAllows(
        [&] { announcer_.announce(SocketStatusMsg::create(remote, SocketEvent::connect, SocketActor::client)); });
}

void Daemon::left(PeerId peer, std::string const& reason) {
    insist([&] { requests_.left(peer); }); // no mode stays open behind it
    auto const status = reason == TcpConnection::closedByPeer ? SocketEvent::disconnect : SocketEvent::error;
    auto const client = clients_.extract(peer);
    ifMemoryAllows([&] {
        if (!client.empty()) {
            announcer_.announce(SocketStatusMsg::create(client.mapped(), status, SocketActor::client));
        }
    });
    if (hasSaidGoodbye_ && bus_.peerCount() == 0) { ended_(); }
}

void Daemon::reject(PeerId from, BadMessageError const& error) {
    auto const rejection = boost::make_shared<Confirmable>(ZResult::rejected);
    if (error.header()) { rejection->setResponse(*error.header()); }
    bus_.send(from, rejection);
}

// ---- the end

void Daemon::quit() {
    if (isEnding_) { return ended_(); }
    isEnding_ = true;
    ifMemoryAllows([this] { announcer_.stopping(); });
    insist([this] { lastMoment_ = Timer(loop_, endTime, [this] { sayGoodbye(); }); });
    link_.windUp(); // its turn's end looks whether anything is left
}

/// What has waited for the controller goes on, and what it has found out is kept.
void Daemon::turnEnded() {
    announcer_.turnEnded();
    requests_.goOn();
    recorder_.flush();
    if (isEnding_ && link_.controller().isIdle()) { sayGoodbye(); }
}

void Daemon::sayGoodbye() {
    if (std::exchange(hasSaidGoodbye_, true)) { return; }
    if (bus_.peerCount() == 0) { return ended_(); }
    insist([this] { lastMoment_ = Timer(loop_, goodbyeTime, [this] { ended_(); }); });
    bus_.disconnectAll("the daemon ends");
}

} // namespace zorv::daemon
