// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/ModuleSim.h"

#include <algorithm>

namespace zorv::modulesim {

namespace {

constexpr std::size_t kibibyte = 1024;

/// Reads the whole memory in a session; the last status stands behind the bytes.
template <class F> std::pair<Bytes, int> readAll(HeardLink& link) {
    Bytes image;
    auto const opened = link.ask<F>({F::open, 0, 0, {}});
    EXPECT_EQ(opened->status, F::ok);
    while (true) {
        using Offset = decltype(F::Request::offset);
        auto const piece = link.ask<F>({F::read, 64, static_cast<Offset>(image.size()), {}});
        if (!piece) { return {image, -1}; }
        image.insert(image.end(), piece->data.begin(), piece->data.end());
        if (piece->status != F::ok) {
            link.ask<F>({F::close, 0, 0, {}});
            return {image, piece->status};
        }
    }
}

template <class F> void writeAll(HeardLink& link, Bytes const& image) {
    using Offset = decltype(F::Request::offset);
    link.ask<F>({F::open, 0, 0, {}});
    for (std::size_t offset = 0; offset < image.size(); offset += 64) {
        auto const begin = image.begin() + static_cast<std::ptrdiff_t>(offset);
        auto const end = begin + static_cast<std::ptrdiff_t>(std::min<std::size_t>(64, image.size() - offset));
        auto const written =
            link.ask<F>({F::write, static_cast<Byte>(end - begin), static_cast<Offset>(offset), {begin, end}});
        bool const isLast = offset + 64 >= image.size();
        ASSERT_EQ(written->status, isLast ? F::endOfFile : F::ok) << offset;
    }
    EXPECT_EQ(link.ask<F>({F::close, 0, 0, {}})->status, F::ok);
}

void restart(HeardLink& link) {
    link.host.call<api::SoftReset>({}, {}, link.now);
    link.passes(Milliseconds(1500));
}

} // namespace

using Short = api::NvmBackupRestore;
using Long = api::NvmExtendedBackupRestore;

TEST(ModuleSimMemory, TellsItsSizeAsItsGenerationDoes) {
    HeardLink old(smallNetwork(Generation::series500));
    EXPECT_EQ(old.ask<api::NvmGetId>()->size, 0x11);
    HeardLink recent(smallNetwork(Generation::series700));
    EXPECT_EQ(recent.ask<Short>({Short::open, 0, 0, {}})->offset, 48 * kibibyte);
    HeardLink latest(smallNetwork(Generation::series800));
    auto const opened = latest.ask<Long>({Long::open, 0, 0, {}});
    EXPECT_EQ(opened->offset, 160 * kibibyte);
    EXPECT_EQ(opened->data, Bytes{0x0F});
    auto network = smallNetwork(Generation::series800);
    network.nvmSize = 64 * kibibyte;
    HeardLink small(network);
    EXPECT_EQ(small.ask<Short>({Short::open, 0, 0, {}})->offset, 0); // 65,536 does not fit into two bytes
    EXPECT_EQ(small.ask<Long>({Long::open, 0, 0, {}})->offset, 64 * kibibyte);
}

TEST(ModuleSimMemory, IsReadInPiecesOfAtMost64BytesWhoseLastOneSaysThatItIs) {
    HeardLink link(smallNetwork(Generation::series700));
    link.ask<Short>({Short::open, 0, 0, {}});
    EXPECT_EQ(link.ask<Short>({Short::read, 200, 0, {}})->data.size(), 64U);
    auto const last = link.ask<Short>({Short::read, 64, 48 * kibibyte - 10, {}});
    EXPECT_EQ(last->data.size(), 10U);
    EXPECT_EQ(last->length, 10);
    EXPECT_EQ(last->status, Short::endOfFile);
}

TEST(ModuleSimMemory, IsEitherReadOrWrittenInASession) {
    HeardLink link(smallNetwork(Generation::series700));
    EXPECT_EQ(link.ask<Short>({Short::read, 64, 0, {}})->status, Short::error); // is not open
    EXPECT_EQ(link.ask<Short>({Short::close, 0, 0, {}})->status, Short::error);
    link.ask<Short>({Short::open, 0, 0, {}});
    link.ask<Short>({Short::read, 64, 0, {}});
    EXPECT_EQ(link.ask<Short>({Short::write, 1, 0, {0x00}})->status, Short::mixed);
    EXPECT_EQ(link.ask<Short>({7, 0, 0, {}})->status, Short::unsupported);
}

TEST(ModuleSimMemory, RefusesToWriteMoreThan64BytesOrBehindItsEnd) {
    HeardLink link(smallNetwork(Generation::series700));
    link.ask<Short>({Short::open, 0, 0, {}});
    EXPECT_EQ(link.ask<Short>({Short::write, 65, 0, Bytes(65)})->status, Short::error);
    EXPECT_EQ(link.ask<Short>({Short::write, 2, 48 * kibibyte - 1, Bytes(2)})->status, Short::error);
    EXPECT_EQ(link.ask<Short>({Short::write, 3, 0, Bytes(2)})->status, Short::error);
}

TEST(ModuleSimMemory, SwitchesTheRadioOffWhileItIsOpen) {
    HeardLink link(smallNetwork(Generation::series700));
    link.ask<Short>({Short::open, 0, 0, {}});
    EXPECT_FALSE(link.module.isRadioOn());
    EXPECT_EQ(link.ask<Short>({Short::close, 0, 0, {}})->status, Short::ok);
    EXPECT_TRUE(link.module.isRadioOn());
}

TEST(ModuleSimMemory, TellsThatTheModuleHasWrittenMeanwhile) {
    HeardLink link(smallNetwork(Generation::series700));
    link.ask<Short>({Short::open, 0, 0, {}});
    link.ask<api::SetSucNodeId>({1, 1, 0, 1, 0});
    EXPECT_EQ(link.ask<Short>({Short::read, 64, 0, {}})->status, Short::disturbed);
    EXPECT_EQ(link.ask<Short>({Short::close, 0, 0, {}})->status, Short::disturbed);
}

template <class F> void expectRestore(Generation generation) {
    HeardLink link(smallNetwork(generation));
    auto const [image, status] = readAll<F>(link);
    EXPECT_EQ(status, F::endOfFile);
    EXPECT_EQ(link.follow<api::SetDefault>({}, Milliseconds(2000)), "called done");
    EXPECT_EQ(link.module.nodes(), Ids{1});
    writeAll<F>(link, image);
    EXPECT_EQ(link.module.nodes(), Ids{1}); // counts from the next start on
    restart(link);
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(link.module.homeId(), 0xC0FFEE01U);
    EXPECT_EQ(link.ask<api::GetRoutingInfo>({2, 0, 0, {}})->neighbours.numbers(), (Ids{1, 5}));
    EXPECT_EQ(link.follow<api::SendData>({2, {0x00}, 0x25, 0}, Milliseconds(500)), "0 done");
    EXPECT_EQ(readAll<F>(link).first, image);
}

TEST(ModuleSimMemory, BringsTheNetworkBackWhenItIsRestored) {
    expectRestore<Short>(Generation::series700);
    expectRestore<Long>(Generation::series800);
}

TEST(ModuleSimMemory, MakesAFreshModuleWhenItIsErased) {
    HeardLink link(smallNetwork(Generation::series700));
    writeAll<Short>(link, Bytes(48 * kibibyte, 0xFF));
    restart(link);
    EXPECT_EQ(link.module.nodes(), Ids{1});
    EXPECT_NE(link.module.homeId(), 0xC0FFEE01U);
}

TEST(ModuleSimMemory, MakesAFreshModuleWhenItHoldsAnIdThatNoNodeHas) {
    constexpr std::size_t ownNode = 8;
    constexpr std::size_t firstNode = 12; // of those that follow
    for (auto const place : {ownNode, firstNode}) {
        HeardLink link(smallNetwork(Generation::series700));
        auto image = readAll<Short>(link).first;
        ASSERT_EQ(image.at(place), 1);
        image[place] = 0;
        writeAll<Short>(link, image);
        restart(link);
        EXPECT_EQ(link.module.nodes(), Ids{1}) << place;
    }
}

TEST(ModuleSimMemory, IsReadAndWrittenByAddressOnThe500Series) {
    HeardLink link(smallNetwork(Generation::series500));
    Bytes image;
    while (image.size() < 128 * kibibyte) {
        auto const piece = link.ask<api::NvmExtReadLongBuffer>({static_cast<std::uint32_t>(image.size()), 168});
        ASSERT_TRUE(piece && !piece->data.empty());
        image.insert(image.end(), piece->data.begin(), piece->data.end());
    }
    EXPECT_EQ(image.size(), 128 * kibibyte); // cut at the end
    EXPECT_EQ(link.ask<api::NvmExtReadLongBuffer>({0, 169})->data, Bytes());
    EXPECT_EQ(link.ask<api::NvmExtWriteLongBuffer>({0, {image.begin(), image.begin() + 64}})->value, 0); // is there
    link.follow<api::SetDefault>({}, Milliseconds(2000));
    for (std::uint32_t offset = 0; offset < 0x3000; offset += 128) {
        Bytes const piece(image.data() + offset, image.data() + offset + 128);
        link.ask<api::NvmExtWriteLongBuffer>({offset, piece});
    }
    restart(link);
    EXPECT_EQ(link.module.nodes(), (Ids{1, 2, 3, 4, 5}));
    EXPECT_EQ(link.ask<api::NvmExtWriteLongByte>({0x4000, 0x12})->value, 1);
    EXPECT_EQ(link.ask<api::NvmExtReadLongByte>({0x4000})->value, 0x12);
}

TEST(ModuleSimMemory, KeepsBytesOfTheHostsApplication) {
    HeardLink link(smallNetwork(Generation::series500));
    EXPECT_EQ(link.ask<api::MemoryPutByte>({5, 0x00})->value, 2);
    EXPECT_EQ(link.ask<api::MemoryPutByte>({5, 0x00})->value, 1);
    EXPECT_EQ(link.ask<api::MemoryGetByte>({5})->value, 0x00);
    EXPECT_EQ(link.ask<api::MemoryPutByte>({0x800, 0x00})->value, 0);
    EXPECT_EQ(link.follow<api::MemoryPutBuffer>({16, {1, 2, 3}, 0}, Milliseconds(100)), "called done");
    EXPECT_EQ(link.ask<api::MemoryGetBuffer>({16, 3})->data, (Bytes{1, 2, 3}));
    EXPECT_EQ(link.ask<api::MemoryGetBuffer>({0x7FF, 80})->data.size(), 1U); // cut at the end
}

} // namespace zorv::modulesim
