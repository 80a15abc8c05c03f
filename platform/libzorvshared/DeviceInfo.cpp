// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/DeviceInfo.h"

#include "platform/libtransport/tables/ValueRecordImpl.h"
#include "transport/displayRow.h"

namespace zorv {

struct DeviceInfo::Wire {
    static constexpr auto name = "DeviceInfo";
    static constexpr auto members =
        std::make_tuple(member<&DeviceInfo::manufacturer_>("maker and product"),
                        member<&DeviceInfo::protocolInfo_>("what the device can do on the network"),
                        member<&DeviceInfo::isSlave_>("whether it is no controller"),
                        member<&DeviceInfo::isVirtual_>("whether a bridge controller plays it"));
};

template class ValueRecord<DeviceInfo>;

bool DeviceInfo::isListening() const noexcept { return (protocolInfo_.capability() & Capability::listening) != 0; }

bool DeviceInfo::isFrequentlyListening() const noexcept {
    return (protocolInfo_.security() & (Security::sensor250ms | Security::sensor1000ms)) != 0;
}

bool DeviceInfo::isRepeater() const noexcept {
    return isListening() && (protocolInfo_.capability() & Capability::routing) != 0;
}

void DeviceInfo::accumulateDisplay(StringVecVec& rows) const {
    manufacturer_.accumulateDisplay(rows);
    protocolInfo_.accumulateDisplay(rows);
    displayRow(rows, "Slave:", isSlave_);
    displayRow(rows, "Virtual:", isVirtual_);
    displayRow(rows, "Repeater:", isRepeater());
}

} // namespace zorv
