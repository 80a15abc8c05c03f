// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// Commands between applications: the data of SendData and of ApplicationCommandHandler. Each is a table, as the
// functions are; node ids in it take one byte, whatever host and module agreed.

namespace zorv::serialapi {

/// A command of a class, with what `Form` names behind the two.
template <Byte classId, Byte commandId, class Form = Nothing> struct Command : Form {
    static constexpr Byte commandClass = classId;
    static constexpr Byte command = commandId;

    Command() = default;
    explicit Command(Form form) : Form(std::move(form)) {}
};

/// The command's bytes, class first.
template <class C> Bytes encodeCommand(C const& command) {
    ParameterWriter out(NodeIdWidth::one);
    out.put(C::commandClass);
    out.put(C::command);
    writeFields(out, command);
    return out.take();
}

/// Nothing where `data` is another command, or shorter than its table. What stands behind it is passed over.
template <class C> std::optional<C> decodeCommand(Bytes const& data) {
    ParameterReader in(data, NodeIdWidth::one);
    Byte commandClass = 0;
    Byte command = 0;
    C decoded;
    if (!in.take(commandClass) || !in.take(command) || commandClass != C::commandClass || command != C::command ||
        !readFields(in, decoded)) {
        return std::nullopt;
    }
    return decoded;
}

namespace commands {

// ---- No Operation has no command byte
inline Bytes const noOperation{0x00};

// ---- Basic and Binary Switch

/// What a switch is at, and from version 2 on what it goes to.
struct Level {
    Byte value = 0; ///< 0 off, 255 on
    std::optional<Byte> target;
    std::optional<Byte> duration;

    static constexpr auto fields() {
        return layout(number("value", &Level::value), number("target", &Level::target),
                      number("duration", &Level::duration));
    }
};

using BasicSet = Command<0x20, 0x01, Setting>;
using BasicGet = Command<0x20, 0x02>;
using BasicReport = Command<0x20, 0x03, Level>;
using BinarySwitchSet = Command<0x25, 0x01, Setting>;
using BinarySwitchGet = Command<0x25, 0x02>;
using BinarySwitchReport = Command<0x25, 0x03, Level>;

// ---- Manufacturer Specific

struct Product {
    std::uint16_t manufacturer = 0;
    std::uint16_t productType = 0;
    std::uint16_t productId = 0;

    static constexpr auto fields() {
        return layout(number("manufacturer", &Product::manufacturer), number("productType", &Product::productType),
                      number("productId", &Product::productId));
    }
};

using ManufacturerSpecificGet = Command<0x72, 0x04>;
using ManufacturerSpecificReport = Command<0x72, 0x05, Product>;

// ---- Battery

using BatteryGet = Command<0x80, 0x02>;
using BatteryReport = Command<0x80, 0x03, Setting>; ///< 0 to 100, 255: low

// ---- Wake Up

struct WakeUpInterval {
    std::uint32_t seconds = 0; ///< 0: by events only
    NodeId node = 0;           ///< who is told

    static constexpr auto fields() {
        return layout(number24("seconds", &WakeUpInterval::seconds), serialapi::node("node", &WakeUpInterval::node));
    }
};

struct WakeUpRange {
    std::uint32_t least = 0; ///< seconds, like the others
    std::uint32_t most = 0;
    std::uint32_t normal = 0;
    std::uint32_t step = 0;

    static constexpr auto fields() {
        return layout(number24("least", &WakeUpRange::least), number24("most", &WakeUpRange::most),
                      number24("normal", &WakeUpRange::normal), number24("step", &WakeUpRange::step));
    }
};

using WakeUpIntervalSet = Command<0x84, 0x04, WakeUpInterval>;
using WakeUpIntervalGet = Command<0x84, 0x05>;
using WakeUpIntervalReport = Command<0x84, 0x06, WakeUpInterval>;
using WakeUpNotification = Command<0x84, 0x07>; ///< the node listens for ten seconds after its last frame
using WakeUpNoMoreInformation = Command<0x84, 0x08>;
using WakeUpCapabilitiesGet = Command<0x84, 0x09>; ///< from version 2 on
using WakeUpCapabilitiesReport = Command<0x84, 0x0A, WakeUpRange>;

// ---- Association

struct AssociationGroup {
    Byte group = 0; ///< 1: lifeline

    static constexpr auto fields() { return layout(number("group", &AssociationGroup::group)); }
};

struct AssociatedNodes {
    Byte group = 0;
    Bytes nodes;

    static constexpr auto fields() {
        return layout(number("group", &AssociatedNodes::group), rest("nodes", &AssociatedNodes::nodes));
    }
};

struct AssociationState {
    Byte group = 0;
    Byte most = 0;   ///< nodes that the group can hold
    Byte follow = 0; ///< reports that follow this one
    Bytes nodes;

    static constexpr auto fields() {
        return layout(number("group", &AssociationState::group), number("most", &AssociationState::most),
                      number("follow", &AssociationState::follow), rest("nodes", &AssociationState::nodes));
    }
};

using AssociationSet = Command<0x85, 0x01, AssociatedNodes>;
using AssociationGet = Command<0x85, 0x02, AssociationGroup>;
using AssociationReport = Command<0x85, 0x03, AssociationState>;
using AssociationRemove = Command<0x85, 0x04, AssociatedNodes>; ///< no nodes: all of them
using AssociationGroupingsGet = Command<0x85, 0x05>;
using AssociationGroupingsReport = Command<0x85, 0x06, Setting>;

// ---- Version

struct Versions {
    Byte libraryType = 0;
    Byte protocol = 0;
    Byte protocolSub = 0;
    Byte application = 0;
    Byte applicationSub = 0;
    std::optional<Byte> hardware; ///< from version 2 on

    static constexpr auto fields() {
        return layout(number("libraryType", &Versions::libraryType), number("protocol", &Versions::protocol),
                      number("protocolSub", &Versions::protocolSub), number("application", &Versions::application),
                      number("applicationSub", &Versions::applicationSub), number("hardware", &Versions::hardware));
    }
};

struct ClassVersion {
    Byte commandClass = 0;
    Byte version = 0; ///< 0: the node does not support the class

    static constexpr auto fields() {
        return layout(number("commandClass", &ClassVersion::commandClass), number("version", &ClassVersion::version));
    }
};

using VersionGet = Command<0x86, 0x11>;
using VersionReport = Command<0x86, 0x12, Versions>;
using VersionCommandClassGet = Command<0x86, 0x13, Setting>;
using VersionCommandClassReport = Command<0x86, 0x14, ClassVersion>;

} // namespace commands

} // namespace zorv::serialapi
