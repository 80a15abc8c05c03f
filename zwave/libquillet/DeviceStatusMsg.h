// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/DeviceLights.h"
#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/WakeStatus.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

// Larger than most messages: its five statuses come with the constructor and with two of the create forms.

/// The status of one node. A client asks for it with the node's address; the daemon answers, and reports changes on its
/// own.
class QUILLET_EXPORT DeviceStatusMsg : public MessageOf<DeviceStatusMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    DeviceStatusMsg() = default;
    DeviceStatusMsg(ZwaveAddress const& address, DeviceNetworkStatus::Enum deviceNetworkStatus,
                    DeviceStatus::Enum deviceStatus, DeviceLights::Enum deviceLights,
                    SecurityStatus::Enum securityStatus, WakeStatus::Enum wakeStatus, MessageRole::Enum role);

    /// A client's request: all five statuses are 0, that of the lights too.
    static boost::shared_ptr<DeviceStatusMsg> create(ZwaveAddress const& address, MessageRole::Enum role);
    /// The daemon's own report.
    static boost::shared_ptr<DeviceStatusMsg> create(ZwaveAddress const& address,
                                                     DeviceNetworkStatus::Enum deviceNetworkStatus,
                                                     DeviceStatus::Enum deviceStatus, DeviceLights::Enum deviceLights,
                                                     SecurityStatus::Enum securityStatus, WakeStatus::Enum wakeStatus,
                                                     MessageRole::Enum role);
    /// The answer with the statuses filled in; its result is "success".
    static boost::shared_ptr<DeviceStatusMsg> create(boost::shared_ptr<DeviceStatusMsg> const& request,
                                                     ZwaveAddress const& address,
                                                     DeviceNetworkStatus::Enum deviceNetworkStatus,
                                                     DeviceStatus::Enum deviceStatus, DeviceLights::Enum deviceLights,
                                                     SecurityStatus::Enum securityStatus, WakeStatus::Enum wakeStatus,
                                                     MessageRole::Enum role);
    /// The answer that repeats the request.
    static boost::shared_ptr<DeviceStatusMsg> create(boost::shared_ptr<DeviceStatusMsg> const& request,
                                                     ZResult::Enum result);

    ZwaveAddress const& address() const noexcept { return address_; }
    DeviceNetworkStatus::Enum deviceNetworkStatus() const noexcept { return deviceNetworkStatus_; }
    DeviceStatus::Enum deviceStatus() const noexcept { return deviceStatus_; }
    DeviceLights::Enum deviceLights() const noexcept { return deviceLights_; }
    SecurityStatus::Enum securityStatus() const noexcept { return securityStatus_; }
    WakeStatus::Enum wakeStatus() const noexcept { return wakeStatus_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    ZwaveAddress address_;
    DeviceNetworkStatus::Enum deviceNetworkStatus_ = DeviceNetworkStatus::unknown;
    DeviceStatus::Enum deviceStatus_ = DeviceStatus::unknown;
    DeviceLights::Enum deviceLights_ = DeviceLights::unknown; // 4, not 0
    SecurityStatus::Enum securityStatus_ = SecurityStatus::unknown;
    WakeStatus::Enum wakeStatus_ = WakeStatus::unknown;
};

extern template class MessageOf<DeviceStatusMsg, Confirmable>;

} // namespace zorv
