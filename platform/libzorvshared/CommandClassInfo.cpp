// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/CommandClassInfo.h"

#include "platform/libtransport/tables/ValueRecordImpl.h"

namespace zorv {

struct CommandClassInfo::Wire {
    static constexpr auto name = "CommandClassInfo";
    static constexpr auto members =
        std::make_tuple(member<&CommandClassInfo::classVersion_>("version that the node implements"),
                        member<&CommandClassInfo::attribs_>("how the node uses the class"));
};

template class ValueRecord<CommandClassInfo>;

} // namespace zorv
