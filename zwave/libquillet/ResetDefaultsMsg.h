// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to reset the Z-Wave controller to its factory defaults; the daemon answers with the outcome, and
/// reports a reset that it did on its own.
class QUILLET_EXPORT ResetDefaultsMsg : public MessageOf<ResetDefaultsMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180;

    ResetDefaultsMsg() = default;
    explicit ResetDefaultsMsg(unsigned int timeout) : timeout_(timeout) {}

    /// A client's request.
    static boost::shared_ptr<ResetDefaultsMsg> create();
    /// The daemon's report.
    static boost::shared_ptr<ResetDefaultsMsg> create(ZResult::Enum result);
    static boost::shared_ptr<ResetDefaultsMsg> create(boost::shared_ptr<ResetDefaultsMsg> const& request,
                                                      ZResult::Enum result, unsigned int timeout);

    void timeout(unsigned int timeout) noexcept { timeout_ = timeout; }

    unsigned int timeout() const noexcept { return timeout_; }

private:
    friend MessageOf;
    struct Wire;

    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the unit of the daemon, which runs the reset
};

extern template class MessageOf<ResetDefaultsMsg, Confirmable>;

} // namespace zorv
