// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FaultyWire.h"
#include "tests/unit/ModuleSim.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace zorv::modulesim {
namespace {

using Kind = Fault::Kind;
using Direction = Fault::Direction;

constexpr Byte getVersion = 0x15;
constexpr Byte sendData = 0x13;
constexpr Byte memoryGetId = 0x20;

Fault fault(Kind kind, std::optional<Byte> function = std::nullopt) {
    Fault fault;
    fault.kind = kind;
    fault.function = function;
    return fault;
}

Fault onTheWayBack(Fault fault) {
    fault.direction = Direction::toHost;
    return fault;
}

SimulatedNetwork with(std::vector<Fault> faults, Generation generation = Generation::series700) {
    auto network = smallNetwork(generation);
    network.faults = std::move(faults);
    return network;
}

class ModuleSimFaults : public testing::Test {
protected:
    void begin(std::vector<Fault> faults, Generation generation = Generation::series700) {
        link_.emplace(with(std::move(faults), generation));
    }

    std::string version() {
        auto const answer = link_->ask<api::GetVersion>();
        return answer ? answer->version : "no answer";
    }
    api::SessionCounters host() const { return link_->host.session().counters(); }
    Milliseconds since(TimePoint start) const { return std::chrono::duration_cast<Milliseconds>(link_->now - start); }

    std::optional<HeardLink> link_;
};

// ---- frames

TEST_F(ModuleSimFaults, LosesAFrameOfTheHostWhichSendsItAgain) {
    begin({fault(Kind::loseFrame, getVersion)});
    auto const start = link_->now;
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(since(start), Milliseconds(1700)); // until no ACK counts as a NAK, and the pause
    EXPECT_EQ(host().retransmissions, 1U);
    EXPECT_EQ(host().ackTimeouts, 1U);
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(host().retransmissions, 1U);
}

TEST_F(ModuleSimFaults, LosesAFrameUntilTheHostGivesUp) {
    auto lost = fault(Kind::loseFrame, getVersion);
    lost.times = 4;
    begin({lost});
    EXPECT_EQ(link_->follow<api::SendData>({2, {0}, 0x25, 0}, Milliseconds(1000)), "0 done");
    std::vector<api::CallEnd> ends;
    api::CallHandlers<api::GetVersion> handlers;
    handlers.end = [&ends](api::CallEnd end) { ends.push_back(end); };
    link_->host.call<api::GetVersion>({}, handlers, link_->now);
    link_->passes(Milliseconds(20000));
    EXPECT_EQ(ends, std::vector<api::CallEnd>{api::CallEnd::notAcknowledged});
    EXPECT_EQ(version(), "Z-Wave 7.18");
}

TEST_F(ModuleSimFaults, LosesAFrameOfTheModuleWhichSendsItAgain) {
    begin({onTheWayBack(fault(Kind::loseFrame, getVersion))});
    auto const start = link_->now;
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(since(start), Milliseconds(1500));
    EXPECT_EQ(host().retransmissions, 0U);
}

TEST_F(ModuleSimFaults, SpoilsFramesSoThatTheyAreSentAgain) {
    int retransmissions = 0;
    int naks = 0;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        auto network = with({fault(Kind::corruptFrame), onTheWayBack(fault(Kind::corruptFrame))});
        network.seed = seed;
        link_.emplace(network);
        EXPECT_EQ(version(), "Z-Wave 7.18") << seed;
        retransmissions += static_cast<int>(host().retransmissions);
        naks += static_cast<int>(host().naksSent);
    }
    EXPECT_GE(retransmissions, 40);
    EXPECT_GE(naks, 40); // one of them with which the host begins
}

TEST_F(ModuleSimFaults, DelaysAFrameAndWhatFollowsIt) {
    auto late = fault(Kind::delayFrame, getVersion);
    late.lasts = Milliseconds(400);
    begin({late});
    auto const start = link_->now;
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(since(start), Milliseconds(400));
    EXPECT_EQ(host().retransmissions, 0U);
    auto lateBack = onTheWayBack(late);
    lateBack.function.reset();
    begin({lateBack});
    auto const startBack = link_->now;
    link_->module.pressButton(2); // its frame is late, and so is the answer that follows
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_GE(since(startBack), Milliseconds(400));
    EXPECT_EQ(link_->heard.size(), 1U);
}

TEST_F(ModuleSimFaults, CollidesWithAFrameOfTheHost) {
    begin({fault(Kind::collide, getVersion)});
    auto const start = link_->now;
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(since(start), Milliseconds(100));
    EXPECT_EQ(host().cansReceived, 1U);
    EXPECT_EQ(host().retransmissions, 1U);
}

TEST_F(ModuleSimFaults, WithholdsAnAckOfAFrameThatIsTakenAllTheSame) {
    begin({fault(Kind::withholdAck, 0x42)});
    EXPECT_EQ(link_->module.homeId(), 0xC0FFEE01U);
    link_->host.call<api::SetDefault>({1}, {}, link_->now);
    link_->passes(Milliseconds(600));
    EXPECT_NE(link_->module.homeId(), 0xC0FFEE01U);
    EXPECT_EQ(host().acksReceived, 0U);
    link_->passes(Milliseconds(1200));
    EXPECT_EQ(host().ackTimeouts, 1U);
}

TEST_F(ModuleSimFaults, WithholdsTheCallbackOfAFunction) {
    begin({fault(Kind::withholdCallback, sendData)});
    EXPECT_EQ(link_->follow<api::SendData>({2, {0}, 0x25, 0}, Milliseconds(64000)),
              "end " + std::to_string(static_cast<int>(api::CallEnd::cancelled)));
    EXPECT_EQ(link_->follow<api::SendData>({2, {0}, 0x25, 0}, Milliseconds(65000)), "0 done");
    begin({fault(Kind::withholdCallback, sendData)});
    EXPECT_EQ(link_->follow<api::SendNodeInformation>({2, 0x25, 0}, Milliseconds(65000)), "0 done");
    EXPECT_EQ(link_->follow<api::SendData>({2, {0}, 0x25, 0}, Milliseconds(66000)),
              "end " + std::to_string(static_cast<int>(api::CallEnd::noCallback)));
}

TEST_F(ModuleSimFaults, WithholdsWhatTheModuleTellsUnasked) {
    begin({fault(Kind::withholdCallback, 0x49)});
    link_->module.pressButton(2);
    link_->passes(Milliseconds(100));
    EXPECT_EQ(link_->heard, Texts{});
    link_->module.pressButton(2);
    link_->passes(Milliseconds(100));
    EXPECT_EQ(link_->heard.size(), 1U);
}

// ---- when

TEST_F(ModuleSimFaults, LetsTheFirstOccasionsPass) {
    auto lost = fault(Kind::loseFrame, getVersion);
    lost.skip = 2;
    lost.times = 2;
    begin({lost});
    std::vector<std::uint64_t> retransmissions;
    for (int i = 0; i < 5; ++i) {
        link_->ask<api::MemoryGetId>(); // no occasion
        EXPECT_EQ(version(), "Z-Wave 7.18");
        retransmissions.push_back(host().retransmissions);
    }
    EXPECT_EQ(retransmissions, (std::vector<std::uint64_t>{0, 0, 2, 2, 2}));
}

TEST_F(ModuleSimFaults, WaitsForItsTime) {
    auto lost = fault(Kind::loseFrame);
    lost.after = Milliseconds(5000);
    begin({lost});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    link_->passes(Milliseconds(4999));
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(host().retransmissions, 0U);
    link_->passes(Milliseconds(1));
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(host().retransmissions, 1U);
}

TEST_F(ModuleSimFaults, StrikesAShareOfTheOccasionsByTheSeed) {
    auto const struck = [this](std::uint32_t seed) {
        auto lost = fault(Kind::loseFrame, getVersion);
        lost.times = 1000;
        lost.share = 0.25;
        auto network = with({lost});
        network.seed = seed;
        link_.emplace(network);
        std::string pattern;
        for (int i = 0; i < 200; ++i) {
            auto const before = host().retransmissions;
            version();
            pattern += host().retransmissions == before ? '.' : 'x';
        }
        return pattern;
    };
    auto const pattern = struck(1);
    auto const count = std::count(pattern.begin(), pattern.end(), 'x');
    EXPECT_GT(count, 30);
    EXPECT_LT(count, 70);
    EXPECT_EQ(struck(1), pattern);
    EXPECT_NE(struck(2), pattern);
}

TEST_F(ModuleSimFaults, DependOnNoOtherFault) {
    auto lost = fault(Kind::loseFrame, getVersion);
    lost.times = 1000;
    lost.share = 0.5;
    auto other = fault(Kind::collide, memoryGetId);
    other.times = 1000;
    other.share = 0.5;
    auto const pattern = [this](std::vector<Fault> const& faults) {
        begin(faults);
        std::string text;
        for (int i = 0; i < 50; ++i) {
            auto const before = host().ackTimeouts;
            version();
            text += host().ackTimeouts == before ? '.' : 'x';
            link_->ask<api::MemoryGetId>();
        }
        return text;
    };
    EXPECT_EQ(pattern({lost}), pattern({lost, other}));
}

// ---- the module

TEST_F(ModuleSimFaults, HangForAWhile) {
    auto hang = fault(Kind::hang);
    hang.after = Milliseconds(1000);
    hang.lasts = Milliseconds(30000);
    begin({hang});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    link_->passes(Milliseconds(1000));
    link_->module.pressButton(2);
    EXPECT_EQ(version(), "no answer");
    EXPECT_EQ(link_->heard, Texts{});
    link_->passes(Milliseconds(30000));
    EXPECT_EQ(link_->heard.size(), 1U);
    EXPECT_EQ(version(), "Z-Wave 7.18");
}

TEST_F(ModuleSimFaults, HangForEverAtAFunction) {
    begin({fault(Kind::hang, sendData)});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(link_->follow<api::SendData>({2, {0}, 0x25, 0}, Milliseconds(20000)),
              "end " + std::to_string(static_cast<int>(api::CallEnd::notAcknowledged)));
    link_->passes(Milliseconds(86400000));
    EXPECT_EQ(version(), "no answer");
}

TEST_F(ModuleSimFaults, HangAlsoForWhatCameWithTheSameBytes) {
    auto hang = fault(Kind::hang, getVersion);
    hang.lasts = Milliseconds(1000);
    SimulatedModule module(with({hang}));
    module.start();
    TimePoint const start{};
    module.tick(start);
    module.receive({0x01, 0x03, 0x00, 0x15, 0xE9, 0x01, 0x03, 0x00, 0x20, 0xDC}, start);
    for (int i = 1; i <= 30; ++i) { module.tick(start + Milliseconds(100 * i)); }
    EXPECT_EQ(module.takeOutput(), Bytes{});
}

TEST_F(ModuleSimFaults, RestartTheModule) {
    auto restart = fault(Kind::restart);
    restart.after = Milliseconds(2000);
    begin({restart});
    link_->passes(Milliseconds(2299));
    EXPECT_EQ(link_->heard, Texts{});
    link_->passes(Milliseconds(1));
    ASSERT_EQ(link_->heard.size(), 1U);
    EXPECT_EQ(link_->heard[0].substr(0, 5), "0a 03"); // started, by the watchdog
    EXPECT_EQ(version(), "Z-Wave 7.18");
    link_->passes(Milliseconds(10000));
    EXPECT_EQ(link_->heard.size(), 1U);
}

TEST_F(ModuleSimFaults, RestartTheModuleAtAFrame) {
    auto restart = fault(Kind::restart);
    restart.skip = 1;
    begin({restart});
    EXPECT_EQ(version(), "Z-Wave 7.18");
    EXPECT_EQ(link_->heard, Texts{});
    EXPECT_EQ(version(), "Z-Wave 7.18"); // sent again, after the restart
    EXPECT_EQ(link_->heard.size(), 1U);
    EXPECT_EQ(host().retransmissions, 1U);
}

TEST_F(ModuleSimFaults, TakeThePortAwayForAWhile) {
    auto vanish = fault(Kind::vanish);
    vanish.after = Milliseconds(1000);
    vanish.lasts = Milliseconds(20000);
    begin({vanish});
    EXPECT_TRUE(link_->module.isThere());
    link_->passes(Milliseconds(1000));
    EXPECT_FALSE(link_->module.isThere());
    link_->module.pressButton(2);
    EXPECT_EQ(version(), "no answer");
    EXPECT_EQ(link_->heard, Texts{});
    EXPECT_FALSE(link_->module.isThere());
    link_->passes(Milliseconds(20000));
    EXPECT_TRUE(link_->module.isThere());
    ASSERT_EQ(link_->heard.size(), 1U);
    EXPECT_EQ(link_->heard[0].substr(0, 5), "0a 00"); // started, by its power
    EXPECT_EQ(version(), "Z-Wave 7.18");
}

TEST_F(ModuleSimFaults, TakeThePortAwayForEver) {
    begin({fault(Kind::vanish, getVersion)});
    EXPECT_EQ(version(), "no answer");
    EXPECT_FALSE(link_->module.isThere());
    link_->passes(Milliseconds(86400000));
    EXPECT_FALSE(link_->module.isThere());
}

TEST_F(ModuleSimFaults, StopTheMemoryAtAPartOfIt) {
    auto stop = fault(Kind::stopMemory);
    stop.percent = 50;
    stop.times = 2;
    begin({stop});
    using Nvm = api::NvmBackupRestore;
    auto const size = link_->ask<Nvm>({Nvm::open, 0, 0, {}})->offset;
    auto const half = static_cast<std::uint16_t>(size / 2);
    EXPECT_EQ(link_->ask<Nvm>({Nvm::read, 64, static_cast<std::uint16_t>(half - 64), {}})->status, Nvm::ok);
    EXPECT_EQ(link_->ask<Nvm>({Nvm::read, 64, static_cast<std::uint16_t>(half - 63), {}})->status, Nvm::error);
    EXPECT_EQ(link_->ask<Nvm>({Nvm::read, 64, half, {}})->status, Nvm::error);
    EXPECT_EQ(link_->ask<Nvm>({Nvm::read, 64, half, {}})->status, Nvm::ok); // it has struck twice
    begin({stop}, Generation::series500);
    EXPECT_EQ(link_->ask<api::NvmExtReadLongBuffer>({0, 64})->data.size(), 64U);
    EXPECT_EQ(link_->ask<api::NvmExtReadLongBuffer>({65536, 64})->data.size(), 0U);
}

TEST_F(ModuleSimFaults, SilenceANodeThatIsBeingIncluded) {
    auto network = with({fault(Kind::killJoiner)});
    network.joining.resize(2);
    link_.emplace(network);
    EXPECT_EQ(link_->follow<api::AddNodeToNetwork>({1, Byte{9}, {}}, Milliseconds(5000)).substr(0, 8), "1:0 2:0 ");
    link_.emplace(network);
    EXPECT_EQ(link_->follow<api::AddNodeToNetwork>({1, Byte{9}, {}}, Milliseconds(6000)).substr(0, 12), "1:0 2:0 7:0 ");
    link_->host.call<api::AddNodeToNetwork>({5, Byte{0}, {}}, {}, link_->now);
    link_->passes(Milliseconds(1000));
    EXPECT_FALSE(link_->module.isInMode());
    EXPECT_EQ(link_->module.nodes(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(link_->follow<api::AddNodeToNetwork>({1, Byte{9}, {}}, Milliseconds(6000)).substr(0, 12), "1:0 2:0 3:6 ");
}

TEST_F(ModuleSimFaults, GiveTheSameBytesAtTheSameTimes) {
    auto const conversation = [] {
        std::vector<Fault> faults;
        for (auto const kind : {Kind::loseFrame, Kind::corruptFrame, Kind::collide, Kind::withholdAck}) {
            faults.push_back(fault(kind));
            faults.back().times = 1000;
            faults.back().share = 0.1;
        }
        HeardLink link(with(faults));
        std::string story;
        for (int i = 0; i < 50; ++i) {
            auto const answer = link.ask<api::GetRandom>({Byte{4}});
            story += (answer ? text(answer->random) : "none") + " at " +
                     std::to_string(link.now.time_since_epoch().count()) + '\n';
        }
        return story;
    };
    EXPECT_EQ(conversation(), conversation());
}

// ---- a walk: a host, the simulated module, and a line that loses, spoils, doubles and delays bytes

class Walk {
public:
    explicit Walk(unsigned int seed) : random_(seed), module_(network(seed)) {
        module_.start();
        host_.start();
        host_.session().trace(
            [this](api::Side sender, api::Frame const& frame) { notice(api::Side::host, sender, frame); });
        module_.trace([this](api::Side sender, api::Frame const& frame) { notice(api::Side::module, sender, frame); });
    }

    void run() {
        for (int i = 0; i < 4; ++i) { callSomething(); }
        advance(now_ + Milliseconds(400000));
        EXPECT_EQ(host_.openCalls(), 0U);
        EXPECT_TRUE(host_.session().isQuiet());
        for (auto const ends : ends_) { EXPECT_EQ(ends, 1); }
        // Nothing is left of it: on a good line, the next call is answered at once.
        isGood_ = true;
        auto const before = right_;
        call<api::MemoryGetId>({}, [](auto const& response) { return response.homeId == 0xC0FFEE01U; });
        auto const start = now_;
        advance(now_ + Milliseconds(100));
        EXPECT_EQ(right_, before + 1);
        EXPECT_EQ(ends_.back(), 1);
        EXPECT_LE(now_ - start, Milliseconds(100));
    }

    bool wasDeceived() const noexcept { return deceived_; } ///< some frame was spoilt, and its checksum holds
    int right() const noexcept { return right_; }
    int wrong() const noexcept { return wrong_; }
    int failed() const noexcept { return failed_; }

private:
    static SimulatedNetwork network(unsigned int seed) {
        auto network = smallNetwork(seed % 2 == 0 ? Generation::series700 : Generation::series500);
        network.seed = seed;
        network.nvmSize = 16384;
        network.nodes[2].wakeUpSeconds = 0;
        return network;
    }

    template <class F, class Check> void call(typename F::Request const& request, Check isRight) {
        auto const index = ends_.size();
        ends_.push_back(0);
        api::CallHandlers<F> handlers;
        handlers.response = [this, isRight](typename F::Response const& r) { ++(isRight(r) ? right_ : wrong_); };
        handlers.end = [this, index](api::CallEnd end) {
            ++ends_[index];
            failed_ += end == api::CallEnd::done ? 0 : 1;
        };
        host_.call<F>(request, std::move(handlers), now_);
    }

    void send(NodeId node, Byte expected) {
        auto const index = ends_.size();
        ends_.push_back(0);
        api::CallHandlers<api::SendData> handlers;
        handlers.callback = [this, expected](api::TransmitCallback const& c) {
            ++(c.status == expected ? right_ : wrong_);
        };
        handlers.end = [this, index](api::CallEnd end) {
            ++ends_[index];
            failed_ += end == api::CallEnd::done ? 0 : 1;
        };
        host_.call<api::SendData>({node, {0x00}, 0x25, 0}, std::move(handlers), now_);
    }

    void callSomething() {
        switch (random_() % 5) {
        case 0: return call<api::GetVersion>({}, [](auto const& r) { return r.version.substr(0, 7) == "Z-Wave "; });
        case 1: return call<api::MemoryGetId>({}, [](auto const& r) { return r.homeId == 0xC0FFEE01U; });
        case 2: return call<api::GetNodeProtocolInfo>({2}, [](auto const& r) { return r.generic == 0x10; });
        case 3: return send(2, 0);
        default: return send(5, 1); // a dead node
        }
    }

    void carry(api::FaultyWire& wire, Bytes bytes) {
        if (!isGood_) { return wire.carry(std::move(bytes), now_, random_); }
        if (!bytes.empty()) { wire.pieces.push_back({now_, std::move(bytes)}); }
    }

    void advance(TimePoint end) {
        while (true) {
            carry(toModule_, host_.takeOutput());
            carry(toHost_, module_.takeOutput());
            std::optional<TimePoint> next = host_.deadline();
            auto const consider = [&next](std::optional<TimePoint> time) {
                if (time && (!next || *time < *next)) { next = time; }
            };
            consider(module_.deadline());
            for (auto const* const wire : {&toModule_, &toHost_}) {
                if (!wire->pieces.empty()) { consider(wire->pieces.front().arrival); }
            }
            if (!next || *next > end) { return; }
            now_ = std::max(now_, *next);
            host_.tick(now_);
            module_.tick(now_);
            deliver(toModule_, module_);
            deliver(toHost_, host_);
        }
    }

    template <class End> void deliver(api::FaultyWire& wire, End& end) {
        while (!wire.pieces.empty() && wire.pieces.front().arrival <= now_) {
            end.receive(wire.pieces.front().bytes, now_);
            wire.pieces.pop_front();
        }
    }

    void notice(api::Side observer, api::Side sender, api::Frame const& frame) {
        auto& sent = sender == api::Side::host ? sentByHost_ : sentByModule_;
        if (observer == sender) {
            sent.push_back(frame);
        } else if (std::find(sent.begin(), sent.end(), frame) == sent.end()) {
            deceived_ = true;
        }
    }

    std::mt19937 random_;
    api::Module host_;
    SimulatedModule module_;
    TimePoint now_{};
    bool isGood_ = false;
    api::FaultyWire toModule_;
    api::FaultyWire toHost_;
    std::vector<api::Frame> sentByHost_;
    std::vector<api::Frame> sentByModule_;
    std::vector<int> ends_;
    bool deceived_ = false;
    int right_ = 0;
    int wrong_ = 0;
    int failed_ = 0;
};

/// Ten times a thousand conversations, so that each part is done in seconds.
class ModuleSimWalk : public testing::TestWithParam<unsigned int> {};

TEST_P(ModuleSimWalk, AnswersEveryCallOnceRightOrWithItsErrorAndLeavesNothing) {
    unsigned int const conversations = 1000;
    int right = 0;
    int failed = 0;
    int deceived = 0;
    for (unsigned int i = 0; i < conversations; ++i) {
        auto const seed = GetParam() * conversations + i;
        SCOPED_TRACE(seed);
        Walk walk(seed);
        walk.run();
        if (HasFailure()) { return; }
        right += walk.right();
        failed += walk.failed();
        if (walk.wasDeceived()) {
            ++deceived;
        } else {
            ASSERT_EQ(walk.wrong(), 0);
        }
    }
    std::printf("%u conversations: %d right answers, %d errors; %d with a spoilt frame whose checksum holds\n",
                conversations, right, failed, deceived);
    EXPECT_GT(right, 4300); // the module refuses a send while another one is under way
    EXPECT_GT(failed, 0);
    EXPECT_LT(deceived, 10);
}

INSTANTIATE_TEST_SUITE_P(Thousand, ModuleSimWalk, testing::Range(0U, 10U));

} // namespace
} // namespace zorv::modulesim
