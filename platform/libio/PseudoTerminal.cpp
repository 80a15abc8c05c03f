// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/PseudoTerminal.h"

#include "platform/libio/DescriptorStreamImpl.h"

#include <fcntl.h>
#include <stdlib.h> // NOLINT(modernize-deprecated-headers): the functions of pseudo terminals are not in <cstdlib>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zorv {

namespace {

constexpr std::size_t room = 4096; // for what nobody reads

[[noreturn]] void fail(int error) {
    throw std::runtime_error("cannot open a pseudo terminal: " + std::generic_category().message(error));
}

std::string pathOf(int terminal) {
    std::array<char, 128> path{};
    if (::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) { fail(errno); }
    if (auto const error = ::ptsname_r(terminal, path.data(), path.size())) { fail(error); }
    return path.data();
}

} // namespace

PseudoTerminal::PseudoTerminal(EventLoop& loop) {
    auto const terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0) { fail(errno); }
    stream_ = std::make_shared<DescriptorStream>(loop, terminal, DescriptorStream::WhenFull::drop, room);
    path_ = pathOf(terminal);
    auto const otherSide = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (otherSide < 0) { fail(errno); }
    otherSide_ = std::make_shared<DescriptorStream>(loop, otherSide, DescriptorStream::WhenFull::drop, 0);
    try {
        otherSide_->makeRaw();
    } catch (std::system_error const& error) { fail(error.code().value()); }
}

PseudoTerminal::~PseudoTerminal() {
    stream_->abandon();
    otherSide_->abandon();
}

void PseudoTerminal::start(PortHandlers handlers) { stream_->start(std::move(handlers)); }

void PseudoTerminal::write(std::vector<std::uint8_t> const& bytes) { stream_->write(bytes); }

void PseudoTerminal::close(std::string const& reason) {
    stream_->close(reason);
    otherSide_->abandon();
}

} // namespace zorv
