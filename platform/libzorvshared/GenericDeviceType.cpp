#include "platform/libzorvshared/GenericDeviceType.h"

#include "platform/libtransport/EnumTable.h"

namespace zorv::GenericDeviceType {

namespace {
constexpr auto table = openEnumTable<Enum>("GenericDeviceType", 2,
                                           {{unknown, "unknown"},
                                            {genericController, "genericController"},
                                            {staticController, "staticController"},
                                            {avControlPoint, "avControlPoint"},
                                            {display, "display"},
                                            {networkExtender, "networkExtender"},
                                            {appliance, "appliance"},
                                            {sensorNotification, "sensorNotification"},
                                            {thermostat, "thermostat"},
                                            {windowCovering, "windowCovering"},
                                            {repeaterSlave, "repeaterSlave"},
                                            {switchBinary, "switchBinary"},
                                            {switchMultilevel, "switchMultilevel"},
                                            {switchRemote, "switchRemote"},
                                            {switchToggle, "switchToggle"},
                                            {zipNode, "zipNode"},
                                            {ventilation, "ventilation"},
                                            {securityPanel, "securityPanel"},
                                            {wallController, "wallController"},
                                            {sensorBinary, "sensorBinary"},
                                            {sensorMultilevel, "sensorMultilevel"},
                                            {meterPulse, "meterPulse"},
                                            {meter, "meter"},
                                            {entryControl, "entryControl"},
                                            {semiInteroperable, "semiInteroperable"},
                                            {sensorAlarm, "sensorAlarm"},
                                            {nonInteroperable, "nonInteroperable"}});
} // namespace

ZORV_ENUM_DEFINE(table)

} // namespace zorv::GenericDeviceType
