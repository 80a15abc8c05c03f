// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/Job.h"

#include <set>

namespace zorv::controller {

/// Asks a node what it is: its command classes, its maker, the versions of its classes; a node that sleeps is told whom to
/// wake up for.
///
/// What the node's record holds already is not asked again, so that an interview that was broken off goes on where it
/// stood. A node that cannot be reached ends it; a question that the node does not answer is passed over and counted.
class ZORV_EXPORT Interview : public Job {
public:
    /// With `anew` the node is asked everything again, whatever its record holds.
    explicit Interview(NodeId node, bool anew = false) : Job(limits::longestJobTime), node_(node), anew_(anew) {}

    char const* name() const noexcept override { return "interview"; }
    Lane lane() const noexcept override { return Lane::background; }
    std::string objection(Network const& network) const override;
    NodeId awaits(Network const& network) const override;
    bool isPatient() const noexcept override { return true; }
    bool concerns(NodeId node) const override { return node == node_; }
    void received(ReceivedCommand const& command) override;

protected:
    void run() override;
    void stop() override;
    void stepTimedOut() override;

private:
    /// A command to the node, and how its answer begins.
    struct Question {
        Bytes command;
        Bytes answer;
        std::function<void(Bytes const& answer)> take;
        std::function<void()> skip; ///< the node has not answered, again and again
    };

    Device const* device() const { return network().nodes.find(node_); }

    void next();
    bool askInformation();
    bool askManufacturer();
    bool askVersion();
    bool askWakeUp();
    void setWakeUp(Bytes const& interval);
    void requestInformation();
    void onInformation(Job const& request);
    void ask(Question question);
    void sendQuestion();
    void onSent(Job const& transmission);
    void tryAgain();
    void report(InterviewStage stage);
    void interrupt(std::string const& reason);
    void finish();

    NodeId node_;
    bool anew_;
    Question question_;
    unsigned int attempts_ = 0;
    int errors_ = 0;
    bool wasReached_ = false;
    bool hasInformation_ = false;
    bool hasManufacturer_ = false;
    bool hasWakeUp_ = false;
    std::set<CommandClassType::Enum> withoutVersion_; ///< asked in vain
};

} // namespace zorv::controller
