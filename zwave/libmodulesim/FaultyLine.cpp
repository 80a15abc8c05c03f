// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/FaultyLineImpl.h"

#include "zwave/libmodulesim/CoreImpl.h"
#include "zwave/libserialapi/Frame.h"

#include <utility>

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr std::size_t functionAt = 3; // of a data frame: SOF, LEN, type, function
constexpr Byte byPower = 0;
constexpr Byte byWatchdog = 3;

bool isFrame(Bytes const& piece) { return piece.size() > functionAt && piece[0] == api::control::startOfFrame; }

TimePoint endOf(Fault const& fault, TimePoint now) { return fault.lasts ? now + *fault.lasts : TimePoint::max(); }

/// The sooner of two times of which either may not be.
std::optional<TimePoint> sooner(std::optional<TimePoint> a, std::optional<TimePoint> b) {
    if (!a || (b && *b < *a)) { return b; }
    return a;
}

} // namespace

// ---- frames

std::vector<Bytes> FrameCutter::cut(Bytes const& bytes, TimePoint now) {
    rest_.insert(rest_.end(), bytes.begin(), bytes.end());
    lastByte_ = now;
    std::vector<Bytes> pieces;
    auto begin = rest_.begin();
    while (begin != rest_.end()) {
        std::ptrdiff_t size = 1;
        if (*begin == api::control::startOfFrame) {
            if (rest_.end() - begin < 2) { break; }
            auto const length = begin[1];
            if (length >= api::limits::smallestLength) { size = length + 2; }
            if (rest_.end() - begin < size) { break; }
        }
        pieces.emplace_back(begin, begin + size);
        begin += size;
    }
    rest_.erase(rest_.begin(), begin);
    return pieces;
}

Bytes FrameCutter::takeLate(TimePoint now) {
    if (rest_.empty() || now < lastByte_ + api::limits::byteTime) { return {}; }
    return std::exchange(rest_, {});
}

std::optional<TimePoint> FrameCutter::deadline() const noexcept {
    if (rest_.empty()) { return std::nullopt; }
    return lastByte_ + api::limits::byteTime;
}

// ---- the line

FaultyLine::FaultyLine(Core& core) : core_(core), random_(core.described.seed) {}

void FaultyLine::receive(Bytes const& bytes, TimePoint now) {
    tick(now);
    bool const hasFrames = !core_.isInLoader(); // which has faults of its own
    if (core_.faults.isEmpty() || (!hasFrames && !hungUntil_ && !awayUntil_)) {
        core_.receive(bytes, now);
        return collect(now);
    }
    if (hungUntil_ || awayUntil_) { return; }
    for (auto& piece : fromHost_.cut(bytes, now)) { take(std::move(piece), now); }
    deliver(now);
}

void FaultyLine::tick(TimePoint now) {
    goOn(now);
    if (!hungUntil_) { core_.tick(now); }
    collect(now);
    while (auto const* const fault = core_.faults.takeDue(now)) { strike(*fault, now); }
    if (auto late = fromHost_.takeLate(now); !late.empty()) { toModule_.push_back({std::move(late), now}); }
    deliver(now);
}

Bytes FaultyLine::takeOutput() { return std::exchange(output_, {}); }

std::optional<TimePoint> FaultyLine::deadline() const noexcept {
    auto next = hungUntil_ ? hungUntil_ : core_.deadline();
    if (next == TimePoint::max()) { next.reset(); }
    if (awayUntil_ && *awayUntil_ != TimePoint::max()) { next = sooner(next, awayUntil_); }
    if (!toModule_.empty()) { next = sooner(next, toModule_.front().due); }
    if (!toHost_.empty()) { next = sooner(next, toHost_.front().due); }
    next = sooner(next, fromHost_.deadline());
    return sooner(next, core_.faults.deadline());
}

/// A piece of what the host has sent.
void FaultyLine::take(Bytes piece, TimePoint now) {
    using Kind = Fault::Kind;
    constexpr auto way = Fault::Direction::toModule;
    if (hungUntil_ || awayUntil_) { return; }
    if (!isFrame(piece)) { return toModule_.push_back({std::move(piece), now}); }
    auto& faults = core_.faults;
    auto const function = piece[functionAt];
    if (strikeModule(function, now)) { return; }
    if (faults.hit(Kind::loseFrame, way, function, now) != nullptr) { return; }
    if (faults.hit(Kind::collide, way, function, now) != nullptr) {
        return toHost_.push_back({{api::control::can}, now});
    }
    if (faults.hit(Kind::corruptFrame, way, function, now) != nullptr) { spoil(piece); }
    auto const* const delay = faults.hit(Kind::delayFrame, way, function, now);
    bool const isAckLost = faults.hit(Kind::withholdAck, way, function, now) != nullptr;
    toModule_.push_back({std::move(piece), delay != nullptr ? endOf(*delay, now) : now, isAckLost});
}

/// Whether something happens to the module with a frame of the host, which then is not taken.
bool FaultyLine::strikeModule(Byte function, TimePoint now) {
    for (auto const kind : {Fault::Kind::hang, Fault::Kind::restart, Fault::Kind::vanish}) {
        if (auto const* const fault = core_.faults.hit(kind, Fault::Direction::toModule, function, now)) {
            strike(*fault, now);
            return true;
        }
    }
    return false;
}

void FaultyLine::strike(Fault const& fault, TimePoint now) {
    fromHost_.forget();
    toModule_.clear();
    acksToLose_ = 0;
    if (fault.kind == Fault::Kind::restart) { return core_.restart(byWatchdog); }
    toHost_.clear();
    (fault.kind == Fault::Kind::hang ? hungUntil_ : awayUntil_) = endOf(fault, now);
    if (awayUntil_) { output_.clear(); }
}

/// Ends what has lasted long enough.
void FaultyLine::goOn(TimePoint now) {
    if (hungUntil_ && *hungUntil_ <= now) { hungUntil_.reset(); }
    if (!awayUntil_ || *awayUntil_ > now) { return; }
    core_.tick(now);
    core_.takeOutput();
    awayUntil_.reset();
    core_.restart(byPower);
}

void FaultyLine::spoil(Bytes& frame) {
    auto const at = 1 + static_cast<std::size_t>(random_()) % (frame.size() - 1);
    frame[at] = static_cast<Byte>(frame[at] ^ (1U << (random_() % 8)));
}

void FaultyLine::deliver(TimePoint now) {
    while (!toModule_.empty() && toModule_.front().due <= now) {
        auto const piece = std::move(toModule_.front());
        toModule_.pop_front();
        if (piece.isAckLost) { ++acksToLose_; }
        core_.receive(piece.bytes, now);
        collect(now);
    }
    collect(now);
}

/// Takes what the module says, and hands on what is due.
void FaultyLine::collect(TimePoint now) {
    using Kind = Fault::Kind;
    constexpr auto way = Fault::Direction::toHost;
    auto& faults = core_.faults;
    auto const said = core_.takeOutput();
    if (awayUntil_) { return; }
    for (auto& piece : fromModule_.cut(said, now)) {
        if (acksToLose_ > 0 && piece == Bytes{api::control::ack}) {
            --acksToLose_;
            continue;
        }
        Piece next{std::move(piece), now};
        if (isFrame(next.bytes)) {
            auto const function = next.bytes[functionAt];
            if (faults.hit(Kind::loseFrame, way, function, now) != nullptr) { continue; }
            if (faults.hit(Kind::corruptFrame, way, function, now) != nullptr) { spoil(next.bytes); }
            if (auto const* const delay = faults.hit(Kind::delayFrame, way, function, now)) {
                next.due = endOf(*delay, now);
            }
        }
        toHost_.push_back(std::move(next));
    }
    while (!toHost_.empty() && toHost_.front().due <= now) {
        auto const& bytes = toHost_.front().bytes;
        output_.insert(output_.end(), bytes.begin(), bytes.end());
        toHost_.pop_front();
    }
}

} // namespace zorv::modulesim
