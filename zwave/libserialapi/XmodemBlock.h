// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"

#include <boost/crc.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

// XMODEM with CRC, by which a module's loader takes an image: blocks of 128 bytes, each of which is answered.

namespace zorv::serialapi {

namespace xmodem {

constexpr Byte startOfBlock = 0x01;
constexpr Byte endOfTransmission = 0x04;
constexpr Byte ack = 0x06;
constexpr Byte nak = 0x15;
constexpr Byte can = 0x18;
constexpr Byte withCrc = 'C'; ///< the receiver is there, and wants checksums of two bytes
constexpr Byte padding = 0xFF;
constexpr std::size_t dataSize = 128;
constexpr std::size_t blockSize = dataSize + 5; ///< with its start, its number twice, and the checksum

} // namespace xmodem

/// One block of an image; its number begins with 1 and goes on with 0 after 255.
struct XmodemBlock {
    Byte number = 0;
    Bytes data; ///< filled up to 128 bytes where it is shorter

    Bytes encode() const {
        constexpr std::size_t head = 3;
        Bytes block(xmodem::blockSize, xmodem::padding);
        block[0] = xmodem::startOfBlock;
        block[1] = number;
        block[2] = static_cast<Byte>(~number);
        std::copy_n(data.begin(), std::min(data.size(), xmodem::dataSize), block.begin() + head);
        auto const sum = checksum(block.data() + head);
        block[xmodem::blockSize - 2] = static_cast<Byte>(sum >> 8U);
        block[xmodem::blockSize - 1] = static_cast<Byte>(sum & 0xFFU);
        return block;
    }

    /// None where the block has another size, or is damaged.
    static std::optional<XmodemBlock> decode(Bytes const& block) {
        bool const isBlock = block.size() == xmodem::blockSize && block[0] == xmodem::startOfBlock &&
                             block[2] == static_cast<Byte>(~block[1]);
        if (!isBlock) { return std::nullopt; }
        XmodemBlock decoded{block[1], Bytes(block.begin() + 3, block.end() - 2)};
        if (decoded.encode() != block) { return std::nullopt; }
        return decoded;
    }

private:
    static std::uint16_t checksum(Byte const* data) {
        boost::crc_optimal<16, 0x1021, 0, 0, false, false> crc;
        crc.process_bytes(data, xmodem::dataSize);
        return crc.checksum();
    }
};

} // namespace zorv::serialapi
