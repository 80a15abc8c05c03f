// SPDX-License-Identifier: Apache-2.0
#include "zwave/libserialapi/Bootloader.h"

#include "zwave/libserialapi/XmodemBlock.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zorv::serialapi {

namespace {

constexpr Byte anyKey = '\r'; ///< has the menu shown again
constexpr Byte uploadKey = '1';
constexpr Byte runKey = '2';
constexpr char const* prompt = "BL > ";
constexpr std::size_t longestText = 4096;

bool endsWith(std::string const& text, std::string const& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// The number of "error 0x12".
std::optional<std::uint32_t> errorOf(std::string const& text) {
    constexpr char const* start = "error 0x";
    constexpr int hexadecimal = 16;
    auto const at = text.find(start);
    if (at == std::string::npos) { return std::nullopt; }
    return static_cast<std::uint32_t>(
        std::strtoul(text.c_str() + at + std::string(start).size(), nullptr, hexadecimal));
}

} // namespace

void Bootloader::start(TimePoint now) {
    if (image_.empty()) { put(anyKey); } // it has shown its menu long ago
    enter(State::awaitingMenu, limits::loaderMenuTime, now);
}

void Bootloader::receive(Bytes const& bytes, TimePoint now) {
    for (auto const byte : bytes) { onByte(byte, now); }
}

void Bootloader::tick(TimePoint now) {
    if (deadline_ && now >= *deadline_) { onTimeout(now); }
}

Bytes Bootloader::takeOutput() { return std::exchange(output_, {}); }

unsigned int Bootloader::percent() const noexcept {
    constexpr std::size_t whole = 100;
    return image_.empty() ? 0 : static_cast<unsigned int>(std::min(taken_, image_.size()) * whole / image_.size());
}

void Bootloader::cancel(TimePoint now) {
    if (state_ == State::awaitingMenu || state_ == State::awaitingRequest) { breakOff(LoadEnd::cancelled, now); }
}

// ---- what the loader says

void Bootloader::onByte(Byte byte, TimePoint now) {
    switch (state_) {
    case State::idle: return;
    case State::awaitingRequest:
        if (byte == xmodem::withCrc) {
            tries_ = 0;
            return sendBlock(now);
        }
        break;
    case State::sending:
    case State::ending: return onAnswer(byte, now);
    case State::awaitingMenu:
    case State::awaitingVerdict:
    case State::leaving: break;
    }
    // A zero may stand behind the prompt, and in front of an error's digits.
    if (byte == 0) { return; }
    if (text_.size() == longestText) { text_.erase(0, longestText / 2); }
    text_.push_back(static_cast<char>(byte));
    if (endsWith(text_, prompt)) { onPrompt(now); }
}

/// To a block, or to the end of the image. A receiver that asks for the image once more has not got the first block,
/// unless that is still on its way.
void Bootloader::onAnswer(Byte answer, TimePoint now) {
    bool const isAskedAgain = answer == xmodem::withCrc && taken_ == 0 && now >= sent_ + limits::loaderAskTime;
    if (answer == xmodem::nak || isAskedAgain) { return repeat(LoadEnd::notTaken, now); }
    if (answer == xmodem::can) {
        outcome_ = {LoadEnd::refused};
        text_.clear();
        return enter(State::awaitingVerdict, limits::loaderVerdictTime, now);
    }
    if (answer != xmodem::ack) { return; }
    tries_ = 0;
    if (state_ == State::ending) {
        outcome_ = {LoadEnd::done};
        text_.clear();
        return enter(State::awaitingVerdict, limits::loaderVerdictTime, now);
    }
    taken_ += xmodem::dataSize;
    ++number_;
    if (taken_ < image_.size()) { return sendBlock(now); }
    put(xmodem::endOfTransmission);
    enter(State::ending, limits::loaderBlockTime, now);
}

void Bootloader::onPrompt(TimePoint now) {
    if (state_ == State::awaitingMenu) {
        text_.clear();
        if (image_.empty()) {
            outcome_ = {LoadEnd::done};
            return finish();
        }
        put(uploadKey);
        return enter(State::awaitingRequest, limits::loaderMenuTime, now);
    }
    if (state_ == State::awaitingRequest) { return text_.clear(); } // it was asked for twice
    if (state_ == State::awaitingVerdict) { judge(); }
    finish();
}

void Bootloader::judge() {
    outcome_.error = errorOf(text_);
    bool const isComplete = text_.find("upload complete") != std::string::npos;
    if (outcome_.end == LoadEnd::done && (!isComplete || outcome_.error)) { outcome_.end = LoadEnd::refused; }
}

// ---- what it does not say

void Bootloader::onTimeout(TimePoint now) {
    switch (state_) {
    case State::idle: return;
    case State::awaitingMenu:
        if (tries_++ == limits::loaderTries) {
            outcome_ = {LoadEnd::noLoader};
            return finish();
        }
        put(anyKey);
        return enter(State::awaitingMenu, limits::loaderMenuTime, now);
    case State::awaitingRequest: return breakOff(LoadEnd::noUpload, now);
    case State::sending:
    case State::ending: return repeat(LoadEnd::silent, now);
    case State::awaitingVerdict:
        if (outcome_.end == LoadEnd::done && text_.empty()) { outcome_.end = LoadEnd::unfinished; }
        judge();
        return finish();
    case State::leaving: return finish();
    }
}

// ---- sending

void Bootloader::sendBlock(TimePoint now) {
    auto const begin = image_.begin() + static_cast<std::ptrdiff_t>(taken_);
    auto const size = static_cast<std::ptrdiff_t>(std::min(xmodem::dataSize, image_.size() - taken_));
    auto const block = XmodemBlock{number_, Bytes(begin, begin + size)}.encode();
    output_.insert(output_.end(), block.begin(), block.end());
    sent_ = now;
    enter(State::sending, limits::loaderBlockTime, now);
}

void Bootloader::repeat(LoadEnd otherwise, TimePoint now) {
    if (tries_++ == limits::loaderTries) { return breakOff(otherwise, now); }
    if (state_ == State::sending) { return sendBlock(now); }
    put(xmodem::endOfTransmission);
    enter(State::ending, limits::loaderBlockTime, now);
}

/// Two of them, for one alone may be noise. In the menu they are keys that mean nothing.
void Bootloader::breakOff(LoadEnd end, TimePoint now) {
    outcome_ = {end};
    put(xmodem::can);
    put(xmodem::can);
    text_.clear();
    enter(State::leaving, limits::loaderMenuTime, now);
}

/// Whatever became of the upload, the module is to start with what it has.
void Bootloader::finish() {
    if (outcome_.end != LoadEnd::noLoader) { put(runKey); }
    state_ = State::idle;
    deadline_.reset();
    result_ = outcome_;
}

void Bootloader::enter(State state, Milliseconds time, TimePoint now) {
    state_ = state;
    deadline_ = now + time;
}

std::string complaint(LoadResult const& result) {
    auto text = [&result]() -> std::string {
        switch (result.end) {
        case LoadEnd::done: return "the loader has taken the image";
        case LoadEnd::noLoader: return "the module does not enter its loader";
        case LoadEnd::noUpload: return "the loader does not ask for the image";
        case LoadEnd::silent: return "the loader has fallen silent";
        case LoadEnd::notTaken: return "the loader takes a block for damaged again and again";
        case LoadEnd::refused: return "the loader has refused the image";
        case LoadEnd::unfinished: return "the loader does not say what it thinks of the image";
        case LoadEnd::cancelled: return "the upload was cancelled";
        case LoadEnd::closed: return "the link to the loader was closed";
        }
        return "";
    }();
    if (!result.error) { return text; }
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%02X", *result.error);
    return text + " (error " + number.data() + ')';
}

} // namespace zorv::serialapi
