#include "platform/libzorvshared/Capability.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::ProtocolVersion {

namespace {
constexpr auto table = enumTable<Enum>("ProtocolVersion", {{version0, "version0"},
                                                           {version1, "version1"},
                                                           {version2, "version2"},
                                                           {version3, "version3"},
                                                           {version4, "version4"},
                                                           {version5, "version5"},
                                                           {version6, "version6"},
                                                           {version7, "version7"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::ProtocolVersion

namespace zorv::Capability {

namespace {
constexpr auto table = flagTable<Enum>("Capability", "Capability", "none",
                                       {{baud9600, "baud9600"},
                                        {baud40000, "baud40000"},
                                        {baudReserved, "baudReserved"},
                                        {routing, "routing"},
                                        {listening, "listening"}},
                                       flagField<versionMask>(ProtocolVersion::table));
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::Capability
