// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/Manufacturer.h"
#include "platform/libzorvshared/NodeProtocolInfo.h"

namespace zorv {

/// What a device is: its maker, what it can do on the network, and which part it plays there.
class ZORV_EXPORT DeviceInfo : public ValueRecord<DeviceInfo>, public CliViewer {
public:
    DeviceInfo() = default;
    DeviceInfo(Manufacturer const& manufacturer, NodeProtocolInfo const& protocolInfo, bool isSlave, bool isVirtual)
        : manufacturer_(manufacturer), protocolInfo_(protocolInfo), isSlave_(isSlave), isVirtual_(isVirtual) {}

    Manufacturer const& manufacturer() const noexcept { return manufacturer_; }
    NodeProtocolInfo const& protocolInfo() const noexcept { return protocolInfo_; }
    bool isSlave() const noexcept { return isSlave_; }
    bool isVirtual() const noexcept { return isVirtual_; }

    /// Whether the device always receives and needs no beam to.
    bool isListening() const noexcept;

    /// Whether the device sleeps, but listens for a beam several times or once a second.
    bool isFrequentlyListening() const noexcept;

    /// Whether the device forwards other nodes' frames: it routes, and it always receives.
    bool isRepeater() const noexcept;

    void manufacturer(Manufacturer const& manufacturer) { manufacturer_ = manufacturer; }

    /// Appends the members' rows, then the flags.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend ValueRecord;
    struct Wire;

    Manufacturer manufacturer_;
    NodeProtocolInfo protocolInfo_;
    bool isSlave_ = false;
    bool isVirtual_ = false;
};

extern template class ValueRecord<DeviceInfo>;

} // namespace zorv
