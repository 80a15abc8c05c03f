// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ConfigurationMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "platform/libzorvshared/Device.h"
#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const ConfigurationMsg::NAME("ConfigurationMsg");
SerialRegistrar const ConfigurationMsg::registrar("zorv::" + NAME, &ConfigurationMsg::serialFactory);

namespace ConfigurationStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace ConfigurationStatus

struct ConfigurationMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&ConfigurationMsg::operation_>("stage of the node's configuration"),
                        member<&ConfigurationMsg::device_>("node that is configured"));
};

template class MessageOf<ConfigurationMsg, Confirmable>;

boost::shared_ptr<ConfigurationMsg> ConfigurationMsg::create(ConfigurationStatus::Enum status,
                                                             boost::shared_ptr<Device> const& device,
                                                             ZResult::Enum result) {
    auto report = boost::make_shared<ConfigurationMsg>(status, device, result);
    report->role(MessageRole::report);
    return report;
}

int ConfigurationMsg::configErrors() const { return device_ ? device_->configErrors() : 0; }

} // namespace zorv
