// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ObserveMsg.h"

#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const ObserveMsg::NAME("ObserveMsg");
SerialRegistrar const ObserveMsg::registrar("zorv::" + NAME, &ObserveMsg::serialFactory);

struct ObserveMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&ObserveMsg::action_>("what the observer asks for"),
                        member<&ObserveMsg::direction_>("which way the observed message travelled"),
                        member<&ObserveMsg::message_>("the observed message"));
};

template class MessageOf<ObserveMsg, Confirmable>;

boost::shared_ptr<ObserveMsg> ObserveMsg::create(ObserveDirection::Enum direction,
                                                 boost::shared_ptr<TMessage> const& message) {
    auto observed = boost::make_shared<ObserveMsg>(ObserveAction::none, direction, message);
    observed->result(ZResult::success);
    return observed;
}

boost::shared_ptr<ObserveMsg> ObserveMsg::create(ZResult::Enum result) {
    auto wish = boost::make_shared<ObserveMsg>(ObserveAction::start, ObserveDirection::none);
    wish->result(result);
    return wish;
}

// Most response forms check the request; here an empty one is the caller's error.
boost::shared_ptr<ObserveMsg> ObserveMsg::create(boost::shared_ptr<TMessage> const& request, ZResult::Enum result) {
    auto response = respondWithNew<ObserveMsg>(*request, ObserveAction::none, ObserveDirection::none);
    response->result(result);
    return response;
}

} // namespace zorv
