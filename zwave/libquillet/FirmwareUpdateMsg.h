// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

#include <string>

namespace zorv {

/// State of an update of the controller module's firmware.
namespace FirmwareUpdateStatus {

enum Enum : int { idle, restart, running, complete };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace FirmwareUpdateStatus

/// Starts an update of the controller module's firmware, which differs by country. A client sends it with the country
/// code; the daemon answers, and reports the progress with messages of this class.
class QUILLET_EXPORT FirmwareUpdateMsg : public MessageOf<FirmwareUpdateMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180; ///< in the daemon's unit

    FirmwareUpdateMsg() = default;
    FirmwareUpdateMsg(ZResult::Enum result, std::string const& countryCode, FirmwareUpdateStatus::Enum status,
                      unsigned int percentComplete, unsigned int timeout)
        : MessageOf(result),
          countryCode_(countryCode),
          status_(status),
          percentComplete_(percentComplete),
          timeout_(timeout) {}

    static boost::shared_ptr<FirmwareUpdateMsg> create(std::string const& countryCode);
    static boost::shared_ptr<FirmwareUpdateMsg> create(std::string const& countryCode,
                                                       FirmwareUpdateStatus::Enum status);
    /// A report of the daemon's.
    static boost::shared_ptr<FirmwareUpdateMsg> create(FirmwareUpdateStatus::Enum status, unsigned int percentComplete);
    static boost::shared_ptr<FirmwareUpdateMsg> create(boost::shared_ptr<FirmwareUpdateMsg> const& request,
                                                       ZResult::Enum result, FirmwareUpdateStatus::Enum status,
                                                       unsigned int timeout);

    std::string const& countryCode() const noexcept { return countryCode_; }
    FirmwareUpdateStatus::Enum status() const noexcept { return status_; }
    unsigned int percentComplete() const noexcept { return percentComplete_; }
    unsigned int timeout() const noexcept { return timeout_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    std::string countryCode_;
    FirmwareUpdateStatus::Enum status_ = FirmwareUpdateStatus::idle;
    unsigned int percentComplete_ = 0;       // percent
    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the daemon's unit
};

extern template class MessageOf<FirmwareUpdateMsg, Confirmable>;

} // namespace zorv
