// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ClientMessages.h"

#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/QuitMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace zorv::daemon {

namespace {

ObserveDirection::Enum toObserveDirection(Direction direction) {
    return direction == Direction::received ? ObserveDirection::received : ObserveDirection::sent;
}

} // namespace

ClientMessages::ClientMessages(Context const& context, std::function<StringVecVec()> metrics,
                               std::function<void()> quit)
    : context_(context) {
    auto& bus = context_.bus;
    bus.listen<VersionMsg>([this](auto const&, PeerId from) { tellVersion(from); });
    bus.handle<SubscribeMsg>([this](auto const& request, PeerId from) { subscribe(request, from); });
    bus.handle<ObserveMsg>([this](auto const& request, PeerId from) { observe(request, from); });
    bus.handle<DaemonStatusMsg>([this](auto const& request, PeerId from) {
        auto const& network = context_.network();
        auto const& announcer = context_.announcer;
        context_.bus.answer(from, DaemonStatusMsg::create(request, network.address(network.ownNode),
                                                          announcer.daemonStatus(), announcer.daemonDetail()));
    });
    bus.handle<SystemStatusEvt>([this](auto const& request, PeerId from) {
        context_.bus.answer(from, SystemStatusEvt::create(request, context_.announcer.systemStatus()));
    });
    bus.handle<CliDisplayMsg>([this, metrics = std::move(metrics)](auto const& request, PeerId from) {
        auto const answer = boost::make_shared<CliDisplayMsg>(metrics());
        answer->setResponse(*request);
        answer->result(ZResult::success);
        context_.bus.answer(from, answer);
    });
    bus.listen<QuitMsg>([quit = std::move(quit)](auto const& message, PeerId) {
        if (mayAdminister(*message)) { return quit(); }
        Logger::log(LogLevel::warn, "zwaved: QuitMsg is ignored: its sender may not administer",
                    BOOST_CURRENT_LOCATION);
    });
}

void ClientMessages::tellVersion(PeerId to) { context_.bus.send(to, VersionMsg::create(protocolVersion)); }

/// All of the names or none of them.
void ClientMessages::subscribe(boost::shared_ptr<SubscribeMsg> const& request, PeerId from) {
    auto const& events = request->events();
    auto const unknown =
        std::find_if(events.begin(), events.end(), [](auto const& event) { return !Announcer::isEvent(event); });
    if (unknown != events.end() || events.empty()) {
        auto const complaint = events.empty() ? "no event is named" : "unknown event \"" + unknown->substr(0, 40) + '"';
        Logger::log(LogLevel::warn, "zwaved: SubscribeMsg is rejected: " + printable(complaint),
                    BOOST_CURRENT_LOCATION);
        return context_.bus.refuse(from, *request);
    }
    for (auto const& event : events) {
        request->unsubscribe() ? context_.bus.unsubscribe(from, event) : context_.bus.subscribe(from, event);
    }
    context_.bus.answer(from, request->makeResponse(ZResult::success));
}

/// Direction "none" stands for both.
void ClientMessages::observe(boost::shared_ptr<ObserveMsg> const& request, PeerId from) {
    auto& bus = context_.bus;
    if (request->action() == ObserveAction::none) { return bus.refuse(from, *request); }
    if (request->action() == ObserveAction::stop) {
        bus.unobserve(from);
    } else {
        bus.observe(from, [wanted = request->direction()](Direction direction, MessageBus::MessagePtr const& message) {
            auto const travelled = toObserveDirection(direction);
            bool const isWanted = wanted == ObserveDirection::none || wanted == travelled;
            return isWanted ? ObserveMsg::create(travelled, message) : nullptr;
        });
    }
    bus.answer(from, ObserveMsg::create(request, ZResult::success));
}

} // namespace zorv::daemon
