// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/FirmwareUpdateMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const FirmwareUpdateMsg::NAME("FirmwareUpdateMsg");
SerialRegistrar const FirmwareUpdateMsg::registrar("zorv::" + NAME, &FirmwareUpdateMsg::serialFactory);

namespace FirmwareUpdateStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace FirmwareUpdateStatus

struct FirmwareUpdateMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&FirmwareUpdateMsg::countryCode_>("country of the firmware to install"),
                        member<&FirmwareUpdateMsg::status_>("state of the update"),
                        member<&FirmwareUpdateMsg::percentComplete_>("progress, percent"),
                        member<&FirmwareUpdateMsg::timeout_>("how long the update may take, in the daemon's unit"));
};

template class MessageOf<FirmwareUpdateMsg, Confirmable>;

// Requests carry the result of success already, unlike those of other messages.
boost::shared_ptr<FirmwareUpdateMsg> FirmwareUpdateMsg::create(std::string const& countryCode) {
    return boost::make_shared<FirmwareUpdateMsg>(ZResult::success, countryCode, FirmwareUpdateStatus::idle, 0U,
                                                 DEFAULT_TIMEOUT);
}

boost::shared_ptr<FirmwareUpdateMsg> FirmwareUpdateMsg::create(std::string const& countryCode,
                                                               FirmwareUpdateStatus::Enum status) {
    auto request = create(countryCode);
    request->status_ = status;
    request->role(MessageRole::request); // the form above leaves the role to the sender
    return request;
}

boost::shared_ptr<FirmwareUpdateMsg> FirmwareUpdateMsg::create(FirmwareUpdateStatus::Enum status,
                                                               unsigned int percentComplete) {
    auto const result = status == FirmwareUpdateStatus::running ? ZResult::inProgress : ZResult::success;
    auto report = boost::make_shared<FirmwareUpdateMsg>(result, "", status, percentComplete, DEFAULT_TIMEOUT);
    report->role(MessageRole::report);
    return report;
}

boost::shared_ptr<FirmwareUpdateMsg> FirmwareUpdateMsg::create(boost::shared_ptr<FirmwareUpdateMsg> const& request,
                                                               ZResult::Enum result, FirmwareUpdateStatus::Enum status,
                                                               unsigned int timeout) {
    auto const& asked = requireMessage(request);
    return respondWithNew<FirmwareUpdateMsg>(asked, result, asked.countryCode_, status, 0U, timeout);
}

void FirmwareUpdateMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Country code:", countryCode_);
    displayRow(rows, "Update status:", status_);
    displayRow(rows, "Percent complete:", percentComplete_);
}

} // namespace zorv
