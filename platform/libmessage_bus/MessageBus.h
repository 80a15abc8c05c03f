// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "platform/libio/TcpConnection.h"
#include "platform/libmessage_bus/Allowance.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/TcpEndpoint.h"
#include "platform/libtransport/readMessage.h"

#include <boost/shared_ptr.hpp>
#include <boost/uuid/uuid.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorv {

/// Names one connected peer of a bus; never used again for another one.
enum class PeerId : std::uint64_t {};

/// Which way an observed message travelled, as seen from this process.
enum class Direction { received, sent };

/// Carries messages between this process and its connected peers: answers to the peers that asked, events to those that
/// subscribed, copies to those that observe. It belongs to the event loop's thread.
///
/// Every message that arrives gets the peer's address as its source. A message that answers a request of this process
/// goes to the request's own handler, any other one to the handler of its class. A confirmable message that has no
/// handler, or comes on top of too many unanswered ones, is answered with an empty message of its class with result
/// "rejected"; one whose handler throws, or whose answer cannot be sent, with such a one with "failure". What carries a
/// correlation is an answer, and an answer is never answered; nor is what carries no header, which could not be told
/// apart from an answer.
class ZORV_EXPORT MessageBus {
public:
    using MessagePtr = boost::shared_ptr<TMessage>;
    using ConfirmablePtr = boost::shared_ptr<TConfirmable>;

    struct Handlers {
        /// Judges the first message of a peer before any other is handled. Returns a complaint, or an empty text.
        /// Without this handler, peers need not open their connections.
        std::function<std::string(PeerId from, TMessage const& first)> opening;

        /// A line arrived that is not a message, or is too long; or a first message was refused.
        std::function<void(PeerId from, BadMessageError const& error)> badLine;

        /// A peer sends nothing any more. It may still read, and gets the answers to its requests before it goes.
        std::function<void(PeerId peer)> inputEnded;

        /// A peer is gone; its requests and its subscriptions are forgotten.
        std::function<void(PeerId peer, std::string const& reason)> left;
    };

    /// Most requests of one peer that may wait for their answers.
    static constexpr std::size_t unansweredLimit = 1000;

    /// Most requests that are remembered after their deadline, so that a late answer is recognised.
    static constexpr std::size_t expiredLimit = 1024;

    /// A peer whose bad lines exceed so many at once, and one more in each second, is disconnected.
    static constexpr int badLineLimit = 100;

    /// A peer that has not opened its connection after `openingTime` is disconnected.
    explicit MessageBus(EventLoop& loop, Handlers handlers = {},
                        std::chrono::milliseconds openingTime = std::chrono::seconds(10));

    MessageBus(MessageBus const&) = delete;
    MessageBus& operator=(MessageBus const&) = delete;
    ~MessageBus() = default;

    // ---- peers

    PeerId attach(TcpConnection connection);

    /// Disconnects the peer; Handlers::left follows from the loop.
    void disconnect(PeerId peer);

    /// Disconnects all peers, each when it has got what was sent to it before.
    void disconnectAll(std::string const& reason);

    std::size_t peerCount() const noexcept { return peers_.size(); }

    struct PeerInfo {
        TcpConnection::Endpoint remote;
        std::uint64_t received; ///< messages
        std::uint64_t sent;
        std::size_t unanswered; ///< its requests that wait
        std::size_t waiting;    ///< bytes that it has not read yet
        std::size_t events;     ///< that it subscribed to
        bool observes;
    };

    /// The peers that are connected, the oldest first.
    std::vector<PeerInfo> peers() const;

    struct Counters {
        std::uint64_t received = 0; ///< messages
        std::uint64_t sent = 0;
        std::uint64_t rejected = 0; ///< requests, by the bus or by refuse()
        std::uint64_t badLines = 0;
        std::uint64_t dropped = 0; ///< messages that nobody waited for
    };

    Counters const& counters() const noexcept { return counters_; }

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

    /// Sends the response to the request of `asker` that it correlates with; it is dropped when that peer is gone. One
    /// that cannot be written, or is longer than a line may be, is logged, and an empty one with "failure" is sent. One
    /// with result "inProgress" is not the last: the request waits on.
    void answer(PeerId asker, ConfirmablePtr const& response);

    /// Answers a request with an empty message of its class with result "rejected".
    void refuse(PeerId asker, TConfirmable const& request);

    /// Sends a message to one peer; it is dropped when that peer is gone. A SerializerError where it cannot be written.
    void send(PeerId to, MessagePtr const& message);

    using Answered = std::function<void(ConfirmablePtr const& answer)>;

    /// Sends a request and has `answered` called once, by the loop: with the answer, or after `deadline` with a copy of
    /// the request that has result "timeout", or with one that has result "failure" when the peer is gone.
    ///
    /// Only the peer that was asked can answer. What comes after the deadline is dropped and logged. A request that
    /// carries no header is answered by the next message of its class. An answer with result "inProgress" is not the
    /// last: `progress` is called with each, where it is given.
    void request(PeerId to, ConfirmablePtr const& request, std::chrono::milliseconds deadline, Answered answered,
                 Answered progress = {});

    // ---- events

    /// Who subscribes to this one hears of every event.
    static constexpr char const* everyEvent = "*";

    void subscribe(PeerId peer, std::string const& event);
    void unsubscribe(PeerId peer, std::string const& event);

    /// Whether publish() would send anything.
    bool hasSubscribers(std::string const& event) const;

    /// Sends a message to every peer that subscribed to the event. A SerializerError where it cannot be written.
    void publish(std::string const& event, MessagePtr const& message);

    // ---- observation

    /// Makes what an observer receives for a message that travelled; null where it receives nothing.
    using MakeCopy = std::function<MessagePtr(Direction direction, MessagePtr const& message)>;

    /// What may wait to be sent to an observer, bytes. One that does not keep up is disconnected, with a line in the log:
    /// it costs no more memory than that, and does not take what it was not sent for silence.
    static constexpr std::size_t observerBacklog = std::size_t{1} << 20U;

    /// Shows the peer the traffic of all other peers; copies for observers are no traffic.
    void observe(PeerId observer, MakeCopy makeCopy);
    void unobserve(PeerId observer);

private:
    /// A peer's request that waits for its answer.
    struct Asked {
        boost::uuids::uuid id;
        ConfirmablePtr request;
        std::size_t bytes;
    };

    struct Peer {
        explicit Peer(TcpConnection&& theConnection)
            : connection(std::move(theConnection)), source(connection.remote()) {}

        TcpConnection connection;
        TcpEndpointValue source; // of its messages, which share it
        Timer opening;           // runs as long as the peer has not opened its connection
        bool opened = false;
        bool inputEnded = false;
        std::set<std::string> events;
        MakeCopy makeCopy; // empty unless the peer observes
        std::uint64_t received = 0;
        std::uint64_t sent = 0;
        std::vector<Asked> unanswered; // its requests, the oldest first
        std::size_t unansweredBytes = 0;
        Allowance badLines{badLineLimit, 1};
        Allowance complaints{5, 1}; // lines in the log
        std::size_t leftOut = 0;    // complaints that were not logged
    };

    /// A message's identity, together with the peer that it came from or went to: two peers may use the same one.
    using Key = std::pair<PeerId, boost::uuids::uuid>;

    struct Pending {
        ConfirmablePtr request;
        Answered answered;
        Answered progress;
        Timer deadline;
        bool carriesHeader;
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

    bool isTraced() const;
    void received(PeerId from, std::string const& line);
    void take(PeerId from, std::string const& line);
    void open(PeerId from, MessagePtr const& first);
    void refuseLine(PeerId from, BadMessageError const& error);
    void inputEnded(PeerId from);
    void closed(PeerId peer, std::string const& reason);
    void dispatch(PeerId from, MessagePtr const& message, std::size_t bytes);
    void dispatchRequest(PeerId from, ClassHandler const& handler, ConfirmablePtr const& request, std::size_t bytes);
    static bool call(ClassHandler const& handler, PeerId from, MessagePtr const& message);
    bool settle(PeerId from, ConfirmablePtr const& answer);
    bool settleByClass(PeerId from, ConfirmablePtr const& answer);
    static bool hears(Peer const& peer, std::string const& event);
    void settle(std::map<Key, Pending>::iterator pending, ConfirmablePtr const& answer);
    void finish(Key const& key, TResult::Enum result);
    void finishAll(PeerId peer);
    void reject(PeerId to, TConfirmable const& request);
    bool sendAnswer(PeerId to, ConfirmablePtr const& response);
    void deliver(PeerId to, MessagePtr const& message, std::string text);
    void show(Direction direction, PeerId peer, MessagePtr const& message);
    void sendCopy(PeerId observer, std::string text);
    void complain(PeerId of, std::string const& text);
    static std::string nameOf(Peer const& peer);

    EventLoop& loop_;
    Handlers handlers_;
    std::chrono::milliseconds openingTime_;
    std::unordered_map<std::type_index, ClassHandler> classHandlers_;
    std::uint64_t lastPeer_ = 0;
    std::map<PeerId, Peer> peers_;
    std::map<Key, Pending> pending_; // requests of this process
    std::deque<Key> expired_;        // the latest of those that were not answered in time
    std::size_t observerCount_ = 0;
    std::optional<bool> traced_; // whether lines are logged, as long as one is taken
    Counters counters_;
    Allowance complaints_{50, 20}; // lines in the log, of all peers together
};

} // namespace zorv
