// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/FrameReader.h"

#include <new>

namespace zorv::serialapi {

std::optional<FrameReader::Item> FrameReader::push(Byte byte, TimePoint now) {
    tick(now);
    if (bytes_.empty()) { return start(byte, now); }
    bytes_.push_back(byte);
    if (timing_.betweenBytes > Milliseconds::zero()) { deadline_ = now + timing_.betweenBytes; }
    if (isImpossible()) {
        giveUp();
        return std::nullopt;
    }
    if (bytes_.size() > 1 && bytes_.size() == bytes_[1] + std::size_t{2}) { return finish(); }
    return std::nullopt;
}

std::optional<FrameReader::Item> FrameReader::start(Byte byte, TimePoint now) {
    switch (byte) {
    case control::ack: return Item{Kind::ack, {}};
    case control::nak: return Item{Kind::nak, {}};
    case control::can: return Item{Kind::can, {}};
    case control::startOfFrame:
        bytes_.push_back(byte);
        deadline_.reset();
        if (timing_.whole > Milliseconds::zero()) { deadline_ = now + timing_.whole; }
        if (timing_.betweenBytes > Milliseconds::zero()) { deadline_ = now + timing_.betweenBytes; }
        return std::nullopt;
    default: ++skipped_; return std::nullopt;
    }
}

std::optional<FrameReader::Item> FrameReader::finish() {
    std::string why;
    std::optional<Frame> frame;
    try {
        frame = Frame::decode(bytes_, why);
    } catch (std::bad_alloc const&) {
        giveUp(); // what comes next is no part of it
        throw;
    }
    if (!frame) {
        giveUp();
        return Item{Kind::badChecksum, {}}; // all else was looked at byte by byte
    }
    reset();
    return Item{Kind::data, std::move(*frame)};
}

bool FrameReader::isImpossible() const noexcept {
    if (bytes_.size() == 2) {
        return bytes_[1] < limits::smallestLength || bytes_[1] + std::size_t{2} > timing_.largest;
    }
    return bytes_.size() == 3 && bytes_[2] > static_cast<Byte>(FrameType::response);
}

bool FrameReader::tick(TimePoint now) noexcept {
    if (!deadline_ || now < *deadline_) { return false; }
    ++timeouts_;
    giveUp();
    return true;
}

void FrameReader::giveUp() noexcept {
    skipped_ += bytes_.size();
    reset();
}

void FrameReader::reset() noexcept {
    bytes_.clear();
    deadline_.reset();
}

} // namespace zorv::serialapi
