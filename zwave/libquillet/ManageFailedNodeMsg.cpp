#include "zwave/libquillet/ManageFailedNodeMsg.h"

#include "platform/libtransport/EnumTable.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const ManageFailedNodeMsg::NAME("ManageFailedNodeMsg");
SerialRegistrar const ManageFailedNodeMsg::registrar("zorv::" + NAME, &ManageFailedNodeMsg::serialFactory);

namespace ManageFailedNodeOp {

namespace {
constexpr auto table = flagTable<Enum>("ManageFailedNodeOp", "invalid",
                                       {{remove, "remove"}, {replace, "replace"}, {force, "force"}, {abort, "abort"}});
} // namespace

ZORV_ENUM_DEFINE(table)
ZORV_ENUM_DEFINE_HEX

} // namespace ManageFailedNodeOp

namespace ManageFailedNodeStatus {

namespace {
constexpr auto table = enumTable<Enum>("ManageFailedNodeStatus", {{invalid, "invalid"},
                                                                  {removed, "removed"},
                                                                  {replace, "replace"},
                                                                  {replaced, "replaced"},
                                                                  {nodeNotFailed, "nodeNotFailed"},
                                                                  {nodeNotFound, "nodeNotFound"},
                                                                  {timeout, "timeout"},
                                                                  {aborting, "aborting"},
                                                                  {failure, "failure"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace ManageFailedNodeStatus

struct ManageFailedNodeMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member("operation_", &ManageFailedNodeMsg::operation_, "what is to be done with the node"),
                        member("address_", &ManageFailedNodeMsg::address_, "failed node"),
                        member("status_", &ManageFailedNodeMsg::status_, "what became of it"),
                        member("timeout_", &ManageFailedNodeMsg::timeout_, "time-out of the operation"));
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
