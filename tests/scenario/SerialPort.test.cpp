// SPDX-License-Identifier: Apache-2.0
#include "platform/libio/SerialPort.h"
#include "platform/libio/PseudoTerminal.h"
#include "tests/scenario/runLoop.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/errorOf.h"
#include "tests/support/inChildProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace scenario;
using namespace zorv;

using Bytes = std::vector<std::uint8_t>;
using Strings = std::vector<std::string>;

/// What one end of a line hears.
struct Ear {
    PortHandlers handlers() {
        PortHandlers handlers;
        handlers.received = [this](Bytes const& bytes) {
            heard.insert(heard.end(), bytes.begin(), bytes.end());
            changed();
        };
        handlers.closed = [this](std::string const& reason) {
            closed.push_back(reason);
            changed();
        };
        return handlers;
    }

    Bytes heard;
    Strings closed;
    std::function<void()> changed = [] {};
};

/// A serial port, and the terminal that it takes for a device.
class SerialLine : public testing::Test {
protected:
    SerialLine() {
        terminal_.emplace(loop_);
        terminal_->start(atTerminal_.handlers());
        port_.emplace(loop_, terminal_->path());
        port_->start(atPort_.handlers());
        auto const check = [this] {
            if (isEnough_()) { loop_.stop(); }
        };
        atTerminal_.changed = check;
        atPort_.changed = check;
    }

    void runUntil(std::function<bool()> isEnough) {
        isEnough_ = std::move(isEnough);
        if (!isEnough_()) { runLoop(loop_); }
    }

    EventLoop loop_;
    std::optional<PseudoTerminal> terminal_;
    std::optional<SerialPort> port_;
    Ear atTerminal_;
    Ear atPort_;
    std::function<bool()> isEnough_ = [] { return false; };
};

Bytes allValues() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

TEST_F(SerialLine, CarriesEachValueOfAByteBothWaysAsItIs) {
    port_->write(allValues());
    terminal_->write(allValues());
    runUntil([this] { return atTerminal_.heard.size() >= 256 && atPort_.heard.size() >= 256; });
    EXPECT_EQ(atTerminal_.heard, allValues());
    EXPECT_EQ(atPort_.heard, allValues());
}

TEST_F(SerialLine, CarriesMoreThanTheSystemBuffers) {
    Bytes expected;
    for (int i = 0; i < 120; ++i) {
        auto const block = allValues();
        expected.insert(expected.end(), block.begin(), block.end());
        port_->write(block);
    }
    runUntil([this, &expected] { return atTerminal_.heard.size() >= expected.size(); });
    EXPECT_EQ(atTerminal_.heard, expected);
}

TEST_F(SerialLine, TellsThePortOnceThatTheDeviceIsGone) {
    terminal_.reset();
    runUntil([this] { return !atPort_.closed.empty(); });
    port_->write({1});
    port_->close();
    loop_.run(); // nothing is left to wait for
    EXPECT_EQ(atPort_.closed, Strings{"the device is gone"});
}

TEST_F(SerialLine, TellsOfACloseLaterAndOnce) {
    port_->close("enough");
    EXPECT_EQ(atPort_.closed, Strings{});
    port_->close("again");
    runUntil([this] { return !atPort_.closed.empty(); });
    terminal_.reset();
    loop_.run();
    EXPECT_EQ(atPort_.closed, Strings{"enough"});
}

TEST_F(SerialLine, CallsNoHandlerOfAPortThatIsDestroyed) {
    terminal_->write({1, 2, 3});
    port_.reset();
    terminal_.reset();
    loop_.run();
    EXPECT_EQ(atPort_.heard, Bytes{});
    EXPECT_EQ(atPort_.closed, Strings{});
    EXPECT_EQ(atTerminal_.closed, Strings{});
}

TEST_F(SerialLine, MayBeDestroyedByItsOwnHandler) {
    atPort_.changed = [this] {
        port_.reset();
        terminal_.reset();
    };
    terminal_->write({1});
    loop_.run(); // until nothing is left to wait for
    EXPECT_EQ(atPort_.heard, Bytes{1});
    EXPECT_EQ(atPort_.closed, Strings{});
}

TEST_F(SerialLine, ClosesAPortWhoseDeviceTakesNothing) {
    EventLoop other; // does not run, so nobody reads
    PseudoTerminal const silent(other);
    SerialPort port(loop_, silent.path());
    port.start(atPort_.handlers());
    port.write(Bytes(65536));
    port.write({1});
    runUntil([this] { return !atPort_.closed.empty(); });
    EXPECT_EQ(atPort_.closed, Strings{"takes nothing: 65536 bytes wait"});
}

TEST_F(SerialLine, SurvivesThatTheOtherSideIsClosedAndOpenedAgain) {
    port_->write({1});
    runUntil([this] { return !atTerminal_.heard.empty(); });
    port_.reset();
    port_.emplace(loop_, terminal_->path());
    port_->start(atPort_.handlers());
    port_->write({2, '\r', '\n', 3});
    terminal_->write({4, '\r', '\n', 5});
    runUntil([this] { return atTerminal_.heard.size() >= 5 && atPort_.heard.size() >= 4; });
    EXPECT_EQ(atTerminal_.heard, (Bytes{1, 2, '\r', '\n', 3}));
    EXPECT_EQ(atPort_.heard, (Bytes{4, '\r', '\n', 5}));
    EXPECT_EQ(atTerminal_.closed, Strings{});
}

TEST_F(SerialLine, LosesWhatIsSaidWhereNobodyListens) {
    port_.reset();
    for (int i = 0; i < 1000; ++i) { terminal_->write(Bytes(100, 7)); }
    port_.emplace(loop_, terminal_->path());
    port_->start(atPort_.handlers());
    Timer const end(loop_, std::chrono::milliseconds(200), [this] { loop_.stop(); });
    loop_.run();
    EXPECT_LE(atPort_.heard.size(), 4096U);
    EXPECT_EQ(atTerminal_.closed, Strings{});
}

TEST_F(SerialLine, HasNeitherEchoNorLinesForWhoeverOpensIt) {
    PseudoTerminal const fresh(loop_); // that no port has set up
    auto const other = ::open(fresh.path().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(other, 0);
    termios settings{};
    ASSERT_EQ(::tcgetattr(other, &settings), 0);
    ::close(other);
    EXPECT_EQ(settings.c_lflag & static_cast<tcflag_t>(ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(settings.c_iflag & static_cast<tcflag_t>(ICRNL | IXON), 0U);
    EXPECT_EQ(settings.c_oflag & static_cast<tcflag_t>(OPOST), 0U);
}

TEST_F(SerialLine, HasTheAskedSpeedEightBitsAndNoFlowControl) {
    auto const settingsNow = [this] {
        auto const device = ::open(terminal_->path().c_str(), O_RDWR | O_NOCTTY);
        termios settings{};
        EXPECT_EQ(::tcgetattr(device, &settings), 0);
        ::close(device);
        return settings;
    };
    auto const usual = settingsNow();
    EXPECT_EQ(::cfgetospeed(&usual), static_cast<speed_t>(B115200));
    port_.reset();
    port_.emplace(loop_, terminal_->path(), 57600);
    auto const slower = settingsNow();
    EXPECT_EQ(::cfgetospeed(&slower), static_cast<speed_t>(B57600));
    EXPECT_EQ(slower.c_cflag & static_cast<tcflag_t>(CSIZE), static_cast<tcflag_t>(CS8));
    EXPECT_EQ(slower.c_cflag & static_cast<tcflag_t>(PARENB | CSTOPB | CRTSCTS), 0U);
}

// ---- opening

class OpeningASerialPort : public testing::Test {
protected:
    std::string complaint(std::string const& device, unsigned int baud = SerialPort::usualBaud) {
        auto const text = errorOf([&] { SerialPort(loop_, device, baud); });
        auto const start = text.find(": ") + 2;
        return text.substr(0, start) +
               text.substr(start).replace(text.substr(start).find(device), device.size(), "DEVICE");
    }

    EventLoop loop_;
    TemporaryDirectory directory_;
};

TEST_F(OpeningASerialPort, SaysThatThereIsNone) {
    EXPECT_EQ(complaint(directory_.path("none")), "std::runtime_error: cannot open DEVICE: there is no such device");
}

TEST_F(OpeningASerialPort, RefusesWhatIsNoSerialPort) {
    std::string const expected = "std::runtime_error: cannot open DEVICE: not a serial port";
    EXPECT_EQ(complaint(directory_.write("file", "x")), expected);
    EXPECT_EQ(complaint(directory_.path()), expected);
    EXPECT_EQ(complaint("/dev/null"), expected);
}

TEST_F(OpeningASerialPort, KeepsOutASecondUser) {
    PseudoTerminal const terminal(loop_);
    SerialPort first(loop_, terminal.path());
    EXPECT_EQ(complaint(terminal.path()), "std::runtime_error: cannot open DEVICE: in use");
    first.close();
    EXPECT_EQ(errorOf([&] { SerialPort(loop_, terminal.path()); }), "no error");
}

TEST_F(OpeningASerialPort, LetsInTheNextUserAfterOneThatWasKilled) {
    PseudoTerminal const terminal(loop_);
    EXPECT_EQ(::chmod(terminal.path().c_str(), 0666), 0);
    auto const open = [&] {
        return inChildProcess([&] {
            // Who may do everything would be let in.
            if (::getuid() == 0 && ::setuid(65534) != 0) { return std::string("cannot become another user"); }
            EventLoop loop;
            auto port = std::make_unique<SerialPort>(loop, terminal.path());
            return std::string(port.release() != nullptr ? "opened" : ""); // and the process ends
        });
    };
    EXPECT_EQ(open(), "opened");
    EXPECT_EQ(open(), "opened");
}

TEST_F(OpeningASerialPort, SaysThatThereIsNoPermission) {
    PseudoTerminal const terminal(loop_);
    ASSERT_EQ(::chmod(terminal.path().c_str(), 0), 0);
    auto const said = inChildProcess([&] {
        if (::getuid() == 0 && ::setuid(65534) != 0) { return std::string("cannot become another user"); }
        return complaint(terminal.path());
    });
    EXPECT_EQ(said, "std::runtime_error: cannot open DEVICE: no permission");
}

TEST_F(OpeningASerialPort, RefusesASpeedThatThereIsNot) {
    PseudoTerminal const terminal(loop_);
    EXPECT_EQ(complaint(terminal.path(), 115201), "std::runtime_error: cannot open DEVICE: it cannot have 115201 baud");
}

TEST_F(OpeningASerialPort, ForgetsWhatWasSaidBefore) {
    PseudoTerminal terminal(loop_);
    terminal.start({});
    terminal.write({1, 2, 3});
    Timer const written(loop_, std::chrono::milliseconds(20), [this] { loop_.stop(); });
    loop_.run();
    SerialPort port(loop_, terminal.path());
    Ear ear;
    ear.changed = [this] { loop_.stop(); };
    port.start(ear.handlers());
    terminal.write({4});
    runLoop(loop_);
    EXPECT_EQ(ear.heard, Bytes{4});
}

} // namespace
