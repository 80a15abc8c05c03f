// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/ModulePort.h"

#include "zwave/libmodulesim/SimulatedNetwork.h"

#include <string>

namespace zorv {

class EventLoop;

} // namespace zorv

namespace zorv::daemon {

/// A module on a serial port.
OpenPort serialPort(EventLoop& loop, std::string const& device, unsigned int baud);

/// A simulated module in this process. It outlives its port, as a module does.
OpenPort simulatedPort(EventLoop& loop, modulesim::SimulatedNetwork const& network);

} // namespace zorv::daemon
