// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Session.h"

#include "apps/quillet/Terminal.h"

#include "zwave/libclient/hearAll.h"
#include "zwave/libquillet/protocolVersion.h"

#include <unistd.h>

#include <csignal>
#include <iostream>
#include <typeinfo>
#include <utility>

namespace zorv {

Session::Session(DaemonAddress const& address)
    : timeout_(address.timeout),
      ownLoop_(address.loop == nullptr ? std::make_unique<EventLoop>() : nullptr),
      loop_(address.loop == nullptr ? *ownLoop_ : *address.loop),
      interrupt_(loop_, {SIGINT}, [this](int) { interrupt(); }),
      // If the daemon sends nothing at all, the first request's own deadline detects that.
      bus_(loop_, busHandlers(), timeout_ + std::chrono::seconds(10)) {
    // Apart from its version, the only message that the daemon sends unasked is that it refuses this client.
    bus_.listen<Confirmable>([this](auto const& message, PeerId) {
        end(ExitCode::noConnection, "the daemon refused the connection: " + toString(message->result()));
    });
    connect(address);
    wait();
}

void Session::connect(DaemonAddress const& address) {
    // The user may have ended this session when the connection is there.
    std::weak_ptr<bool> const alive = alive_;
    ConnectHandlers handlers;
    handlers.connected = [this, alive](TcpConnection connection) {
        if (alive.expired()) { return; }
        open(std::move(connection));
        loop_.stop();
    };
    handlers.failed = [this, alive, place = toString(address.place)](std::string const& reason) {
        if (alive.expired()) { return; }
        end(ExitCode::noConnection, "cannot connect to " + place + ": " + reason);
    };
    connectDaemon(loop_, address.place, timeout_, std::move(handlers));
}

MessageBus::Handlers Session::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [this](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.badLine = [this](PeerId, BadMessageError const& error) {
        end(ExitCode::protocolError, std::string("the daemon sent what is no message: ") + error.what());
    };
    handlers.left = [this](PeerId, std::string const& reason) {
        if (isLeaving_) { return loop_.stop(); }
        end(ExitCode::noConnection, "lost the connection to the daemon: " + reason);
    };
    return handlers;
}

/// Each side sends its version without waiting for the other's. The first request need not wait either.
void Session::open(TcpConnection connection) {
    daemon_ = bus_.attach(std::move(connection));
    bus_.send(daemon_, VersionMsg::create(protocolVersion));
}

std::string Session::judgeOpening(TMessage const& first) {
    auto complaint = complaintAboutOpening(first);
    if (!complaint.empty()) { end(ExitCode::protocolError, complaint); }
    return complaint;
}

boost::shared_ptr<Confirmable> Session::ask(boost::shared_ptr<Confirmable> const& request,
                                            std::optional<std::chrono::milliseconds> timeout,
                                            MessageBus::Answered const& progress) {
    boost::shared_ptr<Confirmable> answer;
    bus_.request(
        daemon_, request, timeout.value_or(timeout_),
        [this, &answer](MessageBus::ConfirmablePtr const& any) {
            answer = boost::dynamic_pointer_cast<Confirmable>(any);
            loop_.stop();
        },
        [this, &progress](MessageBus::ConfirmablePtr const& state) {
            if (progress) {
                call([&] { progress(state); });
            }
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

void Session::request(boost::shared_ptr<Confirmable> const& request) {
    bus_.request(daemon_, request, timeout_, [](MessageBus::ConfirmablePtr const&) {});
}

void Session::request(boost::shared_ptr<Confirmable> const& request, std::chrono::milliseconds timeout,
                      std::function<void(Confirmable const& answer)> answered) {
    bus_.request(daemon_, request, timeout, [this, answered = std::move(answered)](auto const& any) {
        auto const answer = boost::dynamic_pointer_cast<Confirmable>(any);
        if (answer) {
            call([&] { answered(*answer); });
        } else {
            end(ExitCode::protocolError, "the daemon answered with another message: " + any->name());
        }
    });
}

void Session::tellLast(boost::shared_ptr<TMessage> const& message) {
    bus_.send(daemon_, message);
    isLeaving_ = true;
    bus_.disconnectAll("the client is done");
    wait();
}

bool Session::tellAndWaitForEnd(boost::shared_ptr<TMessage> const& message) {
    bus_.send(daemon_, message);
    isLeaving_ = true;
    pause(timeout_);
    return bus_.peerCount() == 0;
}

void Session::hear(std::function<void(TMessage const& message)> heard) {
    hearAll(bus_, [this, heard = std::move(heard)](TMessage const& message) { call([&] { heard(message); }); });
}

/// What cannot be shown ends the operation; the bus takes no exceptions.
void Session::call(std::function<void()> const& work) {
    try {
        work();
    } catch (ExitError const& error) { end(error.code(), error.what()); }
}

void Session::interrupt() {
    auto const work = std::exchange(interrupted_, {});
    if (work && work()) { return; }
    if (Terminal(STDERR_FILENO).isThere()) { std::cerr << std::endl; } // behind the ^C that the terminal shows
    end(ExitCode::interrupted, "");
}

void Session::everySecond(std::function<void()> work) {
    tick_ = std::move(work);
    tick_ ? tickLater() : nextTick_.cancel();
}

void Session::tickLater() {
    nextTick_ = Timer(loop_, std::chrono::seconds(1), [this] {
        tick_();
        tickLater();
    });
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
