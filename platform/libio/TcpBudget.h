// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <set>

namespace zorv {

class EventLoop;

/// What the connections that share it may take of this process together; belongs to the event loop's thread.
///
/// Where they want more memory than there is, the connection that holds most of it is ended, whoever asked: a peer that
/// takes little never pays for one that takes much.
class ZORV_EXPORT TcpBudget {
public:
    class Share;

    /// At most so many bytes in buffers, and so many connections.
    TcpBudget(EventLoop& loop, std::size_t bytes, std::size_t connections);
    ~TcpBudget();

    TcpBudget(TcpBudget const&) = delete;
    TcpBudget& operator=(TcpBudget const&) = delete;

    /// Whether there are as many connections as there may be.
    bool full() const noexcept { return shares_.size() >= connections_; }

    /// Has `work` called by the loop: one piece at a time, with a whole turn for everybody else between two of them.
    void queueHeavyWork(std::function<void()> work);

private:
    struct Queue;

    bool grow(Share& share, std::size_t bytes);
    Share& largest(Share& asking, std::size_t wanted) const;

    std::size_t bytes_;
    std::size_t connections_;
    std::size_t held_ = 0;
    std::set<Share*> shares_;
    std::shared_ptr<Queue> heavyWork_;
};

/// What one connection holds of a budget.
class ZORV_EXPORT TcpBudget::Share {
public:
    /// `evict` ends the connection; it is called when this share is the largest and the budget is used up. Without a
    /// budget, everything is granted.
    Share(std::shared_ptr<TcpBudget> budget, std::function<void()> evict);
    ~Share();

    Share(Share const&) = delete;
    Share& operator=(Share const&) = delete;

    /// Holds `bytes` from now on, in place of what was held before; false where this is the share that has to go.
    bool hold(std::size_t bytes);

private:
    friend TcpBudget;

    std::shared_ptr<TcpBudget> budget_;
    std::function<void()> evict_;
    std::size_t held_ = 0;
};

} // namespace zorv
