#include "platform/libzorvshared/CommandClassInfo.h"

#include "platform/libtransport/RecordOfImpl.h"

namespace zorv {

struct CommandClassInfo::Wire {
    static constexpr auto name = "CommandClassInfo";
    static constexpr auto members =
        std::make_tuple(member("classVersion_", &CommandClassInfo::classVersion_, "version that the node implements"),
                        member("attribs_", &CommandClassInfo::attribs_, "how the node uses the class"));
};

template class RecordOf<CommandClassInfo>;

} // namespace zorv
