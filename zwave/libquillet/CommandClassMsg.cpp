// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/CommandClassMsg.h"

#include "platform/libtransport/tables/FlagTable.h"
#include "platform/libzwaved/Zwaved.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/hexDump.h"
#include "zwave/libquillet/support/requireNonNull.h"

namespace zorv {

std::string const CommandClassMsg::NAME("CommandClassMsg");
SerialRegistrar const CommandClassMsg::registrar("zorv::" + NAME, &CommandClassMsg::serialFactory);

namespace FrameCast {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace FrameCast

namespace ReceivedStatus {

// Peers know the errors of reading under the name that stands here without the "d".
ZORV_ENUM_DEFINE(
    flagTable<Enum>().namedOnReading("ReceiveStatus").emptySet("none").field(frameCastMask, FrameCast::table))
ZORV_ENUM_DEFINE_HEX

} // namespace ReceivedStatus

struct CommandClassMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&CommandClassMsg::sourceAddr_>("node that sent the command"),
                                                    member<&CommandClassMsg::rxStatus_>("how the frame was received"),
                                                    member<&CommandClassMsg::command_>("command that was received"));
};

template class MessageOf<CommandClassMsg, TMessage>;

boost::shared_ptr<CommandClassMsg> CommandClassMsg::create(unsigned char nodeId, ReceivedStatus::Enum rxStatus,
                                                           boost::shared_ptr<GenericCommand> const& command,
                                                           MessageRole::Enum role) {
    auto const homeId = Zwaved::instance().controller().homeId();
    return boost::make_shared<CommandClassMsg>(ZwaveAddress(homeId, nodeId), rxStatus, command, role);
}

void CommandClassMsg::accumulateDisplay(StringVecVec& rows) const {
    auto const& command = requireNonNull(command_, "command is null"); // a peer may have sent null
    displayRow(rows, "Application Data: ");
    displayRow(rows, "Source address:", sourceAddr_.address());
    displayRow(rows, "Received status:", rxStatus_);
    hexDump(rows, command.bytes());
}

} // namespace zorv
