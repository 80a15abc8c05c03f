// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

namespace zorv {

/// Asks the daemon to ping one node. A client sends it; the answer carries the latency. Count, time and header are the
/// client's own, for the table in which it shows a series of pings, and do not travel.
class QUILLET_EXPORT PingMsg : public MessageOf<PingMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    PingMsg() = default;
    explicit PingMsg(ZwaveAddress const& destination) : destination_(destination) {}

    static boost::shared_ptr<PingMsg> create(ZwaveAddress const& destination);
    static boost::shared_ptr<PingMsg> create(boost::shared_ptr<PingMsg> const& request, ZResult::Enum result,
                                             unsigned int latencyMs);

    void header(bool header) { header_ = header; }
    void count(int count) { count_ = count; }
    void time(TimeStamp const& time) { time_ = time; }

    ZwaveAddress const& destination() const noexcept { return destination_; }
    unsigned int latencyMs() const noexcept { return latencyMs_; }

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    bool header_ = false; // whether the rows begin with the column titles
    int count_ = 0;       // number of this ping in its series
    TimeStamp time_;      // when the ping was made
    ZwaveAddress destination_;
    unsigned int latencyMs_ = 0; // round trip, milliseconds
};

extern template class MessageOf<PingMsg, Confirmable>;

} // namespace zorv
