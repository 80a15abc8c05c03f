// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/Process.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/testPaths.h"

#include "platform/libtransport/toText.h"
#include "zwave/libquillet/ObserveMsg.h"
#include "zwave/libquillet/PingMsg.h"
#include "zwave/libquillet/ResetDefaultsMsg.h"

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

using Words = std::vector<std::string>;

class ClientReplay : public testing::Test {
protected:
    int run(Words const& words) {
        Process client(clientCommand(daemon_.port(), words));
        auto const code = client.wait();
        lines_ = client.restOfOutput();
        errors_ = client.errors();
        return code;
    }

    /// What an observer records of a ping: the request, and the answer with that result.
    static std::string recorded(unsigned char node, ZResult::Enum result, unsigned int latency) {
        auto const ping = PingMsg::create(ZwaveAddress(0, node));
        return toText(*ObserveMsg::create(ObserveDirection::received, ping)) + '\n' +
               toText(*ObserveMsg::create(ObserveDirection::sent, PingMsg::create(ping, result, latency))) + '\n';
    }

    std::string file(std::string const& lines) { return directory_.write("recording", lines); }

    TemporaryDirectory directory_;
    DaemonProcess daemon_{{"--network", directory_.write("network.json", R"({"homeId": "c0ffee01",
        "nodes": [{"id": 2, "latencyMs": 1}], "joining": [], "leaving": []})")}};
    Words lines_;
    std::string errors_;
};

TEST_F(ClientReplay, RecordsTrafficThatDecodeAndReplayRead) {
    auto const recording = directory_.path("recording");
    Process observe({"/bin/sh", "-c", R"(exec "$0" --port "$1" observe --json --count 5 > "$2")",
                     programPath("quillet"), std::to_string(daemon_.port()), recording});
    observe.waitForError("quillet: observe: listening\n");
    EXPECT_EQ(run({"ping", "1", "--count", "2", "--interval", "0"}), 0);
    EXPECT_EQ(observe.wait(), 0);
    Process decode({"/bin/sh", "-c", R"("$0" decode < "$1")", programPath("quillet"), recording});
    EXPECT_EQ(decode.wait(), 0);
    auto const rows = decode.restOfOutput();
    EXPECT_THAT(rows, Contains(MatchesRegex("20[0-9-]+T[0-9:.]+Z  received   PingMsg +destination=00000000:1 .*")));
    EXPECT_THAT(rows, Contains(MatchesRegex("20[0-9-]+T[0-9:.]+Z  sent       PingMsg +.*")));
    EXPECT_EQ(run({"replay", recording, "--speed", "1000"}), 0);
    EXPECT_THAT(lines_, Contains(MatchesRegex("[0-9]+ +PingMsg +success")));
}

TEST_F(ClientReplay, TellsWhereAnswersDifferAndThatResultsDoByItsExitCode) {
    auto const recording = file(recorded(1, ZResult::success, 0) + recorded(99, ZResult::success, 0));
    EXPECT_EQ(run({"replay", recording, "--no-header"}), 1);
    EXPECT_THAT(lines_, testing::UnorderedElementsAre(
                            MatchesRegex("1 +PingMsg +success"),
                            MatchesRegex("3 +PingMsg +nodeNotFound +result: recorded success, now nodeNotFound")));
    EXPECT_EQ(run({"replay", file(recorded(1, ZResult::success, 40)), "--json"}), 0);
    EXPECT_THAT(lines_, ElementsAre(StartsWith(R"({"__name__":"zorv::PingMsg")")));
    EXPECT_EQ(errors_, "quillet: line 1: PingMsg: latencyMs: recorded 40, now 0\n");
}

TEST_F(ClientReplay, KeepsTheDistancesInTimeDividedByTheSpeed) {
    // The second request was recorded 1,000 s after the first one.
    auto first = boost::make_shared<ObserveMsg>(ObserveAction::none, ObserveDirection::received,
                                                PingMsg::create(ZwaveAddress(0, 1)));
    auto text = toText(*first) + '\n' + toText(*first) + '\n';
    auto const time = [](std::int64_t ms) { return "\"timestamp_\":\"" + toString(TimeStamp(ms)) + '"'; };
    auto const set = [&text, &time](std::size_t from, std::int64_t ms) {
        auto const at = text.find("\"timestamp_\":\"", from);
        text.replace(at, time(0).size(), time(ms));
    };
    set(0, 1000000);
    set(text.find('\n'), 2000000);
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(run({"replay", file(text), "--speed", "2000"}), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_EQ(lines_.size(), 3U);
}

TEST_F(ClientReplay, AsksBeforeWhatCannotBeUndone) {
    auto const reset = boost::make_shared<ResetDefaultsMsg>();
    auto const recording = file(toText(*ObserveMsg::create(ObserveDirection::received, reset)));
    EXPECT_EQ(run({"replay", recording}), 2);
    EXPECT_THAT(errors_,
                HasSubstr("line 1 of the recording, ResetDefaultsMsg, may change what cannot be undone; say --yes"));
    EXPECT_EQ(run({"node", "2"}), 0);
    EXPECT_EQ(run({"replay", recording, "--yes"}), 0);
    EXPECT_EQ(run({"node", "2"}), 1);
}

TEST_F(ClientReplay, RefusesWhatIsNoRecordingBeforeItSendsAnything) {
    EXPECT_EQ(run({"replay", file(recorded(1, ZResult::success, 0) + "rubbish\n")}), 5);
    EXPECT_THAT(errors_, StartsWith("quillet: line 3: malformed text: "));
    EXPECT_THAT(lines_, IsEmpty());
    EXPECT_EQ(run({"replay", directory_.path("none")}), 2);
    EXPECT_EQ(run({"replay", file(""), "--speed", "0"}), 2);
    EXPECT_EQ(run({"replay", file("")}), 0);
}

} // namespace
