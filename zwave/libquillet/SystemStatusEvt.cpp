// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SystemStatusEvt.h"

#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SystemStatusEvt::NAME("SystemStatusEvt");
SerialRegistrar const SystemStatusEvt::registrar("zorv::" + NAME, &SystemStatusEvt::serialFactory);

struct SystemStatusEvt::Wire {
    static constexpr auto members = std::make_tuple(member<&SystemStatusEvt::status_>("state of the Z-Wave system"));
};

template class MessageOf<SystemStatusEvt, Confirmable>;

boost::shared_ptr<SystemStatusEvt> SystemStatusEvt::create(SystemStatus::Enum status) {
    auto announcement = boost::make_shared<SystemStatusEvt>(status);
    announcement->role(MessageRole::report);
    announcement->result(ZResult::success);
    return announcement;
}

boost::shared_ptr<SystemStatusEvt> SystemStatusEvt::create(boost::shared_ptr<SystemStatusEvt> const& request,
                                                           SystemStatus::Enum status) {
    auto response =
        respondWithNew<SystemStatusEvt>(requireMessage(request), status); // no role, unlike the announcement
    response->result(ZResult::success);
    return response;
}

} // namespace zorv
