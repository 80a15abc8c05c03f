// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/AddRemoveNodeMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const AddRemoveNodeMsg::NAME("AddRemoveNodeMsg");
SerialRegistrar const AddRemoveNodeMsg::registrar("zorv::" + NAME, &AddRemoveNodeMsg::serialFactory);

namespace AddRemoveOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())
ZORV_ENUM_DEFINE_HEX

} // namespace AddRemoveOp

struct AddRemoveNodeMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&AddRemoveNodeMsg::operation_>("include or exclude a node"),
                        member<&AddRemoveNodeMsg::abort_>("give the running operation up"),
                        member<&AddRemoveNodeMsg::primary_>("flag that is passed on with the request"),
                        member<&AddRemoveNodeMsg::timeout_>("time-out, in the daemon's unit"),
                        member<&AddRemoveNodeMsg::device_>("the node that was included or excluded"));
};

template class MessageOf<AddRemoveNodeMsg, Confirmable>;

boost::shared_ptr<AddRemoveNodeMsg> AddRemoveNodeMsg::create(AddRemoveOp::Enum operation, bool abort,
                                                             ZResult::Enum result, int timeout, bool primary) {
    return boost::make_shared<AddRemoveNodeMsg>(operation, abort, primary, result, timeout, nullptr);
}

boost::shared_ptr<AddRemoveNodeMsg> AddRemoveNodeMsg::create(boost::shared_ptr<AddRemoveNodeMsg> const& request,
                                                             ZResult::Enum result, int timeout,
                                                             boost::shared_ptr<Device> const& device) {
    auto const& asked = requireMessage(request);
    constexpr bool primary = false; // the request's flag is not repeated
    return respondWithNew<AddRemoveNodeMsg>(asked, asked.operation_, asked.abort_, primary, result, timeout, device);
}

void AddRemoveNodeMsg::accumulateDisplay(StringVecVec& rows) const {
    if (device_) { device_->accumulateDisplay(rows); }
}

} // namespace zorv
