// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

#include <vector>

namespace zorv {

/// A client subscribes to named events of the daemon, or unsubscribes from them. The daemon answers with makeResponse;
/// it is the one that knows which events there are.
class QUILLET_EXPORT SubscribeMsg : public MessageOf<SubscribeMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SubscribeMsg() = default;
    explicit SubscribeMsg(bool unsubscribe) : unsubscribe_(unsubscribe) {}
    SubscribeMsg(bool unsubscribe, std::vector<std::string> const& events)
        : unsubscribe_(unsubscribe), events_(events) {}
    SubscribeMsg(bool unsubscribe, std::string const& event) : unsubscribe_(unsubscribe), events_(1, event) {}

    static boost::shared_ptr<SubscribeMsg> create(bool unsubscribe, std::vector<std::string> const& events);
    static boost::shared_ptr<SubscribeMsg> create(bool unsubscribe, std::string const& event);

    /// Appends an event, also one that is in the list already.
    void add(std::string const& event) { events_.push_back(event); }

    bool unsubscribe() const noexcept { return unsubscribe_; }
    std::vector<std::string> const& events() const noexcept { return events_; }

private:
    friend MessageOf;
    struct Wire;

    bool unsubscribe_ = false;
    std::vector<std::string> events_;
};

extern template class MessageOf<SubscribeMsg, Confirmable>;

} // namespace zorv
