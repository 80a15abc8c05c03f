// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/LearnMode.h"
#include "platform/libzorvshared/LearnModeStatus.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to put the controller into or out of learn mode, in which it joins or leaves the network of another
/// controller; the answer carries the status that was reached.
class QUILLET_EXPORT LearnModeMsg : public MessageOf<LearnModeMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180000; // a thousand times that of the other network messages

    LearnModeMsg() = default;
    LearnModeMsg(LearnMode::Enum mode, ZResult::Enum result, LearnModeStatus::Enum status, unsigned int timeout)
        : MessageOf(result), mode_(mode), status_(status), timeout_(timeout) {}

    /// A client's request.
    static boost::shared_ptr<LearnModeMsg> create(LearnMode::Enum mode);
    static boost::shared_ptr<LearnModeMsg> create(LearnMode::Enum mode, ZResult::Enum result,
                                                  LearnModeStatus::Enum status, unsigned int timeout);
    /// The daemon's answer. `request` must not be empty.
    static boost::shared_ptr<LearnModeMsg> create(boost::shared_ptr<LearnModeMsg> const& request, ZResult::Enum result,
                                                  LearnModeStatus::Enum status, unsigned int timeout);

    LearnMode::Enum mode() const noexcept { return mode_; }
    LearnModeStatus::Enum status() const noexcept { return status_; }
    unsigned int timeout() const noexcept { return timeout_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    LearnMode::Enum mode_ = LearnMode::disabled;
    LearnModeStatus::Enum status_ = LearnModeStatus::none;
    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the unit of the daemon, which runs the operation
};

extern template class MessageOf<LearnModeMsg, Confirmable>;

} // namespace zorv
