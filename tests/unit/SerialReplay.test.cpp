// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/SerialRecordings.h"
#include "zwave/libserialapi/Module.h"
#include "zwave/libserialapi/functions/FrameDissector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
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

/// The same by the calls of a module's functions: each frame of the host is one, with the parameters that its table reads
/// in it.
class TypedReplay {
public:
    explicit TypedReplay(std::vector<Line> lines) : lines_(std::move(lines)) {
        module_.start();
        module_.takeOutput();
        auto const isAck = [](Line const& line) { return line.sender == Side::module && line.bytes == ack; };
        showsAcks_ = std::any_of(lines_.begin(), lines_.end(), isAck);
    }

    void run() {
        for (auto const& line : lines_) {
            now_ += Milliseconds(1);
            module_.tick(now_);
            if (line.sender == Side::module) {
                module_.receive(line.bytes, now_);
                module_.takeOutput();
            } else if (line.bytes[0] == control::startOfFrame) {
                say(line);
            }
        }
        quieten();
        module_.reset(); // ends what the recording does not
        module_.tick(now_);
        EXPECT_EQ(module_.openCalls(), 0U);
    }

    std::uint64_t strayCallbacks() const { return module_.strayCallbacks(); }

    int calls = 0;
    int rawCalls = 0; ///< of functions without a table, or in a form that it does not have
    int responses = 0;
    int callbacks = 0;
    std::map<CallEnd, int> ends = {};

private:
    void say(Line const& line) {
        std::string why;
        auto const frame = Frame::decode(line.bytes, why);
        ASSERT_TRUE(frame) << line.place;
        bool const isAwaitingAck =
            !module_.session().isQuiet() && module_.session().counters().acksReceived == acksBefore_;
        if (isAwaitingAck && *frame == underWay_) {
            while (module_.takeOutput() != line.bytes) {
                ASSERT_TRUE(module_.deadline()) << line.place;
                passTo(*module_.deadline());
            }
        } else {
            quieten();
            underWay_ = *frame;
            acksBefore_ = module_.session().counters().acksReceived;
            call(*frame, AllFunctions());
            EXPECT_EQ(module_.takeOutput(), line.bytes) << line.place;
        }
        if (!showsAcks_) { module_.receive(ack, now_); }
    }

    template <class... F> void call(Frame const& frame, FunctionList<F...>) {
        ++calls;
        if ((callAs<F>(frame) || ...)) { return; }
        ++rawCalls;
        RawHandlers handlers;
        handlers.end = [this](CallEnd end) { ++ends[end]; };
        module_.callRaw(frame.function, frame.parameters, std::move(handlers), now_);
    }

    template <class F> bool callAs(Frame const& frame) {
        if constexpr (HasRequest<F>::value) {
            if (frame.function != F::id) { return false; }
            auto const decoded = decodeForm<typename F::Request>(frame.parameters, module_.nodeIdWidth());
            if (!decoded || encodeForm(decoded->form, module_.nodeIdWidth()) != frame.parameters) { return false; }
            CallHandlers<F> handlers;
            handlers.response = [this](auto const&) { ++responses; };
            handlers.callback = [this](auto const&) { ++callbacks; };
            handlers.end = [this](CallEnd end) { ++ends[end]; };
            if constexpr (HasCallback<F>::value) {
                if (calls::named(decoded->form.callbackId) == 0) { // a stop, say
                    module_.tell<F>(decoded->form, std::move(handlers), now_);
                    return true;
                }
            }
            module_.call<F>(decoded->form, std::move(handlers), now_);
            return true;
        }
        return false;
    }

    void passTo(TimePoint time) {
        now_ = std::max(now_, time);
        module_.tick(now_);
    }

    /// Lets the time pass in which a response might still come.
    void quieten() {
        while (!module_.session().isQuiet() && module_.session().deadline()) {
            passTo(*module_.session().deadline());
            module_.takeOutput();
        }
    }

    std::vector<Line> lines_;
    Module module_;
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

TEST(SerialReplay, LeadsTheTypedCallsThroughEveryRecordedConversation) {
    int calls = 0;
    int rawCalls = 0;
    int responses = 0;
    int callbacks = 0;
    std::uint64_t strays = 0;
    std::map<CallEnd, int> ends;
    for (auto const& path : recordings()) {
        SCOPED_TRACE(path.filename().string());
        TypedReplay replay(readRecording(path));
        replay.run();
        calls += replay.calls;
        rawCalls += replay.rawCalls;
        responses += replay.responses;
        callbacks += replay.callbacks;
        strays += replay.strayCallbacks();
        int ended = 0;
        for (auto const& [end, count] : replay.ends) {
            ends[end] += count;
            ended += count;
        }
        EXPECT_EQ(ended, replay.calls); // each once
    }
    std::printf("%d calls, %d of them raw: %d responses, %d callbacks, %d stray ones\n", calls, rawCalls, responses,
                callbacks, static_cast<int>(strays));
    EXPECT_EQ(calls, 782); // 783 frames of hosts, of which one was sent again
    EXPECT_EQ(rawCalls, 20);
    EXPECT_EQ(responses, 697); // and 20 of raw calls
    EXPECT_EQ(callbacks, 353);
    EXPECT_EQ(strays, 45U); // repeated, or without their request in the recording
    EXPECT_EQ(ends[CallEnd::done], 714);
    EXPECT_EQ(ends[CallEnd::notAcknowledged], 7);
    EXPECT_EQ(ends[CallEnd::noResponse], 28);
    EXPECT_EQ(ends[CallEnd::closed], 33); // the recording ends before them
    EXPECT_EQ(ends.size(), 4U);           // none was refused, or answered in a way that its table does not know
}

} // namespace zorv::serialapi
