// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/Controller.h"

#include "zwave/libcontroller/jobs/Interview.h"
#include "zwave/libcontroller/jobs/NodeInquiry.h"
#include "zwave/libcontroller/jobs/StartUp.h"
#include "zwave/libcontroller/jobs/Transmission.h"

#include <algorithm>
#include <utility>

namespace zorv::controller {

using serialapi::Frame;

namespace {

/// The first that is set; the earlier one where both are.
void bringForward(std::optional<TimePoint>& deadline, std::optional<TimePoint> other) {
    if (other && (!deadline || *other < *deadline)) { deadline = other; }
}

bool isWakeUpNotification(Bytes const& command) {
    return command.size() >= 2 && command[0] == CommandClassType::wakeUp && command[1] == wakeUpNotification;
}

template <class F> std::optional<typename F::Callback> decode(Frame const& frame, serialapi::Module const& module) {
    auto decoded = serialapi::decodeForm<typename F::Callback>(frame.parameters, module.nodeIdWidth());
    if (!decoded) { return std::nullopt; }
    return std::move(decoded->form);
}

} // namespace

Controller::Controller(Observer& observer, bool interviews)
    : observer_(observer), interviews_(interviews), network_(observer) {
    module_.unsolicited([this](Frame const& frame) { onUnsolicited(frame); });
    module_.resetNeeded([this] { resetModule("the link is bad"); });
}

Controller::~Controller() = default;

void Controller::remember(Device const& device) { remembered_.insert_or_assign(device.address(), device); }

// ---- from outside

/// Everything that comes from outside is a turn; what it has set going is looked after at its end.
template <class Work> void Controller::turn(TimePoint now, Work const& work) {
    if (isInTurn_) { return work(); }
    struct Turn {
        explicit Turn(bool& flag) : isInTurn(flag) { isInTurn = true; }
        ~Turn() { isInTurn = false; }
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;
        bool& isInTurn;
    } const current(isInTurn_);
    now_ = now;
    work();
    settle();
}

void Controller::start(TimePoint now) {
    turn(now, [this] {
        wasReset_ = false;
        startUp(false);
    });
}

void Controller::lost(TimePoint now) {
    turn(now, [this] {
        for (auto& entry : entries_) {
            bool const isAsked = entry.job->lane() == Job::Lane::frames; // somebody waits for it
            bool const isStart = entry.job->lane() == Job::Lane::module; // the next one comes with the port
            if (isAsked || isStart || entry.job->state() == JobState::running) {
                entry.job->end(JobState::failed, "the port is lost");
            }
        }
        module_.reset();
        sleepers_.clear();
        output_.clear();
        nextStartUp_.reset();
        resetReason_.clear();
        hasRestarted_ = false;
        enter(ModuleState::absent);
    });
}

void Controller::receive(Bytes const& bytes, TimePoint now) {
    turn(now, [&] { module_.receive(bytes, now); });
}

void Controller::tick(TimePoint now) {
    turn(now, [this] {
        module_.tick(now_);
        for (auto& entry : entries_) { entry.job->tick(); }
        sendToSleep();
        if (nextStartUp_ && now_ >= *nextStartUp_) { startUp(false); }
    });
}

Bytes Controller::takeOutput() {
    auto output = std::exchange(output_, {});
    auto const more = module_.takeOutput();
    output.insert(output.end(), more.begin(), more.end());
    return output;
}

std::optional<TimePoint> Controller::deadline() const noexcept {
    auto deadline = module_.deadline();
    bringForward(deadline, nextStartUp_);
    bringForward(deadline, sleepers_.deadline());
    for (auto const& entry : entries_) { bringForward(deadline, entry.job->deadline()); }
    return deadline;
}

Submission Controller::submit(std::shared_ptr<Job> job, std::function<void()> end, TimePoint now) {
    Submission submission;
    turn(now, [&] {
        submission.refusal = refusalOf(*job, submission.reason);
        if (submission) { submission.job = add(std::move(job), std::move(end), 0).job->number(); }
    });
    return submission;
}

bool Controller::cancel(JobNumber number, TimePoint now) {
    bool isThere = false;
    turn(now, [&] {
        for (auto& entry : entries_) {
            if (entry.job->number() != number || entry.job->isOver()) { continue; }
            isThere = true;
            entry.job->cancel();
        }
    });
    return isThere;
}

void Controller::windUp(TimePoint now) {
    interviews_ = false;
    turn(now, [this] {
        for (auto& entry : entries_) {
            if (entry.job->lane() != Job::Lane::module) { entry.job->cancel(); }
        }
    });
}

bool Controller::isIdle() const noexcept {
    return std::all_of(entries_.begin(), entries_.end(),
                       [](Entry const& entry) { return entry.job->lane() == Job::Lane::module; });
}

QueueSizes Controller::queues() const noexcept {
    QueueSizes sizes;
    for (auto const& [job, end, parent] : entries_) {
        if (job->lane() != Job::Lane::frames) {
            ++sizes.jobs;
        } else if (job->state() == JobState::accepted) {
            ++(job->awaits(network_) != 0 ? sizes.sleepers : sizes.waiting);
        }
    }
    return sizes;
}

Job const* Controller::networkJob() const noexcept {
    for (auto const& entry : entries_) {
        if (entry.job->lane() == Job::Lane::network && !entry.job->isOver()) { return entry.job.get(); }
    }
    return nullptr;
}

// ---- jobs

Refusal Controller::refusalOf(Job const& job, std::string& reason) const {
    bool const waits = job.lane() == Job::Lane::frames;
    if (!(state_ == ModuleState::ready || (waits && state_ == ModuleState::starting))) {
        reason = "the module is not ready";
        return Refusal::notReady;
    }
    reason = job.objection(network_);
    if (!reason.empty()) { return Refusal::impossible; }
    auto const* const running = networkJob();
    if (job.lane() == Job::Lane::network && running != nullptr) {
        reason = std::string(running->name()) + " is running";
        return Refusal::busy;
    }
    auto const sizes = queues();
    bool isFull = false;
    if (!waits) {
        isFull = sizes.jobs >= limits::waitingInterviews;
    } else if (job.awaits(network_) != 0) {
        isFull = sizes.sleepers >= limits::sleepersFrames;
    } else {
        isFull = sizes.waiting >= limits::waitingFrames;
    }
    if (!isFull) { return Refusal::none; }
    reason = "too much waits already";
    return Refusal::queueFull;
}

Controller::Entry& Controller::add(std::shared_ptr<Job> job, std::function<void()> end, JobNumber parent) {
    if (++lastJob_ == 0) { ++lastJob_; }
    job->accept(*this, lastJob_);
    entries_.push_back({std::move(job), std::move(end), parent});
    return entries_.back();
}

void Controller::submitPart(Job const& parent, std::shared_ptr<Job> part, std::function<void()> end) {
    auto guarded = [parent = parent.weak_from_this(), end = std::move(end)] {
        auto const alive = parent.lock();
        if (alive && !alive->isOver()) { end(); }
    };
    add(std::move(part), std::move(guarded), parent.number());
}

void Controller::readModule(Job const& parent, Restart restart, std::function<void(std::string const&)> end) {
    auto const startUp = std::make_shared<StartUp>(restart);
    submitPart(parent, startUp, [startUp, end = std::move(end)] { end(startUp->reason()); });
}

/// Works until nothing is left that can be done now.
void Controller::settle() {
    bool hasWorked = true;
    while (hasWorked) {
        hasWorked = tellRestart();
        while (tellEnds()) { hasWorked = true; }
        while (beginNext()) { hasWorked = true; }
        module_.tick(now_); // ends the calls of jobs that are over
    }
}

/// One job that is over; its parts are of no use any more.
bool Controller::tellEnds() {
    auto const found = std::find_if(entries_.begin(), entries_.end(), [](Entry const& e) { return e.job->isOver(); });
    if (found == entries_.end()) { return false; }
    Entries over;
    over.splice(over.begin(), entries_, found);
    for (auto& entry : entries_) {
        if (entry.parent == over.front().job->number()) { entry.job->cancel(); }
    }
    if (over.front().end) { over.front().end(); }
    // A job of the network may have brought nodes.
    if (over.front().job->lane() == Job::Lane::network) { interviewAll(); }
    return true;
}

bool Controller::beginNext() {
    for (auto& entry : entries_) {
        if (entry.job->lane() == Job::Lane::frames || entry.job->state() != JobState::accepted || !mayBegin(entry)) {
            continue;
        }
        entry.job->begin();
        return true;
    }
    auto* const frame = nextFrame();
    if (frame == nullptr) { return false; }
    frame->job->begin();
    return true;
}

bool Controller::isRunning(Job::Lane lane) const noexcept {
    return std::any_of(entries_.begin(), entries_.end(), [lane](Entry const& entry) {
        return entry.job->lane() == lane && entry.job->state() == JobState::running;
    });
}

bool Controller::mayBegin(Entry const& entry) const {
    auto const lane = entry.job->lane();
    if (lane == Job::Lane::module) { return true; }
    if (state_ != ModuleState::ready || isRunning(lane)) { return false; }
    if (lane == Job::Lane::network) { return !isRunning(Job::Lane::frames); }
    if (entry.job->awaits(network_) != 0) { return false; }
    if (lane == Job::Lane::background) { return true; }
    auto const* const job = networkJob();
    return job == nullptr || entry.parent == job->number() || (job->state() == JobState::running && job->sharesRadio());
}

/// The frame to a node that goes out next; null where none may.
Controller::Entry* Controller::nextFrame() {
    Entry* next = nullptr;
    for (auto& entry : entries_) {
        if (entry.job->lane() != Job::Lane::frames || entry.job->state() != JobState::accepted) { continue; }
        bool const isHigher = next == nullptr || entry.job->priority() > next->job->priority();
        if (isHigher && mayBegin(entry)) { next = &entry; }
    }
    return next;
}

// ---- the module's life

void Controller::startUp(bool softReset) { startUp(softReset ? Restart::reset : Restart::none); }

void Controller::startUp(Restart restart) {
    wasReset_ = wasReset_ || restart != Restart::none;
    nextStartUp_.reset();
    auto output = takeOutput(); // an acknowledgement may be in it
    module_.reset();
    output_ = std::move(output);
    module_.start();
    enter(ModuleState::starting);
    auto job = std::make_shared<StartUp>(restart, remembered_);
    auto end = [this, job] {
        bool const mayWait = state_ == ModuleState::starting && !wasReset_ && !job->isAcknowledged();
        mayWait ? leaveLoader() : startUpEnded(job->state() == JobState::done);
    };
    add(job, std::move(end), 0);
}

/// A module that does not answer gets one soft reset, and is then only asked, again and again.
void Controller::startUpEnded(bool isReady) {
    if (state_ != ModuleState::starting) { return; } // the port was lost meanwhile
    if (isReady) {
        wasReset_ = false;
        forgetLostNodes();
        enter(ModuleState::ready);
        return interviewAll();
    }
    if (!wasReset_) { return startUp(true); }
    enter(ModuleState::silent);
    nextStartUp_ = now_ + limits::startUpPause;
}

/// A module that acknowledges nothing may wait in its loader, where an upload has left it that was broken off.
void Controller::leaveLoader() {
    serialapi::LoadHandlers handlers;
    handlers.end = [this](serialapi::LoadResult const& result) {
        if (result.end == serialapi::LoadEnd::closed) { return; } // the port was lost meanwhile
        bool const wasThere = result.end == serialapi::LoadEnd::done;
        if (wasThere) { observer_.noted("the module has waited in its loader, and is started"); }
        startUp(wasThere ? Restart::byLoader : Restart::reset);
    };
    module_.load({}, std::move(handlers), now_);
}

/// What was remembered of this network is in the table now, or was of a node that the module does not have any more. A new
/// node of that id is to be asked everything.
void Controller::forgetLostNodes() {
    for (auto remembered = remembered_.begin(); remembered != remembered_.end();) {
        auto const& [address, device] = *remembered;
        if (address.homeId() != network_.homeId) {
            ++remembered;
            continue;
        }
        if (network_.nodes.find(address.nodeId()) == nullptr) { observer_.nodeRemoved(device); }
        remembered = remembered_.erase(remembered);
    }
}

void Controller::enter(ModuleState state) {
    if (state == state_) { return; }
    state_ = state;
    observer_.moduleStateChanged(state);
}

void Controller::resetModule(std::string const& reason) {
    // Whoever asks a module that is about to start gets no answer, and looks after that.
    bool const isAsked = std::any_of(entries_.begin(), entries_.end(), [](Entry const& entry) {
        return entry.job->state() == JobState::running && dynamic_cast<StartUp const*>(entry.job.get()) != nullptr;
    });
    if (state_ == ModuleState::ready && !isAsked) { resetReason_ = reason; }
}

/// What is under way fails with the module that did it, whether it has restarted or is to.
bool Controller::tellRestart() {
    if (!hasRestarted_ && resetReason_.empty()) { return false; }
    auto const reason = std::exchange(resetReason_, {});
    bool const isByItself = std::exchange(hasRestarted_, false);
    bool wasExpected = false;
    for (auto& entry : entries_) {
        if (entry.job->moduleRestarted()) { wasExpected = true; }
    }
    sleepers_.clear();
    if (isByItself && wasExpected && reason.empty()) { return true; }
    observer_.noted(isByItself ? "the module has restarted" : "the module is reset: " + reason);
    startUp(!isByItself);
    return true;
}

// ---- what the module sends unasked

void Controller::onUnsolicited(Frame const& frame) {
    using serialapi::ApplicationCommandHandler;
    using serialapi::ApplicationCommandHandlerBridge;
    using serialapi::ApplicationUpdate;
    if (frame.type != serialapi::FrameType::request) { return; }
    switch (frame.function) {
    case serialapi::SerialApiStarted::id: hasRestarted_ = true; return;
    case ApplicationCommandHandler::id:
        if (auto const command = decode<ApplicationCommandHandler>(frame, module_)) {
            onCommand({command->source, command->data, command->status, command->rssi});
        }
        return;
    case ApplicationCommandHandlerBridge::id:
        if (auto const command = decode<ApplicationCommandHandlerBridge>(frame, module_)) {
            onCommand({command->source, command->data, command->status, command->rssi});
        }
        return;
    case ApplicationUpdate::id:
        if (auto const update = decode<ApplicationUpdate>(frame, module_)) { onUpdate(*update); }
        return;
    default: return; // of no use to us
    }
}

void Controller::onCommand(ReceivedCommand const& command) {
    network_.nodes.networkStatus(command.source, DeviceNetworkStatus::online);
    if (sleepers_.isAwake(command.source)) { sleepers_.wokeUp(command.source, now_); }
    auto const* const device = network_.nodes.find(command.source);
    if (device != nullptr && device->isSleeping() && isWakeUpNotification(command.data)) {
        sleepers_.wokeUp(command.source, now_);
        network_.nodes.wakeStatus(command.source, WakeStatus::awake);
        interview(command.source);
    }
    for (auto& entry : entries_) { entry.job->received(command); }
    observer_.commandReceived(command);
}

void Controller::onUpdate(serialapi::ApplicationUpdate::Callback const& update) {
    using Update = serialapi::ApplicationUpdate;
    if (update.state == Update::nodeRemoved) {
        network_.nodes.remove(update.node);
    } else if (update.state == Update::nodeAdded) {
        auto const node = update.node;
        add(
            std::make_shared<NodeInquiry>(node, update.information), [this, node] { interview(node); }, 0);
    } else if (update.state == Update::sucId) {
        network_.module.sucNode = update.node;
    } else if (update.state == Update::nodeInformation && update.information) {
        network_.nodes.change(update.node, [&update](Device& device) {
            takeCommandClasses(device, update.information->commandClasses);
            device.deviceNetworkStatus(DeviceNetworkStatus::online);
        });
    }
    for (auto& entry : entries_) { entry.job->updated(update); }
}

/// A node that is awake, and for which there is nothing to do, may sleep again at once.
void Controller::sendToSleep() {
    for (auto const node : sleepers_.due(now_)) {
        bool const isNeeded = std::any_of(entries_.begin(), entries_.end(), [node](Entry const& entry) {
            return !entry.job->isOver() && entry.job->concerns(node);
        });
        if (isNeeded) {
            sleepers_.wokeUp(node, now_);
            continue;
        }
        Transmission::Order order;
        order.nodes = {node};
        order.data = {CommandClassType::wakeUp, wakeUpNoMoreInformation};
        order.asleep = Transmission::Asleep::send;
        add(std::make_shared<Transmission>(std::move(order)), {}, 0);
        sleepers_.fellAsleep(node);
        network_.nodes.wakeStatus(node, WakeStatus::asleep);
    }
}

/// Nodes of which not all is known; a sleeping one is asked when it wakes up.
void Controller::interviewAll() {
    if (!interviews_) { return; }
    for (auto const& [node, device] : network_.nodes.devices()) { interview(node); }
}

void Controller::interview(NodeId node) {
    auto const* const device = network_.nodes.find(node);
    bool const isWanted = interviews_ && state_ == ModuleState::ready && device != nullptr &&
                          node != network_.ownNode && device->deviceStatus() != DeviceStatus::ready;
    bool const isUnderWay = std::any_of(entries_.begin(), entries_.end(), [node](Entry const& entry) {
        return entry.job->lane() == Job::Lane::background && !entry.job->isOver() && entry.job->concerns(node);
    });
    if (isWanted && !isUnderWay) { add(std::make_shared<Interview>(node), {}, 0); }
}

} // namespace zorv::controller
