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

/// Bounds the memory and the number of the connections that share it. Belongs to the event loop's thread.
///
/// If they need more memory than that, the connection that holds most is ended, whichever of them asked. So a peer that
/// takes little never pays for one that takes much.
class ZORV_EXPORT TcpBudget {
public:
    class Share;

    /// Allows so many bytes in buffers, and so many connections.
    TcpBudget(EventLoop& loop, std::size_t bytes, std::size_t connections);
    ~TcpBudget();

    TcpBudget(TcpBudget const&) = delete;
    TcpBudget& operator=(TcpBudget const&) = delete;

    /// Whether the limit of connections is reached.
    bool full() const noexcept { return shares_.size() >= connections_; }

    /// Has the loop call `work` later: one such piece per turn, so that everybody else gets a turn between two of them.
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

    /// Sets how many bytes this share holds; false if this share has to be evicted for that.
    bool hold(std::size_t bytes);

private:
    friend TcpBudget;

    std::shared_ptr<TcpBudget> budget_;
    std::function<void()> evict_;
    std::size_t held_ = 0;
};

} // namespace zorv
