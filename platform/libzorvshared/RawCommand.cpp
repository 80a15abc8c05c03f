// SPDX-License-Identifier: Apache-2.0
#include "platform/libzorvshared/RawCommand.h"

#include "platform/libtransport/tables/FramedRecordImpl.h"

namespace zorv {

std::string const RawCommand::NAME("RawCommand");
SerialRegistrar const RawCommand::registrar("zorv::" + NAME, &RawCommand::serialFactory);

struct RawCommand::Wire {
    static constexpr auto members =
        std::make_tuple(member<&RawCommand::data_>("command class, command and parameters"));
};

template class FramedRecord<RawCommand, GenericCommand>;

} // namespace zorv
