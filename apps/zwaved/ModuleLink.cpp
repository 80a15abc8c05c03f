// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ModuleLink.h"

#include "platform/libzorvlogger/Logger.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace zorv::daemon {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds pauseBeforeOpening{2000};

controller::TimePoint now() { return std::chrono::steady_clock::now(); }

} // namespace

ModuleLink::ModuleLink(EventLoop& loop, controller::Observer& observer, OpenPort openPort)
    : loop_(loop), openPort_(std::move(openPort)), controller_(observer) {}

void ModuleLink::open() { openPort(); }

controller::Submission ModuleLink::submit(std::shared_ptr<controller::Job> job, std::function<void()> end) {
    controller::Submission submission;
    turn([&] { submission = controller_.submit(std::move(job), std::move(end), now()); });
    return submission;
}

bool ModuleLink::cancel(controller::JobNumber job) {
    bool isThere = false;
    turn([&] { isThere = controller_.cancel(job, now()); });
    return isThere;
}

void ModuleLink::windUp() {
    turn([this] { controller_.windUp(now()); });
}

/// Whatever the controller was told, what it says goes out, and it is woken when it asked for it.
template <class Work> void ModuleLink::turn(Work const& work) {
    if (isInTurn_) { return work(); }
    isInTurn_ = true;
    work();
    isInTurn_ = false;
    auto const output = controller_.takeOutput();
    if (port_ && !output.empty()) { port_->write(output); }
    wakeAt(controller_.deadline());
    if (atTurnsEnd_) { atTurnsEnd_(); }
}

void ModuleLink::wakeAt(std::optional<controller::TimePoint> deadline) {
    if (!deadline) { return deadline_.cancel(); }
    auto const delay = std::chrono::ceil<milliseconds>(*deadline - now());
    deadline_ = Timer(loop_, std::max(delay, milliseconds(0)), [this] { turn([this] { controller_.tick(now()); }); });
}

void ModuleLink::openPort() {
    ModulePort::Handlers handlers;
    handlers.received = [this](serialapi::Bytes const& bytes) { turn([&] { controller_.receive(bytes, now()); }); };
    handlers.lost = [this](std::string const& reason) { lost(reason); };
    port_ = openPort_(std::move(handlers));
    turn([this] { controller_.start(now()); });
}

void ModuleLink::lost(std::string const& reason) {
    Logger::log(LogLevel::warn, "zwaved: the module's port is lost: " + reason, BOOST_CURRENT_LOCATION);
    turn([this] { controller_.lost(now()); });
    retry_ = Timer(loop_, pauseBeforeOpening, [this] { tryAgain(); }); // which also lets the port go, later than now
}

void ModuleLink::tryAgain() {
    port_.reset();
    try {
        openPort();
        Logger::log(LogLevel::warn, "zwaved: the module's port is open again", BOOST_CURRENT_LOCATION);
    } catch (std::runtime_error const& error) {
        Logger::log(LogLevel::debug, std::string("zwaved: ") + error.what(), BOOST_CURRENT_LOCATION);
        retry_ = Timer(loop_, pauseBeforeOpening, [this] { tryAgain(); });
    }
}

} // namespace zorv::daemon
