// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/NodeProtocolInfo.h"

#include "platform/libtransport/tables/ValueRecordImpl.h"
#include "transport/displayRow.h"

namespace zorv {

struct NodeProtocolInfo::Wire {
    static constexpr auto name = "NodeProtocolInfo";
    static constexpr auto members =
        std::make_tuple(member<&NodeProtocolInfo::capability_>("whether it listens and routes, how fast it is"),
                        member<&NodeProtocolInfo::security_>("security, and how the node is woken"),
                        member<&NodeProtocolInfo::basicDeviceType_>("controller or slave"),
                        member<&NodeProtocolInfo::genericDeviceType_>("what kind of device it is"),
                        member<&NodeProtocolInfo::specificDeviceType_>("kind within the generic type"));
};

template class ValueRecord<NodeProtocolInfo>;

void NodeProtocolInfo::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Capability:", capability_);
    displayRow(rows, "Security:", security_);
    displayRow(rows, "Basic device type:", basicDeviceType_);
    displayRow(rows, "Generic device type:", genericDeviceType_);
    displayRow(rows, "Specific device type:", specificDeviceType_);
}

} // namespace zorv
