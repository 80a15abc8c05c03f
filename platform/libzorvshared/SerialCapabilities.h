// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/ValueRecord.h"
#include "platform/libzorvshared/ManufacturerId.h"
#include "platform/libzorvshared/ZwApiCommand.h"

#include <vector>

namespace zorv {

/// The module's answer to the question what its serial interface can do.
class ZORV_EXPORT SerialCapabilities : public ValueRecord<SerialCapabilities> {
public:
    SerialCapabilities() = default;
    SerialCapabilities(unsigned char apiVersion, unsigned char apiRevision, ManufacturerId::Enum manufacturerId,
                       unsigned short productType, unsigned short productId,
                       std::vector<ZwApiCommand::Enum> const& commands)
        : apiVersion_(apiVersion),
          apiRevision_(apiRevision),
          manufacturerId_(manufacturerId),
          productType_(productType),
          productId_(productId),
          commands_(commands) {}

    unsigned char apiVersion() const noexcept { return apiVersion_; }
    unsigned char apiRevision() const noexcept { return apiRevision_; }
    ManufacturerId::Enum manufacturerId() const noexcept { return manufacturerId_; }
    unsigned short productType() const noexcept { return productType_; }
    unsigned short productId() const noexcept { return productId_; }
    std::vector<ZwApiCommand::Enum> const& commands() const noexcept { return commands_; }

private:
    friend ValueRecord;
    struct Wire;

    unsigned char apiVersion_ = 0;
    unsigned char apiRevision_ = 0;
    ManufacturerId::Enum manufacturerId_ = ManufacturerId::unknown; // of the chip, as are the two below
    unsigned short productType_ = 0;
    unsigned short productId_ = 0;
    std::vector<ZwApiCommand::Enum> commands_;
};

extern template class ValueRecord<SerialCapabilities>;

} // namespace zorv
