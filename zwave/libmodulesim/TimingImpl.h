// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Limits.h"

#include <cstddef>
#include <cstdint>

// How long things take on the radio and inside the module, by name; about what real modules were seen to need.

namespace zorv::modulesim::timing {

using serialapi::Milliseconds;

// ---- nodes
constexpr Milliseconds beam{1000};                ///< wakes a node that listens frequently
constexpr Milliseconds staysAwake{10000};         ///< a sleeping node, after its last frame
constexpr Milliseconds answers{15};               ///< from a command to its report
constexpr std::uint32_t shortestWakeUp = 10;      ///< seconds
constexpr std::uint32_t longestWakeUp = 16777215; ///< seconds

// ---- the module's jobs
constexpr Milliseconds broadcast{25};        ///< also a frame that is to be acknowledged by nobody
constexpr Milliseconds modeStarts{20};       ///< to ready
constexpr Milliseconds modeStops{30};        ///< to done
constexpr Milliseconds nodeIntroduces{150};  ///< from found to its information
constexpr Milliseconds waitsForJoiner{5000}; ///< that was found and does not introduce itself
constexpr Milliseconds findsNeighbours{1000};
constexpr Milliseconds neighbourSearchStarts{60};
constexpr Milliseconds neighbourSearchFails{2000};
constexpr Milliseconds erases{500};              ///< what SetDefault takes
constexpr Milliseconds starts{300};              ///< from the reset to the started frame
constexpr Milliseconds copiesKibibyte{40};       ///< of other firmware, before it starts
constexpr Milliseconds loaderStarts{100};        ///< to its menu
constexpr Milliseconds loaderAsksAgain{1000};    ///< for what has not come
constexpr Milliseconds writesBlock{3};           ///< of 128 bytes
constexpr Milliseconds replacesFirmware{500};    ///< that its loader was given
constexpr Milliseconds restartsAfterErasing{50}; ///< the 700 and 800 series, once the host was told
constexpr Milliseconds assignsRoute{200};
constexpr Milliseconds joinsNetwork{1000};
constexpr Milliseconds updatesNetwork{300};

// ---- bounds
constexpr std::size_t failedNodes = 5; ///< that the module remembers

} // namespace zorv::modulesim::timing
