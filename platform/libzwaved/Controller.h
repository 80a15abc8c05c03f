// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libzorvshared/ZwaveAddress.h"

namespace zorv {

/// The controller module that a daemon drives.
class Controller {
public:
    Controller() = default;
    Controller(HomeId homeId, unsigned char nodeId) noexcept : homeId_(homeId), nodeId_(nodeId) {}

    /// Home id of the network that the controller is in; 0 as long as the module has not told.
    HomeId homeId() const noexcept { return homeId_; }

    /// The controller's own node id; 0 as long as the module has not told.
    unsigned char nodeId() const noexcept { return nodeId_; }

private:
    HomeId homeId_ = 0;
    unsigned char nodeId_ = 0;
};

} // namespace zorv
