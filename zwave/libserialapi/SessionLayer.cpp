// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/SessionLayer.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace zorv::serialapi {

namespace {

constexpr Byte softReset = 0x08;

/// Some modules spoil the high half of the byte by which they acknowledge a soft reset.
bool isSpoiltAck(Byte byte) { return (byte & 0x0FU) == control::ack; }

/// Makes room for more, so that nothing fails half way: what throws has changed nothing that the rules of the line do not
/// mend, as they mend what is lost on it.
template <class T> void reserve(std::vector<T>& items, std::size_t more) {
    auto const size = items.size() + more;
    if (size > items.capacity()) { items.reserve(std::max(size, 2 * items.capacity())); }
}

} // namespace

SessionLayer::SessionLayer(Side side)
    : side_(side),
      reader_(side == Side::host ? FrameTiming::host() : FrameTiming::module()),
      ackTime_(side == Side::host ? limits::hostAckTime : limits::moduleAckTime) {}

void SessionLayer::start() {
    status_ = SessionStatus::idle;
    if (side_ == Side::host) { put(control::nak, counters_.naksSent); }
}

std::uint32_t SessionLayer::request(Frame frame, bool awaitsResponse, TimePoint now, Milliseconds responseTime) {
    return queue({0, std::move(frame), awaitsResponse, responseTime}, 0, limits::hostQueue, now);
}

std::uint32_t SessionLayer::send(Frame frame, Urgency urgency, TimePoint now) {
    return queue({0, std::move(frame)}, static_cast<std::size_t>(urgency), limits::moduleQueue, now);
}

std::uint32_t SessionLayer::queue(Exchange exchange, std::size_t urgency, std::size_t room, TimePoint now) {
    auto& waiting = queues_.at(urgency);
    if (waiting.size() >= room) {
        ++counters_.lostFrames;
        return 0;
    }
    exchange.bytes = exchange.frame.encode();
    reserve(output_, exchange.bytes.size());
    waiting.push_back(std::move(exchange));
    if (++lastNumber_ == 0) { ++lastNumber_; }
    waiting.back().number = lastNumber_;
    sendNext(now);
    return lastNumber_;
}

void SessionLayer::receive(Bytes const& bytes, TimePoint now) {
    tick(now);
    for (auto const byte : bytes) { onByte(byte, now); }
    // Only now: an acknowledgement that was doubled on the line must not count for the next frame.
    sendNext(now);
}

void SessionLayer::tick(TimePoint now) {
    if (reader_.tick(now)) {
        ++counters_.frameTimeouts;
        status_ = SessionStatus::frameTimeoutError;
    }
    if (stateDeadline_ && now >= *stateDeadline_) { onStateTimeout(now); }
    sendNext(now);
}

void SessionLayer::onStateTimeout(TimePoint now) {
    switch (state_) {
    case State::idle: return;
    case State::settling: return enter(State::idle);
    case State::pausing: return transmit(now);
    case State::awaitingAck:
        if (current_.isDelivered) { return delivered(now); }
        ++counters_.ackTimeouts;
        current_.ackWasLate = true;
        return retransmit(now);
    case State::awaitingResponse:
        ++counters_.responseTimeouts;
        status_ = SessionStatus::frameTimeoutError;
        return endExchange(SessionEvent::Kind::failed, SessionFailure::noResponse, {}, true, now);
    }
}

// ---- sending

void SessionLayer::sendNext(TimePoint now) {
    if (state_ != State::idle) { return; }
    for (auto& waiting : queues_) {
        if (waiting.empty()) { continue; }
        reserve(output_, waiting.front().bytes.size());
        current_ = std::move(waiting.front());
        waiting.pop_front();
        return transmit(now);
    }
}

void SessionLayer::transmit(TimePoint now) {
    output_.insert(output_.end(), current_.bytes.begin(), current_.bytes.end());
    ++counters_.framesSent;
    enter(State::awaitingAck, now + ackTime_);
    show(side_, current_.frame);
}

/// A host waits longer and longer before it tries again, a module does so at once.
void SessionLayer::retransmit(TimePoint now) {
    if (current_.retransmissions == limits::retransmissions) {
        reserve(events_, held_.size() + 2);
        status_ = SessionStatus::frameRetriesFailedError;
        bool const settle = side_ == Side::host;
        endExchange(SessionEvent::Kind::failed, SessionFailure::notAcknowledged, {}, settle, now);
        if (side_ == Side::host) { events_.push_back({SessionEvent::Kind::resetNeeded}); }
        return;
    }
    auto const pause = limits::firstPause + current_.retransmissions * limits::pauseGrowth;
    reserve(output_, current_.bytes.size());
    ++current_.retransmissions;
    ++counters_.retransmissions;
    if (side_ == Side::module) { return transmit(now); }
    enter(State::pausing, now + pause);
}

void SessionLayer::enter(State state, std::optional<TimePoint> deadline) noexcept {
    state_ = state;
    stateDeadline_ = deadline;
}

/// Where an answer may still be under way, as after a late acknowledgement, the next frame waits: there are no sequence
/// numbers, and that answer would pass for the next one's.
void SessionLayer::endExchange(SessionEvent::Kind kind, SessionFailure failure, Frame frame, bool settle,
                               TimePoint now) {
    reserve(events_, held_.size() + 1);
    events_.push_back({kind, current_.number, std::move(frame), failure});
    for (auto& held : held_) { events_.push_back({SessionEvent::Kind::frame, 0, std::move(held)}); }
    held_.clear();
    current_ = {};
    if (settle) { return enter(State::settling, now + limits::settleTime); }
    enter(State::idle);
}

// ---- receiving

void SessionLayer::onByte(Byte byte, TimePoint now) {
    bool const afterSoftReset = side_ == Side::host && state_ == State::awaitingAck &&
                                current_.frame.function == softReset && !reader_.isInsideFrame();
    if (afterSoftReset && isSpoiltAck(byte)) { return onAck(now); }

    auto item = reader_.push(byte, now);
    if (!item) { return; }
    switch (item->kind) {
    case FrameReader::Kind::data: return onData(std::move(item->frame), now);
    case FrameReader::Kind::badChecksum: return onBadChecksum();
    case FrameReader::Kind::ack: return onAck(now);
    case FrameReader::Kind::nak:
        ++counters_.naksReceived;
        if (state_ == State::awaitingAck) { retransmit(now); }
        return;
    case FrameReader::Kind::can:
        ++counters_.cansReceived;
        if (state_ == State::awaitingAck && side_ == Side::host) { retransmit(now); }
        return;
    }
}

void SessionLayer::onData(Frame frame, TimePoint now) {
    if (side_ == Side::module && state_ == State::awaitingAck) { return put(control::can, counters_.cansSent); }
    // What is acknowledged does not come again, so there has to be room for it before.
    reserve(events_, held_.size() + 1);
    reserve(output_, 1);
    bool const isResponse = side_ == Side::host && frame.type == FrameType::response;
    bool const isHeld = !isResponse && state_ == State::awaitingResponse && held_.size() < limits::heldFrames;
    if (isHeld) { held_.push_back(frame); }
    put(control::ack, counters_.acksSent);
    ++counters_.framesReceived;
    badInARow_ = 0;
    status_ = SessionStatus::frameNormal;
    show(side_ == Side::host ? Side::module : Side::host, frame);

    if (isResponse) { return onResponse(std::move(frame), now); }
    if (state_ != State::awaitingResponse) {
        events_.push_back({SessionEvent::Kind::frame, 0, std::move(frame)});
    } else if (!isHeld) {
        ++counters_.lostFrames;
    }
}

/// A response before the acknowledgement of the request belongs to an older request.
void SessionLayer::onResponse(Frame frame, TimePoint now) {
    if (state_ != State::awaitingResponse || frame.function != current_.frame.function) {
        ++counters_.strayResponses;
        return;
    }
    endExchange(SessionEvent::Kind::response, SessionFailure::none, std::move(frame), current_.ackWasLate, now);
}

void SessionLayer::onBadChecksum() {
    if (side_ == Side::module && state_ == State::awaitingAck) { return put(control::can, counters_.cansSent); }
    reserve(events_, 1);
    put(control::nak, counters_.naksSent);
    ++counters_.checksumErrors;
    status_ = SessionStatus::frameChecksumError;
    if (++badInARow_ < limits::badChecksumsBeforeReset) { return; }
    badInARow_ = 0;
    if (side_ == Side::host) { events_.push_back({SessionEvent::Kind::resetNeeded}); }
}

void SessionLayer::onAck(TimePoint now) {
    ++counters_.acksReceived;
    if (state_ != State::awaitingAck) { return; }
    status_ = SessionStatus::frameNormal;
    if (current_.awaitsResponse) { return enter(State::awaitingResponse, now + current_.responseTime); }
    delivered(now);
}

void SessionLayer::delivered(TimePoint now) {
    current_.isDelivered = true;
    stateDeadline_ = now;
    endExchange(SessionEvent::Kind::delivered, SessionFailure::none, {}, current_.ackWasLate && side_ == Side::host,
                now);
}

/// A trace that fails costs what it would have told, not the frame.
void SessionLayer::show(Side sender, Frame const& frame) const noexcept {
    if (!trace_) { return; }
    try {
        trace_(sender, frame);
    } catch (std::exception const&) {} // NOLINT(bugprone-empty-catch): the line goes on
}

void SessionLayer::put(Byte controlByte, std::uint64_t& counter) {
    output_.push_back(controlByte);
    ++counter;
}

// ---- what the owner asks

Bytes SessionLayer::takeOutput() { return std::exchange(output_, {}); }

std::vector<SessionEvent> SessionLayer::takeEvents() { return std::exchange(events_, {}); }

std::optional<SessionEvent> SessionLayer::takeEvent() {
    if (events_.empty()) { return std::nullopt; }
    std::optional<SessionEvent> first(std::move(events_.front()));
    events_.erase(events_.begin());
    return first;
}

std::optional<TimePoint> SessionLayer::deadline() const noexcept {
    auto const reading = reader_.deadline();
    if (!reading || (stateDeadline_ && *stateDeadline_ < *reading)) { return stateDeadline_; }
    return reading;
}

void SessionLayer::reset() {
    std::size_t open = 1;
    for (auto const& waiting : queues_) { open += waiting.size(); }
    reserve(events_, open);
    auto const fail = [this](Exchange const& exchange) {
        events_.push_back({SessionEvent::Kind::failed, exchange.number, {}, SessionFailure::closed});
    };
    if (current_.number != 0) { fail(current_); }
    for (auto& waiting : queues_) {
        for (auto const& exchange : waiting) { fail(exchange); }
        waiting.clear();
    }
    current_ = {};
    held_.clear();
    output_.clear();
    reader_.reset();
    badInARow_ = 0;
    enter(State::idle);
    status_ = SessionStatus::unknown;
}

void SessionLayer::moduleTimes(Milliseconds ackTime, Milliseconds byteTime) noexcept {
    ackTime_ = ackTime;
    auto timing = reader_.timing();
    timing.betweenBytes = byteTime;
    reader_.timing(timing);
}

SessionCounters SessionLayer::counters() const noexcept {
    auto counters = counters_;
    counters.skippedBytes = reader_.skippedBytes();
    return counters;
}

bool SessionLayer::isQuiet() const noexcept {
    for (auto const& waiting : queues_) {
        if (!waiting.empty()) { return false; }
    }
    return state_ == State::idle && held_.empty() && !reader_.isInsideFrame();
}

} // namespace zorv::serialapi
