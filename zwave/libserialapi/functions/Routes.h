// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// Neighbours and routes.

namespace zorv::serialapi {

struct AssignReturnRoute {
    static constexpr Byte id = 0x46;
    static constexpr char const* name = "AssignReturnRoute";
    struct Request {
        NodeId node = 0;
        NodeId destination = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node),
                          serialapi::node("destination", &Request::destination),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = StatusCallback;
};

struct DeleteReturnRoute {
    static constexpr Byte id = 0x47;
    static constexpr char const* name = "DeleteReturnRoute";
    using Request = NodeJob;
    using Response = Accepted;
    using Callback = StatusCallback;
};

struct RequestNodeNeighborUpdate {
    static constexpr Byte id = 0x48;
    static constexpr char const* name = "RequestNodeNeighborUpdate";
    using Request = NodeJob;
    using Callback = StatusCallback;

    static constexpr Byte started = 0x21;
    static constexpr Byte done = 0x22;
    static constexpr Byte failed = 0x23;
    static constexpr bool isLast(Callback const& callback) { return callback.status != started; }
};

struct RouteToNode {
    std::array<Byte, 4> repeaters = {};
    Byte speed = 0; ///< 1 9.6k, 2 40k, 3 100k

    static constexpr auto fields() {
        return layout(array("repeaters", &RouteToNode::repeaters), number("speed", &RouteToNode::speed));
    }
};

struct AssignPriorityReturnRoute {
    static constexpr Byte id = 0x4F;
    static constexpr char const* name = "AssignPriorityReturnRoute";
    struct Request {
        NodeId node = 0;
        NodeId destination = 0;
        RouteToNode route;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node),
                          serialapi::node("destination", &Request::destination), record(&Request::route),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = StatusCallback;
};

struct AssignSucReturnRoute {
    static constexpr Byte id = 0x51;
    static constexpr char const* name = "AssignSucReturnRoute";
    using Request = NodeJob;
    using Response = Accepted;
    using Callback = StatusCallback;
};

struct DeleteSucReturnRoute {
    static constexpr Byte id = 0x55;
    static constexpr char const* name = "DeleteSucReturnRoute";
    using Request = NodeJob;
    using Response = Accepted;
    using Callback = StatusCallback;
};

struct AssignPrioritySucReturnRoute {
    static constexpr Byte id = 0x58;
    static constexpr char const* name = "AssignPrioritySucReturnRoute";
    struct Request {
        NodeId node = 0;
        RouteToNode route;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), record(&Request::route),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = StatusCallback;
};

/// The node's line of the routing table.
struct GetRoutingInfo {
    static constexpr Byte id = 0x80;
    static constexpr char const* name = "GetRoutingInfo";
    struct Request {
        NodeId node = 0;
        Byte removeBad = 0;
        Byte removeNonRepeaters = 0;
        std::optional<Byte> reserved;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), number("removeBad", &Request::removeBad),
                          number("removeNonRepeaters", &Request::removeNonRepeaters),
                          number("reserved", &Request::reserved));
        }
    };
    struct Response {
        BitMask neighbours; ///< 29 bytes

        static constexpr auto fields() { return layout(restMask("neighbours", &Response::neighbours)); }
    };
};

struct GetPriorityRoute {
    static constexpr Byte id = 0x92;
    static constexpr char const* name = "GetPriorityRoute";
    using Request = OneNode;
    struct Response {
        NodeId node = 0;
        Byte kind = 0; ///< 0 none, 1 last working, 2 next to last working, 0x10 of the application
        RouteToNode route;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Response::node), number("kind", &Response::kind),
                          record(&Response::route));
        }
    };
};

struct SetPriorityRoute {
    static constexpr Byte id = 0x93;
    static constexpr char const* name = "SetPriorityRoute";
    struct Request {
        NodeId node = 0;
        std::optional<RouteToNode> route; ///< none: forget it

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), optionalRecord<5>(&Request::route));
        }
    };
    struct Response {
        NodeId node = 0;
        std::optional<Byte> success; ///< some modules leave it out

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Response::node), number("success", &Response::success));
        }
    };
};

struct GetNeighborCount {
    static constexpr Byte id = 0xBB;
    static constexpr char const* name = "GetNeighborCount";
    using Request = OneNode;
    using Response = Setting;
};

struct AreNodesNeighbors {
    static constexpr Byte id = 0xBC;
    static constexpr char const* name = "AreNodesNeighbors";
    struct Request {
        NodeId node = 0;
        NodeId other = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), serialapi::node("other", &Request::other));
        }
    };
    using Response = Setting;
};

} // namespace zorv::serialapi
