// SPDX-License-Identifier: Apache-2.0
// The file of what outlives the daemon: as it may have been damaged, or with records that somebody else has put there.

#include "fuzz/Target.h"
#include "fuzz/mutateWire.h"

#include "platform/libtransport/toText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/WireTexts.h"
#include "tests/support/readFile.h"
#include "zwave/libcontroller/Store.h"

#include <sqlite3.h>

#include <memory>
#include <sstream>

namespace zorv::fuzz {

namespace {

using namespace controller;

constexpr auto fileMark = "SQLite format 3";

ZwaveAddress const address(0xC0FFEE01, 77); // which is made to be there

bool isFile(std::string const& input) { return input.rfind(fileMark, 0) == 0; }

Target::Texts textsOf(std::vector<Device> const& devices) {
    Target::Texts texts;
    for (auto const& device : devices) { texts.push_back(toText(device)); }
    return texts;
}

/// Reads and writes all there is.
void use(Store& store) {
    store.devices();
    store.agents();
    store.jobs(1000);
    store.save(Device(address, DeviceInfo()));
    store.log({"job", "done", "", {}});
    store.remember("name", "value");
    store.recall("name");
}

/// What holds for a file whose tables are ours.
void expectToKeep(std::string const& file) {
    Target::Texts kept;
    {
        Store store(file);
        use(store);
        expect(store.recall("name") == "value", "what is remembered is recalled");
        kept = textsOf(store.devices());
        expect(!kept.empty(), "a device that was saved is there");
    }
    Store store(file);
    expect(textsOf(store.devices()) == kept, "what was there is there when the file is opened again");
    store.remove(address);
    expect(store.devices().size() == kept.size() - 1, "a device that is removed is gone");
}

/// Each line of the input becomes the record of a node.
void fill(std::string const& file, std::string const& input) {
    { Store const store(file); }
    sqlite3* handle = nullptr;
    expect(sqlite3_open(file.c_str(), &handle) == SQLITE_OK, "the store's file can be opened");
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(handle, "INSERT INTO nodes VALUES (1, ?, ?)", -1, &statement, nullptr);
    std::istringstream lines(input);
    int number = 0;
    for (std::string line; std::getline(lines, line) && number < 20;) {
        sqlite3_bind_int(statement, 1, ++number);
        sqlite3_bind_text(statement, 2, line.data(), static_cast<int>(line.size()), SQLITE_TRANSIENT);
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_close(handle);
}

std::unique_ptr<Store> open(std::string const& file, std::string const& before) {
    try {
        return std::make_unique<Store>(file);
    } catch (StoreError const& error) {
        std::string const complaint = error.what();
        expect(complaint.rfind(file + ": ", 0) == 0, "a complaint names the file: " + complaint);
        expect(readFile(file) == before, "a file that is refused stays as it is: " + complaint);
    }
    return nullptr;
}

void run(std::string const& input) {
    static TemporaryDirectory const directory;
    auto const file = directory.write("store.sqlite", isFile(input) ? input : "");
    try {
        if (!isFile(input)) {
            fill(file, input);
            expectToKeep(file);
        } else if (auto const store = open(file, input)) {
            use(*store);
        }
    } catch (StoreError const& error) {
        std::string const complaint = error.what();
        expect(complaint.rfind(file + ": ", 0) == 0, "a complaint names the file: " + complaint);
    }
    for (auto const* const end : {"", "-wal", "-shm", "-journal"}) {
        boost::filesystem::remove(directory.path(std::string("store.sqlite") + end));
    }
}

/// A file that a store has written, and somebody else has changed.
std::string written(std::string const& change) {
    TemporaryDirectory const directory;
    auto const file = directory.path("store.sqlite");
    {
        Store store(file);
        store.save(Device(ZwaveAddress(0xC0FFEE01, 2), DeviceInfo()));
        store.save(AgentRecord{"11111111-2222-4333-8444-555555555555", "room", "device", "driver"});
        store.remember("name", "value");
        store.log({"job", "failed", "reason", {}});
    }
    sqlite3* handle = nullptr;
    expect(sqlite3_open(file.c_str(), &handle) == SQLITE_OK, "the store's file can be opened");
    sqlite3_exec(handle, change.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(handle);
    return readFile(file);
}

Target::Texts seeds() {
    Target::Texts texts;
    for (auto const* const change :
         {"", "PRAGMA user_version = -1", "PRAGMA user_version = 0", "PRAGMA application_id = 1",
          "UPDATE jobs SET ended_ms = 9223372036854775807", "UPDATE nodes SET device = x'00ff'", "DROP TABLE jobs"}) {
        texts.push_back(written(change));
    }
    std::mt19937 random(1);
    WireTexts wire([&random](std::uint64_t limit) { return random() % limit; });
    for (int i = 0; i < 8; ++i) { texts.push_back(wire.object("zorv::Device") + '\n' + wire.object("zorv::Device")); }
    return texts;
}

std::string mutate(std::string input, std::size_t most, std::mt19937& random) {
    if (!isFile(input)) { return mutateWireLine(std::move(input), most, random); }
    // Bytes where something is: most of a page is empty.
    for (auto count = 1 + random() % 4; count > 0; --count) {
        auto at = random() % input.size();
        for (int i = 0; i < 64 && input[at] == '\0'; ++i) { at = random() % input.size(); }
        auto const flipped = static_cast<unsigned char>(input[at]) ^ (1U << (random() % 8));
        input[at] = static_cast<char>(random() % 2 == 0 ? random() & 0xFFU : flipped);
    }
    return input;
}

Registration const registration({"storeFile", &run, &seeds, &wireWords, &mutate});

} // namespace

} // namespace zorv::fuzz
