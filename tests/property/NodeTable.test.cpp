// SPDX-License-Identifier: Apache-2.0
#include "tests/property/property.h"

#include "platform/libtransport/toText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/wire.h"
#include "zwave/libcontroller/NodeTable.h"
#include "zwave/libcontroller/Store.h"

#include <boost/filesystem/operations.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zorv::controller {

namespace {

/// A node's record with any members, at an address.
Device anyDevice(ZwaveAddress const& address) {
    auto const device = readBack<Device>(WireTexts(generated()).object("zorv::Device"));
    device->address(address);
    return *device;
}

/// Does as it is told, and is what a table is compared with.
class MirrorOfTable : public Observer {
public:
    void nodeAdded(Device const& device) override { texts_[device.address().nodeId()] = toText(device); }
    void nodeChanged(Device const& device) override {
        RC_ASSERT(texts_.count(device.address().nodeId()) == 1);
        texts_[device.address().nodeId()] = toText(device);
    }
    void nodeRemoved(Device const& device) override { RC_ASSERT(texts_.erase(device.address().nodeId()) == 1); }

    std::map<NodeId, std::string> const& texts() const noexcept { return texts_; }

private:
    std::map<NodeId, std::string> texts_;
};

std::map<NodeId, std::string> textsOf(NodeTable const& table) {
    std::map<NodeId, std::string> texts;
    for (auto const& [node, device] : table.devices()) { texts[node] = toText(device); }
    return texts;
}

ZwaveAddress address(std::uint64_t node) { return {0xC0FFEE01, static_cast<unsigned char>(node)}; }

} // namespace

RC_GTEST_PROP(NodeTable, IsWhatItHasToldItsObserverAfterAnyChanges, ()) {
    auto const below = generated();
    MirrorOfTable mirror;
    NodeTable table(mirror);
    std::map<NodeId, std::string> model;
    for (auto left = below(12); left > 0; --left) {
        auto const node = static_cast<NodeId>(1 + below(4));
        switch (below(6)) {
        case 0:
        case 1: {
            auto const device = anyDevice(address(node));
            table.add(device);
            model[node] = toText(device);
            break;
        }
        case 2:
            table.remove(node);
            model.erase(node);
            break;
        case 3:
            if (below(4) == 0) {
                table.clear();
                model.clear();
            }
            break;
        case 4: {
            auto const status = below(2) == 0 ? DeviceNetworkStatus::online : DeviceNetworkStatus::offline;
            table.networkStatus(node, status);
            if (model.count(node) != 0) {
                auto const device = readBack<Device>(model[node]);
                device->deviceNetworkStatus(status);
                model[node] = toText(*device);
            }
            break;
        }
        default: {
            auto const changed = anyDevice(address(node));
            table.change(node, [&changed](Device& device) { device = changed; });
            if (model.count(node) != 0) { model[node] = toText(changed); }
            break;
        }
        }
        RC_ASSERT(textsOf(table) == model);
        RC_ASSERT(mirror.texts() == model);
        RC_ASSERT((table.find(node) != nullptr) == (model.count(node) != 0));
    }
}

RC_GTEST_PROP(Store, HoldsWhatWasPutIntoItHoweverOftenItIsOpened, ()) {
    static TemporaryDirectory const directory;
    auto const file = directory.path("store.sqlite");
    boost::filesystem::remove(file);
    auto const below = generated();
    auto store = std::make_unique<Store>(file);
    std::map<ZwaveAddress, std::string> devices;
    std::map<std::string, std::string> states;
    for (auto left = below(10); left > 0; --left) {
        ZwaveAddress const place(static_cast<HomeId>(0xC0FFEE00 + below(2)), static_cast<unsigned char>(1 + below(3)));
        auto const name = "state " + std::to_string(below(3));
        switch (below(6)) {
        case 0:
        case 1: {
            auto const device = anyDevice(place);
            store->save(device);
            devices[place] = toText(device);
            break;
        }
        case 2:
            store->remove(place);
            devices.erase(place);
            break;
        case 3: {
            auto const value = toText(anyDevice(place));
            store->remember(name, value);
            states[name] = value;
            break;
        }
        case 4:
            // What fails leaves nothing behind.
            RC_ASSERT_THROWS_AS(store->together([&] {
                store->remove(place);
                store->remember(name, "never");
                throw std::runtime_error("enough");
            }),
                                std::runtime_error);
            break;
        default:
            store.reset();
            store = std::make_unique<Store>(file);
            break;
        }
        std::vector<std::string> expected;
        for (auto const& entry : devices) { expected.push_back(entry.second); }
        std::vector<std::string> found;
        for (auto const& device : store->devices()) { found.push_back(toText(device)); }
        RC_ASSERT(found == expected);
        auto const state = states.find(name);
        RC_ASSERT(store->recall(name) == (state == states.end() ? std::nullopt : std::optional(state->second)));
    }
}

} // namespace zorv::controller
