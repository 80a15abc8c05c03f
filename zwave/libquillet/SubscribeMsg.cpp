// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SubscribeMsg.h"

#include "zwave/libquillet/support/MessageOfImpl.h"

namespace zorv {

std::string const SubscribeMsg::NAME("SubscribeMsg");
SerialRegistrar const SubscribeMsg::registrar("zorv::" + NAME, &SubscribeMsg::serialFactory);

struct SubscribeMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&SubscribeMsg::unsubscribe_>("whether the events are given up"),
                        member<&SubscribeMsg::events_>("names of the events"));
};

template class MessageOf<SubscribeMsg, Confirmable>;

boost::shared_ptr<SubscribeMsg> SubscribeMsg::create(bool unsubscribe, std::vector<std::string> const& events) {
    return boost::make_shared<SubscribeMsg>(unsubscribe, events);
}

boost::shared_ptr<SubscribeMsg> SubscribeMsg::create(bool unsubscribe, std::string const& event) {
    return boost::make_shared<SubscribeMsg>(unsubscribe, event);
}

} // namespace zorv
