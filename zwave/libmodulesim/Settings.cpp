// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libmodulesim/FamiliesImpl.h"
#include "zwave/libmodulesim/TimingImpl.h"

#include <memory>

// What the host tells the module to be like.

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

using Setup = api::SerialApiSetup;

constexpr Byte afterSoftReset500 = 0;
constexpr Byte afterSoftReset = 7;
constexpr Byte usRegion = 0x01;
constexpr Byte maxPayload = 46;
constexpr int tick = 10; ///< the host tells times in 10 ms

/// The setup function's settings, which outlive a restart unless the core says otherwise.
struct SetupState {
    Byte region = usRegion;
    std::int16_t power = 0;
    std::int16_t measured = 33;
};

Setup::Response supportedCommands() {
    Setup::Response response;
    for (auto const command :
         {Setup::supportedCommands, Setup::setTxStatusReport, Setup::getMaxPayload, Setup::setPowerLevel16,
          Setup::getPowerLevel16, Setup::getRegion, Setup::setRegion, Setup::setNodeIdWidth}) {
        // The flags have room for the commands that are a power of two; the mask, whose first bit is command 1, for all.
        bool const isPowerOfTwo = (command & (command - 1)) == 0;
        if (isPowerOfTwo) { response.value = static_cast<Byte>(response.value | command); }
        api::BitMask mask{response.commandMask};
        mask.insert(command);
        response.commandMask = mask.bytes;
    }
    return response;
}

Setup::Response setUp(Core& core, SetupState& state, Setup::Request const& request) {
    Setup::Response response;
    response.value = 1;
    switch (request.command) {
    case Setup::supportedCommands: response = supportedCommands(); break;
    case Setup::setTxStatusReport: core.reportsTransmissions = request.value != 0; break;
    case Setup::getMaxPayload: response.value = maxPayload; break;
    case Setup::getRegion: response.value = state.region; break;
    case Setup::setRegion: state.region = request.value; break;
    case Setup::setPowerLevel16:
        state.power = request.power;
        state.measured = request.measured;
        break;
    case Setup::getPowerLevel16:
        response.power = state.power;
        response.measured = state.measured;
        break;
    case Setup::setNodeIdWidth:
        response.value = request.value == 1 || request.value == 2 ? Byte{1} : Byte{0};
        core.width = request.value == 2 ? api::NodeIdWidth::two : api::NodeIdWidth::one;
        break;
    default: response.value = request.command; return response; // command 0: unsupported
    }
    response.command = request.command;
    return response;
}

void serveTimeouts(Core& core) {
    using Times = api::SetTimeouts::Times;
    core.serve<api::SetTimeouts>([&core](Times const& times) {
        core.session.moduleTimes(Milliseconds(times.ackTime * tick), Milliseconds(times.byteTime * tick));
        return std::exchange(core.times, times);
    });
}

} // namespace

void serveSettings(Core& core) {
    serveTimeouts(core);
    core.serve<api::SoftReset>(
        [&core](auto const&) { core.restart(core.isSeries500() ? afterSoftReset500 : afterSoftReset); });
    core.serve<api::SetDefault>([&core](api::JobCallback const& request) {
        core.abandonJobs();
        core.after(timing::erases, [&core, request] {
            core.toFactoryDefaults();
            core.callBack<api::SetDefault>(request);
            if (core.isSeries500()) { return; }
            core.after(timing::restartsAfterErasing, [&core] { core.restart(afterSoftReset); });
        });
    });
    core.serve<api::ApplicationNodeInformation>([](auto const&) {});
    core.serve<api::SetRfReceiveMode>([&core](api::Setting const& setting) {
        core.isRadioOn = setting.value != 0;
        return api::Accepted{1};
    });
    core.serve<api::WatchdogStart>([](auto const&) {});
    core.serve<api::WatchdogStop>([](auto const&) {});
    if (core.isSeries500()) {
        core.serve<api::WatchdogEnable>([](auto const&) {});
        core.serve<api::WatchdogDisable>([](auto const&) {});
        core.serve<api::WatchdogKick>([](auto const&) {});
        return;
    }
    auto const state = std::make_shared<SetupState>();
    core.serve<Setup>([&core, state](Setup::Request const& request) { return setUp(core, *state, request); });
}

} // namespace zorv::modulesim
