#include "platform/libzorvshared/ObserveAction.h"

#include "platform/libtransport/tables/EnumTable.h"

namespace zorv::ObserveAction {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace zorv::ObserveAction
