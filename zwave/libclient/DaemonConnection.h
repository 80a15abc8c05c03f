// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "zwave/libclient/DaemonPlace.h"
#include "zwave/libquillet/Confirmable.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zorv {

/// How long a daemon may take.
struct OpeningTimes {
    std::chrono::milliseconds connection;
    std::chrono::milliseconds version; ///< from the connection on
};

/// How a connection to a daemon came to its end.
enum class ConnectionEnd {
    unreachable,  ///< it did not come about
    lost,         ///< it was there
    otherVersion, ///< what answers is no daemon, or one of another version of the protocol
    refused       ///< the daemon does not want this client
};

/// One connection to a daemon, from the exchange of versions to its end. Client, which most programs use, keeps itself
/// one of these.
///
/// It belongs to its loop's thread, and is not destroyed by its own handlers.
class ZORV_EXPORT DaemonConnection {
public:
    using Answer = boost::shared_ptr<Confirmable>;

    struct Handlers {
        /// Messages can be sent. The daemon's version is on its way.
        std::function<void()> connected;

        /// The daemon has told its version, and this library understands it.
        std::function<void()> opened;

        /// The daemon sent a line that is no message. The connection stays.
        std::function<void(BadMessageError const& error)> badLine;

        /// The connection is no more. Called once for each connect().
        std::function<void(ConnectionEnd end, std::string const& reason)> ended;
    };

    DaemonConnection(EventLoop& loop, DaemonPlace place, OpeningTimes times, Handlers handlers);
    ~DaemonConnection();

    DaemonConnection(DaemonConnection const&) = delete;
    DaemonConnection& operator=(DaemonConnection const&) = delete;

    /// At first, or after the end of the connection before.
    void connect();

    bool isConnected() const noexcept { return bus_.peerCount() != 0; }

    /// Sends a request as MessageBus::request does.
    void request(Answer const& request, std::chrono::milliseconds deadline, MessageBus::Answered answered,
                 MessageBus::Answered progress = {}) {
        bus_.request(daemon_, request, deadline, std::move(answered), std::move(progress));
    }

    /// Sends a message that gets no answer; without a connection, it is dropped.
    void tell(boost::shared_ptr<TMessage> const& message) { bus_.send(daemon_, message); }

    /// Ends the connection at once.
    void disconnect() { bus_.disconnect(daemon_); }

    /// Ends the connection when all that was sent has gone.
    void finish() { bus_.disconnectAll("the client is done"); }

    /// Has `heard` called with each message of exactly the class `Message` that comes unasked, in place of what was
    /// called before.
    template <class Message> void listen(std::function<void(boost::shared_ptr<Message> const& message)> heard) {
        bus_.listen<Message>([heard = std::move(heard)](auto const& message, PeerId) { heard(message); });
    }

    /// The same for every class of the catalogue, but for the version, which is judged.
    void listenToAll(std::function<void(TMessage const& message)> const& heard);

    /// What came for a request as the answer that it is: of the request's class, or the bare Confirmable by which a
    /// daemon rejects what it does not understand. Null where it is neither.
    static Answer answerTo(Confirmable const& request, MessageBus::ConfirmablePtr const& any);

private:
    MessageBus::Handlers busHandlers();
    void open(TcpConnection connection);
    std::string judgeOpening(TMessage const& first);
    void end(ConnectionEnd how, std::string const& reason);

    EventLoop& loop_;
    DaemonPlace place_;
    std::chrono::milliseconds connectionTime_;
    Handlers handlers_;
    bool hasEnded_ = true;
    PeerId daemon_{};
    std::shared_ptr<bool> alive_; ///< outlives this object in what is called later
    MessageBus bus_;
};

} // namespace zorv
