// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <new>

namespace zorv {

/// What this program's operator new does, which is that of the libraries too. What is refused is refused to the thread
/// that asked for it.
class Allocations {
public:
    Allocations() = delete;

    /// Allocations of all threads that were not given back.
    static long live() noexcept;

    /// As above, of this thread less what it gave back: other threads, such as the log's, come and go.
    static long liveHere() noexcept;

    /// Refuses allocations above a size, as long as it lives.
    class Limit {
    public:
        explicit Limit(std::size_t limit) noexcept;
        ~Limit();
        Limit(Limit const&) = delete;
        Limit& operator=(Limit const&) = delete;
    };

    /// Grants some allocations and refuses all that follow, as long as it lives.
    class Count {
    public:
        explicit Count(std::size_t granted) noexcept;
        ~Count();
        Count(Count const&) = delete;
        Count& operator=(Count const&) = delete;

        static bool ranOut() noexcept;
    };

    /// Grants some allocations, refuses those that follow up to a number, and grants the rest, as long as it lives.
    class Gap {
    public:
        explicit Gap(std::size_t granted, std::size_t refused = 1) noexcept;
        ~Gap();
        Gap(Gap const&) = delete;
        Gap& operator=(Gap const&) = delete;

        static bool wasReached() noexcept;
    };

    /// Grants everything as long as it lives; what was refused before is refused again after it.
    class Pardon {
    public:
        Pardon() noexcept;
        ~Pardon();
        Pardon(Pardon const&) = delete;
        Pardon& operator=(Pardon const&) = delete;

    private:
        std::size_t grantsLeft_;
    };
};

/// Calls `attempt` with 0, 1, 2, ... to have all allocations granted but the one after so many, up to the first call in
/// which there are no more than that. Gives how many there are. What `attempt` throws is its own to catch.
template <class Attempt> std::size_t forEachAllocation(Attempt const& attempt) {
    for (std::size_t granted = 0;; ++granted) {
        if (!attempt(granted)) { return granted; }
    }
}

} // namespace zorv
