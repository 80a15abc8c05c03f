#include "platform/libzorvshared/Device.h"

#include "platform/libtransport/FramedOfImpl.h"
#include "transport/displayRow.h"

namespace zorv {

std::string const Device::NAME("Device");
SerialRegistrar const Device::registrar("zorv::" + NAME, &Device::serialFactory);

struct Device::Wire {
    static constexpr auto members = std::make_tuple(
        member("address_", &Device::address_, "the node"), //
        member("deviceInfo_", &Device::deviceInfo_, "what the node is"),
        member("deviceNetworkStatus_", &Device::deviceNetworkStatus_, "whether the node can be reached"),
        member("deviceStatus_", &Device::deviceStatus_, "how far the daemon is with the node"),
        member("deviceLights_", &Device::deviceLights_, "what the node's lights show"),
        member("securityStatus_", &Device::securityStatus_, "with which security the node was included"),
        member("wakeStatus_", &Device::wakeStatus_, "whether a sleeping node is awake"),
        member("commandClasses_", &Device::commandClasses_, "what the node understands"),
        member("configErrors_", &Device::configErrors_, "number of failed steps of the interview"));
};

template class FramedOf<Device>;

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
