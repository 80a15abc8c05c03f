// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/Transmission.h"

#include "platform/libzorvshared/TransmitOption.h"
#include "platform/libzorvshared/nodeIds.h"

#include <algorithm>
#include <utility>

namespace zorv::controller {

using serialapi::CallEnd;

namespace {

constexpr Byte acknowledged = 0;
constexpr Byte notAcknowledged = 1;
constexpr std::size_t largestData = 54; // of a frame that takes no route
constexpr std::size_t mostNodes = 64;   // which leave room for the data in a frame to several nodes

char const* describe(Byte status) {
    constexpr Byte radioFailed = 2;
    constexpr Byte notIdle = 3;
    switch (status) {
    case notAcknowledged: return "not acknowledged";
    case radioFailed: return "the radio is busy or jammed";
    case notIdle: return "the protocol is busy";
    default: return "not sent";
    }
}

} // namespace

std::string Transmission::objection(Network const& network) const {
    if (order_.nodes.empty()) { return "it names no node"; }
    if (order_.nodes.size() > mostNodes) { return "it names too many nodes"; }
    if (order_.data.empty() || order_.data.size() > largestData) { return "its data does not fit into a frame"; }
    bool const isBroadcast = order_.nodes == std::vector<NodeId>{broadcastNodeId};
    for (auto const node : order_.nodes) {
        if (!isBroadcast && network.nodes.find(node) == nullptr) {
            return "the network has no node " + std::to_string(node);
        }
    }
    return "";
}

NodeId Transmission::awaits(Network const& network) const {
    if (order_.asleep != Asleep::wait || order_.nodes.size() != 1) { return 0; }
    auto const* const device = network.nodes.find(order_.nodes.front());
    bool const sleeps = device != nullptr && device->isSleeping() && device->wakeStatus() != WakeStatus::awake;
    return sleeps ? order_.nodes.front() : NodeId{0};
}

void Transmission::run() {
    auto const* const device = order_.nodes.size() == 1 ? network().nodes.find(order_.nodes.front()) : nullptr;
    if (order_.asleep == Asleep::fail && device != nullptr && device->isSleeping() &&
        device->wakeStatus() != WakeStatus::awake) {
        wasAsleep_ = true;
        return fail("the node sleeps");
    }
    send();
}

/// By the function that the module has for it.
void Transmission::send() {
    sent_ = now();
    isOnAir_ = true;
    auto const own = network().ownNode;
    bool const isBridge = network().module.isBridge();
    if (order_.nodes.size() > 1 && isBridge) {
        sendAs<serialapi::SendDataMultiBridge>({own, order_.nodes, order_.data, order_.options, 0});
    } else if (order_.nodes.size() > 1) {
        sendAs<serialapi::SendDataMulti>({order_.nodes, order_.data, order_.options, 0});
    } else if (isBridge) {
        sendAs<serialapi::SendDataBridge>({own, order_.nodes.front(), order_.data, order_.options, {}, 0});
    } else {
        sendAs<serialapi::SendData>({order_.nodes.front(), order_.data, order_.options, 0});
    }
}

template <class F> void Transmission::sendAs(typename F::Request request) {
    serialapi::CallHandlers<F> handlers;
    handlers.response = [this](serialapi::Accepted const& response) { onResponse(response.accepted != 0); };
    handlers.callback = [this](serialapi::TransmitCallback const& callback) {
        latency_ = std::chrono::duration_cast<Milliseconds>(now() - sent_);
        status_ = callback.status;
        report_ = callback.report;
    };
    handlers.end = [this](CallEnd end) { onEnd(end); };
    call<F>(std::move(request), std::move(handlers));
    step(serialapi::limits::responseTime + serialapi::limits::callbackTime);
}

void Transmission::onResponse(bool isTaken) {
    if (!isTaken) { return; }
    step(serialapi::limits::callbackTime);
    if (taken_) { std::exchange(taken_, {})(); }
}

void Transmission::onEnd(CallEnd end) {
    isOnAir_ = false;
    if (status_) { return conclude(); }
    if (isStopping()) { return endStopped(); }
    if (end == CallEnd::refused && ++refusals_ < limits::refusalsOfAFrame) { return step(limits::pauseAfterRefusal); }
    fail(complaint(end));
}

/// What is known of the node follows from what became of the frame.
void Transmission::conclude() {
    bool const isSingle = order_.nodes.size() == 1 && (order_.options & TransmitOption::ack) != 0;
    auto& nodes = network().nodes;
    if (isSingle && *status_ == acknowledged) {
        nodes.networkStatus(order_.nodes.front(), DeviceNetworkStatus::online);
    } else if (isSingle && *status_ == notAcknowledged && !isAborted_) {
        nodes.networkStatus(order_.nodes.front(), DeviceNetworkStatus::offline);
        auto const* const device = nodes.find(order_.nodes.front());
        if (device != nullptr && device->isSleeping()) { nodes.wakeStatus(order_.nodes.front(), WakeStatus::asleep); }
    }
    if (*status_ == acknowledged) { return done(); }
    if (isStopping()) { return endStopped(); }
    fail(describe(*status_));
}

void Transmission::stop() {
    if (!isOnAir_) { return endStopped(); }
    abort();
}

/// The frame then ends with its callback; a module that gives none is stuck.
void Transmission::abort() {
    isAborted_ = true;
    tell<serialapi::SendDataAbort>({});
    step(limits::abortTime);
}

void Transmission::stepTimedOut() {
    if (!isOnAir_) { return send(); }
    if (!isAborted_) { return abort(); }
    host().resetModule("a frame cannot be ended");
    if (isStopping()) { return endStopped(); }
    fail("the module does not call back");
}

std::shared_ptr<Transmission> makePing(NodeId node, Milliseconds time, int priority) {
    Transmission::Order order;
    order.nodes = {node};
    order.data = {0x00};
    order.asleep = Transmission::Asleep::fail;
    order.priority = priority;
    order.time = time;
    return std::make_shared<Transmission>(std::move(order));
}

} // namespace zorv::controller
