// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/TcpBudget.h"

#include "platform/libio/EventLoop.h"
#include "platform/libio/insist.h"

#include <utility>

namespace zorv {

struct TcpBudget::Queue : std::enable_shared_from_this<TcpBudget::Queue> {
    explicit Queue(EventLoop& theLoop) : loop(theLoop) {}

    void runLater() {
        insist([this] { loop.post([self = shared_from_this()] { self->runOne(); }); });
    }

    void runOne() {
        auto const work = std::move(waiting.front());
        waiting.pop_front();
        work();
        busy = !waiting.empty();
        if (busy) { runLater(); } // after everything that has become ready meanwhile
    }

    EventLoop& loop;
    bool busy = false;
    std::deque<std::function<void()>> waiting;
};

TcpBudget::TcpBudget(EventLoop& loop, std::size_t bytes, std::size_t connections)
    : bytes_(bytes), connections_(connections), heavyWork_(std::make_shared<Queue>(loop)) {}

TcpBudget::~TcpBudget() = default;

void TcpBudget::queueHeavyWork(std::function<void()> work) {
    heavyWork_->waiting.push_back(std::move(work));
    if (!std::exchange(heavyWork_->busy, true)) { heavyWork_->runLater(); }
}

/// Makes room by evicting the largest shares; false if the asking share is itself the largest.
bool TcpBudget::grow(Share& share, std::size_t bytes) {
    while (held_ - share.held_ + bytes > bytes_) {
        auto& most = largest(share, bytes);
        if (&most == &share) { return false; }
        held_ -= std::exchange(most.held_, 0);
        most.evict_();
    }
    held_ += bytes - share.held_;
    share.held_ = bytes;
    return true;
}

TcpBudget::Share& TcpBudget::largest(Share& asking, std::size_t wanted) const {
    auto* most = &asking;
    auto mostHeld = wanted; // more than it holds yet
    for (auto* const share : shares_) {
        if (share->held_ > mostHeld) {
            most = share;
            mostHeld = share->held_;
        }
    }
    return *most;
}

TcpBudget::Share::Share(std::shared_ptr<TcpBudget> budget, std::function<void()> evict)
    : budget_(std::move(budget)), evict_(std::move(evict)) {
    if (budget_) { budget_->shares_.insert(this); }
}

TcpBudget::Share::~Share() {
    if (!budget_) { return; }
    budget_->held_ -= held_;
    budget_->shares_.erase(this);
}

bool TcpBudget::Share::hold(std::size_t bytes) {
    if (budget_ && bytes > held_) { return budget_->grow(*this, bytes); }
    if (budget_) { budget_->held_ -= held_ - bytes; }
    held_ = bytes;
    return true;
}

} // namespace zorv
