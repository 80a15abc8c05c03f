// SPDX-License-Identifier: Apache-2.0
#include "zwave/libclient/Client.h"

#include "platform/libzorvlogger/Logger.h"
#include "zwave/libquillet/SubscribeMsg.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <exception>
#include <typeinfo>
#include <vector>

namespace zorv {

Client::Client(EventLoop& loop, DaemonPlace place, ClientHandlers handlers, ClientRetry retry)
    : loop_(loop),
      place_(std::move(place)),
      handlers_(std::move(handlers)),
      retry_(retry),
      nextWait_(retry.first),
      alive_(std::make_shared<bool>(true)),
      bus_(loop, busHandlers(), openingTime) {
    // What a daemon sends unasked is events and, where it does not want this client, that.
    bus_.listen<Confirmable>([this](auto const& message, PeerId) {
        if (state_ == State::opening) { refused("the daemon refused the connection: " + toString(message->result())); }
    });
    connect();
}

Client::~Client() { *alive_ = false; }

MessageBus::Handlers Client::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [this](PeerId, TMessage const& first) { return judgeOpening(first); };
    handlers.left = [this](PeerId, std::string const& reason) {
        daemon_.reset();
        if (state_ != State::refused) { failed(reason); }
    };
    return handlers;
}

void Client::connect() {
    state_ = State::connecting;
    ConnectHandlers handlers;
    // Connecting cannot be called off, and may end when this object is gone.
    handlers.connected = [this, alive = alive_](TcpConnection connection) {
        if (*alive) { open(std::move(connection)); }
    };
    handlers.failed = [this, alive = alive_](std::string const& reason) {
        if (*alive) { failed(reason); }
    };
    connectDaemon(loop_, place_, openingTime, std::move(handlers));
}

/// Each side sends its version without waiting for the other's.
void Client::open(TcpConnection connection) {
    state_ = State::opening;
    daemon_ = bus_.attach(std::move(connection));
    bus_.send(*daemon_, VersionMsg::create(protocolVersion));
}

/// The complaint about the daemon's first message; empty if the message is good.
std::string Client::judgeOpening(TMessage const& first) {
    auto complaint = complaintAboutOpening(first);
    if (complaint.empty()) {
        subscribeToAll();
    } else {
        refused(complaint);
    }
    return complaint;
}

void Client::subscribeToAll() {
    state_ = State::subscribing;
    // Not from here: the bus is in the middle of the first message.
    if (events_.empty()) {
        return later([this] { begin(); });
    }
    auto const request = SubscribeMsg::create(false, std::vector<std::string>(events_.begin(), events_.end()));
    bus_.request(*daemon_, request, openingTime, [this, request](MessageBus::ConfirmablePtr const& any) {
        auto const result = judged(*request, any)->result();
        if (result == ZResult::success) { return begin(); }
        if (result == ZResult::rejected) { refused("the daemon does not have the events that were subscribed to"); }
        if (daemon_) { bus_.disconnect(*daemon_); }
    });
}

void Client::begin() {
    if (state_ != State::subscribing) { return; } // the connection is gone again
    state_ = State::connected;
    nextWait_ = retry_.first;
    if (handlers_.connected) { handlers_.connected(); }
}

void Client::subscribe(std::string const& event) {
    bool const isNew = events_.insert(event).second;
    if (!isNew || (state_ != State::subscribing && state_ != State::connected)) { return; }
    auto const request = SubscribeMsg::create(false, event);
    bus_.request(*daemon_, request, openingTime, [request, event](MessageBus::ConfirmablePtr const& any) {
        auto const result = judged(*request, any)->result();
        if (result == ZResult::success) { return; }
        Logger::log(LogLevel::warn, "Client: no events " + event + ": " + toString(result), BOOST_CURRENT_LOCATION);
    });
}

/// The answer to a request; a failure where the daemon answered with what is none.
Client::Answer Client::judged(Confirmable const& request, MessageBus::ConfirmablePtr const& any) {
    auto answer = boost::dynamic_pointer_cast<Confirmable>(any);
    if (answer) {
        auto const& answered = *answer;
        bool const isRejection = typeid(answered) == typeid(Confirmable) && answered.result() != ZResult::success;
        if (isRejection || typeid(answered) == typeid(request)) { return answer; }
    }
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
    bus_.request(*daemon_, request, deadline, handOn(std::move(answered)), handOn(std::move(progress)));
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
    nextTry_ = Timer(loop_, nextWait_, [this] { connect(); });
    nextWait_ = std::min(2 * nextWait_, retry_.longest);
    if (handlers_.lost) { handlers_.lost(reason); }
}

void Client::refused(std::string const& reason) {
    state_ = State::refused;
    // Not from here: the bus is in the middle of a message.
    later([this, reason] {
        if (handlers_.refused) { handlers_.refused(reason); }
    });
}

} // namespace zorv
