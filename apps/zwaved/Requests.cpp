// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/Requests.h"

#include "platform/libio/insist.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/logExceptionWarning.h"

#include <algorithm>
#include <new>

namespace zorv::daemon {

using controller::JobState;
using controller::ModuleState;

/// Whether a message is handled at once: nothing that came before it waits. The bus looks after what its handler throws.
bool Requests::isModuleKnown() const { return link_.controller().state() != ModuleState::starting && waiting_.empty(); }

/// Whatever is served has turns of its own, at the end of which nothing else is to be served.
void Requests::goOn() {
    if (isGoingOn_) { return; }
    isGoingOn_ = true;
    while (!waiting_.empty() && link_.controller().state() != ModuleState::starting) {
        auto const waiting = std::move(waiting_.front());
        waiting_.pop_front();
        try {
            serve(waiting);
        } catch (std::bad_alloc const&) {
            insist([&] { bus_.disconnect(waiting.from); });
        }
    }
    isGoingOn_ = false;
}

void Requests::serve(Waiting const& waiting) {
    try {
        waiting.work();
    } catch (std::exception const& error) {
        ifMemoryAllows([&] { logExceptionWarning("zwaved", "cannot handle a message that has waited: ", error); });
        if (!waiting.request) { return; }
        auto const answer = waiting.request->clone();
        answer->setResponse(*waiting.request);
        answer->result(ZResult::failure);
        bus_.answer(waiting.from, answer);
    }
}

void Requests::submit(Order const& order, std::shared_ptr<controller::Job> const& job,
                      std::function<void(ZResult::Enum)> const& ended) {
    auto end = [this, job, ended, client = order.from] {
        auto const running = running_.extract(job->number());
        count(job->state());
        auto result = toResult(job->state());
        try {
            recorder_.ended(*job);
            if (!keep() && result == ZResult::success) { result = ZResult::failure; }
            ended(result);
        } catch (std::bad_alloc const&) {
            insist([&] { bus_.disconnect(client); });
        }
        if (running.empty()) { return; }
        for (auto const& told : running.mapped().aborts) {
            try {
                told();
            } catch (std::bad_alloc const&) {
                insist([&] { bus_.disconnect(client); });
            }
        }
    };
    std::map<controller::JobNumber, Running> place; // made before: a mode must not begin without its lease
    place[0] = {order.from, order.lease, {}};
    auto const submission = link_.submit(job, std::move(end));
    if (!submission) {
        ++counters_.refused;
        Logger::log(LogLevel::info, "zwaved: " + order.request + " is rejected: " + submission.reason,
                    BOOST_CURRENT_LOCATION);
        return ended(ZResult::rejected);
    }
    if (job->isOver()) { return; }
    auto running = place.extract(place.begin());
    running.key() = submission.job;
    running_.insert(std::move(running));
}

void Requests::count(JobState end) noexcept {
    switch (end) {
    case JobState::done: ++counters_.done; return;
    case JobState::timedOut: ++counters_.timedOut; return;
    case JobState::cancelled: ++counters_.cancelled; return;
    case JobState::accepted:
    case JobState::running:
    case JobState::failed: ++counters_.failed; return;
    }
}

bool Requests::abort(controller::JobNumber job, std::function<void()> ended) {
    running_.at(job).aborts.push_back(std::move(ended));
    return link_.cancel(job);
}

void Requests::end(PeerId client, Lease lease) {
    std::vector<controller::JobNumber> jobs; // copied, because the end of a job changes the map
    for (auto const& [job, running] : running_) {
        if (running.client == client && running.lease >= lease) { jobs.push_back(job); }
    }
    for (auto const job : jobs) { link_.cancel(job); }
}

ZResult::Enum toResult(JobState state) {
    switch (state) {
    case JobState::done: return ZResult::success;
    case JobState::timedOut: return ZResult::timeout;
    case JobState::accepted:
    case JobState::running:
    case JobState::failed:
    case JobState::cancelled: break;
    }
    return ZResult::failure;
}

controller::Milliseconds jobSeconds(long long seconds) {
    auto const longest = std::chrono::duration_cast<std::chrono::seconds>(controller::limits::longestJobTime);
    return std::chrono::seconds(std::clamp<long long>(seconds, 0, longest.count()));
}

} // namespace zorv::daemon
