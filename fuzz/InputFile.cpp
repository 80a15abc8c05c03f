// SPDX-License-Identifier: Apache-2.0
#include "fuzz/InputFile.h"

#include "fuzz/Target.h"

#include <sys/mman.h>
#include <unistd.h>

namespace zorv::fuzz {

InputFile::InputFile(std::string const& text)
    : descriptor_(::memfd_create("input", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(descriptor_)) {
    expect(descriptor_ >= 0, "the system gives a file in memory");
    auto const size = static_cast<ssize_t>(text.size());
    expect(::write(descriptor_, text.data(), text.size()) == size, "the input fits into a file");
}

InputFile::~InputFile() { ::close(descriptor_); }

} // namespace zorv::fuzz
