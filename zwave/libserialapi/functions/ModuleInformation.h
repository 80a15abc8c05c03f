// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// What a module tells about itself.

namespace zorv::serialapi {

/// The nodes of the network; those of long range are not among them.
struct GetInitData {
    static constexpr Byte id = 0x02;
    static constexpr char const* name = "GetInitData";
    using Request = Nothing;
    struct Response {
        Byte apiVersion = 0;
        Byte capabilities = 0; ///< bit 2 secondary, bit 3 SIS
        BitMask nodes;         ///< 29 bytes
        Byte chipType = 0;
        Byte chipVersion = 0;

        static constexpr auto fields() {
            return layout(number("apiVersion", &Response::apiVersion), number("capabilities", &Response::capabilities),
                          countedMask("nodes", &Response::nodes), number("chipType", &Response::chipType),
                          number("chipVersion", &Response::chipVersion));
        }
    };
};

struct GetControllerCapabilities {
    static constexpr Byte id = 0x05;
    static constexpr char const* name = "GetControllerCapabilities";
    using Request = Nothing;
    struct Response {
        Byte capabilities = 0; ///< 0x01 secondary, 0x02 other network, 0x04 SIS there, 0x08 primary, 0x10 is SUC

        static constexpr auto fields() { return layout(number("capabilities", &Response::capabilities)); }
    };
};

/// Which functions the module knows; to be looked at before an optional one is called.
struct GetCapabilities {
    static constexpr Byte id = 0x07;
    static constexpr char const* name = "GetCapabilities";
    using Request = Nothing;
    struct Response {
        Byte version = 0;
        Byte revision = 0;
        std::uint16_t manufacturer = 0;
        std::uint16_t productType = 0;
        std::uint16_t productId = 0;
        BitMask functions; ///< 32 bytes

        static constexpr auto fields() {
            return layout(number("version", &Response::version), number("revision", &Response::revision),
                          number("manufacturer", &Response::manufacturer),
                          number("productType", &Response::productType), number("productId", &Response::productId),
                          restMask("functions", &Response::functions));
        }
    };
};

struct GetProtocolVersion {
    static constexpr Byte id = 0x09;
    static constexpr char const* name = "GetProtocolVersion";
    using Request = Nothing;
    struct Response {
        Byte type = 0; ///< 0 classic, 1 long range
        Byte major = 0;
        Byte minor = 0;
        Byte revision = 0;
        std::optional<std::uint16_t> build;
        std::optional<std::array<Byte, 16>> gitHash;

        static constexpr auto fields() {
            return layout(number("type", &Response::type), number("major", &Response::major),
                          number("minor", &Response::minor), number("revision", &Response::revision),
                          number("build", &Response::build), array("gitHash", &Response::gitHash));
        }
    };
};

/// The module has started; many of the 500 series never say so.
struct SerialApiStarted {
    static constexpr Byte id = 0x0A;
    static constexpr char const* name = "SerialApiStarted";
    struct Callback {
        Byte reason = 0; ///< 3 watchdog, 5 power on, 7 software reset
        Byte watchdog = 0;
        Byte deviceOptions = 0;
        Byte generic = 0;
        Byte specific = 0;
        Bytes commandClasses;
        std::optional<Byte> capabilities; ///< bit 0 long range

        static constexpr auto fields() {
            return layout(number("reason", &Callback::reason), number("watchdog", &Callback::watchdog),
                          number("deviceOptions", &Callback::deviceOptions), number("generic", &Callback::generic),
                          number("specific", &Callback::specific), counted("commandClasses", &Callback::commandClasses),
                          number("capabilities", &Callback::capabilities));
        }
    };
};

/// Cheap and without side effects: also a ping of the module.
struct GetVersion {
    static constexpr Byte id = 0x15;
    static constexpr char const* name = "GetVersion";
    using Request = Nothing;
    struct Response {
        std::string version;  ///< "Z-Wave 4.05"
        Byte libraryType = 0; ///< 1 static controller, 7 bridge controller

        static constexpr auto fields() {
            return layout(text<12>("version", &Response::version), number("libraryType", &Response::libraryType));
        }
    };
};

struct GetRandom {
    static constexpr Byte id = 0x1C;
    static constexpr char const* name = "GetRandom";
    struct Request {
        std::optional<Byte> count; ///< up to 32; 2 where it is left out

        static constexpr auto fields() { return layout(number("count", &Request::count)); }
    };
    struct Response {
        Byte success = 0;
        Bytes random;

        static constexpr auto fields() {
            return layout(number("success", &Response::success), counted("random", &Response::random));
        }
    };
};

struct Random {
    static constexpr Byte id = 0x1D;
    static constexpr char const* name = "Random";
    using Request = Nothing;
    using Response = Setting;
};

struct MemoryGetId {
    static constexpr Byte id = 0x20;
    static constexpr char const* name = "MemoryGetId";
    using Request = Nothing;
    struct Response {
        std::uint32_t homeId = 0;
        NodeId node = 0;

        static constexpr auto fields() {
            return layout(number("homeId", &Response::homeId), serialapi::node("node", &Response::node));
        }
    };
};

struct ClearTxTimers {
    static constexpr Byte id = 0x37;
    static constexpr char const* name = "ClearTxTimers";
    using Request = Nothing;
};

struct GetTxTimers {
    static constexpr Byte id = 0x38;
    static constexpr char const* name = "GetTxTimers";
    using Request = Nothing;
    struct Response {
        std::uint32_t channel0 = 0; ///< milliseconds on the air
        std::uint32_t channel1 = 0;
        std::uint32_t channel2 = 0;
        std::optional<std::uint32_t> longRange;

        static constexpr auto fields() {
            return layout(number("channel0", &Response::channel0), number("channel1", &Response::channel1),
                          number("channel2", &Response::channel2), number("longRange", &Response::longRange));
        }
    };
};

struct ClearNetworkStats {
    static constexpr Byte id = 0x39;
    static constexpr char const* name = "ClearNetworkStats";
    using Request = Nothing;
    using Response = Accepted;
};

/// Counters that stay at 65535 when they get there.
struct GetNetworkStats {
    static constexpr Byte id = 0x3A;
    static constexpr char const* name = "GetNetworkStats";
    using Request = Nothing;
    struct Response {
        std::uint16_t sent = 0;
        std::uint16_t backOffs = 0;
        std::uint16_t received = 0;
        std::uint16_t lrcErrors = 0;
        std::uint16_t crcErrors = 0;
        std::uint16_t foreign = 0; ///< of another home id

        static constexpr auto fields() {
            return layout(number("sent", &Response::sent), number("backOffs", &Response::backOffs),
                          number("received", &Response::received), number("lrcErrors", &Response::lrcErrors),
                          number("crcErrors", &Response::crcErrors), number("foreign", &Response::foreign));
        }
    };
};

struct GetBackgroundRssi {
    static constexpr Byte id = 0x3B;
    static constexpr char const* name = "GetBackgroundRssi";
    using Request = Nothing;
    struct Response {
        std::int8_t channel0 = 0; ///< dBm; 127 where the channel is not used
        std::int8_t channel1 = 0;
        std::optional<std::int8_t> channel2;
        std::optional<std::int8_t> channel3;

        static constexpr auto fields() {
            return layout(number("channel0", &Response::channel0), number("channel1", &Response::channel1),
                          number("channel2", &Response::channel2), number("channel3", &Response::channel3));
        }
    };
};

struct TypeLibrary {
    static constexpr Byte id = 0xBD;
    static constexpr char const* name = "TypeLibrary";
    using Request = Nothing;
    using Response = Setting;
};

struct GetProtocolStatus {
    static constexpr Byte id = 0xBF;
    static constexpr char const* name = "GetProtocolStatus";
    using Request = Nothing;
    using Response = Setting;
};

/// Some modules hold their frames back until a host says that it is there.
struct SerialApiReady {
    static constexpr Byte id = 0xEF;
    static constexpr char const* name = "SerialApiReady";
    using Request = Setting;
};

} // namespace zorv::serialapi
