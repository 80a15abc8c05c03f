// SPDX-License-Identifier: Apache-2.0
#include "platform/libmessage_bus/MessageBus.h"

#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/StackTrace.h"
#include "platform/libzorvlogger/logExceptionWarning.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/uuid/nil_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zorv {

namespace {

constexpr std::size_t shownTraffic = 1000; // of each line, in bytes
constexpr std::size_t requestBytes = 1024; // what a request costs beside its own text, about

/// Whether a message was written with its header. Without one, no answer can be linked to it, and it cannot be linked
/// to the request that it answers.
bool carriesHeader(TMessage const& message, std::string const& text) {
    return text.find(boost::uuids::to_string(message.id())) != std::string::npos;
}

/// A copy of this process's own request that answers it.
boost::shared_ptr<TConfirmable> makeResponse(TConfirmable const& request, TResult::Enum result) {
    auto response = request.clone();
    response->setResponse(request);
    response->result(result);
    return response;
}

/// An answer to a peer's request that repeats only its identity. A copy could be larger than the request, and this
/// process would have to keep it for a peer that does not read.
boost::shared_ptr<TConfirmable> makeEmptyResponse(TConfirmable const& request, TResult::Enum result) {
    auto const serialName = StackTrace::demangle(typeid(request).name());
    auto response =
        boost::dynamic_pointer_cast<TConfirmable>(readSerializable(R"({"__name__":")" + serialName + "\"}"));
    if (!response) { throw std::logic_error("no answer can be made for " + serialName); }
    response->setResponse(request);
    response->result(result);
    return response;
}

void warn(std::string const& text, boost::source_location const& where) {
    Logger::log(LogLevel::warn, "MessageBus: " + text, where);
}

void warn(std::string const& text, std::exception const& error) {
    logExceptionWarning("MessageBus", text + ": ", error);
}

void traceLine(char const* way, std::string const& peer, std::string const& line) {
    Logger::log(LogLevel::debug, "MessageBus: " + peer + way + line.substr(0, shownTraffic), BOOST_CURRENT_LOCATION);
}

} // namespace

MessageBus::MessageBus(EventLoop& loop, Handlers handlers, std::chrono::milliseconds openingTime)
    : loop_(loop), handlers_(std::move(handlers)), openingTime_(openingTime) {}

// ---- peers

PeerId MessageBus::attach(TcpConnection connection) {
    auto const id = PeerId{++lastPeer_};
    auto& peer = peers_.try_emplace(id, std::move(connection)).first->second;
    peer.opened = !handlers_.opening;
    if (!peer.opened) {
        peer.opening = Timer(loop_, openingTime_, [this, id] {
            complain(id, "silent from the first: ");
            peers_.at(id).connection.close("did not open the connection in time");
        });
    }
    TcpConnection::Handlers handlers;
    handlers.line = [this, id](std::string const& line) { received(id, line); };
    handlers.overlong = [this, id] { refuseLine(id, BadMessageError("line too long", nullptr)); };
    handlers.inputEnded = [this, id] { inputEnded(id); };
    handlers.closed = [this, id](std::string const& reason) { closed(id, reason); };
    peer.connection.start(std::move(handlers));
    return id;
}

void MessageBus::disconnect(PeerId peer) {
    auto const found = peers_.find(peer);
    if (found != peers_.end()) { found->second.connection.close(); }
}

void MessageBus::inputEnded(PeerId from) {
    auto& peer = peers_.at(from);
    peer.inputEnded = true;
    if (handlers_.inputEnded) { handlers_.inputEnded(from); }
    if (peer.unanswered == 0) {
        peer.connection.finish("closed by the peer");
    } else {
        finishAll(from); // it can ask for answers, but not give any
    }
}

void MessageBus::closed(PeerId peer, std::string const& reason) {
    unobserve(peer);
    auto const gone = peers_.find(peer);
    Logger::log(LogLevel::info, "MessageBus: " + nameOf(gone->second) + " left: " + reason, BOOST_CURRENT_LOCATION);
    if (gone->second.leftOut > 0 && complaints_.take(Allowance::Clock::now())) {
        warn(std::to_string(gone->second.leftOut) + " complaints about " + nameOf(gone->second) + " left out",
             BOOST_CURRENT_LOCATION);
    }
    peers_.erase(gone);
    asked_.erase(asked_.lower_bound({peer, boost::uuids::nil_uuid()}),
                 asked_.lower_bound({PeerId{static_cast<std::uint64_t>(peer) + 1}, boost::uuids::nil_uuid()}));
    if (handlers_.left) { handlers_.left(peer, reason); }
    finishAll(peer);
}

/// Logs what a peer did wrong, at a bounded rate: a peer cannot flood the log.
void MessageBus::complain(PeerId of, std::string const& text) {
    auto& peer = peers_.at(of);
    auto const now = Allowance::Clock::now();
    if (!peer.complaints.take(now) || !complaints_.take(now)) {
        ++peer.leftOut;
        return;
    }
    auto const leftOut = std::exchange(peer.leftOut, 0);
    auto const suffix = leftOut > 0 ? " (" + std::to_string(leftOut) + " complaints left out before)" : std::string();
    warn(text + nameOf(peer) + suffix, BOOST_CURRENT_LOCATION);
}

std::string MessageBus::nameOf(Peer const& peer) { return boost::lexical_cast<std::string>(peer.connection.remote()); }

// ---- what arrives

void MessageBus::received(PeerId from, std::string const& line) {
    auto const& connection = peers_.at(from).connection;
    if (Logger::enabled(LogLevel::debug)) { traceLine(" -> ", nameOf(peers_.at(from)), line); }
    MessagePtr message;
    try {
        message = readMessage(line);
    } catch (BadMessageError const& error) { return refuseLine(from, error); }
    message->source(connection.remote());
    if (!peers_.at(from).opened) { return open(from, message); }
    show(Direction::received, from, message);
    dispatch(from, message, line.size());
}

void MessageBus::open(PeerId from, MessagePtr const& first) {
    auto const complaint = handlers_.opening(from, *first);
    if (!complaint.empty()) {
        return refuseLine(from, BadMessageError(complaint, carriesHeader(*first, toText(*first)) ? first : nullptr));
    }
    auto& peer = peers_.at(from);
    peer.opened = true;
    peer.opening.cancel();
    if (auto const confirmable = boost::dynamic_pointer_cast<TConfirmable>(first)) { settle(from, confirmable); }
}

void MessageBus::refuseLine(PeerId from, BadMessageError const& error) {
    auto& peer = peers_.at(from);
    complain(from, (peer.opened ? "bad line: " : "bad first line: ") + std::string(error.what()) + ", from ");
    if (handlers_.badLine) { handlers_.badLine(from, error); }
    if (!peer.opened) {
        peer.opening.cancel();
        peer.connection.finish("did not open the connection");
    } else if (!peer.badLines.take(Allowance::Clock::now())) {
        peer.connection.finish("too many bad lines");
    }
}

void MessageBus::dispatch(PeerId from, MessagePtr const& message, std::size_t bytes) {
    auto const confirmable = boost::dynamic_pointer_cast<TConfirmable>(message);
    if (confirmable && settle(from, confirmable)) { return; }
    auto const& dynamicType = *message;
    auto const handler = classHandlers_.find(typeid(dynamicType));
    bool const handled = handler != classHandlers_.end();
    bool const isRequest = confirmable && message->correlation().is_nil();
    if (handled && !handler->second.answers) {
        call(handler->second, from, message);
    } else if (!isRequest) {
        // An answer is never answered: two processes would answer each other for ever.
        complain(from, "nobody waits for " + message->name() + " from ");
    } else if (handled) {
        dispatchRequest(from, handler->second, confirmable, bytes);
    } else {
        complain(from, "nobody handles " + message->name() + " from ");
        reject(from, *confirmable);
    }
}

void MessageBus::dispatchRequest(PeerId from, ClassHandler const& handler, ConfirmablePtr const& request,
                                 std::size_t bytes) {
    auto& peer = peers_.at(from);
    if (peer.unanswered == unansweredLimit) {
        complain(from, "too many unanswered requests of ");
        reject(from, *request);
        return;
    }
    asked_.emplace(Key(from, request->id()), Asked{request, bytes + requestBytes});
    ++peer.unanswered;
    peer.unansweredBytes += bytes + requestBytes;
    peer.connection.occupy(peer.unansweredBytes);
    if (!call(handler, from, request)) { answer(from, makeEmptyResponse(*request, TResult::failure)); }
}

/// False where the handler throws.
bool MessageBus::call(ClassHandler const& handler, PeerId from, MessagePtr const& message) {
    try {
        handler.call(message, from);
        return true;
    } catch (std::exception const& error) {
        warn("cannot handle " + message->name(), error);
        return false;
    }
}

/// Ends the wait of the request that the message answers; false if it answers none.
bool MessageBus::settle(PeerId from, ConfirmablePtr const& answer) {
    if (answer->correlation().is_nil()) { return settleByClass(from, answer); }
    Key const key(from, answer->correlation());
    auto const found = pending_.find(key);
    if (found != pending_.end()) {
        settle(found, answer);
        return true;
    }
    auto const late = std::find(expired_.begin(), expired_.end(), key);
    if (late == expired_.end()) { return false; }
    expired_.erase(late);
    warn("late answer dropped: " + answer->name() + ' ' + boost::uuids::to_string(answer->correlation()),
         BOOST_CURRENT_LOCATION);
    return true;
}

/// As above for what carries no header: the next message of its class answers it.
bool MessageBus::settleByClass(PeerId from, ConfirmablePtr const& answer) {
    auto const& answered = *answer;
    for (auto it = pending_.lower_bound({from, boost::uuids::nil_uuid()});
         it != pending_.end() && it->first.first == from; ++it) {
        auto const& asked = *it->second.request;
        if (!it->second.carriesHeader && typeid(asked) == typeid(answered)) {
            settle(it, answer);
            return true;
        }
    }
    return false;
}

void MessageBus::settle(std::map<Key, Pending>::iterator pending, ConfirmablePtr const& answer) {
    auto const answered = std::move(pending->second.answered);
    pending_.erase(pending);
    answered(answer);
}

// ---- what is sent

void MessageBus::send(PeerId to, MessagePtr const& message) {
    if (peers_.count(to) == 0) { return; }
    deliver(to, message, toText(*message));
}

void MessageBus::deliver(PeerId to, MessagePtr const& message, std::string const& text) {
    auto& peer = peers_.at(to);
    if (Logger::enabled(LogLevel::debug)) { traceLine(" <- ", nameOf(peer), text); }
    peer.connection.send(text);
    show(Direction::sent, to, message);
}

void MessageBus::reject(PeerId to, TConfirmable const& request) {
    auto const rejection = makeEmptyResponse(request, TResult::rejected);
    auto const text = toText(*rejection);
    if (carriesHeader(*rejection, text)) { deliver(to, rejection, text); }
}

void MessageBus::answer(PeerId asker, ConfirmablePtr const& response) {
    auto const asked = asked_.find({asker, response->correlation()});
    if (asked == asked_.end()) { return; }
    auto const it = asked->second;
    asked_.erase(asked);
    auto& peer = peers_.at(asker);
    --peer.unanswered;
    peer.unansweredBytes -= it.bytes;
    peer.connection.occupy(peer.unansweredBytes);
    if (!sendAnswer(asker, response)) { sendAnswer(asker, makeEmptyResponse(*it.request, TResult::failure)); }
    if (peer.inputEnded && peer.unanswered == 0) { peer.connection.finish("closed by the peer"); }
}

bool MessageBus::sendAnswer(PeerId to, ConfirmablePtr const& response) {
    try {
        auto const text = toText(*response);
        bool const fits = text.size() <= peers_.at(to).connection.longestLine();
        if (fits) {
            deliver(to, response, text);
        } else {
            warn("cannot write " + response->name() + ": a line of " + std::to_string(text.size()) +
                     " bytes is too long",
                 BOOST_CURRENT_LOCATION);
        }
        return fits;
    } catch (std::exception const& error) {
        warn("cannot write " + response->name(), error);
        return false;
    }
}

void MessageBus::request(PeerId to, ConfirmablePtr const& request, std::chrono::milliseconds deadline,
                         Answered answered) {
    Key const key(to, request->id());
    auto const text = toText(*request);
    auto const added =
        pending_.try_emplace(key, Pending{request, std::move(answered), Timer(), carriesHeader(*request, text)});
    if (!added.second) { throw std::invalid_argument("the request is waiting for its answer already"); }
    auto& timer = added.first->second.deadline;
    auto const peer = peers_.find(to);
    if (peer == peers_.end() || peer->second.inputEnded || text.size() > peer->second.connection.longestLine()) {
        timer = Timer(loop_, std::chrono::milliseconds(0), [this, key] { finish(key, TResult::failure); });
        return;
    }
    timer = Timer(loop_, deadline, [this, key] {
        expired_.push_back(key);
        if (expired_.size() > expiredLimit) { expired_.pop_front(); }
        finish(key, TResult::timeout);
    });
    deliver(to, request, text);
}

/// Ends a request's wait without an answer of the peer.
void MessageBus::finish(Key const& key, TResult::Enum result) {
    auto const found = pending_.find(key);
    if (found != pending_.end()) { settle(found, makeResponse(*found->second.request, result)); }
}

void MessageBus::finishAll(PeerId peer) {
    std::vector<Key> keys; // copied, because a handler may send another request
    for (auto it = pending_.lower_bound({peer, boost::uuids::nil_uuid()});
         it != pending_.end() && it->first.first == peer; ++it) {
        keys.push_back(it->first);
    }
    for (auto const& key : keys) { finish(key, TResult::failure); }
}

// ---- events

void MessageBus::subscribe(PeerId peer, std::string const& event) {
    auto const found = peers_.find(peer);
    if (found != peers_.end()) { found->second.events.insert(event); }
}

void MessageBus::unsubscribe(PeerId peer, std::string const& event) {
    auto const found = peers_.find(peer);
    if (found != peers_.end()) { found->second.events.erase(event); }
}

void MessageBus::publish(std::string const& event, MessagePtr const& message) {
    std::string text; // written once, however many subscribed
    for (auto& [id, peer] : peers_) {
        if (peer.events.count(event) == 0) { continue; }
        if (text.empty()) { text = toText(*message); }
        deliver(id, message, text);
    }
}

// ---- observation

void MessageBus::observe(PeerId observer, MakeCopy makeCopy) {
    unobserve(observer);
    auto const found = peers_.find(observer);
    if (found == peers_.end()) { return; }
    found->second.makeCopy = std::move(makeCopy);
    ++observerCount_;
}

void MessageBus::unobserve(PeerId observer) {
    auto const found = peers_.find(observer);
    if (found == peers_.end() || !found->second.makeCopy) { return; }
    found->second.makeCopy = nullptr;
    --observerCount_;
}

void MessageBus::show(Direction direction, PeerId peer, MessagePtr const& message) {
    if (observerCount_ == 0) { return; }
    for (auto& [id, observer] : peers_) {
        if (id == peer || !observer.makeCopy) { continue; }
        try {
            observer.connection.send(toText(*observer.makeCopy(direction, message)));
        } catch (std::exception const& error) { warn("cannot show " + message->name(), error); }
    }
}

} // namespace zorv
