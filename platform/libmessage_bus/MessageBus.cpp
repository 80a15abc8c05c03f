#include "platform/libmessage_bus/MessageBus.h"

#include "platform/libtransport/Serializer.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/logExceptionWarning.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace zorv {

namespace {

constexpr std::size_t expiredLimit = 1024;

std::string toText(TMessage const& message) {
    Serializer s;
    message.serialInserter(s);
    return s.str();
}

/// A copy of the request that answers it, for every class of request.
boost::shared_ptr<TConfirmable> makeResponse(TConfirmable const& request, TResult::Enum result) {
    auto response = request.clone();
    response->setResponse(request);
    response->result(result);
    return response;
}

void warn(std::string const& text, boost::source_location const& where) {
    Logger::log(LogLevel::warn, "MessageBus: " + text, where);
}

} // namespace

MessageBus::MessageBus(EventLoop& loop, Handlers handlers) : loop_(loop), handlers_(std::move(handlers)) {}

// ---- peers

PeerId MessageBus::attach(TcpConnection connection) {
    auto const id = PeerId{++lastPeer_};
    auto& peer = peers_.emplace(id, Peer{std::move(connection), {}, {}, 0}).first->second;
    peer.connection.start({[this, id](std::string const& line) { received(id, line); },
                           [this, id] {
                               BadMessageError const error("line too long", nullptr);
                               warn(error.what(), BOOST_CURRENT_LOCATION);
                               if (handlers_.badLine) { handlers_.badLine(id, error); }
                           },
                           [this, id](std::string const& reason) { closed(id, reason); }});
    return id;
}

void MessageBus::disconnect(PeerId peer) {
    auto const found = peers_.find(peer);
    if (found != peers_.end()) { found->second.connection.close(); }
}

void MessageBus::closed(PeerId peer, std::string const& reason) {
    unobserve(peer);
    auto const gone = peers_.find(peer);
    Logger::log(LogLevel::info,
                "MessageBus: " + boost::lexical_cast<std::string>(gone->second.connection.remote()) +
                    " left: " + reason,
                BOOST_CURRENT_LOCATION);
    peers_.erase(gone);
    for (auto asker = askers_.begin(); asker != askers_.end();) {
        asker = asker->second == peer ? askers_.erase(asker) : std::next(asker);
    }
    std::vector<boost::uuids::uuid> unanswerable;
    for (auto const& entry : pending_) {
        if (entry.second.peer == peer) { unanswerable.push_back(entry.first); }
    }
    if (handlers_.left) { handlers_.left(peer, reason); }
    for (auto const& id : unanswerable) { finish(id, TResult::failure); }
}

// ---- what arrives

void MessageBus::received(PeerId from, std::string const& line) {
    MessagePtr message;
    try {
        message = readMessage(line);
    } catch (BadMessageError const& error) {
        auto const& remote = peers_.at(from).connection.remote();
        warn("bad line from " + boost::lexical_cast<std::string>(remote) + ": " + error.what(), BOOST_CURRENT_LOCATION);
        if (handlers_.badLine) { handlers_.badLine(from, error); }
        return;
    }
    message->source(peers_.at(from).connection.remote());
    show(Direction::received, from, message);
    dispatch(from, message);
}

void MessageBus::dispatch(PeerId from, MessagePtr const& message) {
    auto const confirmable = boost::dynamic_pointer_cast<TConfirmable>(message);
    if (confirmable && settle(from, confirmable)) { return; }
    auto const& dynamicType = *message;
    auto const handler = classHandlers_.find(typeid(dynamicType));
    if (handler != classHandlers_.end() && handler->second.answers) {
        dispatchRequest(from, handler->second, confirmable);
    } else if (handler != classHandlers_.end()) {
        call(handler->second, from, message);
    } else if (confirmable && message->correlation().is_nil()) {
        warn("nobody handles " + message->name(), BOOST_CURRENT_LOCATION);
        send(from, makeResponse(*confirmable, TResult::rejected));
    } else {
        // An answer is never answered: two processes would do so to each other for ever.
        warn("nobody waits for " + message->name(), BOOST_CURRENT_LOCATION);
    }
}

void MessageBus::dispatchRequest(PeerId from, ClassHandler const& handler, ConfirmablePtr const& request) {
    auto& peer = peers_.at(from);
    if (peer.unanswered == unansweredLimit) {
        warn("too many unanswered requests", BOOST_CURRENT_LOCATION);
        send(from, makeResponse(*request, TResult::rejected));
        return;
    }
    askers_.emplace(request->id(), from);
    ++peer.unanswered;
    if (!call(handler, from, request)) { answer(makeResponse(*request, TResult::failure)); }
}

/// False where the handler throws.
bool MessageBus::call(ClassHandler const& handler, PeerId from, MessagePtr const& message) {
    try {
        handler.call(message, from);
        return true;
    } catch (std::exception const& error) {
        logExceptionWarning(BOOST_CURRENT_FUNCTION, "cannot handle " + message->name(), error);
        return false;
    }
}

/// Ends the wait of the request that the message answers; false where it answers none.
bool MessageBus::settle(PeerId from, ConfirmablePtr const& answer) {
    if (answer->correlation().is_nil()) { return false; }
    auto const found = pending_.find(answer->correlation());
    if (found != pending_.end() && found->second.peer == from) {
        auto const answered = std::move(found->second.answered);
        pending_.erase(found);
        answered(answer);
        return true;
    }
    auto const late = std::find(expired_.begin(), expired_.end(), answer->correlation());
    if (late == expired_.end()) { return false; }
    expired_.erase(late);
    warn("late answer dropped: " + answer->name() + ' ' + boost::uuids::to_string(answer->correlation()),
         BOOST_CURRENT_LOCATION);
    return true;
}

// ---- what is sent

void MessageBus::send(PeerId to, MessagePtr const& message) {
    if (peers_.count(to) == 0) { return; }
    deliver(to, toText(*message));
    show(Direction::sent, to, message);
}

void MessageBus::deliver(PeerId to, std::string const& text) {
    auto const peer = peers_.find(to);
    if (peer != peers_.end()) { peer->second.connection.send(text); }
}

void MessageBus::answer(ConfirmablePtr const& response) {
    auto const askers = askers_.equal_range(response->correlation());
    // Two peers may have used the same identity; the response has the source of its own request.
    auto const asker = std::find_if(askers.first, askers.second, [&](auto const& entry) {
        return peers_.at(entry.second).connection.remote() == response->source();
    });
    if (asker == askers.second) { return; }
    auto const to = asker->second;
    askers_.erase(asker);
    --peers_.at(to).unanswered;
    try {
        send(to, response);
    } catch (std::exception const& error) {
        // The asker's own deadline ends its wait.
        logExceptionWarning(BOOST_CURRENT_FUNCTION, "cannot write " + response->name(), error);
    }
}

void MessageBus::request(PeerId to, ConfirmablePtr const& request, std::chrono::milliseconds deadline,
                         Answered answered) {
    auto const id = request->id();
    auto const text = toText(*request);
    auto const added = pending_.emplace(id, Pending{to, request, std::move(answered), Timer()});
    if (!added.second) { throw std::invalid_argument("the request is waiting for its answer already"); }
    if (peers_.count(to) == 0) {
        added.first->second.deadline =
            Timer(loop_, std::chrono::milliseconds(0), [this, id] { finish(id, TResult::failure); });
        return;
    }
    added.first->second.deadline = Timer(loop_, deadline, [this, id] {
        expired_.push_back(id);
        if (expired_.size() > expiredLimit) { expired_.pop_front(); }
        finish(id, TResult::timeout);
    });
    deliver(to, text);
    show(Direction::sent, to, request);
}

/// Ends a request's wait without an answer of the peer.
void MessageBus::finish(boost::uuids::uuid const& id, TResult::Enum result) {
    auto const found = pending_.find(id);
    if (found == pending_.end()) { return; }
    auto const pending = std::move(found->second);
    pending_.erase(found);
    pending.answered(makeResponse(*pending.request, result));
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
        peer.connection.send(text);
        show(Direction::sent, id, message);
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
        observer.connection.send(toText(*observer.makeCopy(direction, message)));
    }
}

} // namespace zorv
