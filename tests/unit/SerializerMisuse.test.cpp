// SPDX-License-Identifier: Apache-2.0
// Code that would read or write something else than it seems to does not compile.

#include "platform/libtransport/SerialValue.h"
#include "platform/libtransport/Serializer.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace zorv {
namespace {

template <class T, class = void> struct IsWritable : std::false_type {};
template <class T> struct IsWritable<T, std::void_t<decltype(std::declval<Serializer&>() << std::declval<T>())>>
    : std::true_type {};

template <class T, class = void> struct IsReadable : std::false_type {};
template <class T> struct IsReadable<T, std::void_t<decltype(std::declval<Serializer&>() >> std::declval<T>())>>
    : std::true_type {};

struct Record;

// A pointer would be written as true, a character as a number.
static_assert(!IsWritable<Record*>::value);
static_assert(!IsWritable<int const*>::value);
static_assert(!IsWritable<void*>::value);
static_assert(!IsWritable<char>::value);
static_assert(IsWritable<char const*>::value);
static_assert(IsWritable<char*>::value);
static_assert(IsWritable<decltype("text")>::value);
static_assert(IsWritable<unsigned char>::value);
static_assert(IsWritable<bool>::value);
static_assert(IsWritable<Serializer::Manipulator>::value);

// A string that is not constant is read; one that is constant would look the same and select.
static_assert(IsReadable<std::string&>::value);
static_assert(!IsReadable<std::string const&>::value);
static_assert(!IsReadable<std::string>::value);
static_assert(IsReadable<char const*>::value);
static_assert(IsReadable<decltype(Serializer::name)&>::value);

TEST(SerializerMisuse, TheKeysOfAFrameSelectAndAreStrings) {
    Serializer s(R"({"__name__":"zorv::PingMsg"})");
    std::string const key = Serializer::name;
    std::string className;
    s >> Serializer::name >> className;
    EXPECT_EQ(key, "__name__");
    EXPECT_EQ(className, "zorv::PingMsg");
}

} // namespace
} // namespace zorv
