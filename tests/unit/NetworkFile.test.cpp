// SPDX-License-Identifier: Apache-2.0
#include "tests/support/SimulatedLink.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/errorOf.h"
#include "tests/support/systemText.h"
#include "tests/testPaths.h"
#include "zwave/libmodulesim/readNetwork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zorv::modulesim {
namespace {

class NetworkFile : public testing::Test {
protected:
    SimulatedNetwork read(std::string const& text) const { return readNetwork(directory_.write("net.json", text)); }

    /// Of a file that has these members beside a home id and no nodes.
    SimulatedNetwork readWith(std::string const& members) const {
        return read("{\"homeId\": \"c0ffee01\", \"nodes\": [], " + members + "}");
    }
    NodeDescription readNode(std::string const& members) const {
        return read("{\"homeId\": \"c0ffee01\", \"nodes\": [{\"id\": 5, " + members + "}]}").nodes.at(0);
    }

    std::string complaintAbout(std::string const& text) const {
        auto const file = directory_.write("net.json", text);
        auto const error = errorOf([&] { readNetwork(file); });
        auto const start = "std::runtime_error: " + file;
        return error.compare(0, start.size(), start) == 0 ? error.substr(start.size()) : error;
    }
    std::string complaintWith(std::string const& members) const {
        return complaintAbout("{\"homeId\": \"c0ffee01\", \"nodes\": [],\n" + members + "}");
    }
    std::string complaintInNode(std::string const& members) const {
        return complaintAbout("{\"homeId\": \"c0ffee01\", \"nodes\": [\n{\"id\": 4},\n{\"id\": 5, " + members + "}]}");
    }
    std::string complaintInModule(std::string const& members) const {
        return complaintWith("\"module\": {\n" + members + "}");
    }

    TemporaryDirectory directory_;
};

// ---- what it says

TEST_F(NetworkFile, WithTheLeastHasTheDefaults) {
    auto const network =
        read("{\"homeId\": \"c0ffee01\", \"nodes\": [{\"id\": 2}, {\"id\": 3, \"state\": \"sleeping\"}]}");
    EXPECT_EQ(network.homeId, 0xC0FFEE01U);
    EXPECT_EQ(network.controller, 1);
    EXPECT_EQ(network.seed, 1U);
    EXPECT_EQ(network.retransmission, Milliseconds(300));
    EXPECT_EQ(network.generation, Generation::series700);
    EXPECT_EQ(network.version, "");
    EXPECT_EQ(network.libraryType, std::nullopt);
    EXPECT_EQ(network.nvmSize, 0U);
    EXPECT_TRUE(network.isSis);
    EXPECT_EQ(network.secondaryTo, std::nullopt);
    EXPECT_TRUE(network.joining.empty());
    EXPECT_TRUE(network.leaving.empty());
    EXPECT_FALSE(network.otherNetwork);
    ASSERT_EQ(network.nodes.size(), 2U);
    auto const& awake = network.nodes[0];
    EXPECT_EQ(awake.id, 2);
    EXPECT_EQ(awake.kind, NodeKind::listening);
    EXPECT_FALSE(awake.dead);
    EXPECT_EQ(awake.latency, Milliseconds(20));
    EXPECT_EQ(awake.jitter, Milliseconds(0));
    EXPECT_EQ(awake.loss, 0);
    EXPECT_EQ(awake.generic, 0x10);
    EXPECT_EQ(awake.commandClasses, (Bytes{0x25, 0x72, 0x85, 0x86}));
    auto const& sleeping = network.nodes[1];
    EXPECT_EQ(sleeping.kind, NodeKind::sleeping);
    EXPECT_EQ(sleeping.generic, 0x20);
    EXPECT_EQ(sleeping.commandClasses, (Bytes{0x72, 0x80, 0x84, 0x85, 0x86}));
    EXPECT_EQ(sleeping.wakeUpSeconds, 3600U);
    EXPECT_EQ(sleeping.batteryLevel, 100);
}

TEST_F(NetworkFile, SaysWhatTheModuleIs) {
    auto const network = readNetwork(sourcePath("examples/networks/every-member.json"));
    EXPECT_EQ(network.homeId, 0xD00DAD02U);
    EXPECT_EQ(network.controller, 17);
    EXPECT_EQ(network.seed, 5U);
    EXPECT_EQ(network.retransmission, Milliseconds(400));
    EXPECT_EQ(network.generation, Generation::series800);
    EXPECT_EQ(network.version, "Z-Wave 7.19");
    EXPECT_EQ(network.libraryType, 7);
    EXPECT_EQ(network.product.manufacturer, 0x0123);
    EXPECT_EQ(network.product.productType, 0x4567);
    EXPECT_EQ(network.product.productId, 0x89AB);
    EXPECT_EQ(network.applicationVersion, 3);
    EXPECT_EQ(network.applicationRevision, 4);
    EXPECT_EQ(network.withoutFunctions, (std::vector<Byte>{0x28, 0xA9}));
    EXPECT_EQ(network.nvmSize, 65536U);
    EXPECT_FALSE(network.isSis);
    EXPECT_EQ(network.secondaryTo, 2);
}

TEST_F(NetworkFile, SaysWhatANodeIs) {
    auto const network = readNetwork(sourcePath("examples/networks/every-member.json"));
    ASSERT_GE(network.nodes.size(), 2U);
    auto const& lock = network.nodes[0];
    EXPECT_EQ(lock.id, 2);
    EXPECT_EQ(lock.kind, NodeKind::frequentlyListening);
    EXPECT_EQ(lock.latency, Milliseconds(30));
    EXPECT_EQ(lock.jitter, Milliseconds(10));
    EXPECT_EQ(lock.loss, 0.25);
    EXPECT_EQ(lock.basic, 0x03);
    EXPECT_EQ(lock.generic, 0x40);
    EXPECT_EQ(lock.specific, 0x03);
    EXPECT_EQ(lock.commandClasses, (Bytes{0x62, 0x72, 0x86}));
    EXPECT_EQ(lock.classVersion, 3);
    EXPECT_EQ(lock.classVersions, (std::map<Byte, Byte>{{0x62, 4}}));
    EXPECT_EQ(lock.neighbours, (std::vector<NodeId>{17, 4}));
    EXPECT_EQ(lock.product.manufacturer, 0xFEDC);
    EXPECT_EQ(lock.product.productType, 0xBA98);
    EXPECT_EQ(lock.product.productId, 0x7654);
    EXPECT_EQ(lock.applicationVersion, 8);
    EXPECT_EQ(lock.applicationSubVersion, 9);
    EXPECT_EQ(network.nodes[1].kind, NodeKind::sleeping);
    EXPECT_EQ(network.nodes[1].wakeUpSeconds, 900U);
    EXPECT_EQ(network.nodes[1].batteryLevel, 85);
}

TEST_F(NetworkFile, SaysWhoComesAndGoes) {
    auto const network = readNetwork(sourcePath("examples/networks/every-member.json"));
    ASSERT_EQ(network.joining.size(), 1U);
    EXPECT_EQ(network.joining[0].after, Milliseconds(700));
    EXPECT_EQ(network.joining[0].node.generic, 0x11);
    ASSERT_EQ(network.leaving.size(), 2U);
    EXPECT_EQ(network.leaving[0].node, 4);
    EXPECT_EQ(network.leaving[0].after, Milliseconds(800));
    EXPECT_EQ(network.leaving[1].node, 0);
    EXPECT_EQ(network.leaving[1].after, Milliseconds(500));
    ASSERT_TRUE(network.otherNetwork);
    EXPECT_EQ(network.otherNetwork->homeId, 0xABAD1DEAU);
    EXPECT_EQ(network.otherNetwork->node, 9);
    EXPECT_EQ(network.otherNetwork->after, Milliseconds(600));
}

TEST_F(NetworkFile, SaysWhatGoesWrong) {
    auto const faults = readNetwork(sourcePath("examples/networks/every-member.json")).faults;
    std::vector<Fault::Kind> kinds;
    for (auto const& fault : faults) { kinds.push_back(fault.kind); }
    using Kind = Fault::Kind;
    ASSERT_EQ(kinds, (std::vector<Kind>{Kind::loseFrame, Kind::corruptFrame, Kind::delayFrame, Kind::collide,
                                        Kind::withholdAck, Kind::withholdCallback, Kind::hang, Kind::restart,
                                        Kind::vanish, Kind::stopMemory, Kind::killJoiner, Kind::refuseImage,
                                        Kind::loseBlock, Kind::refuseBlock, Kind::stopLoader}));
    EXPECT_EQ(faults[0].direction, Fault::Direction::toModule);
    EXPECT_EQ(faults[0].function, 0x13);
    EXPECT_EQ(faults[0].after, Milliseconds(0));
    EXPECT_EQ(faults[0].skip, 2U);
    EXPECT_EQ(faults[0].times, 3U);
    EXPECT_EQ(faults[0].share, 1);
    EXPECT_EQ(faults[1].direction, Fault::Direction::toHost);
    EXPECT_EQ(faults[1].function, std::nullopt);
    EXPECT_EQ(faults[1].share, 0.1);
    EXPECT_EQ(faults[1].times, 1000U);
    EXPECT_EQ(faults[2].direction, Fault::Direction::toModule);
    EXPECT_EQ(faults[2].after, Milliseconds(1000));
    EXPECT_EQ(faults[2].lasts, Milliseconds(400));
    EXPECT_EQ(faults[3].skip, 0U);
    EXPECT_EQ(faults[3].times, 1U);
    EXPECT_EQ(faults[6].after, Milliseconds(60000));
    EXPECT_EQ(faults[6].lasts, Milliseconds(5000));
    EXPECT_EQ(faults[9].percent, 40U);
    EXPECT_EQ(readWith("\"faults\": [{\"what\": \"vanish\"}]").faults.at(0).lasts, std::nullopt);
}

TEST_F(NetworkFile, KnowsDeadNodesOfEachKind) {
    auto const dead = readNode("\"state\": \"dead\"");
    EXPECT_TRUE(dead.dead);
    EXPECT_EQ(dead.kind, NodeKind::listening);
    auto const deadSensor = readNode("\"state\": \"dead\", \"kind\": \"sleeping\"");
    EXPECT_TRUE(deadSensor.dead);
    EXPECT_EQ(deadSensor.kind, NodeKind::sleeping);
    EXPECT_EQ(readNode("\"kind\": \"listening\"").kind, NodeKind::listening);
    EXPECT_EQ(readNode("\"battery\": 255").batteryLevel, 255);
    EXPECT_EQ(readWith("\"module\": {\"generation\": \"500\"}").generation, Generation::series500);
    EXPECT_EQ(readWith("\"module\": {\"generation\": \"700\"}").generation, Generation::series700);
}

TEST_F(NetworkFile, IsTheBuiltInNetworkAsAnExample) {
    auto const file = readNetwork(sourcePath("examples/networks/built-in.json"));
    auto const builtIn = builtInNetwork();
    EXPECT_EQ(file.homeId, builtIn.homeId);
    EXPECT_EQ(file.controller, builtIn.controller);
    EXPECT_EQ(file.seed, builtIn.seed);
    EXPECT_EQ(file.retransmission, builtIn.retransmission);
    ASSERT_EQ(file.nodes.size(), builtIn.nodes.size());
    ASSERT_FALSE(builtIn.nodes.empty());
    for (std::size_t i = 0; i < file.nodes.size(); ++i) {
        auto const& read = file.nodes[i];
        auto const& made = builtIn.nodes[i];
        EXPECT_EQ(read.id, made.id);
        EXPECT_EQ(read.kind, made.kind);
        EXPECT_EQ(read.dead, made.dead);
        EXPECT_EQ(read.latency, made.latency);
        EXPECT_EQ(read.jitter, made.jitter);
        EXPECT_EQ(read.loss, made.loss);
        EXPECT_EQ(read.generic, made.generic);
        EXPECT_EQ(read.commandClasses, made.commandClasses);
    }
    ASSERT_EQ(file.joining.size(), 1U);
    ASSERT_EQ(builtIn.joining.size(), 1U);
    EXPECT_EQ(file.joining[0].after, builtIn.joining[0].after);
    ASSERT_EQ(file.leaving.size(), 1U);
    ASSERT_EQ(builtIn.leaving.size(), 1U);
    EXPECT_EQ(file.leaving[0].node, builtIn.leaving[0].node);
    EXPECT_EQ(file.leaving[0].after, builtIn.leaving[0].after);
}

// ---- generated nodes

TEST_F(NetworkFile, FillsAWholeNetworkWithNodes) {
    auto const network = readWith("\"controller\": 9, \"generate\": 231");
    std::set<NodeId> ids;
    std::map<NodeKind, int> kinds;
    for (auto const& node : network.nodes) {
        ids.insert(node.id);
        ++kinds[node.kind];
        EXPECT_LE(node.jitter, node.latency);
        EXPECT_GE(node.loss, 0);
        EXPECT_LT(node.loss, 1);
    }
    EXPECT_EQ(ids.size(), 231U);
    EXPECT_EQ(ids.count(9), 0U);
    EXPECT_EQ(*ids.begin(), 1);
    EXPECT_EQ(*ids.rbegin(), 232);
    EXPECT_GT(kinds[NodeKind::listening], 115);
    EXPECT_GT(kinds[NodeKind::sleeping], 23);
    EXPECT_GT(kinds[NodeKind::frequentlyListening], 11);
    SimulatedLink link(network);
    EXPECT_EQ(link.module.nodes().size(), 232U);
}

TEST_F(NetworkFile, GeneratesTheSameFromTheSameSeed) {
    auto const latencies = [this](std::string const& seed) {
        std::vector<int> all;
        for (auto const& node : readWith("\"generate\": 50, \"seed\": " + seed).nodes) {
            all.push_back(static_cast<int>(node.latency.count()));
        }
        return all;
    };
    EXPECT_EQ(latencies("3"), latencies("3"));
    EXPECT_NE(latencies("3"), latencies("4"));
    // The numbers of the generator are the same everywhere, and so are the nodes.
    EXPECT_EQ(readWith("\"generate\": 1, \"seed\": 1").nodes.at(0).latency, Milliseconds(84)); // 15 + 4282876139 % 110
}

TEST_F(NetworkFile, GeneratesOnTheIdsThatAreFree) {
    auto const network = readNetwork(sourcePath("examples/networks/every-member.json"));
    std::vector<NodeId> ids;
    for (auto const& node : network.nodes) { ids.push_back(node.id); }
    EXPECT_EQ(ids, (std::vector<NodeId>{2, 4, 1, 3, 5}));
}

// ---- the module's memory

TEST_F(NetworkFile, BringsTheImageOfTheMemory) {
    std::string image(16384, '\0');
    for (std::size_t i = 0; i < image.size(); ++i) { image[i] = static_cast<char>(i * 7); }
    directory_.write("memory.bin", image);
    auto const network = readWith("\"module\": {\"generation\": \"700\", \"nvmImage\": \"memory.bin\"}");
    EXPECT_EQ(network.nvmImage, Bytes(image.begin(), image.end()));
    SimulatedLink link(network);
    auto const size = link.ask<serialapi::NvmBackupRestore>({0, 0, 0, {}})->offset;
    EXPECT_EQ(size, 16384);
    auto const data = link.ask<serialapi::NvmBackupRestore>({1, 4, 0x3F00, {}})->data;
    EXPECT_EQ(data, (Bytes{0x00, 0x07, 0x0E, 0x15}));
    EXPECT_EQ(link.module.homeId(), 0xC0FFEE01U); // an image of something else holds no network
}

TEST_F(NetworkFile, TakesTheNetworkThatStandsInTheImage) {
    SimulatedLink old(readWith("\"controller\": 12, \"module\": {\"nvmSize\": 16384}"));
    old.ask<serialapi::NvmBackupRestore>({0, 0, 0, {}});
    std::string image;
    while (image.size() < 16384) {
        auto const piece =
            old.ask<serialapi::NvmBackupRestore>({1, 64, static_cast<std::uint16_t>(image.size()), {}})->data;
        ASSERT_FALSE(piece.empty());
        image.append(piece.begin(), piece.end());
    }
    directory_.write("memory.bin", image);
    SimulatedLink const link(
        read("{\"homeId\": \"abad1dea\", \"nodes\": [], \"module\": {\"nvmImage\": \"memory.bin\"}}"));
    EXPECT_EQ(link.module.homeId(), 0xC0FFEE01U);
    EXPECT_EQ(link.module.node(), 12);
}

TEST_F(NetworkFile, GivesACommandClassItsOwnVersion) {
    SimulatedNetwork network;
    network.nodes.push_back(readNode("\"classVersions\": {\"25\": 2}"));
    SimulatedLink versions(network);
    std::vector<Bytes> reports;
    versions.host.unsolicited([&reports](serialapi::Frame const& frame) { reports.push_back(frame.parameters); });
    for (Byte const commandClass : {Byte{0x25}, Byte{0x72}}) {
        versions.host.call<serialapi::SendData>({5, {0x86, 0x13, commandClass}, 0x25, 0}, {}, versions.now);
        versions.passes(Milliseconds(1000));
    }
    ASSERT_EQ(reports.size(), 2U);
    auto const version = [&](std::size_t i, Byte commandClass) {
        Bytes const start{0x86, 0x14, commandClass};
        auto const at = std::search(reports[i].begin(), reports[i].end(), start.begin(), start.end());
        return reports[i].end() - at > 3 ? static_cast<int>(*(at + 3)) : -1;
    };
    EXPECT_EQ(version(0, 0x25), 2);
    EXPECT_EQ(version(1, 0x72), 1);
}

// ---- complaints

TEST_F(NetworkFile, ThatCannotBeReadIsNamed) {
    auto const none = directory_.path("none.json");
    EXPECT_EQ(errorOf([&] { readNetwork(none); }),
              "std::runtime_error: " + none + ": cannot be read: " + systemText(ENOENT));
    EXPECT_EQ(errorOf([&] { readNetwork(directory_.path()); }).find(directory_.path() + ": cannot be read"), 20U);
}

TEST_F(NetworkFile, ThatIsNotJsonIsRefusedInOneLineWithThePlace) {
    auto const complaint = complaintAbout("{\n  \"homeId\" \"c0ffee01\"\n}");
    EXPECT_EQ(complaint.find('\n'), std::string::npos);
    EXPECT_NE(complaint.find("Line 2, Column 12"), std::string::npos) << complaint;
}

TEST_F(NetworkFile, IsAnObjectWithAHomeIdAndNodes) {
    EXPECT_EQ(complaintAbout("[]"), ":1: expected an object");
    EXPECT_EQ(complaintAbout("{\"nodes\": []}"), ":1: homeId: is missing");
    EXPECT_EQ(complaintAbout("{\"homeId\": \"c0ffee01\"}"), ":1: nodes: is missing");
    EXPECT_EQ(complaintAbout("{\"homeId\": \"c0ffee01\",\n\"nodes\": {}}"), ":2: nodes: expected an array");
    for (std::string const home : {"12", "\"c0ffee\"", "\"C0FFEE01\"", "\"00000000\"", "\"c0ffee012\"", "null"}) {
        EXPECT_EQ(complaintAbout("{\n\"homeId\": " + home + ", \"nodes\": []}"),
                  ":2: homeId: expected eight lower-case hex digits, not all 0");
    }
}

TEST_F(NetworkFile, ComplainsAboutWhatItDoesNotKnow) {
    std::string const unknown = " is not known here";
    EXPECT_EQ(complaintWith("\"sead\": 1"), ":2: sead:" + unknown);
    EXPECT_EQ(complaintInNode("\"lag\": 1"), ":3: nodes[1].lag:" + unknown);
    EXPECT_EQ(complaintInModule("\"chip\": 1"), ":3: module.chip:" + unknown);
    EXPECT_EQ(complaintWith("\"joining\": [{\"id\": 5}]"), ":2: joining[0].id:" + unknown);
    EXPECT_EQ(complaintWith("\"leaving\": [{\"id\": 5}]"), ":2: leaving[0].id:" + unknown);
    EXPECT_EQ(complaintWith("\"otherNetwork\": {\"homeId\": \"c0ffee02\", \"nodes\": []}"),
              ":2: otherNetwork.nodes:" + unknown);
}

TEST_F(NetworkFile, ComplainsAboutNumbersOutOfRange) {
    auto const range = [](std::string const& highest, std::string const& lowest = "0") {
        return ": expected a whole number from " + lowest + " to " + highest;
    };
    EXPECT_EQ(complaintWith("\"controller\": 0"), ":2: controller" + range("232", "1"));
    EXPECT_EQ(complaintWith("\"controller\": \"1\""), ":2: controller" + range("232", "1"));
    EXPECT_EQ(complaintWith("\"seed\": -1"), ":2: seed" + range("4294967295"));
    EXPECT_EQ(complaintWith("\"retransmitMs\": 60001"), ":2: retransmitMs" + range("60000"));
    EXPECT_EQ(complaintWith("\"generate\": 232"), ":2: generate" + range("231"));
    EXPECT_EQ(complaintInNode("\"latencyMs\": 60001"), ":3: nodes[1].latencyMs" + range("60000"));
    EXPECT_EQ(complaintInNode("\"latencyMs\": 9, \"jitterMs\": 10"), ":3: nodes[1].jitterMs" + range("9"));
    EXPECT_EQ(complaintInNode("\"classVersion\": 0"), ":3: nodes[1].classVersion" + range("255", "1"));
    EXPECT_EQ(complaintInNode("\"classVersions\": {\"25\": 256}"), ":3: nodes[1].classVersions.25" + range("255", "1"));
    EXPECT_EQ(complaintInNode("\"neighbours\": [1, 233]"), ":3: nodes[1].neighbours[1]" + range("232", "1"));
    EXPECT_EQ(complaintInNode("\"applicationVersion\": 256"), ":3: nodes[1].applicationVersion" + range("255"));
    EXPECT_EQ(complaintInNode("\"applicationSubVersion\": 256"), ":3: nodes[1].applicationSubVersion" + range("255"));
    EXPECT_EQ(complaintInNode("\"wakeUpSeconds\": 16777216"), ":3: nodes[1].wakeUpSeconds" + range("16777215"));
    EXPECT_EQ(complaintInNode("\"battery\": 256"), ":3: nodes[1].battery" + range("255"));
    EXPECT_EQ(complaintInNode("\"battery\": 101"), ":3: nodes[1].battery" + range("100") + ", or 255");
    EXPECT_EQ(complaintInModule("\"libraryType\": 0"), ":3: module.libraryType" + range("255", "1"));
    EXPECT_EQ(complaintInModule("\"applicationVersion\": 256"), ":3: module.applicationVersion" + range("255"));
    EXPECT_EQ(complaintInModule("\"applicationRevision\": 256"), ":3: module.applicationRevision" + range("255"));
    EXPECT_EQ(complaintInModule("\"nvmSize\": 16383"), ":3: module.nvmSize" + range("1048576", "16384"));
    EXPECT_EQ(complaintInModule("\"secondaryTo\": 0"), ":3: module.secondaryTo" + range("232", "1"));
    EXPECT_EQ(complaintWith("\"leaving\": [{\"node\": 233}]"), ":2: leaving[0].node" + range("232"));
    EXPECT_EQ(complaintWith("\"leaving\": [{\"afterMs\": 60001}]"), ":2: leaving[0].afterMs" + range("60000"));
    EXPECT_EQ(complaintWith("\"joining\": [{\"afterMs\": 60001}]"), ":2: joining[0].afterMs" + range("60000"));
    std::string const other = "\"otherNetwork\": {\"homeId\": \"c0ffee02\", ";
    EXPECT_EQ(complaintWith(other + "\"node\": 0}"), ":2: otherNetwork.node" + range("232", "1"));
    EXPECT_EQ(complaintWith(other + "\"afterMs\": 60001}"), ":2: otherNetwork.afterMs" + range("60000"));
}

TEST_F(NetworkFile, ComplainsAboutBadIds) {
    auto const complaint = [this](std::string const& node) {
        return complaintAbout("{\"homeId\": \"c0ffee01\", \"nodes\": [\n{\"id\": 4},\n" + node + "]}");
    };
    for (std::string const id : {"0", "233", "5.5", "\"5\""}) {
        EXPECT_EQ(complaint("{\"id\": " + id + "}"), ":3: nodes[1].id: expected a whole number from 1 to 232");
    }
    EXPECT_EQ(complaint("{\"latencyMs\": 5}"), ":3: nodes[1].id: is missing");
    EXPECT_EQ(complaint("5"), ":3: nodes[1]: expected an object");
    EXPECT_EQ(complaint("{\"id\": 4}"), ":3: nodes[1].id: is the id of another node or of the controller");
    EXPECT_EQ(complaint("{\"id\": 1}"), ":3: nodes[1].id: is the id of another node or of the controller");
}

TEST_F(NetworkFile, ComplainsAboutWrongWords) {
    EXPECT_EQ(complaintInNode("\"state\": \"asleep\""),
              ":3: nodes[1].state: expected \"awake\", \"sleeping\" or \"dead\"");
    EXPECT_EQ(complaintInNode("\"kind\": \"lazy\""),
              ":3: nodes[1].kind: expected \"listening\", \"frequentlyListening\" or \"sleeping\"");
    EXPECT_EQ(complaintInNode("\"state\": \"sleeping\", \"kind\": \"listening\""),
              ":3: nodes[1].kind: expected \"sleeping\" for a sleeping node");
    EXPECT_EQ(complaintInModule("\"generation\": \"600\""),
              ":3: module.generation: expected \"500\", \"700\" or \"800\"");
    EXPECT_EQ(complaintInModule("\"generation\": 700"), ":3: module.generation: expected \"500\", \"700\" or \"800\"");
    EXPECT_EQ(complaintInModule("\"sis\": 1"), ":3: module.sis: expected true or false");
    EXPECT_EQ(complaintInModule("\"version\": \"\""), ":3: module.version: expected a text of 1 to 11 bytes");
    EXPECT_EQ(complaintInModule("\"version\": \"Z-Wave 10.19\""),
              ":3: module.version: expected a text of 1 to 11 bytes");
    EXPECT_EQ(complaintInNode("\"loss\": 1.01"), ":3: nodes[1].loss: expected a number from 0 to 1");
    EXPECT_EQ(complaintInNode("\"loss\": -0.1"), ":3: nodes[1].loss: expected a number from 0 to 1");
    EXPECT_EQ(complaintInNode("\"loss\": \"1\""), ":3: nodes[1].loss: expected a number from 0 to 1");
}

TEST_F(NetworkFile, ComplainsAboutBadHexDigits) {
    std::string const two = ": expected two lower-case hex digits in a text";
    std::string const four = ": expected four lower-case hex digits in a text";
    for (std::string const member : {"basic", "generic", "specific"}) {
        EXPECT_EQ(complaintInNode('"' + member + "\": \"1\""), ":3: nodes[1]." + member + two);
        EXPECT_EQ(complaintInNode('"' + member + "\": 10"), ":3: nodes[1]." + member + two);
    }
    for (std::string const member : {"manufacturer", "productType", "productId"}) {
        EXPECT_EQ(complaintInNode('"' + member + "\": \"12\""), ":3: nodes[1]." + member + four);
        EXPECT_EQ(complaintInModule('"' + member + "\": \"00FF\""), ":3: module." + member + four);
    }
    EXPECT_EQ(complaintInNode("\"commandClasses\": [\"25\", \"8G\"]"), ":3: nodes[1].commandClasses[1]" + two);
    EXPECT_EQ(complaintInNode("\"commandClasses\": {}"), ":3: nodes[1].commandClasses: expected an array");
    EXPECT_EQ(complaintInNode("\"commandClasses\": [\"25\", \"25\"]"),
              ":3: nodes[1].commandClasses[1]: is there twice");
    EXPECT_EQ(complaintInNode("\"classVersions\": {\"2\": 1}"), ":3: nodes[1].classVersions.2" + two);
    EXPECT_EQ(complaintInNode("\"classVersions\": []"), ":3: nodes[1].classVersions: expected an object");
    EXPECT_EQ(complaintInNode("\"classVersions\": {\"26\": 1}"),
              ":3: nodes[1].classVersions.26: is none of the node's command classes");
    EXPECT_EQ(complaintInModule("\"withoutFunctions\": [\"123\"]"), ":3: module.withoutFunctions[0]" + two);
    std::string many;
    for (int i = 10; i < 46; ++i) { many += (many.empty() ? "\"" : ", \"") + std::to_string(i) + '"'; }
    EXPECT_EQ(complaintInNode("\"commandClasses\": [" + many + "]"),
              ":3: nodes[1].commandClasses: expected 35 at most");
}

TEST_F(NetworkFile, ComplainsAboutABadImage) {
    std::string const expected = ":3: module.nvmImage: expected a file of 16384 to 1048576 bytes";
    EXPECT_EQ(complaintInModule("\"nvmImage\": \"none.bin\""), expected);
    EXPECT_EQ(complaintInModule("\"nvmImage\": \"/dev/zero\""), expected);
    directory_.write("short.bin", std::string(16383, 'x'));
    EXPECT_EQ(complaintInModule("\"nvmImage\": \"short.bin\""), expected);
    auto const whole = directory_.write("whole.bin", std::string(16384, 'x'));
    EXPECT_EQ(complaintInModule("\"nvmImage\": \"" + whole + "\""), "no error");
    EXPECT_EQ(complaintInModule("\"nvmImage\": \"whole.bin\", \"nvmSize\": 16385"),
              ":3: module.nvmSize: differs from the size of the image");
}

TEST_F(NetworkFile, ComplainsAboutAnOtherNetworkWithoutHomeId) {
    EXPECT_EQ(complaintWith("\"otherNetwork\": {}"), ":2: otherNetwork.homeId: is missing");
    EXPECT_EQ(complaintWith("\"otherNetwork\": []"), ":2: otherNetwork: expected an object");
    EXPECT_EQ(complaintWith("\"module\": []"), ":2: module: expected an object");
    EXPECT_EQ(complaintWith("\"joining\": {}"), ":2: joining: expected an array");
    EXPECT_EQ(complaintWith("\"leaving\": {}"), ":2: leaving: expected an array");
}

TEST_F(NetworkFile, ComplainsAboutBadFaults) {
    auto const complaint = [this](std::string const& members) {
        return complaintWith("\"faults\": [\n{\"what\": \"restart\"}, {" + members + "}]");
    };
    std::string const path = ":3: faults[1]";
    EXPECT_EQ(complaintWith("\"faults\": {}"), ":2: faults: expected an array");
    EXPECT_EQ(complaint("\"times\": 2"), path + ".what: is missing");
    EXPECT_EQ(complaint("\"what\": \"fire\""),
              path + ".what: expected \"frameLost\", \"frameCorrupted\", \"frameDelayed\", \"collision\", "
                     "\"noAck\", \"noCallback\", \"hang\", \"restart\", \"vanish\", \"memoryStops\", "
                     "\"joinerDies\", \"firmwareRefused\", \"blockLost\", \"blockRefused\" or \"loaderStops\"");
    EXPECT_EQ(complaint("\"what\": \"frameLost\", \"direction\": \"up\""),
              path + ".direction: expected \"toModule\" or \"toHost\"");
    EXPECT_EQ(complaint("\"what\": \"collision\", \"direction\": \"toHost\""), path + ".direction: is not known here");
    EXPECT_EQ(complaint("\"what\": \"joinerDies\", \"function\": \"4a\""), path + ".function: is not known here");
    EXPECT_EQ(complaint("\"what\": \"memoryStops\", \"function\": \"4a\""), path + ".function: is not known here");
    EXPECT_EQ(complaint("\"what\": \"noAck\", \"function\": 21"),
              path + ".function: expected two lower-case hex digits in a text");
    EXPECT_EQ(complaint("\"what\": \"noAck\", \"lastsMs\": 1"), path + ".lastsMs: is not known here");
    EXPECT_EQ(complaint("\"what\": \"frameDelayed\""), path + ".lastsMs: is missing");
    EXPECT_EQ(complaint("\"what\": \"hang\", \"percent\": 5"), path + ".percent: is not known here");
    auto const range = [](std::string const& lowest, std::string const& highest) {
        return ": expected a whole number from " + lowest + " to " + highest;
    };
    EXPECT_EQ(complaint("\"what\": \"hang\", \"lastsMs\": 86400001"), path + ".lastsMs" + range("0", "86400000"));
    EXPECT_EQ(complaint("\"what\": \"hang\", \"afterMs\": 86400001"), path + ".afterMs" + range("0", "86400000"));
    EXPECT_EQ(complaint("\"what\": \"hang\", \"skip\": 1000001"), path + ".skip" + range("0", "1000000"));
    EXPECT_EQ(complaint("\"what\": \"hang\", \"times\": 0"), path + ".times" + range("1", "1000000"));
    EXPECT_EQ(complaint("\"what\": \"hang\", \"share\": 2"), path + ".share: expected a number from 0 to 1");
    EXPECT_EQ(complaint("\"what\": \"memoryStops\", \"percent\": 101"), path + ".percent" + range("0", "100"));
}

} // namespace
} // namespace zorv::modulesim
