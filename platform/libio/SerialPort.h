// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libio/PortHandlers.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zorv {

class DescriptorStream;
class EventLoop;

/// Bytes over a serial device, as they are: 8 data bits, no parity, 1 stop bit, no flow control, nothing interpreted.
///
/// All of it belongs to the event loop's thread. What is written waits in a queue; a device that lets 65536 bytes wait
/// is closed.
class ZORV_EXPORT SerialPort {
public:
    static constexpr unsigned int usualBaud = 115200;

    /// Opens the device for this process alone, and forgets what came before.
    ///
    /// A std::runtime_error says what is wrong: "cannot open /dev/ttyACM0: " and "there is no such device",
    /// "no permission", "in use", "not a serial port", or the system's own words.
    SerialPort(EventLoop& loop, std::string const& device, unsigned int baud = usualBaud);

    /// Closes the port; no handler is called any more.
    ~SerialPort();

    SerialPort(SerialPort const&) = delete;
    SerialPort& operator=(SerialPort const&) = delete;

    /// Begins to read; to be called once.
    void start(PortHandlers handlers);

    /// Queues bytes; nothing happens on a port that is closed.
    void write(std::vector<std::uint8_t> const& bytes);

    void close(std::string const& reason = "closed here");

private:
    std::shared_ptr<DescriptorStream> stream_;
};

} // namespace zorv
