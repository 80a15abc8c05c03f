// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

class Device;

/// The stages of a node's configuration, in the order in which it goes through them.
namespace ConfigurationStatus {

enum Enum : int {
    unknown,
    idle,
    start,
    commandClasses,
    version,
    mfg,
    security,
    routes,
    association,
    multichannel,
    wakeUp,
    zwavePlus,
    interrupted,
    finish
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace ConfigurationStatus

/// The daemon reports how far the configuration (interview) of a node has come, and what it knows of the node by now.
class QUILLET_EXPORT ConfigurationMsg : public MessageOf<ConfigurationMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    ConfigurationMsg() = default;
    ConfigurationMsg(ConfigurationStatus::Enum status, boost::shared_ptr<Device> const& device, ZResult::Enum result)
        : MessageOf(result), operation_(status), device_(device) {}

    /// The daemon's report; only here is the role set, not by the constructor.
    static boost::shared_ptr<ConfigurationMsg> create(ConfigurationStatus::Enum status,
                                                      boost::shared_ptr<Device> const& device, ZResult::Enum result);

    ConfigurationStatus::Enum operation() const noexcept { return operation_; }
    boost::shared_ptr<Device> const& device() const noexcept { return device_; }

    /// The device's number of configuration errors; 0 where there is no device.
    int configErrors() const;

private:
    friend MessageOf;
    struct Wire;

    ConfigurationStatus::Enum operation_ = ConfigurationStatus::unknown;
    boost::shared_ptr<Device> device_;
};

extern template class MessageOf<ConfigurationMsg, Confirmable>;

} // namespace zorv
