// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace zorv {

/// A text that grows at its end, made for many short pieces.
///
/// A piece is put into a block, where it costs a few instructions and no call; a block that is full moves to the string.
/// A short text is one allocation of just its size so, and none of its pieces grows a string.
class ZORV_EXPORT TextBuffer { // NOLINT(cppcoreguidelines-pro-type-member-init): block_ is written before it is read
public:
    static constexpr std::size_t blockSize = 4096;

    TextBuffer() noexcept = default; // NOLINT(cppcoreguidelines-pro-type-member-init): as above
    TextBuffer(TextBuffer const&) = delete;
    TextBuffer& operator=(TextBuffer const&) = delete;
    ~TextBuffer() = default;

    /// Where up to `size` characters, no more than a block, can be put; they count once `took` has been told.
    char* room(std::size_t size) {
        if (size > blockSize - used_) { moveBlock(); }
        return block_ + used_;
    }

    /// What was put ends there.
    void took(char const* end) noexcept { used_ = static_cast<std::size_t>(end - block_); }

    void append(char c) {
        *room(1) = c;
        ++used_;
    }

    /// Inline, so that a piece of constant length is a few moves.
    void append(std::string_view piece) {
        if (piece.size() > blockSize - used_) { return appendBehindBlock(piece); }
        std::memcpy(block_ + used_, piece.data(), piece.size());
        used_ += piece.size();
    }

    std::size_t size() const noexcept { return text_.size() + used_; }

    /// The text as a string, to which pieces may be appended.
    std::string& all() {
        moveBlock();
        return text_;
    }

    std::string take() { return std::move(all()); }

private:
    void appendToText(std::string_view piece);
    void moveBlock();
    void appendBehindBlock(std::string_view piece);

    std::string text_;
    std::size_t used_ = 0; // of the block
    char block_[blockSize];
};

} // namespace zorv
