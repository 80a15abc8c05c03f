// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TextBuffer.h"

#include <algorithm>

namespace zorv {

namespace {

/// How many times its capacity a text that grows gets. Up to some size that is more than usual: the sum of what a text
/// has left behind then stays so small that the C library keeps it for the next text. What it gives back to the kernel
/// costs as much to get again as the whole writing.
std::size_t growth(std::size_t capacity) {
    constexpr std::size_t large = std::size_t{1024} * 1024;
    return capacity < large ? 4 : 2;
}

} // namespace

void TextBuffer::appendToText(std::string_view piece) {
    auto const size = text_.size() + piece.size();
    // The first piece is often the whole text, which then takes no more than it needs.
    if (size > text_.capacity() && !text_.empty()) {
        text_.reserve(std::max(size, growth(text_.capacity()) * text_.capacity()));
    }
    text_.append(piece);
}

void TextBuffer::moveBlock() {
    appendToText({block_, used_});
    used_ = 0;
}

void TextBuffer::appendBehindBlock(std::string_view piece) {
    moveBlock();
    if (piece.size() > blockSize) {
        appendToText(piece);
    } else {
        append(piece);
    }
}

} // namespace zorv
