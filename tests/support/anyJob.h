// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libcontroller/jobs/ControllerShift.h"
#include "zwave/libcontroller/jobs/Exclusion.h"
#include "zwave/libcontroller/jobs/FactoryReset.h"
#include "zwave/libcontroller/jobs/FailedNode.h"
#include "zwave/libcontroller/jobs/FirmwareUpdate.h"
#include "zwave/libcontroller/jobs/Inclusion.h"
#include "zwave/libcontroller/jobs/Interview.h"
#include "zwave/libcontroller/jobs/LearnMode.h"
#include "zwave/libcontroller/jobs/NeighborUpdate.h"
#include "zwave/libcontroller/jobs/NetworkUpdate.h"
#include "zwave/libcontroller/jobs/NodeInformationFrame.h"
#include "zwave/libcontroller/jobs/NodeInformationRequest.h"
#include "zwave/libcontroller/jobs/NvmClear.h"
#include "zwave/libcontroller/jobs/NvmRestore.h"
#include "zwave/libcontroller/jobs/NvmSave.h"
#include "zwave/libcontroller/jobs/RawCall.h"
#include "zwave/libcontroller/jobs/Transmission.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zorv {

constexpr unsigned int jobKinds = 18;

/// A job of any kind, with any parameters: the bytes that `next` gives, the kind first.
inline std::shared_ptr<controller::Job> anyJob(std::function<serialapi::Byte()> const& next) {
    using namespace controller;
    auto const kind = next() % jobKinds;
    Milliseconds const time(next() * 1000);
    auto const bytes = [&next] {
        Bytes some(next() % 4 == 0 ? next() : next() % 16U); // all that a frame holds, and more, or a few
        for (auto& byte : some) { byte = next(); }
        return some;
    };
    switch (kind) {
    case 0: return std::make_shared<Inclusion>(time, Inclusion::Progress(), next() % 2 != 0);
    case 1: return std::make_shared<Exclusion>(time, Exclusion::Progress(), next() % 2 != 0);
    case 2: return std::make_shared<ControllerShift>(time);
    case 3: return std::make_shared<FactoryReset>(time);
    case 4: return std::make_shared<FailedNode>(FailedNode::Action::remove, next(), next() % 2 != 0, time);
    case 5: return std::make_shared<FailedNode>(FailedNode::Action::replace, next(), next() % 2 != 0, time);
    case 6: return std::make_shared<FirmwareUpdate>(Bytes(next() * std::size_t{16}, 0x5A), time);
    case 7: return std::make_shared<Interview>(next(), next() % 2 != 0);
    case 8: return std::make_shared<LearnModeJob>(static_cast<LearnMode::Enum>(next() % 4), time);
    case 9: return std::make_shared<NeighborUpdate>(next(), time);
    case 10: return std::make_shared<NetworkUpdate>(time);
    case 11: return std::make_shared<NodeInformationFrame>(next(), Byte{0x25}, time);
    case 12: return std::make_shared<NodeInformationRequest>(next(), next() % 4, time);
    case 13: return std::make_shared<NvmSave>(time);
    case 14: return std::make_shared<NvmRestore>(Bytes(next() * std::size_t{64}, 0xA5), time);
    case 15: return std::make_shared<NvmClear>(time);
    case 16: {
        auto const function = next();
        return std::make_shared<RawCall>(function, bytes(), RawCall::Heard([](serialapi::Frame const&) {}));
    }
    default: {
        Transmission::Order order;
        for (auto count = 1 + next() % 3; count > 0; --count) { order.nodes.push_back(next()); }
        if (next() % 16 == 0) { order.nodes.resize(next() + std::size_t{1}, order.nodes.front()); }
        order.asleep = static_cast<Transmission::Asleep>(next() % 3);
        order.priority = next() % 4;
        order.data = bytes();
        order.time = time;
        return std::make_shared<Transmission>(std::move(order));
    }
    }
}

} // namespace zorv
