// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libmodulesim/SimulatedNetwork.h"
#include "zwave/libserialapi/SessionLayer.h"

#include <memory>
#include <optional>
#include <vector>

namespace zorv::modulesim {

class Core;
class FaultyLine;

/// The far end of the serial line: a controller module with its network, which answers a host as a real one does.
///
/// Like the session layer, it knows no port, no clock and no thread: bytes and the time go in, bytes and the next
/// deadline come out.
///
///     SimulatedModule module(network);
///     module.start();
///     module.receive(host.takeOutput(), now);
///     host.receive(module.takeOutput(), now);
///
/// What people do with their nodes, buttons and batteries has members of its own; it happens with the next tick().
class ZORV_EXPORT SimulatedModule {
public:
    explicit SimulatedModule(SimulatedNetwork network);
    ~SimulatedModule();

    SimulatedModule(SimulatedModule const&) = delete;
    SimulatedModule& operator=(SimulatedModule const&) = delete;

    /// Turns the power on. Nodes that sleep begin to when the time is first told.
    void start();

    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();

    /// When tick() has something to do; the least time there is where that is at once.
    std::optional<TimePoint> deadline() const noexcept;

    // ---- what people do

    /// A new node's button is going to be pressed, `after` the module has begun to listen for new ones.
    void join(NodeDescription node, Milliseconds after);

    /// The button of a node (0: of another network) is going to be pressed, for it to leave.
    void leave(NodeId node, Milliseconds after);

    void pressButton(NodeId node);                   ///< the node tells what it is
    void wake(NodeId node);                          ///< a sleeping node wakes up before its time
    void command(NodeId node, Bytes const& command); ///< the node sends a command to the module
    void die(NodeId node);                           ///< the node's battery is empty
    void restart();                                  ///< the module restarts by itself

    // ---- what is so

    std::uint32_t homeId() const noexcept;
    NodeId node() const noexcept; ///< the module's own id
    std::vector<NodeId> nodes() const;
    bool isInMode() const noexcept; ///< inclusion, exclusion, learn mode, or a job on a node
    bool isRadioOn() const noexcept;
    bool isThere() const noexcept; ///< its port, which may be gone for a while by a fault
    serialapi::SessionCounters counters() const noexcept;

    /// Has every data frame told that is sent or was received well.
    void trace(serialapi::SessionLayer::Trace trace);

private:
    std::unique_ptr<Core> core_;
    std::unique_ptr<FaultyLine> line_;
};

} // namespace zorv::modulesim
