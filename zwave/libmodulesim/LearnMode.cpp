// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <memory>

// The module itself joins or leaves another network.

namespace zorv::modulesim {

namespace api = serialapi;
namespace mode = serialapi::mode;

namespace {

constexpr Byte off = 0x00;
constexpr Byte classic = 0x01;
constexpr Byte inclusion = 0x02;
constexpr Byte exclusion = 0x03;
constexpr Byte newForm = 0x80; ///< stop, inclusion, exclusion and network-wide exclusion have numbers of their own

class Learning {
public:
    explicit Learning(Core& core) : core_(core) {}

    /// Whether the module does it.
    bool take(api::ModeRequest const& request) {
        if (request.mode == newForm) {
            stop();
            return false;
        }
        if (request.mode == off) {
            stop();
            if (core_.isSeries500()) { return true; }
            // The mode may have been begun again by then, under another id.
            auto const callbackId = request.callbackId.value_or(callbackId_);
            plan(timing::modeStops, [this, callbackId] {
                core_.callBack<api::SetLearnMode>({callbackId, mode::failed, 0, {}});
            });
            return true;
        }
        auto const job = jobOf(request.mode);
        if (job == off || isLearning_ || core_.mode != NetworkMode::none) { return false; }
        callbackId_ = request.callbackId.value_or(0);
        core_.mode = NetworkMode::learning;
        isLearning_ = true;
        auto const& other = core_.described.otherNetwork;
        if (job == exclusion ? core_.membership.isSecondary : isEmpty() && other) {
            plan(other ? other->after : timing::modeStarts, [this, job] { learn(job); });
        }
        return true;
    }

    void forget() { isLearning_ = false; }

private:
    static Byte jobOf(Byte wanted) {
        switch (wanted) {
        case classic:
        case inclusion:
        case newForm + 1: return inclusion;
        case exclusion:
        case newForm + 2:
        case newForm + 3: return exclusion;
        default: return off;
        }
    }

    bool isEmpty() const { return core_.membership.nodes.size() == 1; }

    void plan(Milliseconds delay, Agenda::Work work) {
        core_.cancel(pending_);
        pending_ = core_.after(delay, std::move(work));
    }

    /// A controller that is in a network already is not told when it begins.
    void learn(Byte job) {
        if (!core_.membership.isSecondary) { tell(mode::ready); }
        plan(timing::joinsNetwork, [this, job] {
            job == exclusion ? leave() : join();
            core_.membershipChanged();
            forget();
            core_.mode = NetworkMode::none;
            tell(mode::done, core_.membership.node);
        });
    }

    void join() {
        auto const& other = *core_.described.otherNetwork;
        auto& membership = core_.membership;
        auto const own = membership.nodes[membership.node];
        membership = {other.homeId, other.node, 1, false, true, {}};
        membership.nodes[other.node] = own;
        membership.nodes[1] = own; // the controller that took it in is one like it
    }

    void leave() { core_.toFactoryDefaults(); }

    void stop() {
        core_.cancel(pending_);
        if (isLearning_) { core_.mode = NetworkMode::none; }
        forget();
    }

    void tell(Byte status, NodeId node = 0) { core_.callBack<api::SetLearnMode>({callbackId_, status, node, {}}); }

    Core& core_;
    bool isLearning_ = false;
    Byte callbackId_ = 0;
    Agenda::Entry pending_;
};

} // namespace

void serveLearnMode(Core& core) {
    auto const learning = std::make_shared<Learning>(core);
    core.onReset([learning] { learning->forget(); });
    core.serve<api::SetLearnMode>(
        [learning](auto const& request) { return api::Accepted{learning->take(request) ? Byte{1} : Byte{0}}; });
}

} // namespace zorv::modulesim
