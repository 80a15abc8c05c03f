// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"
#include "zwave/libserialapi/Limits.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <random>
#include <utility>

namespace zorv::serialapi {

/// One direction of a line that loses, spoils, doubles and delays bytes.
struct FaultyWire {
    struct Piece {
        TimePoint arrival;
        Bytes bytes;
    };
    std::deque<Piece> pieces;
    TimePoint free{}; ///< nothing overtakes on a serial line

    /// At most one byte of a piece is spoilt: a checksum of one byte does not see every two.
    void carry(Bytes bytes, TimePoint now, std::mt19937& random) {
        if (bytes.empty()) { return; }
        auto const at = static_cast<std::ptrdiff_t>(random() % bytes.size());
        auto delay = Milliseconds(2);
        switch (random() % 40) {
        case 0: bytes.erase(bytes.begin() + at); break;
        case 1: bytes[static_cast<std::size_t>(at)] ^= static_cast<Byte>(1U << (random() % 8)); break;
        case 2: bytes.insert(bytes.begin() + at, bytes[static_cast<std::size_t>(at)]); break;
        case 3: delay = Milliseconds(random() % 2500); break;
        default: break;
        }
        free = std::max(free, now) + delay;
        pieces.push_back({free, std::move(bytes)});
    }
};

} // namespace zorv::serialapi
