// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ObserveAction.h"
#include "platform/libzorvshared/ObserveDirection.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// A client asks the daemon to let it observe the message traffic; the daemon sends it a copy of each message, which may
/// be of any registered class, this one included.
class QUILLET_EXPORT ObserveMsg : public MessageOf<ObserveMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    ObserveMsg() = default;
    ObserveMsg(ObserveAction::Enum action, ObserveDirection::Enum direction) : action_(action), direction_(direction) {}
    ObserveMsg(ObserveAction::Enum action, ObserveDirection::Enum direction, boost::shared_ptr<TMessage> const& message)
        : action_(action), direction_(direction), message_(message) {}

    /// An observed message, with result "success".
    static boost::shared_ptr<ObserveMsg> create(ObserveDirection::Enum direction,
                                                boost::shared_ptr<TMessage> const& message);
    /// A request to observe, with the action "start".
    static boost::shared_ptr<ObserveMsg> create(ZResult::Enum result);
    /// The answer to `request`, which must not be empty.
    static boost::shared_ptr<ObserveMsg> create(boost::shared_ptr<TMessage> const& request, ZResult::Enum result);

    ObserveAction::Enum action() const noexcept { return action_; }
    ObserveDirection::Enum direction() const noexcept { return direction_; }
    boost::shared_ptr<TMessage> const& message() const noexcept { return message_; }

private:
    friend MessageOf;
    struct Wire;

    ObserveAction::Enum action_ = ObserveAction::none;
    ObserveDirection::Enum direction_ = ObserveDirection::none;
    boost::shared_ptr<TMessage> message_;
};

extern template class MessageOf<ObserveMsg, Confirmable>;

} // namespace zorv
