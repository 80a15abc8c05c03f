#include "platform/libzorvshared/SerialCapabilities.h"

#include "platform/libtransport/RecordOfImpl.h"

namespace zorv {

struct SerialCapabilities::Wire {
    static constexpr auto name = "SerialCapabilities";
    static constexpr auto members =
        std::make_tuple(member("apiVersion_", &SerialCapabilities::apiVersion_, "version of the serial interface"),
                        member("apiRevision_", &SerialCapabilities::apiRevision_, "revision of that version"),
                        member("manufacturerId_", &SerialCapabilities::manufacturerId_, "who made the chip"),
                        member("productType_", &SerialCapabilities::productType_, "product line of the chip"),
                        member("productId_", &SerialCapabilities::productId_, "product of that line"),
                        member("commands_", &SerialCapabilities::commands_, "functions that the module supports"));
};

template class RecordOf<SerialCapabilities>;

} // namespace zorv
