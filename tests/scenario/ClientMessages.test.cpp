// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/StreamDaemon.h"

#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/QuitMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"
#include "zwave/libquillet/VersionMsg.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

boost::shared_ptr<PingMsg> ping(unsigned char node = 1) { return PingMsg::create(ZwaveAddress(0, node)); }

class ClientMessages : public testing::TestWithParam<Stream> {};

INSTANTIATE_TEST_SUITE_P(OverEach, ClientMessages, streams(), nameOf);

TEST_P(ClientMessages, SubscriptionIsForKnownEventsAllOrNone) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    EXPECT_EQ(client.ask(SubscribeMsg::create(false, std::vector<std::string>{"SocketStatusMsg", "Weather"}))->result(),
              ZResult::rejected);
    daemon.waitForError("unknown event \"Weather\"");
    EXPECT_EQ(client.ask(SubscribeMsg::create(false, std::vector<std::string>()))->result(), ZResult::rejected);
    { MessageClient const other(daemon.port()); }
    EXPECT_EQ(client.ask(ping())->result(), ZResult::success);
    EXPECT_EQ(client.kept<SocketStatusMsg>(), 0); // nothing of a request that was rejected counts
}

TEST_P(ClientMessages, NamesOfMessagesThatAreNoEventsAreUnknown) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    for (std::string const name : {"LearnModeMsg", "ManageFailedNodeMsg", "ManageNvmMsg", "RequestNeighborUpdateMsg",
                                   "SessionLayerMsg", "PingMsg", "zorv::NvmOpEvt"}) {
        EXPECT_EQ(client.ask(SubscribeMsg::create(false, std::vector<std::string>{name}))->result(), ZResult::rejected)
            << name;
    }
    for (std::string const name :
         {"AddRemoveNodeMsg", "CommandClassMsg", "ConfigurationMsg", "ControlCommandMsg", "DaemonStatusMsg",
          "DeviceStatusMsg", "FirmwareUpdateMsg", "NodeInformationMsg", "NvmOpEvt", "ResetDefaultsMsg",
          "SerialManagerEvt", "SocketStatusMsg", "SystemStatusEvt", "*"}) {
        EXPECT_EQ(client.ask(SubscribeMsg::create(false, std::vector<std::string>{name}))->result(), ZResult::success)
            << name;
    }
}

TEST_P(ClientMessages, SubscriberHearsOfClientsThatComeAndGo) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    client.subscribe({"SocketStatusMsg"});
    auto other = std::make_unique<MessageClient>(daemon.port());
    auto const port = other->localPort();
    auto const came = client.waitForAny<SocketStatusMsg>();
    EXPECT_EQ(came->status(), SocketEvent::connect);
    EXPECT_EQ(came->actor(), SocketActor::client);
    EXPECT_EQ(came->source().port(), port);
    other.reset();
    auto const went = client.waitForAny<SocketStatusMsg>();
    EXPECT_EQ(went->status(), SocketEvent::disconnect);
    EXPECT_EQ(went->source().port(), port);
    MessageClient failing(daemon.port());
    client.waitForAny<SocketStatusMsg>();
    failing.reset();
    EXPECT_EQ(client.waitForAny<SocketStatusMsg>()->status(), SocketEvent::error);
}

TEST_P(ClientMessages, StarStandsForAllEventsAndEachComesOnce) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    client.subscribe({"*", "SocketStatusMsg"});
    MessageClient const other(daemon.port());
    client.waitForAny<SocketStatusMsg>();
    client.ask(ping());
    EXPECT_EQ(client.kept<SocketStatusMsg>(), 0);
    EXPECT_EQ(client.ask(SubscribeMsg::create(true, std::string("*")))->result(), ZResult::success);
    EXPECT_EQ(client.ask(SubscribeMsg::create(true, std::string("SocketStatusMsg")))->result(), ZResult::success);
    MessageClient const third(daemon.port());
    client.ask(ping());
    EXPECT_EQ(client.kept<SocketStatusMsg>(), 0);
}

TEST_P(ClientMessages, ObserverSeesTheTrafficOfOthersInTheDirectionThatItWants) {
    StreamDaemon const daemon(GetParam());
    for (auto const direction : {ObserveDirection::none, ObserveDirection::received, ObserveDirection::sent}) {
        MessageClient observer(daemon.port());
        EXPECT_EQ(observer.ask(boost::make_shared<ObserveMsg>(ObserveAction::start, direction))->result(),
                  ZResult::success);
        MessageClient client(daemon.port());
        client.ask(ping());
        int received = 0;
        int sent = 0;
        auto const isPing = [&](ObserveMsg const& copy) {
            bool const is = copy.message() && copy.message()->name() == PingMsg::NAME;
            if (is) { ++(copy.direction() == ObserveDirection::received ? received : sent); }
            return is;
        };
        observer.waitFor<ObserveMsg>(isPing);
        if (direction == ObserveDirection::none) { observer.waitFor<ObserveMsg>(isPing); }
        EXPECT_EQ(received, direction == ObserveDirection::sent ? 0 : 1);
        EXPECT_EQ(sent, direction == ObserveDirection::received ? 0 : 1);
        EXPECT_EQ(observer.ask(boost::make_shared<ObserveMsg>(ObserveAction::stop, direction))->result(),
                  ZResult::success);
        auto const before = observer.kept<ObserveMsg>();
        client.ask(ping());
        observer.ask(ping());
        EXPECT_EQ(observer.kept<ObserveMsg>(), before);
    }
}

TEST_P(ClientMessages, ObservationWithoutAnActionIsRejected) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    auto const request = boost::make_shared<ObserveMsg>(ObserveAction::none, ObserveDirection::none);
    EXPECT_EQ(client.ask(request)->result(), ZResult::rejected);
}

TEST_P(ClientMessages, ObserverThatDoesNotKeepUpIsDisconnectedWithALineInTheLog) {
    StreamDaemon const daemon(GetParam());
    constexpr int smallBuffer = 4096;
    OpenClient slow(daemon.port(), smallBuffer);
    slow.sendLine(toText(*boost::make_shared<ObserveMsg>(ObserveAction::start, ObserveDirection::none)));
    slow.receiveLine();
    MessageClient busy(daemon.port());
    auto const isObserved = [&busy] {
        auto const rows = busy.ask(CliDisplayMsg::create({}))->data();
        return std::any_of(rows.begin(), rows.end(), [](auto const& row) { return row.size() > 6 && row[6] == "yes"; });
    };
    EXPECT_TRUE(isObserved());
    for (int i = 0; i < 20000 && isObserved(); ++i) {}
    EXPECT_FALSE(isObserved());
    daemon.waitForError("does not keep up with what it observes");
    EXPECT_EQ(busy.ask(ping())->result(), ZResult::success);
}

TEST_P(ClientMessages, DisplayShowsTheClientsAndTheCounters) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    auto const answer = client.ask(CliDisplayMsg::create({}));
    EXPECT_EQ(answer->result(), ZResult::success);
    ASSERT_GE(answer->data().size(), 3U);
    EXPECT_EQ(answer->data()[1][0], "127.0.0.1:" + std::to_string(client.localPort()));
    EXPECT_THAT(answer->data(), testing::Contains(testing::ElementsAre("Clients", "1")));
    EXPECT_THAT(answer->data(), testing::Contains(testing::ElementsAre("Serial checksum errors", "0")));
}

TEST_P(ClientMessages, QuitEndsTheDaemonInOrder) {
    StreamDaemon daemon(GetParam());
    MessageClient client(daemon.port());
    client.subscribe({"SystemStatusEvt"});
    auto const request = ping(9);
    client.tell(*request);
    client.tell(QuitMsg());
    client.waitFor<SystemStatusEvt>([](SystemStatusEvt const& e) { return e.status() == SystemStatus::stopping; });
    EXPECT_NE(client.answerTo(request)->result(), ZResult::success); // its frame is broken off
    EXPECT_TRUE(client.endsAfter(0));
    EXPECT_EQ(daemon.wait(), 0);
}

TEST_P(ClientMessages, LaterVersionIsAnsweredWithTheDaemonsOwn) {
    StreamDaemon const daemon(GetParam());
    MessageClient client(daemon.port());
    client.tell(*VersionMsg::create("1.7"));
    EXPECT_EQ(client.waitForAny<VersionMsg>()->protocolVersion(), "1.0");
}

} // namespace
