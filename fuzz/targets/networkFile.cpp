// SPDX-License-Identifier: Apache-2.0
// The file that describes a simulated network, and the module that lives in it.

#include "fuzz/InputFile.h"
#include "fuzz/Target.h"
#include "fuzz/mutateWire.h"

#include "tests/support/SimulatedLink.h"
#include "tests/support/json.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"
#include "zwave/libmodulesim/readNetwork.h"

#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>

namespace zorv::fuzz {

namespace {

using namespace modulesim;

std::optional<SimulatedNetwork> read(std::string const& path) {
    try {
        return readNetwork(path);
    } catch (std::runtime_error const& error) {
        std::string const complaint = error.what();
        expect(complaint.rfind(path + ":", 0) == 0, "a complaint begins with the file: " + complaint);
    }
    return std::nullopt;
}

void run(std::string const& text) {
    InputFile const file(text);
    auto const network = read(file.path());
    if (!network) { return; }
    std::set<NodeId> ids{network->controller};
    for (auto const& node : network->nodes) {
        expect(node.id >= 1 && node.id <= 232, "a node has an id of a node");
        expect(ids.insert(node.id).second, "which is its own");
    }
    SimulatedLink link(*network);
    link.passes(Milliseconds(2000));
    if (!network->faults.empty()) { return; }
    auto const answer = link.ask<serialapi::MemoryGetId>();
    expect(answer.has_value(), "a module without faults answers");
    expect(answer->homeId == network->homeId, "as it was described");
}

struct Schema {
    Target::Texts keys;
    Target::Texts values{
        "0",    "1",    "232", "233", "255",          "60000",        "16384",  "-1",       "0.5",        "1.0", "true",
        "null", "\"\"", "[]",  "{}",  "\"c0ffee01\"", "\"00000000\"", "\"5e\"", "\"023f\"", "{\"id\":2}", "1e99"};

    void add(Json::Value const& schema) {
        if (schema.isArray()) {
            for (auto const& element : schema) { add(element); }
        }
        if (!schema.isObject()) { return; }
        for (auto const& key : schema["properties"].getMemberNames()) { keys.push_back(key); }
        for (auto const& text : schema["enum"]) { values.push_back(toText(text)); }
        for (auto const& key : schema.getMemberNames()) { add(schema[key]); }
    }
};

Schema const& schema() {
    static auto const all = [] {
        Schema schema;
        schema.add(toJson(readFile(sourcePath("docs/simulation.schema.json"))));
        return schema;
    }();
    return all;
}

std::string mutate(std::string text, std::size_t most, std::mt19937& random) {
    return mutateJson(std::move(text), most, random, schema().keys, schema().values);
}

Target::Texts seeds() {
    Target::Texts texts;
    for (auto const& entry : std::filesystem::directory_iterator(sourcePath("examples/networks"))) {
        texts.push_back(toText(toJson(readFile(entry.path().string()))));
    }
    return texts;
}

Target::Texts words() {
    auto words = schema().values;
    for (auto const& key : schema().keys) { words.push_back('"' + key + "\":"); }
    return words;
}

Registration const registration({"networkFile", &run, &seeds, &words, &mutate});

} // namespace

} // namespace zorv::fuzz
