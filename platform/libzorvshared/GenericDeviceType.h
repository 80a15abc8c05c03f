// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumDeclaration.h"

namespace zorv {

/// Generic device type that a node reports.
///
/// The set is open: a value without a name is its two hex digits.
namespace GenericDeviceType {

enum Enum : int {
    unknown = 0x00,
    genericController = 0x01,
    staticController = 0x02,
    avControlPoint = 0x03,
    display = 0x04,
    networkExtender = 0x05,
    appliance = 0x06,
    sensorNotification = 0x07,
    thermostat = 0x08,
    windowCovering = 0x09,
    repeaterSlave = 0x0F,
    switchBinary = 0x10,
    switchMultilevel = 0x11,
    switchRemote = 0x12,
    switchToggle = 0x13,
    zipNode = 0x15,
    ventilation = 0x16,
    securityPanel = 0x17,
    wallController = 0x18,
    sensorBinary = 0x20,
    sensorMultilevel = 0x21,
    meterPulse = 0x30,
    meter = 0x31,
    entryControl = 0x40,
    semiInteroperable = 0x50,
    sensorAlarm = 0xA1,
    nonInteroperable = 0xFF
};

ZORV_ENUM_DECLARE(ZORV_EXPORT)

} // namespace GenericDeviceType

} // namespace zorv
