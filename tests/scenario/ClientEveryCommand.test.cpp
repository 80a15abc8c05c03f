// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/firmwareImage.h"
#include "tests/testPaths.h"

#include "platform/libtransport/readMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <json/reader.h>
#include <json/value.h>

#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

struct Example {
    Words words;               ///< that go well
    Words wrong;               ///< that do not
    int code;                  ///< of the wrong ones
    bool needsDaemon = true;   ///< so that it is 3 without one
    bool showsMessages = true; ///< as lines of JSON that decode reads
    bool showsAnything = true;
    std::string network = {}; ///< that it takes, where the usual one will not do
};

constexpr char const* alone =
    R"({"homeId": "c0ffee01", "nodes": [], "otherNetwork": {"homeId": "deadbeef", "node": 7, "afterMs": 1}})";
constexpr char const* secondary =
    R"({"homeId": "c0ffee01", "module": {"secondaryTo": 2}, "nodes": [{"id": 2, "latencyMs": 1}]})";
constexpr char const* older = R"({"homeId": "c0ffee01", "module": {"generation": "500"}, "nodes": []})";

/// One example of each command, by its first words.
std::map<std::string, Example> examples(TemporaryDirectory const& directory) {
    auto const backup = sourcePath("examples/nvm-backup.json");
    auto const frames = directory.write("frames", "module 06\n");
    auto const noFrames = directory.write("no-frames", "rubbish\n");
    auto const recording = directory.write("recording", "");
    auto const file = directory.path("saved");
    return {
        {"ping", {{"ping", "2", "--count", "1"}, {"ping", "99", "--count", "1"}, 1}},
        {"node", {{"node", "2"}, {"node", "99"}, 1}},
        {"nodes", {{"nodes"}, {"nodes", "--view", "x"}, 2}},
        {"info", {{"info"}, {"info", "--view", "x"}, 2}},
        {"status", {{"status"}, {"status", "x"}, 2}},
        {"include", {{"include"}, {"include", "--timeout", "0"}, 2}},
        {"exclude", {{"exclude"}, {"exclude", "x"}, 2}},
        {"learn", {{"learn", "classic"}, {"learn", "x"}, 2, true, true, true, alone}},
        {"reset", {{"reset", "--yes"}, {"reset"}, 2}},
        {"send", {{"send", "2", "25", "02"}, {"send", "99", "25", "02"}, 1}},
        {"nif", {{"nif", "2"}, {"nif", "x"}, 2}},
        {"failed", {{"failed", "9", "remove", "--yes"}, {"failed", "2", "remove", "--yes"}, 1}},
        {"neighbors", {{"neighbors", "2"}, {"neighbors", "99"}, 1}},
        {"update", {{"update"}, {"update"}, 1, true, true, true, secondary}}, // others have nobody to ask
        {"interview", {{"interview", "2"}, {"interview", "99"}, 1}},
        {"firmware", {{"firmware", "EU", "--yes"}, {"firmware", "us"}, 2, true, true, true, older}},
        {"watch", {{}, {"watch", "x"}, 2}}, // live views have tests of their own
        {"observe", {{}, {"observe", "x"}, 2}},
        {"trace", {{}, {"trace", "x"}, 2}},
        {"quit", {{"quit"}, {"quit", "x"}, 2, true, false, false}},
        {"nvm save", {{"nvm", "save", file, "--force"}, {"nvm", "save", backup}, 2}},
        {"nvm restore", {{"nvm", "restore", file, "--yes"}, {"nvm", "restore", noFrames, "--yes"}, 1, false}},
        {"nvm check", {{"nvm", "check", backup}, {"nvm", "check", noFrames}, 1, false, false}},
        {"nvm clear", {{"nvm", "clear", "--yes"}, {"nvm", "clear"}, 2}},
        {"nvm validate", {{"nvm", "validate"}, {"nvm", "validate", "x"}, 2}},
        {"request", {{"request", "SystemStatusEvt"}, {"request", "AddRemoveNodeMsg"}, 1}},
        {"catalogue", {{"catalogue"}, {"catalogue", "x"}, 2, false, false}},
        {"decode", {{}, {"decode", "x"}, 2, false}}, // it reads standard input, with tests of its own
        {"example", {{"example", "PingMsg"}, {"example", "x"}, 2, false}},
        {"frames", {{"frames", frames}, {"frames", noFrames}, 5, false, false}},
        {"help", {{"help", "ping"}, {"help", "pong"}, 2, false, false}},
        {"replay", {{"replay", recording}, {"replay", noFrames}, 5, true, false, false}},
    };
}

class ClientEveryCommand : public testing::Test {
protected:
    int run(Words words) {
        words.insert(words.begin(), {programPath("quillet"), "--socket", socket_});
        Process client(words);
        auto const code = client.wait();
        lines_ = client.restOfOutput();
        errors_ = client.errors();
        return code;
    }

    /// A daemon with the usual network, or with another one.
    std::unique_ptr<DaemonProcess> daemon(std::string const& network = {}) const {
        auto const file = network.empty() ? network_ : directory_.write("other-network.json", network);
        return std::make_unique<DaemonProcess>(Words{"--network", file, "--firmware-dir", firmware_, "--listen",
                                                     "127.0.0.1", "--listen", "unix:" + socket_});
    }

    void SetUp() override {
        auto const image = firmwareImage("Z-Wave 7.99", 512);
        directory_.write("EU.bin", {image.begin(), image.end()});
    }

    /// The subcommands that a help text lists.
    Words listed(Words words) {
        words.emplace_back("--help");
        EXPECT_EQ(run(words), 0);
        Words names;
        bool isList = false;
        for (auto const& line : lines_) {
            std::istringstream text(line);
            std::string name;
            text >> name;
            if (isList && line.rfind("  ", 0) == 0 && line[2] != ' ') { names.push_back(name); }
            isList = isList || name == "Subcommands:";
        }
        return names;
    }

    void expectGood(std::string const& name, Example const& example) {
        auto const isDestroying = example.words.back() == "--yes" || name == "quit" || !example.network.empty();
        std::unique_ptr<DaemonProcess> running;
        for (auto const* const form : {"table", "wide", "json"}) {
            // What one destroys, the next one needs.
            if (!running || isDestroying) {
                running.reset();
                running = daemon(example.network);
                if (name == "nvm restore") { ASSERT_EQ(run({"nvm", "save", example.words[2], "--force"}), 0); }
            }
            auto words = example.words;
            words.insert(words.begin(), {"--output", form});
            EXPECT_EQ(run(words), 0) << name << ' ' << form << ' ' << errors_;
            if (example.showsAnything) { EXPECT_THAT(lines_, Not(IsEmpty())) << name; }
            bool const isJson = std::string(form) == "json" && name != "help"; // which is for people
            if (isJson) { expectJson(name, example.showsMessages); }
            if (name == "include" || name == "exclude") { running.reset(); }
        }
    }

    void expectJson(std::string const& name, bool areMessages) const {
        for (auto const& line : lines_) {
            Json::Value value;
            std::istringstream text(line);
            EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), text, &value, nullptr)) << name << line;
            if (areMessages) { EXPECT_NO_THROW(readMessage(line)) << name << line; }
        }
    }

    TemporaryDirectory directory_;
    std::string network_ = directory_.write("network.json", R"({"homeId": "c0ffee01", "retransmitMs": 20,
        "module": {"nvmSize": 16384}, "nodes": [{"id": 2, "latencyMs": 1}, {"id": 3, "latencyMs": 1},
        {"id": 9, "state": "dead"}], "joining": [{"afterMs": 1, "latencyMs": 1}],
        "leaving": [{"node": 3, "afterMs": 1}]})");
    std::string firmware_ = directory_.path();
    std::string socket_ = directory_.path("socket");
    Words lines_;
    std::string errors_;
};

TEST_F(ClientEveryCommand, HasAnExampleHere) {
    Words known;
    for (auto const& each : examples(directory_)) { known.push_back(each.first); }
    Words commands;
    for (auto const& name : listed({})) {
        if (name != "nvm") { commands.push_back(name); }
    }
    for (auto const& name : listed({"nvm"})) { commands.push_back("nvm " + name); }
    EXPECT_THAT(commands, testing::UnorderedElementsAreArray(known));
}

TEST_F(ClientEveryCommand, ShowsATableAndLinesOfJson) {
    for (auto const& [name, example] : examples(directory_)) {
        if (!example.words.empty()) { expectGood(name, example); }
    }
}

TEST_F(ClientEveryCommand, FailsWithItsCodeUnderTheProgramsName) {
    auto const running = daemon();
    for (auto const& [name, example] : examples(directory_)) {
        EXPECT_EQ(run(example.wrong), example.code) << name << errors_;
        bool const isPing = name == "ping"; // its rows tell
        if (!isPing) { EXPECT_THAT(errors_, StartsWith("quillet: ")) << name; }
        EXPECT_THAT(errors_, Not(HasSubstr(" WARN "))) << name;
    }
}

TEST_F(ClientEveryCommand, IsThreeWithoutADaemon) {
    for (auto const& [name, example] : examples(directory_)) {
        if (!example.needsDaemon || example.words.empty()) { continue; }
        EXPECT_EQ(run(example.words), 3) << name << errors_;
        EXPECT_EQ(errors_.find("quillet: cannot connect to " + socket_ + ": "), 0U) << name << errors_;
        EXPECT_THAT(lines_, IsEmpty()) << name;
    }
}

} // namespace
