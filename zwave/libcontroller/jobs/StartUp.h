// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <cstddef>
#include <map>
#include <vector>

namespace zorv::controller {

/// Asks the module who it is, what it can do, and which nodes it has.
///
/// It also ends every mode that an earlier host may have left the module in.
class ZORV_EXPORT StartUp : public Job {
public:
    using Remembered = std::map<ZwaveAddress, Device>;

    /// What is known of a node counts where the module still has it.
    explicit StartUp(Restart restart = Restart::none, Remembered remembered = {})
        : Job(limits::defaultJobTime), restart_(restart), remembered_(std::move(remembered)) {}

    char const* name() const noexcept override { return "start-up"; }
    Lane lane() const noexcept override { return Lane::module; }

    /// False where it has failed because the module acknowledges nothing.
    bool isAcknowledged() const noexcept { return isAcknowledged_; }

protected:
    void run() override;
    void stepTimedOut() override { next(); }
    bool restarted() override;

private:
    using Step = void (StartUp::*)();
    static std::vector<Step> const steps;

    void next();
    template <class F> void ask(typename F::Request request, std::function<void(typename F::Response const&)> take);
    template <class F>
    void askIfKnown(typename F::Request request, std::function<void(typename F::Response const&)> take);

    void awaitStart();
    void askVersion();
    void askCapabilities();
    void leaveModes();
    void askSetupCommands();
    void setNodeIdWidth();
    void wantTransmitReports();
    void askRegion();
    void askProtocol();
    void askRoles();
    void askSucNode();
    void askIds();
    void askNodes();
    void askLongRangeNodes();
    void tellNodeInformation();
    void askNextNode();
    void fillTable();

    ModuleInformation& information() const { return network().module; }
    bool hasSetup(Byte flag) const { return (information().setupCommands & flag) != 0; }

    Restart restart_;
    Remembered remembered_;
    std::size_t position_ = 0;
    unsigned int restarts_ = 0;
    bool awaitsStart_ = false;
    bool isAcknowledged_ = true;
    TimePoint patience_{};      ///< until then it may be silent: its loader copies other firmware
    Byte segment_ = 0;          ///< of the long range nodes
    std::vector<NodeId> nodes_; ///< not asked yet, the last one first
    std::map<NodeId, DeviceInfo> found_;
};

} // namespace zorv::controller
