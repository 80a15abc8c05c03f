// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/ManageNvmMsg.h"

#include "platform/libtransport/tables/EnumTable.h"
#include "platform/libtransport/tables/FramedRecordImpl.h"
#include "platform/libzorvcrypto/base64Decode.h"
#include "platform/libzorvcrypto/base64Encode.h"
#include "platform/libzorvlogger/Logger.h"
#include "platform/libzorvlogger/logExceptionWarning.h"
#include "transport/displayRow.h"
#include "zwave/libquillet/support/MessageOfImpl.h"
#include "zwave/libquillet/support/requireNonNull.h"
#include "zwave/libquillet/support/respond.h"

#include <boost/crc.hpp>
#include <boost/filesystem/operations.hpp>
#include <json/reader.h>
#include <json/value.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <initializer_list>
#include <istream>
#include <memory>
#include <numeric>
#include <streambuf>
#include <string_view>

namespace zorv {

namespace {

using Texts = std::initializer_list<std::string_view>;

/// The blob's lines carry the message's name as well: for filters of the log, both are one module.
void log(LogLevel level, char const* function, Texts texts, unsigned int line = __builtin_LINE()) {
    auto event = std::string("ManageNvmMsg::") + function + ": ";
    for (auto const text : texts) { event += text; }
    Logger::log(level, event, boost::source_location("zwave/libquillet/ManageNvmMsg", line, function));
}

/// Logs if memory allows. The result of the operation tells the failure in any case.
void report(LogLevel level, char const* function, Texts texts, unsigned int line = __builtin_LINE()) noexcept {
    try {
        log(level, function, texts, line);
    } catch (...) {} // NOLINT(bugprone-empty-catch): there is nowhere left to say it
}

} // namespace

// ---- Blob

std::string const Blob::NAME("Blob");
SerialRegistrar const Blob::registrar("zorv::" + NAME, &Blob::serialFactory);

struct Blob::Wire {
    static constexpr auto members = std::make_tuple(
        member<&Blob::name_>("name of the chunk"), member<&Blob::offset_>("position in the module's NVM, bytes"),
        member<&Blob::size_>("number of decoded bytes"), member<&Blob::crc_>("CRC-32 of the text of the contents"),
        member<&Blob::contents_>("the bytes, in base64"));
};

template class FramedRecord<Blob>;

unsigned int Blob::computeCrc() const {
    boost::crc_32_type crc;
    crc.process_bytes(contents_.data(), contents_.size());
    return crc.checksum();
}

bool Blob::checkCrc() const noexcept {
    if (crc_ == computeCrc()) { return true; }
    report(LogLevel::warn, "checkCrc", {"crc mismatch, the blob ", name_, " is corrupt"});
    return false;
}

bool Blob::setContents(OctetVec const& bytes) noexcept {
    size_ = static_cast<unsigned int>(bytes.size());
    boost::system::error_code error;
    crypto::base64Encode(bytes.empty() ? nullptr : bytes.data(), bytes.size(), false, error).swap(contents_);
    if (error) {
        auto const value = std::to_string(error.value()); // short enough to need no memory
        report(LogLevel::debug, "setContents",
               {"cannot encode byte vector, error ", error.category().name(), ":", value});
        return true;
    }
    crc_ = computeCrc();
    return false;
}

OctetVec Blob::getContents() const noexcept {
    bool const intact = checkCrc();
    boost::system::error_code error;
    auto const result = crypto::base64Decode(contents_.data(), contents_.size(), error);
    if (intact && !error && !!result) {
        try {
            return OctetVec(result.toUChar(), result.toUChar() + result.size());
        } catch (std::exception const&) {} // NOLINT(bugprone-empty-catch): reported below
    }
    report(LogLevel::debug, "getContents", {"cannot decode base64 vector"}); // said of a bad checksum, too
    return {};
}

void Blob::print(std::ostream& os) const { printFromSerial(os, *this); }

// ---- ManageNvmMsg

std::string const ManageNvmMsg::NAME("ManageNvmMsg");
SerialRegistrar const ManageNvmMsg::registrar("zorv::" + NAME, &ManageNvmMsg::serialFactory);

namespace ManageNvmOp {

ZORV_ENUM_DEFINE(enumTable<Enum>())

} // namespace ManageNvmOp

struct ManageNvmMsg::Wire {
    static constexpr auto members =
        std::make_tuple(member<&ManageNvmMsg::operation_>("what to do with the NVM"),
                        member<&ManageNvmMsg::homeId_>("home id of the network whose NVM this is"),
                        member<&ManageNvmMsg::timeout_>("how long the operation may take, in the daemon's unit"),
                        member<&ManageNvmMsg::percentComplete_>("progress, percent"),
                        member<&ManageNvmMsg::blobs_>("the contents of the NVM"));
};

template class MessageOf<ManageNvmMsg, Confirmable>;

boost::shared_ptr<ManageNvmMsg> ManageNvmMsg::create(ManageNvmOp::Enum operation) {
    return boost::make_shared<ManageNvmMsg>(operation, 0U, ZResult::none, 0U);
}

boost::shared_ptr<ManageNvmMsg> ManageNvmMsg::create(boost::shared_ptr<ManageNvmMsg> const& request,
                                                     ZResult::Enum result, unsigned int percentComplete) {
    auto const& asked = requireMessage(request);
    return respondWithNew<ManageNvmMsg>(asked, asked.operation_, asked.homeId_, result, percentComplete);
}

namespace {

/// A peer may have sent null among the blobs.
Blob const& requireBlob(boost::shared_ptr<Blob> const& blob) { return requireNonNull(blob, "blob is null"); }

} // namespace

std::uint64_t ManageNvmMsg::size() const {
    return std::accumulate(blobs_.begin(), blobs_.end(), std::uint64_t(0),
                           [](std::uint64_t sum, auto const& blob) { return sum + requireBlob(blob).size(); });
}

bool ManageNvmMsg::checkBlobs() const {
    return std::all_of(blobs_.begin(), blobs_.end(), [](auto const& blob) { return requireBlob(blob).checkCrc(); });
}

namespace {

/// The text of a file, with its lines joined. It is read in blocks, because the parser makes copies of its own.
///
/// The text ends early where the file is more than may be parsed.
class JoinedLines : public std::streambuf {
public:
    // Without O_NONBLOCK, opening a FIFO waits for a writer. Reading then waits for the writer, if there is one.
    explicit JoinedLines(std::string const& path) noexcept
        : fd_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        if (isOpen()) { ::fcntl(fd_, F_SETFL, ::fcntl(fd_, F_GETFL) & ~O_NONBLOCK); }
    }
    ~JoinedLines() override {
        if (isOpen()) { ::close(fd_); }
    }
    JoinedLines(JoinedLines const&) = delete;
    JoinedLines& operator=(JoinedLines const&) = delete;

    bool isOpen() const noexcept { return fd_ >= 0; }

    /// Whether the file is more than may be parsed.
    bool isTooMuch() const noexcept {
        return bytes_ > ManageNvmMsg::MAX_FILE_BYTES || values_ > ManageNvmMsg::MAX_FILE_VALUES;
    }

    /// Whether reading stopped before the end of the file; also true if the parser ran out of memory.
    bool failed() const noexcept { return !atEnd_ && !isTooMuch(); }

protected:
    int_type underflow() override {
        auto* end = block_.data();
        while (end == block_.data()) {
            if (isTooMuch()) { return traits_type::eof(); }
            auto const count = ::read(fd_, block_.data(), block_.size());
            if (count < 0 && errno == EINTR) { continue; }
            if (count <= 0) {
                atEnd_ = count == 0;
                return traits_type::eof();
            }
            bytes_ += static_cast<std::size_t>(count);
            end = std::remove(block_.data(), block_.data() + count, '\n');
            values_ += static_cast<std::size_t>(std::count_if(block_.data(), end, precedesValue));
        }
        setg(block_.data(), block_.data(), end);
        return traits_type::to_int_type(block_.front());
    }

private:
    /// Every value of a text but its root follows one of these, or a key that does. They count in strings as well: only
    /// the parser can tell strings from comments, and base64 has none of them.
    static bool precedesValue(char c) noexcept { return c == ',' || c == '[' || c == '{'; }

    int fd_;
    bool atEnd_ = false;
    std::size_t bytes_ = 0;
    std::size_t values_ = 0;
    std::array<char, 65536> block_{};
};

Json::Value parse(JoinedLines& lines) {
    std::istream is(&lines);
    Json::Value root;
    try {
        is >> root;
    } catch (std::exception const&) {
        if (!lines.failed() && !lines.isTooMuch()) {
            throw;
        } // else the text ended early, and the parser's complaint says nothing about the file
    }
    return root;
}

bool isBlob(Json::Value const& value) {
    auto const keys = {"name_", "offset_", "size_", "crc_", "contents_"};
    return value.isObject() && std::all_of(keys.begin(), keys.end(), [&](auto* key) { return value.isMember(key); });
}

/// Whether there is a file of any type; false if its status cannot be read.
bool exists(std::string const& file) noexcept {
    try {
        boost::system::error_code error;
        return boost::filesystem::exists(boost::filesystem::status(file, error));
    } catch (std::exception const&) { return false; }
}

} // namespace

ZResult::Enum ManageNvmMsg::read(std::string const& file) noexcept {
    auto const fail = [](ZResult::Enum result, std::string_view text, std::string_view detail) {
        report(LogLevel::warn, "read", {text, detail});
        return result;
    };
    if (!exists(file)) { return fail(ZResult::fileNotFound, "input file does not exist ", file); }
    try {
        JoinedLines lines(file);
        if (!lines.isOpen()) { return fail(ZResult::fileOpenFailure, "cannot open input file ", file); }
        auto root = parse(lines);
        if (lines.failed()) { return fail(ZResult::fileReadFailure, "cannot read input file ", file); }
        if (lines.isTooMuch()) {
            return fail(ZResult::noBlobs, "cannot parse object, ",
                        "more than " + std::to_string(MAX_FILE_BYTES) + " bytes or " + std::to_string(MAX_FILE_VALUES) +
                            " values");
        }
        blobs_.clear();
        homeId_ = findBlobs(root, blobs_);
        return blobs_.empty() ? ZResult::noBlobs : ZResult::success;
    } catch (ZorvError const& zorvError) {
        try {
            logExceptionWarning("ManageNvmMsg::read", "cannot parse object, ", zorvError);
        } catch (...) {} // NOLINT(bugprone-empty-catch): as report() does
    } catch (std::exception const& exception) {
        return fail(ZResult::noBlobs, "cannot parse object, ", exception.what());
    } catch (...) { return fail(ZResult::noBlobs, "cannot parse object, ", "unknown exception"); }
    return ZResult::noBlobs;
}

HomeId ManageNvmMsg::findBlobs(Json::Value& value, BlobVec& blobs) {
    if (isBlob(value)) {
        blobs.push_back(boost::make_shared<Blob>(value["name_"].asString(), value["offset_"].asUInt(),
                                                 value["size_"].asUInt(), value["crc_"].asUInt(),
                                                 value["contents_"].asString()));
        return 0;
    }
    if (!value.isObject() && !value.isArray()) { return 0; }
    HomeId id = value.isObject() && value.isMember("homeId_") ? value["homeId_"].asUInt() : 0;
    for (auto& child : value) { // an object's members come in the order of their names
        auto const found = findBlobs(child, blobs);
        if (found == 0) { continue; }
        if (id != 0 && id != found) {
            log(LogLevel::warn, "findBlobs",
                {"multiple, different home ids in the nvm file, preferring ", std::to_string(found)});
        }
        id = found;
    }
    return id;
}

void ManageNvmMsg::accumulateDisplay(StringVecVec& rows) const {
    displayRow(rows, "Manage NVM");
    displayRow(rows, "Home id:", homeId_);
    displayRow(rows, "Result:", result());
}

} // namespace zorv
