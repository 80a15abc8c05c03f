// SPDX-License-Identifier: Apache-2.0
// The library that agents are written on, with the daemon and with others that are none.
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/runLoop.h"
#include "tests/testPaths.h"

#include "platform/libio/TcpListener.h"
#include "platform/libzorvshared/RawCommand.h"
#include "zwave/libclient/Client.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/SendCommandMsg.h"
#include "zwave/libquillet/SubscribeMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <boost/asio/ip/tcp.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using namespace scenario;
using namespace zorv;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr HomeId home = 0xC0FFEE01;

boost::shared_ptr<SendCommandMsg> command(unsigned char node, std::vector<unsigned char> const& bytes) {
    return SendCommandMsg::create(ZwaveAddress(home, node), boost::make_shared<RawCommand>(bytes),
                                  TransmitOption::defaultOptions, false, false, false);
}

/// What happens to a client, in its order; the loop stops at each.
struct Log {
    explicit Log(EventLoop& theLoop) : loop(theLoop) {}

    void add(std::string const& entry) {
        entries.push_back(entry);
        loop.stop();
    }

    ClientHandlers handlers() {
        return {[this] { add("connected"); }, [this](std::string const&) { add("lost"); },
                [this](std::string const& reason) { add("refused: " + reason); }};
    }

    EventLoop& loop;
    std::vector<std::string> entries;
};

/// Something that clients connect to.
class Other {
public:
    explicit Other(EventLoop& loop, std::string const& version = "1.0")
        : bus_(loop, {[](PeerId, TMessage const&) { return std::string(); }, {}, {}, {}}),
          listener_(loop, {boost::asio::ip::address_v4::loopback(), 0}, TcpLimits(),
                    [this, version](TcpConnection connection) {
                        peer = bus_.attach(std::move(connection));
                        if (!version.empty()) { bus_.send(*peer, VersionMsg::create(version.c_str())); }
                    }) {
        bus_.handle<SubscribeMsg>([this](auto const& request, PeerId from) {
            subscribed.insert(subscribed.end(), request->events().begin(), request->events().end());
            bus_.answer(from, request->makeResponse(subscription));
        });
    }

    MessageBus& bus() { return bus_; }
    DaemonPlace place() const { return {"127.0.0.1", listener_.local().port(), {}}; }

    std::optional<PeerId> peer = {};
    std::vector<std::string> subscribed = {};
    ZResult::Enum subscription = ZResult::success;

private:
    MessageBus bus_;
    TcpListener listener_;
};

class ClientLibrary : public testing::Test {
protected:
    void run() { runLoop(loop_); }

    Client::Answer ask(Client& client, Client::Answer const& request, std::chrono::milliseconds deadline = 20s) {
        Client::Answer result;
        client.request(request, deadline, [&](Client::Answer const& answer) {
            EXPECT_FALSE(result) << "answered twice";
            result = answer;
            loop_.stop();
        });
        run();
        if (!result) { throw std::runtime_error("not answered"); }
        return result;
    }

    EventLoop loop_;
    Log log_{loop_};
};

TEST_F(ClientLibrary, AsksTheDaemon) {
    DaemonProcess const daemon;
    Client client(loop_, {"127.0.0.1", daemon.port(), {}}, log_.handlers());
    EXPECT_FALSE(client.isConnected());
    run();
    EXPECT_THAT(log_.entries, ElementsAre("connected"));
    EXPECT_TRUE(client.isConnected());
    auto const request = PingMsg::create(ZwaveAddress(home, 2));
    auto const answer = ask(client, request);
    EXPECT_EQ(answer->result(), ZResult::success);
    EXPECT_EQ(answer->correlation(), request->id());
}

TEST_F(ClientLibrary, ConnectsToAUnixSocket) {
    auto const path = "/tmp/quillet-client-library-" + std::to_string(::getpid());
    DaemonProcess const daemon({"--listen", "127.0.0.1", "--listen", "unix:" + path});
    Client client(loop_, {{}, 0, path}, log_.handlers());
    run();
    EXPECT_EQ(ask(client, PingMsg::create(ZwaveAddress(home, 2)))->result(), ZResult::success);
}

TEST_F(ClientLibrary, HearsOfEvents) {
    DaemonProcess const daemon;
    Client client(loop_, {"127.0.0.1", daemon.port(), {}}, log_.handlers());
    boost::shared_ptr<CommandClassMsg> heard;
    client.on<CommandClassMsg>([&](auto const& event) {
        if (event->command()->bytes().at(0) != 0x25) { return; } // of an interview that goes on meanwhile
        heard = event;
        loop_.stop();
    });
    run();
    client.request(command(5, {0x25, 0x02}), 20s, {});
    run();
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->sourceAddr(), ZwaveAddress(home, 5));
    EXPECT_THAT(heard->command()->bytes(), ElementsAre(0x25, 0x03, 0x00));
}

TEST_F(ClientLibrary, GivesAFutureToOtherThreads) {
    DaemonProcess const daemon;
    Client client(loop_, {"127.0.0.1", daemon.port(), {}}, log_.handlers());
    run();
    std::thread other([&] {
        auto answer = client.request(PingMsg::create(ZwaveAddress(home, 2)), 20s);
        EXPECT_EQ(answer.get()->result(), ZResult::success);
        loop_.stop();
    });
    run();
    other.join();
}

TEST_F(ClientLibrary, FutureOfAClientThatGoesIsBroken) {
    Other other(loop_);
    std::future<Client::Answer> answer;
    {
        Client client(loop_, other.place(), log_.handlers());
        run();
        answer = client.request(PingMsg::create(ZwaveAddress(home, 2)), 20s);
    }
    loop_.post([this] { loop_.stop(); });
    run();
    EXPECT_THROW(answer.get(), std::future_error);
}

TEST_F(ClientLibrary, TakesUpItsConnectionAndItsSubscriptionsAgain) {
    Other other(loop_);
    Client client(loop_, other.place(), log_.handlers(), {5ms, 20ms, 10s});
    client.on<CommandClassMsg>([](auto const&) {});
    client.on<DeviceStatusMsg>([](auto const&) {});
    run();
    auto const first = *other.peer;
    other.bus().disconnect(first);
    run();
    EXPECT_EQ(ask(client, PingMsg::create(ZwaveAddress(home, 2)))->result(), ZResult::failure) << "not connected";
    while (log_.entries.size() < 3) { run(); }
    EXPECT_THAT(log_.entries, ElementsAre("connected", "lost", "connected"));
    EXPECT_THAT(other.subscribed,
                ElementsAre("CommandClassMsg", "DeviceStatusMsg", "CommandClassMsg", "DeviceStatusMsg"));
}

TEST_F(ClientLibrary, SubscribesLaterAsWell) {
    Other other(loop_);
    Client client(loop_, other.place(), log_.handlers());
    run();
    EXPECT_TRUE(other.subscribed.empty());
    client.on<DeviceStatusMsg>([this](auto const&) { log_.add("status"); });
    client.on<DeviceStatusMsg>([this](auto const&) { log_.add("the later handler"); });
    EXPECT_EQ(ask(client, SubscribeMsg::create(false, "x"))->result(), ZResult::success); // behind the subscription
    EXPECT_THAT(other.subscribed, ElementsAre("DeviceStatusMsg", "x"));
    other.bus().send(*other.peer, boost::make_shared<DeviceStatusMsg>());
    run();
    EXPECT_THAT(log_.entries, ElementsAre("connected", "the later handler"));
}

TEST_F(ClientLibrary, WaitsForADaemonThatIsNotThereYet) {
    DaemonPlace place;
    {
        EventLoop unused;
        place = Other(unused).place();
    }
    Client const client(loop_, place, log_.handlers(), {5ms, 20ms, 10s});
    run();
    run();
    EXPECT_THAT(log_.entries, ElementsAre("lost", "lost"));
}

TEST_F(ClientLibrary, EndsWhatWaitsWhereTheConnectionIsLost) {
    Other other(loop_);
    Client client(loop_, other.place());
    other.bus().handle<PingMsg>([&](auto const&, PeerId from) { other.bus().disconnect(from); });
    client.on<DeviceStatusMsg>([](auto const&) {});
    while (!client.isConnected()) {
        Timer const soon(loop_, 1ms, [this] { loop_.stop(); });
        run();
    }
    EXPECT_EQ(ask(client, PingMsg::create(ZwaveAddress(home, 2)))->result(), ZResult::failure);
}

TEST_F(ClientLibrary, EndsARequestAtItsDeadline) {
    Other other(loop_);
    other.bus().handle<PingMsg>([](auto const&, PeerId) {});
    Client client(loop_, other.place(), log_.handlers());
    run();
    EXPECT_EQ(ask(client, PingMsg::create(ZwaveAddress(home, 2)), 10ms)->result(), ZResult::timeout);
}

TEST_F(ClientLibrary, HandsOnWhatIsSaidOfTheProgress) {
    Other other(loop_);
    other.bus().handle<PingMsg>([&](auto const& request, PeerId from) {
        other.bus().answer(from, request->makeResponse(ZResult::inProgress));
        other.bus().answer(from, request->makeResponse(ZResult::success));
    });
    Client client(loop_, other.place(), log_.handlers());
    run();
    std::vector<ZResult::Enum> results;
    auto const note = [&](Client::Answer const& answer) {
        results.push_back(answer->result());
        if (results.size() == 2) { loop_.stop(); }
    };
    client.request(PingMsg::create(ZwaveAddress(home, 2)), 20s, note, note);
    run();
    EXPECT_THAT(results, ElementsAre(ZResult::inProgress, ZResult::success));
}

/// Answers another class's request with what it is given.
template <class Make> Client::Answer answerOf(Client& client, Other& other, EventLoop& loop, Make make) {
    other.bus().handle<PingMsg>([&](auto const& request, PeerId from) { other.bus().answer(from, make(request)); });
    Client::Answer result;
    client.request(PingMsg::create(ZwaveAddress(home, 2)), 20s, [&](Client::Answer const& answer) {
        result = answer;
        loop.stop();
    });
    runLoop(loop);
    return result;
}

TEST_F(ClientLibrary, TakesNoOtherAnswerThanARejection) {
    Other other(loop_);
    Client client(loop_, other.place(), log_.handlers());
    run();
    auto const respond = [](auto answer, auto const& request) {
        answer->setResponse(*request);
        return answer;
    };
    auto const rejected = answerOf(client, other, loop_, [&](auto const& request) {
        return respond(boost::make_shared<Confirmable>(ZResult::rejected), request);
    });
    EXPECT_EQ(rejected->result(), ZResult::rejected);
    auto const another = answerOf(client, other, loop_, [&](auto const& request) {
        return respond(boost::make_shared<SubscribeMsg>(), request);
    });
    EXPECT_EQ(another->result(), ZResult::failure);
    EXPECT_TRUE(boost::dynamic_pointer_cast<PingMsg>(another));
}

TEST_F(ClientLibrary, LeavesADaemonOfAnotherVersion) {
    Other other(loop_, "2.0");
    Client const client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 10s});
    run();
    Timer const later(loop_, 100ms, [this] { loop_.stop(); });
    run();
    EXPECT_THAT(log_.entries, ElementsAre("refused: the daemon speaks protocol version 2.0, this client speaks 1.0"));
}

TEST_F(ClientLibrary, LeavesWhatIsNoDaemon) {
    Other other(loop_, "");
    Client const client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 10s});
    while (!other.peer) {
        Timer const soon(loop_, 1ms, [this] { loop_.stop(); });
        run();
    }
    other.bus().send(*other.peer, PingMsg::create(ZwaveAddress(home, 2)));
    run();
    EXPECT_THAT(log_.entries, ElementsAre("refused: the daemon did not tell its version but sent PingMsg"));
}

TEST_F(ClientLibrary, LeavesADaemonWithoutTheEvents) {
    Other other(loop_);
    other.subscription = ZResult::rejected;
    Client client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 10s});
    client.on<CommandClassMsg>([](auto const&) {});
    run();
    Timer const later(loop_, 100ms, [this] { loop_.stop(); });
    run();
    EXPECT_THAT(log_.entries, ElementsAre("refused: the daemon does not have the events that were subscribed to"));
    EXPECT_EQ(other.bus().peerCount(), 0U);
}

TEST_F(ClientLibrary, TakesTheDaemonsRefusalAsItsLastWord) {
    Other other(loop_);
    Client const client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 10s});
    run();
    other.bus().send(*other.peer, boost::make_shared<Confirmable>(ZResult::rejected));
    other.bus().disconnectAll("refused");
    run();
    Timer const later(loop_, 100ms, [this] { loop_.stop(); });
    run();
    EXPECT_THAT(log_.entries, ElementsAre("connected", "refused: the daemon refused the connection: rejected"));
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(other.bus().peerCount(), 0U);
}

TEST_F(ClientLibrary, TriesAgainWhereTheDaemonTellsNoVersionInTime) {
    Other other(loop_, "");
    Client const client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 20ms});
    run();
    run();
    EXPECT_THAT(log_.entries, ElementsAre("lost", "lost"));
}

TEST_F(ClientLibrary, TriesAgainWhereTheSubscriptionIsNotAnsweredInTime) {
    Other other(loop_);
    other.bus().handle<SubscribeMsg>([](auto const&, PeerId) {});
    Client client(loop_, other.place(), log_.handlers(), {1ms, 1ms, 20ms});
    client.on<DeviceStatusMsg>([](auto const&) {});
    run();
    run();
    EXPECT_THAT(log_.entries, ElementsAre("lost", "lost"));
}

TEST_F(ClientLibrary, HearsOfEveryEvent) {
    Other other(loop_);
    Client client(loop_, other.place(), log_.handlers());
    client.onEvery([this](TMessage const& event) { log_.add(event.name()); });
    run();
    EXPECT_THAT(other.subscribed, ElementsAre("*"));
    other.bus().send(*other.peer, boost::make_shared<DeviceStatusMsg>());
    run();
    other.bus().send(*other.peer, boost::make_shared<CommandClassMsg>());
    run();
    EXPECT_THAT(log_.entries, ElementsAre("connected", "DeviceStatusMsg", "CommandClassMsg"));
}

TEST_F(ClientLibrary, GoesWhileItConnects) {
    Other other(loop_);
    { Client const client(loop_, other.place(), log_.handlers()); }
    Timer const later(loop_, 50ms, [this] { loop_.stop(); });
    run();
    EXPECT_TRUE(log_.entries.empty());
}

TEST(LampExample, SwitchesTheLampAsTheSwitchReports) {
    DaemonProcess const daemon;
    Process agent({programPath("example-lamp"), std::to_string(daemon.port())});
    EXPECT_EQ(agent.readLine(), "connected");
    MessageClient client(daemon.port());
    client.subscribe({"CommandClassMsg"});
    client.ask(command(5, {0x25, 0x01, 0xFF}));
    client.ask(command(5, {0x25, 0x02})); // has it report
    EXPECT_EQ(agent.readLine(), "lamp: success");
    client.forget();
    client.ask(command(2, {0x25, 0x02}));
    auto const report = client.waitFor<CommandClassMsg>([](CommandClassMsg const& event) {
        return event.sourceAddr().nodeId() == 2 && event.command()->bytes().at(0) == 0x25;
    });
    EXPECT_THAT(report->command()->bytes(), ElementsAre(0x25, 0x03, 0xFF));
    agent.signal(SIGTERM);
    EXPECT_EQ(agent.wait(), 0);
}

} // namespace
