// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/tables/FramedRecord.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/Confirmable.h"

#include <json/forwards.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zorv {

using OctetVec = std::vector<unsigned char>;

/// One chunk of the controller module's NVM: its bytes as base64 text, and a CRC-32 of that text, by which damage is
/// seen before the chunk is written back to the module.
class QUILLET_EXPORT Blob : public FramedRecord<Blob> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;

    Blob() : Blob("", 0) {}
    Blob(std::string const& name, unsigned int offset) : Blob(name, offset, 0, 0, "") {}

    /// Takes all members as they are given; the checksum is neither checked nor computed.
    Blob(std::string const& name, unsigned int offset, unsigned int size, unsigned int crc, std::string const& contents)
        : name_(name), offset_(offset), size_(size), crc_(crc), contents_(contents) {}

    std::string const& name() const noexcept { return name_; }
    unsigned int offset() const noexcept { return offset_; }
    unsigned int size() const noexcept { return size_; }
    unsigned int crc() const noexcept { return crc_; }
    std::string const& contents() const noexcept { return contents_; }

    /// CRC-32, as in IEEE 802.3, of the base64 text; 0 where it is empty.
    unsigned int computeCrc() const;

    /// Whether the checksum holds; a mismatch is logged at WARN.
    bool checkCrc() const noexcept;

    /// Stores the bytes. Returns an error flag: false where that succeeded, true where the bytes could not be encoded.
    ///
    /// A failure is logged at DEBUG, and leaves `size` at the number of bytes and the checksum as it was.
    bool setContents(OctetVec const& bytes) noexcept;

    /// The bytes; none where the checksum does not hold or the text is not base64, which is logged at DEBUG.
    OctetVec getContents() const noexcept;

    /// Writes the blob's JSON text.
    void print(std::ostream& os) const;

private:
    friend FramedRecord;
    struct Wire;

    std::string name_;
    unsigned int offset_; // in the module's NVM, bytes
    unsigned int size_;   // of the decoded contents, bytes
    unsigned int crc_;
    std::string contents_; // base64
};

extern template class FramedRecord<Blob>;

using BlobVec = std::vector<boost::shared_ptr<Blob>>;

/// What to do with the NVM.
namespace ManageNvmOp {

enum Enum : int { invalid, save, restore, clear, validate, authorize };

ZORV_ENUM_DECLARE(QUILLET_EXPORT)

} // namespace ManageNvmOp

/// Asks the daemon to act on the controller module's NVM. A client sends it, for a restore with the blobs to write; the
/// daemon answers, after a save with the blobs that it read.
class QUILLET_EXPORT ManageNvmMsg : public MessageOf<ManageNvmMsg, Confirmable> {
public:
    static std::string const NAME;
    static SerialRegistrar const registrar;
    static constexpr unsigned int DEFAULT_TIMEOUT = 180; ///< in the daemon's unit

    // What read() takes at most. A value costs many times its text in memory; 64 MiB in blobs of 256 bytes and more pass.
    static constexpr std::size_t MAX_FILE_BYTES = std::size_t{128} << 20U;
    static constexpr std::size_t MAX_FILE_VALUES = std::size_t{4} << 20U; ///< counted as commas and opening brackets

    ManageNvmMsg() = default;
    ManageNvmMsg(ManageNvmOp::Enum operation, HomeId homeId, ZResult::Enum result, unsigned int percentComplete)
        : MessageOf(result), operation_(operation), homeId_(homeId), percentComplete_(percentComplete) {}

    static boost::shared_ptr<ManageNvmMsg> create(ManageNvmOp::Enum operation);
    /// The request's blobs and time-out are not taken over; the daemon adds what it read.
    static boost::shared_ptr<ManageNvmMsg> create(boost::shared_ptr<ManageNvmMsg> const& request, ZResult::Enum result,
                                                  unsigned int percentComplete);

    void operation(ManageNvmOp::Enum operation) noexcept { operation_ = operation; }
    void timeout(unsigned int timeout) noexcept { timeout_ = timeout; }
    void percentComplete(unsigned int percentComplete) noexcept { percentComplete_ = percentComplete; }
    void addBlob(boost::shared_ptr<Blob> const& blob) { blobs_.push_back(blob); }

    ManageNvmOp::Enum operation() const noexcept { return operation_; }
    HomeId homeId() const noexcept { return homeId_; }
    unsigned int timeout() const noexcept { return timeout_; }
    unsigned int percentComplete() const noexcept { return percentComplete_; }
    BlobVec const& blobs() const noexcept { return blobs_; }

    // The two below throw NullPointerError "blob is null" where there is an empty pointer among the blobs.

    /// Sum of the blobs' sizes, decoded bytes.
    std::uint64_t size() const;

    /// Whether the checksums of all blobs hold; the first that does not is logged at WARN.
    bool checkBlobs() const;

    /// Loads the blobs and the home id from an NVM backup file, which docs/nvm.md describes.
    ///
    /// Returns success, fileNotFound, fileOpenFailure, fileReadFailure or noBlobs; all but the first are logged at WARN,
    /// with the exception of a file that is JSON without blobs. Checksums are not checked. A FIFO without a writer reads
    /// as an empty file. Where no JSON could be read, or more than the limits above allow, the message stays as it is;
    /// where its members are of the wrong type the blobs that were found before them stay, and the home id is not
    /// changed. Never throws: memory that runs out is fileReadFailure or noBlobs, and its log line may be missing.
    ZResult::Enum read(std::string const& file) noexcept;

    /// Appends the blobs that stand anywhere in `value`, and returns the network's home id, 0 where it has none.
    ///
    /// Of several home ids the deeper wins over the one around it and the later over the one before it, with a warning
    /// for each change. Errors: JsonCpp's, for a member that does not convert.
    static HomeId findBlobs(Json::Value& value, BlobVec& blobs);

    void accumulateDisplay(StringVecVec& rows) const override;

private:
    friend MessageOf;
    struct Wire;

    ManageNvmOp::Enum operation_ = ManageNvmOp::invalid;
    HomeId homeId_ = 0;
    unsigned int timeout_ = DEFAULT_TIMEOUT; // in the daemon's unit
    unsigned int percentComplete_ = 0;       // percent
    BlobVec blobs_;
};

extern template class MessageOf<ManageNvmMsg, Confirmable>;

} // namespace zorv
