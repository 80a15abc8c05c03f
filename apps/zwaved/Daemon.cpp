#include "apps/zwaved/Daemon.h"

#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/Confirmable.h"

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
      bus_(loop, {[this](PeerId from, BadMessageError const& error) { reject(from, error); }, {}}),
      listener_(loop, local, limits, [this](TcpConnection connection) {
          Logger::log(LogLevel::info, "zwaved: " + boost::lexical_cast<std::string>(connection.remote()) + " connected",
                      BOOST_CURRENT_LOCATION);
          bus_.attach(std::move(connection));
      }) {
    handleMessages();
}

/// Which messages the daemon answers, and by what.
void Daemon::handleMessages() {
    bus_.handle<PingMsg>([this](auto const& request, PeerId) { ping(request); });
}

void Daemon::ping(boost::shared_ptr<PingMsg> const& request) {
    auto const outcome = network_.reach(request->destination());
    auto const latencyMs = outcome.result == ZResult::success ? static_cast<unsigned int>(outcome.delay.count()) : 0;
    after(outcome.delay,
          [this, response = PingMsg::create(request, outcome.result, latencyMs)] { bus_.answer(response); });
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
