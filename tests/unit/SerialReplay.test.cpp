// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/SerialRecordings.h"
#include "zwave/libserialapi/functions/FrameDissector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace zorv::serialapi {

namespace {

Bytes const ack{control::ack};

/// A recorded conversation with our session layer in the host's place: the host's frames are asked of it, the module's
/// are played to it.
class Replay {
public:
    explicit Replay(std::vector<Line> lines) : lines_(std::move(lines)), host_(Side::host) {
        host_.start();
        host_.takeOutput();
        auto const isAck = [](Line const& line) { return line.sender == Side::module && line.bytes == ack; };
        showsAcks_ = std::any_of(lines_.begin(), lines_.end(), isAck);
    }

    void run() {
        for (auto const& line : lines_) {
            now_ += Milliseconds(1);
            host_.tick(now_);
            bool const isData = line.bytes[0] == control::startOfFrame;
            if (line.sender == Side::module) {
                hear(line, isData);
            } else if (isData) {
                say(line);
            }
            take();
        }
        quieten();
    }

    SessionCounters counters() const { return host_.counters(); }

    int moduleFrames = 0;
    int hostFrames = 0;
    int responses = 0;
    int otherFrames = 0;
    int failures = 0; ///< requests that the recording leaves unanswered

private:
    void hear(Line const& line, bool isData) {
        host_.receive(line.bytes, now_);
        auto const answer = host_.takeOutput();
        if (!isData) { return; }
        ++moduleFrames;
        EXPECT_EQ(answer, ack) << line.place;
    }

    /// The frame goes out: again, where it is under way already, and else for the first time.
    void say(Line const& line) {
        ++hostFrames;
        std::string why;
        auto const frame = Frame::decode(line.bytes, why);
        ASSERT_TRUE(frame) << line.place;
        bool const isAwaitingAck = !host_.isQuiet() && host_.counters().acksReceived == acksBefore_;
        if (isAwaitingAck && *frame == underWay_) {
            EXPECT_EQ(nextOutput(), line.bytes) << line.place;
        } else {
            quieten();
            auto const* const function = findFunction(frame->function);
            underWay_ = *frame;
            acksBefore_ = host_.counters().acksReceived;
            host_.request(*frame, function != nullptr && function->response.has_value(), now_);
            EXPECT_EQ(host_.takeOutput(), line.bytes) << line.place;
        }
        if (!showsAcks_) { host_.receive(ack, now_); }
    }

    /// What the layer says next by itself.
    Bytes nextOutput() {
        for (auto next = host_.deadline(); next; next = host_.deadline()) {
            now_ = std::max(now_, *next);
            host_.tick(now_);
            auto const output = host_.takeOutput();
            if (!output.empty()) { return output; }
        }
        return {};
    }

    /// Lets the time pass in which an answer might still come.
    void quieten() {
        while (!host_.isQuiet() && host_.deadline()) {
            now_ = std::max(now_, *host_.deadline());
            host_.tick(now_);
            host_.takeOutput();
        }
        EXPECT_TRUE(host_.isQuiet());
        take();
    }

    void take() {
        for (auto const& event : host_.takeEvents()) {
            responses += event.kind == SessionEvent::Kind::response ? 1 : 0;
            otherFrames += event.kind == SessionEvent::Kind::frame ? 1 : 0;
            failures += event.kind == SessionEvent::Kind::failed ? 1 : 0;
        }
    }

    std::vector<Line> lines_;
    SessionLayer host_;
    TimePoint now_{};
    bool showsAcks_ = false;
    Frame underWay_;
    std::uint64_t acksBefore_ = 0;
};

} // namespace

TEST(SerialReplay, LeadsTheSessionLayerThroughEveryRecordedConversation) {
    int files = 0;
    int hostFrames = 0;
    int moduleFrames = 0;
    int responses = 0;
    int failures = 0;
    int strays = 0;
    for (auto const& path : recordings()) {
        SCOPED_TRACE(path.filename().string());
        Replay replay(readRecording(path));
        replay.run();
        ++files;
        hostFrames += replay.hostFrames;
        moduleFrames += replay.moduleFrames;
        responses += replay.responses;
        failures += replay.failures;
        auto const counters = replay.counters();
        strays += static_cast<int>(counters.strayResponses);
        EXPECT_EQ(counters.framesReceived, static_cast<std::uint64_t>(replay.moduleFrames));
        EXPECT_EQ(counters.checksumErrors, 0U);
        EXPECT_EQ(counters.lostFrames, 0U);
        // Each frame of the module is told once, or belongs to a request that the recording does not show.
        EXPECT_EQ(replay.responses + replay.otherFrames + static_cast<int>(counters.strayResponses),
                  replay.moduleFrames);
    }
    std::printf("%d recordings: %d frames of hosts, %d of modules, %d responses, %d stray ones, %d without an answer\n",
                files, hostFrames, moduleFrames, responses, strays, failures);
    EXPECT_EQ(files, 56);
    EXPECT_EQ(hostFrames, 783);
    EXPECT_EQ(moduleFrames, 1584);
    EXPECT_EQ(responses, 717);
    EXPECT_EQ(strays, 43); // repeated, or without their request in the recording
    EXPECT_EQ(failures, 35);
}

} // namespace zorv::serialapi
