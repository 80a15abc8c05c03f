// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/jobs/NvmRestore.h"

#include <algorithm>

namespace zorv::controller {

/// Nothing is written before it is certain that the image is one of such a module.
void NvmRestore::onOpen() {
    if (image_.size() != size()) {
        return closeFor("the image has " + std::to_string(image_.size()) + " bytes, and the memory " +
                        std::to_string(size()));
    }
    isWriting_ = true;
    noDeadline();
    writeNext();
}

void NvmRestore::writeNext() {
    writing_ = std::min(pieceOfSession, image_.size() - written_);
    auto const begin = image_.begin() + static_cast<std::ptrdiff_t>(written_);
    write(written_, Bytes(begin, begin + static_cast<std::ptrdiff_t>(writing_)));
}

void NvmRestore::onWritten() {
    written_ += writing_;
    report(written_);
    if (written_ == image_.size()) { return close(); }
    writeNext();
}

/// The module takes up its new memory with a restart.
void NvmRestore::onClosed() {
    readModule(Restart::reset, [this] { endDone(); });
}

} // namespace zorv::controller
