// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/SystemStatus.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// State of the Z-Wave system as a whole. The daemon announces each change; a client asks with a message of this class.
/// Unlike other events it carries a result and can be cloned.
class QUILLET_EXPORT SystemStatusEvt : public MessageOf<SystemStatusEvt, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SystemStatusEvt() = default;
    explicit SystemStatusEvt(SystemStatus::Enum status) : status_(status) {}

    /// The daemon's announcement.
    static boost::shared_ptr<SystemStatusEvt> create(SystemStatus::Enum status);
    static boost::shared_ptr<SystemStatusEvt> create(boost::shared_ptr<SystemStatusEvt> const& request,
                                                     SystemStatus::Enum status);

    SystemStatus::Enum status() const noexcept { return status_; }

private:
    friend MessageOf;
    struct Wire;

    SystemStatus::Enum status_ = SystemStatus::unknown;
};

extern template class MessageOf<SystemStatusEvt, Confirmable>;

} // namespace zorv
