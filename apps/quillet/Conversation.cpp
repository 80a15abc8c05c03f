// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/Conversation.h"

#include "apps/quillet/Progress.h"

#include <unistd.h>

#include <iostream>

namespace zorv {

std::chrono::milliseconds longestWork(DaemonAddress const& daemon) {
    // The daemon's own limit, and time for its answer.
    return daemon.isTimeoutGiven ? daemon.timeout : std::chrono::hours(1) + std::chrono::seconds(10);
}

boost::shared_ptr<Confirmable> Conversation::ask(boost::shared_ptr<Confirmable> const& request,
                                                 std::optional<std::chrono::milliseconds> timeout,
                                                 Interruption const& interruption,
                                                 std::optional<std::chrono::milliseconds> limit) {
    Progress progress(what_, Terminal(STDERR_FILENO), limit);
    progress_ = &progress;
    session_.everySecond([&progress] { progress.tick(); });
    session_.onInterruption([this, &progress, interruption] {
        if (!interruption.text.empty()) { progress.say(interruption.text); }
        if (!interruption.request) { return false; }
        interrupted_ = interruption.ended;
        session_.request(interruption.request);
        return true;
    });
    auto answer = session_.ask(request, timeout, [&](MessageBus::ConfirmablePtr const& state) {
        output_.isJson() ? output_.show(*state) : progress.show(*state);
    });
    session_.onInterruption({});
    session_.everySecond({});
    progress_ = nullptr;
    return answer;
}

void Conversation::beside(std::function<void()> const& work) {
    if (progress_ == nullptr) { return work(); }
    progress_->clear();
    work();
    progress_->tick();
}

bool Conversation::isGood(Confirmable const& answer) {
    // An answer that only carries data may have no result.
    return answer.result() == ZResult::success || answer.result() == ZResult::none;
}

ExitCode Conversation::show(Confirmable const& answer) {
    if (isGood(answer) || output_.isJson()) { output_.show(answer); }
    return judge(answer);
}

ExitCode Conversation::judge(Confirmable const& answer) {
    if (!isGood(answer)) {
        auto const before = interrupted_ ? *interrupted_ + ": " : std::string();
        std::cerr << "quillet: " << what_ << ": " << before << toString(answer.result()) << std::endl;
    }
    if (interrupted_) { return ExitCode::interrupted; }
    if (isGood(answer)) { return ExitCode::ok; }
    return answer.result() == ZResult::timeout ? ExitCode::timedOut : ExitCode::refused;
}

} // namespace zorv
