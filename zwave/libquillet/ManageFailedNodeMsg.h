// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// What to do with a failed node: a set of flags.
namespace ManageFailedNodeOp {

enum Enum : int { invalid = 0, remove = 1, replace = 2, force = 4, abort = 8 };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)
ZORV_ENUM_DECLARE_HEX(QUILLET_EXPORT)

} // namespace ManageFailedNodeOp

/// What became of a failed node.
namespace ManageFailedNodeStatus {

enum Enum : int {
    invalid,
    removed,
    replace, ///< not yet replaced; the text is that of the operation
    replaced,
    nodeNotFailed,
    nodeNotFound,
    timeout,
    aborting,
    failure
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace ManageFailedNodeStatus

// Larger than most messages: it brings two enumerations of its own, one of them a set.

/// Asks the daemon to remove or replace a node that the controller considers failed, or to abort that; the answer tells
/// what became of it.
class QUILLET_EXPORT ManageFailedNodeMsg : public MessageOf<ManageFailedNodeMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180;

    ManageFailedNodeMsg() : MessageOf(ZResult::failure) {} // elsewhere the default result is "none"
    ManageFailedNodeMsg(ManageFailedNodeOp::Enum operation, ZwaveAddress const& address, ZResult::Enum result,
                        ManageFailedNodeStatus::Enum status, unsigned int timeout)
        : MessageOf(result), operation_(operation), address_(address), status_(status), timeout_(timeout) {}

    static boost::shared_ptr<ManageFailedNodeMsg> create(ManageFailedNodeOp::Enum operation,
                                                         ZwaveAddress const& address, ZResult::Enum result,
                                                         ManageFailedNodeStatus::Enum status);
    static boost::shared_ptr<ManageFailedNodeMsg> create(boost::shared_ptr<ManageFailedNodeMsg> const& request,
                                                         ZResult::Enum result, ManageFailedNodeStatus::Enum status,
                                                         unsigned int timeout);

    void status(ManageFailedNodeStatus::Enum status) { status_ = status; }

    ManageFailedNodeOp::Enum operation() const noexcept { return operation_; }
    ZwaveAddress const& address() const noexcept { return address_; }
    ManageFailedNodeStatus::Enum status() const noexcept { return status_; }
    unsigned int timeout() const noexcept { return timeout_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    ManageFailedNodeOp::Enum operation_ = ManageFailedNodeOp::invalid;
    ZwaveAddress address_;
    ManageFailedNodeStatus::Enum status_ = ManageFailedNodeStatus::invalid;
    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the unit of the daemon, which runs the operation
};

extern template class MessageOf<ManageFailedNodeMsg, Confirmable>;

} // namespace zorv
