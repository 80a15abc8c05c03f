// SPDX-License-Identifier: Apache-2.0
// The programs as they are, on a system whose calls fail, are interrupted, or do only a part. tests/faults/faults.c says
// how that is done, and how the rules are written.

#include "tests/scenario/MessageClient.h"
#include "tests/scenario/Process.h"
#include "tests/scenario/StreamDaemon.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// A sanitizer wants to be the first library of its process.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

using namespace scenario;
using namespace zorv;
using testing::HasSubstr;

using Strings = std::vector<std::string>;

ZwaveAddress const light(0, 2);

class SystemCallFaults : public testing::Test {
protected:
    /// The command with rules; they hold as long as `begin()` was called and `end()` was not, where `isTimed`.
    Strings faulty(std::string const& rules, Strings const& command, bool isTimed = false) const {
        Strings whole{"/usr/bin/env", "LD_PRELOAD=" QUILLET_FAULTS_LIBRARY, "QUILLET_FAULTS=" + rules};
        if (isTimed) { whole.push_back("QUILLET_FAULTS_WHEN=" + when()); }
        whole.insert(whole.end(), command.begin(), command.end());
        return whole;
    }

    void begin() const { directory_.write("now", ""); }
    void end() const { std::filesystem::remove(when()); }

    /// Starts a daemon with rules that hold from begin() on.
    void startDaemon(std::string const& rules, Strings const& arguments = {}, bool isTimed = true) {
        Strings command{programPath("zwaved"), "--port", "0"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        daemon_ = std::make_unique<Process>(faulty(rules, command, isTimed));
        port_ = announcedPort(*daemon_);
    }

    std::string path(std::string const& name) const { return directory_.path(name); }

    static ZResult::Enum ping(MessageClient& client) { return client.ask(PingMsg::create(light))->result(); }

    static ZResult::Enum setLights(MessageClient& client, DeviceLights::Enum lights) {
        auto const device = boost::make_shared<Device>(light, DeviceInfo());
        device->deviceLights(lights);
        return client.ask(NodeInformationMsg::create(GetNodesOp::set, DisplayOption::none, {{light, device}}))
            ->result();
    }

    static DeviceLights::Enum lights(MessageClient& client) {
        auto const answer = client.ask(NodeInformationMsg::create(GetNodesOp::get, DisplayOption::none, {}));
        for (auto const& [address, device] : answer->devices()) {
            if (address.nodeId() == light.nodeId()) { return device->deviceLights(); }
        }
        return DeviceLights::unknown;
    }

    TemporaryDirectory directory_;
    std::unique_ptr<Process> daemon_;
    unsigned short port_ = 0;

private:
    std::string when() const { return directory_.path("now"); }
};

// ---- a backup file

class BackupFaults : public SystemCallFaults {
protected:
    BackupFaults() { std::filesystem::create_directory(path("backups")); }

    /// Exit code of a save under rules, over a file that was there before.
    int save(std::string const& rules) {
        directory_.write("backups/backup.json", "mine");
        Process client(faulty(rules, clientCommand(daemon.port(), {"nvm", "save", file(), "--force"})));
        auto const code = client.wait();
        errors = client.errors();
        return code;
    }

    void expectOldFile(std::string const& rules, int error) {
        EXPECT_EQ(save(rules), 6) << rules;
        EXPECT_THAT(errors, HasSubstr("quillet: cannot write " + file() + ": " + std::strerror(error) + '\n')) << rules;
        EXPECT_EQ(readFile(file()), "mine") << rules;
        expectNothingElse(rules);
    }

    void expectNewFile(std::string const& rules) {
        EXPECT_EQ(save(rules), 0) << rules << errors;
        Process check(clientCommand(daemon.port(), {"nvm", "check", file()}));
        EXPECT_EQ(check.wait(), 0) << rules;
        expectNothingElse(rules);
    }

    void expectNothingElse(std::string const& rules) const {
        using Folder = std::filesystem::directory_iterator;
        EXPECT_EQ(std::distance(Folder(path("backups")), Folder()), 1) << rules;
    }

    std::string file() const { return path("backups/backup.json"); }

    DaemonProcess const daemon;
    std::string errors;
};

TEST_F(BackupFaults, LeaveTheOldFileAsItWas) {
    expectOldFile("write:backup.json:1:ENOSPC", ENOSPC);
    expectOldFile("write:backup.json:1:1000 write:backup.json:2:EIO", EIO); // half of it is written
    expectOldFile("sync:backup.json:1:EIO", EIO);
    expectOldFile("sync:backup.json:1:ENOSPC", ENOSPC);
    expectOldFile("rename:backup.json:1:EIO", EIO);
}

TEST_F(BackupFaults, ThatAreOnlyInterruptionsOrShortWritesAreNotSeen) {
    expectNewFile("write:backup.json:1+2:EINTR");
    expectNewFile("write:backup.json:1+1:1000");
    expectNewFile("sync:backup.json:1:EINTR");
}

// ---- the store

class StoreFaults : public SystemCallFaults {
protected:
    void startDaemonWithStore(std::string const& rules) { startDaemon(rules, {"--state", path("state")}); }

    /// What was answered with success is there after the daemon was killed.
    void expectKept(DeviceLights::Enum expected) {
        daemon_->signal(SIGKILL);
        daemon_->wait();
        DaemonProcess const next({"--state", path("state")});
        MessageClient client(next.port());
        client.waitForStart();
        EXPECT_EQ(lights(client), expected);
    }
};

TEST_F(StoreFaults, AreNeverAnsweredWithSuccessAndTheDaemonGoesOn) {
    for (std::string const rules :
         {"write:zwaved.sqlite:1+1:ENOSPC", "write:zwaved.sqlite:2+1:EIO", "sync:zwaved.sqlite:1+1:EIO",
          "write:zwaved.sqlite:1+2:100 write:zwaved.sqlite:2+1:ENOSPC"}) {
        startDaemonWithStore(rules);
        MessageClient client(port_);
        client.waitForStart();
        EXPECT_EQ(setLights(client, DeviceLights::on), ZResult::success) << rules;
        begin();
        EXPECT_EQ(setLights(client, DeviceLights::off), ZResult::failure) << rules;
        EXPECT_EQ(lights(client), DeviceLights::off) << rules; // it is known, but not kept
        end();
        EXPECT_EQ(setLights(client, DeviceLights::blinking), ZResult::success) << rules;
        expectKept(DeviceLights::blinking);
    }
}

TEST_F(StoreFaults, ThatAreOnlyInterruptionsOrShortWritesAreNotSeen) {
    for (std::string const rules : {"write:zwaved.sqlite:1+2:EINTR", "write:zwaved.sqlite:1+1:100"}) {
        startDaemonWithStore(rules);
        begin();
        MessageClient client(port_);
        client.waitForStart();
        EXPECT_EQ(setLights(client, DeviceLights::off), ZResult::success) << rules;
        end();
        expectKept(DeviceLights::off);
    }
}

// ---- the serial port

class SerialPortFaults : public SystemCallFaults {
protected:
    void startDaemonWithPort(std::string const& rules) {
        startDaemon(rules, {"--device", module_.device(), "--state", path("state")});
    }

private:
    SimProcess module_;
};

TEST_F(SerialPortFaults, AreTakenAsALostModuleWhichIsFoundAgain) {
    startDaemonWithPort("read:tty:1+1:EIO write:tty:1+1:EIO");
    MessageClient client(port_);
    client.subscribe({DaemonStatusMsg::NAME});
    EXPECT_EQ(ping(client), ZResult::success);
    begin();
    EXPECT_EQ(ping(client), ZResult::failure);
    client.waitFor<DaemonStatusMsg>(
        [](auto const& status) { return status.detail() == DaemonDetail::moduleNotPresent; });
    end();
    client.waitFor<DaemonStatusMsg>([](auto const& status) { return status.status() == DaemonStatus::notSecure; });
    EXPECT_EQ(ping(client), ZResult::success);
    daemon_->signal(SIGTERM);
    EXPECT_EQ(daemon_->wait(), 0);
    EXPECT_THAT(daemon_->errors(), HasSubstr("the module's port is lost: the device is gone"));
}

TEST_F(SerialPortFaults, ThatAreOnlyInterruptionsOrShortCallsAreNotSeen) {
    startDaemonWithPort("read:tty:1+2:1 read:tty:2+3:EINTR write:tty:1+2:1 write:tty:2+3:EINTR");
    begin();
    MessageClient client(port_);
    client.waitForStart();
    EXPECT_EQ(ping(client), ZResult::success);
    daemon_->signal(SIGTERM);
    EXPECT_EQ(daemon_->wait(), 0);
    EXPECT_EQ(daemon_->errors(), "");
}

// ---- sockets

TEST_F(SystemCallFaults, OfADaemonsSocketsThatAreShortOrInterruptedAreNotSeen) {
    startDaemon("read:socket:1+2:7 read:socket:2+3:EINTR write:socket:1+2:7 write:socket:2+3:EINTR", {}, false);
    MessageClient client(port_);
    client.waitForStart();
    for (int i = 0; i < 5; ++i) { EXPECT_EQ(ping(client), ZResult::success); }
    EXPECT_EQ(setLights(client, DeviceLights::blinking), ZResult::success);
    EXPECT_EQ(lights(client), DeviceLights::blinking);
}

TEST_F(SystemCallFaults, OfADaemonsSocketThatWouldBlockOnlyDelay) {
    startDaemon("write:socket:1:EAGAIN");
    MessageClient client(port_);
    client.waitForStart();
    begin();
    EXPECT_EQ(ping(client), ZResult::success);
    EXPECT_EQ(lights(client), DeviceLights::unknown);
}

TEST_F(SystemCallFaults, OfADaemonsSocketCostThatClientOnly) {
    startDaemon("write:socket:1:EIO");
    MessageClient other(port_);
    other.waitForStart();
    MessageClient client(port_);
    begin();
    EXPECT_THROW(ping(client), std::out_of_range);
    EXPECT_EQ(ping(other), ZResult::success);
}

TEST_F(SystemCallFaults, OfAClientsSocketThatAreShortOrInterruptedAreNotSeen) {
    DaemonProcess const daemon;
    Process client(faulty("read:socket:1+2:7 read:socket:2+3:EINTR write:socket:1+2:7 write:socket:2+3:EINTR",
                          clientCommand(daemon.port(), {"nodes"})));
    EXPECT_EQ(client.wait(), 0) << client.errors();
    EXPECT_FALSE(client.restOfOutput().empty());
}

} // namespace

#endif
