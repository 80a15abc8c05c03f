// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/NodeMessages.h"

#include "platform/libzorvshared/nodeIds.h"
#include "zwave/libcontroller/jobs/Interview.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <memory>
#include <utility>

namespace zorv::daemon {

using controller::Transmission;
using serialapi::NodeId;

namespace {

/// How a frame to nodes ended.
ZResult::Enum resultOf(Transmission const& job, ZResult::Enum result) {
    constexpr serialapi::Byte notAcknowledged = 1;
    if (result != ZResult::failure) { return result; }
    if (job.wasAsleep()) { return ZResult::nodeAsleep; }
    if (job.status() == notAcknowledged) { return ZResult::nodeNotReached; }
    return result;
}

boost::shared_ptr<Device> shared(Device const& device) { return boost::make_shared<Device>(device); }

} // namespace

NodeMessages::NodeMessages(Context const& context) : context_(context) {
    auto& requests = context_.requests;
    requests.handle<PingMsg>([this](auto const& request, PeerId from) { ping(request, from); });
    requests.handle<SendCommandMsg>([this](auto const& request, PeerId from) { sendCommand(request, from); });
    requests.handle<ConfigurationMsg>([this](auto const& request, PeerId from) { configure(request, from); });
    requests.handle<NodeInformationMsg>([this](auto const& request, PeerId from) { nodeInformation(request, from); });
    requests.handle<DeviceStatusMsg>([this](auto const& request, PeerId from) { deviceStatus(request, from); });
}

// ---- to nodes

void NodeMessages::ping(Request<PingMsg> const& request, PeerId from) {
    auto const node = context_.nodeOf(request->destination());
    if (context_.network().nodes.find(node) == nullptr) {
        return context_.bus.answer(from, PingMsg::create(request, ZResult::nodeNotFound, 0));
    }
    if (node == context_.network().ownNode) {
        return context_.bus.answer(from, PingMsg::create(request, ZResult::success, 0));
    }
    auto const job = controller::makePing(node, controller::Milliseconds(0), request->priority());
    auto const answer = [request, job](ZResult::Enum result) {
        auto const latency = result == ZResult::success ? job->latency().count() : 0;
        return PingMsg::create(request, resultOf(*job, result), static_cast<unsigned int>(latency));
    };
    context_.requests.begin<PingMsg>(request, from, Requests::Lease::connection, job, answer);
}

void NodeMessages::sendCommand(Request<SendCommandMsg> const& request, PeerId from) {
    auto const& destinations = request->destinations();
    bool const isWhole =
        request->command() != nullptr && !destinations.empty() && SendCommandMsg::validDestinations(destinations);
    if (!isWhole || request->forceSecure()) { // the network is not secure
        return context_.bus.answer(from, SendCommandMsg::create(request, ZResult::rejected));
    }
    auto const order = orderFor(*request);
    bool const areKnown = std::all_of(order.nodes.begin(), order.nodes.end(), [this](NodeId node) {
        return node == broadcastNodeId || context_.network().nodes.find(node) != nullptr;
    });
    if (!areKnown) { return context_.bus.answer(from, SendCommandMsg::create(request, ZResult::nodeNotFound)); }
    if (isGivenUp(*request)) {
        return context_.bus.answer(from, SendCommandMsg::create(request, ZResult::nodeNotReached));
    }
    std::function<void()> taken;
    if (request->noWait()) {
        taken = [this, request, from] { context_.bus.answer(from, SendCommandMsg::create(request, ZResult::success)); };
    }
    auto const job = std::make_shared<Transmission>(order, taken);
    auto const answer = [request, job](ZResult::Enum result) {
        return SendCommandMsg::create(request, resultOf(*job, result));
    };
    context_.requests.begin<SendCommandMsg>(request, from, Requests::Lease::none, job, answer);
}

/// [broadcast, node, ...] goes to the nodes that follow.
Transmission::Order NodeMessages::orderFor(SendCommandMsg const& request) const {
    Transmission::Order order;
    bool const isMulticast = request.sendMulticast();
    for (auto const& destination : request.destinations()) {
        auto const node = context_.nodeOf(destination);
        if (!isMulticast || node != broadcastNodeId) { order.nodes.push_back(node); }
    }
    order.data = request.command()->bytes();
    order.options = static_cast<serialapi::Byte>(request.options());
    order.asleep = request.forceSend() ? Transmission::Asleep::send : Transmission::Asleep::wait;
    order.priority = request.priority();
    return order;
}

/// Whether the frame is for one node that is on the module's list of failed ones.
bool NodeMessages::isGivenUp(SendCommandMsg const& request) const {
    if (request.forceSend() || !request.sendSinglecast()) { return false; }
    auto const* const device = context_.deviceOf(request.destination(0));
    return device != nullptr && device->deviceNetworkStatus() == DeviceNetworkStatus::failed;
}

/// A node that sleeps is asked when it wakes up; nobody can wait for that.
void NodeMessages::configure(Request<ConfigurationMsg> const& request, PeerId from) {
    auto const say = [this, request, from](ConfigurationStatus::Enum status, Device const* device,
                                           ZResult::Enum result) {
        auto const answer = ConfigurationMsg::create(status, device != nullptr ? shared(*device) : nullptr, result);
        answer->setResponse(*request);
        context_.bus.answer(from, answer);
    };
    if (request->operation() != ConfigurationStatus::start || !request->device()) {
        return say(request->operation(), nullptr, ZResult::rejected);
    }
    auto const address = request->device()->address();
    auto const* const device = context_.deviceOf(address);
    if (device == nullptr) { return say(ConfigurationStatus::start, nullptr, ZResult::nodeNotFound); }
    constexpr bool anew = true;
    auto const job = std::make_shared<controller::Interview>(context_.nodeOf(address), anew);
    bool const sleeps = device->isSleeping() && device->wakeStatus() != WakeStatus::awake;
    auto const answer = [this, request, address](ZResult::Enum result) {
        auto const* const asked = context_.deviceOf(address);
        auto const status = result == ZResult::success ? ConfigurationStatus::finish : ConfigurationStatus::interrupted;
        auto response = ConfigurationMsg::create(status, asked != nullptr ? shared(*asked) : nullptr, result);
        response->setResponse(*request);
        return response;
    };
    context_.requests.begin<ConfigurationMsg>(request, from, Requests::Lease::none, job, answer);
    if (sleeps && !job->isOver()) { say(ConfigurationStatus::start, device, ZResult::nodeAsleep); }
}

// ---- what is known of them

void NodeMessages::nodeInformation(Request<NodeInformationMsg> const& request, PeerId from) {
    switch (request->operation()) {
    case GetNodesOp::get: return tellNodes(request, from);
    case GetNodesOp::set: return setNodes(request, from);
    case GetNodesOp::update: // an event, of which the daemon is the source
    case GetNodesOp::undefined: break;
    }
    context_.bus.refuse(from, *request);
}

void NodeMessages::tellNodes(Request<NodeInformationMsg> const& request, PeerId from) {
    DeviceMap devices;
    for (auto const& [node, device] : context_.network().nodes.devices()) {
        devices.emplace(device.address(), shared(device));
    }
    context_.bus.answer(from, NodeInformationMsg::create(request, GetNodesOp::set, devices));
}

/// Of a node's record only the lights belong to the clients; all else the module or the node tells.
void NodeMessages::setNodes(Request<NodeInformationMsg> const& request, PeerId from) {
    auto const& given = request->devices();
    bool const areKnown = !given.empty() && std::all_of(given.begin(), given.end(), [this](auto const& entry) {
        return entry.second && context_.deviceOf(entry.first) != nullptr;
    });
    if (!areKnown) { return context_.bus.refuse(from, *request); }
    DeviceMap devices;
    for (auto const& [address, device] : given) {
        auto const node = context_.nodeOf(address);
        context_.link.changeNode(node,
                                 [lights = device->deviceLights()](Device& known) { known.deviceLights(lights); });
        auto const* const known = context_.network().nodes.find(node);
        devices.emplace(known->address(), shared(*known));
    }
    bool const isKept = context_.requests.keep();
    auto const answer = NodeInformationMsg::create(request, GetNodesOp::set, devices);
    answer->result(isKept ? ZResult::success : ZResult::failure);
    context_.bus.answer(from, answer);
}

void NodeMessages::deviceStatus(Request<DeviceStatusMsg> const& request, PeerId from) {
    auto const* const device = context_.deviceOf(request->address());
    if (device == nullptr) {
        return context_.bus.answer(from, DeviceStatusMsg::create(request, ZResult::nodeNotFound));
    }
    context_.bus.answer(from,
                        DeviceStatusMsg::create(request, device->address(), device->deviceNetworkStatus(),
                                                device->deviceStatus(), device->deviceLights(),
                                                device->securityStatus(), device->wakeStatus(), MessageRole::response));
}

} // namespace zorv::daemon
