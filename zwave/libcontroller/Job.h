// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libcontroller/Limits.h"
#include "zwave/libcontroller/Network.h"
#include "zwave/libserialapi/Module.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorv::controller {

using JobNumber = std::uint32_t;

/// The life of a job; the last four are ends.
enum class JobState { accepted, running, done, failed, timedOut, cancelled };

ZORV_EXPORT char const* toString(JobState state) noexcept;

/// What comes before a module is asked who it is.
enum class Restart {
    none,
    ofItself, ///< the module restarts now, without being told to
    reset,    ///< it is told to restart
    reload,   ///< it is told to restart, and takes up other firmware before it does
    byLoader  ///< its loader starts it now, and takes up other firmware before it does
};

/// Why a call did not end as it should: "the module has refused it".
ZORV_EXPORT char const* complaint(serialapi::CallEnd end) noexcept;

class Job;

/// What jobs work with; the controller.
class JobHost {
public:
    virtual serialapi::Module& module() noexcept = 0;
    virtual Network& changeableNetwork() noexcept = 0;
    virtual Observer& observer() noexcept = 0;
    virtual TimePoint now() const noexcept = 0;

    /// Has another job done as a part of `parent`, whatever else waits.
    virtual void submitPart(Job const& parent, std::shared_ptr<Job> part, std::function<void()> end) = 0;

    /// Has the module asked anew who it is, as a part of `parent`; `end` hears what went wrong, or an empty text.
    virtual void readModule(Job const& parent, Restart restart, std::function<void(std::string const&)> end) = 0;

    /// Resets the module: the way out of a mode that cannot be left otherwise. What is under way fails.
    virtual void resetModule(std::string const& reason) = 0;

protected:
    ~JobHost() = default;
};

/// Something that takes a while: from one frame to a node to the restoring of a memory.
///
/// Its creator submits it to a controller, which takes it through its life and tells of its end. What came of it stays in
/// the job. A job calls the module's functions and waits; it is called back within the controller's turn.
class ZORV_EXPORT Job : public std::enable_shared_from_this<Job> {
public:
    /// What a job needs for itself.
    enum class Lane {
        module,    ///< the module before anybody else may ask it: begins at once
        network,   ///< the network or the module's memory: one at a time, another one is refused
        frames,    ///< the radio for one frame: waits for its turn
        background ///< nothing; one at a time, the others wait
    };

    /// 0 and less stand for the default time; none is longer than an hour.
    explicit Job(Milliseconds time) noexcept : time_(limits::jobTime(time)) {}
    virtual ~Job() = default;
    Job(Job const&) = delete;
    Job& operator=(Job const&) = delete;

    virtual char const* name() const noexcept = 0;
    virtual Lane lane() const noexcept { return Lane::network; }

    /// What is wrong with it, before it is accepted; empty where nothing is.
    virtual std::string objection(Network const& /*network*/) const { return ""; }

    /// Whether a job of the lane `network` lets frames to nodes go out meanwhile.
    virtual bool sharesRadio() const noexcept { return false; }

    /// Among the frames that wait, the highest goes first, then the oldest.
    virtual int priority() const noexcept { return 0; }

    /// The sleeping node without which it cannot begin; 0 where there is none.
    virtual NodeId awaits(Network const& /*network*/) const { return 0; }

    /// Whether its time begins only with it.
    virtual bool isPatient() const noexcept { return false; }

    /// Whether a sleeping node that is awake has to stay so for it.
    virtual bool concerns(NodeId /*node*/) const { return false; }

    JobNumber number() const noexcept { return number_; }
    JobState state() const noexcept { return state_; }
    bool isOver() const noexcept { return state_ != JobState::accepted && state_ != JobState::running; }

    /// Why it did not end well; for the log.
    std::string const& reason() const noexcept { return reason_; }

    // ---- for the controller

    void accept(JobHost& host, JobNumber number);
    void begin();
    void tick();
    void cancel() { stopFor(JobState::cancelled, "cancelled"); }
    std::optional<TimePoint> deadline() const noexcept;

    /// The module has restarted; true where the job has waited for that. Otherwise nothing is left of what it did.
    bool moduleRestarted();
    void end(JobState state, std::string reason);
    virtual void updated(serialapi::ApplicationUpdate::Callback const& /*update*/) {}
    virtual void received(ReceivedCommand const& /*command*/) {}

protected:
    virtual void run() = 0;

    /// Told to end early: leaves every mode and then calls endStopped(), soon.
    virtual void stop() { endStopped(); }
    virtual void stepTimedOut() {}

    /// True where the job has waited for it.
    virtual bool restarted() { return false; }

    JobHost& host() const noexcept { return *host_; }
    Network& network() const noexcept { return host_->changeableNetwork(); }
    TimePoint now() const noexcept { return host_->now(); }

    /// Calls a function of the module. Nothing of it is heard any more once the job is over.
    template <class F> serialapi::Module::CallNumber call(typename F::Request request,
                                                          serialapi::CallHandlers<F> handlers,
                                                          Milliseconds callbackTime = limits::longestJobTime) {
        auto const number =
            host_->module().call<F>(std::move(request), heard<F>(std::move(handlers)), now(), callbackTime);
        calls_.push_back(number);
        return number;
    }

    /// The same for a request whose callbacks, if any, belong to a call that is open.
    template <class F>
    void tell(typename F::Request const& request, std::function<void(serialapi::CallEnd)> const& end = {}) {
        serialapi::CallHandlers<F> handlers;
        handlers.end = end;
        calls_.push_back(host_->module().tell<F>(request, heard<F>(std::move(handlers)), now()));
    }

    /// The same by bytes.
    void callRaw(Byte function, Bytes parameters, serialapi::RawHandlers handlers) {
        serialapi::RawHandlers guarded;
        guarded.frame = heardOne(std::move(handlers.frame));
        guarded.end = heardOne(std::move(handlers.end));
        calls_.push_back(host_->module().callRaw(function, std::move(parameters), std::move(guarded), now()));
    }

    /// Gives an image to the module's loader, which it has been told to enter.
    void load(Bytes image, serialapi::LoadHandlers handlers) {
        serialapi::LoadHandlers guarded;
        if (handlers.progress) { guarded.progress = heardOne(std::move(handlers.progress)); }
        guarded.end = heardOne(std::move(handlers.end));
        host_->module().load(std::move(image), std::move(guarded), now());
    }

    /// stepTimedOut() is called then, unless another step or the end comes before.
    void step(Milliseconds time) { stepDeadline_ = now() + time; }
    void noStep() noexcept { stepDeadline_.reset(); }
    void noDeadline() noexcept { deadline_.reset(); }

    /// Has the module asked anew who it is. Then goes on with `then`, or fails; restarts of the module are a part of it.
    void readModule(Restart restart, std::function<void()> then);
    bool isReadingModule() const noexcept { return isReadingModule_; }

    /// For a call without which the job cannot go on.
    std::function<void(serialapi::CallEnd)> orFail();

    void done() { end(JobState::done, ""); }
    void fail(std::string reason) { end(JobState::failed, std::move(reason)); }
    void stopFor(JobState why, std::string reason);
    void endStopped() { end(stopState_, stopReason_); }
    void endDone() { isStopping() ? endStopped() : done(); } ///< for what went on although it was told to stop
    bool isStopping() const noexcept { return stopState_ != JobState::running; }
    JobState stopState() const noexcept { return stopState_; }

private:
    /// The handlers, deaf once the job is over.
    template <class F> serialapi::CallHandlers<F> heard(serialapi::CallHandlers<F> handlers) {
        serialapi::CallHandlers<F> guarded;
        if (handlers.response) { guarded.response = heardOne(std::move(handlers.response)); }
        if (handlers.callback) { guarded.callback = heardOne(std::move(handlers.callback)); }
        if (handlers.end) { guarded.end = heardOne(std::move(handlers.end)); }
        return guarded;
    }
    template <class Argument> std::function<void(Argument)> heardOne(std::function<void(Argument)> handler) {
        return [job = weak_from_this(), handler = std::move(handler)](Argument argument) {
            auto const alive = job.lock();
            if (alive && !alive->isOver()) { handler(argument); }
        };
    }

    Milliseconds time_;
    JobHost* host_ = nullptr;
    JobNumber number_ = 0;
    JobState state_ = JobState::accepted;
    JobState stopState_ = JobState::running; ///< how it is to end, once it was told to
    std::string stopReason_;
    std::string reason_;
    bool isReadingModule_ = false;
    std::optional<TimePoint> deadline_;
    std::optional<TimePoint> stepDeadline_;
    std::vector<serialapi::Module::CallNumber> calls_;
};

} // namespace zorv::controller
