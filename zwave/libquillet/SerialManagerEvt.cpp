// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/SerialManagerEvt.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SerialManagerEvt::NAME("SerialManagerEvt");
SerialRegistrar const SerialManagerEvt::registrar("zorv::" + NAME, &SerialManagerEvt::serialFactory);

namespace SerialManagerStatus {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace SerialManagerStatus

struct SerialManagerEvt::Wire {
    static constexpr auto members = std::make_tuple(
        member<&SerialManagerEvt::status_>("new state of the serial manager"),
        member<&SerialManagerEvt::percentComplete_>("progress of the running operation, percent; not limited to 100"));
};

template class MessageOf<SerialManagerEvt, TMessage>;

boost::shared_ptr<SerialManagerEvt> SerialManagerEvt::create(TMessage const& cause, SerialManagerStatus::Enum status,
                                                             unsigned int percentComplete) {
    return respondWithNew<SerialManagerEvt>(cause, status, percentComplete);
}

} // namespace zorv
