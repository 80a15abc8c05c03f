// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <chrono>
#include <vector>

namespace zorv::controller {

constexpr Byte wakeUpNotification = 0x07; ///< of the command class of the same name
constexpr Byte wakeUpNoMoreInformation = 0x08;

/// Sends one frame to a node, to several nodes, or to all.
class ZORV_EXPORT Transmission : public Job {
public:
    enum class Asleep { wait, fail, send }; ///< what to do about a node that sleeps

    struct Order {
        std::vector<NodeId> nodes; ///< 255: all
        Bytes data;                ///< command class, command, parameters
        Byte options = 0x25;       ///< acknowledge, auto route, explore
        Asleep asleep = Asleep::wait;
        int priority = 0;
        Milliseconds time{};
    };

    /// `taken`, where it is given, hears that the module has taken the frame.
    explicit Transmission(Order order, std::function<void()> taken = {})
        : Job(order.time), order_(std::move(order)), taken_(std::move(taken)) {}

    char const* name() const noexcept override { return "transmission"; }
    Lane lane() const noexcept override { return Lane::frames; }
    std::string objection(Network const& network) const override;
    int priority() const noexcept override { return order_.priority; }
    NodeId awaits(Network const& network) const override;
    bool concerns(NodeId node) const override { return order_.nodes == std::vector<NodeId>{node}; }

    Order const& order() const noexcept { return order_; }

    /// How the module says it went: 0 acknowledged, 1 not, 2 and 3 not sent; nothing before it says so.
    std::optional<Byte> status() const noexcept { return status_; }
    std::optional<serialapi::TransmitReport> const& report() const noexcept { return report_; }

    /// From the sending to the transmit report.
    Milliseconds latency() const noexcept { return latency_; }

    /// Whether the frame was not sent because its node sleeps.
    bool wasAsleep() const noexcept { return wasAsleep_; }

protected:
    void run() override;
    void stop() override;
    void stepTimedOut() override;

private:
    void send();
    template <class F> void sendAs(typename F::Request request);
    void onResponse(bool isTaken);
    void onEnd(serialapi::CallEnd end);
    void abort();
    void conclude();

    Order order_;
    std::function<void()> taken_;
    unsigned int refusals_ = 0;
    bool isOnAir_ = false;
    bool isAborted_ = false;
    bool wasAsleep_ = false;
    TimePoint sent_{};
    Milliseconds latency_{};
    std::optional<Byte> status_;
    std::optional<serialapi::TransmitReport> report_;
};

/// A frame that asks for nothing but its acknowledgement.
ZORV_EXPORT std::shared_ptr<Transmission> makePing(NodeId node, Milliseconds time, int priority = 0);

} // namespace zorv::controller
