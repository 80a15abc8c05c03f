// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/Bytes.h"
#include "zwave/libserialapi/Frame.h"
#include "zwave/libserialapi/Limits.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace zorv::fuzz {

/// Reads an input as the steps of a story. Where the input ends, every number is 0.
class Script {
public:
    explicit Script(std::string const& input) : input_(input) {}

    bool isOver() const noexcept { return at_ >= input_.size(); }

    serialapi::Byte byte() noexcept {
        return isOver() ? serialapi::Byte{0} : static_cast<serialapi::Byte>(input_[at_++]);
    }
    bool flag() noexcept { return (byte() & 1U) != 0; }
    unsigned int number() noexcept {
        auto const high = byte();
        return high * 256U + byte();
    }
    serialapi::Milliseconds time() noexcept { return serialapi::Milliseconds(number()); }

    /// As many bytes as the next one says, or as there are.
    serialapi::Bytes bytes() {
        auto const size = std::min<std::size_t>(byte(), input_.size() - std::min(at_, input_.size()));
        auto const begin = input_.begin() + static_cast<std::ptrdiff_t>(std::min(at_, input_.size()));
        serialapi::Bytes bytes(begin, begin + static_cast<std::ptrdiff_t>(size));
        at_ += size;
        return bytes;
    }

    /// A frame with a good checksum.
    serialapi::Frame frame() {
        auto const type = flag() ? serialapi::FrameType::response : serialapi::FrameType::request;
        auto const function = byte();
        auto parameters = bytes();
        parameters.resize(std::min(parameters.size(), serialapi::Frame::largestParameters));
        return {type, function, std::move(parameters)};
    }

private:
    std::string const& input_;
    std::size_t at_ = 0;
};

/// Writes what a Script reads, for seeds.
class ScriptWriter {
public:
    ScriptWriter& byte(unsigned int value) {
        text_ += static_cast<char>(value);
        return *this;
    }
    ScriptWriter& number(unsigned int value) { return byte(value / 256).byte(value % 256); }
    ScriptWriter& bytes(serialapi::Bytes const& bytes) {
        auto const size = std::min<std::size_t>(bytes.size(), 255);
        byte(static_cast<unsigned int>(size));
        text_.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        return *this;
    }
    ScriptWriter& frame(serialapi::Frame const& frame) {
        return byte(frame.type == serialapi::FrameType::response ? 1 : 0).byte(frame.function).bytes(frame.parameters);
    }
    std::string const& text() const noexcept { return text_; }

private:
    std::string text_;
};

} // namespace zorv::fuzz
