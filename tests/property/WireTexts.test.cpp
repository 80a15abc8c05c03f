// SPDX-License-Identifier: Apache-2.0
#include "tests/property/property.h"

#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/TConfirmable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/json.h"
#include "tests/support/wire.h"
#include "tests/support/withSortedPairs.h"
#include "tests/unit/oracle/disagreement.h"
#include "zwave/libquillet/ZorvError.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zorv {

namespace {

std::string anyClass() { return *rc::gen::elementOf(WireTexts::names()); }

std::string anyClassFrom(std::string const& base) { return *rc::gen::elementOf(kindsOf(WireTexts::classes(), base)); }

/// A text of at most so many bytes, of which few are UTF-8.
std::string anyBytes() {
    auto const bytes = *rc::gen::arbitrary<std::vector<unsigned char>>();
    return {bytes.begin(), bytes.end()};
}

} // namespace

RC_GTEST_PROP(WireText, OfAnyMembersIsWrittenAsItWasRead, ()) {
    auto const text = WireTexts(generated()).object(anyClass());
    auto const object = readSerializable(text);
    auto const written = toText(*object);
    RC_ASSERT(withSortedPairs(written) == withSortedPairs(text));
    RC_ASSERT(written.size() == text.size()); // nothing between the values, no other way to write a number
    RC_ASSERT(withSortedPairs(toText(*readSerializable(written))) == withSortedPairs(written));
}

RC_GTEST_PROP(WireText, OfAnyMembersIsReadInAnyOrderOfItsKeys, ()) {
    auto const text = WireTexts(generated()).object(anyClass());
    auto const expected = withSortedPairs(toText(*readSerializable(text)));
    auto const value = toJson(text);
    RC_ASSERT(withSortedPairs(toText(*readSerializable(toText(value)))) == expected);
    RC_ASSERT(withSortedPairs(toText(*readSerializable(toTextBackwards(value)))) == expected);
}

RC_GTEST_PROP(WireText, OfAnyMembersIsReadAsTheTreeReaderReadsIt, ()) {
    auto const text = WireTexts(generated()).object(anyClass());
    RC_ASSERT(disagreement(text, *rc::gen::arbitrary<unsigned int>()).empty());
}

RC_GTEST_PROP(WireText, IsThatOfItsCopy, ()) {
    auto const request =
        readBack<TConfirmable>(WireTexts(generated()).object(anyClassFrom(TConfirmable::serialName())));
    RC_ASSERT(withSortedPairs(toText(*request->clone())) == withSortedPairs(toText(*request)));
}

RC_GTEST_PROP(WireText, IsShownOrRefusedAsIsDocumented, ()) {
    auto const message = readBack<TMessage>(WireTexts(generated()).object(anyClassFrom(TMessage::serialName())));
    try {
        StringVecVec rows;
        message->accumulateDisplay(rows);
    } catch (NullPointerError const&) {
    } catch (InvalidEnumError const&) {
    } catch (std::out_of_range const&) {}
}

RC_GTEST_PROP(Serializer, WritesAnyBytesAsATextThatReadsBackOrRefusesThem, ()) {
    auto const bytes = anyBytes();
    Serializer writer;
    try {
        writer << bytes;
    } catch (SerializerError const& error) {
        RC_ASSERT(std::string(error.what()) == "cannot write a text that is not UTF-8");
        RC_ASSERT(std::any_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) > 0x7F; }));
        RC_ASSERT(writer.str().empty());
        return;
    }
    std::string read;
    Serializer reader(writer.str());
    reader >> read;
    RC_ASSERT(read == bytes);
    RC_ASSERT(toJson('[' + writer.str() + ']')[0].asString() == bytes);
}

RC_GTEST_PROP(Serializer, TakesTheTextsThatAnotherWriterMakesOfAnyCharacters, ()) {
    // JsonCpp writes everything but ASCII as escapes.
    std::string utf8;
    for (auto left = *rc::gen::inRange(0, 20); left > 0; --left) {
        utf8 += toJson(WireTexts(generated()).value({TypeDescriptor::Kind::text, "string"})).asString();
    }
    std::string read;
    Serializer reader(toText(Json::Value(utf8)));
    reader >> read;
    RC_ASSERT(read == utf8);
}

RC_GTEST_PROP(Reader, RefusesAnyBytesThatAreNoObject, ()) {
    auto const bytes = anyBytes();
    try {
        readSerializable(bytes);
    } catch (SerializerError const& error) {
        RC_ASSERT(std::string(error.what()).size() > 10);
        return;
    }
    RC_FAIL("it was read");
}

} // namespace zorv
