#include "platform/libzorvshared/RawCommand.h"

#include "platform/libtransport/FramedOfImpl.h"

namespace zorv {

std::string const RawCommand::NAME("RawCommand");
SerialRegistrar const RawCommand::registrar("zorv::" + NAME, &RawCommand::serialFactory);

struct RawCommand::Wire {
    static constexpr auto members =
        std::make_tuple(member("data_", &RawCommand::data_, "command class, command and parameters"));
};

template class FramedOf<RawCommand, GenericCommand>;

} // namespace zorv
