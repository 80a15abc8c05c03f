// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/ModulePlayer.h"
#include "tests/scenario/runLoop.h"
#include "zwave/libserialapi/Module.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

namespace api = serialapi;

using modulesim::Bytes;

/// A host and a module that is played, on one event loop.
class PlayedModule : public testing::Test {
protected:
    explicit PlayedModule(modulesim::SimulatedNetwork network = smallNetwork())
        : player_(loop_, std::move(network), [this](Bytes const& bytes) {
              EXPECT_FALSE(isCalling_);
              host_.receive(bytes, std::chrono::steady_clock::now());
              carry();
          }) {
        host_.start();
        api::CallHandlers<api::GetVersion> handlers;
        handlers.end = [this](api::CallEnd end) {
            EXPECT_EQ(end, api::CallEnd::done);
            loop_.stop();
        };
        host_.call<api::GetVersion>({}, std::move(handlers), std::chrono::steady_clock::now());
        carry();
        runLoop(loop_);
    }

    static modulesim::SimulatedNetwork smallNetwork() {
        modulesim::SimulatedNetwork network;
        network.nodes.resize(1);
        network.nodes[0].id = 2;
        network.nodes[0].latency = modulesim::Milliseconds(120);
        return network;
    }

    void carry() {
        auto const bytes = host_.takeOutput();
        isCalling_ = true;
        if (!bytes.empty()) { player_.receive(bytes); }
        isCalling_ = false;
    }

    EventLoop loop_;
    api::Module host_;
    bool isCalling_ = false;
    modulesim::ModulePlayer player_;
};

TEST_F(PlayedModule, AnswersInRealTime) {
    auto const start = std::chrono::steady_clock::now();
    std::vector<int> statuses;
    api::CallHandlers<api::SendData> handlers;
    handlers.callback = [&](api::TransmitCallback const& callback) {
        statuses.push_back(callback.status);
        loop_.stop();
    };
    host_.call<api::SendData>({2, {0}, 0x25, 0}, std::move(handlers), start);
    carry();
    runLoop(loop_);
    EXPECT_EQ(statuses, std::vector<int>{0});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(120));
}

TEST_F(PlayedModule, DoesAtOnceWhatPeopleDo) {
    std::vector<int> functions;
    host_.unsolicited([&](api::Frame const& frame) {
        functions.push_back(frame.function);
        loop_.stop();
    });
    player_.module().pressButton(2);
    runLoop(loop_);
    EXPECT_EQ(functions, std::vector<int>{0x49});
}

TEST_F(PlayedModule, LeavesNothingOnTheLoopWhenItGoes) {
    {
        EventLoop loop;
        modulesim::ModulePlayer player(loop, smallNetwork(), [](Bytes const&) { FAIL(); });
        player.receive({0x15});
    }
    EventLoop loop;
    {
        modulesim::ModulePlayer const player(loop, smallNetwork(), [](Bytes const&) { FAIL(); });
    }
    loop.run();
}

} // namespace
