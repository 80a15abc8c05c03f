// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/PingMsg.h"

#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const PingMsg::NAME("PingMsg");
SerialRegistrar const PingMsg::registrar("zorv::" + NAME, &PingMsg::serialFactory);

struct PingMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&PingMsg::destination_>("node to ping"),
                                                    member<&PingMsg::latencyMs_>("round-trip time, milliseconds"));
};

template class MessageOf<PingMsg, Confirmable>;

boost::shared_ptr<PingMsg> PingMsg::create(ZwaveAddress const& destination) {
    return boost::make_shared<PingMsg>(destination);
}

boost::shared_ptr<PingMsg> PingMsg::create(boost::shared_ptr<PingMsg> const& request, ZResult::Enum result,
                                           unsigned int latencyMs) {
    auto response = respondWithCopy(request, result);
    response->latencyMs_ = latencyMs;
    return response;
}

void PingMsg::accumulateDisplay(StringVecVec& rows) const {
    if (header_) {
        accumulateDisplayValue(rows, 0, "Count");
        accumulateDisplayValue(rows, 1, "Time");
        accumulateDisplayValue(rows, 2, "Address");
        accumulateDisplayValue(rows, 3, "Result");
        accumulateDisplayValue(rows, 4, "Latency");
    }
    accumulateDisplayValue(rows, 0, count_);
    width(0, 6);
    accumulateDisplayValue(rows, 1, time_);
    accumulateDisplayValue(rows, 2, destination_.address());
    accumulateDisplayValue(rows, 3, result());
    width(3, 17);
    accumulateDisplayValue(rows, 4, latencyMs_);
}

} // namespace zorv
