// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libzorvshared/Device.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// What to do with the node that is put into learn mode next.
namespace AddRemoveOp {

enum Enum : int { invalid, add, remove };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)
ZORV_ENUM_DECLARE_HEX(QUILLET_EXPORT)

} // namespace AddRemoveOp

/// Asks the daemon to include or exclude a node, or to abort that. A client sends it; the answer carries the node that
/// was included or excluded.
class QUILLET_EXPORT AddRemoveNodeMsg : public MessageOf<AddRemoveNodeMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    AddRemoveNodeMsg() = default;
    AddRemoveNodeMsg(AddRemoveOp::Enum operation, bool abort, bool primary, ZResult::Enum result, int timeout,
                     boost::shared_ptr<Device> const& device)
        : MessageOf(result),
          operation_(operation),
          abort_(abort),
          primary_(primary),
          timeout_(timeout),
          device_(device) {}

    static boost::shared_ptr<AddRemoveNodeMsg> create(AddRemoveOp::Enum operation, bool abort, ZResult::Enum result,
                                                      int timeout, bool primary);
    /// The answer has a time-out of its own, and does not repeat the request's primary flag.
    static boost::shared_ptr<AddRemoveNodeMsg> create(boost::shared_ptr<AddRemoveNodeMsg> const& request,
                                                      ZResult::Enum result, int timeout,
                                                      boost::shared_ptr<Device> const& device);

    AddRemoveOp::Enum operation() const noexcept { return operation_; }
    bool abort() const noexcept { return abort_; }
    bool primary() const noexcept { return primary_; }
    int timeout() const noexcept { return timeout_; }
    boost::shared_ptr<Device> const& device() const noexcept { return device_; }

    /// Appends the rows of the device; none without one.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    AddRemoveOp::Enum operation_ = AddRemoveOp::invalid;
    bool abort_ = false; // whether to abort the operation that runs
    bool primary_ = false;
    int timeout_ = 0; // in the daemon's unit
    boost::shared_ptr<Device> device_;
};

extern template class MessageOf<AddRemoveNodeMsg, Confirmable>;

} // namespace zorv
