// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/SimulatedNetwork.h"
#include "zwave/libserialapi/commands/Commands.h"
#include "zwave/libserialapi/functions/FunctionList.h"

#include <random>
#include <vector>

namespace zorv::modulesim {

/// A node that is there, in whichever network: what it has, what it answers, and when it can be reached.
class SimulatedNode {
public:
    /// How a frame to the node ends.
    struct Outcome {
        bool isAcknowledged = false;
        Milliseconds delay{0}; ///< until that is known
    };

    SimulatedNode(NodeDescription description, std::uint32_t seed);

    NodeDescription const& description() const noexcept { return description_; }
    serialapi::NodeInformation information() const;
    serialapi::GetNodeProtocolInfo::Response protocolInformation() const;
    bool isController() const noexcept { return description_.basic == 1 || description_.basic == 2; }

    // ---- where it belongs
    void join(std::uint32_t homeId, NodeId id) noexcept;
    void leave() noexcept { join(0, 0); }
    bool belongsTo(std::uint32_t homeId, NodeId id) const noexcept { return homeId_ == homeId && id_ == id; }
    bool belongsTo(std::uint32_t homeId) const noexcept { return homeId_ == homeId; }
    NodeId id() const noexcept { return id_; }

    // ---- whether it listens
    bool hears(TimePoint now) const noexcept;
    void stayAwake(TimePoint now) noexcept;
    void fallAsleep() noexcept { awakeUntil_ = TimePoint::min(); }
    void die() noexcept { description_.dead = true; }
    Milliseconds wakeUpInterval() const noexcept { return Milliseconds(std::uint64_t{wakeUp_.seconds} * 1000); }

    std::uint32_t wakeUpPlan() const noexcept { return wakeUpPlan_; } ///< another one whenever the interval begins anew

    Outcome reach(TimePoint now, Milliseconds retransmission);

    /// Takes a command; gives what it answers, in order.
    std::vector<Bytes> take(Bytes const& command);

private:
    using WakeUpInterval = serialapi::commands::WakeUpInterval;

    Byte versionOf(Byte commandClass) const noexcept;
    std::vector<Bytes> takeSwitch(Bytes const& command);
    std::vector<Bytes> takeWakeUp(Bytes const& command);
    std::vector<Bytes> takeAssociation(Bytes const& command);
    std::vector<Bytes> takeVersion(Bytes const& command) const;

    NodeDescription description_;
    std::mt19937 random_;
    std::uint32_t homeId_ = 0;
    NodeId id_ = 0;
    TimePoint awakeUntil_ = TimePoint::min();
    Byte level_ = 0;
    WakeUpInterval wakeUp_;
    std::uint32_t wakeUpPlan_ = 0;
    Bytes lifeline_; ///< the nodes of association group 1
};

} // namespace zorv::modulesim
