// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libserialapi/SessionLayer.h"

namespace zorv::daemon {

/// The message that shows a frame of the serial link. Its role says who has spoken: a frame of the host is a request, one
/// of the module a response or, where nobody waits for it, a report.
boost::shared_ptr<ControlCommandMsg> makeControlCommand(serialapi::Side sender, serialapi::Frame const& frame);

} // namespace zorv::daemon
