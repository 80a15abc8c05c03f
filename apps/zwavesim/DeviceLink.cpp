// SPDX-License-Identifier: Apache-2.0
#include "apps/zwavesim/DeviceLink.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace zorv {

void DeviceLink::lead(std::string const& device) {
    auto const fail = [this](int error) {
        throw std::runtime_error("cannot make the link " + path_ + ": " + std::generic_category().message(error));
    };
    struct stat status {};
    if (::lstat(path_.c_str(), &status) == 0 && !S_ISLNK(status.st_mode)) { fail(EEXIST); }
    // Who opens the path meanwhile finds the old link or the new one.
    auto const fresh = path_ + '.' + std::to_string(::getpid());
    if (::symlink(device.c_str(), fresh.c_str()) != 0) { fail(errno); }
    if (std::rename(fresh.c_str(), path_.c_str()) != 0) {
        auto const error = errno;
        ::unlink(fresh.c_str());
        fail(error);
    }
    device_ = device;
}

void DeviceLink::remove() noexcept {
    std::array<char, 256> target{};
    auto const size = ::readlink(path_.c_str(), target.data(), target.size());
    if (size > 0 && device_.compare(0, std::string::npos, target.data(), static_cast<std::size_t>(size)) == 0) {
        ::unlink(path_.c_str());
    }
    device_.clear();
}

} // namespace zorv
