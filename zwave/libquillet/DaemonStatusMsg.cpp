// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/DaemonStatusMsg.h"

#include "platform/libtransport/tables/FlagTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const DaemonStatusMsg::NAME("DaemonStatusMsg");
SerialRegistrar const DaemonStatusMsg::registrar("zorv::" + NAME, &DaemonStatusMsg::serialFactory);

namespace DaemonStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace DaemonStatus

namespace DaemonDetail {

ZORV_ENUM_DEFINE(flagTable<Enum>())

} // namespace DaemonDetail

struct DaemonStatusMsg::Wire {
    static constexpr auto members = std::make_tuple(
        member<&DaemonStatusMsg::address_>("controller that the status concerns"),
        member<&DaemonStatusMsg::status_>("overall state"), member<&DaemonStatusMsg::detail_>("what is wrong"));
};

template class MessageOf<DaemonStatusMsg, Confirmable>;

DaemonStatusMsg::DaemonStatusMsg() { role(MessageRole::request); }

DaemonStatusMsg::DaemonStatusMsg(ZwaveAddress const& address, DaemonStatus::Enum status, DaemonDetail::Enum detail)
    : address_(address), status_(status), detail_(detail) {
    role(MessageRole::report);
}

DaemonStatusMsg::DaemonStatusMsg(boost::shared_ptr<DaemonStatusMsg> const& request, ZwaveAddress const& address,
                                 DaemonStatus::Enum status, DaemonDetail::Enum detail)
    : address_(address), status_(status), detail_(detail) {
    setResponse(requireMessage(request)); // no role: only question and announcement have one
}

boost::shared_ptr<DaemonStatusMsg> DaemonStatusMsg::create() { return boost::make_shared<DaemonStatusMsg>(); }

boost::shared_ptr<DaemonStatusMsg> DaemonStatusMsg::create(ZwaveAddress const& address, DaemonStatus::Enum status,
                                                           DaemonDetail::Enum detail) {
    return boost::make_shared<DaemonStatusMsg>(address, status, detail);
}

boost::shared_ptr<DaemonStatusMsg> DaemonStatusMsg::create(boost::shared_ptr<DaemonStatusMsg> const& request,
                                                           ZwaveAddress const& address, DaemonStatus::Enum status,
                                                           DaemonDetail::Enum detail) {
    auto response = boost::make_shared<DaemonStatusMsg>(request, address, status, detail);
    response->result(ZResult::success);
    return response;
}

boost::shared_ptr<DaemonStatusMsg> DaemonStatusMsg::create(boost::shared_ptr<DaemonStatusMsg> const& request,
                                                           ZResult::Enum result) {
    return respondWithCopy(request, result);
}

} // namespace zorv
