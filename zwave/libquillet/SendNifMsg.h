// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/TransmitOption.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to send the controller's node information frame (NIF) to one node or to all; the answer
/// repeats nothing of the request.
class QUILLET_EXPORT SendNifMsg : public MessageOf<SendNifMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SendNifMsg() = default;
    SendNifMsg(unsigned char destination, TransmitOption::Enum options)
        : destination_(destination), options_(options) {}

    static boost::shared_ptr<SendNifMsg> create(unsigned char destination, TransmitOption::Enum options);
    /// The daemon's answer, to the destination 255 with the default options. `request` must not be empty.
    static boost::shared_ptr<SendNifMsg> create(boost::shared_ptr<SendNifMsg> const& request, ZResult::Enum result);

    unsigned char destination() const noexcept { return destination_; }
    TransmitOption::Enum options() const noexcept { return options_; }

private:
    friend MessageOf;
    struct Wire;

    unsigned char destination_ = 0; // node id; 255 stands for all nodes
    TransmitOption::Enum options_{};
};

extern template class MessageOf<SendNifMsg, Confirmable>;

} // namespace zorv
