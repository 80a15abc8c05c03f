// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/EventFeed.h"

#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"

#include <boost/pointer_cast.hpp>

#include <chrono>
#include <utility>

namespace zorv {

namespace {

constexpr std::chrono::seconds retryTime{1};

} // namespace

EventFeed::EventFeed(EventLoop& loop, DaemonAddress const& daemon, Handlers handlers)
    : loop_(loop),
      handlers_(std::move(handlers)),
      timeout_(daemon.timeout),
      client_(loop, daemon.place, clientHandlers(), {retryTime, retryTime, daemon.timeout}) {
    client_.onEvery([this](TMessage const& message) { heard(message); });
}

ClientHandlers EventFeed::clientHandlers() {
    return {[this] { connected(); }, [this](std::string const& reason) { lost(reason); },
            [this](std::string const& reason) {
                handlers_.changed(reason);
                started();
            }};
}

void EventFeed::connected() {
    if (std::exchange(isLost_, false)) { handlers_.changed("connected again"); }
    askForNodes();
}

void EventFeed::askForNodes() {
    auto const request = NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {});
    client_.request(request, timeout_, [this](Client::Answer const& answer) {
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
}

} // namespace zorv
