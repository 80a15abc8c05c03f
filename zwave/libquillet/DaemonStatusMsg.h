// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/EnumDeclaration.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// How far the daemon can be used.
namespace DaemonStatus {

enum Enum : int {
    notReady,
    moduleError,
    notSecure, ///< running, without network security
    secure     ///< running, with network security
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace DaemonStatus

/// What is wrong with the daemon: a set of flags.
namespace DaemonDetail {

enum Enum : int {
    noDetail = 0,
    moduleNotPresent = 1,
    moduleCommFailure = 2,
    invalidCountryCode = 4,
    firmwareFileNotFound = 8,
    lostSocket = 16,
    timeout = 32
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace DaemonDetail

// Larger than most messages: it brings two enumerations, one of them a set, and answers in two ways.

/// Whether the daemon is usable, and what is wrong where it is not. A client asks with a default message; the daemon
/// answers, and announces each change on its own.
class QUILLET_EXPORT DaemonStatusMsg : public MessageOf<DaemonStatusMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    /// A client's question.
    DaemonStatusMsg();
    /// The daemon's announcement.
    DaemonStatusMsg(ZwaveAddress const& address, DaemonStatus::Enum status, DaemonDetail::Enum detail);
    /// The daemon's answer, still without a result; NullPointerError "msg is null" where there is no request.
    DaemonStatusMsg(boost::shared_ptr<DaemonStatusMsg> const& request, ZwaveAddress const& address,
                    DaemonStatus::Enum status, DaemonDetail::Enum detail);

    static boost::shared_ptr<DaemonStatusMsg> create();
    static boost::shared_ptr<DaemonStatusMsg> create(ZwaveAddress const& address, DaemonStatus::Enum status,
                                                     DaemonDetail::Enum detail);
    static boost::shared_ptr<DaemonStatusMsg> create(boost::shared_ptr<DaemonStatusMsg> const& request,
                                                     ZwaveAddress const& address, DaemonStatus::Enum status,
                                                     DaemonDetail::Enum detail);
    static boost::shared_ptr<DaemonStatusMsg> create(boost::shared_ptr<DaemonStatusMsg> const& request,
                                                     ZResult::Enum result);

    ZwaveAddress const& address() const noexcept { return address_; }
    DaemonStatus::Enum status() const noexcept { return status_; }
    DaemonDetail::Enum detail() const noexcept { return detail_; }

private:
    friend MessageOf;
    struct Wire;

    ZwaveAddress address_;
    DaemonStatus::Enum status_ = DaemonStatus::notReady;
    DaemonDetail::Enum detail_ = DaemonDetail::noDetail;
};

extern template class MessageOf<DaemonStatusMsg, Confirmable>;

} // namespace zorv
