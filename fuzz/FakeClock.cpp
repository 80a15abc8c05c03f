// SPDX-License-Identifier: Apache-2.0
#include "fuzz/FakeClock.h"

#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>

namespace zorv::fuzz {

namespace {

bool isFaked = false;
std::int64_t milliseconds = 0;

} // namespace

FakeClock::FakeClock() {
    isFaked = true;
    milliseconds = 1'000'000;
}

FakeClock::~FakeClock() { isFaked = false; }

void FakeClock::move(std::chrono::milliseconds time) { milliseconds += time.count(); }

std::chrono::milliseconds FakeClock::now() { return std::chrono::milliseconds(milliseconds); }

} // namespace zorv::fuzz

// The program's own come before the system's.
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!zorv::fuzz::isFaked || clock != CLOCK_MONOTONIC) {
        return static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    }
    time->tv_sec = static_cast<time_t>(zorv::fuzz::milliseconds / 1000);
    time->tv_nsec = static_cast<long>(zorv::fuzz::milliseconds % 1000) * 1'000'000;
    return 0;
}

/// The kernel's timers would go by its own clock. Without them, Asio asks the steady clock.
int timerfd_create(int clock, int flags) noexcept {
    if (!zorv::fuzz::isFaked) { return static_cast<int>(::syscall(SYS_timerfd_create, clock, flags)); }
    errno = ENOSYS;
    return -1;
}

} // extern "C"
