// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/SessionLayerMsg.h"

#include <chrono>

namespace zorv::daemon {

/// The messages about the module itself and the serial link to it.
class ModuleMessages {
public:
    explicit ModuleMessages(Context const& context);

private:
    void controllerInfo(boost::shared_ptr<ControllerInfoMsg> const& request, PeerId from);
    void sessionLayer(boost::shared_ptr<SessionLayerMsg> const& request, PeerId from);
    SessionLayerStatus::Enum sessionStatus() const;
    void controlCommand(boost::shared_ptr<ControlCommandMsg> const& message, PeerId from);

    Context context_;
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

} // namespace zorv::daemon
