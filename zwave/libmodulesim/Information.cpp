// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"

#include <algorithm>

// What the module tells about itself.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

struct Series {
    char const* version;
    Byte libraryType;
    Byte apiVersion;
    Byte chipType;
    Byte protocolMajor;
    Byte protocolMinor;
};

Series seriesOf(Generation generation) {
    switch (generation) {
    case Generation::series500: return {"Z-Wave 4.05", 1, 5, 5, 4, 5};
    case Generation::series700: return {"Z-Wave 7.18", 7, 9, 7, 7, 18};
    case Generation::series800: break;
    }
    return {"Z-Wave 7.22", 7, 10, 8, 7, 22};
}

constexpr Byte secondaryInInitData = 0x04;
constexpr Byte sisInInitData = 0x08;
constexpr std::size_t nodeMaskBytes = 29;
constexpr Byte mostRandomBytes = 32;

Byte bits(bool condition, unsigned int value) { return condition ? static_cast<Byte>(value) : Byte{0}; }

api::GetInitData::Response initData(Core const& core) {
    auto const series = seriesOf(core.described.generation);
    api::GetInitData::Response data;
    data.apiVersion = series.apiVersion;
    data.capabilities = static_cast<Byte>(bits(core.membership.isSecondary, secondaryInInitData) |
                                          bits(core.membership.isSis, sisInInitData));
    data.nodes.bytes.resize(nodeMaskBytes);
    for (auto const& [id, record] : core.membership.nodes) { data.nodes.insert(id); }
    data.chipType = series.chipType;
    return data;
}

Byte controllerCapabilities(Core const& core) {
    auto const& membership = core.membership;
    bool const isUpdater = membership.updateController == membership.node;
    bool const isAlone = membership.nodes.size() == 1;
    return static_cast<Byte>(bits(membership.isSecondary, 0x03) | bits(membership.updateController != 0, 0x04) |
                             bits(!membership.isSecondary, 0x08) | bits(isUpdater, 0x10) |
                             bits(isAlone && !core.isSeries500(), 0x20));
}

api::GetRandom::Response random(Core& core, Byte count) {
    api::GetRandom::Response response{1, Bytes(std::min(count == 0 ? Byte{2} : count, mostRandomBytes))};
    for (auto& byte : response.random) { byte = static_cast<Byte>(core.random()); }
    return response;
}

void serveIdentity(Core& core) {
    auto const& described = core.described;
    auto const series = seriesOf(described.generation);
    auto const libraryType = described.libraryType.value_or(series.libraryType);
    core.serve<api::GetVersion>([&described, series, libraryType](auto const&) {
        return api::GetVersion::Response{described.version.empty() ? series.version : described.version, libraryType};
    });
    core.serve<api::TypeLibrary>([libraryType](auto const&) { return api::Setting{libraryType}; });
    core.serve<api::GetCapabilities>([&core, &described](auto const&) {
        auto const& product = described.product;
        return api::GetCapabilities::Response{described.applicationVersion,
                                              described.applicationRevision,
                                              product.manufacturer,
                                              product.productType,
                                              product.productId,
                                              core.functions()};
    });
    core.serve<api::MemoryGetId>([&core](auto const&) {
        return api::MemoryGetId::Response{core.membership.homeId, core.membership.node};
    });
    if (core.isSeries500()) { return; }
    core.serve<api::GetProtocolVersion>([series](auto const&) {
        return api::GetProtocolVersion::Response{0, series.protocolMajor, series.protocolMinor, 0, {}, {}};
    });
}

} // namespace

void serveInformation(Core& core) {
    serveIdentity(core);
    core.serve<api::GetInitData>([&core](auto const&) { return initData(core); });
    core.serve<api::GetControllerCapabilities>(
        [&core](auto const&) { return api::GetControllerCapabilities::Response{controllerCapabilities(core)}; });
    core.serve<api::GetRandom>([&core](auto const& request) { return random(core, request.count.value_or(0)); });
    core.serve<api::GetProtocolStatus>([](auto const&) { return api::Setting{0}; });
    core.serve<api::SerialApiReady>([](auto const&) {});
    if (core.isSeries500()) {
        core.serve<api::Random>([&core](auto const&) { return api::Setting{static_cast<Byte>(core.random())}; });
        return;
    }
    core.serve<api::GetBackgroundRssi>([](auto const&) {
        return api::GetBackgroundRssi::Response{-93, -95, std::int8_t{-95}, std::int8_t{127}};
    });
}

} // namespace zorv::modulesim
