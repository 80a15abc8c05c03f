// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/FailedNode.h"

#include "zwave/libcontroller/jobs/NodeInquiry.h"
#include "zwave/libcontroller/jobs/Transmission.h"

namespace zorv::controller {

using serialapi::CallEnd;
using serialapi::RemoveFailedNode;
using serialapi::ReplaceFailedNode;

namespace {

constexpr Milliseconds attemptTime{70'000}; // of the frame that shows whether the node works

// What the module calls back with.
constexpr Byte works = 0;
constexpr Byte removed = 1;
constexpr Byte ready = 3;
constexpr Byte replaced = 4;

char const* describe(Byte refusal) {
    constexpr Byte notPrimary = 0x02;
    constexpr Byte notListed = 0x08;
    constexpr Byte busy = 0x10;
    if ((refusal & notPrimary) != 0) { return "the module is not the primary controller"; }
    if ((refusal & notListed) != 0) { return "the module does not have the node among the failed ones"; }
    if ((refusal & busy) != 0) { return "the module is busy"; }
    return "the module has refused it";
}

} // namespace

std::string FailedNode::objection(Network const& network) const {
    if (node_ == network.ownNode) { return "it is the module's own node"; }
    if (network.nodes.find(node_) == nullptr) { return "the network has no node " + std::to_string(node_); }
    bool const isKnown = action_ == Action::remove ? network.module.knows<RemoveFailedNode>()
                                                   : network.module.knows<ReplaceFailedNode>();
    return isKnown ? "" : "the module does not know how";
}

/// A frame that fails also puts the node on the module's list of failed ones.
void FailedNode::run() {
    if (force_) { return begin(); }
    Transmission::Order order;
    order.nodes = {node_};
    order.data = {0x00};
    order.asleep = Transmission::Asleep::send;
    order.time = attemptTime;
    auto const attempt = std::make_shared<Transmission>(std::move(order));
    host().submitPart(*this, attempt, [this, attempt] {
        if (attempt->state() == JobState::done) { return nodeWorks(); }
        askModule();
    });
}

void FailedNode::askModule() {
    serialapi::CallHandlers<serialapi::IsFailedNode> handlers;
    handlers.response = [this](serialapi::Setting const& response) {
        if (response.value == 0) { return fail("the module does not have the node among the failed ones"); }
        network().nodes.networkStatus(node_, DeviceNetworkStatus::failed);
        begin();
    };
    handlers.end = orFail();
    call<serialapi::IsFailedNode>({node_}, std::move(handlers));
}

void FailedNode::begin() { action_ == Action::remove ? remove() : replace(); }

void FailedNode::onStart(serialapi::FailedNodeStart const& start) {
    if (start.refusal != 0) { fail(describe(start.refusal)); }
}

void FailedNode::nodeWorks() {
    doesNodeWork_ = true;
    fail("the node works");
}

void FailedNode::remove() {
    serialapi::CallHandlers<RemoveFailedNode> handlers;
    handlers.response = [this](serialapi::FailedNodeStart const& start) { onStart(start); };
    handlers.callback = [this](serialapi::StatusCallback const& callback) {
        if (callback.status == works) { return nodeWorks(); }
        if (callback.status != removed) { return fail("the module could not remove the node"); }
        network().nodes.remove(node_);
        done();
    };
    handlers.end = orFail();
    call<RemoveFailedNode>({node_, 0}, std::move(handlers));
}

void FailedNode::replace() {
    serialapi::CallHandlers<ReplaceFailedNode> handlers;
    handlers.response = [this](serialapi::FailedNodeStart const& start) { onStart(start); };
    handlers.callback = [this](serialapi::StatusCallback const& callback) {
        if (callback.status == works) { return nodeWorks(); }
        if (callback.status == ready) {
            isReplacing_ = true;
            if (ready_) { ready_(); }
            return;
        }
        isReplacing_ = false;
        if (callback.status != replaced) { return fail("the module could not replace the node"); }
        onReplaced();
    };
    handlers.end = [this](CallEnd end) {
        if (end != CallEnd::done) { fail(complaint(end)); }
    };
    call<ReplaceFailedNode>({node_, 0}, std::move(handlers));
}

void FailedNode::onReplaced() {
    network().nodes.remove(node_);
    auto const inquiry = std::make_shared<NodeInquiry>(node_, std::nullopt);
    host().submitPart(*this, inquiry, [this, inquiry] {
        if (isStopping()) { return endStopped(); }
        if (inquiry->state() != JobState::done) { return fail(inquiry->reason()); }
        done();
    });
}

/// While the module waits for the new node it is in a mode, which the stop of an inclusion ends.
void FailedNode::stop() {
    if (!isReplacing_) { return endStopped(); }
    tell<serialapi::AddNodeToNetwork>({serialapi::mode::stop, std::nullopt, std::nullopt}, [this](CallEnd end) {
        if (end != CallEnd::done) { host().resetModule("it does not leave the mode of replacement"); }
        endStopped();
    });
}

} // namespace zorv::controller
