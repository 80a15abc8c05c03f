// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/Frame.h"

#include "zwave/libserialapi/Limits.h"

#include <stdexcept>

namespace zorv::serialapi {

Byte frameChecksum(Byte const* begin, std::size_t count) noexcept {
    Byte sum = 0xFF;
    for (std::size_t i = 0; i < count; ++i) { sum = static_cast<Byte>(sum ^ begin[i]); }
    return sum;
}

Bytes Frame::encode() const {
    if (parameters.size() > largestParameters) { throw std::length_error("frame with too many parameters"); }
    Bytes bytes;
    bytes.reserve(parameters.size() + limits::smallestLength + 2);
    bytes = {control::startOfFrame, static_cast<Byte>(parameters.size() + limits::smallestLength),
             static_cast<Byte>(type), function};
    bytes.insert(bytes.end(), parameters.begin(), parameters.end());
    bytes.push_back(frameChecksum(bytes.data() + 1, bytes.size() - 1));
    return bytes;
}

std::optional<Frame> Frame::decode(Bytes const& bytes, std::string& why) {
    auto const fail = [&why](char const* reason) {
        why = reason;
        return std::nullopt;
    };
    if (bytes.empty() || bytes[0] != control::startOfFrame) { return fail("does not begin with 01"); }
    if (bytes.size() < limits::smallestLength + 2) { return fail("too short for a frame"); }
    if (bytes[1] < limits::smallestLength) { return fail("length byte below 3"); }
    if (bytes.size() != bytes[1] + std::size_t{2}) { return fail("length byte does not fit the number of bytes"); }
    if (bytes[2] > static_cast<Byte>(FrameType::response)) { return fail("reserved frame type"); }
    if (bytes.back() != frameChecksum(bytes.data() + 1, bytes.size() - 2)) { return fail("wrong checksum"); }
    return Frame{static_cast<FrameType>(bytes[2]), bytes[3], Bytes(bytes.begin() + 4, bytes.end() - 1)};
}

} // namespace zorv::serialapi
