// SPDX-License-Identifier: Apache-2.0
#include "bench/codec/objects.h"

#include "platform/libtransport/Serializer.h"

#include <boost/make_shared.hpp>

#include <cstdint>
#include <stdexcept>

namespace bench {

using namespace zorv;

namespace {

constexpr HomeId homeId = 0xC0FFEE01;
constexpr std::size_t blobBytes = 4096;

} // namespace

NvmBackup::NvmBackup(ManageNvmMsg const& message)
    : header(message),
      operation(message.operation()),
      homeId(message.homeId()),
      timeout(message.timeout()),
      percentComplete(message.percentComplete()) {
    for (auto const& blob : message.blobs()) { blobs.push_back(boost::make_shared<PlainBlob>(*blob)); }
}

PingMsg makePing() {
    auto const request = PingMsg::create(ZwaveAddress(homeId, 5));
    return *PingMsg::create(request, ZResult::success, 250);
}

NodeInformationMsg makeNodeTable(std::size_t nodes) {
    DeviceMap devices;
    for (std::size_t i = 0; i < nodes; ++i) {
        // Beyond a network's 232 nodes there are further networks.
        ZwaveAddress const address(homeId + static_cast<HomeId>(i / 232), static_cast<unsigned char>(i % 232 + 1));
        auto const device = boost::make_shared<Device>(address, DeviceInfo());
        for (int type = 0x60; type < 0x60 + 40; ++type) {
            device->commandClass(static_cast<CommandClassType::Enum>(type), {2, CommandClassAttribs::supported});
        }
        devices.emplace(address, device);
    }
    return {GetNodesOp::set, DisplayOption::cmdClassDetail, devices};
}

NodeInformationMsg makeVariedNode(bool isSlave) {
    ZwaveAddress const address(homeId + 1, 7);
    NodeProtocolInfo const protocol(static_cast<Capability::Enum>(Capability::baud40000 | Capability::routing | 3),
                                    static_cast<Security::Enum>(Security::security | Security::sensor250ms),
                                    BasicDeviceType::routingSlave, GenericDeviceType::entryControl,
                                    static_cast<SpecificDeviceType::Enum>(3));
    Manufacturer const manufacturer(ManufacturerId::zorv, 300, 401);
    auto const device = boost::make_shared<Device>(address, DeviceInfo(manufacturer, protocol, isSlave, !isSlave));
    device->deviceNetworkStatus(DeviceNetworkStatus::online);
    device->deviceStatus(DeviceStatus::ready);
    device->deviceLights(DeviceLights::blinking);
    device->securityStatus(SecurityStatus::s0);
    device->wakeStatus(WakeStatus::awake);
    device->configErrors(9);
    device->commandClass(CommandClassType::basic, {5, CommandClassAttribs::supported});
    auto const both =
        static_cast<CommandClassAttribs::Enum>(CommandClassAttribs::controlled | CommandClassAttribs::secure);
    device->commandClass(CommandClassType::doorLock, {4, both});
    return {GetNodesOp::update, DisplayOption::status, DeviceMap{{address, device}}};
}

ManageNvmMsg makeNvmBackup(std::size_t blobs) {
    ManageNvmMsg message(ManageNvmOp::save, homeId, ZResult::success, 100);
    OctetVec bytes(blobBytes);
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < blobs; ++i) {
        for (auto& byte : bytes) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<unsigned char>(state >> 24U);
        }
        auto const blob =
            boost::make_shared<Blob>("area " + std::to_string(i), static_cast<unsigned int>(i * blobBytes));
        if (blob->setContents(bytes)) { throw std::runtime_error("cannot encode"); }
        message.addBlob(blob);
    }
    return message;
}

std::string wireText(TMessage const& message) {
    Serializer s;
    message.serialInserter(s);
    return s.str();
}

} // namespace bench
