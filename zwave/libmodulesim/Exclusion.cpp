// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <memory>
#include <optional>

// A node is let go.

namespace zorv::modulesim {

namespace api = serialapi;
namespace mode = serialapi::mode;

namespace {

constexpr Byte modeBits = 0x0F;

class Exclusion {
public:
    explicit Exclusion(Core& core) : core_(core) {}

    void take(api::ModeRequest const& request) {
        if (core_.mode == NetworkMode::inclusion && !isOn_) { return; }
        auto const wanted = static_cast<Byte>(request.mode & modeBits);
        if (wanted == mode::stop) { return stop(request.callbackId); }
        if (isLeaving_) { return; }
        callbackId_ = request.callbackId.value_or(0);
        if (!core_.membership.assignsIds()) { return tell(mode::notPrimary); }
        bool const isKnown = wanted >= mode::any && wanted < mode::stop;
        bool const isFree = core_.mode == NetworkMode::none || core_.mode == NetworkMode::exclusion;
        if (!isKnown || !isFree) { return tell(mode::failed); }
        isOn_ = true;
        isListening_ = false;
        core_.mode = NetworkMode::exclusion;
        plan(timing::modeStarts, [this] {
            isListening_ = true;
            tell(mode::ready);
            lookOut();
        });
    }

    /// Has the next node go whose button is going to be pressed, if any.
    void lookOut() {
        if (!isListening_ || isLeaving_ || core_.leaving.empty()) { return; }
        plan(core_.leaving.front().after, [this] {
            isLeaving_ = true;
            auto const node = core_.leaving.front().node;
            core_.leaving.pop_front();
            tell(mode::nodeFound);
            plan(timing::nodeIntroduces, [this, node] { introduce(node); });
        });
    }

    void forget() { isOn_ = isListening_ = isLeaving_ = false; }

private:
    void plan(Milliseconds delay, Agenda::Work work) {
        core_.cancel(pending_);
        pending_ = core_.after(delay, std::move(work));
    }

    /// One that belongs to another network is told as node 0.
    void introduce(NodeId id) {
        auto* const node = core_.node(id);
        auto const told = node != nullptr ? id : NodeId{0};
        std::optional<api::NodeInformation> information;
        if (node != nullptr) { information = node->information(); }
        tell(node != nullptr && node->isController() ? mode::controller : mode::endNode, told, information);
        plan(timing::modeStops, [this, told, node] {
            if (node != nullptr) {
                core_.exclude(told);
                core_.joining.emplace_back(node, Joiner{}.after); // it can be taken in again
            }
            forget();
            core_.mode = NetworkMode::none;
            tell(mode::done, told);
        });
    }

    /// A stop without a callback id is silent.
    void stop(std::optional<Byte> callbackId) {
        core_.cancel(pending_);
        bool const wasOn = isOn_;
        forget();
        if (wasOn) { core_.mode = NetworkMode::none; }
        callbackId_ = callbackId.value_or(0);
        plan(timing::modeStops, [this] { tell(mode::done); });
    }

    void tell(Byte status, NodeId node = 0, std::optional<api::NodeInformation> information = std::nullopt) {
        core_.callBack<api::RemoveNodeFromNetwork>({callbackId_, status, node, std::move(information)});
    }

    Core& core_;
    bool isOn_ = false;
    bool isListening_ = false;
    bool isLeaving_ = false;
    Byte callbackId_ = 0;
    Agenda::Entry pending_;
};

} // namespace

void serveExclusion(Core& core) {
    auto const exclusion = std::make_shared<Exclusion>(core);
    core.onReset([exclusion] { exclusion->forget(); });
    core.hooks.leaverCame = [exclusion] { exclusion->lookOut(); };
    core.serve<api::RemoveNodeFromNetwork>([exclusion](auto const& request) { exclusion->take(request); });
}

} // namespace zorv::modulesim
