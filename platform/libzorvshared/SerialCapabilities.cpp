// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/SerialCapabilities.h"

#include "platform/libtransport/tables/ValueRecordImpl.h"

namespace zorv {

struct SerialCapabilities::Wire {
    static constexpr auto name = "SerialCapabilities";
    static constexpr auto members =
        std::make_tuple(member<&SerialCapabilities::apiVersion_>("version of the serial interface"),
                        member<&SerialCapabilities::apiRevision_>("revision of that version"),
                        member<&SerialCapabilities::manufacturerId_>("who made the chip"),
                        member<&SerialCapabilities::productType_>("product line of the chip"),
                        member<&SerialCapabilities::productId_>("product of that line"),
                        member<&SerialCapabilities::commands_>("functions that the module supports"));
};

template class ValueRecord<SerialCapabilities>;

} // namespace zorv
