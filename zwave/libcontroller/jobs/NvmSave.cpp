// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NvmSave.h"

#include <algorithm>

namespace zorv::controller {

namespace {

// Of memory that is read by its addresses: some modules answer a large piece with nothing.
constexpr std::size_t largePiece = 168;
constexpr std::size_t smallPiece = 48;

} // namespace

void NvmSave::onOpen() {
    piece_ = hasSession() ? pieceOfSession : largePiece;
    image_.reserve(size());
    readNext();
}

void NvmSave::readNext() { read(image_.size(), std::min(piece_, size() - image_.size())); }

void NvmSave::onRead(Bytes const& piece, bool isLast) {
    if (piece.empty() && piece_ == largePiece) {
        piece_ = smallPiece;
        return readNext();
    }
    image_.insert(image_.end(), piece.begin(), piece.end());
    report(image_.size());
    if (image_.size() == size()) { return close(); }
    if (piece.empty() || isLast || image_.size() > size()) { return closeFor("the memory ends where it should not"); }
    readNext();
}

} // namespace zorv::controller
