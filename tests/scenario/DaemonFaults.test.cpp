// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include "platform/libzorvshared/Device.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/CliDisplayMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"
#include "zwave/libquillet/SystemStatusEvt.h"

#include <boost/filesystem/operations.hpp>
#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;
using testing::Not;

constexpr HomeId home = 0xC0FFEE01;

// Functions of the module.
constexpr unsigned char getInitData = 0x02;
constexpr unsigned char softReset = 0x08;
constexpr unsigned char addNode = 0x4A;
constexpr unsigned char removeNode = 0x4B;

ZwaveAddress at(unsigned char node) { return {home, node}; }

ZResult::Enum ping(MessageClient& client, unsigned char node = 2) {
    return client.ask(PingMsg::create(at(node)))->result();
}

boost::shared_ptr<SessionLayerMsg> sessionPing() { return boost::make_shared<SessionLayerMsg>(SessionLayerOp::ping); }

boost::shared_ptr<AddRemoveNodeMsg> change(AddRemoveOp::Enum operation, int timeout = 20) {
    return AddRemoveNodeMsg::create(operation, false, ZResult::none, timeout, false);
}

/// The node table, by node id.
std::map<unsigned int, boost::shared_ptr<Device>> devices(MessageClient& client) {
    auto const answer = client.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
    std::map<unsigned int, boost::shared_ptr<Device>> devices;
    for (auto const& [address, device] : answer->devices()) { devices[address.nodeId()] = device; }
    return devices;
}

ZResult::Enum interview(MessageClient& client, unsigned char node) {
    auto const device = boost::make_shared<Device>(at(node), DeviceInfo());
    return client.ask(boost::make_shared<ConfigurationMsg>(ConfigurationStatus::start, device, ZResult::none))
        ->result();
}

void waitForDetail(MessageClient& client, DaemonDetail::Enum detail) {
    auto const event =
        client.waitFor<DaemonStatusMsg>([detail](DaemonStatusMsg const& e) { return e.detail() == detail; });
    EXPECT_EQ(event->status(), DaemonStatus::moduleError);
}

std::string bytesOf(std::string const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class DaemonFaults : public testing::Test {
protected:
    /// A network in which nothing takes long, and its module's file.
    std::string network(std::string const& more = "") const {
        return directory_.write("network.json", R"({"homeId": "c0ffee01", "retransmitMs": 20,
            "module": {"nvmSize": 16384}, "nodes": [{"id": 2, "latencyMs": 1}, {"id": 9, "state": "dead"}])" +
                                                    more + "}");
    }

    static std::string fault(std::string const& members) { return R"(, "faults": [{)" + members + "}]"; }

    /// Plugs a module of its own process in, at device().
    std::unique_ptr<Process> plugIn(std::string const& file, std::string const& logLevel = "warn") const {
        auto module = std::make_unique<Process>(std::vector<std::string>{programPath("zwavesim"), "--network", file,
                                                                         "--link", device(), "--log-level", logLevel});
        EXPECT_THAT(module->readLine(), testing::StartsWith("device: "));
        return module;
    }

    static void plugOut(std::unique_ptr<Process>& module) {
        module->signal(SIGTERM);
        EXPECT_EQ(module->wait(), 0);
    }

    std::string device() const { return directory_.path("module"); }
    std::string state() const { return directory_.path("state"); }
    std::string store() const { return state() + "/zwaved.sqlite"; }
    std::vector<std::string> onDevice() const { return {"--device", device(), "--state", state()}; }

    TemporaryDirectory directory_;
};

// ---- over a serial port

/// What a client is told of a network, of a node that joins it, of the module's memory and of its reset.
std::vector<std::string> story(unsigned short port) {
    MessageClient client(port);
    std::vector<std::string> told;
    auto const tell = [&told](std::string const& what, ZResult::Enum result) {
        told.push_back(what + ": " + ZResult::toString(result));
    };
    tell("interview", interview(client, 2));
    tell("ping", ping(client));
    tell("ping of a dead node", ping(client, 9));
    auto const inclusion = client.ask(change(AddRemoveOp::add));
    tell("inclusion", inclusion->result());
    tell("interview of what came", interview(client, inclusion->device()->address().nodeId()));
    for (auto const& [id, node] : devices(client)) {
        auto known = *node;
        if (id == 9) { known = Device(node->address(), known.deviceInfo()); } // is still looked for, or not
        told.push_back(toText(known));
    }
    auto const backup = client.ask(ManageNvmMsg::create(ManageNvmOp::save));
    tell("save", backup->result());
    for (auto const& blob : backup->blobs()) {
        told.push_back("memory: " + std::to_string(blob->offset()) + " " + std::to_string(blob->size()));
    }
    EXPECT_TRUE(backup->checkBlobs());
    tell("reset", client.ask(ResetDefaultsMsg::create())->result());
    told.push_back("nodes left: " + std::to_string(devices(client).size()));
    return told;
}

TEST_F(DaemonFaults, SerialPortGivesTheSameAnswersAsAModuleInProcess) {
    auto const file = network(R"(, "joining": [{"afterMs": 20, "latencyMs": 1}])");
    auto const module = plugIn(file);
    DaemonProcess const overPort(onDevice());
    auto const told = story(overPort.port());
    DaemonProcess const inProcess({"--network", file});
    EXPECT_EQ(told, story(inProcess.port()));
    EXPECT_THAT(told, testing::IsSupersetOf({"interview: success", "ping: success", "inclusion: success",
                                             "save: success", "reset: success", "nodes left: 1"}));
}

// ---- a module that is not there

TEST_F(DaemonFaults, DeviceThatCannotBeOpenedAtTheStartIsTold) {
    auto const complaint = [this](std::string const& path) {
        Process daemon({programPath("zwaved"), "--port", "0", "--device", path, "--state", state()});
        EXPECT_EQ(daemon.wait(), 1);
        EXPECT_TRUE(daemon.restOfOutput().empty());
        return daemon.errors();
    };
    EXPECT_EQ(complaint(device()), "zwaved: cannot open " + device() + ": there is no such device\n");
    auto const file = directory_.write("file", "");
    EXPECT_EQ(complaint(file), "zwaved: cannot open " + file + ": not a serial port\n");
}

TEST_F(DaemonFaults, ModuleThatIsUnpluggedEndsWhatIsUnderWayAndIsTakenUpAgain) {
    auto const file = network();
    auto module = plugIn(file);
    DaemonProcess const daemon(onDevice());
    MessageClient client(daemon.port());
    client.subscribe({DaemonStatusMsg::NAME, SystemStatusEvt::NAME});
    auto const request = change(AddRemoveOp::add);
    client.tell(*request);
    client.progressOf(request);
    plugOut(module);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::failure);
    waitForDetail(client, DaemonDetail::moduleNotPresent);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::degraded);
    EXPECT_EQ(client.ask(change(AddRemoveOp::add))->result(), ZResult::rejected);
    module = plugIn(file);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::starting);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::ready);
    EXPECT_EQ(ping(client), ZResult::success);
}

/// The module goes when it is asked for its version for the second time: the first time is the daemon's start.
std::string const vanishing = R"("what": "vanish", "function": "15", "skip": 1, "lastsMs": 300)";

void vanishesAndComesBack(unsigned short port) {
    MessageClient client(port);
    client.subscribe({DaemonStatusMsg::NAME, SystemStatusEvt::NAME});
    auto const answer = client.ask(sessionPing());
    EXPECT_EQ(answer->result(), ZResult::failure);
    EXPECT_EQ(answer->status(), SessionLayerStatus::moduleNotPresent);
    waitForDetail(client, DaemonDetail::moduleNotPresent);
    for (auto const status : {SystemStatus::degraded, SystemStatus::starting, SystemStatus::ready}) {
        EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), status);
    }
    EXPECT_EQ(client.ask(sessionPing())->result(), ZResult::success);
    EXPECT_EQ(ping(client), ZResult::success);
}

TEST_F(DaemonFaults, ModuleOnAPortThatVanishesIsTakenUpAgain) {
    auto const module = plugIn(network(fault(vanishing)));
    DaemonProcess const daemon(onDevice());
    vanishesAndComesBack(daemon.port());
}

TEST_F(DaemonFaults, ModuleInProcessThatVanishesIsTakenUpAgain) {
    DaemonProcess const daemon({"--network", network(fault(vanishing))});
    vanishesAndComesBack(daemon.port());
}

// ---- a module that does not do what it should

TEST_F(DaemonFaults, ModuleThatHangsIsResetOnceAndThenToldOf) {
    DaemonProcess const daemon({"--network", network(fault(R"("what": "hang", "function": "15", "skip": 1)"))});
    MessageClient client(daemon.port());
    client.subscribe({DaemonStatusMsg::NAME, ControlCommandMsg::NAME});
    EXPECT_EQ(client.ask(sessionPing())->result(), ZResult::failure);
    // Each frame of the link until it is told of; one that is not acknowledged is sent four times.
    std::size_t resets = 0;
    while (true) {
        auto const message = client.receive();
        auto const frame = boost::dynamic_pointer_cast<ControlCommandMsg>(message);
        if (frame && frame->role() == MessageRole::request && frame->data().at(1) == softReset) { ++resets; }
        auto const status = boost::dynamic_pointer_cast<DaemonStatusMsg>(message);
        if (status && status->detail() == DaemonDetail::moduleCommFailure) { break; }
    }
    constexpr std::size_t transmissions = 4;
    EXPECT_EQ(resets, transmissions);
    EXPECT_EQ(client.ask(SystemStatusEvt::create(SystemStatus::unknown))->status(), SystemStatus::degraded);
}

TEST_F(DaemonFaults, StateOfAModuleThatRestartsByItselfIsReadAgain) {
    DaemonProcess const daemon({"--network", network(fault(R"("what": "restart", "function": "15", "skip": 1)"))});
    MessageClient client(daemon.port());
    client.subscribe({SystemStatusEvt::NAME, ControlCommandMsg::NAME});
    EXPECT_EQ(client.ask(sessionPing())->result(), ZResult::failure);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::starting);
    EXPECT_EQ(client.waitForAny<SystemStatusEvt>()->status(), SystemStatus::ready);
    client.waitForCall(getInitData);
    EXPECT_EQ(ping(client), ZResult::success);
}

std::map<std::string, long> counters(MessageClient& client) {
    std::map<std::string, long> counters;
    auto const table = client.ask(boost::make_shared<CliDisplayMsg>());
    for (auto const& row : table->data()) {
        if (row.size() == 2 && row[0] != "Counter") { counters[row[0]] = std::stol(row[1]); }
    }
    return counters;
}

struct LineFault {
    std::string what;
    std::vector<std::string> counted; ///< what tells of it
};

void PrintTo(LineFault const& fault, std::ostream* out) { *out << fault.what; }

class DisturbedLine : public DaemonFaults, public testing::WithParamInterface<LineFault> {};

TEST_P(DisturbedLine, IsGotOverAndCounted) {
    auto const& [what, counted] = GetParam();
    DaemonProcess const daemon({"--network", network(fault(what + R"(, "function": "15", "skip": 1)"))});
    MessageClient client(daemon.port());
    client.ask(boost::make_shared<SessionLayerMsg>(SessionLayerOp::status)); // comes after the start
    auto const before = counters(client);
    EXPECT_EQ(client.ask(sessionPing())->result(), ZResult::success);
    auto const after = counters(client);
    for (auto const& counter : counted) { EXPECT_GT(after.at(counter), before.at(counter)) << counter; }
    EXPECT_EQ(ping(client), ZResult::success);
}

INSTANTIATE_TEST_SUITE_P(
    DaemonFaults, DisturbedLine,
    testing::Values(
        LineFault{R"("what": "frameLost")", {"Serial time-outs", "Serial retransmissions"}},
        LineFault{R"("what": "frameLost", "direction": "toHost")", {}},
        LineFault{R"("what": "frameCorrupted")", {"Serial retransmissions"}},
        LineFault{R"("what": "frameCorrupted", "direction": "toHost")", {"Serial checksum errors", "Serial NAK sent"}},
        LineFault{R"("what": "frameDelayed", "lastsMs": 2000)", {"Serial time-outs", "Serial retransmissions"}},
        LineFault{R"("what": "collision")", {"Serial CAN received", "Serial retransmissions"}},
        LineFault{R"("what": "noAck")", {"Serial time-outs"}}));

class SilentMode : public DaemonFaults, public testing::WithParamInterface<AddRemoveOp::Enum> {};

TEST_P(SilentMode, EndsAtItsDeadlineAndIsSwitchedOff) {
    auto const isAdd = GetParam() == AddRemoveOp::add;
    auto const silent = R"("what": "noCallback", "times": 1000000, "function": ")" + std::string(isAdd ? "4a" : "4b");
    DaemonProcess const daemon({"--network", network(fault(silent + "\""))});
    MessageClient client(daemon.port());
    client.subscribe({ControlCommandMsg::NAME});
    auto const function = isAdd ? addNode : removeNode;
    auto const request = change(GetParam(), 1);
    client.tell(*request);
    constexpr unsigned char modeMask = 0x0F;
    constexpr unsigned char stopMode = 5;
    auto const nextMode = [&] { return client.waitForCall(function).at(0) & modeMask; };
    EXPECT_NE(nextMode(), stopMode);
    EXPECT_EQ(client.answerTo(request)->result(), ZResult::timeout);
    while (nextMode() != stopMode) {} // where the machine is slow, a frame is sent again
    EXPECT_EQ(ping(client), ZResult::success);
}

INSTANTIATE_TEST_SUITE_P(DaemonFaults, SilentMode, testing::Values(AddRemoveOp::add, AddRemoveOp::remove));

// ---- what outlives the process

TEST_F(DaemonFaults, WhatAnInterviewHasFoundOutOutlivesADaemonThatIsKilled) {
    auto const module = plugIn(network(), "debug");
    std::string found;
    {
        DaemonProcess daemon(onDevice());
        MessageClient client(daemon.port());
        ASSERT_EQ(interview(client, 2), ZResult::success);
        auto const known = devices(client).at(2);
        ASSERT_FALSE(known->commandClasses().empty());
        found = toText(*known);
        daemon.signal(SIGKILL);
        EXPECT_EQ(daemon.wait(), 128 + SIGKILL);
    }
    auto const before = module->errors().size();
    DaemonProcess const daemon(onDevice());
    MessageClient client(daemon.port());
    EXPECT_EQ(toText(*devices(client).at(2)), found);
    client.ask(sessionPing()); // comes after whatever else the daemon asks for at once
    auto const log = module->errors();
    auto const questionTo2 = testing::ContainsRegex("host 01 .. 00 (60 02|a9 01 02) ");
    EXPECT_THAT(log.substr(0, before), questionTo2);
    EXPECT_THAT(log.substr(before), Not(questionTo2));
}

/// A client that keeps the daemon busy until it is killed, and remembers what it was told.
class Load {
public:
    explicit Load(std::mt19937& random) : random_(random) {}

    /// Asks for one thing after the other until so many frames have gone over the link.
    void run(MessageClient& client, unsigned int frames) {
        setLights(client);
        begin(client, change(AddRemoveOp::add));
        for (unsigned int came = 0; came < frames;) {
            auto const message = client.receive();
            if (boost::dynamic_pointer_cast<ControlCommandMsg>(message)) { ++came; }
            auto const result = take(client, *message);
            if (result) { EXPECT_EQ(*result, ZResult::success); }
        }
    }

    /// The same until the module has gone and is back, and all is answered, in whatever way. To be subscribed to
    /// SystemStatusEvt.
    void runThroughLossOfModule(MessageClient& client) {
        setLights(client);
        begin(client, change(AddRemoveOp::add));
        bool isReady = true;
        bool wasLost = false;
        while (!isReady || !wasLost) {
            auto const message = client.receive();
            if (auto const event = boost::dynamic_pointer_cast<SystemStatusEvt>(message)) {
                isReady = event->status() == SystemStatus::ready;
                wasLost = wasLost || !isReady;
                if (isReady && !wasLost) { continue; }
            }
            isGoingOn_ = isReady && !wasLost; // what is refused is not asked for again and again
            take(client, *message);
        }
        while (lightsAsked_ || inclusion_ || save_) { take(client, *client.receive()); }
        isGoingOn_ = true;
    }

    /// Whether all is there that was answered with success.
    void check(MessageClient& client) {
        auto const known = devices(client);
        for (auto const node : included_) { EXPECT_EQ(known.count(node), 1U) << "node " << node; }
        auto const lights = known.at(2)->deviceLights();
        EXPECT_TRUE(lights == lights_ || lights == nextLights_) << lights << " after " << lights_;
        lights_ = nextLights_ = lights;
    }

    std::size_t included() const { return included_.size(); }
    unsigned int saves() const { return saves_; }

private:
    /// The result of what was answered by the message, if it answers anything; asks for the next thing.
    std::optional<ZResult::Enum> take(MessageClient& client, TMessage const& message) {
        auto const answered = [&message](auto const& request) {
            return request && message.correlation() == request->id() && isFinal(message);
        };
        auto const result = resultOf(message);
        bool const isGood = result == ZResult::success;
        if (answered(lightsAsked_)) {
            if (isGood) { lights_ = nextLights_; }
            lightsAsked_.reset();
            if (isGoingOn_) { setLights(client); }
        } else if (answered(inclusion_)) {
            auto const& device = dynamic_cast<AddRemoveNodeMsg const&>(message).device();
            if (isGood && device) { included_.push_back(device->address().nodeId()); }
            inclusion_.reset();
            if (isGoingOn_) {
                save_ = ManageNvmMsg::create(ManageNvmOp::save);
                client.tell(*save_);
            }
        } else if (answered(save_)) {
            saves_ += isGood ? 1 : 0;
            save_.reset();
            if (isGoingOn_) { begin(client, change(AddRemoveOp::add)); }
        } else {
            return std::nullopt;
        }
        return result;
    }

    static ZResult::Enum resultOf(TMessage const& message) {
        auto const* const confirmable = dynamic_cast<Confirmable const*>(&message);
        return confirmable != nullptr ? confirmable->result() : ZResult::none;
    }
    static bool isFinal(TMessage const& message) { return resultOf(message) != ZResult::inProgress; }

    int below(unsigned int end) { return static_cast<int>(random_() % end); }

    void begin(MessageClient& client, boost::shared_ptr<AddRemoveNodeMsg> inclusion) {
        inclusion_ = std::move(inclusion);
        client.tell(*inclusion_);
    }

    void setLights(MessageClient& client) {
        nextLights_ = static_cast<DeviceLights::Enum>(below(4));
        auto const device = boost::make_shared<Device>(at(2), DeviceInfo());
        device->deviceLights(nextLights_);
        lightsAsked_ = NodeInformationMsg::create(GetNodesOp::set, DisplayOption::none, {{at(2), device}});
        client.tell(*lightsAsked_);
    }

    std::mt19937& random_;
    boost::shared_ptr<NodeInformationMsg> lightsAsked_;
    boost::shared_ptr<AddRemoveNodeMsg> inclusion_;
    boost::shared_ptr<ManageNvmMsg> save_;
    DeviceLights::Enum lights_ = DeviceLights::unknown; ///< as answered
    DeviceLights::Enum nextLights_ = DeviceLights::unknown;
    std::vector<unsigned int> included_;
    unsigned int saves_ = 0;
    bool isGoingOn_ = true;
};

unsigned int wantedKills(unsigned int byDefault = 10) {
    auto const* const text = std::getenv("QUILLET_KILLS");
    return text != nullptr ? static_cast<unsigned int>(std::stoul(text)) : byDefault;
}

std::string manyJoiners() {
    std::string joining;
    for (int count = 0; count < 200; ++count) { joining += R"({"afterMs": 1, "latencyMs": 1},)"; }
    joining.pop_back();
    return R"(, "joining": [)" + joining + "]";
}

TEST_F(DaemonFaults, WhatWasAnsweredWithSuccessOutlivesKillsAtRandomMoments) {
    constexpr unsigned int killsOfANetwork = 10; // many more would fill it with nodes
    constexpr unsigned int patience = 50;        // kills more, until the load has had a save and an inclusion answered
    constexpr unsigned int seed = 20261;
    std::mt19937 random(seed);
    auto const file = network(manyJoiners());
    std::size_t included = 0;
    unsigned int saves = 0;
    auto const kills = wantedKills();
    auto const isEnough = [&](unsigned int killed) {
        bool const hasSeenAll = included > 0 && saves > 0;
        return killed >= kills + (hasSeenAll ? 0 : patience);
    };
    for (unsigned int killed = 0; !isEnough(killed);) {
        boost::filesystem::remove_all(state());
        auto module = plugIn(file);
        Load load(random);
        for (unsigned int ofThis = 0; ofThis < killsOfANetwork; ++ofThis, ++killed) {
            SCOPED_TRACE("kill " + std::to_string(killed));
            DaemonProcess daemon(onDevice());
            MessageClient client(daemon.port());
            load.check(client);
            client.subscribe({ControlCommandMsg::NAME}); // each frame of the link is a moment
            load.run(client, 1 + static_cast<unsigned int>(random() % 600));
            daemon.signal(SIGKILL);
            EXPECT_EQ(daemon.wait(), 128 + SIGKILL);
        }
        DaemonProcess const daemon(onDevice());
        MessageClient client(daemon.port());
        load.check(client);
        EXPECT_EQ(client.ask(change(AddRemoveOp::add))->result(), ZResult::success); // the module is in no mode
        included += load.included();
        saves += load.saves();
        plugOut(module);
    }
    EXPECT_GT(included, 0U);
    EXPECT_GT(saves, 0U);
}

TEST_F(DaemonFaults, WhatWasAnsweredWithSuccessOutlivesModulesThatAreLostAtRandomMoments) {
    constexpr unsigned int seed = 20262;
    constexpr unsigned int mostOfANetwork = 9;
    // For longer than the link tries to reach it, and than its soft reset takes.
    std::vector<std::string> const losses{R"("what": "vanish", "lastsMs": 200)", R"("what": "restart")",
                                          R"("what": "hang", "lastsMs": 11000)"};
    std::mt19937 random(seed);
    std::size_t included = 0;
    auto const kills = wantedKills(3); // one of each; a module that hangs takes a while
    for (unsigned int killed = 0; killed < kills;) {
        boost::filesystem::remove_all(state());
        auto const ofThis = std::min(kills - killed, mostOfANetwork);
        std::string faults;
        auto frames = 40U; // of the host; the daemon's start takes fewer
        for (unsigned int i = 0; i < ofThis; ++i) {
            frames += 250U + static_cast<unsigned int>(random() % 600); // a start with all nodes takes fewer
            faults += (i == 0 ? "{" : ", {") + losses[(killed + i) % losses.size()] + R"(, "skip": )" +
                      std::to_string(frames) + "}";
        }
        auto module = plugIn(network(manyJoiners() + R"(, "faults": [)" + faults + "]"));
        DaemonProcess const daemon(onDevice());
        MessageClient client(daemon.port());
        client.subscribe({SystemStatusEvt::NAME});
        Load load(random);
        for (unsigned int i = 0; i < ofThis; ++i, ++killed) {
            SCOPED_TRACE("loss " + std::to_string(killed));
            load.runThroughLossOfModule(client);
            load.check(client);
            EXPECT_EQ(client.ask(change(AddRemoveOp::add))->result(), ZResult::success); // the module is in no mode
        }
        included += load.included();
        plugOut(module);
    }
    EXPECT_GT(included, 0U);
}

std::string refusal(std::string const& stateFolder) {
    Process daemon({programPath("zwaved"), "--port", "0", "--state", stateFolder});
    EXPECT_EQ(daemon.wait(), 1);
    EXPECT_TRUE(daemon.restOfOutput().empty());
    return daemon.errors();
}

TEST_F(DaemonFaults, DamagedStoreIsRefusedAndLeftAsItIs) {
    {
        DaemonProcess daemon({"--state", state()});
        MessageClient client(daemon.port());
        EXPECT_EQ(devices(client).size(), 8U);
        daemon.signal(SIGTERM);
        EXPECT_EQ(daemon.wait(), 0);
    }
    auto const whole = bytesOf(store());
    ASSERT_GT(whole.size(), 4096U);
    auto damaged = whole;
    damaged.replace(0, 16, "something else..");
    std::ofstream(store(), std::ios::binary) << damaged;
    EXPECT_THAT(refusal(state()), testing::StartsWith("zwaved: " + store() + ": is damaged ("));
    EXPECT_EQ(bytesOf(store()), damaged);
    damaged = whole;
    damaged.replace(3072, 1024, std::string(1024, '\x55')); // of the table of tables
    std::ofstream(store(), std::ios::binary) << damaged;
    EXPECT_THAT(refusal(state()), HasSubstr(store() + ": is damaged ("));
    EXPECT_EQ(bytesOf(store()), damaged);
}

TEST_F(DaemonFaults, StoreOfANewerVersionIsRefusedAndLeftAsItIs) {
    {
        DaemonProcess daemon({"--state", state()});
        daemon.signal(SIGTERM);
        EXPECT_EQ(daemon.wait(), 0);
    }
    constexpr std::size_t lastByteOfUserVersion = 63; // in the head of an SQLite file
    auto newer = bytesOf(store());
    ASSERT_EQ(newer.at(lastByteOfUserVersion), 1);
    newer.at(lastByteOfUserVersion) = 99;
    std::ofstream(store(), std::ios::binary) << newer;
    EXPECT_EQ(refusal(state()), "zwaved: " + store() + ": is of version 99, and this program knows versions up to 1\n");
    EXPECT_EQ(bytesOf(store()), newer);
}

} // namespace
