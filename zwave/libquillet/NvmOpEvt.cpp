#include "zwave/libquillet/NvmOpEvt.h"

#include "platform/libtransport/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const NvmOpEvt::NAME("NvmOpEvt");
SerialRegistrar const NvmOpEvt::registrar("zorv::" + NAME, &NvmOpEvt::serialFactory);

namespace NvmOp {

namespace {
constexpr auto table =
    enumTable<Enum>("NvmOp", {{none, "none"}, {clear, "clear"}, {save, "save"}, {restore, "restore"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace NvmOp

struct NvmOpEvt::Wire {
    static constexpr auto members = std::make_tuple(member("op_", &NvmOpEvt::op_, "operation on the NVM"));
};

template class MessageOf<NvmOpEvt, TMessage>;

boost::shared_ptr<NvmOpEvt> NvmOpEvt::create(TMessage const& cause, NvmOp::Enum op) {
    return respondWithNew<NvmOpEvt>(cause, op);
}

} // namespace zorv
