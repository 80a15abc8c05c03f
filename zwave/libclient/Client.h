// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "zwave/libclient/DaemonConnection.h"
#include "zwave/libquillet/Confirmable.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
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

/// How long a client waits.
struct ClientTiming {
    /// Until it tries again to connect: at first, then twice as long each time.
    std::chrono::milliseconds firstRetry = std::chrono::milliseconds(250);
    std::chrono::milliseconds longestRetry = std::chrono::seconds(8);

    /// For a connection, for the daemon's version and for the answer to a subscription.
    std::chrono::milliseconds opening = std::chrono::seconds(10);
};

/// A client of the daemon, such as a device agent: it connects, asks, and hears of events.
///
/// A connection that cannot be made or gets lost is tried again, and what was subscribed to is subscribed to again each
/// time. All handlers are called by the event loop. A client belongs to its loop's thread, but for the request that
/// gives a future.
class ZORV_EXPORT Client {
public:
    using Answer = DaemonConnection::Answer;
    using Answered = std::function<void(Answer const& answer)>;

    Client(EventLoop& loop, DaemonPlace place, ClientHandlers handlers = {}, ClientTiming timing = {});
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
        connection_.listen<Event>(std::move(heard));
        subscribe(Event::NAME);
    }

    /// The same for every event that there is, in place of what was called before.
    void onEvery(std::function<void(TMessage const& event)> const& heard);

private:
    enum class State { opening, subscribing, connected, waiting, refused };

    DaemonConnection::Handlers connectionHandlers();
    void ended(ConnectionEnd end, std::string const& reason);
    void connect();
    void subscribe(std::string const& event);
    void subscribeToAll();
    void begin();
    static Answer judged(Confirmable const& request, MessageBus::ConfirmablePtr const& any);
    void later(std::function<void()> work);
    void failed(std::string const& reason);
    void refused(std::string const& reason);

    EventLoop& loop_;
    ClientHandlers handlers_;
    ClientTiming timing_;
    std::chrono::milliseconds nextWait_;
    State state_ = State::opening;
    std::set<std::string> events_;
    std::shared_ptr<bool> alive_; ///< outlives this object in what is called later
    Timer nextTry_;
    DaemonConnection connection_;
};

} // namespace zorv
