// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"

#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/SerialManagerEvt.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

constexpr unsigned char getVersion = 0x15;
constexpr unsigned char isFailedNode = 0x62;

class ModuleMessages : public testing::TestWithParam<Stream> {};

INSTANTIATE_TEST_SUITE_P(OverEach, ModuleMessages, streams(), nameOf);

TEST_P(ModuleMessages, ControllerInfoTellsWhatWasReadOfTheModule) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    auto const answer = client.ask(ControllerInfoMsg::create(ControllerInfoOption::all));
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->displayOptions(), ControllerInfoOption::all);
    EXPECT_EQ(answer->moduleType(), ModuleType::bridgeController);
    EXPECT_THAT(answer->fwVersion(), testing::StartsWith("Z-Wave 7"));
    EXPECT_EQ(answer->sucNodeId(), 1);
    EXPECT_EQ(answer->controllerRole(), ControllerRole::sis);
    EXPECT_THAT(answer->serialCapabilities().commands(),
                testing::Contains(static_cast<ZwApiCommand::Enum>(getVersion)));
    EXPECT_EQ(answer->nodeCount(), 8U);
    EXPECT_EQ(answer->deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(answer->securityStatus(), SecurityStatus::insecure);
    EXPECT_GT(answer->uptime(), 0);
    EXPECT_LT(answer->uptime(), 600);
}

TEST_P(ModuleMessages, SessionLayerIsAskedForItsStateAndTried) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    auto const status = client.ask(boost::make_shared<SessionLayerMsg>(SessionLayerOp::status));
    EXPECT_EQ(status->result(), ZResult::success);
    EXPECT_EQ(status->status(), SessionLayerStatus::frameNormal);
    client.subscribe({ControlCommandMsg::NAME});
    auto const request = boost::make_shared<SessionLayerMsg>(SessionLayerOp::ping);
    client.tell(*request);
    client.waitForCall(getVersion);
    auto const ping = client.answerTo(request);
    EXPECT_EQ(ping->result(), ZResult::success);
    EXPECT_EQ(ping->op(), SessionLayerOp::ping);
    EXPECT_EQ(ping->status(), SessionLayerStatus::frameNormal);
}

/// The next frame that answers a control command.
boost::shared_ptr<ControlCommandMsg> answerTo(MessageClient& client, ControlCommandMsg const& command) {
    return client.waitFor<ControlCommandMsg>(
        [&command](ControlCommandMsg const& frame) { return frame.correlation() == command.id(); });
}

TEST_P(ModuleMessages, ControlCommandIsSentAsItIsAndItsResponseComesBack) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    ControlCommandMsg const command({ControlCommandOp::request, isFailedNode, 9}, MessageRole::request);
    client.tell(command);
    auto const answer = answerTo(client, command);
    EXPECT_EQ(answer->role(), MessageRole::response);
    ASSERT_EQ(answer->data().size(), 3U);
    EXPECT_EQ(answer->data()[0], ControlCommandOp::response);
    EXPECT_EQ(answer->data()[1], isFailedNode);
}

TEST_P(ModuleMessages, CallbacksOfAControlCommandComeBackToo) {
    constexpr unsigned char sendData = 0xA9;
    constexpr unsigned char callbackId = 0xC8;
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    ControlCommandMsg const command({ControlCommandOp::request, sendData, 1, 2, 1, 0, 0x25, 0, 0, 0, 0, callbackId},
                                    MessageRole::request);
    client.tell(command);
    EXPECT_EQ(answerTo(client, command)->role(), MessageRole::response);
    auto const callback = answerTo(client, command);
    EXPECT_EQ(callback->role(), MessageRole::report);
    EXPECT_EQ(callback->data().at(2), callbackId);
}

TEST_P(ModuleMessages, ControlCommandThatIsNoneIsOnlyLogged) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    client.tell(ControlCommandMsg()); // no bytes at all
    daemon.waitForError("ControlCommandMsg is not sent: it is not a request");
    client.tell(ControlCommandMsg({ControlCommandOp::request, 0xFE}, MessageRole::request));
    daemon.waitForError("ControlCommandMsg is not sent: the module does not know the function");
    EXPECT_EQ(client.ask(SystemStatusEvt::create(SystemStatus::unknown))->status(), SystemStatus::ready);
}

TEST_P(ModuleMessages, StatusOfTheDaemonAndOfTheSystem) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    client.ask(ControllerInfoMsg::create()); // which waits until the module is known
    auto const status = client.ask(DaemonStatusMsg::create());
    EXPECT_EQ(status->result(), ZResult::success);
    EXPECT_EQ(status->address(), ZwaveAddress(0xC0FFEE01, 1));
    EXPECT_EQ(status->status(), DaemonStatus::notSecure);
    EXPECT_EQ(status->detail(), DaemonDetail::noDetail);
    EXPECT_EQ(client.ask(SystemStatusEvt::create(SystemStatus::unknown))->status(), SystemStatus::ready);
}

} // namespace
