// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>

// Every time and every bound of the serial link, by name. Nothing in this library reads a clock: whoever owns the port
// says what time it is.

namespace zorv::serialapi {

using Milliseconds = std::chrono::milliseconds;
using TimePoint = std::chrono::steady_clock::time_point;

namespace limits {

// ---- frames
constexpr std::size_t smallestLength = 3;          ///< LEN counts itself, the type and the function
constexpr std::size_t largestHostFrame = 257;      ///< bytes from SOF to the checksum that LEN can tell a host
constexpr std::size_t largestModuleFrame = 168;    ///< what fits into a module's receive buffer
constexpr Milliseconds frameTime{1500};            ///< a host waits so long from the first byte to the last
constexpr Milliseconds byteTime{150};              ///< a module waits so long from one byte to the next
constexpr std::size_t badChecksumsBeforeReset = 3; ///< in a row

// ---- acknowledgement
constexpr Milliseconds hostAckTime{1600};
constexpr Milliseconds moduleAckTime{1500};
constexpr unsigned int retransmissions = 3; ///< four transmissions in all
constexpr Milliseconds firstPause{100};     ///< before a host's first retransmission
constexpr Milliseconds pauseGrowth{1000};   ///< more before each further one
constexpr Milliseconds settleTime{1600};    ///< before the next frame, where a late answer may still be on its way

// ---- sessions
/// The rules say 5 s; modules have been seen to answer after 5.2 s.
constexpr Milliseconds responseTime{10000};
constexpr Milliseconds callbackTime{65000}; ///< the longest that a frame to a node may take
constexpr std::size_t hostQueue = 256;      ///< frames of the host that wait for their turn
constexpr std::size_t moduleQueue = 16;     ///< frames of a module; what comes on top is lost
constexpr std::size_t heldFrames = 32;      ///< frames of the module that came before the awaited response

// ---- the loader of the 700 and 800 series
constexpr Milliseconds loaderMenuTime{2000}; ///< from a key to the menu, or to the request for the image
constexpr Milliseconds loaderAskTime{500};   ///< a request for the image that comes so late is another one
constexpr Milliseconds loaderBlockTime{
    10'000}; ///< from a block to its answer; the first one may have it erase its memory
constexpr Milliseconds loaderVerdictTime{10'000}; ///< from the end of the image to the menu
constexpr unsigned int loaderTries = 3;           ///< more, of a key, a block, or the end

} // namespace limits

} // namespace zorv::serialapi
