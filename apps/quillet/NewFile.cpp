// SPDX-License-Identifier: Apache-2.0
#include "apps/quillet/NewFile.h"

#include "apps/quillet/ExitCode.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zorv {

namespace {

constexpr mode_t forItsOwner = 0600; // a memory holds the keys of a network

bool isSynced(int descriptor) {
    int result = 0;
    do { result = ::fsync(descriptor); } while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

NewFile::NewFile(std::string const& path, bool mayReplace)
    : path_(path), temporary_(path + ".XXXXXX"), mayReplace_(mayReplace) {
    struct stat status {};
    if (!mayReplace && ::lstat(path.c_str(), &status) == 0) {
        throw ExitError(ExitCode::usage, path + ": is there already; --force replaces it");
    }
    descriptor_ = ::mkstemp(temporary_.data());
    if (descriptor_ < 0) { fail(); }
    ::fchmod(descriptor_, forItsOwner);
}

NewFile::~NewFile() {
    if (descriptor_ >= 0) { ::close(descriptor_); }
    ::unlink(temporary_.c_str()); // there is none any more where it was renamed
}

void NewFile::write(std::string const& text) {
    put(text);
    if (!isSynced(descriptor_)) { fail(); }
    unsigned int const flags = mayReplace_ ? 0 : RENAME_NOREPLACE; // a file may have come to be there meanwhile
    if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), flags) != 0) { fail(); }
    auto const slash = path_.find_last_of('/');
    auto const folder = slash == std::string::npos ? std::string(".") : path_.substr(0, slash + 1);
    int const folderDescriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderDescriptor < 0) { fail(); }
    bool const isKept = isSynced(folderDescriptor);
    ::close(folderDescriptor);
    if (!isKept) { fail(); }
}

void NewFile::put(std::string const& text) const {
    for (std::size_t done = 0; done < text.size();) {
        auto const count = ::write(descriptor_, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) { continue; }
        if (count < 0) { fail(); }
        done += static_cast<std::size_t>(count);
    }
}

void NewFile::fail() const {
    throw ExitError(ExitCode::noOutput, "cannot write " + path_ + ": " + std::strerror(errno));
}

} // namespace zorv
