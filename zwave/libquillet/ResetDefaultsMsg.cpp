// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ResetDefaultsMsg.h"

#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const ResetDefaultsMsg::NAME("ResetDefaultsMsg");
SerialRegistrar const ResetDefaultsMsg::registrar("zorv::" + NAME, &ResetDefaultsMsg::serialFactory);

struct ResetDefaultsMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&ResetDefaultsMsg::timeout_>("time-out of the reset"));
};

template class MessageOf<ResetDefaultsMsg, Confirmable>;

boost::shared_ptr<ResetDefaultsMsg> ResetDefaultsMsg::create() { return boost::make_shared<ResetDefaultsMsg>(); }

boost::shared_ptr<ResetDefaultsMsg> ResetDefaultsMsg::create(ZResult::Enum result) {
    auto report = create();
    report->role(MessageRole::report);
    report->result(result);
    return report;
}

boost::shared_ptr<ResetDefaultsMsg> ResetDefaultsMsg::create(boost::shared_ptr<ResetDefaultsMsg> const& request,
                                                             ZResult::Enum result, unsigned int timeout) {
    auto response = respondWithCopy(request, result);
    response->timeout_ = timeout;
    return response;
}

} // namespace zorv
