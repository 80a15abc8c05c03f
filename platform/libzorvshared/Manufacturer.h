// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/ValueRecord.h"
#include "platform/libzorvshared/ManufacturerId.h"
#include "transport/CliViewer.h"

#include <string>

namespace zorv {

/// Who made a device, and which of their products it is; the numbers are those that the device reports.
class ZORV_EXPORT Manufacturer : public ValueRecord<Manufacturer> {
public:
    Manufacturer() noexcept : Manufacturer(ManufacturerId::unknown, 0, 0) {}
    Manufacturer(ManufacturerId::Enum manufacturerId, unsigned short productType, unsigned short productId) noexcept
        : manufacturerId_(manufacturerId), productType_(productType), productId_(productId) {}

    ManufacturerId::Enum manufacturerId() const noexcept { return manufacturerId_; }
    unsigned short productType() const noexcept { return productType_; }
    unsigned short productId() const noexcept { return productId_; }

    /// What a driver for the product is looked up by: manufacturer, product type and product id, four hex digits each,
    /// such as "023f:0001:0102".
    std::string searchType() const;

    /// A copy whose displayed labels begin with `text`.
    Manufacturer prefix(std::string const& text) const;

    /// Appends the three numbers as rows of a label and a value.
    void accumulateDisplay(StringVecVec& rows) const;

private:
    friend ValueRecord;
    struct Wire;

    ManufacturerId::Enum manufacturerId_;
    unsigned short productType_;
    unsigned short productId_;
    std::string prefix_; // of the labels; does not travel
};

extern template class ValueRecord<Manufacturer>;

} // namespace zorv
