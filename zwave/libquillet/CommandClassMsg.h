// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libzorvshared/GenericCommand.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

/// How a frame was addressed.
namespace FrameCast {

enum Enum : int { singlecast = 0, broadcast = 4, multicast = 8 };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace FrameCast

/// How a frame was received: the receive status of the serial interface, a set of flags, with the FrameCast in it.
namespace ReceivedStatus {

enum Enum : int {
    routedBusy = 0x01,    ///< a routed frame met a busy node
    lowPower = 0x02,      ///< the frame came at low power
    frameCastMask = 0x0C, ///< the FrameCast
    explore = 0x10,       ///< an explorer frame
    foreignFrame = 0x40   ///< the frame belongs to another network
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)
ZORV_ENUM_DECLARE_HEX(QUILLET_EXPORT)

} // namespace ReceivedStatus

/// Carries a command that the controller received from a node. The daemon sends it to the clients, who do not answer.
class QUILLET_EXPORT CommandClassMsg : public MessageOf<CommandClassMsg, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    CommandClassMsg() = default;
    CommandClassMsg(ZwaveAddress const& source, ReceivedStatus::Enum rxStatus,
                    boost::shared_ptr<GenericCommand> const& command, MessageRole::Enum role)
        : sourceAddr_(source), rxStatus_(rxStatus), command_(command) {
        TMessage::role(role);
    }

    /// A message from a node of the network that this process's controller is in; for the daemon only.
    static boost::shared_ptr<CommandClassMsg> create(unsigned char nodeId, ReceivedStatus::Enum rxStatus,
                                                     boost::shared_ptr<GenericCommand> const& command,
                                                     MessageRole::Enum role);

    ZwaveAddress const& sourceAddr() const noexcept { return sourceAddr_; }
    ReceivedStatus::Enum rxStatus() const noexcept { return rxStatus_; }
    boost::shared_ptr<GenericCommand> const& command() const noexcept { return command_; }

    /// Appends source, status and bytes. The command has to be there.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    ZwaveAddress sourceAddr_;
    ReceivedStatus::Enum rxStatus_ = {};
    boost::shared_ptr<GenericCommand> command_;
};

extern template class MessageOf<CommandClassMsg, TMessage>;

} // namespace zorv
