// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/tables/EnumDeclaration.h"
#include "zwave/libquillet/support/MessageOf.h"

#include <vector>

namespace zorv {

/// What the first byte of a control command says of it.
namespace ControlCommandOp {

enum Enum : int { request, response };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)
ZORV_ENUM_DECLARE_HEX(QUILLET_EXPORT)

} // namespace ControlCommandOp

/// One raw frame of the controller's serial interface: whether it is a request, which function it calls, and the
/// payload. Nobody answers it.
class QUILLET_EXPORT ControlCommandMsg : public MessageOf<ControlCommandMsg, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    ControlCommandMsg() = default;
    /// Takes a frame; a TransportError "invalid minimum control command size" for less than two bytes. A message that is
    /// read is not checked.
    ControlCommandMsg(std::vector<unsigned char> const& data, MessageRole::Enum role);

    std::vector<unsigned char> const& data() const noexcept { return data_; }

    /// Appends operation, function and bytes. Errors, for a message that was read may hold anything: std::out_of_range where
    /// there are less than two bytes, InvalidEnumError where the first one is no operation.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    std::vector<unsigned char> data_; // a ControlCommandOp, a ZwApiCommand, then the payload
};

extern template class MessageOf<ControlCommandMsg, TMessage>;

} // namespace zorv
