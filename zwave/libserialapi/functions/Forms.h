// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Fields.h"

// What several functions share.

namespace zorv::serialapi {

/// No parameters.
struct Nothing {
    static constexpr auto fields() { return layout(); }
};

/// Whether the module does it: 1, or 0 where it refuses. Then no callback follows.
struct Accepted {
    Byte accepted = 0;

    static constexpr auto fields() { return layout(number("accepted", &Accepted::accepted)); }
};

/// One byte: a switch, a mode or a level.
struct Setting {
    Byte value = 0;

    static constexpr auto fields() { return layout(number("value", &Setting::value)); }
};

struct OneNode {
    NodeId node = 0;

    static constexpr auto fields() { return layout(serialapi::node("node", &OneNode::node)); }
};

struct NodeJob {
    NodeId node = 0;
    Byte callbackId = 0;

    static constexpr auto fields() {
        return layout(serialapi::node("node", &NodeJob::node), number("callbackId", &NodeJob::callbackId));
    }
};

struct JobCallback {
    Byte callbackId = 0;

    static constexpr auto fields() { return layout(number("callbackId", &JobCallback::callbackId)); }
};

/// What follows the status on some modules is not reliable and is left to the tail.
struct StatusCallback {
    Byte callbackId = 0;
    Byte status = 0;

    static constexpr auto fields() {
        return layout(number("callbackId", &StatusCallback::callbackId), number("status", &StatusCallback::status));
    }
};

/// What a node says it is.
struct NodeInformation {
    Byte basic = 0;
    Byte generic = 0;
    Byte specific = 0;
    Bytes commandClasses;

    static constexpr auto fields() {
        return layout(number("basic", &NodeInformation::basic), number("generic", &NodeInformation::generic),
                      number("specific", &NodeInformation::specific),
                      rest("commandClasses", &NodeInformation::commandClasses));
    }
};

} // namespace zorv::serialapi
