// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/ZwaveAddress.h"

#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/tables/ValueRecordImpl.h"

#include <boost/container_hash/hash.hpp>

namespace zorv {

struct ZwaveAddress::Wire {
    static constexpr auto name = "ZwaveAddress";
    static constexpr auto members =
        std::make_tuple(member<&ZwaveAddress::homeId_>("home id of the network"),
                        member<&ZwaveAddress::nodeId_>("node id; 1 to 232 are nodes, 255 stands for all of them"));
};

template class ValueRecord<ZwaveAddress>;

ZwaveAddress const ZwaveAddress::INVALID_ADDRESS;

std::string ZwaveAddress::address() const { return hexDigits(homeId_, 8) + ':' + std::to_string(nodeId_); }

std::size_t ZwaveAddress::hash() const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, homeId_);
    boost::hash_combine(seed, nodeId_);
    return seed;
}

} // namespace zorv
