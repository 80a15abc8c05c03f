// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/Manufacturer.h"

#include "platform/libtransport/format16Bits.h"
#include "platform/libtransport/tables/ValueRecordImpl.h"
#include "transport/displayRow.h"

namespace zorv {

struct Manufacturer::Wire {
    static constexpr auto name = "Manufacturer";
    static constexpr auto members =
        std::make_tuple(member<&Manufacturer::manufacturerId_>("who made the device"),
                        member<&Manufacturer::productType_>("product line of the manufacturer"),
                        member<&Manufacturer::productId_>("product of that line"));
};

template class ValueRecord<Manufacturer>;

std::string Manufacturer::searchType() const {
    return format16Bits(static_cast<unsigned short>(manufacturerId_), false) + ':' + format16Bits(productType_, false) +
           ':' + format16Bits(productId_, false);
}

Manufacturer Manufacturer::prefix(std::string const& text) const {
    auto prefixed = *this;
    prefixed.prefix_ = text;
    return prefixed;
}

void Manufacturer::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, prefix_ + "Manufacturer id:", manufacturerId_);
    displayRow(rows, prefix_ + "Product type:", format16Bits(productType_, false));
    displayRow(rows, prefix_ + "Product id:", format16Bits(productId_, false));
}

} // namespace zorv
