// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "zwave/libclient/connectDaemon.h"
#include "zwave/libquillet/Confirmable.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

namespace zorv {

class VersionMsg;

/// What a program hears of its connection.
struct ClientHandlers {
    /// The versions were exchanged, and the daemon knows what this client subscribes to.
    std::function<void()> connected;

    /// The connection was lost, or could not be made; another try follows.
    std::function<void(std::string const& reason)> lost;

    /// The daemon speaks another version of the protocol, or does not want this client. No other try follows.
    std::function<void(std::string const& reason)> refused;
};

/// How long a client waits until it tries again to connect: at first, then twice as long each time.
struct ClientRetry {
    std::chrono::milliseconds first = std::chrono::milliseconds(250);
    std::chrono::milliseconds longest = std::chrono::seconds(8);
};

/// A client of the daemon, such as a device agent: it connects, asks, and hears of events.
///
/// A connection that cannot be made or gets lost is tried again, and what was subscribed to is subscribed
/// to again each time. All handlers are called by
/// the event loop. A client belongs to its loop's thread, but for the request that gives a future.
class ZORV_EXPORT Client {
public:
    using Answer = boost::shared_ptr<Confirmable>;
    using Answered = std::function<void(Answer const& answer)>;

    /// How long a connection, the daemon's version and the answer to a subscription may take.
    static constexpr std::chrono::seconds openingTime{10};

    Client(EventLoop& loop, DaemonPlace place, ClientHandlers handlers = {}, ClientRetry retry = {});
    ~Client();

    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    bool isConnected() const noexcept { return state_ == State::connected; }

    /// Sends a request, and has `answered` called once: with the daemon's answer, or with a copy of the request that has
    /// result "timeout" after the deadline, or "failure" where there is no connection or it gets lost.
    ///
    /// The answer is of the request's class, or a bare Confirmable with result "rejected" where the daemon does not
    /// understand it. Answers with result "inProgress" come before the last one, and go to `progress`.
    void request(Answer const& request, std::chrono::milliseconds deadline, Answered answered, Answered progress = {});

    /// The same, from any thread but the loop's. The future's get() throws std::future_error where the client is
    /// destroyed before the answer is there.
    std::future<Answer> request(Answer const& request, std::chrono::milliseconds deadline);

    /// Subscribes to the messages of the class `Event`, and has `heard` called with each that comes unasked.
    template <class Event> void on(std::function<void(boost::shared_ptr<Event> const& event)> heard) {
        static_assert(!std::is_same_v<Event, VersionMsg>, "each side tells its version once, and that is judged");
        bus_.listen<Event>([heard = std::move(heard)](boost::shared_ptr<Event> const& event, PeerId) { heard(event); });
        subscribe(Event::NAME);
    }

private:
    enum class State { connecting, opening, subscribing, connected, waiting, refused };

    MessageBus::Handlers busHandlers();
    void connect();
    void open(TcpConnection connection);
    std::string judgeOpening(TMessage const& first);
    void subscribe(std::string const& event);
    void subscribeToAll();
    void begin();
    static Answer judged(Confirmable const& request, MessageBus::ConfirmablePtr const& any);
    void later(std::function<void()> work);
    void failed(std::string const& reason);
    void refused(std::string const& reason);

    EventLoop& loop_;
    DaemonPlace place_;
    ClientHandlers handlers_;
    ClientRetry retry_;
    std::chrono::milliseconds nextWait_;
    State state_ = State::connecting;
    std::set<std::string> events_;
    std::optional<PeerId> daemon_;
    std::shared_ptr<bool> alive_; ///< outlives this object in what is called later
    Timer nextTry_;
    MessageBus bus_;
};

} // namespace zorv
