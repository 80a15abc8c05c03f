// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to bring the controller's view of the network up to date; the answer tells how that went.
class QUILLET_EXPORT RequestNetworkUpdateMsg : public MessageOf<RequestNetworkUpdateMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180;

    RequestNetworkUpdateMsg() = default;
    /// A `timeout` above 2147483647 becomes negative.
    RequestNetworkUpdateMsg(ZResult::Enum result, RequestNetworkUpdateStatus::Enum status, unsigned int timeout)
        : MessageOf(result), status_(status), timeout_(static_cast<int>(timeout)) {}

    /// A client's request: with result "success", status "wait" and the time-out 0.
    static boost::shared_ptr<RequestNetworkUpdateMsg> create();
    static boost::shared_ptr<RequestNetworkUpdateMsg>
    create(ZResult::Enum result, RequestNetworkUpdateStatus::Enum status, unsigned int timeout);
    static boost::shared_ptr<RequestNetworkUpdateMsg> create(boost::shared_ptr<RequestNetworkUpdateMsg> const& request,
                                                             ZResult::Enum result,
                                                             RequestNetworkUpdateStatus::Enum status,
                                                             unsigned int timeout);

    RequestNetworkUpdateStatus::Enum status() const noexcept { return status_; }
    int timeout() const noexcept { return timeout_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    RequestNetworkUpdateStatus::Enum status_ = RequestNetworkUpdateStatus::done;
    int timeout_ = 0; // signed, and not DEFAULT_TIMEOUT, unlike in the neighbour update
};

extern template class MessageOf<RequestNetworkUpdateMsg, Confirmable>;

} // namespace zorv
