#include "platform/libzorvshared/Security.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::Security {

namespace {
constexpr auto table = flagTable<Enum>("Security", "none",
                                       {{security, "security"},
                                        {controller, "controller"},
                                        {specificDeviceType, "specificDeviceType"},
                                        {routingSlave, "routingSlave"},
                                        {beamCapability, "beamCapability"},
                                        {sensor250ms, "sensor250ms"},
                                        {sensor1000ms, "sensor1000ms"},
                                        {optionalFunctionality, "optionalFunctionality"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::Security
