// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"
#include "zwave/libserialapi/Limits.h"

#include <cstdint>
#include <optional>

namespace zorv::modulesim {

/// Something that goes wrong on purpose: what, when, and how often.
///
/// It counts occasions: frames of its direction, callbacks, reads of the memory, joiners, blocks of firmware. From `after` on, `skip` of them
/// pass, and `times` are hit. A module that hangs, restarts or vanishes does so at `after`, or, where a function or
/// `skip` is told, at a frame of the host.
struct Fault {
    enum class Kind {
        loseFrame,        ///< a data frame does not arrive
        corruptFrame,     ///< one bit behind its first byte is wrong
        delayFrame,       ///< it arrives late, and so does all that follows
        collide,          ///< the module throws a frame of the host away and answers CAN
        withholdAck,      ///< the module takes a frame of the host, but its ACK is lost
        withholdCallback, ///< the module does not send a callback, or an unsolicited frame
        hang,             ///< the module takes nothing and says nothing
        restart,          ///< the module restarts by itself
        vanish,           ///< the port is gone, and the module starts anew when it comes back
        stopMemory,       ///< the module's memory cannot be read from `percent` of it on
        killJoiner,       ///< a node falls silent while it is included
        refuseImage,      ///< the module takes good firmware for bad
        loseBlock,        ///< a block of firmware does not arrive at the module's loader
        refuseBlock,      ///< the loader takes a block for damaged
        stopLoader        ///< the loader says nothing more from a block on, until the host breaks off
    };
    enum class Direction { toModule, toHost };

    Kind kind = Kind::loseFrame;
    Direction direction = Direction::toModule;    ///< of frames that are lost, corrupted or delayed
    std::optional<serialapi::Byte> function;      ///< none: any
    serialapi::Milliseconds after{0};             ///< from the module's start
    std::uint32_t skip = 0;                       ///< occasions
    std::uint32_t times = 1;                      ///< occasions
    double share = 1;                             ///< of the occasions, by seed, 0 to 1
    std::optional<serialapi::Milliseconds> lasts; ///< a delay, a hang, an absence; none: for ever
    std::uint32_t percent = 0;                    ///< of the memory
};

} // namespace zorv::modulesim
