// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/makeControlCommand.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zorv::daemon {

namespace {

MessageRole::Enum roleOf(serialapi::Side sender, serialapi::Frame const& frame) {
    if (sender == serialapi::Side::host) { return MessageRole::request; }
    return frame.type == serialapi::FrameType::response ? MessageRole::response : MessageRole::report;
}

} // namespace

boost::shared_ptr<ControlCommandMsg> makeControlCommand(serialapi::Side sender, serialapi::Frame const& frame) {
    constexpr std::size_t head = 2;
    std::vector<unsigned char> data(head + frame.parameters.size());
    data[0] = static_cast<unsigned char>(frame.type);
    data[1] = frame.function;
    std::copy(frame.parameters.begin(), frame.parameters.end(), data.begin() + head);
    return boost::make_shared<ControlCommandMsg>(data, roleOf(sender, frame));
}

} // namespace zorv::daemon
