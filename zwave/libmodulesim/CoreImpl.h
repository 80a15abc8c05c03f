// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/AgendaImpl.h"
#include "zwave/libmodulesim/FaultListImpl.h"
#include "zwave/libmodulesim/SimulatedNetwork.h"
#include "zwave/libmodulesim/SimulatedNodeImpl.h"
#include "zwave/libserialapi/SessionLayer.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <deque>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace zorv::modulesim {

/// What a module knows of a node.
struct NodeRecord {
    serialapi::GetNodeProtocolInfo::Response information;
    std::vector<NodeId> neighbours;
};

/// What a module keeps in its memory.
struct Membership {
    std::uint32_t homeId = 0;
    NodeId node = 1; ///< the module's own id
    NodeId updateController = 0;
    bool isSis = false;                 ///< the update controller assigns ids as well
    bool isSecondary = false;           ///< in a network that another controller began
    std::map<NodeId, NodeRecord> nodes; ///< the module itself among them

    bool assignsIds() const noexcept { return !isSecondary || isSis; }
};

/// Which mode of the radio network is on; one at a time.
enum class NetworkMode {
    none,
    inclusion,
    controllerChange,
    exclusion,
    learning,
    replacing,
    neighbourSearch,
    failedNode
};

/// What the families of functions share: the way to the host, the time, the membership, and the nodes around.
class Core {
public:
    explicit Core(SimulatedNetwork described);

    // ---- the host
    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();
    std::optional<TimePoint> deadline() const noexcept;

    /// Has a function of the host served: what `handler` gives is the response, where the function has one.
    template <class F, class Handler> void serve(Handler handler) {
        static_assert(HasRequest<F>, "a host cannot call it");
        serve(F::id, [this, handler](Bytes const& parameters) {
            auto const decoded = serialapi::decodeForm<typename F::Request>(parameters, width);
            if (!decoded) { return; } // modules pass over what is too short
            if constexpr (serialapi::HasResponse<F>::value) {
                auto const used = width;
                typename F::Response const response = handler(decoded->form);
                send({serialapi::FrameType::response, F::id, encodeForm(response, used)}, serialapi::Urgency::response);
            } else {
                handler(decoded->form);
            }
        });
    }

    /// Lists a function in the mask that only the module calls.
    void tells(Byte function) { known_.insert(function); }

    /// Nothing where the host wants none: its id is 0.
    template <class F> void callBack(typename F::Callback const& callback) {
        if (callback.callbackId == 0 || isHit(Fault::Kind::withholdCallback, F::id)) { return; }
        send({serialapi::FrameType::request, F::id, encodeForm(callback, width)}, serialapi::Urgency::callback);
    }

    template <class F> void report(typename F::Callback const& content) {
        if (isHit(Fault::Kind::withholdCallback, F::id)) { return; }
        send({serialapi::FrameType::request, F::id, encodeForm(content, width)}, serialapi::Urgency::report);
    }

    bool isSeries500() const noexcept { return described.generation == Generation::series500; }
    bool isBridge() const noexcept;
    serialapi::BitMask functions() const;

    // ---- time
    /// Of what is happening: of an entry of the agenda, the time for which it was planned.
    TimePoint time() const noexcept { return time_; }
    Agenda::Entry after(Milliseconds delay, Agenda::Work work, Agenda::Owner owner = Agenda::Owner::module);
    void soon(Agenda::Work work) { soon_.push_back(std::move(work)); } ///< with the next tick
    void cancel(Agenda::Entry const& entry) { agenda_.cancel(entry); }

    // ---- faults
    /// Whether a fault strikes now; each question is an occasion.
    bool isHit(Fault::Kind kind, std::optional<Byte> function = std::nullopt) {
        return faults.hit(kind, Fault::Direction::toHost, function, time_) != nullptr;
    }

    // ---- restarts
    /// Called when the module gives up what it was about to do.
    void onReset(std::function<void()> handler) { resetHandlers_.push_back(std::move(handler)); }
    void abandonJobs();
    void restart(Byte reason);

    /// Gives the line to the module's loader until the next restart.
    void enterLoader(std::function<void(Bytes const&)> loader);
    bool isInLoader() const noexcept { return static_cast<bool>(loader_); }
    void say(Bytes const& bytes); ///< past the session layer
    void toFactoryDefaults();

    /// To be called after each change of the membership, which is kept in memory.
    void membershipChanged() const { hooks.membershipChanged(); }

    // ---- nodes
    /// Null where no node of that id is in reach of the network.
    SimulatedNode* node(NodeId id) noexcept;
    SimulatedNode& addNode(NodeDescription description);
    void include(SimulatedNode& node, NodeId id);
    void exclude(NodeId id);
    std::vector<NodeId> neighboursOf(NodeId id) const;
    void hear(SimulatedNode& from, Bytes const& command); ///< a command of a node, for the host
    void hearInformation(SimulatedNode const& from);      ///< a node's button was pressed
    void wake(SimulatedNode& node);
    void planWakeUp(SimulatedNode& node);
    void noteReached(NodeId id, bool isAcknowledged);

    /// What one family has to tell another.
    struct Hooks {
        std::function<void()> membershipChanged = [] {};
        std::function<void()> restarting = [] {}; ///< what is in memory counts from now on
        std::function<void()> joinerCame = [] {};
        std::function<void()> replacerCame = [] {};
        std::function<void()> leaverCame = [] {};
        std::function<void(Byte callbackId)> stopReplacing = [](Byte) {}; ///< by the stop of an inclusion
    };

    Hooks hooks;
    SimulatedNetwork described;
    FaultList faults{described.faults, described.seed};
    Membership membership;
    std::mt19937 random;
    serialapi::NodeIdWidth width = serialapi::NodeIdWidth::one;
    NetworkMode mode = NetworkMode::none;
    bool isRadioOn = true;
    bool reportsTransmissions = true;
    serialapi::SetTimeouts::Times times; ///< that the host has asked for
    Milliseconds startsLater{0};         ///< once: what its loader does first
    std::deque<NodeId> failed;           ///< the oldest first
    std::list<SimulatedNode> nodes;
    std::deque<std::pair<SimulatedNode*, Milliseconds>> joining;
    std::deque<Leaver> leaving;
    serialapi::SessionLayer session{serialapi::Side::module};

private:
    template <class F> static constexpr bool HasRequest = serialapi::HasRequest<F>::value;

    void serve(Byte function, std::function<void(Bytes const&)> handler);
    void send(serialapi::Frame frame, serialapi::Urgency urgency);
    void begin(TimePoint now);
    void work(TimePoint now);
    std::uint32_t freshHomeId();
    NodeRecord ownRecord() const;
    void settle();
    void resetSettings();

    std::map<Byte, std::function<void(Bytes const&)>> handlers_;
    std::set<Byte> known_;
    Agenda agenda_;
    std::vector<Agenda::Work> soon_;
    TimePoint now_{};
    TimePoint time_{};
    Bytes output_; ///< of what the session layer has forgotten at a restart
    std::function<void(Bytes const&)> loader_;
    bool isStarting_ = false;
    bool hasBegun_ = false;
    std::vector<std::function<void()>> resetHandlers_;
};

} // namespace zorv::modulesim
