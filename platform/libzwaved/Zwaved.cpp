// SPDX-License-Identifier: Apache-2.0
#include "platform/libzwaved/Zwaved.h"

namespace zorv {

Zwaved& Zwaved::instance() {
    static Zwaved zwaved;
    return zwaved;
}

Controller Zwaved::controller() const {
    std::lock_guard const lock(mutex_);
    return controller_;
}

void Zwaved::controller(Controller const& controller) {
    std::lock_guard const lock(mutex_);
    controller_ = controller;
}

} // namespace zorv
