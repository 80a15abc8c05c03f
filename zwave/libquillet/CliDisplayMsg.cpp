// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/CliDisplayMsg.h"

#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const CliDisplayMsg::NAME("CliDisplayMsg");
SerialRegistrar const CliDisplayMsg::registrar("zorv::" + NAME, &CliDisplayMsg::serialFactory);

struct CliDisplayMsg::Wire {
    static constexpr auto members = std::make_tuple(member<&CliDisplayMsg::data_>("rows of cells"));
};

template class MessageOf<CliDisplayMsg, Confirmable>;

boost::shared_ptr<CliDisplayMsg> CliDisplayMsg::create(StringVecVec const& data) {
    return boost::make_shared<CliDisplayMsg>(data);
}

boost::shared_ptr<CliDisplayMsg> CliDisplayMsg::create(boost::shared_ptr<CliDisplayMsg> const& request,
                                                       ZResult::Enum result, StringVecVec const& data) {
    auto response = respondWithCopy(request, result);
    response->data_ = data;
    return response;
}

void CliDisplayMsg::accumulateDisplay(StringVecVec& rows) const { rows.insert(rows.end(), data_.begin(), data_.end()); }

boost::shared_ptr<AgentData> AgentData::create(unsigned int id, std::string const& uuid, std::string const& room,
                                               std::string const& device, std::string const& driver) {
    return boost::make_shared<AgentData>(id, uuid, room, device, driver);
}

void AgentData::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Device id:", id_);
    displayRow(rows, "Uuid:", uuid_);
    displayRow(rows, "Room:", room_);
    displayRow(rows, "Device:", device_);
    displayRow(rows, "Driver:", driver_);
}

} // namespace zorv
