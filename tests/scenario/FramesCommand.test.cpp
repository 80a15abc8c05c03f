// SPDX-License-Identifier: Apache-2.0
#include "tests/scenario/OfflineClient.h"
#include "tests/testPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using namespace scenario;
using testing::ElementsAre;
using testing::HasSubstr;

class FramesCommand : public OfflineClient {
protected:
    int frames(std::string const& recording) { return run({"frames", directory_.write("recorded.log", recording)}); }
};

TEST_F(FramesCommand, ShowsEachFrameWithItsMembers) {
    EXPECT_EQ(frames("# a comment\n"
                     "host 01 03 00 15 e9  # REQ GetVersion\n"
                     "module 06\n"
                     "module 01 10 01 15 5a 2d 57 61 76 65 20 33 2e 39 35 00 01 99\n"
                     "\n"
                     "module 01 07 00 13 0a 01 01 a6 47\n"
                     "module 0d 0a\n"),
              0);
    EXPECT_THAT(lines_, ElementsAre("Sender  Function    Form      Members",                               //
                                    "host    GetVersion  request",                                         //
                                    "module  ACK         control",                                         //
                                    "module  GetVersion  response  version=\"Z-Wave 3.95\" libraryType=1", //
                                    "module  SendData    callback  callbackId=10 status=1 ticks=422",      //
                                    "module              raw       bytes=0d0a"));
    EXPECT_EQ(errors_, "");
}

TEST_F(FramesCommand, ShowsAFrameAsJson) {
    auto const path = directory_.write("recorded.log", "host 01 09 00 13 05 02 00 00 25 0a cd\n");
    EXPECT_EQ(run({"--json", "frames", path}), 0);
    EXPECT_THAT(lines_, ElementsAre(R"({"form":"request","function":"SendData","line":1,"members":)"
                                    R"({"callbackId":10,"data":"0000","node":5,"options":37},"sender":"host"})"));
}

TEST_F(FramesCommand, PrintsNothingAsJsonWhereThereIsNoFrame) {
    EXPECT_EQ(run({"--json", "frames", directory_.write("recorded.log", "# a comment\n")}), 0);
    EXPECT_THAT(lines_, testing::IsEmpty());
    EXPECT_EQ(errors_, "");
}

TEST_F(FramesCommand, ShowsSeveralFramesOfOneLine) {
    EXPECT_EQ(frames("module 06 01 04 01 13 01 e8\n"), 0);
    EXPECT_THAT(lines_, ElementsAre("Sender  Function  Form      Members", //
                                    "module  ACK       control",           //
                                    "module  SendData  response  accepted=1"));
}

TEST_F(FramesCommand, ShowsWhatHasNoTableAndWhatDoesNotFitOne) {
    EXPECT_EQ(frames("host 0104 00f2 0108\nmodule 01 06 00 04 00 05 09 f1\n"), 0);
    EXPECT_THAT(lines_, ElementsAre("Sender  Function                   Form      Members",       //
                                    "host    0xf2                       request   parameters=01", //
                                    "module  ApplicationCommandHandler  callback  parameters=000509"));
}

TEST_F(FramesCommand, EndsWith5WhereAFrameIsDamagedAndShowsTheOthers) {
    EXPECT_EQ(frames("host 01 03 00 15 e8\nhost 01 03 00 15 e9\n"), 5);
    EXPECT_THAT(lines_, ElementsAre("Sender  Function    Form     Members", "host    GetVersion  request"));
    EXPECT_EQ(errors_, "quillet: line 1: wrong checksum: 01030015e8\n");
}

TEST_F(FramesCommand, EndsWith5WhereAFrameIsCut) {
    EXPECT_EQ(frames("host 01 04 00 15\n"), 5);
    EXPECT_THAT(errors_, HasSubstr("line 1: too short for a frame: 01040015"));
}

TEST_F(FramesCommand, EndsWith5WhereALineIsNoRecording) {
    EXPECT_EQ(frames("daemon 01 03 00 15 e9\nhost\nhost 0g\nhost 013\n"), 5);
    for (auto const* const line : {"line 1:", "line 2:", "line 3:", "line 4:"}) {
        EXPECT_THAT(errors_, HasSubstr(std::string(line) + " expected host or module, and bytes in hex"));
    }
}

TEST_F(FramesCommand, EndsWith2WhereThereIsNoSuchFile) {
    EXPECT_EQ(run({"frames", directory_.path("none.log")}), 2);
    EXPECT_THAT(errors_, HasSubstr("none.log: cannot be read"));
}

TEST_F(FramesCommand, DecodesEveryRecording) {
    int files = 0;
    for (auto const& entry : std::filesystem::directory_iterator(zorv::sourcePath("tests/recorded"))) {
        if (entry.path().extension() != ".log") { continue; }
        ++files;
        EXPECT_EQ(run({"frames", entry.path().string()}), 0) << entry.path();
        EXPECT_EQ(errors_, "") << entry.path();
    }
    EXPECT_EQ(files, 56);
}

} // namespace
