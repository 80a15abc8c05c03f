// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <string>
#include <vector>

// What other libraries decode to and encode from. The members are those of the messages, and the devices are the
// messages' own. The message around them is plain, because a message draws an identity and looks at the clock when it is
// made; so is a blob, because a Blob can only be given copies of its texts.

namespace bench {

struct Header {
    Header() = default;
    explicit Header(zorv::Confirmable const& message)
        : version(message.version()),
          id(message.id()),
          timestamp(message.timestamp()),
          priority(message.priority()),
          source(message.source()),
          role(message.role()),
          correlation(message.correlation()),
          result(message.result()) {}

    int version = 0;
    boost::uuids::uuid id{};
    zorv::TimeStamp timestamp;
    zorv::Priority::Enum priority{};
    boost::asio::ip::tcp::endpoint source;
    zorv::MessageRole::Enum role{};
    boost::uuids::uuid correlation{};
    zorv::ZResult::Enum result{};
};

struct Ping {
    Ping() = default;
    explicit Ping(zorv::PingMsg const& message)
        : header(message), destination(message.destination()), latencyMs(message.latencyMs()) {}

    Header header;
    zorv::ZwaveAddress destination;
    unsigned int latencyMs = 0;
};

struct NodeTable {
    NodeTable() = default;
    explicit NodeTable(zorv::NodeInformationMsg const& message)
        : header(message),
          operation(message.operation()),
          displayOptions(message.displayOptions()),
          devices(message.devices()) {}

    Header header;
    zorv::GetNodesOp::Enum operation{};
    zorv::DisplayOption::Enum displayOptions{};
    zorv::DeviceMap devices;
};

struct PlainBlob {
    PlainBlob() = default;
    explicit PlainBlob(zorv::Blob const& blob)
        : name(blob.name()), offset(blob.offset()), size(blob.size()), crc(blob.crc()), contents(blob.contents()) {}

    std::string name;
    unsigned int offset = 0;
    unsigned int size = 0;
    unsigned int crc = 0;
    std::string contents;
};

struct NvmBackup {
    NvmBackup() = default;
    explicit NvmBackup(zorv::ManageNvmMsg const& message);

    Header header;
    zorv::ManageNvmOp::Enum operation{};
    zorv::HomeId homeId = 0;
    unsigned int timeout = 0;
    unsigned int percentComplete = 0;
    std::vector<boost::shared_ptr<PlainBlob>> blobs;
};

/// The answer to a ping.
zorv::PingMsg makePing();

/// A table of nodes with 40 command classes each; 232 is the largest network that Z-Wave allows.
zorv::NodeInformationMsg makeNodeTable(std::size_t nodes);

/// A table of one node of which no two numbers are equal and hardly a member is at its default: what is read into the
/// wrong place shows.
zorv::NodeInformationMsg makeVariedNode(bool isSlave);

/// A backup of so many chunks of 4 KiB.
zorv::ManageNvmMsg makeNvmBackup(std::size_t blobs);

/// The message's wire text.
std::string wireText(zorv::TMessage const& message);

} // namespace bench
