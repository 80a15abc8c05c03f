#include "platform/libzorvshared/RawCommand.h"

#include "platform/libtransport/MemberTable.h"

#include <memory>

namespace zorv {

std::string const RawCommand::NAME("RawCommand");
SerialRegistrar const RawCommand::registrar("zorv::" + NAME, &RawCommand::serialFactory);

struct RawCommand::Wire {
    static constexpr auto members =
        std::make_tuple(member("data_", &RawCommand::data_, "command class, command and parameters"));
};

void RawCommand::serialInserter(Serializer& s) const {
    insertFrame<GenericCommand>(s, serialName(), *this, Wire::members);
}

void RawCommand::serialExtract(Serializer& s) { extractFrame<GenericCommand>(s, *this, Wire::members); }

Serializable* RawCommand::serialFactory(Serializer& s, Serializable* target) {
    return extractOrMake(s, target, &std::make_unique<RawCommand>);
}

char const* RawCommand::serialName() noexcept { return registrar.serialName().c_str(); }

TypeDescriptor RawCommand::describe() { return describeRecord(NAME, RawCommand(), Wire::members); }

} // namespace zorv
