// SPDX-License-Identifier: Apache-2.0
#include "platform/libmessage_bus/MessageBus.h"

#include "platform/libio/insist.h"

#include "platform/libtransport/Serializer.h"
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
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zorv {

namespace {

constexpr std::size_t shownTraffic = 1000; // of each line, in bytes
constexpr std::size_t requestBytes = 1024; // what a request costs beside its own text, about

/// The text of a message, with room for the end of its line, so that the connection sends it without a copy.
std::string lineOf(TMessage const& message) {
    Serializer s;
    message.serialInserter(s);
    s.writeRaw("\n");
    auto line = std::move(s).str();
    line.pop_back();
    return line;
}

std::string copyOf(std::string const& line) {
    std::string copy;
    copy.reserve(line.size() + 1);
    return copy.append(line);
}

/// The message as one that carries a result; empty where it carries none.
boost::shared_ptr<TConfirmable> confirmableOf(boost::shared_ptr<TMessage> const& message) {
    auto* const confirmable = message->asConfirmable();
    if (confirmable == nullptr) { return nullptr; }
    return {message, confirmable};
}

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

/// Ends what cannot be served as it should be.
void endConnection(TcpConnection& connection, char const* reason) {
    insist([&] { connection.close(reason); });
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
    Timer opening; // what may fail comes before the peer is one
    if (handlers_.opening) {
        opening = Timer(loop_, openingTime_, [this, id] {
            ifMemoryAllows([&] { complain(id, "silent from the first: "); });
            insist([&] { peers_.at(id).connection.close("did not open the connection in time"); });
        });
    }
    TcpConnection::Handlers handlers;
    handlers.line = [this, id](std::string const& line) { received(id, line); };
    handlers.overlong = [this, id] { refuseLine(id, BadMessageError("line too long", nullptr)); };
    handlers.inputEnded = [this, id] { inputEnded(id); };
    handlers.closed = [this, id](std::string const& reason) { closed(id, reason); };
    auto& peer = peers_.try_emplace(id, std::move(connection)).first->second;
    peer.opened = !handlers_.opening;
    peer.opening = std::move(opening);
    peer.connection.start(std::move(handlers));
    return id;
}

void MessageBus::disconnect(PeerId peer) {
    auto const found = peers_.find(peer);
    if (found != peers_.end()) { found->second.connection.close(); }
}

std::vector<MessageBus::PeerInfo> MessageBus::peers() const {
    std::vector<PeerInfo> infos;
    for (auto const& [id, peer] : peers_) {
        infos.push_back({peer.connection.remote(), peer.received, peer.sent, peer.unanswered.size(),
                         peer.connection.waiting(), peer.events.size(), static_cast<bool>(peer.makeCopy)});
    }
    return infos;
}

void MessageBus::disconnectAll(std::string const& reason) {
    for (auto& [id, peer] : peers_) { peer.connection.finish(reason); }
}

void MessageBus::inputEnded(PeerId from) {
    auto& peer = peers_.at(from);
    peer.inputEnded = true;
    if (handlers_.inputEnded) { handlers_.inputEnded(from); }
    if (peer.unanswered.empty()) {
        peer.connection.finish(TcpConnection::closedByPeer);
    } else {
        finishAll(from); // it can ask for answers, but not give any
    }
}

void MessageBus::closed(PeerId peer, std::string const& reason) {
    unobserve(peer);
    auto const gone = peers_.find(peer);
    ifMemoryAllows([&] {
        Logger::log(LogLevel::info, "MessageBus: " + nameOf(gone->second) + " left: " + reason, BOOST_CURRENT_LOCATION);
        if (gone->second.leftOut > 0 && complaints_.take(Allowance::Clock::now())) {
            warn(std::to_string(gone->second.leftOut) + " complaints about " + nameOf(gone->second) + " left out",
                 BOOST_CURRENT_LOCATION);
        }
    });
    peers_.erase(gone);
    ifMemoryAllows([&] {
        if (handlers_.left) { handlers_.left(peer, reason); }
    });
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

/// The log is asked once about a line and all that is sent because of it: that takes as long as writing a short message.
void MessageBus::received(PeerId from, std::string const& line) {
    struct Forget {
        std::optional<bool>& traced;
        ~Forget() { traced.reset(); }
    } const forget{traced_};
    traced_ = Logger::enabled(LogLevel::debug);
    take(from, line);
}

bool MessageBus::isTraced() const { return traced_ ? *traced_ : Logger::enabled(LogLevel::debug); }

void MessageBus::take(PeerId from, std::string const& line) {
    auto& peer = peers_.at(from);
    if (isTraced()) { traceLine(" -> ", nameOf(peer), line); }
    MessagePtr message;
    try {
        message = readMessage(line);
    } catch (BadMessageError const& error) { return refuseLine(from, error); }
    message->source(peer.source);
    ++counters_.received;
    ++peer.received;
    if (!peer.opened) { return open(from, message); }
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
    if (auto const confirmable = confirmableOf(first)) { settle(from, confirmable); }
}

void MessageBus::refuseLine(PeerId from, BadMessageError const& error) {
    auto& peer = peers_.at(from);
    ++counters_.badLines;
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
    auto const confirmable = confirmableOf(message);
    if (confirmable && settle(from, confirmable)) { return; }
    auto const& dynamicType = *message;
    auto const handler = classHandlers_.find(typeid(dynamicType));
    bool const handled = handler != classHandlers_.end();
    bool const isRequest = confirmable && message->correlation().is_nil();
    if (handled && !handler->second.answers) {
        call(handler->second, from, message);
    } else if (!isRequest) {
        // An answer is never answered: two processes would answer each other for ever.
        ++counters_.dropped;
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
    if (peer.unanswered.size() == unansweredLimit) {
        complain(from, "too many unanswered requests of ");
        reject(from, *request);
        return;
    }
    peer.unanswered.push_back({request->id(), request, bytes + requestBytes});
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
    if (answer->result() == TResult::inProgress) {
        auto const progress = pending->second.progress; // which may send another request
        if (progress) { progress(answer); }
        return;
    }
    auto const answered = std::move(pending->second.answered);
    pending_.erase(pending);
    answered(answer);
}

// ---- what is sent

void MessageBus::send(PeerId to, MessagePtr const& message) {
    if (peers_.count(to) == 0) { return; }
    deliver(to, message, lineOf(*message));
}

void MessageBus::deliver(PeerId to, MessagePtr const& message, std::string text) {
    auto& peer = peers_.at(to);
    if (isTraced()) { traceLine(" <- ", nameOf(peer), text); }
    ++counters_.sent;
    ++peer.sent;
    peer.connection.send(std::move(text));
    show(Direction::sent, to, message);
}

void MessageBus::reject(PeerId to, TConfirmable const& request) {
    ++counters_.rejected;
    auto const rejection = makeEmptyResponse(request, TResult::rejected);
    auto text = lineOf(*rejection);
    if (carriesHeader(*rejection, text)) { deliver(to, rejection, std::move(text)); }
}

void MessageBus::refuse(PeerId asker, TConfirmable const& request) {
    ++counters_.rejected;
    answer(asker, makeEmptyResponse(request, TResult::rejected));
}

void MessageBus::answer(PeerId asker, ConfirmablePtr const& response) {
    auto const found = peers_.find(asker);
    if (found == peers_.end()) { return; }
    auto& peer = found->second;
    auto const asked = std::find_if(peer.unanswered.begin(), peer.unanswered.end(),
                                    [&response](Asked const& one) { return one.id == response->correlation(); });
    if (asked == peer.unanswered.end()) { return; }
    if (response->result() == TResult::inProgress) {
        ifMemoryAllows([&] { sendAnswer(asker, response); });
        return;
    }
    auto const answered = std::move(*asked);
    peer.unanswered.erase(asked);
    peer.unansweredBytes -= answered.bytes;
    try {
        peer.connection.occupy(peer.unansweredBytes);
        if (!sendAnswer(asker, response)) { sendAnswer(asker, makeEmptyResponse(*answered.request, TResult::failure)); }
        if (peer.inputEnded && peer.unanswered.empty()) { peer.connection.finish(TcpConnection::closedByPeer); }
    } catch (std::bad_alloc const&) { endConnection(peer.connection, "no memory left for its answer"); }
}

bool MessageBus::sendAnswer(PeerId to, ConfirmablePtr const& response) {
    try {
        auto text = lineOf(*response);
        bool const fits = text.size() <= peers_.at(to).connection.longestLine();
        if (fits) {
            deliver(to, response, std::move(text));
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
                         Answered answered, Answered progress) {
    Key const key(to, request->id());
    auto text = lineOf(*request);
    auto const added = pending_.try_emplace(
        key, Pending{request, std::move(answered), std::move(progress), Timer(), carriesHeader(*request, text)});
    if (!added.second) { throw std::invalid_argument("the request is waiting for its answer already"); }
    auto& timer = added.first->second.deadline;
    auto const peer = peers_.find(to);
    bool const isReached =
        peer != peers_.end() && !peer->second.inputEnded && text.size() <= peer->second.connection.longestLine();
    try {
        timer = isReached ? Timer(loop_, deadline,
                                  [this, key] {
                                      ifMemoryAllows([&] { expired_.push_back(key); });
                                      if (expired_.size() > expiredLimit) { expired_.pop_front(); }
                                      finish(key, TResult::timeout);
                                  })
                          : Timer(loop_, std::chrono::milliseconds(0), [this, key] { finish(key, TResult::failure); });
    } catch (std::bad_alloc const&) {
        pending_.erase(added.first);
        throw;
    }
    if (isReached) { deliver(to, request, std::move(text)); }
}

/// Ends a request's wait without an answer of the peer.
void MessageBus::finish(Key const& key, TResult::Enum result) {
    insist([&] { // its sender would wait for ever
        auto const found = pending_.find(key);
        if (found != pending_.end()) { settle(found, makeResponse(*found->second.request, result)); }
    });
}

void MessageBus::finishAll(PeerId peer) {
    std::vector<Key> keys; // copied, because a handler may send another request
    insist([&] {
        keys.clear();
        for (auto it = pending_.lower_bound({peer, boost::uuids::nil_uuid()});
             it != pending_.end() && it->first.first == peer; ++it) {
            keys.push_back(it->first);
        }
    });
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

bool MessageBus::hears(Peer const& peer, std::string const& event) {
    return peer.events.count(event) != 0 || peer.events.count(everyEvent) != 0;
}

bool MessageBus::hasSubscribers(std::string const& event) const {
    return std::any_of(peers_.begin(), peers_.end(),
                       [&event](auto const& entry) { return hears(entry.second, event); });
}

void MessageBus::publish(std::string const& event, MessagePtr const& message) {
    std::string text; // written once, however many subscribed
    for (auto& [id, peer] : peers_) {
        if (!hears(peer, event)) { continue; }
        try {
            if (text.empty()) { text = toText(*message); }
            deliver(id, message, copyOf(text));
        } catch (std::bad_alloc const&) { // it must not take what it was not sent for silence
            endConnection(peer.connection, "no memory left for an event");
        }
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

void MessageBus::sendCopy(PeerId observer, std::string text) {
    auto& connection = peers_.at(observer).connection;
    if (connection.waiting() + text.size() <= observerBacklog) { return connection.send(std::move(text)); }
    complain(observer, "does not keep up with what it observes: ");
    unobserve(observer);
    connection.close("does not keep up with what it observes");
}

void MessageBus::show(Direction direction, PeerId peer, MessagePtr const& message) {
    if (observerCount_ == 0) { return; }
    for (auto& [id, observer] : peers_) {
        if (id == peer || !observer.makeCopy) { continue; }
        try {
            auto const copy = observer.makeCopy(direction, message);
            if (copy) { sendCopy(id, lineOf(*copy)); }
        } catch (std::exception const& error) { warn("cannot show " + message->name(), error); }
    }
}

} // namespace zorv
