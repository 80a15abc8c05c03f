#include "zwave/libquillet/SessionLayerMsg.h"

#include "platform/libtransport/EnumTable.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/respond.h"

namespace zorv {

std::string const SessionLayerMsg::NAME("SessionLayerMsg");
SerialRegistrar const SessionLayerMsg::registrar("zorv::" + NAME, &SessionLayerMsg::serialFactory);

namespace SessionLayerOp {

namespace {
constexpr auto table = enumTable<Enum>("SessionLayerOp", {{status, "status"}, {ping, "ping"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace SessionLayerOp

namespace SessionLayerStatus {

namespace {
constexpr auto table = enumTable<Enum>("SessionLayerStatus", {{unknown, "unknown"},
                                                              {idle, "idle"},
                                                              {threadRunning, "threadRunning"},
                                                              {threadStopped, "threadStopped"},
                                                              {frameNormal, "frameNormal"},
                                                              {frameChecksumError, "frameChecksumError"},
                                                              {frameRetriesFailedError, "frameRetriesFailedError"},
                                                              {frameTimeoutError, "frameTimeoutError"},
                                                              {moduleNotPresent, "moduleNotPresent"},
                                                              {moduleClosed, "moduleClosed"},
                                                              {moduleConfigFailure, "moduleConfigFailure"},
                                                              {moduleOpen, "moduleOpen"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace SessionLayerStatus

struct SessionLayerMsg::Wire {
    static constexpr auto members = std::make_tuple(member("op_", &SessionLayerMsg::op_, "what is asked for"),
                                                    member("status_", &SessionLayerMsg::status_, "state of the layer"));
};

template class MessageOf<SessionLayerMsg, Confirmable>;

SessionLayerMsg::SessionLayerMsg(SessionLayerStatus::Enum status) : status_(status) { role(MessageRole::report); }

SessionLayerMsg::SessionLayerMsg(SessionLayerOp::Enum op) : op_(op) { role(MessageRole::request); }

boost::shared_ptr<SessionLayerMsg> SessionLayerMsg::create(boost::shared_ptr<SessionLayerMsg> const& request,
                                                           ZResult::Enum result) {
    return respondWithCopy(request, result);
}

} // namespace zorv
