// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libmodulesim/Fault.h"
#include "zwave/libserialapi/Limits.h"
#include "zwave/libserialapi/functions/Fields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zorv::modulesim {

using serialapi::Byte;
using serialapi::Bytes;
using serialapi::Milliseconds;
using serialapi::NodeId;
using serialapi::TimePoint;

/// Decides which functions the module has, which of its memory's two faces it shows, and what it tells of a transmission.
enum class Generation { series500, series700, series800 };

enum class NodeKind {
    listening,
    frequentlyListening, ///< is woken by a beam of a second
    sleeping             ///< is heard of when it wakes up, and can be reached then
};

/// Who made something, and what it is.
struct ProductIds {
    std::uint16_t manufacturer = 0x023F;
    std::uint16_t productType = 1;
    std::uint16_t productId = 1;
};

constexpr std::array<Byte, 4> classesOfASwitch{0x25, 0x72, 0x85, 0x86};

struct NodeDescription {
    NodeId id = 0; ///< 1 to 232; of no meaning for a node that has yet to join
    NodeKind kind = NodeKind::listening;
    bool dead = false;        ///< never acknowledges
    Milliseconds latency{20}; ///< of a round trip
    Milliseconds jitter{0};   ///< the round trip takes up to so much less or more
    double loss = 0;          ///< share of frames that are not acknowledged, 0 to 1

    Byte basic = 4; ///< routing end node
    Byte generic = 0x10;
    Byte specific = 0x01;
    Bytes commandClasses{classesOfASwitch.begin(), classesOfASwitch.end()}; ///< that it supports, beside Basic
    Byte classVersion = 1; ///< of each that `classVersions` does not name
    std::map<Byte, Byte> classVersions = {};
    std::vector<NodeId> neighbours = {}; ///< none: whoever listens

    ProductIds product = {};
    Byte applicationVersion = 1;
    Byte applicationSubVersion = 0;
    std::uint32_t wakeUpSeconds = 3600; ///< of a sleeping node, until it is told otherwise
    Byte batteryLevel = 100;
};

/// A node that is about to be included or excluded: somebody will press its button.
struct Joiner {
    NodeDescription node;
    Milliseconds after{500}; ///< from when the module listens for it
};
struct Leaver {
    NodeId node = 0; ///< 0: one that belongs to another network
    Milliseconds after{500};
};

/// Another network, whose controller takes the module in when that is in learn mode.
struct OtherNetwork {
    std::uint32_t homeId = 0;
    NodeId node = 2; ///< what the module becomes there
    Milliseconds after{500};
};

/// A module and its network. The same description gives the same bytes at the same times.
struct SimulatedNetwork {
    std::uint32_t homeId = 0xC0FFEE01;
    NodeId controller = 1; ///< the module's own node id
    std::uint32_t seed = 1;

    Generation generation = Generation::series700;
    std::string version = {};        ///< "Z-Wave 7.18"; empty: as befits the generation
    std::optional<Byte> libraryType; ///< none: as befits the generation
    ProductIds product = {};
    Byte applicationVersion = 1; ///< of the serial interface
    Byte applicationRevision = 0;
    std::vector<Byte> withoutFunctions; ///< that the module lacks, though its generation has them
    std::size_t nvmSize = 0;            ///< bytes; 0: as befits the generation
    Bytes nvmImage = {};                ///< what the memory holds at the start; none: as it came from the factory
    bool isSis = true;                  ///< the module assigns the ids, and is the update controller
    std::optional<NodeId> secondaryTo;  ///< the primary controller, where the module is not that

    Milliseconds retransmission{300}; ///< how long the module tries to reach a node that does not acknowledge
    std::vector<NodeDescription> nodes;
    std::vector<Joiner> joining; ///< in this order, one for each inclusion
    std::vector<Leaver> leaving; ///< in this order, one for each exclusion
    std::optional<OtherNetwork> otherNetwork;
    std::vector<Fault> faults;
};

} // namespace zorv::modulesim
