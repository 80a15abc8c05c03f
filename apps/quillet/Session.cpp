// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Session.h"

#include "apps/quillet/Terminal.h"

#include <unistd.h>

#include <csignal>
#include <iostream>
#include <utility>

namespace zorv {

Session::Session(DaemonAddress const& address)
    : timeout_(address.timeout),
      ownLoop_(address.loop == nullptr ? std::make_unique<EventLoop>() : nullptr),
      loop_(address.loop == nullptr ? *ownLoop_ : *address.loop),
      interrupt_(loop_, {SIGINT}, [this](int) { interrupt(); }),
      // If the daemon sends nothing at all, the first request's own deadline detects that.
      connection_(loop_, address.place, {timeout_, timeout_ + std::chrono::seconds(10)}, connectionHandlers()) {
    connection_.connect();
    wait();
}

DaemonConnection::Handlers Session::connectionHandlers() {
    DaemonConnection::Handlers handlers;
    handlers.connected = [this] { loop_.stop(); };
    handlers.badLine = [this](BadMessageError const& error) {
        end(ExitCode::protocolError, std::string("the daemon sent what is no message: ") + error.what());
    };
    handlers.ended = [this](ConnectionEnd how, std::string const& reason) { ended(how, reason); };
    return handlers;
}

void Session::ended(ConnectionEnd how, std::string const& reason) {
    if (isLeaving_) { return loop_.stop(); }
    end(how == ConnectionEnd::otherVersion ? ExitCode::protocolError : ExitCode::noConnection, reason);
}

boost::shared_ptr<Confirmable> Session::ask(boost::shared_ptr<Confirmable> const& request,
                                            std::optional<std::chrono::milliseconds> timeout,
                                            MessageBus::Answered const& progress) {
    boost::shared_ptr<Confirmable> answer;
    std::string name; // of what came
    connection_.request(
        request, timeout.value_or(timeout_),
        [&](MessageBus::ConfirmablePtr const& any) {
            answer = DaemonConnection::answerTo(*request, any);
            name = any->name();
            loop_.stop();
        },
        [this, &progress](MessageBus::ConfirmablePtr const& state) {
            if (progress) {
                call([&] { progress(state); });
            }
        });
    wait();
    if (!answer) { throw ExitError(ExitCode::protocolError, "the daemon answered with another message: " + name); }
    return answer;
}

void Session::request(boost::shared_ptr<Confirmable> const& request) {
    connection_.request(request, timeout_, [](MessageBus::ConfirmablePtr const&) {});
}

void Session::request(boost::shared_ptr<Confirmable> const& request, std::chrono::milliseconds timeout,
                      std::function<void(Confirmable const& answer)> answered) {
    connection_.request(request, timeout, [this, answered = std::move(answered)](auto const& any) {
        auto const answer = boost::dynamic_pointer_cast<Confirmable>(any);
        if (answer) {
            call([&] { answered(*answer); });
        } else {
            end(ExitCode::protocolError, "the daemon answered with another message: " + any->name());
        }
    });
}

void Session::tellLast(boost::shared_ptr<TMessage> const& message) {
    connection_.tell(message);
    isLeaving_ = true;
    connection_.finish();
    wait();
}

bool Session::tellAndWaitForEnd(boost::shared_ptr<TMessage> const& message) {
    connection_.tell(message);
    isLeaving_ = true;
    pause(timeout_);
    return !connection_.isConnected();
}

void Session::hear(std::function<void(TMessage const& message)> heard) {
    connection_.listenToAll(
        [this, heard = std::move(heard)](TMessage const& message) { call([&] { heard(message); }); });
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
