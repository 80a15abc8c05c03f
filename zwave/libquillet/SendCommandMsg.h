// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/GenericCommand.h"
#include "platform/libzorvshared/TransmitOption.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

#include <vector>

namespace zorv {

// Larger than most messages: each form exists for one destination and for several.

/// Asks the daemon to transmit one command to a node, to all nodes or to several. A client sends it; the answer repeats
/// the request and says whether the command went out.
class QUILLET_EXPORT SendCommandMsg : public MessageOf<SendCommandMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SendCommandMsg() = default;
    SendCommandMsg(ZwaveAddress const& destination, boost::shared_ptr<GenericCommand> const& command,
                   TransmitOption::Enum options, bool noWait, bool forceSend, bool forceSecure)
        : SendCommandMsg(std::vector<ZwaveAddress>{destination}, command, options, noWait, forceSend, forceSecure) {}
    SendCommandMsg(std::vector<ZwaveAddress> const& destinations, boost::shared_ptr<GenericCommand> const& command,
                   TransmitOption::Enum options, bool noWait, bool forceSend, bool forceSecure)
        : destinations_(destinations),
          command_(command),
          options_(options),
          noWait_(noWait),
          forceSend_(forceSend),
          forceSecure_(forceSecure) {}

    static boost::shared_ptr<SendCommandMsg> create(ZwaveAddress const& destination,
                                                    boost::shared_ptr<GenericCommand> const& command,
                                                    TransmitOption::Enum options, bool noWait, bool forceSend,
                                                    bool forceSecure);
    static boost::shared_ptr<SendCommandMsg> create(std::vector<ZwaveAddress> const& destinations,
                                                    boost::shared_ptr<GenericCommand> const& command,
                                                    TransmitOption::Enum options, bool noWait, bool forceSend,
                                                    bool forceSecure);
    static boost::shared_ptr<SendCommandMsg> create(boost::shared_ptr<SendCommandMsg> const& request,
                                                    ZResult::Enum result);

    /// The destination at `index`; the invalid address where there is none.
    ZwaveAddress const& destination(unsigned int index) const noexcept;

    /// Whether a command can be sent to these: at most 64 nodes; broadcast only in the first place, where nodes may
    /// follow it. No destinations at all are valid, too.
    static bool validDestinations(std::vector<ZwaveAddress> const& destinations);

    // At most one of these holds; none does for destinations that are not valid.
    bool sendSinglecast() const;
    bool sendBroadcast() const;
    bool sendMulticast() const; ///< [broadcast, node, ...] is a multicast

    void groupResponse(bool groupResponse) noexcept { groupResponse_ = groupResponse; }

    std::vector<ZwaveAddress> const& destinations() const noexcept { return destinations_; }
    boost::shared_ptr<GenericCommand> const& command() const noexcept { return command_; }
    TransmitOption::Enum options() const noexcept { return options_; }
    bool noWait() const noexcept { return noWait_; }
    bool forceSend() const noexcept { return forceSend_; }
    bool forceSecure() const noexcept { return forceSecure_; }
    bool groupResponse() const noexcept { return groupResponse_; }

private:
    friend MessageOf;
    struct Wire;

    std::vector<ZwaveAddress> destinations_ = std::vector<ZwaveAddress>(1); // the invalid address, not an empty list
    boost::shared_ptr<GenericCommand> command_;
    TransmitOption::Enum options_ = {};
    bool noWait_ = false;
    bool forceSend_ = false;
    bool forceSecure_ = false;
    bool groupResponse_ = false;
};

extern template class MessageOf<SendCommandMsg, Confirmable>;

} // namespace zorv
