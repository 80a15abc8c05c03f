#include "apps/quillet/Command.h"

#include "platform/libtransport/hexDigits.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <CLI/CLI.hpp>
#include <json/value.h>
#include <json/writer.h>

#include <string>

namespace zorv {

namespace {

/// What a blob of a backup is good for.
struct BlobCheck {
    bool checksumHolds;
    std::string contents; ///< "good", or what is wrong with them; empty where the checksum says nothing good already

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

/// What `nvm check` shows of a backup file.
class BackupCheck {
public:
    BackupCheck(std::string const& file, ZResult::Enum result, ManageNvmMsg const& message)
        : good_(result == ZResult::success) {
        json_["file"] = file;
        json_["result"] = toString(result);
        json_["homeId"] = message.homeId();
        json_["blobs"] = Json::Value(Json::arrayValue);
        json_["size"] = Json::UInt64(message.size());
        rows_ = {{"Result:", toString(result)}, {"Home id:", hexDigits(message.homeId(), 8)}};
        if (!message.blobs().empty()) { rows_.push_back({"Blob", "Offset", "Size", "Checksum", "Contents"}); }
        for (auto const& blob : message.blobs()) { add(*blob); }
        rows_.push_back({"Total", "", std::to_string(message.size())});
        json_["good"] = good_;
    }

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
    Json::Value json_;
};

/// Works on NVM backup files; needs no daemon.
class NvmCommand final : public Command {
public:
    CLI::App* addTo(CLI::App& app) override {
        auto* const nvm = app.add_subcommand("nvm", "Work on backups of the controller module's NVM");
        nvm->require_subcommand(1);
        auto* const check = nvm->add_subcommand("check", "Show what a backup file holds, and whether it is good");
        check->add_option("FILE", file_, "The backup file")->required()->type_name("");
        return nvm;
    }

    ExitCode run(Daemon const&, Output& output) override {
        ManageNvmMsg message;
        auto const result = message.read(file_);
        BackupCheck const check(file_, result, message);
        output.show(check.rows(), check.json());
        return check.isGood() ? ExitCode::ok : ExitCode::refused;
    }

private:
    std::string file_;
};

} // namespace

std::unique_ptr<Command> makeNvmCommand() { return std::make_unique<NvmCommand>(); }

} // namespace zorv
