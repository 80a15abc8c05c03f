// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

// Frames to nodes.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr NodeId everybody = 255;
constexpr Byte acknowledge = 0x01;
constexpr Byte transmitted = 0x00;
constexpr Byte notAcknowledged = 0x01;
constexpr std::size_t largestSinglecast = 46;
constexpr std::size_t largestMulticast = 25;
constexpr std::int8_t rssi = -79;
constexpr std::int8_t noRssi = 127;

/// One frame on its way; the module sends the next one when this one is through.
class Transmitter {
public:
    using Done = std::function<void(Byte status, Milliseconds took)>;

    explicit Transmitter(Core& core) : core_(core) {}

    /// False where the transmit queue is full, or there is nothing to send.
    bool send(std::vector<NodeId> nodes, Bytes data, Byte options, Done done) {
        auto const largest = nodes.size() == 1 ? largestSinglecast : largestMulticast;
        if (done_ || nodes.empty() || data.empty() || data.size() > largest) { return false; }
        nodes_ = std::move(nodes);
        data_ = std::move(data);
        options_ = options;
        done_ = std::move(done);
        status_ = transmitted;
        took_ = {};
        core_.isRadioOn = true;
        next();
        return true;
    }

    /// What is on its way ends as not acknowledged.
    void abort() {
        if (!done_) { return; }
        core_.cancel(pending_);
        end(notAcknowledged);
    }

    void forget() { done_ = nullptr; }

private:
    void next() {
        if (nodes_.empty()) { return end(status_); }
        auto const id = nodes_.front();
        nodes_.erase(nodes_.begin());
        if (id == everybody || (options_ & acknowledge) == 0) { return sendBlindly(id); }
        auto* const node = core_.node(id);
        auto const outcome = node != nullptr ? node->reach(core_.time(), core_.described.retransmission)
                                             : SimulatedNode::Outcome{false, core_.described.retransmission};
        took_ += outcome.delay;
        pending_ = core_.after(outcome.delay, [this, id, node, outcome] {
            core_.noteReached(id, outcome.isAcknowledged);
            if (!outcome.isAcknowledged) { status_ = notAcknowledged; }
            if (outcome.isAcknowledged) { arrive(*node); }
            next();
        });
    }

    void sendBlindly(NodeId id) {
        took_ += timing::broadcast;
        pending_ = core_.after(timing::broadcast, [this, id] {
            for (auto& node : core_.nodes) {
                bool const isMeant = core_.node(node.id()) == &node && (id == everybody || node.id() == id);
                if (isMeant && node.hears(core_.time())) { arrive(node); }
            }
            next();
        });
    }

    void arrive(SimulatedNode& node) {
        auto const plan = node.wakeUpPlan();
        auto answers = node.take(data_);
        if (node.wakeUpPlan() != plan) { core_.planWakeUp(node); }
        Milliseconds delay = timing::answers;
        for (auto& answer : answers) {
            auto const tell = [core = &core_, &node, data = std::move(answer)] { core->hear(node, data); };
            core_.after(delay, tell, Agenda::Owner::world);
            delay += timing::answers;
        }
    }

    void end(Byte status) {
        auto const done = std::exchange(done_, nullptr);
        done(status, took_);
    }

    Core& core_;
    std::vector<NodeId> nodes_; ///< that are still to be sent to
    Bytes data_;
    Byte options_ = 0;
    Done done_;
    Byte status_ = transmitted;
    Milliseconds took_{};
    Agenda::Entry pending_;
};

/// What the module tells of a transmission; the 500 series tells only how long it took.
std::optional<api::TransmitReport> reportOf(Core const& core, Byte status, Milliseconds took) {
    constexpr int tick = 10;
    if (!core.reportsTransmissions) { return std::nullopt; }
    api::TransmitReport report;
    report.ticks = static_cast<std::uint16_t>(took.count() / tick);
    if (core.isSeries500()) { return report; }
    bool const isAcknowledged = status == transmitted;
    api::TransmitReport::Route route;
    route.ackRssi = isAcknowledged ? rssi : noRssi;
    route.repeaterRssi.fill(static_cast<Byte>(noRssi));
    route.scheme = 1;
    route.speed = 3;
    route.attempts = 1;
    report.route = route;
    report.lastFailedLink = std::array<Byte, 2>{};
    report.longRange = api::TransmitReport::LongRange{noRssi, noRssi, noRssi, noRssi, noRssi};
    return report;
}

/// A send to one node, or to everybody.
template <class F> void serveSinglecast(Core& core, std::shared_ptr<Transmitter> const& transmitter) {
    core.serve<F>([&core, transmitter](typename F::Request const& request) {
        auto const done = [&core, id = request.callbackId](Byte status, Milliseconds took) {
            core.callBack<F>({id, status, reportOf(core, status, took)});
        };
        return api::Accepted{transmitter->send({request.node}, request.data, request.options, done) ? Byte{1}
                                                                                                    : Byte{0}};
    });
}

template <class F> void serveMulticast(Core& core, std::shared_ptr<Transmitter> const& transmitter) {
    core.serve<F>([&core, transmitter](typename F::Request const& request) {
        auto const done = [&core, id = request.callbackId](Byte status, Milliseconds) {
            core.callBack<F>({id, status, {}});
        };
        return api::Accepted{transmitter->send(request.nodes, request.data, request.options, done) ? Byte{1} : Byte{0}};
    });
}

void serveNodeInformation(Core& core) {
    core.serve<api::SendNodeInformation>([&core](api::SendNodeInformation::Request const& request) {
        core.after(timing::broadcast, [&core, request] {
            bool const isHeard = request.node == everybody || (request.options & acknowledge) == 0 ||
                                 (core.node(request.node) != nullptr && core.node(request.node)->hears(core.time()));
            auto const status = isHeard ? transmitted : notAcknowledged;
            core.callBack<api::SendNodeInformation>(
                {request.callbackId, status, reportOf(core, status, timing::broadcast)});
        });
        return api::Accepted{1};
    });
    core.serve<api::RequestNodeInfo>([&core](api::OneNode const& request) {
        auto* const node = core.node(request.node);
        auto const outcome = node != nullptr ? node->reach(core.time(), core.described.retransmission)
                                             : SimulatedNode::Outcome{false, core.described.retransmission};
        core.after(outcome.delay, [&core, node, outcome, id = request.node] {
            core.noteReached(id, outcome.isAcknowledged);
            if (outcome.isAcknowledged) { return core.hearInformation(*node); }
            api::ApplicationUpdate::Callback failed;
            failed.state = api::ApplicationUpdate::requestFailed;
            failed.length = Byte{0};
            core.report<api::ApplicationUpdate>(failed);
        });
        return api::Accepted{1};
    });
}

} // namespace

void serveSending(Core& core) {
    auto const transmitter = std::make_shared<Transmitter>(core);
    core.onReset([transmitter] { transmitter->forget(); });
    serveSinglecast<api::SendData>(core, transmitter);
    serveMulticast<api::SendDataMulti>(core, transmitter);
    core.serve<api::SendDataAbort>([transmitter](auto const&) { transmitter->abort(); });
    serveNodeInformation(core);
    if (!core.isBridge()) { return; }
    serveSinglecast<api::SendDataBridge>(core, transmitter);
    serveMulticast<api::SendDataMultiBridge>(core, transmitter);
}

} // namespace zorv::modulesim
