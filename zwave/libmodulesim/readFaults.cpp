// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/readFaultsImpl.h"

namespace zorv::modulesim {

namespace {

using Kind = Fault::Kind;
using Direction = Fault::Direction;

constexpr std::uint32_t longest = 86400000; // milliseconds: a day
constexpr std::uint32_t most = 1000000;     // occasions
constexpr std::uint32_t whole = 100;        // percent

bool isOfFrames(Kind kind) { return kind == Kind::loseFrame || kind == Kind::corruptFrame || kind == Kind::delayFrame; }

bool lasts(Kind kind) { return kind == Kind::delayFrame || kind == Kind::hang || kind == Kind::vanish; }

bool hasFunction(Kind kind) {
    switch (kind) {
    case Kind::stopMemory:
    case Kind::killJoiner:
    case Kind::refuseImage:
    case Kind::loseBlock:
    case Kind::refuseBlock:
    case Kind::stopLoader: return false;
    case Kind::loseFrame:
    case Kind::corruptFrame:
    case Kind::delayFrame:
    case Kind::collide:
    case Kind::withholdAck:
    case Kind::withholdCallback:
    case Kind::hang:
    case Kind::restart:
    case Kind::vanish: return true;
    }
    return true;
}

/// A member that a kind does not have is not known there.
Fault readFault(ObjectReader reader) {
    Fault fault;
    reader.require("what");
    reader.choice<Kind>("what",
                        {{"frameLost", Kind::loseFrame},
                         {"frameCorrupted", Kind::corruptFrame},
                         {"frameDelayed", Kind::delayFrame},
                         {"collision", Kind::collide},
                         {"noAck", Kind::withholdAck},
                         {"noCallback", Kind::withholdCallback},
                         {"hang", Kind::hang},
                         {"restart", Kind::restart},
                         {"vanish", Kind::vanish},
                         {"memoryStops", Kind::stopMemory},
                         {"joinerDies", Kind::killJoiner},
                         {"firmwareRefused", Kind::refuseImage},
                         {"blockLost", Kind::loseBlock},
                         {"blockRefused", Kind::refuseBlock},
                         {"loaderStops", Kind::stopLoader}},
                        fault.kind);
    if (isOfFrames(fault.kind)) {
        reader.choice<Direction>("direction", {{"toModule", Direction::toModule}, {"toHost", Direction::toHost}},
                                 fault.direction);
    }
    if (hasFunction(fault.kind) && reader.find("function") != nullptr) {
        reader.hex("function", fault.function.emplace());
    }
    reader.time("afterMs", longest, fault.after);
    reader.number("skip", 0, most, fault.skip);
    reader.number("times", 1, most, fault.times);
    reader.share("share", fault.share);
    if (lasts(fault.kind) && (fault.kind == Kind::delayFrame || reader.find("lastsMs") != nullptr)) {
        reader.require("lastsMs");
        reader.time("lastsMs", longest, fault.lasts.emplace(0));
    }
    if (fault.kind == Kind::stopMemory) { reader.number("percent", 0, whole, fault.percent); }
    reader.refuseOthers();
    return fault;
}

} // namespace

void readFaults(ObjectReader& network, std::vector<Fault>& faults) {
    network.each("faults", [&](Json::Value const& entry, std::string const& path) {
        faults.push_back(readFault(network.object(entry, path)));
    });
}

} // namespace zorv::modulesim
