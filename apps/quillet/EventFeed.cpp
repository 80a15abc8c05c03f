// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/EventFeed.h"

#include "zwave/libclient/hearAll.h"
#include "zwave/libquillet/protocolVersion.h"

#include <chrono>
#include <utility>

namespace zorv {

namespace {

constexpr std::chrono::seconds retryTime{1};

} // namespace

EventFeed::EventFeed(EventLoop& loop, DaemonAddress const& daemon, Handlers handlers)
    : loop_(loop), daemon_(daemon), handlers_(std::move(handlers)), bus_(loop, busHandlers()) {
    hearAll(bus_, [this](TMessage const& message) { heard(message); });
    connect();
}

MessageBus::Handlers EventFeed::busHandlers() {
    MessageBus::Handlers handlers;
    handlers.opening = [](PeerId, TMessage const& first) { return complaintAboutOpening(first); };
    handlers.left = [this](PeerId, std::string const& reason) { lost("lost the connection to the daemon: " + reason); };
    return handlers;
}

void EventFeed::connect() {
    std::weak_ptr<bool> const alive = alive_;
    ConnectHandlers handlers;
    handlers.connected = [this, alive](TcpConnection connection) {
        if (!alive.expired()) { open(std::move(connection)); }
    };
    handlers.failed = [this, alive](std::string const& reason) {
        if (!alive.expired()) { lost("cannot connect to " + toString(daemon_.place) + ": " + reason); }
    };
    connectDaemon(loop_, daemon_.place, daemon_.timeout, std::move(handlers));
}

void EventFeed::open(TcpConnection connection) {
    peer_ = bus_.attach(std::move(connection));
    bus_.send(peer_, VersionMsg::create(protocolVersion));
    auto const subscription = SubscribeMsg::create(false, std::string(MessageBus::everyEvent));
    bus_.request(peer_, subscription, daemon_.timeout, [this](MessageBus::ConfirmablePtr const& answer) {
        if (answer->result() != ZResult::success) { return; } // the connection is gone, or about to go
        if (std::exchange(isLost_, false)) { handlers_.changed("connected again"); }
    });
    askForNodes();
}

void EventFeed::askForNodes() {
    auto const request = NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {});
    bus_.request(peer_, request, daemon_.timeout, [this](MessageBus::ConfirmablePtr const& answer) {
        started();
        auto const known = boost::dynamic_pointer_cast<NodeInformationMsg>(answer);
        if (!known || known->result() != ZResult::success) { return; }
        nodes_.clear();
        for (auto const& each : known->devices()) {
            nodes_.push_back(std::to_string(static_cast<unsigned int>(each.first.nodeId())));
        }
    });
}

void EventFeed::started() {
    if (!std::exchange(isStarted_, true)) { loop_.stop(); }
}

void EventFeed::waitForStart(bool const& isOver) {
    while (!isStarted_ && !isOver) { loop_.run(); }
}

void EventFeed::heard(TMessage const& message) {
    bool const mayChangeNodes = dynamic_cast<NodeInformationMsg const*>(&message) != nullptr ||
                                dynamic_cast<AddRemoveNodeMsg const*>(&message) != nullptr ||
                                dynamic_cast<ResetDefaultsMsg const*>(&message) != nullptr;
    if (mayChangeNodes) { askForNodes(); }
    handlers_.event(message);
}

void EventFeed::lost(std::string const& reason) {
    if (!std::exchange(isLost_, true)) { handlers_.changed(reason + "; trying again"); }
    started();
    retry_ = Timer(loop_, retryTime, [this] { connect(); });
}

} // namespace zorv
