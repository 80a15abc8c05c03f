// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "zwave/libserialapi/Frame.h"
#include "zwave/libserialapi/FrameReader.h"
#include "zwave/libserialapi/Limits.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace zorv::serialapi {

/// The two ends of the line differ in their time-outs and in what they do about a frame that was not acknowledged.
enum class Side { host, module };

/// State of the link, or of its last frame.
enum class SessionStatus {
    unknown, ///< not started
    idle,    ///< started; nothing was exchanged yet
    frameNormal,
    frameChecksumError,
    frameRetriesFailedError,
    frameTimeoutError
};

/// Who goes first among the frames that a module has to send; a host has one queue.
enum class Urgency { response, callback, report };

enum class SessionFailure {
    none,
    notAcknowledged, ///< after all retransmissions
    noResponse,      ///< acknowledged, but nothing came of it
    closed           ///< the layer was reset
};

/// What happened on the line.
struct SessionEvent {
    enum class Kind {
        delivered,  ///< the other side has the frame, and no response is awaited
        response,   ///< the awaited one, in `frame`
        failed,     ///< neither of the two will come; `failure` says why
        frame,      ///< a frame of the other side, in `frame`
        resetNeeded ///< the module does not get on with us and needs a reset
    };

    Kind kind = Kind::frame;
    std::uint32_t exchange = 0; ///< what send() gave
    Frame frame = {};
    SessionFailure failure = SessionFailure::none;
};

struct SessionCounters {
    std::uint64_t framesSent = 0; ///< retransmissions too
    std::uint64_t framesReceived = 0;
    std::uint64_t acksSent = 0;
    std::uint64_t acksReceived = 0;
    std::uint64_t naksSent = 0;
    std::uint64_t naksReceived = 0;
    std::uint64_t cansSent = 0;
    std::uint64_t cansReceived = 0;
    std::uint64_t retransmissions = 0;
    std::uint64_t checksumErrors = 0;
    std::uint64_t ackTimeouts = 0;
    std::uint64_t responseTimeouts = 0;
    std::uint64_t frameTimeouts = 0;
    std::uint64_t strayResponses = 0; ///< nobody waited for them
    std::uint64_t lostFrames = 0;     ///< there was no room for them
    std::uint64_t skippedBytes = 0;
};

/// The rules of the line: one frame under way, its acknowledgement, retransmissions, and one request that awaits its
/// response.
///
/// A value without a port, a clock or a thread: bytes and the time go in, bytes, events and the next deadline come out.
/// After each call, write takeOutput() to the port, look at takeEvents(), and call tick() when deadline() has come.
///
/// Where memory runs out, std::bad_alloc: a request was not taken then, and what was received counts as lost on the line,
/// whose rules have it sent again. A trace that throws is not heard of.
class ZORV_EXPORT SessionLayer {
public:
    using Trace = std::function<void(Side sender, Frame const& frame)>;

    explicit SessionLayer(Side side);

    /// Begins. A host says NAK, so that a module which still waits for an acknowledgement repeats or drops its frame.
    void start();

    /// Queues a request of a host; gives its number for the events, or 0 where the queue is full.
    std::uint32_t request(Frame frame, bool awaitsResponse, TimePoint now,
                          Milliseconds responseTime = limits::responseTime);

    /// Queues a frame of a module; 0 where the queue is full, in which case the frame is lost.
    std::uint32_t send(Frame frame, Urgency urgency, TimePoint now);

    void receive(Bytes const& bytes, TimePoint now);
    void tick(TimePoint now);

    Bytes takeOutput();
    std::vector<SessionEvent> takeEvents();
    std::optional<SessionEvent> takeEvent(); ///< the first of them
    bool hasEvents() const noexcept { return !events_.empty(); }
    std::optional<TimePoint> deadline() const noexcept;

    /// Forgets everything; what was queued or under way fails with `closed`.
    void reset();

    /// Other time-outs for a module, as its host may ask for.
    void moduleTimes(Milliseconds ackTime, Milliseconds byteTime) noexcept;

    /// Has every data frame told that is sent or was received well.
    void trace(Trace trace) { trace_ = std::move(trace); }

    SessionStatus status() const noexcept { return status_; }
    SessionCounters counters() const noexcept;

    /// Nothing is queued, under way or held.
    bool isQuiet() const noexcept;

private:
    enum class State { idle, awaitingAck, pausing, awaitingResponse, settling };

    struct Exchange {
        std::uint32_t number = 0;
        Frame frame;
        bool awaitsResponse = false;
        Milliseconds responseTime{};
        Bytes bytes = {}; ///< of the frame
        unsigned int retransmissions = 0;
        bool ackWasLate = false;
        bool isDelivered = false; ///< but there was no memory to say so
    };

    std::uint32_t queue(Exchange exchange, std::size_t urgency, std::size_t room, TimePoint now);
    void sendNext(TimePoint now);
    void transmit(TimePoint now);
    void retransmit(TimePoint now);
    void enter(State state, std::optional<TimePoint> deadline = std::nullopt) noexcept;
    void endExchange(SessionEvent::Kind kind, SessionFailure failure, Frame frame, bool settle, TimePoint now);
    void onByte(Byte byte, TimePoint now);
    void onData(Frame frame, TimePoint now);
    void onResponse(Frame frame, TimePoint now);
    void onBadChecksum();
    void onAck(TimePoint now);
    void delivered(TimePoint now);
    void onStateTimeout(TimePoint now);
    void show(Side sender, Frame const& frame) const noexcept;
    void put(Byte controlByte, std::uint64_t& counter);

    Side side_;
    FrameReader reader_;
    Milliseconds ackTime_;
    State state_ = State::idle;
    std::optional<TimePoint> stateDeadline_;
    Exchange current_;
    std::array<std::deque<Exchange>, 3> queues_; ///< by urgency
    std::deque<Frame> held_;                     ///< came between the acknowledgement and the response
    Bytes output_;
    std::vector<SessionEvent> events_;
    SessionStatus status_ = SessionStatus::unknown;
    SessionCounters counters_;
    std::uint32_t lastNumber_ = 0;
    std::size_t badInARow_ = 0;
    Trace trace_;
};

} // namespace zorv::serialapi
