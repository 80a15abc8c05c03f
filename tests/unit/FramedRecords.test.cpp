// SPDX-License-Identifier: Apache-2.0
// What holds for every record that is referred to, as the suite over the catalogue's list does for messages.

#include "platform/libzorvshared/Device.h"
#include "platform/libzorvshared/RawCommand.h"
#include "tests/support/errorOf.h"
#include "tests/support/golden.h"
#include "tests/support/json.h"
#include "tests/support/wire.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zorv {
namespace {

template <class Record> class FramedRecords : public testing::Test {
protected:
    static Json::Value goldenJson() { return toJson(golden(Record::NAME)); }

    static Json::Value blank() { return toJson(*readSerializable("{\"__name__\":\"zorv::" + Record::NAME + "\"}")); }

    static std::vector<std::string> ownKeys() {
        std::vector<std::string> keys;
        for (auto const& key : goldenJson().getMemberNames()) {
            if (key.rfind("__", 0) != 0) { keys.push_back(key); }
        }
        return keys;
    }
};

using Records = testing::Types<Blob, Device, RawCommand>;

struct RecordName {
    template <class Record> static std::string GetName(int) { return Record::NAME; }
};

TYPED_TEST_SUITE(FramedRecords, Records, RecordName);

TYPED_TEST(FramedRecords, ReadAndWriteTheirGoldenText) {
    auto const text = golden(TypeParam::NAME);
    auto const record = readSerializable(text);
    ASSERT_NE(dynamic_cast<TypeParam const*>(record.get()), nullptr);
    EXPECT_EQ(toText(*record), text);
}

TYPED_TEST(FramedRecords, HaveNoMemberAtItsDefaultInTheirGoldenText) {
    ASSERT_FALSE(this->ownKeys().empty());
    for (auto const& key : this->ownKeys()) { EXPECT_NE(this->goldenJson()[key], this->blank()[key]) << key; }
}

TYPED_TEST(FramedRecords, KeepAMemberAtItsDefaultWhereItsKeyIsAbsent) {
    for (auto const& key : this->ownKeys()) {
        auto text = this->goldenJson();
        text.removeMember(key);
        auto expected = this->goldenJson();
        expected[key] = this->blank()[key];
        EXPECT_EQ(toText(toJson(*readSerializable(toText(text)))), toText(expected)) << key;
    }
}

TYPED_TEST(FramedRecords, RefuseAMemberOfAnotherTypeByItsPath) {
    for (auto const& key : this->ownKeys()) {
        auto text = this->goldenJson();
        text[key] = text[key].isObject() ? Json::Value(7) : Json::Value(Json::objectValue);
        EXPECT_THAT(errorOfReading(toText(text)), testing::StartsWith("SerializerError: " + key + ": expected "));
    }
}

} // namespace
} // namespace zorv
