// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// Who belongs to the network, and who does what in it.

namespace zorv::serialapi {

/// Progress of a mode that takes nodes in or out.
struct ModeCallback {
    Byte callbackId = 0;
    Byte status = 0; ///< 1 ready, 2 node found, 3 end node, 4 controller, 5 protocol done, 6 done, 7 failed
    NodeId node = 0;
    std::optional<NodeInformation> information;

    static constexpr auto fields() {
        return layout(number("callbackId", &ModeCallback::callbackId), number("status", &ModeCallback::status),
                      serialapi::node("node", &ModeCallback::node), countedRecord(&ModeCallback::information));
    }
};

namespace mode {

constexpr Byte any = 0x01;
constexpr Byte controllerOnly = 0x02; ///< what the change of the primary controller begins with
constexpr Byte stop = 0x05;
constexpr Byte stopFailed = 0x06;
constexpr Byte smartStartInclude = 0x08;
constexpr Byte smartStartListen = 0x09;
constexpr Byte longRange = 0x20;
constexpr Byte networkWide = 0x40;
constexpr Byte normalPower = 0x80;

constexpr Byte ready = 1;
constexpr Byte nodeFound = 2;
constexpr Byte endNode = 3;
constexpr Byte controller = 4;
constexpr Byte protocolDone = 5;
constexpr Byte done = 6;
constexpr Byte failed = 7;
constexpr Byte notPrimary = 0x23;

} // namespace mode

/// The end of a mode's callbacks; of inclusion, done comes only after the host's stop.
constexpr bool isLast(ModeCallback const& callback) {
    return callback.status == mode::done || callback.status == mode::failed || callback.status == mode::notPrimary;
}

/// Without a callback id: a stop that is to stay silent.
struct ModeRequest {
    Byte mode = 0;
    std::optional<Byte> callbackId;

    static constexpr auto fields() {
        return layout(number("mode", &ModeRequest::mode), number("callbackId", &ModeRequest::callbackId));
    }
};

struct RemoveNodeIdFromNetwork {
    static constexpr Byte id = 0x3F;
    static constexpr char const* name = "RemoveNodeIdFromNetwork";
    struct Request {
        Byte mode = 0;
        NodeId node = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(number("mode", &Request::mode), serialapi::node("node", &Request::node),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Callback = ModeCallback;
};

struct GetNodeProtocolInfo {
    static constexpr Byte id = 0x41;
    static constexpr char const* name = "GetNodeProtocolInfo";
    using Request = OneNode;
    struct Response {
        Byte capability = 0; ///< 0x80 always listening, 0x40 routing
        Byte security = 0;   ///< 0x40, 0x20 frequently listening every 1,000 or 250 ms, 0x02 controller
        Byte reserved = 0;   ///< 0x01 100k
        Byte basic = 0;
        Byte generic = 0; ///< 0: there is no such node
        Byte specific = 0;

        static constexpr auto fields() {
            return layout(number("capability", &Response::capability), number("security", &Response::security),
                          number("reserved", &Response::reserved), number("basic", &Response::basic),
                          number("generic", &Response::generic), number("specific", &Response::specific));
        }
    };
};

struct AddNodeToNetwork {
    static constexpr Byte id = 0x4A;
    static constexpr char const* name = "AddNodeToNetwork";
    struct Request {
        Byte mode = 0;
        std::optional<Byte> callbackId;
        std::optional<std::array<Byte, 8>> dsk; ///< of the node that smart start is to include

        static constexpr auto fields() {
            return layout(number("mode", &Request::mode), number("callbackId", &Request::callbackId),
                          array("dsk", &Request::dsk));
        }
    };
    using Callback = ModeCallback;
};

struct RemoveNodeFromNetwork {
    static constexpr Byte id = 0x4B;
    static constexpr char const* name = "RemoveNodeFromNetwork";
    using Request = ModeRequest;
    using Callback = ModeCallback;
};

struct CreateNewPrimary {
    static constexpr Byte id = 0x4C;
    static constexpr char const* name = "CreateNewPrimary";
    using Request = ModeRequest;
    using Callback = ModeCallback;
};

struct ControllerChange {
    static constexpr Byte id = 0x4D;
    static constexpr char const* name = "ControllerChange";
    using Request = ModeRequest;
    using Callback = ModeCallback;
};

/// The module itself joins or leaves another network.
struct SetLearnMode {
    static constexpr Byte id = 0x50;
    static constexpr char const* name = "SetLearnMode";
    using Request = ModeRequest; ///< 0 off, 1 classic, 2 network-wide inclusion, 3 network-wide exclusion
    using Response = Accepted;
    using Callback = ModeCallback;
};

struct EnableSuc {
    static constexpr Byte id = 0x52;
    static constexpr char const* name = "EnableSuc";
    struct Request {
        Byte enable = 0;
        Byte capabilities = 0;

        static constexpr auto fields() {
            return layout(number("enable", &Request::enable), number("capabilities", &Request::capabilities));
        }
    };
    using Response = Accepted;
};

/// Asks the update controller for what has changed; the changes come as ApplicationUpdate.
struct RequestNetworkUpdate {
    static constexpr Byte id = 0x53;
    static constexpr char const* name = "RequestNetworkUpdate";
    using Request = JobCallback;
    using Response = Accepted;
    using Callback = StatusCallback; ///< 0 done, 1 abort, 2 wait, 3 disabled, 4 overflow
};

/// With the module's own id: the 500 series calls not back, the 700 and 800 series do.
struct SetSucNodeId {
    static constexpr Byte id = 0x54;
    static constexpr char const* name = "SetSucNodeId";
    struct Request {
        NodeId node = 0;
        Byte enable = 0;
        Byte options = 0;
        Byte capabilities = 0; ///< 1: SIS
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), number("enable", &Request::enable),
                          number("options", &Request::options), number("capabilities", &Request::capabilities),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = StatusCallback; ///< 5 succeeded, 6 failed
};

struct GetSucNodeId {
    static constexpr Byte id = 0x56;
    static constexpr char const* name = "GetSucNodeId";
    using Request = Nothing;
    using Response = OneNode; ///< 0: there is none
};

struct SendSucId {
    static constexpr Byte id = 0x57;
    static constexpr char const* name = "SendSucId";
    struct Request {
        NodeId node = 0;
        Byte options = 0;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(serialapi::node("node", &Request::node), number("options", &Request::options),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = StatusCallback;
};

/// Answered by ApplicationUpdate, not by a callback.
struct RequestNodeInfo {
    static constexpr Byte id = 0x60;
    static constexpr char const* name = "RequestNodeInfo";
    using Request = OneNode;
    using Response = Accepted;
};

/// Whether a job on a failed node has begun; 0 says yes, each bit a reason why not.
struct FailedNodeStart {
    Byte refusal = 0; ///< 0x02 not primary, 0x04 no callback, 0x08 not failed, 0x10 busy, 0x20 failed

    static constexpr auto fields() { return layout(number("refusal", &FailedNodeStart::refusal)); }
};

struct RemoveFailedNode {
    static constexpr Byte id = 0x61;
    static constexpr char const* name = "RemoveFailedNode";
    using Request = NodeJob;
    using Response = FailedNodeStart;
    using Callback = StatusCallback; ///< 0 the node works, 1 removed, 2 not removed
};

struct IsFailedNode {
    static constexpr Byte id = 0x62;
    static constexpr char const* name = "IsFailedNode";
    using Request = OneNode;
    using Response = Setting;
};

struct ReplaceFailedNode {
    static constexpr Byte id = 0x63;
    static constexpr char const* name = "ReplaceFailedNode";
    using Request = NodeJob;
    using Response = FailedNodeStart;
    using Callback = StatusCallback; ///< 0 the node works, 3 ready for the new one, 4 done, 5 failed

    static constexpr bool isLast(Callback const& callback) { return callback.status != 3; }
};

struct GetVirtualNodes {
    static constexpr Byte id = 0xA5;
    static constexpr char const* name = "GetVirtualNodes";
    using Request = Nothing;
    struct Response {
        BitMask nodes;

        static constexpr auto fields() { return layout(restMask("nodes", &Response::nodes)); }
    };
};

struct IsVirtualNode {
    static constexpr Byte id = 0xA6;
    static constexpr char const* name = "IsVirtualNode";
    using Request = OneNode;
    using Response = Setting;
};

/// Long range nodes, 1,024 at a time.
struct GetLrNodes {
    static constexpr Byte id = 0xDA;
    static constexpr char const* name = "GetLrNodes";
    using Request = Setting;
    struct Response {
        Byte more = 0;
        Byte segment = 0;
        Bytes mask; ///< 128 bytes; bit 0 of segment 0 is node 256

        static constexpr auto fields() {
            return layout(number("more", &Response::more), number("segment", &Response::segment),
                          counted("mask", &Response::mask));
        }
    };
};

struct GetLrChannel {
    static constexpr Byte id = 0xDB;
    static constexpr char const* name = "GetLrChannel";
    using Request = Nothing;
    struct Response {
        Byte channel = 0;
        std::optional<Byte> flags; ///< 0x10 chooses by itself if told so, 0x20 does

        static constexpr auto fields() {
            return layout(number("channel", &Response::channel), number("flags", &Response::flags));
        }
    };
};

struct SetLrChannel {
    static constexpr Byte id = 0xDC;
    static constexpr char const* name = "SetLrChannel";
    using Request = Setting;
    using Response = Accepted;
};

struct SetLrVirtualIds {
    static constexpr Byte id = 0xDD;
    static constexpr char const* name = "SetLrVirtualIds";
    using Request = Setting;
    using Response = Accepted;
};

} // namespace zorv::serialapi
