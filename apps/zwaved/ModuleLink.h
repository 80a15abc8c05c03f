// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/ModulePort.h"

#include "platform/libio/EventLoop.h"
#include "zwave/libcontroller/Controller.h"

#include <functional>
#include <memory>
#include <string>

namespace zorv::daemon {

/// Drives a controller by the event loop: carries bytes between it and a port, and tells it the time.
///
/// A port that is lost is opened again and again.
class ModuleLink {
public:
    ModuleLink(EventLoop& loop, controller::Observer& observer, OpenPort openPort);

    ModuleLink(ModuleLink const&) = delete;
    ModuleLink& operator=(ModuleLink const&) = delete;

    /// Opens the port for the first time; std::runtime_error where that cannot be done.
    void open();

    void remember(Device const& device) { controller_.remember(device); }

    controller::Submission submit(std::shared_ptr<controller::Job> job, std::function<void()> end);
    bool cancel(controller::JobNumber job);

    /// Ends all jobs in order.
    void windUp();

    template <class Change> void changeNode(serialapi::NodeId node, Change const& change) {
        controller_.changeNode(node, change);
    }

    controller::Controller const& controller() const noexcept { return controller_; }

    /// Has `work` done at the end of each of the controller's turns.
    void atTurnsEnd(std::function<void()> work) { atTurnsEnd_ = std::move(work); }

    /// Has every data frame of the link told.
    void trace(serialapi::SessionLayer::Trace trace) { controller_.trace(std::move(trace)); }

private:
    template <class Work> void turn(Work const& work);
    void openPort();
    void lost(std::string const& reason);
    void tryAgain();
    void wakeAt(std::optional<controller::TimePoint> deadline);

    EventLoop& loop_;
    OpenPort openPort_;
    controller::Controller controller_;
    std::unique_ptr<ModulePort> port_;
    std::function<void()> atTurnsEnd_;
    Timer deadline_;
    Timer retry_;
    bool isInTurn_ = false;
};

} // namespace zorv::daemon
