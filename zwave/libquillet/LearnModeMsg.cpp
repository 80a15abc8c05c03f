// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/LearnModeMsg.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const LearnModeMsg::NAME("LearnModeMsg");
SerialRegistrar const LearnModeMsg::registrar("zorv::" + NAME, &LearnModeMsg::serialFactory);

struct LearnModeMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&LearnModeMsg::mode_>("learn mode that is asked for"),
                                                    member<&LearnModeMsg::status_>("how far the controller has come"),
                                                    member<&LearnModeMsg::timeout_>("time-out of the operation"));
};

template class MessageOf<LearnModeMsg, Confirmable>;

boost::shared_ptr<LearnModeMsg> LearnModeMsg::create(LearnMode::Enum mode) {
    return create(mode, ZResult::none, LearnModeStatus::none, DEFAULT_TIMEOUT);
}

boost::shared_ptr<LearnModeMsg> LearnModeMsg::create(LearnMode::Enum mode, ZResult::Enum result,
                                                     LearnModeStatus::Enum status, unsigned int timeout) {
    return boost::make_shared<LearnModeMsg>(mode, result, status, timeout);
}

// Most response forms check the request; here an empty one is the caller's error.
boost::shared_ptr<LearnModeMsg> LearnModeMsg::create(boost::shared_ptr<LearnModeMsg> const& request,
                                                     ZResult::Enum result, LearnModeStatus::Enum status,
                                                     unsigned int timeout) {
    return respondWithNew<LearnModeMsg>(*request, request->mode_, result, status, timeout);
}

void LearnModeMsg::accumulateDisplay(StringVecVec& rows) const { displayRow(rows, "Learn status:", status_); }

} // namespace zorv
