// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/ModuleLink.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/logExceptionWarning.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace zorv::daemon {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds pauseBeforeOpening{2000};
constexpr milliseconds pauseBeforeRestart{20}; // a bound for how often a controller can fail

controller::TimePoint now() { return std::chrono::steady_clock::now(); }

} // namespace

ModuleLink::ModuleLink(EventLoop& loop, controller::Observer& observer, OpenPort openPort)
    : loop_(loop), openPort_(std::move(openPort)), controller_(observer) {}

void ModuleLink::open() { openPort(); }

controller::Submission ModuleLink::submit(std::shared_ptr<controller::Job> const& job, std::function<void()> end) {
    controller::Submission submission;
    try {
        turn([&] { submission = controller_.submit(job, std::move(end), now()); });
    } catch (std::exception const&) { // whoever asked is told so: it must not begin later on
        if (!job->isOver()) {
            insist([&] { cancel(job->number()); });
        }
        throw;
    }
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
    try {
        work();
    } catch (std::exception const& error) {
        isInTurn_ = false;
        breakDown(error);
        throw;
    }
    isInTurn_ = false;
    endTurn();
}

/// A turn that nobody asked for, so that nobody is to hear of its failure.
template <class Work> void ModuleLink::ownTurn(Work const& work) {
    ifMemoryAllows([&] { turn(work); });
}

void ModuleLink::endTurn() {
    ifMemoryAllows([this] { // what does not leave is sent again, as if it had been lost on the line
        auto const output = controller_.takeOutput();
        if (port_ && !output.empty()) { port_->write(output); }
    });
    insist([this] { wakeAt(controller_.deadline()); });
    if (atTurnsEnd_) { insist(atTurnsEnd_); }
}

/// Nobody knows how far the controller has come. What it does with a module that was unplugged is known.
void ModuleLink::breakDown(std::exception const& error) {
    ifMemoryAllows([&] { logExceptionWarning("zwaved", "the controller is started again: ", error); });
    insist([this] { controller_.lost(now()); });
    endTurn();
    insist([this] {
        restart_ = Timer(loop_, pauseBeforeRestart, [this] { ownTurn([this] { controller_.start(now()); }); });
    });
}

void ModuleLink::wakeAt(std::optional<controller::TimePoint> deadline) {
    if (!deadline) { return deadline_.cancel(); }
    auto const delay = std::chrono::ceil<milliseconds>(*deadline - now());
    deadline_ =
        Timer(loop_, std::max(delay, milliseconds(0)), [this] { ownTurn([this] { controller_.tick(now()); }); });
}

void ModuleLink::openPort() {
    ModulePort::Handlers handlers;
    handlers.received = [this](serialapi::Bytes const& bytes) { ownTurn([&] { controller_.receive(bytes, now()); }); };
    handlers.lost = [this](std::string const& reason) { lost(reason); };
    port_ = openPort_(std::move(handlers));
    turn([this] { controller_.start(now()); });
}

void ModuleLink::lost(std::string const& reason) {
    ifMemoryAllows(
        [&] { Logger::log(LogLevel::warn, "zwaved: the module's port is lost: " + reason, BOOST_CURRENT_LOCATION); });
    restart_.cancel();
    ownTurn([this] { controller_.lost(now()); });
    restart_.cancel(); // of a turn that failed: the port has to be open first
    retryLater();      // which also lets the port go, later than now
}

void ModuleLink::retryLater() {
    insist([this] { retry_ = Timer(loop_, pauseBeforeOpening, [this] { tryAgain(); }); });
}

void ModuleLink::tryAgain() {
    port_.reset();
    try {
        openPort();
        ifMemoryAllows(
            [] { Logger::log(LogLevel::warn, "zwaved: the module's port is open again", BOOST_CURRENT_LOCATION); });
    } catch (std::exception const& error) {
        ifMemoryAllows(
            [&] { Logger::log(LogLevel::debug, std::string("zwaved: ") + error.what(), BOOST_CURRENT_LOCATION); });
        restart_.cancel();
        retryLater();
    }
}

} // namespace zorv::daemon
