// SPDX-License-Identifier: Apache-2.0
#include "zwave/libcontroller/Store.h"

#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace zorv::controller {

namespace {

constexpr int applicationId = 0x7A6F7276; // marks the file as ours: "zorv"
constexpr int loggedJobs = 1000;

/// Each brings a file from the version that is its place in the list to the next one. Only ever added to.
constexpr std::array migrations{
    "CREATE TABLE nodes (home_id INTEGER, node_id INTEGER, device TEXT NOT NULL, PRIMARY KEY (home_id, node_id));"
    "CREATE TABLE agents (uuid TEXT PRIMARY KEY, room TEXT NOT NULL, device TEXT NOT NULL, driver TEXT NOT NULL);"
    "CREATE TABLE states (name TEXT PRIMARY KEY, value TEXT NOT NULL);"
    "CREATE TABLE jobs (number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, state TEXT NOT NULL,"
    " reason TEXT NOT NULL, ended_ms INTEGER NOT NULL);"};
constexpr int currentVersion = static_cast<int>(migrations.size());

Device toDevice(std::string const& text) {
    auto const device = boost::dynamic_pointer_cast<Device>(readSerializable(text));
    if (!device) { throw std::runtime_error("a record of another class"); }
    return *device;
}

/// The nearest time that a clock can tell: the file may hold any number.
std::chrono::system_clock::time_point toTime(std::int64_t milliseconds) {
    using Time = std::chrono::system_clock::time_point;
    auto const limit = [](Time time) {
        return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    };
    return Time(std::chrono::milliseconds(std::clamp(milliseconds, limit(Time::min()), limit(Time::max()))));
}

} // namespace

class Store::Database {
public:
    explicit Database(std::string file) : file_(std::move(file)) {
        sqlite3* handle = nullptr;
        auto const result =
            sqlite3_open_v2(file_.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        handle_.reset(handle);
        if (result != SQLITE_OK) { fail(); }
        sqlite3_extended_result_codes(handle, 1);
        // Not before the file is known as ours: closing it would write to it.
        sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        execute("PRAGMA locking_mode = EXCLUSIVE");
        check();
        sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
        execute("PRAGMA journal_mode = WAL");
        execute("PRAGMA synchronous = FULL");
        migrate();
    }

    [[noreturn]] void fail() const {
        auto* const handle = handle_.get();
        auto const primary = sqlite3_errcode(handle) & 0xFF;
        std::string const text = handle == nullptr ? "out of memory" : sqlite3_errmsg(handle);
        if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB) { refuse("is damaged (" + text + ")"); }
        if (primary == SQLITE_BUSY) { refuse("is in use by another process"); }
        refuse("cannot be used (" + text + ")");
    }
    [[noreturn]] void refuse(std::string const& complaint) const { throw StoreError(file_ + ": " + complaint); }

    void execute(char const* sql) {
        if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) { fail(); }
    }

    /// One statement and its values; what it gives is read row by row.
    class Statement {
    public:
        Statement(Database const& database, char const* sql) : database_(database) {
            sqlite3_stmt* statement = nullptr;
            if (sqlite3_prepare_v2(database.handle_.get(), sql, -1, &statement, nullptr) != SQLITE_OK) {
                database.fail();
            }
            statement_.reset(statement);
        }

        Statement& bind(std::string const& text) {
            auto const bytes = static_cast<int>(text.size());
            require(sqlite3_bind_text(statement_.get(), ++bound_, text.data(), bytes, SQLITE_TRANSIENT));
            return *this;
        }
        Statement& bind(std::int64_t number) {
            require(sqlite3_bind_int64(statement_.get(), ++bound_, number));
            return *this;
        }

        /// False where there is no further row.
        bool next() {
            auto const result = sqlite3_step(statement_.get());
            if (result != SQLITE_ROW && result != SQLITE_DONE) { database_.fail(); }
            return result == SQLITE_ROW;
        }

        std::int64_t number(int column) const { return sqlite3_column_int64(statement_.get(), column); }
        std::string text(int column) const {
            auto const* const text = sqlite3_column_text(statement_.get(), column);
            auto const bytes = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
            return text == nullptr ? std::string() : std::string(reinterpret_cast<char const*>(text), bytes);
        }

    private:
        struct Finalize {
            void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
        };

        void require(int result) const {
            if (result != SQLITE_OK) { database_.fail(); }
        }

        Database const& database_;
        std::unique_ptr<sqlite3_stmt, Finalize> statement_;
        int bound_ = 0;
    };

    Statement statement(char const* sql) const { return {*this, sql}; }

private:
    struct Close {
        void operator()(sqlite3* handle) const noexcept { sqlite3_close(handle); }
    };

    std::int64_t number(char const* sql) const {
        auto query = statement(sql);
        return query.next() ? query.number(0) : 0;
    }

    /// Whether it is a file of ours, whole, and of a version that we know.
    void check() const {
        auto const application = number("PRAGMA application_id");
        bool const isNew = application == 0 && number("SELECT count(*) FROM sqlite_master") == 0;
        if (!isNew && application != applicationId) { refuse("is a database of something else"); }
        auto const version = number("PRAGMA user_version");
        if (version > currentVersion) {
            refuse("is of version " + std::to_string(version) + ", and this program knows versions up to " +
                   std::to_string(currentVersion));
        }
        if (version < 0) { refuse("is damaged (version " + std::to_string(version) + ")"); }
        auto findings = statement("PRAGMA quick_check(1)");
        if (findings.next() && findings.text(0) != "ok") { refuse("is damaged (" + findings.text(0) + ")"); }
    }

    void migrate() {
        for (auto version = number("PRAGMA user_version"); version < currentVersion; ++version) {
            auto const mark = "PRAGMA application_id = " + std::to_string(applicationId) +
                              "; PRAGMA user_version = " + std::to_string(version + 1) + "; COMMIT";
            execute("BEGIN IMMEDIATE");
            execute(migrations.at(static_cast<std::size_t>(version)));
            execute(mark.c_str());
        }
    }

    std::string file_;
    std::unique_ptr<sqlite3, Close> handle_;
};

Store::Store(std::string const& file) : database_(std::make_unique<Database>(file)) {}

Store::~Store() = default;

void Store::together(std::function<void()> const& work) {
    database_->execute("SAVEPOINT together"); // may stand within another one
    try {
        work();
        database_->execute("RELEASE together");
    } catch (...) {
        try {
            database_->execute("ROLLBACK TO together; RELEASE together");
        } catch (StoreError const&) {
            // What failed first is what is told; SQLite rolls back by itself where it cannot be told to.
        }
        throw;
    }
}

// ---- nodes

void Store::save(Device const& device) {
    database_->statement("INSERT OR REPLACE INTO nodes VALUES (?, ?, ?)")
        .bind(std::int64_t{device.address().homeId()})
        .bind(std::int64_t{device.address().nodeId()})
        .bind(toText(device))
        .next();
}

void Store::remove(ZwaveAddress const& address) {
    database_->statement("DELETE FROM nodes WHERE home_id = ? AND node_id = ?")
        .bind(std::int64_t{address.homeId()})
        .bind(std::int64_t{address.nodeId()})
        .next();
}

std::vector<Device> Store::devices() const {
    std::vector<Device> devices;
    auto rows = database_->statement("SELECT device FROM nodes ORDER BY home_id, node_id");
    while (rows.next()) {
        try {
            devices.push_back(toDevice(rows.text(0)));
        } catch (std::exception const& error) {
            database_->refuse(std::string("has a node that cannot be read (") + error.what() + ")");
        }
    }
    return devices;
}

// ---- agents and states

void Store::save(AgentRecord const& agent) {
    database_->statement("INSERT OR REPLACE INTO agents VALUES (?, ?, ?, ?)")
        .bind(agent.uuid)
        .bind(agent.room)
        .bind(agent.device)
        .bind(agent.driver)
        .next();
}

std::vector<AgentRecord> Store::agents() const {
    std::vector<AgentRecord> agents;
    auto rows = database_->statement("SELECT uuid, room, device, driver FROM agents ORDER BY uuid");
    while (rows.next()) { agents.push_back({rows.text(0), rows.text(1), rows.text(2), rows.text(3)}); }
    return agents;
}

void Store::remember(std::string const& name, std::string const& value) {
    database_->statement("INSERT OR REPLACE INTO states VALUES (?, ?)").bind(name).bind(value).next();
}

std::optional<std::string> Store::recall(std::string const& name) const {
    auto rows = database_->statement("SELECT value FROM states WHERE name = ?");
    if (!rows.bind(name).next()) { return std::nullopt; }
    return rows.text(0);
}

// ---- jobs

void Store::log(JobRecord const& job) {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    together([&] {
        database_->statement("INSERT INTO jobs (name, state, reason, ended_ms) VALUES (?, ?, ?, ?)")
            .bind(job.name)
            .bind(job.state)
            .bind(job.reason)
            .bind(std::int64_t{duration_cast<milliseconds>(job.ended.time_since_epoch()).count()})
            .next();
        database_->statement("DELETE FROM jobs WHERE number <= (SELECT max(number) FROM jobs) - ?")
            .bind(std::int64_t{loggedJobs})
            .next();
    });
}

std::vector<JobRecord> Store::jobs(std::size_t most) const {
    std::vector<JobRecord> jobs;
    auto rows = database_->statement("SELECT name, state, reason, ended_ms FROM jobs ORDER BY number DESC LIMIT ?");
    rows.bind(static_cast<std::int64_t>(most));
    while (rows.next()) { jobs.push_back({rows.text(0), rows.text(1), rows.text(2), toTime(rows.number(3))}); }
    return jobs;
}

} // namespace zorv::controller
