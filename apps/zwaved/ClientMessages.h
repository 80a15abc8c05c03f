// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/SubscribeMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"
#include "zwave/libquillet/VersionMsg.h"

#include <functional>

namespace zorv::daemon {

/// The messages between the daemon itself and its clients: what they hear, how it is, and its end.
class ClientMessages {
public:
    /// `metrics` gives the rows that clients are shown, `quit` ends the daemon.
    ClientMessages(Context const& context, std::function<StringVecVec()> metrics, std::function<void()> quit);

    void tellVersion(PeerId to);

private:
    void subscribe(boost::shared_ptr<SubscribeMsg> const& request, PeerId from);
    void observe(boost::shared_ptr<ObserveMsg> const& request, PeerId from);

    Context context_;
};

} // namespace zorv::daemon
