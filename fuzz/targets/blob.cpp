// SPDX-License-Identifier: Apache-2.0
// The contents of a chunk of a module's memory: bytes to store, and a text that came from elsewhere.

#include "fuzz/Target.h"

#include "platform/libtransport/SerializerError.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <cstddef>
#include <sstream>

namespace zorv::fuzz {

namespace {

/// Base64 bit by bit.
std::string encoded(std::string const& bytes) {
    constexpr auto digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        unsigned int digit = 0;
        for (auto at = bit; at < bit + 6; ++at) {
            auto const byte = at / 8 < bytes.size() ? static_cast<unsigned char>(bytes[at / 8]) : 0U;
            digit = digit * 2 + (byte >> (7 - at % 8) & 1U);
        }
        text += digits[digit];
    }
    while (text.size() % 4 != 0) { text += '='; }
    return text;
}

/// The input as bytes.
void store(std::string const& input) {
    OctetVec const bytes(input.begin(), input.end());
    Blob blob("name", 0);
    expect(!blob.setContents(bytes), "bytes can be stored");
    expect(blob.size() == bytes.size(), "their number is kept");
    expect(blob.contents() == encoded(input), "they are written as base64");
    expect(blob.checkCrc(), "their checksum holds");
    expect(blob.getContents() == bytes, "they come back");
}

/// The input as the text of a blob that somebody else has made.
void load(std::string const& input) {
    Blob const unchecked("name", 0, static_cast<unsigned int>(input.size()), 0, input);
    Blob const blob("name", 0, static_cast<unsigned int>(input.size()), unchecked.computeCrc(), input);
    auto const bytes = blob.getContents();
    if (unchecked.crc() != unchecked.computeCrc()) {
        expect(unchecked.getContents().empty(), "without a good checksum there are no bytes");
    }
    expect(bytes.empty() || encoded({bytes.begin(), bytes.end()}) == input, "a text is taken only for what it says");
    try {
        std::ostringstream os;
        blob.print(os);
        expect(!os.str().empty(), "it is printed");
    } catch (SerializerError const&) {
        expect(bytes.empty(), "what is base64 can be printed"); // and another text where it is UTF-8
    }
}

void run(std::string const& input) {
    store(input);
    load(input);
}

Target::Texts seeds() { return {"", "QUJD", "QUI=", "QQ==", "QUJD\nQUJD\n", "QUJDRA==QUJD", std::string("\0\xFF", 2)}; }

Registration const registration({"blob", &run, &seeds});

} // namespace

} // namespace zorv::fuzz
