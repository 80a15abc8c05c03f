// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/ValueRecord.h"
#include "platform/libzorvshared/BasicDeviceType.h"
#include "platform/libzorvshared/Capability.h"
#include "platform/libzorvshared/GenericDeviceType.h"
#include "platform/libzorvshared/Security.h"
#include "platform/libzorvshared/SpecificDeviceType.h"
#include "transport/CliViewer.h"

namespace zorv {

/// What the controller's node table says a node can do: the node's capability and security bytes and its device types.
class ZORV_EXPORT NodeProtocolInfo : public ValueRecord<NodeProtocolInfo>, public CliViewer {
public:
    NodeProtocolInfo() = default;
    NodeProtocolInfo(Capability::Enum capability, Security::Enum security, BasicDeviceType::Enum basicDeviceType,
                     GenericDeviceType::Enum genericDeviceType, SpecificDeviceType::Enum specificDeviceType)
        : capability_(capability),
          security_(security),
          basicDeviceType_(basicDeviceType),
          genericDeviceType_(genericDeviceType),
          specificDeviceType_(specificDeviceType) {}

    Capability::Enum capability() const noexcept { return capability_; }
    Security::Enum security() const noexcept { return security_; }
    BasicDeviceType::Enum basicDeviceType() const noexcept { return basicDeviceType_; }
    GenericDeviceType::Enum genericDeviceType() const noexcept { return genericDeviceType_; }
    SpecificDeviceType::Enum specificDeviceType() const noexcept { return specificDeviceType_; }

    /// Appends the members as rows of a label and a value.
    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend ValueRecord;
    struct Wire;

    Capability::Enum capability_ = {};
    Security::Enum security_ = {};
    BasicDeviceType::Enum basicDeviceType_ = BasicDeviceType::unknown;
    GenericDeviceType::Enum genericDeviceType_ = GenericDeviceType::unknown;
    SpecificDeviceType::Enum specificDeviceType_ = SpecificDeviceType::notUsed;
};

extern template class ValueRecord<NodeProtocolInfo>;

} // namespace zorv
