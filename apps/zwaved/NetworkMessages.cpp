// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/NetworkMessages.h"

#include "zwave/libcontroller/jobs/ControllerShift.h"
#include "zwave/libcontroller/jobs/Exclusion.h"
#include "zwave/libcontroller/jobs/FactoryReset.h"
#include "zwave/libcontroller/jobs/FailedNode.h"
#include "zwave/libcontroller/jobs/Inclusion.h"
#include "zwave/libcontroller/jobs/LearnMode.h"
#include "zwave/libcontroller/jobs/NeighborUpdate.h"
#include "zwave/libcontroller/jobs/NetworkUpdate.h"
#include "zwave/libcontroller/jobs/NodeInformationFrame.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <memory>
#include <utility>

namespace zorv::daemon {

using controller::MembershipStage;
using serialapi::NodeId;

NetworkMessages::NetworkMessages(Context const& context) : context_(context) {
    auto& requests = context_.requests;
    requests.handle<AddRemoveNodeMsg>([this](auto const& request, PeerId from) { addRemove(request, from); });
    requests.handle<LearnModeMsg>([this](auto const& request, PeerId from) { learn(request, from); });
    requests.handle<ResetDefaultsMsg>([this](auto const& request, PeerId from) { reset(request, from); });
    requests.handle<SendNifMsg>([this](auto const& request, PeerId from) { sendNif(request, from); });
    requests.handle<ManageFailedNodeMsg>([this](auto const& request, PeerId from) { manageFailed(request, from); });
    requests.handle<RequestNeighborUpdateMsg>(
        [this](auto const& request, PeerId from) { updateNeighbors(request, from); });
    requests.handle<RequestNetworkUpdateMsg>(
        [this](auto const& request, PeerId from) { updateNetwork(request, from); });
}

// ---- inclusion and exclusion

void NetworkMessages::addRemove(Request<AddRemoveNodeMsg> const& request, PeerId from) {
    if (request->abort()) { return abort(request, from); }
    switch (request->operation()) {
    case AddRemoveOp::add: return include(request, from);
    case AddRemoveOp::remove: return exclude(request, from);
    case AddRemoveOp::invalid: break;
    }
    context_.bus.refuse(from, *request);
}

void NetworkMessages::include(Request<AddRemoveNodeMsg> const& request, PeerId from) {
    auto const progress = [this, request, from](MembershipStage /*stage*/, NodeId /*node*/) {
        context_.bus.answer(from, AddRemoveNodeMsg::create(request, ZResult::inProgress, request->timeout(), nullptr));
    };
    auto const begin = [&](auto const& job) {
        auto const answer = [this, request, job](ZResult::Enum result) {
            auto const* const device = context_.network().nodes.find(job->node());
            bool const hasCome = result == ZResult::success && device != nullptr;
            return AddRemoveNodeMsg::create(request, result, request->timeout(),
                                            hasCome ? boost::make_shared<Device>(*device) : nullptr);
        };
        context_.requests.begin<AddRemoveNodeMsg>(request, from, Requests::Lease::input, job, answer);
    };
    auto const time = jobSeconds(request->timeout());
    if (request->primary()) { return begin(std::make_shared<controller::ControllerShift>(time, progress)); }
    begin(std::make_shared<controller::Inclusion>(time, progress));
}

/// The device that goes is looked up as long as it is there.
void NetworkMessages::exclude(Request<AddRemoveNodeMsg> const& request, PeerId from) {
    if (request->primary()) { return context_.bus.refuse(from, *request); }
    auto const gone = std::make_shared<boost::shared_ptr<Device>>();
    auto const progress = [this, request, from, gone](MembershipStage /*stage*/, NodeId node) {
        auto const* const device = context_.network().nodes.find(node);
        if (device != nullptr) { *gone = boost::make_shared<Device>(*device); }
        context_.bus.answer(from, AddRemoveNodeMsg::create(request, ZResult::inProgress, request->timeout(), nullptr));
    };
    auto const answer = [request, gone](ZResult::Enum result) {
        return AddRemoveNodeMsg::create(request, result, request->timeout(),
                                        result == ZResult::success ? *gone : nullptr);
    };
    auto const job = std::make_shared<controller::Exclusion>(jobSeconds(request->timeout()), progress);
    context_.requests.begin<AddRemoveNodeMsg>(request, from, Requests::Lease::input, job, answer);
}

/// Ends whichever of the modes the operation names; without one, whichever runs.
void NetworkMessages::abort(Request<AddRemoveNodeMsg> const& request, PeerId from) {
    auto const ended = [this, request, from] {
        context_.bus.answer(from, AddRemoveNodeMsg::create(request, ZResult::success, request->timeout(), nullptr));
    };
    auto& requests = context_.requests;
    bool isRunning = false;
    if (request->operation() != AddRemoveOp::remove) {
        isRunning = requests.abort<controller::Inclusion>(ended) || requests.abort<controller::ControllerShift>(ended);
    }
    if (request->operation() != AddRemoveOp::add && !isRunning) {
        isRunning = requests.abort<controller::Exclusion>(ended);
    }
    if (!isRunning) {
        context_.bus.answer(from, AddRemoveNodeMsg::create(request, ZResult::rejected, request->timeout(), nullptr));
    }
}

// ---- the module in other networks

/// Mode "disabled" ends the running one. Its time-out is in milliseconds, unlike all others.
void NetworkMessages::learn(Request<LearnModeMsg> const& request, PeerId from) {
    auto const say = [this, request, from](ZResult::Enum result, LearnModeStatus::Enum status) {
        context_.bus.answer(from, LearnModeMsg::create(request, result, status, request->timeout()));
    };
    if (request->mode() == LearnMode::disabled) {
        auto const ended = [say] { say(ZResult::success, LearnModeStatus::done); };
        if (!context_.requests.abort<controller::LearnModeJob>(ended)) {
            say(ZResult::rejected, LearnModeStatus::none);
        }
        return;
    }
    auto const started = [say] { say(ZResult::inProgress, LearnModeStatus::started); };
    auto const answer = [request](ZResult::Enum result) {
        auto const status = result == ZResult::success    ? LearnModeStatus::done
                            : result == ZResult::rejected ? LearnModeStatus::none
                                                          : LearnModeStatus::failed;
        return LearnModeMsg::create(request, result, status, request->timeout());
    };
    auto const longest = controller::limits::longestJobTime.count();
    controller::Milliseconds const time(std::min<long long>(request->timeout(), longest));
    context_.requests.begin<LearnModeMsg>(request, from, Requests::Lease::input,
                                          std::make_shared<controller::LearnModeJob>(request->mode(), time, started),
                                          answer);
}

void NetworkMessages::reset(Request<ResetDefaultsMsg> const& request, PeerId from) {
    if (!mayAdminister(*request)) { return context_.bus.refuse(from, *request); }
    auto const answer = [this, request](ZResult::Enum result) {
        if (result == ZResult::success) { context_.announcer.announce(ResetDefaultsMsg::create(result)); }
        return ResetDefaultsMsg::create(request, result, request->timeout());
    };
    context_.requests.begin<ResetDefaultsMsg>(
        request, from, Requests::Lease::none,
        std::make_shared<controller::FactoryReset>(jobSeconds(request->timeout())), answer);
}

// ---- nodes

void NetworkMessages::sendNif(Request<SendNifMsg> const& request, PeerId from) {
    auto const options = static_cast<serialapi::Byte>(request->options());
    context_.requests.begin<SendNifMsg>(request, from, Requests::Lease::none,
                                        std::make_shared<controller::NodeInformationFrame>(
                                            request->destination(), options, controller::Milliseconds(0)));
}

void NetworkMessages::manageFailed(Request<ManageFailedNodeMsg> const& request, PeerId from) {
    auto const say = [this, request, from](ZResult::Enum result, ManageFailedNodeStatus::Enum status) {
        context_.bus.answer(from, ManageFailedNodeMsg::create(request, result, status, request->timeout()));
    };
    auto const operation = static_cast<int>(request->operation());
    if ((operation & ManageFailedNodeOp::abort) != 0) {
        auto const ended = [say] { say(ZResult::success, ManageFailedNodeStatus::aborting); };
        if (!context_.requests.abort<controller::FailedNode>(ended)) {
            say(ZResult::rejected, ManageFailedNodeStatus::invalid);
        }
        return;
    }
    auto const what = operation & (ManageFailedNodeOp::remove | ManageFailedNodeOp::replace);
    if (what != ManageFailedNodeOp::remove && what != ManageFailedNodeOp::replace) {
        return say(ZResult::rejected, ManageFailedNodeStatus::invalid);
    }
    if (context_.deviceOf(request->address()) == nullptr) {
        return say(ZResult::nodeNotFound, ManageFailedNodeStatus::nodeNotFound);
    }
    beginFailed(request, from);
}

void NetworkMessages::beginFailed(Request<ManageFailedNodeMsg> const& request, PeerId from) {
    using controller::FailedNode;
    auto const operation = static_cast<int>(request->operation());
    bool const isRemoval = (operation & ManageFailedNodeOp::remove) != 0;
    bool const force = (operation & ManageFailedNodeOp::force) != 0;
    auto const ready = [this, request, from] {
        context_.bus.answer(from, ManageFailedNodeMsg::create(request, ZResult::inProgress,
                                                              ManageFailedNodeStatus::replace, request->timeout()));
    };
    auto const job =
        std::make_shared<FailedNode>(isRemoval ? FailedNode::Action::remove : FailedNode::Action::replace,
                                     context_.nodeOf(request->address()), force, jobSeconds(request->timeout()), ready);
    auto const answer = [request, isRemoval, job](ZResult::Enum result) {
        auto status = ManageFailedNodeStatus::failure;
        if (result == ZResult::success) {
            status = isRemoval ? ManageFailedNodeStatus::removed : ManageFailedNodeStatus::replaced;
        } else if (result == ZResult::timeout) {
            status = ManageFailedNodeStatus::timeout;
        } else if (job->doesNodeWork()) {
            status = ManageFailedNodeStatus::nodeNotFailed;
        } else if (job->state() == controller::JobState::cancelled) {
            status = ManageFailedNodeStatus::aborting;
        }
        return ManageFailedNodeMsg::create(request, result, status, request->timeout());
    };
    context_.requests.begin<ManageFailedNodeMsg>(
        request, from, isRemoval ? Requests::Lease::none : Requests::Lease::input, job, answer);
}

void NetworkMessages::updateNeighbors(Request<RequestNeighborUpdateMsg> const& request, PeerId from) {
    using Status = RequestNeighborUpdateStatus::Enum;
    auto const make = [request](ZResult::Enum result, Status status) {
        return RequestNeighborUpdateMsg::create(request, result, request->address(), status, request->timeout());
    };
    if (context_.deviceOf(request->address()) == nullptr) {
        return context_.bus.answer(from, make(ZResult::nodeNotFound, RequestNeighborUpdateStatus::failed));
    }
    auto const started = [this, make, from] {
        context_.bus.answer(from, make(ZResult::inProgress, RequestNeighborUpdateStatus::started));
    };
    auto const job = std::make_shared<controller::NeighborUpdate>(context_.nodeOf(request->address()),
                                                                  jobSeconds(request->timeout()), started);
    context_.requests.begin<RequestNeighborUpdateMsg>(
        request, from, Requests::Lease::none, job, [make](ZResult::Enum result) {
            return make(result, result == ZResult::success ? RequestNeighborUpdateStatus::done
                                                           : RequestNeighborUpdateStatus::failed);
        });
}

void NetworkMessages::updateNetwork(Request<RequestNetworkUpdateMsg> const& request, PeerId from) {
    auto const job = std::make_shared<controller::NetworkUpdate>(jobSeconds(request->timeout()));
    auto const answer = [request, job](ZResult::Enum result) {
        auto status = result == ZResult::success ? RequestNetworkUpdateStatus::done : RequestNetworkUpdateStatus::abort;
        bool const isKnown = job->status() && *job->status() <= RequestNetworkUpdateStatus::overflow;
        if (isKnown) { status = static_cast<RequestNetworkUpdateStatus::Enum>(*job->status()); }
        return RequestNetworkUpdateMsg::create(request, result, status, static_cast<unsigned int>(request->timeout()));
    };
    context_.requests.begin<RequestNetworkUpdateMsg>(request, from, Requests::Lease::none, job, answer);
}

} // namespace zorv::daemon
