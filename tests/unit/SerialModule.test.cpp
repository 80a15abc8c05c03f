// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FaultyWire.h"
#include "zwave/libserialapi/Module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <random>
#include <string>
#include <vector>

namespace zorv::serialapi {

namespace {

Bytes const ack{control::ack};

Frame request(Byte function, Bytes parameters) { return {FrameType::request, function, std::move(parameters)}; }
Frame response(Byte function, Bytes parameters) { return {FrameType::response, function, std::move(parameters)}; }

struct SerialModule : testing::Test {
    void hears(Frame const& frame) { module.receive(frame.encode(), now); }
    void acknowledges() { module.receive(ack, now); }
    void passes(Milliseconds time) {
        now += time;
        module.tick(now);
    }
    CallHandlers<SendData> sending() {
        return {[this](auto const& r) { heard += "response " + std::to_string(r.accepted) + "; "; },
                [this](auto const& c) { heard += "callback " + std::to_string(c.status) + "; "; },
                [this](CallEnd end) { heard += "end " + std::to_string(static_cast<int>(end)); }};
    }
    std::string ended(CallEnd end) const { return "end " + std::to_string(static_cast<int>(end)); }

    Module module;
    TimePoint now{};
    std::string heard;
};

} // namespace

TEST_F(SerialModule, LeadsACallFromRequestToCallback) {
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    EXPECT_EQ(module.takeOutput(), request(0x13, {0x05, 0x01, 0x00, 0x25, 0x01}).encode());
    acknowledges();
    hears(response(0x13, {0x01}));
    hears(request(0x13, {0x01, 0x00}));
    EXPECT_EQ(heard, "response 1; callback 0; " + ended(CallEnd::done));
    EXPECT_EQ(module.openCalls(), 0U);
}

TEST_F(SerialModule, EndsACallThatTheModuleRefuses) {
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    acknowledges();
    hears(response(0x13, {0x00}));
    EXPECT_EQ(heard, "response 0; " + ended(CallEnd::refused));
}

TEST_F(SerialModule, EndsACallWhoseCallbackNeverComes) {
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now, Milliseconds(3000));
    acknowledges();
    hears(response(0x13, {0x01}));
    EXPECT_EQ(module.deadline(), now + Milliseconds(3000));
    passes(Milliseconds(2999));
    EXPECT_EQ(heard, "response 1; ");
    passes(Milliseconds(1));
    EXPECT_EQ(heard, "response 1; " + ended(CallEnd::noCallback));
    hears(request(0x13, {0x01, 0x00}));
    EXPECT_EQ(module.strayCallbacks(), 1U);
}

TEST_F(SerialModule, EndsACallWithoutResponse) {
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    acknowledges();
    passes(limits::responseTime);
    EXPECT_EQ(heard, ended(CallEnd::noResponse));
}

TEST_F(SerialModule, EndsACallWhoseResponseIsTooShort) {
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    acknowledges();
    hears(response(0x13, {}));
    EXPECT_EQ(heard, ended(CallEnd::badResponse));
}

TEST_F(SerialModule, KeepsACallOpenUntilItsLastCallback) {
    std::string statuses;
    bool isOver = false;
    CallHandlers<RequestNodeNeighborUpdate> handlers;
    handlers.callback = [&statuses](StatusCallback const& c) { statuses += std::to_string(c.status) + ' '; };
    handlers.end = [&isOver](CallEnd) { isOver = true; };
    module.call<RequestNodeNeighborUpdate>({5, 0}, handlers, now);
    acknowledges();
    hears(request(0x48, {0x01, 0x21}));
    EXPECT_FALSE(isOver);
    hears(request(0x48, {0x01, 0x22}));
    EXPECT_TRUE(isOver);
    EXPECT_EQ(statuses, "33 34 ");
}

TEST_F(SerialModule, GivesEachOpenCallACallbackIdOfItsOwn) {
    auto const first = module.call<SetDefault>({}, {}, now);
    auto const second = module.call<SendData>({5, {0x00}, 0x25, 0}, {}, now);
    EXPECT_EQ(module.callbackId(first), 1);
    EXPECT_EQ(module.callbackId(second), 2);
}

TEST_F(SerialModule, LeavesCallbacksOfAStopToTheCallThatItStops) {
    std::string statuses;
    CallHandlers<AddNodeToNetwork> handlers;
    handlers.callback = [&statuses](ModeCallback const& c) { statuses += std::to_string(c.status) + ' '; };
    auto const call = module.call<AddNodeToNetwork>({0xC1, {}, {}}, handlers, now);
    acknowledges();
    hears(request(0x4A, {0x01, 0x01, 0x00, 0x00}));
    module.takeOutput();
    module.tell<AddNodeToNetwork>({mode::stop, module.callbackId(call), {}}, {}, now);
    EXPECT_EQ(module.takeOutput(), request(0x4A, {0x05, 0x01}).encode());
    acknowledges();
    hears(request(0x4A, {0x01, 0x06, 0x00, 0x00}));
    EXPECT_EQ(statuses, "1 6 ");
    EXPECT_EQ(module.openCalls(), 0U);
}

TEST_F(SerialModule, TellsWhatTheModuleSendsUnasked) {
    std::vector<Byte> functions;
    module.unsolicited([&functions](Frame const& frame) { functions.push_back(frame.function); });
    hears(request(0x04, {0x00, 0x05, 0x01, 0x00}));
    hears(request(0xF5, {}));
    EXPECT_EQ(functions, (std::vector<Byte>{0x04, 0xF5}));
}

TEST_F(SerialModule, ReadsAndWritesNodeIdsInTheWidthThatWasAgreedOn) {
    module.nodeIdWidth(NodeIdWidth::two);
    module.call<SendData>({0x0102, {0x00}, 0x25, 0}, {}, now);
    EXPECT_EQ(module.takeOutput(), request(0x13, {0x01, 0x02, 0x01, 0x00, 0x25, 0x01}).encode());
}

TEST_F(SerialModule, EndsCallsThatAreCancelledOrLostToAReset) {
    auto const call = module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    module.cancel(call);
    EXPECT_EQ(heard, "");
    module.tick(now);
    EXPECT_EQ(heard, ended(CallEnd::cancelled));
    heard.clear();
    module.call<SendData>({5, {0x00}, 0x25, 0}, sending(), now);
    module.reset();
    module.tick(now);
    EXPECT_EQ(heard, ended(CallEnd::closed));
    EXPECT_EQ(module.deadline(), std::nullopt);
}

TEST_F(SerialModule, LetsAHandlerCallAgain) {
    CallHandlers<GetVersion> handlers;
    handlers.response = [this](GetVersion::Response const&) { module.call<MemoryGetId>({}, {}, now); };
    module.call<GetVersion>({}, handlers, now);
    acknowledges();
    module.takeOutput();
    hears(response(0x15, Bytes(13, 'x')));
    EXPECT_EQ(module.openCalls(), 1U);
    module.tick(now);
    auto expected = ack;
    auto const next = request(0x20, {}).encode();
    expected.insert(expected.end(), next.begin(), next.end());
    EXPECT_EQ(module.takeOutput(), expected);
}

// ---- a line that loses, spoils, doubles and delays bytes

namespace {

/// A module that answers at once, with an answer that only the right request has.
class Conversation {
public:
    explicit Conversation(unsigned int seed) : random_(seed) {
        host_.start();
        module_.start();
        host_.session().trace([this](Side sender, Frame const& frame) { notice(Side::host, sender, frame); });
        module_.trace([this](Side sender, Frame const& frame) { notice(Side::module, sender, frame); });
    }

    void run() {
        for (int i = 0; i < 4; ++i) { call(static_cast<std::uint16_t>(random_() % 0xFFFF)); }
        for (int step = 0; step < 2000; ++step) {
            if (!advance()) { break; }
        }
        EXPECT_EQ(host_.openCalls(), 0U);
        EXPECT_TRUE(host_.session().isQuiet());
        EXPECT_TRUE(module_.isQuiet());
        EXPECT_EQ(host_.deadline(), std::nullopt);
        for (auto const ends : ends_) { EXPECT_EQ(ends, 1); }
    }

    bool wasDeceived() const noexcept { return deceived_; } ///< some frame was spoilt, and its checksum holds
    int right() const noexcept { return right_; }
    int wrong() const noexcept { return wrong_; }
    int failed() const noexcept { return failed_; }

private:
    static Byte answerTo(std::uint16_t offset) { return static_cast<Byte>(offset * 7 + offset / 256); }

    void call(std::uint16_t offset) {
        auto const index = ends_.size();
        ends_.push_back(0);
        auto const end = [this, index](CallEnd how) {
            ++ends_[index];
            failed_ += how == CallEnd::done ? 0 : 1;
        };
        if (offset % 2 == 0) {
            CallHandlers<MemoryGetByte> handlers;
            handlers.response = [this, offset](Setting const& r) { check(r.value == answerTo(offset)); };
            handlers.end = end;
            host_.call<MemoryGetByte>({offset}, handlers, now_);
        } else {
            auto const node = static_cast<NodeId>(offset % 200 + 1);
            CallHandlers<SendData> handlers;
            handlers.callback = [this, node](TransmitCallback const& c) { check(c.status == answerTo(node)); };
            handlers.end = end;
            host_.call<SendData>({node, {0x00}, 0x25, 0}, handlers, now_);
        }
    }

    void check(bool isRight) { ++(isRight ? right_ : wrong_); }

    bool advance() {
        toModule_.carry(host_.takeOutput(), now_, random_);
        toHost_.carry(module_.takeOutput(), now_, random_);
        std::optional<TimePoint> next = host_.deadline();
        auto const consider = [&next](std::optional<TimePoint> time) {
            if (time && (!next || *time < *next)) { next = time; }
        };
        consider(module_.deadline());
        for (auto const* const wire : {&toModule_, &toHost_}) {
            if (!wire->pieces.empty()) { consider(wire->pieces.front().arrival); }
        }
        if (!next) { return false; }
        now_ = std::max(now_, *next);
        deliver();
        return true;
    }

    void deliver() {
        host_.tick(now_);
        module_.tick(now_);
        while (!toModule_.pieces.empty() && toModule_.pieces.front().arrival <= now_) {
            module_.receive(toModule_.pieces.front().bytes, now_);
            toModule_.pieces.pop_front();
        }
        while (!toHost_.pieces.empty() && toHost_.pieces.front().arrival <= now_) {
            host_.receive(toHost_.pieces.front().bytes, now_);
            toHost_.pieces.pop_front();
        }
        for (auto const& event : module_.takeEvents()) {
            if (event.kind == SessionEvent::Kind::frame) { answer(event.frame); }
        }
    }

    void answer(Frame const& frame) {
        if (frame.function == MemoryGetByte::id) {
            auto const asked = decodeForm<MemoryGetByte::Request>(frame.parameters, NodeIdWidth::one);
            if (asked) {
                module_.send(response(frame.function, {answerTo(asked->form.offset)}), Urgency::response, now_);
            }
        } else if (auto const asked = decodeForm<SendData::Request>(frame.parameters, NodeIdWidth::one)) {
            module_.send(response(frame.function, {1}), Urgency::response, now_);
            module_.send(request(frame.function, {asked->form.callbackId, answerTo(asked->form.node)}),
                         Urgency::callback, now_);
        }
    }

    void notice(Side observer, Side sender, Frame const& frame) {
        auto& sent = sender == Side::host ? sentByHost_ : sentByModule_;
        if (observer == sender) {
            sent.push_back(frame);
        } else if (std::find(sent.begin(), sent.end(), frame) == sent.end()) {
            deceived_ = true;
        }
    }

    std::mt19937 random_;
    Module host_;
    SessionLayer module_{Side::module};
    TimePoint now_{};
    FaultyWire toModule_;
    FaultyWire toHost_;
    std::vector<Frame> sentByHost_;
    std::vector<Frame> sentByModule_;
    std::vector<int> ends_;
    bool deceived_ = false;
    int right_ = 0;
    int wrong_ = 0;
    int failed_ = 0;
};

} // namespace

/// Ten times a thousand conversations, so that each part is done in seconds.
class SerialFaultWalk : public testing::TestWithParam<unsigned int> {};

TEST_P(SerialFaultWalk, AnswersEveryCallOnceRightOrWithItsError) {
    unsigned int const conversations = 1000;
    int right = 0;
    int failed = 0;
    int deceived = 0;
    for (unsigned int i = 0; i < conversations; ++i) {
        auto const seed = GetParam() * conversations + i;
        SCOPED_TRACE(seed);
        Conversation conversation(seed);
        conversation.run();
        if (HasFailure()) { return; }
        right += conversation.right();
        failed += conversation.failed();
        if (conversation.wasDeceived()) {
            ++deceived;
        } else {
            ASSERT_EQ(conversation.wrong(), 0);
        }
    }
    std::printf("%u conversations: %d right answers, %d errors; %d with a spoilt frame whose checksum holds\n",
                conversations, right, failed, deceived);
    EXPECT_GT(right, 3900);
    EXPECT_GT(failed, 0);
    EXPECT_LT(deceived, 10);
}

INSTANTIATE_TEST_SUITE_P(Thousand, SerialFaultWalk, testing::Range(0U, 10U));

} // namespace zorv::serialapi
