// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/uuidText.h"

#include "platform/libtransport/freshIdentity.h"

#include <gtest/gtest.h>

#include <boost/uuid/uuid_io.hpp>

#include <cstddef>
#include <string>

namespace zorv {
namespace {

using boost::uuids::uuid;

constexpr char const* sample = "0189abcd-ef01-4234-8567-89abcdef0123";

std::string textOf(uuid const& id) {
    std::string text(uuidTextSize, '.');
    EXPECT_EQ(putUuid(text.data(), id), text.data() + uuidTextSize);
    return text;
}

TEST(UuidText, HasTheFormOfBoosts) {
    for (int i = 0; i < 1000; ++i) {
        auto const id = freshIdentity();
        EXPECT_EQ(textOf(id), boost::uuids::to_string(id));
    }
}

TEST(UuidText, ReadsBackToTheSameIdentity) {
    for (int i = 0; i < 1000; ++i) {
        auto const id = freshIdentity();
        uuid read{};
        ASSERT_TRUE(parseUuid(textOf(id), read));
        EXPECT_EQ(read, id);
    }
}

TEST(UuidText, IsRefusedWithAnyOtherCharacterInAnyPlace) {
    for (std::size_t place = 0; place < uuidTextSize; ++place) {
        for (int c = 0; c < 256; ++c) {
            std::string text(sample);
            text[place] = static_cast<char>(c);
            bool const isHyphen = sample[place] == '-';
            bool const fits = isHyphen ? c == '-' : (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
            uuid id{};
            ASSERT_EQ(parseUuid(text, id), fits) << text;
            ASSERT_EQ(id.is_nil(), !fits) << "what is refused leaves the identity as it was";
        }
    }
}

TEST(UuidText, IsRefusedWithAnotherLength) {
    uuid id{};
    EXPECT_FALSE(parseUuid("", id));
    EXPECT_FALSE(parseUuid(std::string(sample) + "0", id));
    EXPECT_FALSE(parseUuid(std::string(sample).substr(1), id));
}

} // namespace
} // namespace zorv
