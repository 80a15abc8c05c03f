// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libcontroller/Job.h"
#include "zwave/libcontroller/Sleepers.h"

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zorv::controller {

enum class Refusal {
    none,
    notReady,   ///< the module is not there, or is being asked who it is
    busy,       ///< another job has the network or the module's memory
    impossible, ///< the job itself says why not
    queueFull
};

/// What became of a job that was handed in.
struct Submission {
    JobNumber job = 0;
    Refusal refusal = Refusal::none;
    std::string reason = {}; ///< of a refusal, for the log

    explicit operator bool() const noexcept { return refusal == Refusal::none; }
};

/// How many jobs wait, or are under way.
struct QueueSizes {
    std::size_t waiting = 0;  ///< frames that wait for their turn
    std::size_t jobs = 0;     ///< jobs other than frames
    std::size_t sleepers = 0; ///< frames that wait for their node to wake up
};

/// A controller: the module, its network, and what is being done with them.
///
/// Like the module's interface below it, it knows no port and no clock: bytes and the time go in, bytes and the next
/// deadline come out. After each call, write takeOutput() to the port, and call tick() when deadline() has come.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, so nobody deletes it by a base
class ZORV_EXPORT Controller final : private JobHost {
public:
    /// With `interviews` every node of which not all is known is asked, by and by.
    explicit Controller(Observer& observer, bool interviews = true);
    ~Controller();

    /// What is known of a node from an earlier life; it counts if the module still has the node. Before start().
    void remember(Device const& device);

    /// The port was opened: asks the module who it is.
    void start(TimePoint now);

    /// The port is lost: everything that is under way fails, and the module is absent.
    void lost(TimePoint now);

    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();
    std::optional<TimePoint> deadline() const noexcept;

    /// Takes a job on, or says why not; `end` is called once, when an accepted one is over.
    Submission submit(std::shared_ptr<Job> job, std::function<void()> end, TimePoint now);

    /// Ends a job early. It is over, and its end told, once the module is out of its mode; false: there is no such job.
    bool cancel(JobNumber job, TimePoint now);

    /// The same for all jobs; no node is asked by itself any more.
    void windUp(TimePoint now);

    /// Whether no job is under way or waits, apart from those that ask the module who it is.
    bool isIdle() const noexcept;

    /// Has every data frame of the link told that is sent or was received well.
    void trace(serialapi::SessionLayer::Trace trace) { module_.session().trace(std::move(trace)); }

    /// Changes what is kept of a node; nothing happens where there is no such node.
    template <class Change> void changeNode(NodeId node, Change const& change) { network_.nodes.change(node, change); }

    ModuleState state() const noexcept { return state_; }
    Network const& network() const noexcept { return network_; }
    serialapi::Module const& link() const noexcept { return module_; }
    QueueSizes queues() const noexcept;

    /// The job that has the network or the module's memory; null where none has.
    Job const* networkJob() const noexcept;

private:
    struct Entry {
        std::shared_ptr<Job> job;
        std::function<void()> end;
        JobNumber parent = 0; ///< whose part it is
    };
    using Entries = std::list<Entry>;

    // ---- JobHost
    serialapi::Module& module() noexcept override { return module_; }
    Network& changeableNetwork() noexcept override { return network_; }
    Observer& observer() noexcept override { return observer_; }
    TimePoint now() const noexcept override { return now_; }
    void submitPart(Job const& parent, std::shared_ptr<Job> part, std::function<void()> end) override;
    void readModule(Job const& parent, Restart restart, std::function<void(std::string const&)> end) override;
    void resetModule(std::string const& reason) override;

    template <class Work> void turn(TimePoint now, Work const& work);
    void settle();
    bool tellEnds();
    bool beginNext();
    bool mayBegin(Entry const& entry) const;
    Entry* nextFrame();
    bool isRunning(Job::Lane lane) const noexcept;
    Refusal refusalOf(Job const& job, std::string& reason) const;
    Entry& add(std::shared_ptr<Job> job, std::function<void()> end, JobNumber parent);

    void startUp(bool softReset);
    void startUp(Restart restart);
    void leaveLoader();
    void startUpEnded(bool isReady);
    void forgetLostNodes();
    bool tellRestart();
    void enter(ModuleState state);
    void onUnsolicited(serialapi::Frame const& frame);
    void onCommand(ReceivedCommand const& command);
    void onUpdate(serialapi::ApplicationUpdate::Callback const& update);
    void sendToSleep();
    void interviewAll();
    void interview(NodeId node);

    Observer& observer_;
    bool interviews_;
    serialapi::Module module_;
    Network network_;
    std::map<ZwaveAddress, Device> remembered_;
    Sleepers sleepers_;
    ModuleState state_ = ModuleState::absent;
    TimePoint now_{};
    Entries entries_; ///< by age
    Bytes output_;    ///< of before the link was reset
    JobNumber lastJob_ = 0;
    std::optional<TimePoint> nextStartUp_;
    bool wasReset_ = false;     ///< since it answered, or its port was opened
    std::string resetReason_;   ///< of a reset that is due at the end of this turn
    bool hasRestarted_ = false; ///< the module, within this turn
    bool isInTurn_ = false;
};

} // namespace zorv::controller
