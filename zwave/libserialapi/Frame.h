// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Bytes.h"

#include <cstddef>
#include <optional>
#include <string>

namespace zorv::serialapi {

/// The bytes that stand for themselves on the line.
namespace control {

constexpr Byte startOfFrame = 0x01;
constexpr Byte ack = 0x06;
constexpr Byte nak = 0x15;
constexpr Byte can = 0x18;

} // namespace control

enum class FrameType : Byte {
    request = 0, ///< callbacks and unsolicited frames of the module too
    response = 1
};

/// The checksum over what stands between SOF and it.
ZORV_EXPORT Byte frameChecksum(Byte const* begin, std::size_t count) noexcept;

/// One data frame: SOF, LEN, type, function, parameters, checksum.
struct ZORV_EXPORT Frame {
    static constexpr std::size_t largestParameters = 252; ///< what LEN leaves for them

    FrameType type = FrameType::request;
    Byte function = 0;
    Bytes parameters;

    /// The bytes on the line; std::length_error for more parameters than LEN can count.
    Bytes encode() const;

    /// The frame that `bytes` are, to the last byte; on failure nothing, and `why` says what is wrong.
    static std::optional<Frame> decode(Bytes const& bytes, std::string& why);

    friend bool operator==(Frame const& a, Frame const& b) {
        return a.type == b.type && a.function == b.function && a.parameters == b.parameters;
    }
    friend bool operator!=(Frame const& a, Frame const& b) { return !(a == b); }
};

} // namespace zorv::serialapi
