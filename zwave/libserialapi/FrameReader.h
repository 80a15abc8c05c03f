// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Frame.h"
#include "zwave/libserialapi/Limits.h"

#include <cstddef>
#include <optional>

namespace zorv::serialapi {

/// How long one end of the line waits for the rest of a frame, and how much of it there may be.
struct FrameTiming {
    Milliseconds whole;        ///< from SOF to the checksum; zero: as long as it takes
    Milliseconds betweenBytes; ///< from each byte to the next; zero: as long as it takes
    std::size_t largest;       ///< bytes from SOF to the checksum

    static constexpr FrameTiming host() { return {limits::frameTime, Milliseconds::zero(), limits::largestHostFrame}; }
    static constexpr FrameTiming module() {
        return {Milliseconds::zero(), limits::byteTime, limits::largestModuleFrame};
    }
};

/// Finds frames in what the line carries.
///
/// Outside a frame every byte that starts nothing is skipped, which is how both ends get back in step. A frame that takes
/// too long, has an impossible length or a reserved type is given up without a word.
class ZORV_EXPORT FrameReader {
public:
    enum class Kind { data, badChecksum, ack, nak, can };

    struct Item {
        Kind kind = Kind::data;
        Frame frame = {}; ///< of `data`
    };

    explicit FrameReader(FrameTiming timing = FrameTiming::host()) noexcept : timing_(timing) {}

    /// Takes one byte; gives what it completes.
    std::optional<Item> push(Byte byte, TimePoint now);

    /// Gives up the frame whose time is over; true where there was one.
    bool tick(TimePoint now) noexcept;

    /// When tick() would give up the frame that is being read.
    std::optional<TimePoint> deadline() const noexcept { return deadline_; }

    bool isInsideFrame() const noexcept { return !bytes_.empty(); }

    void timing(FrameTiming timing) noexcept { timing_ = timing; }
    FrameTiming const& timing() const noexcept { return timing_; }

    std::size_t skippedBytes() const noexcept { return skipped_; } ///< that were no part of a frame that was read
    std::size_t timeouts() const noexcept { return timeouts_; }

    /// Forgets a frame that has begun.
    void reset() noexcept;

private:
    std::optional<Item> start(Byte byte, TimePoint now);
    std::optional<Item> finish();
    bool isImpossible() const noexcept;
    void giveUp() noexcept;

    FrameTiming timing_;
    Bytes bytes_; ///< of the frame that has begun, SOF first
    std::optional<TimePoint> deadline_;
    std::size_t skipped_ = 0;
    std::size_t timeouts_ = 0;
};

} // namespace zorv::serialapi
