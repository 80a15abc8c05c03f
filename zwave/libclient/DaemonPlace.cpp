// SPDX-License-Identifier: Apache-2.0
#include "zwave/libclient/connectDaemon.h"

#include "platform/libio/connectUnix.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/VersionMsg.h"
#include "zwave/libquillet/protocolVersion.h"

#include <utility>

namespace zorv {

std::string toString(DaemonPlace const& place) {
    return place.socket.empty() ? place.host + " port " + std::to_string(place.port) : place.socket;
}

void connectDaemon(EventLoop& loop, DaemonPlace const& place, std::chrono::milliseconds timeout,
                   ConnectHandlers handlers) {
    if (!place.socket.empty()) { return connectUnix(loop, place.socket, TcpLimits(), std::move(handlers)); }
    connectTcp(loop, place.host, place.port, timeout, TcpLimits(), std::move(handlers));
}

std::string complaintAboutOpening(TMessage const& first) {
    auto const* const version = dynamic_cast<VersionMsg const*>(&first);
    if (version == nullptr) { return "the daemon did not tell its version but sent " + first.name(); }
    if (understands(version->protocolVersion())) { return {}; }
    return "the daemon speaks protocol version " + printable(version->protocolVersion()) + ", this client speaks " +
           protocolVersion;
}

} // namespace zorv
