// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/readNetwork.h"

#include "zwave/libmodulesim/readFaultsImpl.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <random>
#include <set>

namespace zorv::modulesim {

namespace {

constexpr NodeId firstNode = 1;
constexpr NodeId lastNode = 232;
constexpr std::uint32_t longestTime = 60000;      // milliseconds
constexpr std::uint32_t longestWakeUp = 0xFFFFFF; // seconds
constexpr std::uint32_t smallestMemory = 16384;   // bytes
constexpr std::uint32_t largestMemory = 1048576;
constexpr std::uint32_t mostByte = 255;
constexpr std::uint32_t fullBattery = 100;
constexpr std::uint32_t lowBattery = 255; // what a node tells instead of a level
constexpr std::size_t longestVersion = 11;

/// A sensor that runs on a battery, where the file does not say what a sleeping node is.
void makeSensor(NodeDescription& node) {
    node.kind = NodeKind::sleeping;
    node.generic = 0x20;
    node.specific = 0x01;
    node.commandClasses = {0x72, 0x80, 0x84, 0x85, 0x86};
}

// ---- nodes

enum class State { awake, sleeping, dead };

void readKind(ObjectReader& reader, NodeDescription& node) {
    auto state = State::awake;
    reader.choice<State>("state", {{"awake", State::awake}, {"sleeping", State::sleeping}, {"dead", State::dead}},
                         state);
    auto kind = state == State::sleeping ? NodeKind::sleeping : NodeKind::listening;
    reader.choice<NodeKind>("kind",
                            {{"listening", NodeKind::listening},
                             {"frequentlyListening", NodeKind::frequentlyListening},
                             {"sleeping", NodeKind::sleeping}},
                            kind);
    if (state == State::sleeping && kind != NodeKind::sleeping) {
        reader.fail(reader.require("kind"), "kind", "expected \"sleeping\" for a sleeping node");
    }
    if (kind == NodeKind::sleeping) { makeSensor(node); }
    node.kind = kind;
    node.dead = state == State::dead;
}

void readClasses(ObjectReader& reader, NodeDescription& node) {
    reader.hex("basic", node.basic);
    reader.hex("generic", node.generic);
    reader.hex("specific", node.specific);
    if (reader.find("commandClasses") != nullptr) { node.commandClasses.clear(); }
    auto& classes = node.commandClasses;
    reader.each("commandClasses", [&](Json::Value const& entry, std::string const& path) {
        auto const commandClass = static_cast<Byte>(reader.toHex(entry, path, 2));
        if (std::find(classes.begin(), classes.end(), commandClass) != classes.end()) {
            reader.fail(entry, path, "is there twice");
        }
        classes.push_back(commandClass);
    });
    constexpr std::size_t most = 35; // what a node's information has room for
    if (classes.size() > most) {
        reader.fail(reader.require("commandClasses"), "commandClasses", "expected 35 at most");
    }
    reader.number("classVersion", 1, mostByte, node.classVersion);
    reader.eachMember("classVersions", [&](std::string const& name, Json::Value const& value, std::string const& path) {
        Json::Value key(name);
        key.setOffsetStart(value.getOffsetStart());
        auto const commandClass = static_cast<Byte>(reader.toHex(key, path, 2));
        node.classVersions[commandClass] = static_cast<Byte>(reader.toNumber(value, path, 1, mostByte));
        if (std::find(classes.begin(), classes.end(), commandClass) == classes.end()) {
            reader.fail(value, path, "is none of the node's command classes");
        }
    });
}

void readProduct(ObjectReader& reader, ProductIds& product) {
    reader.hex("manufacturer", product.manufacturer);
    reader.hex("productType", product.productType);
    reader.hex("productId", product.productId);
}

/// All of a node but its id.
void readNode(ObjectReader& reader, NodeDescription& node) {
    readKind(reader, node);
    reader.time("latencyMs", longestTime, node.latency);
    reader.time("jitterMs", static_cast<std::uint32_t>(node.latency.count()), node.jitter);
    reader.share("loss", node.loss);
    readClasses(reader, node);
    readProduct(reader, node.product);
    reader.number("applicationVersion", 0, mostByte, node.applicationVersion);
    reader.number("applicationSubVersion", 0, mostByte, node.applicationSubVersion);
    reader.each("neighbours", [&](Json::Value const& entry, std::string const& path) {
        node.neighbours.push_back(static_cast<NodeId>(reader.toNumber(entry, path, firstNode, lastNode)));
    });
    reader.number("wakeUpSeconds", 0, longestWakeUp, node.wakeUpSeconds);
    reader.number("battery", 0, mostByte, node.batteryLevel);
    if (node.batteryLevel > fullBattery && node.batteryLevel != lowBattery) {
        reader.fail(reader.require("battery"), "battery", "expected a whole number from 0 to 100, or 255");
    }
}

void readNodes(ObjectReader& reader, SimulatedNetwork& network, std::set<NodeId>& taken) {
    reader.require("nodes");
    reader.each("nodes", [&](Json::Value const& entry, std::string const& path) {
        auto nodeReader = reader.object(entry, path);
        NodeDescription node;
        nodeReader.require("id");
        nodeReader.number("id", firstNode, lastNode, node.id);
        readNode(nodeReader, node);
        nodeReader.refuseOthers();
        if (!taken.insert(node.id).second) {
            reader.fail(entry, path + ".id", "is the id of another node or of the controller");
        }
        network.nodes.push_back(std::move(node));
    });
}

/// A node as it is found in a house: most listen, some run on a battery, a few are bad. From bare numbers of the
/// generator, which are the same everywhere.
NodeDescription generateNode(std::mt19937& random, NodeId id) {
    auto const below = [&random](std::uint32_t limit) { return static_cast<std::uint32_t>(random()) % limit; };
    NodeDescription node;
    constexpr std::uint32_t percent = 100;
    auto const draw = below(percent);
    if (draw < 25) {
        makeSensor(node);
        node.wakeUpSeconds = 600 * (1 + below(12));
        node.batteryLevel = static_cast<Byte>(1 + below(fullBattery));
    } else if (draw < 35) {
        node.kind = NodeKind::frequentlyListening;
        node.generic = 0x40; // a lock
        node.specific = 0x03;
        node.commandClasses = {0x72, 0x80, 0x85, 0x86};
    }
    node.id = id;
    node.latency = Milliseconds(15 + below(110));
    node.jitter = Milliseconds(below(static_cast<std::uint32_t>(node.latency.count()) / 2));
    if (below(percent) < 10) { node.loss = below(40) / 100.0; }
    node.dead = below(percent) < 3;
    node.product.productId = static_cast<std::uint16_t>(1 + below(20));
    return node;
}

void generateNodes(ObjectReader& reader, SimulatedNetwork& network, std::set<NodeId>& taken) {
    std::uint32_t count = 0;
    reader.number("generate", 0, static_cast<std::uint32_t>(lastNode - taken.size()), count);
    std::mt19937 random(network.seed);
    for (NodeId id = firstNode; count > 0; ++id) {
        if (!taken.insert(id).second) { continue; }
        network.nodes.push_back(generateNode(random, id));
        --count;
    }
}

// ---- those who come and go

void readComings(ObjectReader& reader, SimulatedNetwork& network) {
    reader.each("joining", [&](Json::Value const& entry, std::string const& path) {
        auto joinerReader = reader.object(entry, path);
        Joiner joiner;
        joinerReader.time("afterMs", longestTime, joiner.after);
        readNode(joinerReader, joiner.node);
        joinerReader.refuseOthers();
        network.joining.push_back(std::move(joiner));
    });
    reader.each("leaving", [&](Json::Value const& entry, std::string const& path) {
        auto leaverReader = reader.object(entry, path);
        Leaver leaver;
        leaverReader.number("node", 0, lastNode, leaver.node);
        leaverReader.time("afterMs", longestTime, leaver.after);
        leaverReader.refuseOthers();
        network.leaving.push_back(leaver);
    });
    if (auto const* const other = reader.find("otherNetwork")) {
        auto otherReader = reader.object(*other, "otherNetwork");
        network.otherNetwork.emplace();
        otherReader.homeId("homeId", network.otherNetwork->homeId);
        otherReader.number("node", firstNode, lastNode, network.otherNetwork->node);
        otherReader.time("afterMs", longestTime, network.otherNetwork->after);
        otherReader.refuseOthers();
    }
}

// ---- the module

/// The bytes of a file that stands beside the network file, or where an absolute path says.
void readImage(ObjectReader& reader, std::string const& networkFile, Bytes& image) {
    constexpr std::size_t longestPath = 4096;
    std::string name;
    reader.text("nvmImage", longestPath, name);
    if (name.empty()) { return; }
    auto const folder = networkFile.find_last_of('/');
    bool const isBeside = name.front() != '/' && folder != std::string::npos;
    std::ifstream in(isBeside ? networkFile.substr(0, folder + 1) + name : name, std::ios::binary);
    image.resize(largestMemory + 1); // which is too much, as a file without an end is
    in.read(reinterpret_cast<char*>(image.data()), static_cast<std::streamsize>(image.size()));
    image.resize(static_cast<std::size_t>(in.gcount()));
    if (image.size() < smallestMemory || image.size() > largestMemory) {
        reader.fail(reader.require("nvmImage"), "nvmImage", "expected a file of 16384 to 1048576 bytes");
    }
}

void readModule(ObjectReader reader, std::string const& file, SimulatedNetwork& network) {
    reader.choice<Generation>(
        "generation", {{"500", Generation::series500}, {"700", Generation::series700}, {"800", Generation::series800}},
        network.generation);
    reader.text("version", longestVersion, network.version);
    if (reader.find("libraryType") != nullptr) {
        network.libraryType = Byte{0};
        reader.number("libraryType", 1, mostByte, *network.libraryType);
    }
    readProduct(reader, network.product);
    reader.number("applicationVersion", 0, mostByte, network.applicationVersion);
    reader.number("applicationRevision", 0, mostByte, network.applicationRevision);
    reader.each("withoutFunctions", [&](Json::Value const& entry, std::string const& path) {
        network.withoutFunctions.push_back(static_cast<Byte>(reader.toHex(entry, path, 2)));
    });
    reader.number("nvmSize", smallestMemory, largestMemory, network.nvmSize);
    readImage(reader, file, network.nvmImage);
    if (network.nvmSize != 0 && !network.nvmImage.empty() && network.nvmSize != network.nvmImage.size()) {
        reader.fail(reader.require("nvmSize"), "nvmSize", "differs from the size of the image");
    }
    reader.flag("sis", network.isSis);
    if (reader.find("secondaryTo") != nullptr) {
        network.secondaryTo = NodeId{0};
        reader.number("secondaryTo", firstNode, lastNode, *network.secondaryTo);
    }
    reader.refuseOthers();
}

} // namespace

SimulatedNetwork readNetwork(std::string const& file) {
    auto const source = readJsonText(file);
    auto const root = parseJson(source);
    ObjectReader reader(root, "", source);
    SimulatedNetwork network;
    reader.homeId("homeId", network.homeId);
    reader.number("controller", firstNode, lastNode, network.controller);
    reader.number("seed", 0, 0xFFFFFFFFU, network.seed);
    reader.time("retransmitMs", longestTime, network.retransmission);
    std::set<NodeId> taken{network.controller};
    readNodes(reader, network, taken);
    generateNodes(reader, network, taken);
    if (auto const* const module = reader.find("module")) {
        readModule(reader.object(*module, "module"), file, network);
    }
    readComings(reader, network);
    readFaults(reader, network.faults);
    reader.refuseOthers();
    return network;
}

} // namespace zorv::modulesim
