#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpConnection.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/readMessage.h"

#include <boost/shared_ptr.hpp>
#include <boost/uuid/uuid.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <typeindex>
#include <typeinfo>
#include <utility>

namespace zorv {

/// Names one connected peer of a bus; never used again for another one.
enum class PeerId : std::uint64_t {};

/// Which way an observed message travelled, as seen from this process.
enum class Direction { received, sent };

/// Carries messages between this process and its connected peers: answers to who asked, events to who subscribed,
/// copies to who observes. All of it belongs to the event loop's thread.
///
/// Every message that arrives gets the peer's address as its source. A message that answers a request of this process
/// goes to the request's own handler, any other one to the handler of its class. A confirmable message that has no
/// handler, or comes on top of too many unanswered ones, is answered with result "rejected"; one whose handler throws,
/// with "failure".
class ZORV_EXPORT MessageBus {
public:
    using MessagePtr = boost::shared_ptr<TMessage>;
    using ConfirmablePtr = boost::shared_ptr<TConfirmable>;

    struct Handlers {
        /// A line that is no message arrived, or an over-long one.
        std::function<void(PeerId from, BadMessageError const& error)> badLine;

        /// A peer is gone; its requests and its subscriptions are forgotten.
        std::function<void(PeerId peer, std::string const& reason)> left;
    };

    /// Most requests of one peer that may wait for their answers.
    static constexpr std::size_t unansweredLimit = 10000;

    explicit MessageBus(EventLoop& loop, Handlers handlers = {});

    MessageBus(MessageBus const&) = delete;
    MessageBus& operator=(MessageBus const&) = delete;
    ~MessageBus() = default;

    // ---- peers

    PeerId attach(TcpConnection connection);

    /// Disconnects the peer; Handlers::left follows from the loop.
    void disconnect(PeerId peer);

    std::size_t peerCount() const noexcept { return peers_.size(); }

    // ---- messages

    /// Has `handler` called with each request of exactly the class `M`.
    ///
    /// The handler, or whoever it hands the request to, passes the answer to answer().
    template <class M> void handle(std::function<void(boost::shared_ptr<M> const& request, PeerId from)> handler) {
        static_assert(std::is_base_of_v<TConfirmable, M>, "only confirmable messages are answered");
        addHandler(std::move(handler), true);
    }

    /// Has `handler` called with each message of exactly the class `M`, which gets no answer.
    template <class M> void listen(std::function<void(boost::shared_ptr<M> const& message, PeerId from)> handler) {
        addHandler(std::move(handler), false);
    }

    /// Sends a response to the peer whose request it answers; it is dropped when that peer is gone, and logged when it
    /// cannot be written.
    void answer(ConfirmablePtr const& response);

    /// Sends a message to one peer; it is dropped when that peer is gone. A SerializerError where it cannot be written.
    void send(PeerId to, MessagePtr const& message);

    using Answered = std::function<void(ConfirmablePtr const& answer)>;

    /// Sends a request and has `answered` called once, by the loop: with the answer, or after `deadline` with a copy of
    /// the request that has result "timeout", or with one that has result "failure" when the peer is gone.
    ///
    /// An answer that comes after its deadline is dropped and logged.
    void request(PeerId to, ConfirmablePtr const& request, std::chrono::milliseconds deadline, Answered answered);

    // ---- events

    void subscribe(PeerId peer, std::string const& event);
    void unsubscribe(PeerId peer, std::string const& event);

    /// Sends a message to every peer that subscribed to the event. A SerializerError where it cannot be written.
    void publish(std::string const& event, MessagePtr const& message);

    // ---- observation

    /// Makes what an observer receives for a message that travelled.
    using MakeCopy = std::function<MessagePtr(Direction direction, MessagePtr const& message)>;

    /// Shows the peer the traffic of all other peers; copies for observers are no traffic.
    void observe(PeerId observer, MakeCopy makeCopy);
    void unobserve(PeerId observer);

private:
    struct Peer {
        TcpConnection connection;
        std::set<std::string> events;
        MakeCopy makeCopy; // empty unless the peer observes
        std::size_t unanswered = 0;
    };

    struct Pending {
        PeerId peer;
        ConfirmablePtr request;
        Answered answered;
        Timer deadline;
    };

    struct ClassHandler {
        std::function<void(MessagePtr const& message, PeerId from)> call;
        bool answers = false;
    };

    template <class M>
    void addHandler(std::function<void(boost::shared_ptr<M> const& message, PeerId from)> handler, bool answers) {
        auto call = [handler = std::move(handler)](MessagePtr const& message, PeerId from) {
            handler(boost::static_pointer_cast<M>(message), from);
        };
        classHandlers_[typeid(M)] = ClassHandler{std::move(call), answers};
    }

    void received(PeerId from, std::string const& line);
    void closed(PeerId peer, std::string const& reason);
    void dispatch(PeerId from, MessagePtr const& message);
    void dispatchRequest(PeerId from, ClassHandler const& handler, ConfirmablePtr const& request);
    static bool call(ClassHandler const& handler, PeerId from, MessagePtr const& message);
    bool settle(PeerId from, ConfirmablePtr const& answer);
    void finish(boost::uuids::uuid const& id, TResult::Enum result);
    void deliver(PeerId to, std::string const& text);
    void show(Direction direction, PeerId peer, MessagePtr const& message);

    EventLoop& loop_;
    Handlers handlers_;
    std::map<std::type_index, ClassHandler> classHandlers_;
    std::uint64_t lastPeer_ = 0;
    std::map<PeerId, Peer> peers_;
    std::multimap<boost::uuids::uuid, PeerId> askers_; // of the unanswered requests, by the requests' identities
    std::map<boost::uuids::uuid, Pending> pending_;    // requests of this process
    std::deque<boost::uuids::uuid> expired_;           // the latest of those that were not answered in time
    std::size_t observerCount_ = 0;
};

} // namespace zorv
