// SPDX-License-Identifier: Apache-2.0
// The file of a backup of a module's memory.

#include "fuzz/InputFile.h"
#include "fuzz/Target.h"
#include "fuzz/mutateWire.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/toText.h"
#include "tests/support/WireTexts.h"
#include "tests/support/readFile.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace zorv::fuzz {

namespace {

void run(std::string const& text) {
    InputFile const file(text);
    ManageNvmMsg message;
    auto const result = message.read(file.path());
    expect(result == ZResult::success || result == ZResult::fileReadFailure || result == ZResult::noBlobs,
           "a file that is there is read, refused, or has no blobs");
    expect(result != ZResult::success || !message.blobs().empty(), "success means blobs");
    std::uint64_t size = 0;
    bool areIntact = true;
    for (auto const& blob : message.blobs()) {
        expect(blob != nullptr, "a blob that was found is there");
        size += blob->size();
        areIntact = areIntact && blob->crc() == blob->computeCrc();
        auto const bytes = blob->getContents();
        expect(bytes.empty() || blob->checkCrc(), "contents are given only where the checksum holds");
    }
    expect(message.size() == size, "the size is that of all blobs");
    expect(message.checkBlobs() == areIntact, "all blobs are checked");
    if (message.blobs().empty()) { return; }
    // What was read is written as a message, and that is a backup with the same blobs.
    std::string written;
    try {
        written = toText(message);
    } catch (SerializerError const&) { return; } // the file was not UTF-8
    InputFile const copy(written);
    ManageNvmMsg again;
    expect(again.read(copy.path()) == ZResult::success, "what was written is a backup: " + written);
    expect(again.homeId() == message.homeId(), "with the same home id");
    expect(again.blobs().size() == message.blobs().size(), "and as many blobs");
    for (std::size_t i = 0; i < message.blobs().size(); ++i) {
        expect(toText(*again.blobs()[i]) == toText(*message.blobs()[i]), "and the same ones");
    }
}

Target::Texts seeds() {
    Target::Texts texts{readFile(sourcePath("examples/nvm-backup.json")),
                        readFile(sourcePath("tests/golden/ManageNvmMsg.json")),
                        readFile(sourcePath("tests/golden/Blob.json"))};
    std::mt19937 random(1);
    WireTexts wire([&random](std::uint64_t limit) { return random() % limit; });
    for (int i = 0; i < 3; ++i) { texts.push_back(wire.object("zorv::ManageNvmMsg")); }
    return texts;
}

Registration const registration({"nvmBackup", &run, &seeds, &wireWords, &mutateWire});

} // namespace

} // namespace zorv::fuzz
