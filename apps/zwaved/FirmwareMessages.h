// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/zwaved/Context.h"

#include "zwave/libquillet/FirmwareUpdateMsg.h"

#include <string>

namespace zorv::daemon {

/// The message that gives the module other firmware.
class FirmwareMessages {
public:
    /// `folder` holds a file for each country code, such as "EU.bin"; empty where there is none.
    FirmwareMessages(Context const& context, std::string folder);

private:
    using Request = boost::shared_ptr<FirmwareUpdateMsg>;

    void update(Request const& request, PeerId from);
    void refuse(Request const& request, PeerId from, ZResult::Enum result, DaemonDetail::Enum detail,
                std::string const& reason);

    Context context_;
    std::string folder_;
};

} // namespace zorv::daemon
