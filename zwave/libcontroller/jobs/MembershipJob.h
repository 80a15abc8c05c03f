// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <utility>

namespace zorv::controller {

/// What a mode that takes nodes in or out has come to.
enum class MembershipStage { ready, nodeFound, endNode, controller, protocolDone };

/// Inclusion and exclusion: a mode of the module that is begun, waits for a node, is busy with it, and has to be stopped.
///
/// Until a node is found it can be stopped at any time. From then on a stop would leave half a node behind: the job goes
/// on until the module is done with the node, and ends as it was told to only then.
template <class F> class MembershipJob : public Job {
public:
    using Progress = std::function<void(MembershipStage stage, NodeId node)>;

    /// While nobody has been found, other nodes can still be reached.
    bool sharesRadio() const noexcept override { return state_ == State::waiting; }

    /// The node that came or went; 0 where there was none, or it was none of this network.
    NodeId node() const noexcept { return node_; }

protected:
    MembershipJob(bool networkWide, Milliseconds time, Progress progress)
        : Job(time), networkWide_(networkWide), progress_(std::move(progress)) {}

    void run() override {
        serialapi::CallHandlers<F> handlers;
        handlers.callback = [this](serialapi::ModeCallback const& callback) { onCallback(callback); };
        handlers.end = [this](serialapi::CallEnd end) { onEnd(end); };
        namespace mode = serialapi::mode;
        call_ = call<F>(request(startMode(), std::nullopt), std::move(handlers));
        step(readyTime);
    }

    void stop() override {
        if (state_ == State::starting || state_ == State::waiting) { leave(); }
    }

    void stepTimedOut() override {
        switch (state_) {
        case State::starting: return stopFor(JobState::failed, "the module does not get ready");
        case State::waiting: return;
        case State::busy: problem_ = "the node was found, but not finished with"; return leave();
        case State::leaving:
            host().resetModule("it does not leave the mode of " + std::string(name()));
            if (isStopping()) { return endStopped(); }
            return fail("the module does not leave its mode");
        }
    }

    /// The mode that is asked for.
    virtual Byte startMode() const {
        namespace mode = serialapi::mode;
        return static_cast<Byte>(mode::any | mode::normalPower | (networkWide_ ? mode::networkWide : 0));
    }

    /// How long the module may be busy with a node that it has found.
    virtual Milliseconds busyTime() const = 0;

    /// The module has left its mode; what remains is the table. Ends with settled().
    virtual void conclude() = 0;

    /// A job that was told to stop is over now, also where it has got its node.
    void settled() {
        if (!problem_.empty()) { return fail(problem_); }
        bool const hasNode = node_ != 0 && stopState() == JobState::timedOut;
        if (isStopping() && !hasNode) { return endStopped(); }
        done();
    }

    std::optional<serialapi::NodeInformation> const& information() const noexcept { return information_; }
    bool hasProblem() const noexcept { return !problem_.empty(); }

private:
    enum class State { starting, waiting, busy, leaving };
    static constexpr Milliseconds readyTime{10'000};

    static typename F::Request request(Byte mode, std::optional<Byte> callbackId) {
        typename F::Request request;
        request.mode = mode;
        request.callbackId = callbackId;
        return request;
    }

    void onCallback(serialapi::ModeCallback const& callback) {
        namespace mode = serialapi::mode;
        switch (callback.status) {
        case mode::ready:
            if (state_ != State::starting) { return; }
            state_ = State::waiting;
            noStep();
            return report(MembershipStage::ready);
        case mode::nodeFound:
            state_ = State::busy;
            step(busyTime());
            return report(MembershipStage::nodeFound);
        case mode::endNode:
        case mode::controller:
            take(callback);
            return report(callback.status == mode::endNode ? MembershipStage::endNode : MembershipStage::controller);
        case mode::protocolDone: report(MembershipStage::protocolDone); return leave();
        case mode::done: return take(callback);
        case mode::failed: problem_ = "the module has failed with the node"; return;
        case mode::notPrimary: problem_ = "the module is not the primary controller"; return;
        default: return;
        }
    }

    void take(serialapi::ModeCallback const& callback) {
        if (callback.node != 0) { node_ = callback.node; }
        if (callback.information) { information_ = callback.information; }
    }

    void report(MembershipStage stage) {
        if (progress_) { progress_(stage, node_); }
    }

    /// The module calls back once more, and is then out of its mode.
    void leave() {
        state_ = State::leaving;
        step(limits::stopTime);
        tell<F>(request(serialapi::mode::stop, host().module().callbackId(call_)));
    }

    /// A last stop, which the module does not answer, closes the mode in all its versions.
    void onEnd(serialapi::CallEnd end) {
        if (end != serialapi::CallEnd::done && problem_.empty()) { problem_ = complaint(end); }
        state_ = State::leaving;
        step(limits::stopTime);
        tell<F>(request(serialapi::mode::stop, Byte{0}), [this](serialapi::CallEnd stopped) {
            if (stopped != serialapi::CallEnd::done) { return fail(complaint(stopped)); }
            noStep();
            conclude();
        });
    }

    bool networkWide_;
    Progress progress_;
    State state_ = State::starting;
    serialapi::Module::CallNumber call_ = 0;
    NodeId node_ = 0;
    std::optional<serialapi::NodeInformation> information_;
    std::string problem_;
};

} // namespace zorv::controller
