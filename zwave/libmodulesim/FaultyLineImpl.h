// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/Fault.h"
#include "zwave/libmodulesim/SimulatedNetwork.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <random>
#include <vector>

namespace zorv::modulesim {

class Core;

/// Cuts what travels one way into data frames and single bytes. A frame that is not complete is kept for its rest.
class FrameCutter {
public:
    /// What is complete now, in order.
    std::vector<Bytes> cut(Bytes const& bytes, TimePoint now);

    /// An unfinished frame whose rest is not coming; empty where there is none.
    Bytes takeLate(TimePoint now);
    void forget() noexcept { rest_.clear(); }
    std::optional<TimePoint> deadline() const noexcept;

private:
    Bytes rest_;
    TimePoint lastByte_{};
};

/// The line between a host and the module, on which things go wrong as the module's faults say.
class FaultyLine {
public:
    explicit FaultyLine(Core& core);

    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);
    Bytes takeOutput();
    std::optional<TimePoint> deadline() const noexcept;

    bool isThere() const noexcept { return !awayUntil_; }

private:
    struct Piece {
        Bytes bytes;
        TimePoint due;
        bool isAckLost = false;
    };

    void take(Bytes piece, TimePoint now);
    bool strikeModule(serialapi::Byte function, TimePoint now);
    void strike(Fault const& fault, TimePoint now);
    void spoil(Bytes& frame);
    void deliver(TimePoint now);
    void collect(TimePoint now);
    void goOn(TimePoint now);

    Core& core_;
    std::mt19937 random_;
    FrameCutter fromHost_;
    FrameCutter fromModule_;
    std::deque<Piece> toModule_; ///< what follows a late piece waits for it
    std::deque<Piece> toHost_;
    Bytes output_;
    std::size_t acksToLose_ = 0;
    std::optional<TimePoint> hungUntil_;
    std::optional<TimePoint> awayUntil_;
};

} // namespace zorv::modulesim
