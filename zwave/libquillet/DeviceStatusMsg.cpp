// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/DeviceStatusMsg.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const DeviceStatusMsg::NAME("DeviceStatusMsg");
SerialRegistrar const DeviceStatusMsg::registrar("zorv::" + NAME, &DeviceStatusMsg::serialFactory);

struct DeviceStatusMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&DeviceStatusMsg::address_>("node that the status concerns"),
                        member<&DeviceStatusMsg::deviceNetworkStatus_>("whether the node can be reached"),
                        member<&DeviceStatusMsg::deviceStatus_>("how far the daemon is with the node"),
                        member<&DeviceStatusMsg::deviceLights_>("what the node's lights show"),
                        member<&DeviceStatusMsg::securityStatus_>("with which security the node was included"),
                        member<&DeviceStatusMsg::wakeStatus_>("whether the node sleeps"));
};

template class MessageOf<DeviceStatusMsg, Confirmable>;

DeviceStatusMsg::DeviceStatusMsg(ZwaveAddress const& address, DeviceNetworkStatus::Enum deviceNetworkStatus,
                                 DeviceStatus::Enum deviceStatus, DeviceLights::Enum deviceLights,
                                 SecurityStatus::Enum securityStatus, WakeStatus::Enum wakeStatus,
                                 MessageRole::Enum role)
    : address_(address),
      deviceNetworkStatus_(deviceNetworkStatus),
      deviceStatus_(deviceStatus),
      deviceLights_(deviceLights),
      securityStatus_(securityStatus),
      wakeStatus_(wakeStatus) {
    TMessage::role(role);
}

boost::shared_ptr<DeviceStatusMsg> DeviceStatusMsg::create(ZwaveAddress const& address, MessageRole::Enum role) {
    return create(address, {}, {}, {}, {}, {}, role);
}

boost::shared_ptr<DeviceStatusMsg>
DeviceStatusMsg::create(ZwaveAddress const& address, DeviceNetworkStatus::Enum deviceNetworkStatus,
                        DeviceStatus::Enum deviceStatus, DeviceLights::Enum deviceLights,
                        SecurityStatus::Enum securityStatus, WakeStatus::Enum wakeStatus, MessageRole::Enum role) {
    return boost::make_shared<DeviceStatusMsg>(address, deviceNetworkStatus, deviceStatus, deviceLights, securityStatus,
                                               wakeStatus, role);
}

boost::shared_ptr<DeviceStatusMsg>
DeviceStatusMsg::create(boost::shared_ptr<DeviceStatusMsg> const& request, ZwaveAddress const& address,
                        DeviceNetworkStatus::Enum deviceNetworkStatus, DeviceStatus::Enum deviceStatus,
                        DeviceLights::Enum deviceLights, SecurityStatus::Enum securityStatus,
                        WakeStatus::Enum wakeStatus, MessageRole::Enum role) {
    auto response = respondWithNew<DeviceStatusMsg>(requireMessage(request), address, deviceNetworkStatus, deviceStatus,
                                                    deviceLights, securityStatus, wakeStatus, role);
    response->result(ZResult::success);
    return response;
}

boost::shared_ptr<DeviceStatusMsg> DeviceStatusMsg::create(boost::shared_ptr<DeviceStatusMsg> const& request,
                                                           ZResult::Enum result) {
    // A message of its own, not a copy: of the request's header only the role is taken over.
    auto const& asked = requireMessage(request);
    auto response =
        respondWithNew<DeviceStatusMsg>(asked, asked.address_, asked.deviceNetworkStatus_, asked.deviceStatus_,
                                        asked.deviceLights_, asked.securityStatus_, asked.wakeStatus_, asked.role());
    response->result(result);
    return response;
}

void DeviceStatusMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "DeviceStatusMsg:");
    displayRow(rows, "Device address:", address_.address());
    displayRow(rows, "Device network status:", deviceNetworkStatus_);
    displayRow(rows, "Device status:", deviceStatus_);
    displayRow(rows, "Device lights:", deviceLights_);
    displayRow(rows, "Security status:", securityStatus_);
    displayRow(rows, "Wake status:", wakeStatus_);
}

} // namespace zorv
