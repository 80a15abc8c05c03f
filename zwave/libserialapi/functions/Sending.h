// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// Frames to nodes.

namespace zorv::serialapi {

/// How a frame came to its node. Older modules tell less, or nothing.
struct TransmitReport {
    struct Route {
        Byte repeaterCount = 0;
        std::int8_t ackRssi = 0;               ///< dBm; 127 not known, 126 too strong, 125 too weak
        std::array<Byte, 4> repeaterRssi = {}; ///< as above, of each repeater
        Byte ackChannel = 0;
        Byte channel = 0;
        Byte scheme = 0; ///< 1 direct, 3 last working route, 7 explorer
        std::array<Byte, 4> repeaters = {};
        Byte speed = 0; ///< 1 9.6k, 2 40k, 3 100k, and the beam
        Byte attempts = 0;

        static constexpr auto fields() {
            return layout(number("repeaterCount", &Route::repeaterCount), number("ackRssi", &Route::ackRssi),
                          array("repeaterRssi", &Route::repeaterRssi), number("ackChannel", &Route::ackChannel),
                          number("channel", &Route::channel), number("scheme", &Route::scheme),
                          array("repeaters", &Route::repeaters), number("speed", &Route::speed),
                          number("attempts", &Route::attempts));
        }
    };
    struct LongRange {
        std::int8_t power = 0; ///< dBm, like the others
        std::int8_t noiseFloor = 0;
        std::int8_t ackPower = 0;
        std::int8_t destinationRssi = 0;
        std::int8_t destinationNoiseFloor = 0;

        static constexpr auto fields() {
            return layout(number("power", &LongRange::power), number("noiseFloor", &LongRange::noiseFloor),
                          number("ackPower", &LongRange::ackPower),
                          number("destinationRssi", &LongRange::destinationRssi),
                          number("destinationNoiseFloor", &LongRange::destinationNoiseFloor));
        }
    };

    std::uint16_t ticks = 0; ///< 10 ms
    std::optional<Route> route;
    std::optional<std::array<Byte, 2>> lastFailedLink; ///< from, to
    std::optional<LongRange> longRange;

    static constexpr auto fields() {
        return layout(number("ticks", &TransmitReport::ticks), optionalRecord<17>(&TransmitReport::route),
                      array("lastFailedLink", &TransmitReport::lastFailedLink),
                      optionalRecord<5>(&TransmitReport::longRange));
    }
};

struct TransmitCallback {
    Byte callbackId = 0;
    Byte status = 0; ///< 0 ok, 1 no acknowledge, 2 failed, 3 not idle
    std::optional<TransmitReport> report;

    static constexpr auto fields() {
        return layout(number("callbackId", &TransmitCallback::callbackId), number("status", &TransmitCallback::status),
                      optionalRecord<2>(&TransmitCallback::report));
    }
};

struct SendNodeInformation {
    static constexpr Byte id = 0x12;
    static constexpr char const* name = "SendNodeInformation";
    struct Request {
        NodeId node = 0; ///< 255: everybody
        Byte options = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), number("options", &Request::options),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

/// One at a time: the next one waits for the callback.
struct SendData {
    static constexpr Byte id = 0x13;
    static constexpr char const* name = "SendData";
    struct Request {
        NodeId node = 0; ///< 255: everybody
        Bytes data;
        Byte options = 0; ///< 0x01 acknowledge, 0x04 auto route, 0x10 no route, 0x20 explore
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), counted("data", &Request::data),
                          number("options", &Request::options), number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

struct SendDataMulti {
    static constexpr Byte id = 0x14;
    static constexpr char const* name = "SendDataMulti";
    struct Request {
        std::vector<NodeId> nodes;
        Bytes data;
        Byte options = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::nodes("nodes", &Request::nodes), counted("data", &Request::data),
                          number("options", &Request::options), number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

/// The frame that is being sent ends with its callback, not acknowledged.
struct SendDataAbort {
    static constexpr Byte id = 0x16;
    static constexpr char const* name = "SendDataAbort";
    using Request = Nothing;
};

struct ReplicationCommandComplete {
    static constexpr Byte id = 0x44;
    static constexpr char const* name = "ReplicationCommandComplete";
    using Request = Nothing;
};

struct ReplicationSendData {
    static constexpr Byte id = 0x45;
    static constexpr char const* name = "ReplicationSendData";
    using Request = SendData::Request;
    using Response = Accepted;
    using Callback = TransmitCallback;
};

/// The form of bridge libraries, which the 700 and 800 series have.
struct SendDataBridge {
    static constexpr Byte id = 0xA9;
    static constexpr char const* name = "SendDataBridge";
    struct Request {
        NodeId source = 0;
        NodeId node = 0;
        Bytes data;
        Byte options = 0;
        std::array<Byte, 4> route = {}; ///< not used any more
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("source", &Request::source), serialapi::node("node", &Request::node),
                          counted("data", &Request::data), number("options", &Request::options),
                          array("route", &Request::route), number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

struct SendDataMultiBridge {
    static constexpr Byte id = 0xAB;
    static constexpr char const* name = "SendDataMultiBridge";
    struct Request {
        NodeId source = 0;
        std::vector<NodeId> nodes;
        Bytes data;
        Byte options = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("source", &Request::source), serialapi::nodes("nodes", &Request::nodes),
                          counted("data", &Request::data), number("options", &Request::options),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

struct SendTestFrame {
    static constexpr Byte id = 0xBE;
    static constexpr char const* name = "SendTestFrame";
    struct Request {
        NodeId node = 0;
        Byte powerLevel = 0; ///< 0 normal to 9, 2 dB less each
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), number("powerLevel", &Request::powerLevel),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = TransmitCallback;
};

} // namespace zorv::serialapi
