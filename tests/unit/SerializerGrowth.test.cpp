// SPDX-License-Identifier: Apache-2.0
// Reading a text takes time in proportion to its size, whatever its order, depth and keys.

#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/limits.h"

#include <gtest/gtest.h>

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>

namespace zorv {
namespace {

using Make = std::function<std::string(std::size_t size)>;
using Read = std::function<void(Serializer&)>;

/// Processor time of this thread in seconds, which a busy machine does not add to.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Memory that has been given back is taken again, and not asked of the kernel, whose new pages would cost more than the
/// reading of plain text.
void keepMemory() {
    constexpr int most = 32 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, most);
    mallopt(M_TRIM_THRESHOLD, most);
}

/// The shortest of some runs, in seconds.
double timeToRead(std::string const& text, Read const& read) {
    auto shortest = std::numeric_limits<double>::max();
    for (int i = 0; i < 5; ++i) {
        auto const start = now();
        Serializer s(text);
        read(s);
        shortest = std::min(shortest, now() - start);
    }
    return shortest;
}

/// Eight times the text takes about eight times the time, and somewhat more where only the small one fits into a cache;
/// with the square of the size it would be 64 times. A moment in which the machine was slower proves nothing, so that
/// the second and third try count as well.
void expectLinear(std::size_t size, Make const& make, Read const& read) {
    keepMemory();
    auto const smallText = make(size);
    auto const largeText = make(8 * size);
    auto factor = std::numeric_limits<double>::max();
    for (int i = 0; i < 3 && factor >= 32; ++i) {
        factor = std::min(factor, timeToRead(largeText, read) / timeToRead(smallText, read));
    }
    EXPECT_LT(factor, 32);
}

void readNothing(Serializer&) {}

std::string repeated(std::string const& text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) { result += text; }
    return result;
}

/// Objects within objects; each has to be stepped over before its name is found.
void readNested(Serializer& s) {
    std::string className;
    s >> Serializer::name >> className;
    s >> "child";
    if (!s.skipAbsent()) { readNested(s); }
    s >> finished;
}

TEST(SerializerGrowth, IsLinearWhereTheNameComesLastOnEveryLevel) {
    expectLinear(
        15,
        [](std::size_t levels) {
            return repeated(R"({"child":)", levels) + "{}" + repeated(R"(,"__name__":"A"})", levels);
        },
        [](Serializer& s) { readNested(s); });
    // The same depth, with much to step over on each level.
    expectLinear(
        300,
        [](std::size_t size) {
            return repeated(R"({"other":")" + std::string(size, 'x') + R"(","child":)", 118) + "{}" +
                   repeated(R"(,"__name__":"A"})", 118);
        },
        [](Serializer& s) { readNested(s); });
}

std::string manyKeys(std::size_t count, std::string const& prefix) {
    std::string text = "{";
    for (std::size_t i = count; i-- > 0;) { text += '"' + prefix + std::to_string(i) + "\":0,"; }
    return text + "\"last\":1}";
}

void readKeysBackwards(Serializer& s) {
    for (auto const* const key : {"last", "2", "1", "0", "absent", "none"}) {
        int value = 0;
        s >> key >> value;
    }
}

TEST(SerializerGrowth, IsLinearWhereOneObjectHasManyKeys) {
    expectLinear(
        4000, [](std::size_t count) { return manyKeys(count, ""); }, &readKeysBackwards);
    expectLinear(
        1000, [](std::size_t count) { return manyKeys(count, std::string(200, 'k')); }, &readKeysBackwards);
    expectLinear(
        4000, [](std::size_t count) { return manyKeys(count, "\\u006b"); }, &readKeysBackwards);
}

TEST(SerializerGrowth, IsLinearInNestedAndEmptyValues) {
    for (std::string const element : {"[],", "{},", "[[[[[[]]]]]],", "0,", R"({"a":{"b":{}}},)", "\"\","}) {
        expectLinear(
            4000, [&](std::size_t count) { return '[' + repeated(element, count) + "0]"; }, &readNothing);
    }
}

TEST(SerializerGrowth, IsLinearWhereALongArrayIsSteppedThrough) {
    expectLinear(
        4000, [](std::size_t count) { return '[' + repeated(R"({"a":[[]],"b":"c"},)", count) + "0]"; },
        [](Serializer& s) {
            for (std::size_t i = 0; i < s.size(); ++i) { s.element(i) >> finished; }
        });
}

TEST(SerializerGrowth, IsLinearInTheCharactersOfAString) {
    for (std::string const piece : {"x", "\\n", "\\ud83d\\ude00", "\xC3\xBC", "x\\\\"}) {
        expectLinear(
            20000, [&](std::size_t count) { return '"' + repeated(piece, count) + '"'; },
            [](Serializer& s) {
                std::string value;
                s >> value;
            });
    }
}

TEST(SerializerGrowth, IsLinearInTheEntriesOfABasesArray) {
    expectLinear(
        4000,
        [](std::size_t count) {
            return R"({"__bases__":[)" + repeated(R"({"v":1,"__name__":"A"},)", count) + R"({"__name__":"B"}]})";
        },
        [](Serializer& s) { s >> Serializer::bases >> "B" >> finished >> "C" >> finished >> finished; });
}

TEST(SerializerGrowth, AMillionKeysAreRead) {
    auto const text = manyKeys(limits::maxValues - 2, "");
    int value = 0;
    Serializer s(text);
    s >> "last" >> value;
    EXPECT_EQ(value, 1);
}

} // namespace
} // namespace zorv
