// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/ModulePort.h"

#include "platform/libio/EventLoop.h"
#include "zwave/libcontroller/Controller.h"

#include <exception>
#include <functional>
#include <memory>
#include <string>

namespace zorv::daemon {

/// Drives a controller by the event loop: carries bytes between it and a port, and tells it the time.
///
/// A port that is lost is opened again and again. A controller that throws, which it does where memory runs out, is taken
/// as one that has lost its port: what is under way fails, and the module is asked again who it is.
class ModuleLink {
public:
    ModuleLink(EventLoop& loop, controller::Observer& observer, OpenPort openPort);

    ModuleLink(ModuleLink const&) = delete;
    ModuleLink& operator=(ModuleLink const&) = delete;

    /// Opens the port for the first time; std::runtime_error where that cannot be done.
    void open();

    void remember(Device const& device) { controller_.remember(device); }

    controller::Submission submit(std::shared_ptr<controller::Job> const& job, std::function<void()> end);
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
    template <class Work> void ownTurn(Work const& work);
    void endTurn();
    void breakDown(std::exception const& error);
    void openPort();
    void lost(std::string const& reason);
    void retryLater();
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
    Timer restart_;
};

} // namespace zorv::daemon
