// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/Device.h"

#include "platform/libtransport/tables/FramedRecordImpl.h"
#include "transport/displayRow.h"

namespace zorv {

std::string const Device::NAME("Device");
SerialRegistrar const Device::registrar("zorv::" + NAME, &Device::serialFactory);

struct Device::Wire {
    static constexpr auto members =
        std::make_tuple(member<&Device::address_>("the node"), //
                        member<&Device::deviceInfo_>("what the node is"),
                        member<&Device::deviceNetworkStatus_>("whether the node can be reached"),
                        member<&Device::deviceStatus_>("how far the daemon is with the node"),
                        member<&Device::deviceLights_>("what the node's lights show"),
                        member<&Device::securityStatus_>("with which security the node was included"),
                        member<&Device::wakeStatus_>("whether a sleeping node is awake"),
                        member<&Device::commandClasses_>("what the node understands"),
                        member<&Device::configErrors_>("number of failed steps of the interview"));
};

template class FramedRecord<Device>;

void Device::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Address:", address_.address());
    deviceInfo_.accumulateDisplay(rows);
    displayRow(rows, "Device network status:", deviceNetworkStatus_);
    displayRow(rows, "Device status:", deviceStatus_);
    displayRow(rows, "Device lights:", deviceLights_);
    displayRow(rows, "Security status:", securityStatus_);
    displayRow(rows, "Wake status:", wakeStatus_);
    displayRow(rows, "Command classes:", commandClasses_.size());
    displayRow(rows, "Configuration errors:", configErrors_);
}

} // namespace zorv
