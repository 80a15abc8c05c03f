// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to have a node look for its neighbours; the answer tells how that went.
class QUILLET_EXPORT RequestNeighborUpdateMsg : public MessageOf<RequestNeighborUpdateMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180;

    RequestNeighborUpdateMsg() = default;
    RequestNeighborUpdateMsg(ZResult::Enum result, ZwaveAddress const& address,
                             RequestNeighborUpdateStatus::Enum status, unsigned int timeout)
        : MessageOf(result), address_(address), status_(status), timeout_(timeout) {}

    /// A client's request. It has the result "success", not "none".
    static boost::shared_ptr<RequestNeighborUpdateMsg> create(ZwaveAddress const& address);
    static boost::shared_ptr<RequestNeighborUpdateMsg> create(ZResult::Enum result, ZwaveAddress const& address,
                                                              RequestNeighborUpdateStatus::Enum status);
    /// The daemon's answer; the address too is the given one, not the request's.
    static boost::shared_ptr<RequestNeighborUpdateMsg>
    create(boost::shared_ptr<RequestNeighborUpdateMsg> const& request, ZResult::Enum result,
           ZwaveAddress const& address, RequestNeighborUpdateStatus::Enum status, unsigned int timeout);

    ZwaveAddress const& address() const noexcept { return address_; }
    RequestNeighborUpdateStatus::Enum status() const noexcept { return status_; }
    unsigned int timeout() const noexcept { return timeout_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    ZwaveAddress address_;
    RequestNeighborUpdateStatus::Enum status_ = RequestNeighborUpdateStatus::none;
    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the unit of the daemon, which runs the update
};

extern template class MessageOf<RequestNeighborUpdateMsg, Confirmable>;

} // namespace zorv
