// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/MemoryImpl.h"

#include "platform/libzorvshared/nodeIds.h"
#include "zwave/libmodulesim/FamiliesImpl.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace zorv::modulesim {

namespace api = serialapi;

namespace {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t nodeMaskBytes = 29;
constexpr Byte erased = 0xFF;

// ---- how the membership stands in memory; tables as those of the functions

struct NetworkHead {
    static constexpr std::uint32_t known = 0x5A53494D;

    std::uint32_t mark = 0; ///< tells a memory with a membership from an erased one
    std::uint32_t homeId = 0;
    Byte node = 0;
    Byte updateController = 0;
    Byte roles = 0; ///< 1 SIS, 2 secondary
    Byte count = 0; ///< of the nodes that follow

    static constexpr auto fields() {
        return api::layout(api::number("mark", &NetworkHead::mark), api::number("homeId", &NetworkHead::homeId),
                           api::number("node", &NetworkHead::node),
                           api::number("updateController", &NetworkHead::updateController),
                           api::number("roles", &NetworkHead::roles), api::number("count", &NetworkHead::count));
    }
};

struct NodeEntry {
    Byte id = 0;
    api::GetNodeProtocolInfo::Response information;
    std::array<Byte, nodeMaskBytes> neighbours = {};

    static constexpr auto fields() {
        return api::layout(api::number("id", &NodeEntry::id), api::record(&NodeEntry::information),
                           api::array("neighbours", &NodeEntry::neighbours));
    }
};

std::size_t sizeOf(SimulatedNetwork const& described) {
    if (!described.nvmImage.empty()) { return described.nvmImage.size(); }
    if (described.nvmSize != 0) { return described.nvmSize; }
    switch (described.generation) {
    case Generation::series500: return 128 * kibibyte;
    case Generation::series700: return 48 * kibibyte;
    case Generation::series800: break;
    }
    return 160 * kibibyte;
}

Bytes writeMembership(Membership const& membership) {
    api::ParameterWriter out(api::NodeIdWidth::one);
    auto const roles = (membership.isSis ? 1U : 0U) | (membership.isSecondary ? 2U : 0U);
    writeFields(out, NetworkHead{NetworkHead::known, membership.homeId, static_cast<Byte>(membership.node),
                                 static_cast<Byte>(membership.updateController), static_cast<Byte>(roles),
                                 static_cast<Byte>(membership.nodes.size())});
    for (auto const& [id, record] : membership.nodes) {
        api::BitMask mask{Bytes(nodeMaskBytes)};
        for (auto const neighbour : record.neighbours) { mask.insert(neighbour); }
        NodeEntry entry{static_cast<Byte>(id), record.information, {}};
        std::copy_n(mask.bytes.begin(), nodeMaskBytes, entry.neighbours.begin());
        writeFields(out, entry);
    }
    return out.take();
}

/// Nothing where no membership stands there: a host may have written anything.
std::optional<Membership> readMembership(Bytes const& image) {
    api::ParameterReader in(image, api::NodeIdWidth::one);
    NetworkHead head;
    if (!readFields(in, head) || head.mark != NetworkHead::known || !isNodeId(head.node)) { return std::nullopt; }
    Membership membership{head.homeId, head.node, head.updateController, (head.roles & 1U) != 0, (head.roles & 2U) != 0,
                          {}};
    for (int i = 0; i < head.count; ++i) {
        NodeEntry entry;
        if (!readFields(in, entry) || !isNodeId(entry.id)) { return std::nullopt; }
        api::BitMask const mask{Bytes(entry.neighbours.begin(), entry.neighbours.end())};
        membership.nodes[entry.id] = {entry.information, mask.numbers()};
    }
    return membership;
}

} // namespace

Memory::Memory(Core& core) : core_(core), image_(std::max(sizeOf(core.described), 16 * kibibyte), erased) {
    // Something that differs from place to place, so that a piece that is read from the wrong one shows.
    std::mt19937 random(core.described.seed);
    for (std::size_t i = applicationOffset; i < applicationOffset + applicationSize; ++i) {
        image_[i] = static_cast<Byte>(random());
    }
    std::copy(core.described.nvmImage.begin(), core.described.nvmImage.end(), image_.begin());
    if (auto membership = readMembership(image_)) {
        core.membership = std::move(*membership);
    } else {
        keep();
    }
    core.hooks.membershipChanged = [this] { keep(); };
    core.hooks.restarting = [this] { load(); };
}

Bytes Memory::read(std::size_t offset, std::size_t length) const {
    auto const begin = std::min(offset, image_.size());
    auto const end = std::min(begin + length, image_.size());
    return Bytes(image_.begin() + static_cast<std::ptrdiff_t>(begin),
                 image_.begin() + static_cast<std::ptrdiff_t>(end));
}

bool Memory::write(std::size_t offset, Bytes const& data) {
    hasBeenWritten_ = true;
    bool hasChanged = false;
    for (std::size_t i = 0; i < data.size() && offset + i < image_.size(); ++i) {
        hasChanged = hasChanged || image_[offset + i] != data[i];
        image_[offset + i] = data[i];
    }
    return hasChanged;
}

bool Memory::fails(std::size_t offset, std::size_t length) {
    return core_.faults.hitsMemory(offset + length, image_.size(), core_.time());
}

void Memory::keep() {
    auto const bytes = writeMembership(core_.membership);
    std::copy(bytes.begin(), bytes.end(), image_.begin());
    std::fill(image_.begin() + static_cast<std::ptrdiff_t>(bytes.size()),
              image_.begin() + static_cast<std::ptrdiff_t>(applicationOffset), erased);
    ++ownWrites_;
}

/// What a host has written counts from the next start on. A memory without a membership makes a fresh module.
void Memory::load() {
    if (!std::exchange(hasBeenWritten_, false)) { return; }
    auto membership = readMembership(image_);
    if (!membership) { return core_.toFactoryDefaults(); }
    core_.membership = std::move(*membership);
    core_.failed.clear();
}

// ---- the functions

namespace {

constexpr std::size_t largestPiece500 = 168; ///< more is answered with nothing
constexpr std::size_t largestPiece = 64;

/// Bytes of the host's application, by an offset of their own.
void serveApplicationMemory(Core& core, Memory& memory) {
    constexpr auto base = Memory::applicationOffset;
    constexpr Byte unchanged = 1;
    constexpr Byte written = 2;
    auto const put = [&memory](std::size_t offset, Bytes const& data) {
        if (offset + data.size() > Memory::applicationSize) { return Byte{0}; }
        return memory.write(base + offset, data) ? written : unchanged;
    };
    auto const get = [&memory](std::size_t offset, std::size_t length) {
        if (offset >= Memory::applicationSize) { return Bytes(); }
        return memory.read(base + offset, std::min(length, Memory::applicationSize - offset));
    };
    core.serve<api::MemoryGetByte>([get](api::MemoryGetByte::Request const& request) {
        auto const bytes = get(request.offset, 1);
        return api::Setting{bytes.empty() ? Byte{0} : bytes[0]};
    });
    core.serve<api::MemoryPutByte>([put](api::MemoryPutByte::Request const& request) {
        return api::Setting{put(request.offset, {request.value})};
    });
    core.serve<api::MemoryGetBuffer>([get](api::MemoryGetBuffer::Request const& request) {
        return api::MemoryContent{get(request.offset, request.length)};
    });
    core.serve<api::MemoryPutBuffer>([&core, put](api::MemoryPutBuffer::Request const& request) {
        auto const result = put(request.offset, request.data);
        if (result != 0) {
            core.after(Milliseconds(1),
                       [&core, id = request.callbackId] { core.callBack<api::MemoryPutBuffer>({id}); });
        }
        return api::Accepted{result};
    });
}

void serveMemory500(Core& core, Memory& memory) {
    core.serve<api::NvmGetId>([&memory](auto const&) {
        constexpr Byte flash = 0x80;
        Byte size = 0x0E;
        for (auto bytes = 16 * kibibyte; bytes < memory.size(); bytes *= 2) { ++size; }
        return api::NvmGetId::Response{3, 0x20, flash, size};
    });
    core.serve<api::NvmExtReadLongBuffer>([&memory](api::NvmExtReadLongBuffer::Request const& request) {
        bool const isTooMuch = request.length > largestPiece500;
        bool const isNothing = isTooMuch || memory.fails(request.address, request.length);
        return api::MemoryContent{isNothing ? Bytes() : memory.read(request.address, request.length)};
    });
    core.serve<api::NvmExtWriteLongBuffer>([&memory](api::NvmExtWriteLongBuffer::Request const& request) {
        return api::Setting{memory.write(request.address, request.data) ? Byte{1} : Byte{0}};
    });
    core.serve<api::NvmExtReadLongByte>([&memory](api::NvmExtReadLongByte::Request const& request) {
        auto const bytes = memory.read(request.address, 1);
        return api::Setting{bytes.empty() ? erased : bytes[0]};
    });
    core.serve<api::NvmExtWriteLongByte>([&memory](api::NvmExtWriteLongByte::Request const& request) {
        return api::Setting{memory.write(request.address, {request.value}) ? Byte{1} : Byte{0}};
    });
}

/// A session in which the whole memory is read, or written. `F` says how many bytes an offset takes.
template <class F> class MemorySession {
public:
    using Request = typename F::Request;
    using Response = typename F::Response;
    using Offset = decltype(Request::offset);

    MemorySession(Core& core, Memory& memory) : core_(core), memory_(memory) {}

    Response take(Request const& request) {
        switch (request.operation) {
        case F::open: return open();
        case F::close: return close();
        case F::read:
        case F::write: return access(request);
        default: return {F::unsupported, 0, 0, {}};
        }
    }

    void forget() { isOpen_ = false; }

private:
    enum class Use { none, reading, writing };

    /// The radio is off while the memory is open.
    Response open() {
        isOpen_ = true;
        use_ = Use::none;
        ownWrites_ = memory_.ownWrites();
        core_.isRadioOn = false;
        Response response{F::ok, 0, static_cast<Offset>(memory_.size()), {}};
        if constexpr (sizeof(Offset) > 2) {
            response.data = {0x0F}; // the four operations
            response.length = 1;
        }
        return response;
    }

    Response close() {
        if (!isOpen_) { return {F::error, 0, 0, {}}; }
        isOpen_ = false;
        core_.isRadioOn = true;
        return {isDisturbed() ? F::disturbed : F::ok, 0, 0, {}};
    }

    Response access(Request const& request) {
        auto const use = request.operation == F::read ? Use::reading : Use::writing;
        auto const fail = [&request](Byte status) { return Response{status, 0, request.offset, {}}; };
        if (!isOpen_) { return fail(F::error); }
        if (use_ != Use::none && use_ != use) { return fail(F::mixed); }
        if (isDisturbed()) { return fail(F::disturbed); }
        use_ = use;
        return use == Use::reading ? read(request) : write(request);
    }

    Response read(Request const& request) const {
        if (memory_.fails(request.offset, request.length)) { return {F::error, 0, request.offset, {}}; }
        auto const data = memory_.read(request.offset, std::min<std::size_t>(request.length, largestPiece));
        bool const isEnd = request.offset + data.size() >= memory_.size();
        return {isEnd ? F::endOfFile : F::ok, static_cast<Byte>(data.size()), request.offset, data};
    }

    Response write(Request const& request) {
        auto const size = request.data.size();
        if (size > largestPiece || size != request.length || request.offset + size > memory_.size()) {
            return {F::error, 0, request.offset, {}};
        }
        memory_.write(request.offset, request.data);
        bool const isEnd = request.offset + size == memory_.size();
        return {isEnd ? F::endOfFile : F::ok, static_cast<Byte>(size), request.offset, {}};
    }

    bool isDisturbed() const { return memory_.ownWrites() != ownWrites_; }

    Core& core_;
    Memory& memory_;
    bool isOpen_ = false;
    Use use_ = Use::none;
    std::uint64_t ownWrites_ = 0;
};

template <class F> void serveSession(Core& core, Memory& memory) {
    auto const session = std::make_shared<MemorySession<F>>(core, memory);
    core.onReset([session] { session->forget(); });
    core.serve<F>([session](typename F::Request const& request) { return session->take(request); });
}

} // namespace

void serveMemory(Core& core) {
    auto const memory = std::make_shared<Memory>(core);
    core.onReset([memory] {}); // keeps it
    serveApplicationMemory(core, *memory);
    core.serve<api::NvrGetValue>([](api::NvrGetValue::Request const& request) {
        return api::MemoryContent{Bytes(request.length, erased)}; // nothing is set
    });
    if (core.isSeries500()) { return serveMemory500(core, *memory); }
    constexpr auto largestForShortOffsets = 64 * kibibyte;
    if (memory->size() <= largestForShortOffsets) { serveSession<api::NvmBackupRestore>(core, *memory); }
    if (core.described.generation == Generation::series800) {
        serveSession<api::NvmExtendedBackupRestore>(core, *memory);
    }
}

} // namespace zorv::modulesim
