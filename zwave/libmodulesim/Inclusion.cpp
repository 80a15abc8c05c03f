// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <memory>
#include <optional>
#include <type_traits>

// A node is taken in; by the change of the primary controller, a controller that takes the module's place.

namespace zorv::modulesim {

namespace api = serialapi;
namespace mode = serialapi::mode;

namespace {

constexpr Byte modeBits = 0x0F;

/// By the function `F`, AddNodeToNetwork or ControllerChange.
template <class F> class Inclusion {
public:
    explicit Inclusion(Core& core) : core_(core) {}

    void take(typename F::Request const& request) {
        auto const wanted = static_cast<Byte>(request.mode & modeBits);
        if (wanted == mode::stop || wanted == mode::stopFailed) { return stop(request.callbackId); }
        if (stage_ > Stage::waiting) { return; } // too late for anything but a stop
        callbackId_ = request.callbackId.value_or(0);
        if (!core_.membership.assignsIds()) { return tell(mode::notPrimary); }
        bool const isKnown = isShift ? wanted == mode::controllerOnly : wanted >= mode::any && wanted < mode::stop;
        bool const isFree = core_.mode == NetworkMode::none || core_.mode == ownMode;
        if (!isKnown || !isFree) { return tell(mode::failed); }
        enter(Stage::starting);
        core_.mode = ownMode;
        plan(timing::modeStarts, [this] {
            enter(Stage::waiting);
            tell(mode::ready);
            lookOut();
        });
    }

    /// Has the next node come whose button is going to be pressed, if any.
    void lookOut() {
        if (stage_ != Stage::waiting || core_.joining.empty()) { return; }
        if (isShift && !core_.joining.front().first->isController()) { return; }
        plan(core_.joining.front().second, [this] { find(); });
    }

    void forget() {
        enter(Stage::idle);
        found_ = nullptr;
        node_ = 0;
    }

private:
    enum class Stage { idle, starting, waiting, found, added, complete };
    static constexpr bool isShift = std::is_same_v<F, api::ControllerChange>;
    static constexpr NetworkMode ownMode = isShift ? NetworkMode::controllerChange : NetworkMode::inclusion;

    void enter(Stage stage) noexcept { stage_ = stage; }

    void plan(Milliseconds delay, Agenda::Work work) {
        core_.cancel(pending_);
        pending_ = core_.after(delay, std::move(work));
    }

    void find() {
        found_ = core_.joining.front().first;
        core_.joining.pop_front();
        enter(Stage::found);
        tell(mode::nodeFound);
        if (core_.isHit(Fault::Kind::killJoiner)) {
            return plan(timing::waitsForJoiner, [this] { giveUp(); });
        }
        plan(timing::nodeIntroduces, [this] { add(); });
    }

    /// What was found says nothing any more; nobody will press its button again.
    void giveUp() {
        found_ = nullptr;
        enter(Stage::complete);
        tell(mode::failed);
    }

    void add() {
        node_ = idFor(*found_);
        if (node_ == 0) { return tell(mode::failed); } // the network is full
        core_.include(*found_, node_);
        enter(Stage::added);
        tell(found_->isController() ? mode::controller : mode::endNode, node_, found_->information());
        plan(timing::findsNeighbours, [this] {
            auto& record = core_.membership.nodes[node_];
            record.neighbours = core_.neighboursOf(node_);
            if (isShift) { handOver(); }
            core_.membershipChanged();
            enter(Stage::complete);
            tell(mode::protocolDone, node_);
        });
    }

    /// What was found is the primary controller now, and keeps the network's changes.
    void handOver() {
        auto& membership = core_.membership;
        membership.isSecondary = true;
        membership.isSis = false;
        if (membership.updateController != 0) { membership.updateController = node_; }
    }

    /// A node that still has this network's home id gets its old id again.
    NodeId idFor(SimulatedNode const& node) const {
        constexpr NodeId last = 232;
        if (node.belongsTo(core_.membership.homeId)) { return node.id(); }
        for (NodeId id = 1; id <= last; ++id) {
            if (core_.membership.nodes.count(id) == 0) { return id; }
        }
        return 0;
    }

    /// A stop without a callback id is told of under that of the start; with 0 it is silent.
    void stop(std::optional<Byte> callbackId) {
        core_.cancel(pending_);
        if (!isShift && core_.mode == NetworkMode::replacing) {
            core_.hooks.stopReplacing(callbackId.value_or(0));
            return;
        }
        if (callbackId || stage_ == Stage::idle) { callbackId_ = callbackId.value_or(0); }
        if (stage_ == Stage::found) { core_.joining.emplace_front(found_, Milliseconds(0)); }
        auto const node = node_;
        forget();
        if (core_.mode == ownMode) { core_.mode = NetworkMode::none; }
        plan(timing::modeStops, [this, node] { tell(mode::done, node); });
    }

    void tell(Byte status, NodeId node = 0, std::optional<api::NodeInformation> information = std::nullopt) {
        core_.callBack<F>({callbackId_, status, node, std::move(information)});
    }

    Core& core_;
    Stage stage_ = Stage::idle;
    Byte callbackId_ = 0;
    SimulatedNode* found_ = nullptr;
    NodeId node_ = 0; ///< what was found became, once it is in
    Agenda::Entry pending_;
};

} // namespace

void serveInclusion(Core& core) {
    auto const inclusion = std::make_shared<Inclusion<api::AddNodeToNetwork>>(core);
    auto const shift = std::make_shared<Inclusion<api::ControllerChange>>(core);
    core.onReset([inclusion, shift] {
        inclusion->forget();
        shift->forget();
    });
    core.hooks.joinerCame = [inclusion, shift] {
        inclusion->lookOut();
        shift->lookOut();
    };
    core.serve<api::AddNodeToNetwork>([inclusion](auto const& request) { inclusion->take(request); });
    core.serve<api::ControllerChange>([shift](auto const& request) { shift->take(request); });
}

} // namespace zorv::modulesim
