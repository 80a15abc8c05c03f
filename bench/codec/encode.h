// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/codec/EnumTexts.h"
#include "bench/codec/headerValues.h"
#include "bench/codec/objects.h"

#include <string_view>
#include <type_traits>

// From the objects to text, by the writer of any JSON library. An adapter `Out` has open(), close(), openArray(),
// closeArray(), key(), text(), number() and flag().

namespace bench {

template <class Out, class T> void write(Out& out, T const& value) {
    if constexpr (std::is_same_v<T, bool>) {
        out.flag(value);
    } else if constexpr (std::is_integral_v<T>) {
        out.number(value);
    } else if constexpr (std::is_convertible_v<T, std::string_view>) {
        out.text(value);
    } else {
        out.text(textOf(value));
    }
}

template <class Out> void write(Out& out, zorv::ZwaveAddress const& address);
template <class Out> void write(Out& out, zorv::DeviceInfo const& info);

template <class Out, class T> void writeMember(Out& out, std::string_view key, T const& value) {
    out.key(key);
    write(out, value);
}

/// Opens an object with its class name and the frames of its bases.
template <class Out, class WriteBases> void openFrame(Out& out, std::string_view name, WriteBases writeBases) {
    out.open();
    writeMember(out, "__name__", name);
    out.key("__bases__");
    out.openArray();
    writeBases();
    out.closeArray();
}

template <class Out> void write(Out& out, zorv::ZwaveAddress const& address) {
    out.open();
    writeMember(out, "homeId_", address.homeId());
    writeMember(out, "nodeId_", address.nodeId());
    out.close();
}

template <class Out> void openMessage(Out& out, std::string_view name, Header const& header) {
    openFrame(out, name, [&] {
        openFrame(out, "zorv::Confirmable", [&] {
            openFrame(out, "zorv::TConfirmable", [&] {
                openFrame(out, "zorv::TMessage", [] {});
                writeMember(out, "version_", header.version);
                writeMember(out, "id_", header.id);
                writeMember(out, "timestamp_", header.timestamp);
                writeMember(out, "priority_", header.priority);
                writeMember(out, "source_", header.source);
                writeMember(out, "role_", header.role);
                writeMember(out, "correlation_", header.correlation);
                out.close();
            });
            writeMember(out, "result_", header.result);
            out.close();
        });
        out.close();
    });
}

template <class Out> void writeVersion(Out& out) {
    openFrame(out, "zorv::Serializable", [] {});
    writeMember(out, "version_", 1);
    out.close();
}

template <class Out> void write(Out& out, zorv::DeviceInfo const& info) {
    out.open();
    out.key("manufacturer_");
    out.open();
    writeMember(out, "manufacturerId_", info.manufacturer().manufacturerId());
    writeMember(out, "productType_", info.manufacturer().productType());
    writeMember(out, "productId_", info.manufacturer().productId());
    out.close();
    out.key("protocolInfo_");
    out.open();
    writeMember(out, "capability_", info.protocolInfo().capability());
    writeMember(out, "security_", info.protocolInfo().security());
    writeMember(out, "basicDeviceType_", info.protocolInfo().basicDeviceType());
    writeMember(out, "genericDeviceType_", info.protocolInfo().genericDeviceType());
    writeMember(out, "specificDeviceType_", info.protocolInfo().specificDeviceType());
    out.close();
    writeMember(out, "isSlave_", info.isSlave());
    writeMember(out, "isVirtual_", info.isVirtual());
    out.close();
}

template <class Out> void write(Out& out, zorv::Device const& device) {
    openFrame(out, "zorv::Device", [&] { writeVersion(out); });
    writeMember(out, "address_", device.address());
    writeMember(out, "deviceInfo_", device.deviceInfo());
    writeMember(out, "deviceNetworkStatus_", device.deviceNetworkStatus());
    writeMember(out, "deviceStatus_", device.deviceStatus());
    writeMember(out, "deviceLights_", device.deviceLights());
    writeMember(out, "securityStatus_", device.securityStatus());
    writeMember(out, "wakeStatus_", device.wakeStatus());
    out.key("commandClasses_");
    out.openArray();
    for (auto const& [type, info] : device.commandClasses()) {
        out.openArray();
        write(out, type);
        out.open();
        writeMember(out, "classVersion_", info.classVersion());
        writeMember(out, "attribs_", info.attribs());
        out.close();
        out.closeArray();
    }
    out.closeArray();
    writeMember(out, "configErrors_", device.configErrors());
    out.close();
}

template <class Out> void write(Out& out, PlainBlob const& blob) {
    openFrame(out, "zorv::Blob", [&] { writeVersion(out); });
    writeMember(out, "name_", blob.name);
    writeMember(out, "offset_", blob.offset);
    writeMember(out, "size_", blob.size);
    writeMember(out, "crc_", blob.crc);
    writeMember(out, "contents_", blob.contents);
    out.close();
}

template <class Out> void write(Out& out, Ping const& ping) {
    openMessage(out, "zorv::PingMsg", ping.header);
    writeMember(out, "destination_", ping.destination);
    writeMember(out, "latencyMs_", ping.latencyMs);
    out.close();
}

template <class Out> void write(Out& out, NodeTable const& table) {
    openMessage(out, "zorv::NodeInformationMsg", table.header);
    writeMember(out, "operation_", table.operation);
    writeMember(out, "displayOptions_", table.displayOptions);
    out.key("devices_");
    out.openArray();
    for (auto const& [address, device] : table.devices) {
        out.openArray();
        write(out, address);
        write(out, *device);
        out.closeArray();
    }
    out.closeArray();
    out.close();
}

template <class Out> void write(Out& out, NvmBackup const& backup) {
    openMessage(out, "zorv::ManageNvmMsg", backup.header);
    writeMember(out, "operation_", backup.operation);
    writeMember(out, "homeId_", backup.homeId);
    writeMember(out, "timeout_", backup.timeout);
    writeMember(out, "percentComplete_", backup.percentComplete);
    out.key("blobs_");
    out.openArray();
    for (auto const& blob : backup.blobs) { write(out, *blob); }
    out.closeArray();
    out.close();
}

} // namespace bench
