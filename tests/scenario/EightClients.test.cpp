// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/connectTcp.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/TemporaryDirectory.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/VersionMsg.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

/// The frames of all clients go out one after the other.
char const* const quickNetwork = R"({"homeId": "c0ffee01", "nodes": [
    {"id": 2, "latencyMs": 1}, {"id": 3, "latencyMs": 1}, {"id": 5, "latencyMs": 2}, {"id": 6, "latencyMs": 3}]})";

constexpr int clients = 8;
constexpr int pingsOfAll = 1000;
constexpr int pingsEach = pingsOfAll / clients;

/// What one client got for its pings, all of which it sends before it reads the first answer.
struct Tally {
    int answers = 0;
    int strangers = 0; // answers that were not for this client
    std::set<boost::uuids::uuid> correlations;
};

Tally pingAtOnce(unsigned short port, unsigned char node, int count) {
    Tally tally;
    EventLoop loop;
    MessageBus bus(loop);
    auto const take = [&](PingMsg const& request, MessageBus::ConfirmablePtr const& any) {
        auto const ping = boost::dynamic_pointer_cast<PingMsg>(any);
        bool const mine = ping && ping->result() == ZResult::success && ping->correlation() == request.id() &&
                          ping->destination().nodeId() == node;
        mine ? ++tally.answers : ++tally.strangers;
        tally.correlations.insert(any->correlation());
        if (tally.answers + tally.strangers == count) { loop.stop(); }
    };
    ConnectHandlers handlers;
    handlers.connected = [&](TcpConnection connection) {
        auto const daemon = bus.attach(std::move(connection));
        bus.send(daemon, VersionMsg::create("1.0"));
        for (int i = 0; i < count; ++i) {
            auto const request = PingMsg::create(ZwaveAddress(0xC0FFEE01, node));
            bus.request(daemon, request, std::chrono::seconds(20),
                        [&take, request](auto const& answer) { take(*request, answer); });
        }
    };
    handlers.failed = [&loop](std::string const&) { loop.stop(); };
    connectTcp(loop, "127.0.0.1", port, std::chrono::seconds(20), TcpLimits(), std::move(handlers));
    runLoop(loop);
    return tally;
}

TEST(EightClients, GetEachOfTheirThousandAnswersAndNoOther) {
    TemporaryDirectory const directory;
    DaemonProcess const daemon({"--network", directory.write("network.json", quickNetwork)});
    std::vector<unsigned char> const nodes{1, 2, 3, 5, 6, 1, 2, 3};
    std::vector<Tally> tallies(clients);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < clients; ++i) {
        threads.emplace_back([&, i] { tallies[i] = pingAtOnce(daemon.port(), nodes[i], pingsEach); });
    }
    for (auto& thread : threads) { thread.join(); }
    int answers = 0;
    for (auto const& tally : tallies) {
        EXPECT_EQ(tally.strangers, 0);
        EXPECT_EQ(tally.correlations.size(), 125U);
        answers += tally.answers;
    }
    EXPECT_EQ(answers, 1000);
}

TEST(EightClients, GetAllTheirAnswersWhenOneOfThemIsKilledHalfWay) {
    TemporaryDirectory const directory;
    DaemonProcess const daemon({"--network", directory.write("network.json", quickNetwork)});
    std::vector<std::unique_ptr<Process>> processes;
    for (int i = 0; i < clients; ++i) {
        auto const node = std::to_string(i % 2 == 0 ? 1 : 2);
        processes.push_back(std::make_unique<Process>(clientCommand(
            daemon.port(), {"--json", "ping", node, "--count", std::to_string(pingsEach), "--interval", "0"})));
    }
    for (int i = 0; i < pingsEach / 2; ++i) { processes[3]->readLine(); }
    processes[3]->signal(SIGKILL);
    EXPECT_EQ(processes[3]->wait(), 128 + SIGKILL);
    for (std::size_t i = 0; i < clients; ++i) {
        if (i == 3) { continue; }
        EXPECT_EQ(processes[i]->wait(), 0) << processes[i]->errors();
        auto const answers = processes[i]->restOfOutput();
        EXPECT_EQ(answers.size(), 125U);
        std::string const node = i % 2 == 0 ? "\"nodeId_\":1}" : "\"nodeId_\":2}";
        for (auto const& answer : answers) {
            EXPECT_NE(answer.find(node), std::string::npos);
            EXPECT_NE(answer.find("\"result_\":\"success\""), std::string::npos);
        }
    }
}

} // namespace
