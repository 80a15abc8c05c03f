// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ControlCommandMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "platform/libzorvshared/ZwApiCommand.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/ZorvError.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/hexDump.h"

namespace zorv {

std::string const ControlCommandMsg::NAME("ControlCommandMsg");
SerialRegistrar const ControlCommandMsg::registrar("zorv::" + NAME, &ControlCommandMsg::serialFactory);

namespace ControlCommandOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())
ZORV_ENUM_DEFINE_HEX

} // namespace ControlCommandOp

struct ControlCommandMsg::Wire {
    static constexpr auto members = std::make_tuple(
        member<&ControlCommandMsg::data_>("the frame: operation, function of the serial interface, payload"));
};

template class MessageOf<ControlCommandMsg, TMessage>;

ControlCommandMsg::ControlCommandMsg(std::vector<unsigned char> const& data, MessageRole::Enum role) : data_(data) {
    TMessage::role(role);
    if (data_.size() < 2) { throw TransportError("invalid minimum control command size"); }
}

void ControlCommandMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Control Command: ");
    displayRow(rows, "Operation (data[0]):", static_cast<ControlCommandOp::Enum>(data_.at(0)));
    displayRow(rows, "Command   (data[1]):", static_cast<ZwApiCommand::Enum>(data_.at(1)));
    hexDump(rows, data_);
}

} // namespace zorv
