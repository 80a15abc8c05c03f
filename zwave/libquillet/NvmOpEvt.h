// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/tables/EnumDeclaration.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

/// Operations on the NVM that the daemon announces; their numbers are not those of ManageNvmOp.
namespace NvmOp {

enum Enum : int { none, clear, save, restore };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace NvmOp

/// Tells that an operation on the controller module's NVM is under way or done. The daemon sends it in the course of the
/// message that caused the operation; nobody answers.
class QUILLET_EXPORT NvmOpEvt : public MessageOf<NvmOpEvt, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    NvmOpEvt() = default;
    explicit NvmOpEvt(NvmOp::Enum op) : op_(op) {}

    /// `cause` may be a message of any class.
    static boost::shared_ptr<NvmOpEvt> create(TMessage const& cause, NvmOp::Enum op);

    NvmOp::Enum op() const noexcept { return op_; }

private:
    friend MessageOf;
    struct Wire;

    NvmOp::Enum op_ = NvmOp::none;
};

extern template class MessageOf<NvmOpEvt, TMessage>;

} // namespace zorv
