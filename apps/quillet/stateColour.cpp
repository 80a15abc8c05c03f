// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/stateColour.h"

#include "apps/quillet/Terminal.h"

#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"
#include "platform/libzorvshared/SystemStatus.h"
#include "platform/libzorvshared/ZResult.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/SessionLayerMsg.h"

#include <map>

namespace zorv {

namespace {

using Colours = std::map<std::string, char const*>;

template <class Enum> void paint(Colours& colours, char const* colour, std::initializer_list<Enum> values) {
    for (auto const value : values) { colours.emplace(toString(value), colour); }
}

Colours makeColours() {
    Colours colours;
    paint(colours, escape::green, {ZResult::success});
    paint(colours, escape::yellow, {ZResult::inProgress});
    paint(colours, escape::red,
          {ZResult::failure, ZResult::rejected, ZResult::timeout, ZResult::fileNotFound, ZResult::fileOpenFailure,
           ZResult::fileReadFailure, ZResult::noBlobs, ZResult::nodeNotFound, ZResult::nodeNotReached,
           ZResult::nodeAsleep});
    paint(colours, escape::green, {DeviceStatus::ready});
    paint(colours, escape::yellow, {DeviceStatus::configuring, DeviceStatus::incomplete});
    paint(colours, escape::red, {DeviceStatus::fault});
    paint(colours, escape::green, {DeviceNetworkStatus::online});
    paint(colours, escape::red, {DeviceNetworkStatus::offline, DeviceNetworkStatus::failed});
    paint(colours, escape::yellow, {SystemStatus::starting, SystemStatus::updating, SystemStatus::stopping});
    paint(colours, escape::red, {SystemStatus::degraded});
    paint(colours, escape::green, {DaemonStatus::notSecure, DaemonStatus::secure}); // both are running
    paint(colours, escape::red, {DaemonStatus::notReady, DaemonStatus::moduleError});
    paint(colours, escape::green, {SessionLayerStatus::frameNormal});
    paint(colours, escape::red,
          {SessionLayerStatus::frameChecksumError, SessionLayerStatus::frameRetriesFailedError,
           SessionLayerStatus::frameTimeoutError, SessionLayerStatus::moduleNotPresent,
           SessionLayerStatus::moduleClosed, SessionLayerStatus::moduleConfigFailure});
    paint(colours, escape::green, {RequestNeighborUpdateStatus::done});
    paint(colours, escape::yellow, {RequestNeighborUpdateStatus::started});
    paint(colours, escape::green, {ConfigurationStatus::finish});
    paint(colours, escape::red, {ConfigurationStatus::interrupted});
    return colours;
}

} // namespace

char const* stateColour(std::string const& text) {
    static Colours const colours = makeColours();
    auto const found = colours.find(text);
    return found == colours.end() ? nullptr : found->second;
}

} // namespace zorv
