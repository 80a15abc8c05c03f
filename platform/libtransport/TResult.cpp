#include "platform/libtransport/TResult.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::TResult {

namespace {
constexpr auto table = enumTable<Enum>("ZResult", {{none, "none"},
                                                   {success, "success"},
                                                   {failure, "failure"},
                                                   {inProgress, "inProgress"},
                                                   {rejected, "rejected"},
                                                   {timeout, "timeout"},
                                                   {fileNotFound, "fileNotFound"},
                                                   {fileOpenFailure, "fileOpenFailure"},
                                                   {fileReadFailure, "fileReadFailure"},
                                                   {noBlobs, "noBlobs"},
                                                   {nodeNotFound, "nodeNotFound"},
                                                   {nodeNotReached, "nodeNotReached"},
                                                   {nodeAsleep, "nodeAsleep"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::TResult
