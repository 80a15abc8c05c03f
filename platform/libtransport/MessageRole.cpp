#include "platform/libtransport/MessageRole.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::MessageRole {

namespace {
constexpr auto table =
    enumTable<Enum>("MessageRole", {{none, "none"}, {request, "request"}, {response, "response"}, {report, "report"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::MessageRole
