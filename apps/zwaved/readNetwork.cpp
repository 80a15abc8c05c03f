// SPDX-License-Identifier: Apache-2.0
#include "apps/zwaved/readNetwork.h"

#include "platform/libzorvshared/nodeIds.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>

namespace zorv {

namespace {

constexpr unsigned int longestTimeMs = 60000;

std::string readText(std::string const& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    // A directory opens, and fails when it is read.
    if (!in || !(text << in.rdbuf())) {
        throw std::runtime_error(file + ": cannot be read" +
                                 (errno != 0 ? std::string(": ") + std::strerror(errno) : ""));
    }
    return text.str();
}

/// Reads the members of one JSON object and remembers which members there may be.
class ObjectReader {
public:
    ObjectReader(Json::Value const& object, std::string const& path, std::string const& file, std::string const& text)
        : object_(object), path_(path), file_(file), text_(text) {
        if (!object.isObject()) { fail(object, "", "expected an object"); }
    }

    void read(char const* key, unsigned int lowest, unsigned int highest, unsigned int& value) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        if (!member->isUInt() || member->asUInt() < lowest || member->asUInt() > highest) {
            fail(*member, key,
                 "expected a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
        }
        value = member->asUInt();
    }

    void read(char const* key, unsigned char& nodeId) {
        unsigned int value = nodeId;
        read(key, firstNodeId, lastNodeId, value);
        nodeId = static_cast<unsigned char>(value);
    }

    void readShare(char const* key, double& value) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        if (!member->isDouble() || member->asDouble() < 0 || member->asDouble() > 1) {
            fail(*member, key, "expected a number from 0 to 1");
        }
        value = member->asDouble();
    }

    void read(char const* key, NodeState& value) {
        auto const* const member = find(key);
        if (member == nullptr) { return; }
        if (*member == "awake") {
            value = NodeState::awake;
        } else if (*member == "sleeping") {
            value = NodeState::sleeping;
        } else if (*member == "dead") {
            value = NodeState::dead;
        } else {
            fail(*member, key, "expected \"awake\", \"sleeping\" or \"dead\"");
        }
    }

    void readHomeId(char const* key, HomeId& value) {
        auto const& member = require(key);
        auto const digits = member.isString() ? member.asString() : "";
        if (digits.size() != 8 || digits.find_first_not_of("0123456789abcdef") != std::string::npos ||
            digits == "00000000") {
            fail(member, key, "expected eight lower-case hex digits, not all 0");
        }
        value = static_cast<HomeId>(std::stoul(digits, nullptr, 16));
    }

    Json::Value const* find(char const* key) {
        known_.insert(key);
        return object_.find(key, key + std::strlen(key));
    }

    Json::Value const& require(char const* key) {
        auto const* const member = find(key);
        if (member == nullptr) { fail(object_, key, "is missing"); }
        return *member;
    }

    /// To be called after all members were read: any other member is probably a typing error.
    void refuseOthers() const {
        for (auto const& key : object_.getMemberNames()) {
            if (known_.count(key) == 0) { fail(object_[key], key, "is not known here"); }
        }
    }

    [[noreturn]] void fail(Json::Value const& where, std::string const& key, std::string const& complaint) const {
        auto const end = text_.begin() + where.getOffsetStart();
        auto const line = std::count(text_.begin(), end, '\n') + 1;
        auto const path = path_.empty() || key.empty() ? path_ + key : path_ + "." + key;
        throw std::runtime_error(file_ + ":" + std::to_string(line) + ": " + (path.empty() ? "" : path + ": ") +
                                 complaint);
    }

private:
    Json::Value const& object_;
    std::string path_;
    std::string const& file_;
    std::string const& text_;
    std::set<std::string> known_;
};

NodeDescription readNode(ObjectReader reader) {
    NodeDescription node;
    reader.require("id");
    reader.read("id", node.id);
    reader.read("state", node.state);
    reader.read("latencyMs", 0, longestTimeMs, node.latencyMs);
    reader.read("jitterMs", 0, node.latencyMs, node.jitterMs);
    reader.readShare("loss", node.loss);
    reader.refuseOthers();
    return node;
}

Json::Value parse(std::string const& file, std::string const& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    std::unique_ptr<Json::CharReader> const parser(builder.newCharReader());
    Json::Value root;
    std::string complaints;
    try {
        if (parser->parse(text.data(), text.data() + text.size(), &root, &complaints)) { return root; }
    } catch (Json::Exception const& error) { complaints = error.what(); }
    // The parser's "* Line 3, Column 5\n  Missing ..." on one line.
    std::istringstream words(complaints.substr(complaints.compare(0, 2, "* ") == 0 ? 2 : 0));
    std::string complaint;
    for (std::string word; words >> word;) { complaint += ' ' + word; }
    throw std::runtime_error(file + ":" + complaint);
}

} // namespace

NetworkDescription readNetwork(std::string const& file) {
    auto const text = readText(file);
    auto const root = parse(file, text);
    NetworkDescription network;
    ObjectReader reader(root, "", file, text);
    reader.readHomeId("homeId", network.homeId);
    reader.read("controller", network.controller);
    reader.read("seed", 0, 0xFFFFFFFFU, network.seed);
    reader.read("retransmitMs", 0, longestTimeMs, network.retransmitMs);
    auto const& nodes = reader.require("nodes");
    reader.refuseOthers();
    if (!nodes.isArray()) { reader.fail(nodes, "nodes", "expected an array"); }
    std::set<unsigned char> taken{network.controller};
    for (auto const& entry : nodes) {
        auto const path = "nodes[" + std::to_string(taken.size() - 1) + "]";
        network.nodes.push_back(readNode(ObjectReader(entry, path, file, text)));
        if (!taken.insert(network.nodes.back().id).second) {
            reader.fail(entry, path + ".id", "is the id of another node or of the controller");
        }
    }
    return network;
}

NetworkDescription builtInNetwork() {
    NetworkDescription network;
    network.homeId = 0xC0FFEE01;
    network.seed = 7;
    auto const add = [&network](unsigned char id, NodeState state, unsigned int latencyMs, unsigned int jitterMs,
                                double loss) {
        network.nodes.push_back({id, state, latencyMs, jitterMs, loss});
    };
    add(2, NodeState::awake, 18, 4, 0);
    add(3, NodeState::awake, 22, 6, 0);
    add(5, NodeState::awake, 31, 9, 0);
    add(6, NodeState::awake, 124, 40, 0); // behind a repeater
    add(7, NodeState::awake, 85, 60, 0.3);
    add(8, NodeState::sleeping, 20, 0, 0);
    add(9, NodeState::dead, 20, 0, 0);
    return network;
}

} // namespace zorv
