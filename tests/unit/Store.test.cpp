// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/Store.h"

#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace zorv::controller {

namespace {

Device switchAt(unsigned char node) {
    NodeProtocolInfo const info({}, {}, BasicDeviceType::slave, GenericDeviceType::switchBinary,
                                SpecificDeviceType::notUsed);
    Device device(ZwaveAddress(0xC0FFEE01, node),
                  DeviceInfo(Manufacturer(ManufacturerId::zorv, 1, 2), info, true, false));
    device.commandClass(CommandClassType::switchBinary, CommandClassInfo(2, CommandClassAttribs::supported));
    return device;
}

std::string bytesOf(std::string const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// By a connection of its own, as another program would.
void execute(std::string const& file, std::string const& sql) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
    sqlite3_close(handle);
}

/// Counts how often SQLite has a file's data brought to the disk, as long as it lives.
class SyncCount {
public:
    SyncCount() : system_(sqlite3_vfs_find(nullptr)), counting_(*system_) {
        original = system_;
        count = 0;
        counting_.zName = "counting";
        counting_.xOpen = &open;
        sqlite3_vfs_register(&counting_, 1);
    }
    ~SyncCount() {
        sqlite3_vfs_unregister(&counting_);
        sqlite3_vfs_register(system_, 1);
    }
    SyncCount(SyncCount const&) = delete;
    SyncCount& operator=(SyncCount const&) = delete;

    static int ofLog() { return count; }

private:
    static int open(sqlite3_vfs*, char const* name, sqlite3_file* file, int flags, int* outFlags) {
        auto const result = original->xOpen(original, name, file, flags, outFlags);
        if (result == SQLITE_OK && (flags & SQLITE_OPEN_WAL) != 0) {
            methods = *file->pMethods;
            originalSync = methods.xSync;
            methods.xSync = &sync;
            file->pMethods = &methods;
        }
        return result;
    }
    static int sync(sqlite3_file* file, int flags) {
        ++count;
        return originalSync(file, flags);
    }

    inline static sqlite3_vfs* original = nullptr;
    inline static sqlite3_io_methods methods{};
    inline static int (*originalSync)(sqlite3_file*, int) = nullptr;
    inline static int count = 0;

    sqlite3_vfs* system_;
    sqlite3_vfs counting_;
};

struct StoreTest : testing::Test {
    TemporaryDirectory directory;
    std::string const file = directory.path("zwaved.db");

    /// Why the store cannot be opened or read.
    std::string complaint() const {
        try {
            Store const store(file);
            store.devices();
        } catch (StoreError const& error) {
            std::string const text = error.what();
            return text.substr(text.find(": ") + 2);
        }
        return "";
    }
};

TEST_F(StoreTest, HasEachCallOnTheDiskBeforeItReturns) {
    SyncCount const syncs;
    Store store(file);
    for (unsigned char node = 1; node <= 3; ++node) {
        auto const before = syncs.ofLog();
        store.save(switchAt(node));
        EXPECT_GT(syncs.ofLog(), before) << int{node}; // the write-ahead log, each time
    }
    auto const before = syncs.ofLog();
    store.together([&store] {
        store.remove(ZwaveAddress(0xC0FFEE01, 1));
        store.remember("state", "ready");
    });
    EXPECT_GT(syncs.ofLog(), before);
}

TEST_F(StoreTest, GivesBackTheNodesThatWereSaved) {
    {
        Store store(file);
        store.save(switchAt(9));
        store.save(switchAt(5));
    }
    auto const devices = Store(file).devices();
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].address(), ZwaveAddress(0xC0FFEE01, 5));
    EXPECT_EQ(devices[1].address(), ZwaveAddress(0xC0FFEE01, 9));
    EXPECT_EQ(devices[0].deviceInfo().manufacturer().productId(), 2);
    EXPECT_EQ(devices[0].commandClasses().at(CommandClassType::switchBinary).classVersion(), 2);
}

TEST_F(StoreTest, ReplacesTheRecordOfANode) {
    Store store(file);
    store.save(switchAt(5));
    auto changed = switchAt(5);
    changed.deviceStatus(DeviceStatus::ready);
    store.save(changed);
    ASSERT_EQ(store.devices().size(), 1U);
    EXPECT_EQ(store.devices()[0].deviceStatus(), DeviceStatus::ready);
}

TEST_F(StoreTest, ForgetsANodeOfOneNetworkOnly) {
    Store store(file);
    store.save(switchAt(5));
    store.remove(ZwaveAddress(0xC0FFEE02, 5));
    EXPECT_EQ(store.devices().size(), 1U);
    store.remove(ZwaveAddress(0xC0FFEE01, 5));
    EXPECT_EQ(store.devices().size(), 0U);
}

TEST_F(StoreTest, RemembersStatesByTheirNames) {
    {
        Store store(file);
        store.remember("homeId", "c0ffee01");
        store.remember("homeId", "c0ffee02");
        store.remember("with a zero", std::string("a\0b", 3));
    }
    Store const store(file);
    EXPECT_EQ(store.recall("homeId"), "c0ffee02");
    EXPECT_EQ(store.recall("with a zero"), std::string("a\0b", 3));
    EXPECT_EQ(store.recall("another"), std::nullopt);
}

TEST_F(StoreTest, GivesBackTheAgents) {
    Store store(file);
    store.save(AgentRecord{"uuid-2", "kitchen", "panel", "lights"});
    store.save(AgentRecord{"uuid-1", "hall", "", ""});
    auto const agents = store.agents();
    ASSERT_EQ(agents.size(), 2U);
    EXPECT_EQ(agents[0].room, "hall");
    EXPECT_EQ(agents[1].uuid, "uuid-2");
    EXPECT_EQ(agents[1].device, "panel");
    EXPECT_EQ(agents[1].driver, "lights");
}

TEST_F(StoreTest, LogsTheLatestJobsFirst) {
    Store store(file);
    std::chrono::system_clock::time_point const ended{std::chrono::milliseconds(1'700'000'000'123)};
    store.log({"inclusion", "done", "", ended});
    store.log({"reset", "failed", "the module does not answer", ended});
    auto const jobs = store.jobs(10);
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(jobs[0].name, "reset");
    EXPECT_EQ(jobs[0].state, "failed");
    EXPECT_EQ(jobs[0].reason, "the module does not answer");
    EXPECT_EQ(jobs[0].ended, ended);
    EXPECT_EQ(store.jobs(1).size(), 1U);
}

TEST_F(StoreTest, TakesTheNearestTimeForOneThatNoClockTells) {
    Store(file).log({"job", "done", "", {}});
    execute(file, "UPDATE jobs SET ended_ms = 9223372036854775807");
    auto const jobs = Store(file).jobs(1);
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_GT(jobs[0].ended, std::chrono::system_clock::time_point::max() - std::chrono::milliseconds(1));
}

TEST_F(StoreTest, KeepsTheLatestThousandJobs) {
    Store store(file);
    for (int i = 0; i < 1003; ++i) { store.log({std::to_string(i), "done", "", {}}); }
    auto const jobs = store.jobs(2000);
    ASSERT_EQ(jobs.size(), 1000U);
    EXPECT_EQ(jobs.front().name, "1002");
    EXPECT_EQ(jobs.back().name, "3");
}

TEST_F(StoreTest, KeepsWhatWasWrittenBeforeTheProcessWasKilled) {
    auto const child = ::fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        Store store(file);
        store.save(switchAt(5));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(Store(file).devices().size(), 1U);
}

TEST_F(StoreTest, IsWrittenAhead) {
    { Store const store(file); }
    // Bytes 18 and 19 of the file say how it is written; 2 is a write-ahead log.
    EXPECT_EQ(bytesOf(file).substr(18, 2), "\2\2");
}

TEST_F(StoreTest, RefusesAFileOfANewerVersionAndLeavesItAsItIs) {
    { Store const store(file); }
    execute(file, "PRAGMA user_version = 77");
    auto const before = bytesOf(file);
    EXPECT_EQ(complaint(), "is of version 77, and this program knows versions up to 1");
    EXPECT_EQ(bytesOf(file), before);
}

TEST_F(StoreTest, RefusesAFileOfAVersionThatCannotBeAndLeavesItAsItIs) {
    { Store const store(file); }
    execute(file, "PRAGMA user_version = -1");
    auto const before = bytesOf(file);
    EXPECT_EQ(complaint(), "is damaged (version -1)");
    EXPECT_EQ(bytesOf(file), before);
}

TEST_F(StoreTest, RefusesAFileThatIsNoDatabaseAndLeavesItAsItIs) {
    std::string const text(5000, 'x');
    directory.write("zwaved.db", text);
    EXPECT_EQ(complaint().substr(0, 10), "is damaged");
    EXPECT_EQ(bytesOf(file), text);
}

TEST_F(StoreTest, RefusesADamagedFileAndLeavesItAsItIs) {
    {
        Store store(file);
        for (int i = 1; i <= 200; ++i) { store.save(switchAt(static_cast<unsigned char>(i))); }
    }
    auto damaged = bytesOf(file);
    damaged.replace(damaged.size() / 2, 4096, 4096, '\xA5');
    directory.write("zwaved.db", damaged);
    EXPECT_EQ(complaint().substr(0, 10), "is damaged");
    EXPECT_EQ(bytesOf(file), damaged);
}

TEST_F(StoreTest, RefusesADatabaseOfSomethingElseAndLeavesItAsItIs) {
    execute(file, "CREATE TABLE cats (name TEXT)");
    auto const before = bytesOf(file);
    EXPECT_EQ(complaint(), "is a database of something else");
    EXPECT_EQ(bytesOf(file), before);
}

TEST_F(StoreTest, RefusesAFileThatAnotherHasOpen) {
    Store const first(file);
    EXPECT_EQ(complaint(), "is in use by another process");
}

TEST_F(StoreTest, RefusesANodeThatCannotBeRead) {
    { Store const store(file); }
    execute(file, "INSERT INTO nodes VALUES (1, 5, '{}')");
    EXPECT_EQ(complaint().substr(0, 32), "has a node that cannot be read (");
}

TEST_F(StoreTest, NamesTheFileThatItCannotOpen) {
    try {
        Store const store(directory.path("no/such/folder"));
        FAIL();
    } catch (StoreError const& error) {
        EXPECT_EQ(std::string(error.what()).rfind(directory.path("no/such/folder") + ": cannot be used", 0), 0U);
    }
}

TEST_F(StoreTest, WritesTogetherAllOrNothing) {
    Store store(file);
    store.together([&store] {
        store.save(switchAt(5));
        store.log({"reset", "done", ""});
        store.save(switchAt(6));
    });
    EXPECT_EQ(store.devices().size(), 2U);
    EXPECT_THROW(store.together([&store] {
        store.save(switchAt(7));
        store.log({"reset", "failed", ""});
        throw std::runtime_error("half way");
    }),
                 std::runtime_error);
    EXPECT_EQ(store.devices().size(), 2U);
    EXPECT_EQ(store.jobs(10).size(), 1U);
    store.save(switchAt(7)); // the store goes on
    EXPECT_EQ(store.devices().size(), 3U);
}

} // namespace

} // namespace zorv::controller
