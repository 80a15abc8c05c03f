// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/SerialPort.h"

#include "platform/libio/DescriptorStreamImpl.h"

#include <boost/asio/serial_port_base.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zorv {

namespace {

constexpr std::size_t room = 65536; // for what is written and has not left

std::string complaintOf(int error) {
    switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO: return "there is no such device";
    case EACCES:
    case EPERM: return "no permission";
    case EBUSY:
    case EWOULDBLOCK: return "in use";
    case ENOTTY:
    case EISDIR: return "not a serial port";
    default: return std::generic_category().message(error);
    }
}

[[noreturn]] void failToOpen(std::string const& device, std::string const& complaint) {
    throw std::runtime_error("cannot open " + device + ": " + complaint);
}

/// The state outlives the user of a pseudo terminal that was killed, and would keep out the next one.
bool isPseudoTerminal(int descriptor) {
    constexpr unsigned int firstMajor = 136;
    constexpr unsigned int lastMajor = 143;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) { return false; }
    auto const major = gnu_dev_major(status.st_rdev);
    return major >= firstMajor && major <= lastMajor;
}

/// Keeps out other users of the device. Who may do everything is not kept out by the terminal's own means, so there is a
/// lock besides.
int lock(int descriptor) {
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) { return errno; }
    if (!isPseudoTerminal(descriptor) && ::ioctl(descriptor, TIOCEXCL) != 0) { return errno; }
    return 0;
}

boost::system::error_code setBaud(int descriptor, unsigned int baud) {
    boost::system::error_code error;
    termios settings{};
    if (::tcgetattr(descriptor, &settings) == 0) {
        boost::asio::serial_port_base::baud_rate(baud).store(settings, error);
        if (error) { return error; }
        if (::tcsetattr(descriptor, TCSANOW, &settings) == 0) { return {}; }
    }
    return {errno, boost::system::generic_category()};
}

} // namespace

SerialPort::SerialPort(EventLoop& loop, std::string const& device, unsigned int baud) {
    auto const descriptor = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) { failToOpen(device, complaintOf(errno)); }
    if (::isatty(descriptor) == 0) {
        auto const error = errno;
        ::close(descriptor);
        failToOpen(device, complaintOf(error));
    }
    stream_ = std::make_shared<DescriptorStream>(loop, descriptor, DescriptorStream::WhenFull::close, room);
    if (auto const error = lock(descriptor)) { failToOpen(device, complaintOf(error)); }
    try {
        stream_->makeRaw();
    } catch (std::system_error const& error) { failToOpen(device, complaintOf(error.code().value())); }
    if (setBaud(descriptor, baud)) { failToOpen(device, "it cannot have " + std::to_string(baud) + " baud"); }
    ::tcflush(descriptor, TCIOFLUSH);
}

SerialPort::~SerialPort() { stream_->abandon(); }

void SerialPort::start(PortHandlers handlers) { stream_->start(std::move(handlers)); }

void SerialPort::write(std::vector<std::uint8_t> const& bytes) { stream_->write(bytes); }

void SerialPort::close(std::string const& reason) { stream_->close(reason); }

} // namespace zorv
