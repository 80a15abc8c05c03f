// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// What is asked of the session layer; 0 is an operation here, not an invalid one.
namespace SessionLayerOp {

enum Enum : int { status, ping };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace SessionLayerOp

/// State of the session layer, of its last frame or of the module.
namespace SessionLayerStatus {

enum Enum : int {
    unknown,
    idle,
    threadRunning,
    threadStopped,
    frameNormal,
    frameChecksumError,
    frameRetriesFailedError,
    frameTimeoutError,
    moduleNotPresent,
    moduleClosed,
    moduleConfigFailure,
    moduleOpen
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace SessionLayerStatus

/// The serial session layer, which carries frames between the daemon and the Z-Wave module. A client asks for its
/// status or pings it; the daemon answers, and reports each change of state on its own.
class QUILLET_EXPORT SessionLayerMsg : public MessageOf<SessionLayerMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SessionLayerMsg() = default;

    /// The daemon's report.
    explicit SessionLayerMsg(SessionLayerStatus::Enum status);

    /// A client's request.
    explicit SessionLayerMsg(SessionLayerOp::Enum op);

    static boost::shared_ptr<SessionLayerMsg> create(boost::shared_ptr<SessionLayerMsg> const& request,
                                                     ZResult::Enum result);
    /// The answer with the state filled in.
    static boost::shared_ptr<SessionLayerMsg> create(boost::shared_ptr<SessionLayerMsg> const& request,
                                                     ZResult::Enum result, SessionLayerStatus::Enum status);

    SessionLayerOp::Enum op() const noexcept { return op_; }
    SessionLayerStatus::Enum status() const noexcept { return status_; }

private:
    friend MessageOf;
    struct Wire;

    SessionLayerOp::Enum op_ = SessionLayerOp::status; // 0 is a real operation here
    SessionLayerStatus::Enum status_ = SessionLayerStatus::unknown;
};

extern template class MessageOf<SessionLayerMsg, Confirmable>;

} // namespace zorv
