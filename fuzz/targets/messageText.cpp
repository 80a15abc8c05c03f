// SPDX-License-Identifier: Apache-2.0
// A text that a peer sends as a message.

#include "fuzz/Target.h"
#include "fuzz/mutateWire.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/readMessage.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "platform/libtransport/toText.h"
#include "tests/support/WireTexts.h"
#include "tests/support/damagedTexts.h"
#include "tests/support/withSortedPairs.h"
#include "tests/unit/oracle/disagreement.h"
#include "transport/CliViewer.h"
#include "zwave/libquillet/ZorvError.h"

#include <boost/crc.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <stdexcept>

namespace zorv::fuzz {

namespace {

/// Reads an object; null where the text is refused by an error that a reader may have.
boost::shared_ptr<Serializable> read(std::string const& text) {
    try {
        return readSerializable(text);
    } catch (SerializerError const&) {
    } catch (InvalidEnumError const&) {
    } catch (MessageError const&) {}
    return nullptr;
}

void readAsMessage(std::string const& text, bool isMessage) {
    try {
        expect(readMessage(text) != nullptr, "a message that is read is there");
        expect(isMessage, "what is read as a message is an object that is one");
    } catch (BadMessageError const& error) {
        std::string const complaint = error.what();
        expect(!isMessage, "what is an object that is a message is read as one: " + complaint);
        expect(!complaint.empty() && complaint.size() < 2000, "a complaint is short");
        for (auto const byte : complaint) {
            expect(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F, "a complaint has no control characters");
        }
    }
}

/// Whether two texts differ in nothing but the order in which maps without one were written.
bool isSame(std::string const& a, std::string const& b) {
    return a == b || (a.size() == b.size() && withSortedPairs(a) == withSortedPairs(b));
}

/// What can be done with an object that a peer has sent, short of what its class alone offers.
void use(Serializable const& object) {
    if (auto const* const request = dynamic_cast<TConfirmable const*>(&object)) {
        auto const copy = request->clone();
        expect(isSame(toText(*copy), toText(object)), "a copy is written as what it is a copy of");
    }
    auto const* const viewer = dynamic_cast<CliViewer const*>(&object);
    if (viewer == nullptr) { return; }
    try {
        StringVecVec rows;
        viewer->accumulateDisplay(rows);
    } catch (NullPointerError const&) {
    } catch (InvalidEnumError const&) {
    } catch (std::out_of_range const&) {}
}

void run(std::string const& text) {
    boost::crc_32_type crc;
    crc.process_bytes(text.data(), text.size());
    expect(disagreement(text, crc.checksum()).empty(), "both readers agree");
    auto const first = read(text);
    readAsMessage(text, first != nullptr && first->asMessage() != nullptr);
    if (!first) { return; }
    use(*first);
    auto const second = toText(*first);
    auto const again = read(second);
    expect(again != nullptr, "what was written is read: " + second);
    auto const third = toText(*again);
    expect(isSame(third, second), "what is read again is written as before:\n" + second + '\n' + third);
}

Target::Texts seeds() {
    auto texts = goldenTexts();
    std::mt19937 random(1);
    WireTexts wire([&random](std::uint64_t limit) { return random() % limit; });
    for (auto const& name : WireTexts::names()) { texts.push_back(wire.object(name)); }
    return texts;
}

Registration const registration({"messageText", &run, &seeds, &wireWords, &mutateWire});

} // namespace

} // namespace zorv::fuzz
