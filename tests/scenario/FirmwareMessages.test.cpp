// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/firmwareImage.h"

#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/FirmwareUpdateMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/SerialManagerEvt.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::ElementsAre;

constexpr unsigned char enterBootloader = 0x27;
constexpr unsigned char firmwareUpdateNvm = 0x78;

std::string image(std::string const& version, std::size_t size) {
    auto const bytes = firmwareImage(version, size);
    return {bytes.begin(), bytes.end()};
}

class FirmwareMessages : public testing::TestWithParam<Stream> {
protected:
    FirmwareMessages() {
        directory_.write("EU.bin", image("Z-Wave 7.99", 512));
        directory_.write("US.bin", image("Z-Wave 7.99", 512) + "x"); // whose checksum does not hold
        directory_.write("JP.bin", image("Z-Wave 7.98", 60000));
    }

    /// A daemon with a module of that generation.
    std::unique_ptr<StreamDaemon> start(std::string const& generation, std::string const& faults = "",
                                        std::string const& module = "") const {
        auto const network = directory_.write(
            "network.json", R"({"homeId": "c0ffee01", "module": {"generation": ")" + generation + '"' + module +
                                R"(}, "nodes": [{"id": 2, "latencyMs": 1}], "faults": [)" + faults + "]}");
        return std::make_unique<StreamDaemon>(
            GetParam(), std::vector<std::string>{"--network", network, "--firmware-dir", directory_.path()});
    }

    static std::string version(MessageClient& client) { return client.ask(ControllerInfoMsg::create())->fwVersion(); }

    static SystemStatus::Enum systemStatus(MessageClient& client) {
        return client.ask(SystemStatusEvt::create(SystemStatus::unknown))->status();
    }

    TemporaryDirectory directory_;
};

INSTANTIATE_TEST_SUITE_P(OverEach, FirmwareMessages, streams(), nameOf);

// ---- the 500 series

TEST_P(FirmwareMessages, UpdateTellsItsProgressAndTheModuleHasAnotherVersion) {
    auto const daemon = start("500");
    MessageClient client(daemon->port());
    client.subscribe({ControlCommandMsg::NAME, SystemStatusEvt::NAME});
    auto const request = FirmwareUpdateMsg::create("EU");
    client.tell(*request);
    client.waitForCall(firmwareUpdateNvm);
    EXPECT_EQ(client.progressOf(request)->status(), FirmwareUpdateStatus::running);
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), FirmwareUpdateStatus::complete);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::updating);
    EXPECT_EQ(version(client), "Z-Wave 7.99");
}

TEST_P(FirmwareMessages, FirmwareThatAnOlderModuleRefusesIsAFailureAndNothingChanges) {
    auto const daemon = start("500");
    MessageClient client(daemon->port());
    auto const before = version(client);
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("US"))->result(), ZResult::failure);
    EXPECT_EQ(version(client), before);
    EXPECT_EQ(systemStatus(client), SystemStatus::ready);
}

// ---- the loader of the 700 and 800 series

TEST_P(FirmwareMessages, LoaderTakesAnImageAndItsProgressIsTold) {
    auto const daemon = start("700");
    MessageClient client(daemon->port());
    client.subscribe({ControlCommandMsg::NAME, SystemStatusEvt::NAME, SerialManagerEvt::NAME});
    auto const request = FirmwareUpdateMsg::create("EU");
    client.tell(*request);
    EXPECT_THAT(client.waitForCall(enterBootloader), ElementsAre());
    auto const answer = client.answerTo(request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->status(), FirmwareUpdateStatus::complete);
    std::vector<std::string> told;
    for (int i = 0; i < 6; ++i) {
        auto const event = client.waitForAny<SerialManagerEvt>();
        told.push_back(std::string(SerialManagerStatus::toString(event->status())) + ' ' +
                       std::to_string(event->percentComplete()));
    }
    EXPECT_THAT(told, ElementsAre("bootloaderRunning 0", "bootloaderRunning 25", "bootloaderRunning 50",
                                  "bootloaderRunning 75", "bootloaderRunning 100", "bootloaderStopped 100"));
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::updating);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::ready);
    EXPECT_EQ(version(client), "Z-Wave 7.99");
    EXPECT_EQ(client.ask(PingMsg::create(ZwaveAddress(0xC0FFEE01, 2)))->result(), ZResult::success);
}

TEST_P(FirmwareMessages, ImageThatTheLoaderRefusesIsAFailureAndNothingChanges) {
    auto const daemon = start("800");
    MessageClient client(daemon->port());
    auto const before = version(client);
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("US"))->result(), ZResult::failure);
    EXPECT_EQ(version(client), before);
    EXPECT_EQ(systemStatus(client), SystemStatus::ready);
}

TEST_P(FirmwareMessages, LoaderThatRefusesIsLeftAndTheNextAttemptSucceeds) {
    auto const daemon = start("700", R"({"what": "firmwareRefused"})");
    MessageClient client(daemon->port());
    auto const before = version(client);
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("EU"))->result(), ZResult::failure);
    EXPECT_EQ(version(client), before);
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("EU"))->result(), ZResult::success);
    EXPECT_EQ(version(client), "Z-Wave 7.99");
}

TEST_P(FirmwareMessages, BlocksThatAreLostOrDamagedAreSentAgain) {
    auto const daemon = start("700", R"({"what": "blockLost"}, {"what": "blockRefused", "skip": 2})");
    MessageClient client(daemon->port());
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("EU"))->result(), ZResult::success);
    EXPECT_EQ(version(client), "Z-Wave 7.99");
}

TEST_P(FirmwareMessages, UpdateGoesOnWithoutItsClientAndTheOtherOneHearsOfIt) {
    for (std::string const generation : {"500", "700"}) {
        auto const daemon = start(generation);
        MessageClient other(daemon->port());
        other.subscribe({FirmwareUpdateMsg::NAME, SystemStatusEvt::NAME});
        {
            MessageClient client(daemon->port());
            auto const request = FirmwareUpdateMsg::create("JP");
            client.tell(*request);
            client.progressOf(request);
        }
        auto const refused = other.ask(FirmwareUpdateMsg::create("EU"));
        EXPECT_EQ(refused->result(), ZResult::rejected);
        EXPECT_EQ(other.waitForAny<SystemStatusEvt>()->status(), SystemStatus::updating);
        EXPECT_EQ(other.waitForAny<SystemStatusEvt>()->status(), SystemStatus::ready) << generation;
        EXPECT_EQ(other.waitForAny<FirmwareUpdateMsg>()->status(), FirmwareUpdateStatus::running);
        EXPECT_EQ(version(other), "Z-Wave 7.98");
    }
}

// ---- what is not begun

TEST_P(FirmwareMessages, BadCodeAndMissingFileAreToldInTheDaemonsStatus) {
    auto const daemon = start("700");
    MessageClient client(daemon->port());
    client.subscribe({DaemonStatusMsg::NAME});
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("FR"))->result(), ZResult::fileNotFound);
    EXPECT_EQ(client.waitForAny<DaemonStatusMsg>()->detail(), DaemonDetail::firmwareFileNotFound);
    for (std::string const code : {"", "E", "eu", "EUR", "..", "E/"}) {
        EXPECT_EQ(client.ask(FirmwareUpdateMsg::create(code))->result(), ZResult::rejected) << code;
        EXPECT_EQ(client.waitForAny<DaemonStatusMsg>()->detail(), DaemonDetail::invalidCountryCode);
    }
}

TEST_P(FirmwareMessages, ModuleThatTakesNoneRejectsIt) {
    auto const daemon = start("700", "", R"(, "withoutFunctions": ["27"])");
    MessageClient client(daemon->port());
    EXPECT_EQ(client.ask(FirmwareUpdateMsg::create("EU"))->result(), ZResult::rejected);
    EXPECT_EQ(systemStatus(client), SystemStatus::ready);
}

} // namespace
