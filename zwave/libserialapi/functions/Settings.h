// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// What a host tells a module to be like.

namespace zorv::serialapi {

/// Reaches the module's memory with the next SetDefault; repeated at every start.
struct ApplicationNodeInformation {
    static constexpr Byte id = 0x03;
    static constexpr char const* name = "ApplicationNodeInformation";
    struct Request {
        Byte deviceOptions = 0; ///< 0x01 listening, 0x02 optional functionality
        Byte generic = 0;
        Byte specific = 0;
        Bytes commandClasses;

        static constexpr auto fields() {
            return layout(number("deviceOptions", &Request::deviceOptions), number("generic", &Request::generic),
                          number("specific", &Request::specific), counted("commandClasses", &Request::commandClasses));
        }
    };
};

/// In 10 ms, until the next reset; the response holds the old values.
struct SetTimeouts {
    static constexpr Byte id = 0x06;
    static constexpr char const* name = "SetTimeouts";
    struct Times {
        Byte ackTime = 0;
        Byte byteTime = 0;

        static constexpr auto fields() {
            return layout(number("ackTime", &Times::ackTime), number("byteTime", &Times::byteTime));
        }
    };
    using Request = Times;
    using Response = Times;
};

struct SoftReset {
    static constexpr Byte id = 0x08;
    static constexpr char const* name = "SoftReset";
    using Request = Nothing;
};

/// The settings of newer modules, one function with many commands.
struct SerialApiSetup {
    static constexpr Byte id = 0x0B;
    static constexpr char const* name = "SerialApiSetup";

    enum Command : Byte {
        unsupported = 0x00, ///< only in a response: the module does not know the command
        supportedCommands = 0x01,
        setTxStatusReport = 0x02,
        setMaxLongRangePower = 0x03,
        setPowerLevel = 0x04,
        getMaxLongRangePower = 0x05,
        getPowerLevel = 0x08,
        getMaxPayload = 0x10,
        getMaxLongRangePayload = 0x11,
        setPowerLevel16 = 0x12,
        getPowerLevel16 = 0x13,
        getSupportedRegions = 0x15,
        getRegionInformation = 0x16,
        getRegion = 0x20,
        setRegion = 0x40,
        setNodeIdWidth = 0x80
    };

    struct Request {
        Byte command = 0;
        std::int16_t power = 0;    ///< 0.1 dBm
        std::int16_t measured = 0; ///< 0.1 dBm that come out at 0 dBm
        std::int8_t power8 = 0;
        std::int8_t measured8 = 0;
        Byte value = 0; ///< switch, region, or bytes of a node id

        static constexpr bool hasPower16(Request const& r) {
            return r.command == setMaxLongRangePower || r.command == setPowerLevel16;
        }
        static constexpr bool hasMeasured16(Request const& r) { return r.command == setPowerLevel16; }
        static constexpr bool hasPower8(Request const& r) { return r.command == setPowerLevel; }
        static constexpr bool hasValue(Request const& r) {
            return r.command == setTxStatusReport || r.command == getRegionInformation || r.command == setRegion ||
                   r.command == setNodeIdWidth;
        }
        static constexpr auto fields() {
            return layout(number("command", &Request::command),
                          when(&Request::hasPower16, number("power", &Request::power)),
                          when(&Request::hasMeasured16, number("measured", &Request::measured)),
                          when(&Request::hasPower8, number("power", &Request::power8)),
                          when(&Request::hasPower8, number("measured", &Request::measured8)),
                          when(&Request::hasValue, number("value", &Request::value)));
        }
    };
    struct Response {
        Byte command = 0;
        Byte value = 0; ///< success, flags, payload, region, or the command that is not supported
        std::int16_t power = 0;
        std::int16_t measured = 0;
        std::int8_t power8 = 0;
        std::int8_t measured8 = 0;
        Bytes commandMask; ///< of supportedCommands; its first bit is command 0 or 1, by the module's version
        Bytes regions;
        std::optional<Byte> regionFlags;    ///< bit 0 classic, bit 1 long range
        std::optional<Byte> includedRegion; ///< the classic one that a long range one holds

        static constexpr bool hasPower16(Response const& r) {
            return r.command == getMaxLongRangePower || r.command == getPowerLevel16;
        }
        static constexpr bool hasMeasured16(Response const& r) { return r.command == getPowerLevel16; }
        static constexpr bool hasPower8(Response const& r) { return r.command == getPowerLevel; }
        static constexpr bool hasRegions(Response const& r) { return r.command == getSupportedRegions; }
        static constexpr bool hasMask(Response const& r) { return r.command == supportedCommands; }
        static constexpr bool hasRegionFlags(Response const& r) { return r.command == getRegionInformation; }
        static constexpr bool hasValue(Response const& r) { return !hasPower16(r) && !hasPower8(r) && !hasRegions(r); }
        static constexpr auto fields() {
            return layout(number("command", &Response::command),
                          when(&Response::hasPower16, number("power", &Response::power)),
                          when(&Response::hasMeasured16, number("measured", &Response::measured)),
                          when(&Response::hasPower8, number("power", &Response::power8)),
                          when(&Response::hasPower8, number("measured", &Response::measured8)),
                          when(&Response::hasRegions, counted("regions", &Response::regions)),
                          when(&Response::hasValue, number("value", &Response::value)),
                          when(&Response::hasMask, rest("commandMask", &Response::commandMask)),
                          when(&Response::hasRegionFlags, number("regionFlags", &Response::regionFlags)),
                          when(&Response::hasRegionFlags, number("includedRegion", &Response::includedRegion)));
        }
    };
};

/// Off while the module's memory is read or written.
struct SetRfReceiveMode {
    static constexpr Byte id = 0x10;
    static constexpr char const* name = "SetRfReceiveMode";
    using Request = Setting;
    using Response = Accepted;
};

struct RfPowerLevelSet {
    static constexpr Byte id = 0x17;
    static constexpr char const* name = "RfPowerLevelSet";
    using Request = Setting;
    using Response = Setting;
};

/// On the 700 and 800 series: jumps into the bootloader. On the 500 series: the programming mode.
struct EnterBootloader {
    static constexpr Byte id = 0x27;
    static constexpr char const* name = "EnterBootloader";
    using Request = Nothing;
};

struct SetListenBeforeTalkThreshold {
    static constexpr Byte id = 0x3C;
    static constexpr char const* name = "SetListenBeforeTalkThreshold";
    struct Request {
        Byte channel = 0;
        std::int8_t threshold = 0; ///< dBm

        static constexpr auto fields() {
            return layout(number("channel", &Request::channel), number("threshold", &Request::threshold));
        }
    };
    using Response = Accepted;
};

/// Forgets nodes, routes and ids. Newer modules restart afterwards.
struct SetDefault {
    static constexpr Byte id = 0x42;
    static constexpr char const* name = "SetDefault";
    using Request = JobCallback;
    using Callback = JobCallback;
};

struct LockRoute {
    static constexpr Byte id = 0x90;
    static constexpr char const* name = "LockRoute";
    using Request = Setting;
};

struct WatchdogEnable {
    static constexpr Byte id = 0xB6;
    static constexpr char const* name = "WatchdogEnable";
    using Request = Nothing;
};

struct WatchdogDisable {
    static constexpr Byte id = 0xB7;
    static constexpr char const* name = "WatchdogDisable";
    using Request = Nothing;
};

struct WatchdogKick {
    static constexpr Byte id = 0xB8;
    static constexpr char const* name = "WatchdogKick";
    using Request = Nothing;
};

struct RfPowerLevelGet {
    static constexpr Byte id = 0xBA;
    static constexpr char const* name = "RfPowerLevelGet";
    using Request = Nothing;
    using Response = Setting;
};

struct SetPromiscuousMode {
    static constexpr Byte id = 0xD0;
    static constexpr char const* name = "SetPromiscuousMode";
    using Request = Setting;
};

struct WatchdogStart {
    static constexpr Byte id = 0xD2;
    static constexpr char const* name = "WatchdogStart";
    using Request = Nothing;
};

struct WatchdogStop {
    static constexpr Byte id = 0xD3;
    static constexpr char const* name = "WatchdogStop";
    using Request = Nothing;
};

struct SetRoutingMax {
    static constexpr Byte id = 0xD4;
    static constexpr char const* name = "SetRoutingMax";
    using Request = Setting;
    using Response = Accepted;
};

struct SetMaxInclusionRequestIntervals {
    static constexpr Byte id = 0xD6;
    static constexpr char const* name = "SetMaxInclusionRequestIntervals";
    using Request = Setting;
    using Response = Accepted;
};

/// Stops the module until its power was off.
struct Shutdown {
    static constexpr Byte id = 0xD9;
    static constexpr char const* name = "Shutdown";
    using Request = Nothing;
    using Response = Accepted;
};

struct GetDcdcConfig {
    static constexpr Byte id = 0xDE;
    static constexpr char const* name = "GetDcdcConfig";
    using Request = Nothing;
    using Response = Setting;
};

struct SetDcdcConfig {
    static constexpr Byte id = 0xDF;
    static constexpr char const* name = "SetDcdcConfig";
    using Request = Setting;
    using Response = Accepted;
};

struct EnableRadioPti {
    static constexpr Byte id = 0xE7;
    static constexpr char const* name = "EnableRadioPti";
    using Request = Setting;
    using Response = Accepted;
};

struct GetRadioPti {
    static constexpr Byte id = 0xE8;
    static constexpr char const* name = "GetRadioPti";
    using Request = Nothing;
    using Response = Setting;
};

} // namespace zorv::serialapi
