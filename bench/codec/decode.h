// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/codec/EnumTexts.h"
#include "bench/codec/headerValues.h"
#include "bench/codec/objects.h"

#include <boost/make_shared.hpp>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

// From the values of any JSON library to the messages' objects, with the checks that the messages' own reader makes: the
// type of each value, the range of each number, every text of an enumeration, the class names and the chain of bases.
// Members are found by their keys, in whatever order they come; what is absent is left as it is.
//
// An adapter of a library is a class `Value` that is visited once, from the beginning to the end of the text:
//
//     Object object();                // throws where it is none; so do the others
//     void forEach(visit);            // the elements of an array
//     std::string_view text();
//     std::uint64_t number();
//     bool flag();
//
// and a class `Object` with `void with(std::string_view key, visit)`, which visits the member where it is there.

namespace bench {

template <class Value> void read(Value value, bool& target) { target = value.flag(); }

template <class Value> void read(Value value, std::string& target) { target = value.text(); }

template <class Value, class T>
std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>> read(Value value, T& target) {
    auto const number = value.number();
    if (number > static_cast<std::uint64_t>(std::numeric_limits<T>::max())) { throw std::out_of_range("a number"); }
    target = static_cast<T>(number);
}

/// Enumerations, and the header's values that are texts.
template <class Value, class T> auto read(Value value, T& target)
    -> std::enable_if_t<!std::is_integral_v<T>, decltype(parseText("", target))> {
    parseText(value.text(), target);
}

template <class Value> void read(Value value, zorv::ZwaveAddress& address);

template <class Object, class T> void readMember(Object& object, std::string_view key, T& target) {
    object.with(key, [&](auto value) { read(value, target); });
}

template <class Object> std::string_view className(Object& object) {
    std::string_view name;
    object.with("__name__", [&](auto value) { name = value.text(); });
    return name;
}

template <class Object> void requireClass(Object& object, std::string_view name) {
    if (className(object) != name) { throw std::runtime_error("another class"); }
}

/// Visits the frame of the base class with that name.
template <class Object, class Visit> void withBase(Object& object, std::string_view name, Visit visit) {
    object.with("__bases__", [&](auto bases) {
        bases.forEach([&](auto entry) {
            auto base = entry.object();
            if (className(base) == name) { visit(base); }
        });
    });
}

template <class Value> void read(Value value, zorv::ZwaveAddress& address) {
    auto object = value.object();
    zorv::HomeId homeId = 0;
    unsigned char nodeId = 0;
    readMember(object, "homeId_", homeId);
    readMember(object, "nodeId_", nodeId);
    address = {homeId, nodeId};
}

template <class Object> void readHeader(Object& message, Header& header) {
    withBase(message, "zorv::Confirmable", [&](auto& confirmable) {
        withBase(confirmable, "zorv::TConfirmable", [&](auto& base) {
            withBase(base, "zorv::TMessage", [&](auto& frame) {
                readMember(frame, "version_", header.version);
                readMember(frame, "id_", header.id);
                readMember(frame, "timestamp_", header.timestamp);
                readMember(frame, "priority_", header.priority);
                readMember(frame, "source_", header.source);
                readMember(frame, "role_", header.role);
                readMember(frame, "correlation_", header.correlation);
            });
            readMember(base, "result_", header.result);
        });
    });
}

/// Devices and blobs know the version of their wire form; there is only one.
template <class Object> void readVersion(Object& object) {
    withBase(object, "zorv::Serializable", [](auto& frame) {
        int version = 1;
        readMember(frame, "version_", version);
        if (version != 1) { throw std::runtime_error("another version"); }
    });
}

template <class Value> zorv::Manufacturer readManufacturer(Value value) {
    auto object = value.object();
    zorv::ManufacturerId::Enum manufacturerId{};
    unsigned short productType = 0;
    unsigned short productId = 0;
    readMember(object, "manufacturerId_", manufacturerId);
    readMember(object, "productType_", productType);
    readMember(object, "productId_", productId);
    return {manufacturerId, productType, productId};
}

template <class Value> zorv::NodeProtocolInfo readProtocolInfo(Value value) {
    auto object = value.object();
    zorv::Capability::Enum capability{};
    zorv::Security::Enum security{};
    zorv::BasicDeviceType::Enum basic{};
    zorv::GenericDeviceType::Enum generic{};
    zorv::SpecificDeviceType::Enum specific{};
    readMember(object, "capability_", capability);
    readMember(object, "security_", security);
    readMember(object, "basicDeviceType_", basic);
    readMember(object, "genericDeviceType_", generic);
    readMember(object, "specificDeviceType_", specific);
    return {capability, security, basic, generic, specific};
}

template <class Value> zorv::DeviceInfo readDeviceInfo(Value value) {
    auto object = value.object();
    zorv::Manufacturer manufacturer;
    zorv::NodeProtocolInfo protocolInfo;
    bool isSlave = false;
    bool isVirtual = false;
    object.with("manufacturer_", [&](auto member) { manufacturer = readManufacturer(member); });
    object.with("protocolInfo_", [&](auto member) { protocolInfo = readProtocolInfo(member); });
    readMember(object, "isSlave_", isSlave);
    readMember(object, "isVirtual_", isVirtual);
    return {manufacturer, protocolInfo, isSlave, isVirtual};
}

template <class Value> void readCommandClass(Value entry, zorv::Device& device) {
    zorv::CommandClassType::Enum type{};
    int elements = 0;
    entry.forEach([&](auto element) {
        if (++elements == 1) { return read(element, type); }
        auto object = element.object();
        unsigned char version = 0;
        zorv::CommandClassAttribs::Enum attribs{};
        readMember(object, "classVersion_", version);
        readMember(object, "attribs_", attribs);
        device.commandClass(type, {version, attribs});
    });
    if (elements < 2) { throw std::runtime_error("no pair"); }
}

/// Reads one member that has a setter of its name.
template <class T, class Object>
void readInto(Object& object, std::string_view key, zorv::Device& device, void (zorv::Device::*set)(T)) {
    object.with(key, [&](auto value) {
        std::decay_t<T> target{};
        read(value, target);
        (device.*set)(target);
    });
}

template <class Value> boost::shared_ptr<zorv::Device> readDevice(Value value) {
    using zorv::Device;
    auto object = value.object();
    requireClass(object, "zorv::Device");
    auto device = boost::make_shared<Device>();
    readVersion(object);
    readInto<zorv::ZwaveAddress const&>(object, "address_", *device, &Device::address);
    object.with("deviceInfo_", [&](auto member) { device->deviceInfo(readDeviceInfo(member)); });
    readInto<zorv::DeviceNetworkStatus::Enum>(object, "deviceNetworkStatus_", *device, &Device::deviceNetworkStatus);
    readInto<zorv::DeviceStatus::Enum>(object, "deviceStatus_", *device, &Device::deviceStatus);
    readInto<zorv::DeviceLights::Enum>(object, "deviceLights_", *device, &Device::deviceLights);
    readInto<zorv::SecurityStatus::Enum>(object, "securityStatus_", *device, &Device::securityStatus);
    readInto<zorv::WakeStatus::Enum>(object, "wakeStatus_", *device, &Device::wakeStatus);
    object.with("commandClasses_",
                [&](auto list) { list.forEach([&](auto entry) { readCommandClass(entry, *device); }); });
    readInto<int>(object, "configErrors_", *device, &Device::configErrors);
    return device;
}

template <class Value> void readDeviceEntry(Value entry, zorv::DeviceMap& devices) {
    zorv::ZwaveAddress address;
    int elements = 0;
    entry.forEach([&](auto element) {
        if (++elements == 1) { return read(element, address); }
        devices.emplace(address, readDevice(element));
    });
    if (elements < 2) { throw std::runtime_error("no pair"); }
}

template <class Value> boost::shared_ptr<PlainBlob> readBlob(Value value) {
    auto object = value.object();
    requireClass(object, "zorv::Blob");
    auto blob = boost::make_shared<PlainBlob>();
    readVersion(object);
    readMember(object, "name_", blob->name);
    readMember(object, "offset_", blob->offset);
    readMember(object, "size_", blob->size);
    readMember(object, "crc_", blob->crc);
    readMember(object, "contents_", blob->contents);
    return blob;
}

template <class Value> void read(Value root, Ping& ping) {
    auto object = root.object();
    requireClass(object, "zorv::PingMsg");
    readHeader(object, ping.header);
    readMember(object, "destination_", ping.destination);
    readMember(object, "latencyMs_", ping.latencyMs);
}

template <class Value> void read(Value root, NodeTable& table) {
    auto object = root.object();
    requireClass(object, "zorv::NodeInformationMsg");
    readHeader(object, table.header);
    readMember(object, "operation_", table.operation);
    readMember(object, "displayOptions_", table.displayOptions);
    object.with("devices_",
                [&](auto list) { list.forEach([&](auto entry) { readDeviceEntry(entry, table.devices); }); });
}

template <class Value> void read(Value root, NvmBackup& backup) {
    auto object = root.object();
    requireClass(object, "zorv::ManageNvmMsg");
    readHeader(object, backup.header);
    readMember(object, "operation_", backup.operation);
    readMember(object, "homeId_", backup.homeId);
    readMember(object, "timeout_", backup.timeout);
    readMember(object, "percentComplete_", backup.percentComplete);
    object.with("blobs_",
                [&](auto list) { list.forEach([&](auto entry) { backup.blobs.push_back(readBlob(entry)); }); });
}

} // namespace bench
