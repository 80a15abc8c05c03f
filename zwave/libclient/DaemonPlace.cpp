// SPDX-License-Identifier: Apache-2.0
#include "zwave/libclient/DaemonPlace.h"

namespace zorv {

std::string toString(DaemonPlace const& place) {
    return place.socket.empty() ? place.host + " port " + std::to_string(place.port) : place.socket;
}

} // namespace zorv
