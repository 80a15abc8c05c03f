// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/TextBuffer.h"

namespace zorv {

void TextBuffer::moveBlock() {
    text_.append(block_, used_);
    used_ = 0;
}

void TextBuffer::appendBehindBlock(std::string_view piece) {
    moveBlock();
    if (piece.size() > blockSize) {
        text_.append(piece);
    } else {
        append(piece);
    }
}

} // namespace zorv
