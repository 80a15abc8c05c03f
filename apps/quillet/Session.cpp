// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Session.h"

#include "platform/libio/connectTcp.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <csignal>
#include <typeinfo>
#include <utility>

namespace zorv {

Session::Session(DaemonAddress const& address)
    : timeout_(address.timeout),
      interrupt_(loop_, {SIGINT}, [this](int) { end(ExitCode::interrupted, ""); }),
      // If the daemon sends nothing at all, the first request's own deadline detects that.
      bus_(loop_, busHandlers(), timeout_ + std::chrono::seconds(10)) {
    // Apart from its version, the only message that the daemon sends unasked is that it refuses this client.
    bus_.listen<Confirmable>([this](auto const& message, PeerId) {
        end(ExitCode::noConnection, "the daemon refused the connection: " + toString(message->result()));
    });
    auto const place = address.host + " port " + std::to_string(address.port);
    ConnectHandlers handlers;
    handlers.connected = [this](TcpConnection connection) {
        open(std::move(connection));
        loop_.stop();
    };
    handlers.failed = [this, place](std::string const& reason) {
        end(ExitCode::noConnection, "cannot connect to " + place + ": " + reason);
    };
    connectTcp(loop_, address.host, address.port, timeout_, TcpLimits(), std::move(handlers));
    wait();
}

MessageBus::Handlers Session::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [this](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.badLine = [this](PeerId, BadMessageError const& error) {
        end(ExitCode::protocolError, std::string("the daemon sent what is no message: ") + error.what());
    };
    handlers.left = [this](PeerId, std::string const& reason) {
        end(ExitCode::noConnection, "lost the connection to the daemon: " + reason);
    };
    return handlers;
}

/// Each side sends its version without waiting for the other's. The first request need not wait either.
void Session::open(TcpConnection connection) {
    daemon_ = bus_.attach(std::move(connection));
    bus_.send(daemon_, VersionMsg::create(protocolVersion));
}

/// The complaint about the daemon's first message; empty if the message is good.
std::string Session::judgeOpening(TMessage const& first) {
    auto const* const version = dynamic_cast<VersionMsg const*>(&first);
    std::string complaint;
    if (version == nullptr) {
        complaint = "the daemon did not tell its version but sent " + first.name();
    } else if (!understands(version->protocolVersion())) {
        complaint = "the daemon speaks protocol version " + printable(version->protocolVersion()) +
                    ", this client speaks " + protocolVersion;
    }
    if (!complaint.empty()) { end(ExitCode::protocolError, complaint); }
    return complaint;
}

boost::shared_ptr<Confirmable> Session::ask(boost::shared_ptr<Confirmable> const& request) {
    boost::shared_ptr<Confirmable> answer;
    bus_.request(daemon_, request, timeout_, [this, &answer](MessageBus::ConfirmablePtr const& any) {
        answer = boost::dynamic_pointer_cast<Confirmable>(any);
        loop_.stop();
    });
    wait();
    auto const& asked = *request;
    auto const& answered = answer ? *answer : asked;
    bool const isRejection = typeid(answered) == typeid(Confirmable) && answered.result() != ZResult::success;
    if (!answer || (typeid(answered) != typeid(asked) && !isRejection)) {
        throw ExitError(ExitCode::protocolError, "the daemon answered with another message: " + answered.name());
    }
    return answer;
}

void Session::pause(std::chrono::milliseconds duration) {
    Timer const timer(loop_, duration, [this] { loop_.stop(); });
    wait();
}

/// Runs the loop until the operation that was started has its outcome.
void Session::wait() {
    loop_.run();
    if (end_) { throw ExitError(*end_); }
}

void Session::end(ExitCode code, std::string const& text) {
    // The first failure is the cause of those that follow.
    if (!end_) { end_.emplace(code, text); }
    loop_.stop();
}

} // namespace zorv
