// SPDX-License-Identifier: Apache-2.0
#include "tests/property/property.h"

#include "tests/support/ControllerStage.h"
#include "tests/support/anyJob.h"
#include "zwave/libmodulesim/SimulatedModule.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

using modulesim::Generation;
using modulesim::NodeKind;
using modulesim::SimulatedModule;
using modulesim::SimulatedNetwork;

/// Node 2 listens, 3 is woken by a beam, 4 sleeps, 5 is dead.
SimulatedNetwork smallNetwork(Generation generation) {
    SimulatedNetwork network;
    network.generation = generation;
    network.nvmSize = 16384;
    network.nodes.resize(4);
    for (std::size_t i = 0; i < network.nodes.size(); ++i) { network.nodes[i].id = static_cast<NodeId>(i + 2); }
    network.nodes[1].kind = NodeKind::frequentlyListening;
    network.nodes[2].kind = NodeKind::sleeping;
    network.nodes[2].wakeUpSeconds = 600;
    network.nodes[2].commandClasses = {0x72, 0x80, 0x84, 0x86};
    network.nodes[3].dead = true;
    return network;
}

/// A controller, a module with its network, and a clock that the history moves.
class History {
public:
    explicit History(Generation generation) : module_(smallNetwork(generation)), controller_(diary_) {
        module_.start();
        controller_.start(now_);
        pass(Milliseconds(5000));
        RC_ASSERT(controller_.state() == ModuleState::ready);
    }

    void step(WireTexts::Below const& below) {
        auto const node = static_cast<NodeId>(2 + below(5));
        switch (below(10)) {
        case 0: module_.join({}, Milliseconds(below(20'000))); break;
        case 1: module_.leave(node, Milliseconds(below(20'000))); break;
        case 2: module_.pressButton(node); break;
        case 3: module_.wake(node); break;
        case 4: module_.command(node, {0x20, 0x03, static_cast<Byte>(below(256))}); break;
        case 5: module_.restart(); break;
        case 6:
            if (!submissions_.empty()) {
                controller_.cancel(submissions_[static_cast<std::size_t>(below(submissions_.size()))], now_);
            }
            break;
        default: submit(below); break;
        }
        pass(Milliseconds(below(40'000)));
    }

    /// Everything comes to its end, and then both sides know the same.
    void end() {
        controller_.windUp(now_);
        pass(Milliseconds(2 * 3'600'000));
        RC_ASSERT(controller_.isIdle());
        RC_ASSERT(ends_ == jobs_.size());
        for (auto const& job : jobs_) { RC_ASSERT(job->isOver()); }
        RC_ASSERT(!module_.isInMode());
        RC_ASSERT(module_.isRadioOn());
        RC_ASSERT(controller_.state() == ModuleState::ready);
        auto const& network = controller_.network();
        RC_ASSERT(network.homeId == module_.homeId());
        RC_ASSERT(network.ownNode == module_.node());
        std::vector<NodeId> known;
        for (auto const& entry : network.nodes.devices()) { known.push_back(entry.first); }
        RC_ASSERT(known == module_.nodes());
    }

private:
    /// Whatever a raw call has the module do, it does behind the controller's back.
    void submit(WireTexts::Below const& below) {
        auto const job = anyJob([&below] { return static_cast<Byte>(below(256)); });
        if (dynamic_cast<RawCall const*>(job.get()) != nullptr) { return; }
        auto const submission = controller_.submit(
            job, [this] { ++ends_; }, now_);
        if (!submission) {
            RC_ASSERT(!submission.reason.empty());
            return;
        }
        jobs_.push_back(job);
        submissions_.push_back(submission.job);
    }

    void pass(Milliseconds time) {
        auto const end = now_ + time;
        exchange();
        for (auto next = deadline(); next && *next <= end; next = deadline()) {
            now_ = std::max(now_, *next);
            controller_.tick(now_);
            module_.tick(now_);
            exchange();
        }
        now_ = end;
    }

    std::optional<TimePoint> deadline() const {
        auto const ours = controller_.deadline();
        auto const theirs = module_.deadline();
        if (!ours || (theirs && *theirs < *ours)) { return theirs; }
        return ours;
    }

    void exchange() {
        while (true) {
            auto const said = controller_.takeOutput();
            if (!said.empty()) { module_.receive(said, now_); }
            auto const answered = module_.takeOutput();
            if (!answered.empty()) { controller_.receive(answered, now_); }
            if (said.empty() && answered.empty()) { return; }
        }
    }

    Diary diary_;
    SimulatedModule module_;
    Controller controller_;
    TimePoint now_{};
    std::vector<std::shared_ptr<Job>> jobs_;
    std::vector<JobNumber> submissions_;
    std::size_t ends_ = 0;
};

} // namespace

RC_GTEST_PROP(Controller, EndsEveryJobOfAnyHistoryAndKnowsTheNetworkOfItsModule, ()) {
    auto const below = generated();
    History history(static_cast<Generation>(below(3)));
    for (auto left = below(8); left > 0; --left) { history.step(below); }
    history.end();
}

} // namespace zorv::controller
