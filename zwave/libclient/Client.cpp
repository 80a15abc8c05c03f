// SPDX-License-Identifier: Apache-2.0
#include "zwave/libclient/Client.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/SubscribeMsg.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace zorv {

Client::Client(EventLoop& loop, DaemonPlace place, ClientHandlers handlers, ClientTiming timing)
    : loop_(loop),
      handlers_(std::move(handlers)),
      timing_(timing),
      nextWait_(timing.firstRetry),
      alive_(std::make_shared<bool>(true)),
      connection_(loop, std::move(place), {timing.opening, timing.opening}, connectionHandlers()) {
    connect();
}

Client::~Client() { *alive_ = false; }

DaemonConnection::Handlers Client::connectionHandlers() {
    DaemonConnection::Handlers handlers;
    handlers.opened = [this] { subscribeToAll(); };
    handlers.ended = [this](ConnectionEnd end, std::string const& reason) { ended(end, reason); };
    return handlers;
}

void Client::connect() {
    state_ = State::opening;
    connection_.connect();
}

void Client::ended(ConnectionEnd end, std::string const& reason) {
    if (state_ == State::refused) { return; } // by this client itself, which has said why
    if (end == ConnectionEnd::unreachable || end == ConnectionEnd::lost) { return failed(reason); }
    refused(reason);
}

void Client::subscribeToAll() {
    state_ = State::subscribing;
    // Not from here: the connection is in the middle of the first message.
    if (events_.empty()) {
        return later([this] { begin(); });
    }
    auto const request = SubscribeMsg::create(false, std::vector<std::string>(events_.begin(), events_.end()));
    connection_.request(request, timing_.opening, [this, request](MessageBus::ConfirmablePtr const& any) {
        auto const result = judged(*request, any)->result();
        if (result == ZResult::success) { return begin(); }
        if (result == ZResult::rejected) {
            return refused("the daemon does not have the events that were subscribed to");
        }
        connection_.disconnect();
    });
}

void Client::begin() {
    if (state_ != State::subscribing) { return; } // the connection is gone again
    state_ = State::connected;
    nextWait_ = timing_.firstRetry;
    if (handlers_.connected) { handlers_.connected(); }
}

void Client::onEvery(std::function<void(TMessage const& event)> const& heard) {
    connection_.listenToAll(heard);
    subscribe(MessageBus::everyEvent);
}

void Client::subscribe(std::string const& event) {
    bool const isNew = events_.insert(event).second;
    if (!isNew || (state_ != State::subscribing && state_ != State::connected)) { return; }
    auto const request = SubscribeMsg::create(false, event);
    connection_.request(request, timing_.opening, [request, event](MessageBus::ConfirmablePtr const& any) {
        auto const result = judged(*request, any)->result();
        if (result == ZResult::success) { return; }
        Logger::log(LogLevel::warn, "Client: no events " + event + ": " + toString(result), BOOST_CURRENT_LOCATION);
    });
}

/// The answer to a request; a failure where the daemon answered with what is none.
Client::Answer Client::judged(Confirmable const& request, MessageBus::ConfirmablePtr const& any) {
    if (auto answer = DaemonConnection::answerTo(request, any)) { return answer; }
    Logger::log(LogLevel::warn, "Client: the daemon answered " + request.name() + " with " + any->name(),
                BOOST_CURRENT_LOCATION);
    return request.makeResponse(ZResult::failure);
}

void Client::request(Answer const& request, std::chrono::milliseconds deadline, Answered answered, Answered progress) {
    if (!isConnected()) {
        return later([failure = request->makeResponse(ZResult::failure), answered = std::move(answered)] {
            if (answered) { answered(failure); }
        });
    }
    auto const handOn = [request](Answered handler) {
        return [request, handler = std::move(handler)](MessageBus::ConfirmablePtr const& any) {
            if (handler) { handler(judged(*request, any)); }
        };
    };
    connection_.request(request, deadline, handOn(std::move(answered)), handOn(std::move(progress)));
}

std::future<Client::Answer> Client::request(Answer const& request, std::chrono::milliseconds deadline) {
    auto const promise = std::make_shared<std::promise<Answer>>();
    later([this, request, deadline, promise] {
        try {
            this->request(request, deadline, [promise](Answer const& answer) { promise->set_value(answer); });
        } catch (...) { promise->set_exception(std::current_exception()); } // it cannot be written
    });
    return promise->get_future();
}

/// Has the loop call `work` unless this object is gone by then.
void Client::later(std::function<void()> work) {
    loop_.post([alive = alive_, work = std::move(work)] {
        if (*alive) { work(); }
    });
}

void Client::failed(std::string const& reason) {
    state_ = State::waiting;
    insist([this] { nextTry_ = Timer(loop_, nextWait_, [this] { connect(); }); });
    nextWait_ = std::min(2 * nextWait_, timing_.longestRetry);
    if (handlers_.lost) { handlers_.lost(reason); }
}

void Client::refused(std::string const& reason) {
    state_ = State::refused;
    connection_.disconnect();
    // Not from here: the connection is in the middle of a message.
    later([this, reason] {
        if (handlers_.refused) { handlers_.refused(reason); }
    });
}

} // namespace zorv
