// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/ModuleLink.h"
#include "apps/zwaved/Recorder.h"

#include "platform/libmessage_bus/MessageBus.h"
#include "zwave/libquillet/Confirmable.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorv::daemon {

/// The requests of clients that have become jobs of the controller. Each gets one final answer, when its job is over.
class Requests {
public:
    /// How long a job lasts at most.
    enum class Lease {
        none,       ///< it goes on without its client
        connection, ///< as long as somebody can be answered
        input       ///< until the client sends nothing any more: a mode must not stay open behind one that is gone
    };

    Requests(MessageBus& bus, ModuleLink& link, Recorder& recorder) : bus_(bus), link_(link), recorder_(recorder) {}

    /// Has `handler` called with each request of the class `M`; while the module is being asked who it is, later.
    template <class M> void handle(std::function<void(boost::shared_ptr<M> const& request, PeerId from)> handler) {
        bus_.handle<M>([this, handler = std::move(handler)](boost::shared_ptr<M> const& request, PeerId from) {
            if (isModuleKnown()) { return handler(request, from); }
            waiting_.push_back({request, from, [handler, request, from] { handler(request, from); }});
        });
    }

    /// The same for what gets no answer.
    template <class M> void listen(std::function<void(boost::shared_ptr<M> const& message, PeerId from)> handler) {
        bus_.listen<M>([this, handler = std::move(handler)](boost::shared_ptr<M> const& message, PeerId from) {
            if (isModuleKnown()) { return handler(message, from); }
            waiting_.push_back({nullptr, from, [handler, message, from] { handler(message, from); }});
        });
    }

    /// Begins a job for a request. `answer` makes the final answer: when the job is over, or at once, with "rejected",
    /// where the controller does not take the job.
    template <class M> void begin(boost::shared_ptr<M> const& request, PeerId from, Lease lease,
                                  std::shared_ptr<controller::Job> const& job,
                                  std::function<boost::shared_ptr<M>(ZResult::Enum result)> answer) {
        submit({request->name(), from, lease}, job,
               [this, from, answer = std::move(answer)](ZResult::Enum result) { bus_.answer(from, answer(result)); });
    }

    /// As above, where the answer says nothing but how it went.
    template <class M> void begin(boost::shared_ptr<M> const& request, PeerId from, Lease lease,
                                  std::shared_ptr<controller::Job> const& job) {
        begin<M>(request, from, lease, job, [request](ZResult::Enum result) { return M::create(request, result); });
    }

    /// Ends the running job of the network if it is a `J`. `ended` is called when the module is out of its mode; false
    /// where no such job runs.
    template <class J> bool abort(std::function<void()> ended) {
        auto const* const job = link_.controller().networkJob();
        return dynamic_cast<J const*>(job) != nullptr && abort(job->number(), std::move(ended));
    }

    /// Ends the jobs that last no longer: the client sends nothing any more, or is gone.
    void inputEnded(PeerId client) { end(client, Lease::input); }
    void left(PeerId client) { end(client, Lease::connection); }

    /// To be called when the controller's turn is over.
    void goOn();

    struct Counters {
        std::uint64_t done = 0;
        std::uint64_t failed = 0;
        std::uint64_t timedOut = 0;
        std::uint64_t cancelled = 0;
        std::uint64_t refused = 0;
    };

    /// Of the jobs that clients asked for.
    Counters const& counters() const noexcept { return counters_; }

    /// Writes what has changed; where that fails, nobody may be told of a success.
    bool keep() { return recorder_.flush(); }

private:
    struct Waiting {
        boost::shared_ptr<TConfirmable> request; ///< null for what gets no answer
        PeerId from;
        std::function<void()> work;
    };

    struct Order {
        std::string request; ///< its name, for the log
        PeerId from;
        Lease lease;
    };

    struct Running {
        PeerId client{};
        Lease lease = Lease::none;
        std::vector<std::function<void()>> aborts; ///< to be told of the end
    };

    void count(controller::JobState end) noexcept;
    bool isModuleKnown() const;
    void serve(Waiting const& waiting);
    void submit(Order const& order, std::shared_ptr<controller::Job> const& job,
                std::function<void(ZResult::Enum)> const& ended);
    bool abort(controller::JobNumber job, std::function<void()> ended);
    void end(PeerId client, Lease lease);

    MessageBus& bus_;
    ModuleLink& link_;
    Recorder& recorder_;
    std::deque<Waiting> waiting_;
    bool isGoingOn_ = false;
    std::map<controller::JobNumber, Running> running_;
    Counters counters_;
};

/// How a job's end is told to a client. What was aborted never ends with "success".
ZResult::Enum toResult(controller::JobState state);

/// A job's time as a message gives it, in seconds; 0 and less stand for the default.
controller::Milliseconds jobSeconds(long long seconds);

} // namespace zorv::daemon
