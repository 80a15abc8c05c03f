// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/NvmOpEvt.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const NvmOpEvt::NAME("NvmOpEvt");
SerialRegistrar const NvmOpEvt::registrar("zorv::" + NAME, &NvmOpEvt::serialFactory);

namespace NvmOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace NvmOp

struct NvmOpEvt::Wire {
    static constexpr auto members = std::make_tuple(member<&NvmOpEvt::op_>("operation on the NVM"));
};

template class MessageOf<NvmOpEvt, TMessage>;

boost::shared_ptr<NvmOpEvt> NvmOpEvt::create(TMessage const& cause, NvmOp::Enum op) {
    return respondWithNew<NvmOpEvt>(cause, op);
}

} // namespace zorv
