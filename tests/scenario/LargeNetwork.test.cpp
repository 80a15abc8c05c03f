// SPDX-License-Identifier: Apache-2.0
// The daemon with as many nodes as a network can have, and with many clients. QUILLET_LOAD_SECONDS sets how long they ask.

#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"

#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DeviceStatusMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using Clock = std::chrono::steady_clock;

constexpr HomeId home = 0xC0FFEE01;
constexpr std::size_t clientCount = 50;

double seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

double loadSeconds() {
    auto const* const given = std::getenv("QUILLET_LOAD_SECONDS"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return given == nullptr ? 3 : std::atof(given);
}

class LargeNetwork : public testing::Test {
protected:
    TemporaryDirectory directory_;
    std::string network_ = directory_.write("network.json", R"({"homeId": "c0ffee01", "nodes": [], "generate": 231})");
};

TEST_F(LargeNetwork, IsReadyInTimeAndTakesLittleMemory) {
    auto const start = Clock::now();
    DaemonProcess const daemon({"--network", network_});
    MessageClient client(daemon.port());
    auto const info = client.ask(ControllerInfoMsg::create());
    auto const ready = seconds(Clock::now() - start);
    EXPECT_EQ(info->deviceStatus(), DeviceStatus::ready);
    EXPECT_EQ(info->nodeCount(), 232U);
    EXPECT_LT(ready, 20); // a second on a quiet machine, in release
    std::printf("ready with 232 nodes after %.3f s, %ld KiB resident\n", ready, daemon.memory("VmRSS"));
}

/// What one client was answered.
struct Tally {
    std::vector<double> times = {}; ///< seconds
    int wrong = 0;
};

template <class M, class IsRight>
void measure(MessageClient& client, boost::shared_ptr<M> const& request, Tally& tally, IsRight const& isRight) {
    auto const start = Clock::now();
    auto const answer = client.ask(request);
    tally.times.push_back(seconds(Clock::now() - start));
    if (!isRight(*answer)) { ++tally.wrong; }
}

/// Asks one thing after the other until the time is over.
void askOn(unsigned short port, unsigned int seed, Clock::time_point end, Tally& tally) {
    MessageClient client(port);
    std::minstd_rand random(seed);
    while (Clock::now() < end) {
        ZwaveAddress const address(home, static_cast<unsigned char>(1 + random() % 232));
        switch (random() % 8) {
        case 0:
            measure(client, ControllerInfoMsg::create(), tally, [](auto const& m) { return m.nodeCount() == 232; });
            break;
        case 1:
            measure(client, PingMsg::create(ZwaveAddress(home, 1)), tally,
                    [](auto const& m) { return m.result() == ZResult::success; });
            break;
        default:
            measure(client, DeviceStatusMsg::create(address, MessageRole::request), tally,
                    [&address](auto const& m) { return m.result() == ZResult::success && m.address() == address; });
        }
    }
}

/// Observes the traffic. On a busy machine it may be too slow for it, and is then disconnected.
void observe(unsigned short port, std::atomic<bool> const& isOver) {
    while (!isOver) {
        try {
            OpenClient client(port);
            client.sendLine(toText(*boost::make_shared<ObserveMsg>(ObserveAction::start, ObserveDirection::none)));
            while (!isOver) { client.receiveLine(); }
        } catch (std::exception const&) {
            // Once more, from the beginning.
        }
    }
}

TEST_F(LargeNetwork, AnswersManyClientsRightlyAndKeepsItsMemory) {
    DaemonProcess const daemon({"--network", network_});
    MessageClient watcher(daemon.port());
    watcher.subscribe({"*"});
    std::atomic<bool> isOver = false;
    std::thread reader([&] { // events are read as they come
        while (!isOver) {
            watcher.ask(PingMsg::create(ZwaveAddress(home, 1)));
            watcher.forget();
        }
    });
    std::thread observer([&] { observe(daemon.port(), isOver); });
    MessageClient(daemon.port()).ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
    auto const before = daemon.memory("VmRSS");
    auto const duration = loadSeconds();
    auto const end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(duration));
    std::vector<Tally> tallies(clientCount);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < clientCount; ++i) {
        threads.emplace_back([&, i] { askOn(daemon.port(), static_cast<unsigned int>(i + 1), end, tallies[i]); });
    }
    for (auto& thread : threads) { thread.join(); }
    isOver = true;
    MessageClient(daemon.port()).ask(PingMsg::create(ZwaveAddress(home, 1))); // for the observer to see
    reader.join();
    observer.join();
    std::vector<double> times;
    for (auto const& tally : tallies) {
        EXPECT_EQ(tally.wrong, 0);
        EXPECT_FALSE(tally.times.empty());
        times.insert(times.end(), tally.times.begin(), tally.times.end());
    }
    std::sort(times.begin(), times.end());
    auto const at = [&times](double share) {
        return 1000 * times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    auto const growth = daemon.memory("VmRSS") - before;
    std::printf("%zu clients, %.0f s: %.0f answers/s, p50 %.1f ms, p99 %.1f ms, %ld KiB more resident\n", clientCount,
                duration, static_cast<double>(times.size()) / duration, at(0.5), at(0.99), growth);
#ifndef __SANITIZE_ADDRESS__
#ifndef __SANITIZE_THREAD__       // keeps a record of each access; that of addresses keeps what was given back
    EXPECT_LT(growth, 16 * 1024); // buffers of the connections
#endif
#endif
}

} // namespace
