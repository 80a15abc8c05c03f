// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/FramedRecord.h"
#include "platform/libzorvshared/CommandClassInfo.h"
#include "platform/libzorvshared/CommandClassType.h"
#include "platform/libzorvshared/DeviceInfo.h"
#include "platform/libzorvshared/DeviceLights.h"
#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/WakeStatus.h"
#include "platform/libzorvshared/ZwaveAddress.h"

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include <map>
#include <string>

namespace zorv {

/// The command classes of a node, in the order of their numbers.
using CommandClassMap = std::map<CommandClassType::Enum, CommandClassInfo>;

/// One node of the network, as the daemon knows it.
class ZORV_EXPORT Device : public FramedRecord<Device>,
                           public CliViewer,
                           public boost::enable_shared_from_this<Device> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    Device() = default;
    Device(ZwaveAddress const& address, DeviceInfo const& deviceInfo) : address_(address), deviceInfo_(deviceInfo) {}

    ZwaveAddress const& address() const noexcept { return address_; }
    DeviceInfo const& deviceInfo() const noexcept { return deviceInfo_; }
    DeviceNetworkStatus::Enum deviceNetworkStatus() const noexcept { return deviceNetworkStatus_; }
    DeviceStatus::Enum deviceStatus() const noexcept { return deviceStatus_; }
    DeviceLights::Enum deviceLights() const noexcept { return deviceLights_; }
    SecurityStatus::Enum securityStatus() const noexcept { return securityStatus_; }
    WakeStatus::Enum wakeStatus() const noexcept { return wakeStatus_; }
    CommandClassMap const& commandClasses() const noexcept { return commandClasses_; }

    /// How many steps of the node's interview have failed.
    int configErrors() const noexcept { return configErrors_; }

    void address(ZwaveAddress const& address) noexcept { address_ = address; }
    void deviceInfo(DeviceInfo const& deviceInfo) { deviceInfo_ = deviceInfo; }
    void deviceNetworkStatus(DeviceNetworkStatus::Enum status) noexcept { deviceNetworkStatus_ = status; }
    void deviceStatus(DeviceStatus::Enum status) noexcept { deviceStatus_ = status; }
    void deviceLights(DeviceLights::Enum lights) noexcept { deviceLights_ = lights; }
    void securityStatus(SecurityStatus::Enum status) noexcept { securityStatus_ = status; }
    void wakeStatus(WakeStatus::Enum status) noexcept { wakeStatus_ = status; }
    void configErrors(int configErrors) noexcept { configErrors_ = configErrors; }

    /// Adds a command class, or replaces what is known of it.
    void commandClass(CommandClassType::Enum type, CommandClassInfo const& info) { commandClasses_[type] = info; }

    bool isListening() const noexcept { return deviceInfo_.isListening(); }
    bool isFrequentlyListening() const noexcept { return deviceInfo_.isFrequentlyListening(); }

    /// Whether the node can only be reached after it has woken up by itself.
    bool isSleeping() const noexcept { return !isListening() && !isFrequentlyListening(); }

    /// Appends all that is known of the node as rows of a label and a value; of its command classes, their number.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend FramedRecord;
    struct Wire;

    ZwaveAddress address_;
    DeviceInfo deviceInfo_;
    DeviceNetworkStatus::Enum deviceNetworkStatus_ = DeviceNetworkStatus::unknown;
    DeviceStatus::Enum deviceStatus_ = DeviceStatus::unknown;
    DeviceLights::Enum deviceLights_ = DeviceLights::unknown;
    SecurityStatus::Enum securityStatus_ = SecurityStatus::unknown;
    WakeStatus::Enum wakeStatus_ = WakeStatus::unknown;
    CommandClassMap commandClasses_;
    int configErrors_ = 0;
};

extern template class FramedRecord<Device>;

} // namespace zorv
