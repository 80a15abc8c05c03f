// SPDX-License-Identifier: Apache-2.0
// The daemon in this process, on a thread of its own whose memory runs out. Its module is played on another thread, so
// that only the daemon has to do without.

#include "apps/zwaved/Daemon.h"

#include "platform/libio/TcpBudget.h"
#include "platform/libio/TcpListener.h"
#include "platform/libzorvlogger/Logger.h"
#include "tests/memory/Allocations.h"
#include "tests/scenario/LineClient.h"
#include "tests/scenario/MessageClient.h"
#include "tests/support/TemporaryDirectory.h"
#include "zwave/libmodulesim/ModulePlayer.h"
#include "zwave/libmodulesim/readNetwork.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace zorv {
namespace {

/// A loop and the thread that runs it, until it is told to stop.
class LoopThread {
public:
    LoopThread() = default;
    ~LoopThread() { stop(); }
    LoopThread(LoopThread const&) = delete;
    LoopThread& operator=(LoopThread const&) = delete;

    EventLoop& loop() noexcept { return loop_; }

    void start() {
        thread_ = std::thread([this] { loop_.run(); });
    }

    void stop() {
        loop_.stop();
        if (thread_.joinable()) { thread_.join(); }
    }

    /// Has the thread do something, and waits for it.
    template <class Work> void does(Work const& work) {
        std::promise<void> done;
        loop_.post([&] {
            work();
            done.set_value();
        });
        done.get_future().wait();
    }

private:
    EventLoop loop_;
    Timer idle_{loop_, std::chrono::hours(1), [] {}}; // a loop that has nothing to wait for ends
    std::thread thread_;
};

/// One of few nodes, which is read fast: that is done after each failure in a turn of the controller.
modulesim::SimulatedNetwork smallNetwork() {
    auto network = modulesim::builtInNetwork();
    network.nodes.resize(1);
    network.nodes[0].latency = modulesim::Milliseconds(1);
    network.nodes[0].jitter = modulesim::Milliseconds(0);
    return network;
}

class Module {
public:
    explicit Module(EventLoop& host) : host_(host) {
        player_ = std::make_unique<modulesim::ModulePlayer>(thread_.loop(), smallNetwork(),
                                                            [this](serialapi::Bytes const& bytes) {
                                                                host_.post([this, bytes] {
                                                                    if (handlers_.received) {
                                                                        handlers_.received(bytes);
                                                                    }
                                                                });
                                                            });
        thread_.start();
    }
    ~Module() { thread_.stop(); } // before its player goes
    Module(Module const&) = delete;
    Module& operator=(Module const&) = delete;

    daemon::OpenPort port() {
        return [this](daemon::ModulePort::Handlers handlers) {
            handlers_ = std::move(handlers);
            return std::make_unique<Port>(*this);
        };
    }

private:
    class Port : public daemon::ModulePort {
    public:
        explicit Port(Module& module) : module_(module) {}
        void write(serialapi::Bytes const& bytes) override {
            Allocations::Pardon const pardon; // what the test needs
            module_.thread_.loop().post([&module = module_, bytes] { module.player_->receive(bytes); });
        }

    private:
        Module& module_;
    };

    EventLoop& host_;
    daemon::ModulePort::Handlers handlers_;
    LoopThread thread_;
    std::unique_ptr<modulesim::ModulePlayer> player_;
};

class Stage {
public:
    Stage() : module_(thread_.loop()) {
        Logger::consoleThreshold(LogLevel::error);
        daemon_.emplace(thread_.loop(), module_.port(), state_.path(), "", [] {});
        TcpLimits limits;
        limits.budget = std::make_shared<TcpBudget>(thread_.loop(), std::size_t{16} << 20U, 64);
        TcpListener::Endpoint const local(boost::asio::ip::address_v4::loopback(), 0);
        listener_.emplace(thread_.loop(), local, limits,
                          [this](TcpConnection connection) { daemon_->welcome(std::move(connection)); });
        port_ = listener_->local().port();
        daemon_->open();
        thread_.start();
        scenario::MessageClient client(port_);
        client.waitForStart();
        while (!knowsItsNodes(client)) {} // what they say of themselves takes memory
    }

    ~Stage() {
        Logger::consoleThreshold(LogLevel::warn);
        thread_.stop();
    }

    Stage(Stage const&) = delete;
    Stage& operator=(Stage const&) = delete;

    unsigned short port() const noexcept { return port_; }

    /// Has the daemon's thread do `work` without some of the memory that it asks for. False where it needs less.
    template <class Work> bool without(std::size_t granted, std::size_t refused, Work const& work) {
        thread_.does([&] { gap_.emplace(granted, refused); });
        work();
        bool wasReached = false;
        thread_.does([&] {
            wasReached = Allocations::Gap::wasReached();
            gap_.reset();
        });
        return wasReached;
    }

    /// Whether the daemon answers a new client, and drives its module, within a generous time.
    testing::AssertionResult serves() {
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        try {
            scenario::MessageClient client(port_);
            while (std::chrono::steady_clock::now() < end) {
                auto const answer = client.ask(PingMsg::create(ZwaveAddress(0, 2)));
                if (answer->result() == ZResult::success) { return testing::AssertionSuccess(); }
            }
        } catch (std::exception const& error) { return testing::AssertionFailure() << error.what(); }
        return testing::AssertionFailure() << "no ping succeeds";
    }

private:
    static bool knowsItsNodes(scenario::MessageClient& client) {
        auto const answer = client.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
        auto const& devices = answer->devices();
        return std::all_of(devices.begin(), devices.end(),
                           [](auto const& entry) { return entry.second->deviceStatus() == DeviceStatus::ready; });
    }

    TemporaryDirectory state_;
    LoopThread thread_;
    Module module_;
    std::optional<daemon::Daemon> daemon_;
    std::optional<TcpListener> listener_;
    std::optional<Allocations::Gap> gap_;
    unsigned short port_ = 0;
};

class DaemonOutOfMemory : public testing::Test {
protected:
    /// Has a client do `work` with one allocation refused after another, or so many of them in a row, and looks after the
    /// daemon each time. The work may fail by its connection's end.
    template <class Work> void refuseEach(Work const& work, std::size_t inARow = 1) {
        Stage stage;
        EXPECT_TRUE(stage.serves());
        constexpr std::size_t settled = 10; // by then, what is made once is there
        auto before = Allocations::live();
        auto const refusals = forEachAllocation([&](std::size_t granted) {
            std::optional<scenario::MessageClient> client(stage.port());
            bool const wasReached = stage.without(granted, inARow, [&] {
                try {
                    work(stage, client);
                } catch (std::out_of_range const&) {} // the connection ended
            });
            client.reset();
            auto const serves = stage.serves();
            EXPECT_TRUE(serves) << "the one after " << granted;
            if (granted == settled) { before = Allocations::live(); }
            return wasReached && serves;
        });
        EXPECT_GT(refusals, settled);
        EXPECT_NEAR(static_cast<double>(Allocations::live()), static_cast<double>(before), 100.0);
    }

    using Client = std::optional<scenario::MessageClient>;
};

TEST_F(DaemonOutOfMemory, AnswersThePingsOfOthers) {
    refuseEach([](Stage&, Client& client) { client->ask(PingMsg::create(ZwaveAddress(0, 2))); });
}

constexpr std::size_t severalInARow = 10; // more than are asked for again at once

TEST_F(DaemonOutOfMemory, ShowsItsNodesToOthers) {
    for (auto const inARow : {std::size_t{1}, severalInARow}) {
        refuseEach(
            [](Stage&, Client& client) {
                client->ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
            },
            inARow);
    }
}

TEST_F(DaemonOutOfMemory, AcceptsTheNextClients) {
    for (auto const inARow : {std::size_t{1}, severalInARow}) {
        refuseEach([](Stage& stage, Client&) { scenario::MessageClient(stage.port()).waitForStart(); }, inARow);
    }
}

TEST_F(DaemonOutOfMemory, ClosesTheModeOfAClientThatLeaves) {
    refuseEach([](Stage& stage, Client& client) {
        client->tell(*AddRemoveNodeMsg::create(AddRemoveOp::add, false, ZResult::none, 60, false));
        client.reset();
        scenario::MessageClient(stage.port()).waitForStart();
    });
}

} // namespace
} // namespace zorv
