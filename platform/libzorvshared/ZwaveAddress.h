// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/ValueRecord.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace zorv {

/// Identifies a Z-Wave network.
using HomeId = std::uint32_t;

/// A node of a Z-Wave network. Node ids 1 to 232 are nodes, 255 stands for all of them.
class ZORV_EXPORT ZwaveAddress : public ValueRecord<ZwaveAddress> {
public:
    /// The address of no node: home id 0, node id 0.
    static ZwaveAddress const INVALID_ADDRESS;

    ZwaveAddress() noexcept : ZwaveAddress(0, 0) {}
    ZwaveAddress(HomeId homeId, unsigned char nodeId) noexcept : homeId_(homeId), nodeId_(nodeId) {}

    HomeId homeId() const noexcept { return homeId_; }
    unsigned char nodeId() const noexcept { return nodeId_; }

    /// Eight hex digits of the home id, a colon and the node id in decimal, such as "c0ffee01:5".
    std::string address() const;

    std::size_t hash() const noexcept;

    friend bool operator==(ZwaveAddress const& a, ZwaveAddress const& b) noexcept {
        return a.homeId_ == b.homeId_ && a.nodeId_ == b.nodeId_;
    }
    friend bool operator!=(ZwaveAddress const& a, ZwaveAddress const& b) noexcept { return !(a == b); }
    friend bool operator<(ZwaveAddress const& a, ZwaveAddress const& b) noexcept {
        return a.homeId_ != b.homeId_ ? a.homeId_ < b.homeId_ : a.nodeId_ < b.nodeId_;
    }
    friend std::size_t hash_value(ZwaveAddress const& address) noexcept { return address.hash(); }

private:
    friend ValueRecord;
    struct Wire;

    HomeId homeId_;
    unsigned char nodeId_;
};

extern template class ValueRecord<ZwaveAddress>;

} // namespace zorv
