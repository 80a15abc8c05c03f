// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// What a module hears and hands on without being asked.

namespace zorv::serialapi {

/// A command from a node.
struct ApplicationCommandHandler {
    static constexpr Byte id = 0x04;
    static constexpr char const* name = "ApplicationCommandHandler";
    struct Callback {
        Byte status = 0; ///< 0x04 broadcast, 0x08 multicast, 0x10 explorer frame
        NodeId source = 0;
        Bytes data;
        std::optional<std::int8_t> rssi; ///< dBm
        std::optional<Byte> securityKey;

        static constexpr auto fields() {
            return layout(number("status", &Callback::status), serialapi::node("source", &Callback::source),
                          counted("data", &Callback::data), number("rssi", &Callback::rssi),
                          number("securityKey", &Callback::securityKey));
        }
    };
};

/// The nodes that a multicast is for.
struct MulticastNodes {
    Byte header = 0; ///< bits 0 to 4: bytes of the mask, bits 5 to 7: where it begins
    Bytes mask;
};

namespace codecs {

struct HeadedMask {
    static constexpr Byte countBits = 0x1F;

    static bool read(ParameterReader& in, MulticastNodes& value) {
        return in.take(value.header) && in.take(std::size_t{value.header} & countBits, value.mask);
    }
    static void write(ParameterWriter& out, MulticastNodes const& value) {
        out.put(value.header);
        out.put(value.mask);
    }
    static void show(FieldValues& values, char const* name, MulticastNodes const& value) {
        Counted::show(values, name, value.mask);
    }
};

} // namespace codecs

/// A command from a node, as bridge libraries tell it: the 700 and 800 series.
struct ApplicationCommandHandlerBridge {
    static constexpr Byte id = 0xA8;
    static constexpr char const* name = "ApplicationCommandHandlerBridge";
    struct Callback {
        Byte status = 0;
        NodeId destination = 0; ///< not valid for a multicast
        NodeId source = 0;
        Bytes data;
        MulticastNodes multicast;
        std::optional<std::int8_t> rssi;
        std::optional<Byte> securityKey;
        std::optional<std::int8_t> sourcePower; ///< long range only, like the next one
        std::optional<std::int8_t> sourceNoiseFloor;

        static constexpr auto fields() {
            using MulticastField = Field<Callback, MulticastNodes, codecs::HeadedMask>;
            return layout(number("status", &Callback::status), node("destination", &Callback::destination),
                          node("source", &Callback::source), counted("data", &Callback::data),
                          MulticastField{"multicast", &Callback::multicast}, number("rssi", &Callback::rssi),
                          number("securityKey", &Callback::securityKey), number("sourcePower", &Callback::sourcePower),
                          number("sourceNoiseFloor", &Callback::sourceNoiseFloor));
        }
    };
};

/// Something about a node has changed, or the answer to RequestNodeInfo.
struct ApplicationUpdate {
    static constexpr Byte id = 0x49;
    static constexpr char const* name = "ApplicationUpdate";

    enum State : Byte {
        sucId = 0x10,
        nodeRemoved = 0x20,
        nodeAdded = 0x40,
        requestFailed = 0x81, ///< with node 0: of the oldest request that is open
        requestDone = 0x82,
        nodeInformation = 0x84,
        smartStart = 0x85, ///< a node asks for inclusion
        smartStartIncluded = 0x86,
        smartStartLongRange = 0x87
    };

    struct SmartStart {
        Byte length = 0; ///< of what follows
        std::uint32_t homeId = 0;
        Byte classCount = 0;
        NodeInformation information;

        static constexpr auto fields() {
            return layout(number("length", &SmartStart::length), number("homeId", &SmartStart::homeId),
                          number("classCount", &SmartStart::classCount), record(&SmartStart::information));
        }
    };
    struct SmartStartIncluded {
        Byte length = 0;
        Byte status = 0;
        std::uint32_t homeId = 0;

        static constexpr auto fields() {
            return layout(number("length", &SmartStartIncluded::length), number("status", &SmartStartIncluded::status),
                          number("homeId", &SmartStartIncluded::homeId));
        }
    };
    struct Callback {
        Byte state = 0;
        NodeId node = 0;
        std::optional<NodeInformation> information;
        SmartStart smartStart;
        SmartStartIncluded included;
        std::optional<Byte> length; ///< of the other states, where it says nothing

        static constexpr bool hasInformation(Callback const& c) {
            return c.state == State::nodeInformation || c.state == State::nodeAdded;
        }
        static constexpr bool hasSmartStart(Callback const& c) {
            return c.state == State::smartStart || c.state == State::smartStartLongRange;
        }
        static constexpr bool hasIncluded(Callback const& c) { return c.state == State::smartStartIncluded; }
        static constexpr bool hasLength(Callback const& c) {
            return !hasInformation(c) && !hasSmartStart(c) && !hasIncluded(c);
        }
        static constexpr auto fields() {
            return layout(number("state", &Callback::state), serialapi::node("node", &Callback::node),
                          when(&Callback::hasInformation, countedRecord(&Callback::information)),
                          when(&Callback::hasSmartStart, record(&Callback::smartStart)),
                          when(&Callback::hasIncluded, record(&Callback::included)),
                          when(&Callback::hasLength, number("length", &Callback::length)));
        }
    };
};

/// A frame that was meant for somebody else.
struct PromiscuousFrame {
    static constexpr Byte id = 0xD1;
    static constexpr char const* name = "PromiscuousFrame";
    struct Callback {
        Byte status = 0;
        NodeId source = 0;
        Bytes data;
        NodeId destination = 0;
        BitMask multicast;
        std::optional<std::int8_t> rssi;

        static constexpr auto fields() {
            return layout(number("status", &Callback::status), node("source", &Callback::source),
                          counted("data", &Callback::data), node("destination", &Callback::destination),
                          countedMask("multicast", &Callback::multicast), number("rssi", &Callback::rssi));
        }
    };
};

} // namespace zorv::serialapi
