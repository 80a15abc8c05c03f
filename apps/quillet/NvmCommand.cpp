// SPDX-License-Identifier: Apache-2.0
#include "apps/defaultLineLimit.h"
#include "apps/quillet/Command.h"
#include "apps/quillet/Conversation.h"
#include "apps/quillet/MessageCommand.h"
#include "apps/quillet/NewFile.h"
#include "apps/quillet/confirm.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/hexDigits.h"
#include "platform/libtransport/toText.h"
#include "platform/libzorvlogger/printable.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <CLI/CLI.hpp>

#include <boost/make_shared.hpp>

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zorv {

namespace {

/// Whether one blob of a backup is intact.
struct BlobCheck {
    bool checksumHolds;
    std::string contents; ///< "good", or what is wrong with them; empty if the checksum already differs

    explicit BlobCheck(Blob const& blob) : checksumHolds(blob.checkCrc()) {
        if (!checksumHolds) { return; }
        auto const bytes = blob.getContents();
        if (bytes.empty() && !blob.contents().empty()) {
            contents = "not base64";
        } else if (bytes.size() != blob.size()) {
            contents = std::to_string(bytes.size()) + " bytes";
        } else {
            contents = "good";
        }
    }

    bool isGood() const { return contents == "good"; }
};

std::string quoted(std::string const& name) { return '"' + name + '"'; }

std::uint64_t endOf(Blob const& blob) { return std::uint64_t{blob.offset()} + blob.size(); }

/// Problems that a restore would meet although each blob is intact: one sentence per kind, which names the first blob.
class RestoreCheck {
public:
    explicit RestoreCheck(ManageNvmMsg const& backup) {
        if (backup.blobs().empty()) { return; }
        if (backup.homeId() == 0) { warnings_.emplace_back("there is no home id"); }
        checkPlaces(backup.blobs());
        checkNames(backup.blobs());
        checkWriting(backup);
    }

    std::vector<std::string> const& warnings() const noexcept { return warnings_; }

private:
    /// A sentence about the first of some blobs, and how many more there are.
    class Finding {
    public:
        void add(std::string const& text) {
            if (count_++ == 0) { first_ = text; }
        }
        void addTo(std::vector<std::string>& warnings) const {
            if (count_ == 0) { return; }
            warnings.push_back(count_ == 1 ? first_ : first_ + ", and " + std::to_string(count_ - 1) + " more");
        }

    private:
        std::size_t count_ = 0;
        std::string first_;
    };

    void checkPlaces(BlobVec const& blobs) {
        constexpr std::uint64_t end = std::uint64_t{1} << 32U;
        BlobVec sorted;
        std::copy_if(blobs.begin(), blobs.end(), std::back_inserter(sorted),
                     [](auto& blob) { return blob->size() > 0; });
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](auto const& a, auto const& b) { return a->offset() < b->offset(); });
        Finding overlapping;
        Finding beyond;
        Blob const* last = nullptr; // of the blobs so far, the one that ends last
        for (auto const& blob : sorted) {
            if (last != nullptr && blob->offset() < endOf(*last)) {
                overlapping.add("blob " + quoted(blob->name()) + " overlaps " + quoted(last->name()));
            }
            if (last == nullptr || endOf(*blob) > endOf(*last)) { last = blob.get(); }
            if (endOf(*blob) > end) { beyond.add("blob " + quoted(blob->name()) + " ends behind byte 4294967295"); }
        }
        overlapping.addTo(warnings_);
        beyond.addTo(warnings_);
    }

    void checkNames(BlobVec const& blobs) {
        Finding repeated;
        std::set<std::string> names;
        for (auto const& blob : blobs) {
            if (!names.insert(blob->name()).second) { repeated.add("blob " + quoted(blob->name()) + " comes again"); }
        }
        repeated.addTo(warnings_);
    }

    /// Writes the request part by part, because the whole may be too large for memory.
    void checkWriting(ManageNvmMsg const& backup) {
        ManageNvmMsg const request(ManageNvmOp::restore, backup.homeId(), ZResult::none, 0);
        auto length = toText(request).size() + backup.blobs().size() - 1; // with the commas
        Finding unwritable;
        for (auto const& blob : backup.blobs()) {
            try {
                length += toText(*blob).size();
            } catch (SerializerError const&) { unwritable.add("blob " + quoted(blob->name()) + " is not UTF-8"); }
        }
        unwritable.addTo(warnings_);
        if (length > defaultLineLimit) {
            warnings_.push_back("the request for a restore has " + std::to_string(length) +
                                " bytes, the daemon takes " + std::to_string(defaultLineLimit) + " by default");
        }
    }

    std::vector<std::string> warnings_;
};

/// What `nvm check` shows of a backup file.
class BackupCheck {
public:
    BackupCheck(std::string const& file, ZResult::Enum result, ManageNvmMsg const& message, bool hasTitles = true)
        : good_(result == ZResult::success) {
        json_["file"] = file;
        json_["result"] = toString(result);
        json_["homeId"] = message.homeId();
        json_["blobs"] = Json::Value(Json::arrayValue);
        json_["size"] = Json::UInt64(message.size());
        rows_ = {{"Result:", toString(result)}, {"Home id:", hexDigits(message.homeId(), 8)}};
        if (hasTitles && !message.blobs().empty()) {
            rows_.push_back({"Blob", "Offset", "Size", "Checksum", "Contents"});
        }
        for (auto const& blob : message.blobs()) { add(*blob); }
        rows_.push_back({"Total", "", std::to_string(message.size())});
        json_["good"] = good_;
        json_["warnings"] = Json::Value(Json::arrayValue);
        warnings_ = RestoreCheck(message).warnings();
        for (auto const& warning : warnings_) { json_["warnings"].append(warning); }
    }

    std::vector<std::string> const& warnings() const noexcept { return warnings_; }

    bool isGood() const noexcept { return good_; }

    StringVecVec const& rows() const noexcept { return rows_; }

    std::string json() const {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        return Json::writeString(builder, json_);
    }

private:
    void add(Blob const& blob) {
        BlobCheck const check(blob);
        good_ = good_ && check.isGood();
        rows_.push_back({blob.name(), std::to_string(blob.offset()), std::to_string(blob.size()),
                         check.checksumHolds ? "holds" : "differs", check.contents});
        Json::Value json;
        json["name"] = blob.name();
        json["offset"] = blob.offset();
        json["size"] = blob.size();
        json["checksumHolds"] = check.checksumHolds;
        json["good"] = check.isGood();
        json_["blobs"].append(json);
    }

    bool good_;
    StringVecVec rows_;
    std::vector<std::string> warnings_;
    Json::Value json_;
};

/// Shows what a backup file holds; needs no daemon.
class NvmCheckCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const check = app.add_subcommand("check", "Show what a backup file holds, and whether it is good");
        check->add_option("FILE", file_, "The backup file")->required()->type_name("");
        return check;
    }

    ExitCode run(DaemonAddress const&, Output& output) override {
        ManageNvmMsg message;
        auto const result = message.read(file_);
        BackupCheck const check(file_, result, message, output.hasTitles());
        output.show(check.rows(), check.json());
        if (result != ZResult::success) {
            std::cerr << "quillet: " << printable(file_) << ": " << toString(result) << '\n';
        }
        for (auto const& warning : check.warnings()) {
            std::cerr << "quillet: warning: " << printable(warning) << '\n';
        }
        return check.isGood() ? ExitCode::ok : ExitCode::refused;
    }

private:
    std::string file_;
};

/// Writes what the module's memory holds to a backup file.
class NvmSaveCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const save = app.add_subcommand("save", "Save the module's memory to a file");
        save->add_option("FILE", file_, "The backup file")->required()->type_name("");
        save->add_flag("--force", mayReplace_, "Replace a file that is there");
        return save;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        NewFile file(file_, mayReplace_); // a folder that cannot be written is told before the long work
        Conversation conversation(daemon, output, "nvm save");
        Interruption const interruption{{}, "interrupted; the daemon ends it, nothing is written"};
        auto const answer =
            conversation.ask(ManageNvmMsg::create(ManageNvmOp::save), longestWork(daemon), interruption);
        auto const* const backup = dynamic_cast<ManageNvmMsg const*>(answer.get());
        if (backup != nullptr && Conversation::isGood(*answer)) { file.write(toText(*backup) + '\n'); }
        return conversation.show(*answer);
    }

private:
    std::string file_;
    bool mayReplace_ = false;
};

/// Writes a backup file to the module's memory.
class NvmRestoreCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const restore = app.add_subcommand("restore", "Write a backup file to the module's memory");
        restore->add_option("FILE", file_, "The backup file")->required()->type_name("");
        restore->add_flag("--yes", isConfirmed_, "Do not ask");
        return restore;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        auto const backup = boost::make_shared<ManageNvmMsg>(); // with an identity of its own
        auto const result = backup->read(file_);
        BackupCheck const check(file_, result, *backup);
        if (!check.isGood()) {
            auto const hint =
                result == ZResult::success ? "a blob is damaged, \"quillet nvm check\" shows which" : toString(result);
            throw ExitError(ExitCode::refused, file_ + ": " + hint);
        }
        if (!isConfirmed_) { confirm("a restore replaces all that the module knows"); }
        Conversation conversation(daemon, output, "nvm restore");
        auto const permit = conversation.ask(ManageNvmMsg::create(ManageNvmOp::authorize));
        if (!Conversation::isGood(*permit)) { return conversation.show(*permit); }
        backup->operation(ManageNvmOp::restore);
        Interruption const interruption{{}, "interrupted; the daemon goes on with it"};
        return conversation.show(*conversation.ask(backup, longestWork(daemon), interruption));
    }

private:
    std::string file_;
    bool isConfirmed_ = false;
};

/// The commands of the controller module's NVM.
class NvmCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const nvm = app.add_subcommand("nvm", "Save, restore and check the controller module's memory (NVM)");
        nvm->require_subcommand(1);
        commands_.push_back(std::make_unique<NvmSaveCommand>());
        commands_.push_back(std::make_unique<NvmRestoreCommand>());
        commands_.push_back(std::make_unique<NvmCheckCommand>());
        for (auto& command : makeNvmMessageCommands()) { commands_.push_back(std::move(command)); }
        for (auto const& command : commands_) { byApp_.emplace(command->addTo(*nvm), command.get()); }
        app_ = nvm;
        return nvm;
    }

    ExitCode run(DaemonAddress const& daemon, Output& output) override {
        return byApp_.at(app_->get_subcommands().front())->run(daemon, output);
    }

private:
    CLI::App* app_ = nullptr;
    std::vector<std::unique_ptr<Command>> commands_;
    std::map<CLI::App const*, Command*> byApp_;
};

} // namespace

std::unique_ptr<Command> makeNvmCommand() { return std::make_unique<NvmCommand>(); }

} // namespace zorv
