// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/SessionLayer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zorv::serialapi {

namespace {

using Kind = SessionEvent::Kind;

Frame const getVersion{FrameType::request, 0x15, {}};
Frame const versionIs{FrameType::response, 0x15, {0x5A, 0x01}};
Frame const softReset{FrameType::request, 0x08, {}};
Frame const command{FrameType::request, 0x04, {0x00, 0x05, 0x01, 0x00}};

/// One end of the line on a clock that the test moves.
struct End {
    explicit End(Side side) : layer(side) {
        layer.start();
        layer.takeOutput();
    }

    void at(int milliseconds) {
        now = TimePoint() + Milliseconds(milliseconds);
        layer.tick(now);
    }
    void hears(Bytes const& bytes) { layer.receive(bytes, now); }
    void hears(Frame const& frame) { layer.receive(frame.encode(), now); }
    std::uint32_t requests(Frame const& frame, bool awaitsResponse = true) {
        return layer.request(frame, awaitsResponse, now);
    }
    Bytes says() { return layer.takeOutput(); }
    std::vector<SessionEvent> events() { return layer.takeEvents(); }
    /// Milliseconds on the clock at which the layer wants to be called.
    long long deadline() const {
        return layer.deadline() ? std::chrono::duration_cast<Milliseconds>(layer.deadline()->time_since_epoch()).count()
                                : -1;
    }

    SessionLayer layer;
    TimePoint now{};
};

struct SerialSessionHost : testing::Test {
    End host{Side::host};
};
struct SerialSessionModule : testing::Test {
    End module{Side::module};
};

Bytes const ack{0x06};
Bytes const nak{0x15};
Bytes const can{0x18};
Bytes const none;

Bytes badly(Frame const& frame) {
    auto bytes = frame.encode();
    bytes.back() = static_cast<Byte>(bytes.back() ^ 0x01U);
    return bytes;
}

} // namespace

// ---- host: receiving

TEST_F(SerialSessionHost, SaysNakWhenItStarts) {
    SessionLayer layer(Side::host);
    EXPECT_EQ(layer.status(), SessionStatus::unknown);
    layer.start();
    EXPECT_EQ(layer.takeOutput(), nak);
    EXPECT_EQ(layer.status(), SessionStatus::idle);
}

TEST_F(SerialSessionHost, AcknowledgesAGoodFrameAndHandsItOn) {
    host.hears(command);
    EXPECT_EQ(host.says(), ack);
    auto const events = host.events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, Kind::frame);
    EXPECT_EQ(events[0].frame, command);
    EXPECT_EQ(host.layer.status(), SessionStatus::frameNormal);
}

TEST_F(SerialSessionHost, AcknowledgesAFrameThatItDoesNotKnow) {
    host.hears(Frame{FrameType::request, 0xF9, {1, 2, 3}});
    EXPECT_EQ(host.says(), ack);
}

TEST_F(SerialSessionHost, SaysNakToABadChecksum) {
    host.hears(badly(command));
    EXPECT_EQ(host.says(), nak);
    EXPECT_TRUE(host.events().empty());
    EXPECT_EQ(host.layer.status(), SessionStatus::frameChecksumError);
    EXPECT_EQ(host.layer.counters().checksumErrors, 1U);
}

TEST_F(SerialSessionHost, WantsAResetAfterThreeBadChecksumsInARow) {
    host.hears(badly(command));
    host.hears(badly(command));
    EXPECT_TRUE(host.events().empty());
    host.hears(badly(command));
    auto const events = host.events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, Kind::resetNeeded);
}

TEST_F(SerialSessionHost, CountsBadChecksumsAnewAfterAGoodFrame) {
    host.hears(badly(command));
    host.hears(badly(command));
    host.hears(command);
    host.events();
    host.hears(badly(command));
    host.hears(badly(command));
    EXPECT_TRUE(host.events().empty());
}

TEST_F(SerialSessionHost, DropsAFrameThatTakesTooLongWithoutAWord) {
    host.hears({0x01, 0x03, 0x00});
    EXPECT_EQ(host.deadline(), 1500);
    host.at(1500);
    EXPECT_EQ(host.says(), none);
    EXPECT_EQ(host.layer.status(), SessionStatus::frameTimeoutError);
    EXPECT_EQ(host.layer.counters().frameTimeouts, 1U);
    EXPECT_TRUE(host.layer.isQuiet());
}

TEST_F(SerialSessionHost, IgnoresAcknowledgementsThatNobodyWaitsFor) {
    host.hears({0x06, 0x15, 0x18});
    EXPECT_EQ(host.says(), none);
    EXPECT_TRUE(host.events().empty());
    EXPECT_EQ(host.layer.counters().acksReceived, 1U);
    EXPECT_EQ(host.layer.counters().naksReceived, 1U);
    EXPECT_EQ(host.layer.counters().cansReceived, 1U);
}

// ---- host: sending

TEST_F(SerialSessionHost, IsDoneWithTheAcknowledgementWhereNoResponseFollows) {
    auto const number = host.requests(softReset, false);
    EXPECT_EQ(host.says(), softReset.encode());
    host.hears(ack);
    auto const events = host.events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, Kind::delivered);
    EXPECT_EQ(events[0].exchange, number);
    EXPECT_TRUE(host.layer.isQuiet());
}

TEST_F(SerialSessionHost, TakesAnyByteEndingIn6ForTheAcknowledgementOfASoftReset) {
    host.requests(softReset, false);
    host.hears({0x86});
    ASSERT_EQ(host.events().size(), 1U);
    host.requests(getVersion);
    host.hears({0x86});
    host.at(1599);
    EXPECT_TRUE(host.events().empty());
    EXPECT_EQ(host.layer.counters().acksReceived, 1U);
}

TEST_F(SerialSessionHost, GivesTheResponseToTheRequest) {
    auto const number = host.requests(getVersion);
    host.hears(ack);
    EXPECT_TRUE(host.events().empty());
    host.hears(versionIs);
    auto const events = host.events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, Kind::response);
    EXPECT_EQ(events[0].exchange, number);
    EXPECT_EQ(events[0].frame, versionIs);
}

TEST_F(SerialSessionHost, HasOneRequestUnderWay) {
    host.requests(getVersion);
    host.requests(softReset, false);
    EXPECT_EQ(host.says(), getVersion.encode());
    host.hears(ack);
    EXPECT_EQ(host.says(), none);
    host.hears(versionIs);
    auto expected = ack;
    auto const next = softReset.encode();
    expected.insert(expected.end(), next.begin(), next.end());
    EXPECT_EQ(host.says(), expected);
}

TEST_F(SerialSessionHost, WaitsLongerAndLongerBeforeItSendsAgain) {
    auto const number = host.requests(getVersion);
    int const sentAt[] = {0, 1700, 4400, 8100}; // 1,600 to the time-out, then 100, 1,100 and 2,100
    for (int i = 0; i < 4; ++i) {
        host.at(sentAt[i]);
        EXPECT_EQ(host.says(), getVersion.encode()) << i;
        EXPECT_EQ(host.deadline(), sentAt[i] + 1600);
        host.at(sentAt[i] + 1599);
        EXPECT_EQ(host.layer.counters().ackTimeouts, static_cast<std::uint64_t>(i));
        host.at(sentAt[i] + 1600);
        EXPECT_EQ(host.says(), none);
        if (i < 3) {
            host.at(sentAt[i + 1] - 1);
            EXPECT_EQ(host.says(), none);
        }
    }
    auto const events = host.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].kind, Kind::failed);
    EXPECT_EQ(events[0].exchange, number);
    EXPECT_EQ(events[0].failure, SessionFailure::notAcknowledged);
    EXPECT_EQ(events[1].kind, Kind::resetNeeded);
    EXPECT_EQ(host.layer.status(), SessionStatus::frameRetriesFailedError);
    EXPECT_EQ(host.layer.counters().framesSent, 4U);
    EXPECT_EQ(host.layer.counters().retransmissions, 3U);
}

TEST_F(SerialSessionHost, SendsAgain100MillisecondsAfterNakOrCan) {
    for (auto const& refusal : {nak, can}) {
        End end(Side::host);
        end.requests(getVersion);
        end.says();
        end.at(10);
        end.hears(refusal);
        EXPECT_EQ(end.deadline(), 110);
        end.at(109);
        EXPECT_EQ(end.says(), none);
        end.at(110);
        EXPECT_EQ(end.says(), getVersion.encode());
    }
}

TEST_F(SerialSessionHost, ReceivesWhileItWaitsForItsAcknowledgement) {
    host.requests(getVersion);
    host.says();
    host.hears(command);
    EXPECT_EQ(host.says(), ack);
    EXPECT_EQ(host.events().size(), 1U);
    host.hears(can);
    host.at(100);
    EXPECT_EQ(host.says(), getVersion.encode());
    host.hears(ack);
    host.hears(versionIs);
    EXPECT_EQ(host.events().size(), 1U);
}

TEST_F(SerialSessionHost, TakesNoResponseBeforeTheAcknowledgement) {
    host.requests(getVersion);
    host.says();
    host.hears(versionIs);
    EXPECT_EQ(host.says(), ack);
    EXPECT_TRUE(host.events().empty());
    EXPECT_EQ(host.layer.counters().strayResponses, 1U);
    host.hears(ack);
    host.hears(versionIs);
    EXPECT_EQ(host.events().size(), 1U);
}

TEST_F(SerialSessionHost, TakesNoResponseOfAnotherFunction) {
    host.requests(getVersion);
    host.hears(ack);
    host.hears(Frame{FrameType::response, 0x20, {}});
    EXPECT_TRUE(host.events().empty());
    host.hears(versionIs);
    EXPECT_EQ(host.events().size(), 1U);
}

TEST_F(SerialSessionHost, AcknowledgesARepeatedResponseAndPassesItOver) {
    host.requests(getVersion);
    host.hears(ack);
    host.hears(versionIs);
    host.events();
    host.says();
    host.hears(versionIs);
    EXPECT_EQ(host.says(), ack);
    EXPECT_TRUE(host.events().empty());
}

TEST_F(SerialSessionHost, KeepsWhatComesBetweenAcknowledgementAndResponseForAfterwards) {
    host.requests(getVersion);
    host.hears(ack);
    host.hears(command);
    EXPECT_TRUE(host.events().empty());
    host.hears(versionIs);
    auto const events = host.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].kind, Kind::response);
    EXPECT_EQ(events[1].kind, Kind::frame);
    EXPECT_EQ(events[1].frame, command);
}

TEST_F(SerialSessionHost, KeepsABoundedNumberOfThem) {
    host.requests(getVersion);
    host.hears(ack);
    for (std::size_t i = 0; i < limits::heldFrames + 2; ++i) { host.hears(command); }
    host.hears(versionIs);
    EXPECT_EQ(host.events().size(), limits::heldFrames + 1);
    EXPECT_EQ(host.layer.counters().lostFrames, 2U);
}

TEST_F(SerialSessionHost, GivesUpAResponseAfterTenSeconds) {
    auto const number = host.requests(getVersion);
    host.at(50);
    host.hears(ack);
    EXPECT_EQ(host.deadline(), 10050);
    host.hears(command);
    host.at(10049);
    EXPECT_TRUE(host.events().empty());
    host.at(10050);
    auto const events = host.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].exchange, number);
    EXPECT_EQ(events[0].failure, SessionFailure::noResponse);
    EXPECT_EQ(events[1].kind, Kind::frame);
    EXPECT_EQ(host.layer.counters().responseTimeouts, 1U);
}

TEST_F(SerialSessionHost, LetsTheLineSettleAfterALateAcknowledgement) {
    host.requests(getVersion);
    host.requests(softReset, false);
    host.at(1600);
    host.at(1700);
    host.says();
    host.hears(ack); // of the first or of the second transmission: nobody knows
    host.hears(versionIs);
    EXPECT_EQ(host.says(), ack);
    host.hears(ack);
    host.hears(versionIs);
    EXPECT_EQ(host.says(), ack);
    host.at(3299);
    EXPECT_EQ(host.says(), none);
    host.at(3300);
    EXPECT_EQ(host.says(), softReset.encode());
    EXPECT_EQ(host.events().size(), 1U);
}

TEST_F(SerialSessionHost, CountsADoubledAcknowledgementOnce) {
    host.requests(softReset, false);
    host.requests(getVersion);
    host.says();
    host.hears({0x06, 0x06});
    EXPECT_EQ(host.says(), getVersion.encode());
    EXPECT_EQ(host.deadline(), 1600); // still without its own acknowledgement
    EXPECT_EQ(host.events().size(), 1U);
}

TEST_F(SerialSessionHost, RefusesWhatItsQueueCannotHold) {
    for (std::size_t i = 0; i <= limits::hostQueue; ++i) { EXPECT_NE(host.requests(getVersion), 0U); }
    EXPECT_EQ(host.requests(getVersion), 0U);
    EXPECT_EQ(host.layer.counters().lostFrames, 1U);
}

TEST_F(SerialSessionHost, FailsEverythingWhenItIsReset) {
    auto const first = host.requests(getVersion);
    auto const second = host.requests(softReset, false);
    host.hears(ack);
    host.hears(command);
    host.layer.reset();
    auto const events = host.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].exchange, first);
    EXPECT_EQ(events[0].failure, SessionFailure::closed);
    EXPECT_EQ(events[1].exchange, second);
    EXPECT_TRUE(host.layer.isQuiet());
    EXPECT_EQ(host.layer.deadline(), std::nullopt);
    EXPECT_EQ(host.says(), none);
}

TEST_F(SerialSessionHost, TellsEveryFrameToItsTrace) {
    std::vector<std::string> seen;
    host.layer.trace([&seen](Side sender, Frame const& frame) {
        seen.push_back((sender == Side::host ? "host " : "module ") + std::to_string(frame.function));
    });
    host.requests(getVersion);
    host.hears(ack);
    host.hears(versionIs);
    host.hears(badly(command));
    EXPECT_EQ(seen, (std::vector<std::string>{"host 21", "module 21"}));
}

// ---- module

TEST_F(SerialSessionModule, SaysNothingWhenItStarts) {
    SessionLayer layer(Side::module);
    layer.start();
    EXPECT_EQ(layer.takeOutput(), none);
}

TEST_F(SerialSessionModule, AcknowledgesARequestAndHandsItOn) {
    module.hears(getVersion);
    EXPECT_EQ(module.says(), ack);
    ASSERT_EQ(module.events().size(), 1U);
}

TEST_F(SerialSessionModule, SaysNakToABadChecksumWhileIdle) {
    for (int i = 0; i < 4; ++i) { module.hears(badly(getVersion)); }
    EXPECT_EQ(module.says(), (Bytes{0x15, 0x15, 0x15, 0x15}));
    EXPECT_TRUE(module.events().empty());
}

TEST_F(SerialSessionModule, SaysCanToAFrameWhileItWaitsForAnAcknowledgement) {
    module.layer.send(versionIs, Urgency::response, module.now);
    module.says();
    module.hears(getVersion);
    EXPECT_EQ(module.says(), can);
    module.hears(badly(getVersion));
    EXPECT_EQ(module.says(), can);
    EXPECT_TRUE(module.events().empty());
}

TEST_F(SerialSessionModule, PassesOverCanFromTheHost) {
    module.layer.send(versionIs, Urgency::response, module.now);
    module.says();
    module.hears(can);
    EXPECT_EQ(module.says(), none);
    EXPECT_EQ(module.deadline(), 1500);
}

TEST_F(SerialSessionModule, SendsAgainAtOnceFourTimesInAllAndThenDropsTheFrame) {
    auto const number = module.layer.send(versionIs, Urgency::response, module.now);
    for (int i = 0; i < 4; ++i) {
        module.at(i * 1500);
        EXPECT_EQ(module.says(), versionIs.encode()) << i;
        module.at(i * 1500 + 1499);
        EXPECT_EQ(module.says(), none);
    }
    module.at(6000);
    EXPECT_EQ(module.says(), none);
    auto const events = module.events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].exchange, number);
    EXPECT_EQ(events[0].failure, SessionFailure::notAcknowledged);
    EXPECT_TRUE(module.layer.isQuiet());
}

TEST_F(SerialSessionModule, SendsAgainAtOnceAfterNak) {
    module.layer.send(versionIs, Urgency::response, module.now);
    module.says();
    module.hears(nak);
    EXPECT_EQ(module.says(), versionIs.encode());
}

TEST_F(SerialSessionModule, SendsResponsesBeforeCallbacksBeforeReports) {
    module.layer.send(command, Urgency::report, module.now);
    module.layer.send(command, Urgency::report, module.now);
    module.layer.send(softReset, Urgency::callback, module.now);
    module.layer.send(versionIs, Urgency::response, module.now);
    for (auto const& frame : {command, versionIs, softReset, command}) {
        EXPECT_EQ(module.says(), frame.encode());
        module.hears(ack);
    }
    EXPECT_EQ(module.events().size(), 4U);
    EXPECT_TRUE(module.layer.isQuiet());
}

TEST_F(SerialSessionModule, LosesWhatItsQueueCannotHold) {
    for (std::size_t i = 0; i <= limits::moduleQueue; ++i) {
        EXPECT_NE(module.layer.send(command, Urgency::report, module.now), 0U);
    }
    EXPECT_EQ(module.layer.send(command, Urgency::report, module.now), 0U);
    EXPECT_EQ(module.layer.counters().lostFrames, 1U);
}

TEST_F(SerialSessionModule, DropsAFrameThatPausesFor150Milliseconds) {
    module.hears({0x01, 0x03});
    EXPECT_EQ(module.deadline(), 150);
    module.at(150);
    EXPECT_EQ(module.says(), none);
    module.hears(getVersion);
    EXPECT_EQ(module.says(), ack);
}

TEST_F(SerialSessionModule, TakesOtherTimesFromItsHost) {
    module.layer.moduleTimes(Milliseconds(100), Milliseconds(40));
    module.layer.send(versionIs, Urgency::response, module.now);
    module.says();
    EXPECT_EQ(module.deadline(), 100);
    module.hears({0x01});
    EXPECT_EQ(module.deadline(), 40);
    module.at(100);
    EXPECT_EQ(module.says(), versionIs.encode());
}

TEST_F(SerialSessionModule, TakesAResponseOfAHostForAFrameLikeAnyOther) {
    module.hears(versionIs);
    EXPECT_EQ(module.says(), ack);
    EXPECT_EQ(module.events().size(), 1U);
}

} // namespace zorv::serialapi
