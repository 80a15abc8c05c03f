// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ManageFailedNodeMsg.h"

#include "platform/libtransport/tables/FlagTable.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const ManageFailedNodeMsg::NAME("ManageFailedNodeMsg");
SerialRegistrar const ManageFailedNodeMsg::registrar("zorv::" + NAME, &ManageFailedNodeMsg::serialFactory);

namespace ManageFailedNodeOp {

ZORV_ENUM_DEFINE(flagTable<Enum>())
ZORV_ENUM_DEFINE_HEX

} // namespace ManageFailedNodeOp

namespace ManageFailedNodeStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace ManageFailedNodeStatus

struct ManageFailedNodeMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&ManageFailedNodeMsg::operation_>("what is to be done with the node"),
                        member<&ManageFailedNodeMsg::address_>("failed node"),
                        member<&ManageFailedNodeMsg::status_>("what became of it"),
                        member<&ManageFailedNodeMsg::timeout_>("time-out of the operation"));
};

template class MessageOf<ManageFailedNodeMsg, Confirmable>;

boost::shared_ptr<ManageFailedNodeMsg> ManageFailedNodeMsg::create(ManageFailedNodeOp::Enum operation,
                                                                   ZwaveAddress const& address, ZResult::Enum result,
                                                                   ManageFailedNodeStatus::Enum status) {
    return boost::make_shared<ManageFailedNodeMsg>(operation, address, result, status, DEFAULT_TIMEOUT);
}

boost::shared_ptr<ManageFailedNodeMsg>
ManageFailedNodeMsg::create(boost::shared_ptr<ManageFailedNodeMsg> const& request, ZResult::Enum result,
                            ManageFailedNodeStatus::Enum status, unsigned int timeout) {
    auto const& asked = requireMessage(request);
    return respondWithNew<ManageFailedNodeMsg>(asked, asked.operation_, asked.address_, result, status, timeout);
}

void ManageFailedNodeMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Manage Failed Node");
    displayRow(rows, "Operation:", operation_);
    displayRow(rows, "Address:", address_.address());
    displayRow(rows, "Result:", result());
    displayRow(rows, "Status:", status_);
}

} // namespace zorv
