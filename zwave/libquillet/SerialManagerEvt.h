// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/TMessage.h"
#include "platform/libtransport/tables/EnumDeclaration.h"
#include "zwave/libquillet/support/MessageOf.h"

namespace zorv {

/// What the serial manager does now.
namespace SerialManagerStatus {

enum Enum : int {
    idle,
    bootloaderRunning,
    bootloaderStopped,
    sessionLayerRunning,
    sessionLayerStopped,
    sessionLayerRestart
};

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace SerialManagerStatus

/// The daemon's serial manager, which runs the link to the Z-Wave module, tells the clients its new state.
class QUILLET_EXPORT SerialManagerEvt : public MessageOf<SerialManagerEvt, TMessage> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    SerialManagerEvt() = default;
    SerialManagerEvt(SerialManagerStatus::Enum status, unsigned int percentComplete)
        : status_(status), percentComplete_(percentComplete) {}

    /// The event of an operation that the message `cause` started.
    static boost::shared_ptr<SerialManagerEvt> create(TMessage const& cause, SerialManagerStatus::Enum status,
                                                      unsigned int percentComplete);

    SerialManagerStatus::Enum status() const noexcept { return status_; }
    unsigned int percentComplete() const noexcept { return percentComplete_; }

private:
    friend MessageOf;
    struct Wire;

    SerialManagerStatus::Enum status_ = SerialManagerStatus::idle;
    unsigned int percentComplete_ = 0; // carried as given, also above 100
};

extern template class MessageOf<SerialManagerEvt, TMessage>;

} // namespace zorv
