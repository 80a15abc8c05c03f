// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zwave/libserialapi/functions/Forms.h"

// The module's memory, and its firmware on the 500 series.

namespace zorv::serialapi {

struct MemoryGetByte {
    static constexpr Byte id = 0x21;
    static constexpr char const* name = "MemoryGetByte";
    struct Request {
        std::uint16_t offset = 0;

        static constexpr auto fields() { return layout(number("offset", &Request::offset)); }
    };
    using Response = Setting;
};

struct MemoryPutByte {
    static constexpr Byte id = 0x22;
    static constexpr char const* name = "MemoryPutByte";
    struct Request {
        std::uint16_t offset = 0;
        Byte value = 0;

        static constexpr auto fields() {
            return layout(number("offset", &Request::offset), number("value", &Request::value));
        }
    };
    using Response = Setting; ///< 0 error, 1 unchanged, more: written
};

/// A piece of memory, or nothing where the module refuses its size.
struct MemoryContent {
    Bytes data;

    static constexpr auto fields() { return layout(rest("data", &MemoryContent::data)); }
};

struct MemoryGetBuffer {
    static constexpr Byte id = 0x23;
    static constexpr char const* name = "MemoryGetBuffer";
    struct Request {
        std::uint16_t offset = 0;
        Byte length = 0;

        static constexpr auto fields() {
            return layout(number("offset", &Request::offset), number("length", &Request::length));
        }
    };
    using Response = MemoryContent;
};

namespace codecs {

/// Bytes after two bytes that count them.
struct Counted16 : Counted {
    static bool read(ParameterReader& in, Bytes& value) {
        std::uint32_t count = 0;
        return in.take(2, count) && in.take(count, value);
    }
    static void write(ParameterWriter& out, Bytes const& value) {
        out.put(2, static_cast<std::uint32_t>(value.size()));
        out.put(value);
    }
};

} // namespace codecs

template <class Form> constexpr auto counted16(char const* name, Bytes Form::*pointer) {
    return Field<Form, Bytes, codecs::Counted16>{name, pointer};
}

struct MemoryPutBuffer {
    static constexpr Byte id = 0x24;
    static constexpr char const* name = "MemoryPutBuffer";
    struct Request {
        std::uint16_t offset = 0;
        Bytes data;
        Byte callbackId = 0;

        static constexpr auto fields() {
            return layout(number("offset", &Request::offset), counted16("data", &Request::data),
                          number("callbackId", &Request::callbackId));
        }
    };
    using Response = Accepted;
    using Callback = JobCallback;
};

struct NvrGetValue {
    static constexpr Byte id = 0x28;
    static constexpr char const* name = "NvrGetValue";
    struct Request {
        Byte offset = 0;
        Byte length = 0;

        static constexpr auto fields() {
            return layout(number("offset", &Request::offset), number("length", &Request::length));
        }
    };
    using Response = MemoryContent;
};

struct NvmGetId {
    static constexpr Byte id = 0x29;
    static constexpr char const* name = "NvmGetId";
    using Request = Nothing;
    struct Response {
        Byte length = 0;
        Byte manufacturer = 0;
        Byte type = 0;
        Byte size = 0; ///< 0x0E 16 KiB, each one more twice as much

        static constexpr auto fields() {
            return layout(number("length", &Response::length), number("manufacturer", &Response::manufacturer),
                          number("type", &Response::type), number("size", &Response::size));
        }
    };
};

struct NvmExtReadLongBuffer {
    static constexpr Byte id = 0x2A;
    static constexpr char const* name = "NvmExtReadLongBuffer";
    struct Request {
        std::uint32_t address = 0;
        std::uint16_t length = 0;

        static constexpr auto fields() {
            return layout(number24("address", &Request::address), number("length", &Request::length));
        }
    };
    using Response = MemoryContent;
};

struct NvmExtWriteLongBuffer {
    static constexpr Byte id = 0x2B;
    static constexpr char const* name = "NvmExtWriteLongBuffer";
    struct Request {
        std::uint32_t address = 0;
        Bytes data;

        static constexpr auto fields() {
            return layout(number24("address", &Request::address), counted16("data", &Request::data));
        }
    };
    using Response = Setting; ///< 1 written, 0 it was there already: no error
};

struct NvmExtReadLongByte {
    static constexpr Byte id = 0x2C;
    static constexpr char const* name = "NvmExtReadLongByte";
    struct Request {
        std::uint32_t address = 0;

        static constexpr auto fields() { return layout(number24("address", &Request::address)); }
    };
    using Response = Setting;
};

struct NvmExtWriteLongByte {
    static constexpr Byte id = 0x2D;
    static constexpr char const* name = "NvmExtWriteLongByte";
    struct Request {
        std::uint32_t address = 0;
        Byte value = 0;

        static constexpr auto fields() {
            return layout(number24("address", &Request::address), number("value", &Request::value));
        }
    };
    using Response = Setting;
};

/// The session by which the 700 and 800 series read and write their memory, with an offset of 16 or of 32 bits.
template <class Offset> struct NvmSession {
    enum Operation : Byte { open = 0, read = 1, write = 2, close = 3 };
    enum Status : Byte { ok = 0, error = 1, mixed = 2, disturbed = 3, unsupported = 4, endOfFile = 0xFF };

    struct Request {
        Byte operation = 0;
        Byte length = 0; ///< to read, or of the data to write
        Offset offset = 0;
        Bytes data;

        static constexpr auto fields() {
            return layout(number("operation", &Request::operation), number("length", &Request::length),
                          number("offset", &Request::offset), rest("data", &Request::data));
        }
    };
    /// Of open, the offset is the size (0: 65,536 bytes).
    struct Response {
        Byte status = 0;
        Byte length = 0;
        Offset offset = 0;
        Bytes data;

        static constexpr auto fields() {
            return layout(number("status", &Response::status), number("length", &Response::length),
                          number("offset", &Response::offset), rest("data", &Response::data));
        }
    };
};

struct NvmBackupRestore : NvmSession<std::uint16_t> {
    static constexpr Byte id = 0x2E;
    static constexpr char const* name = "NvmBackupRestore";
};

/// Modules with more than 64 KiB have only this one.
struct NvmExtendedBackupRestore : NvmSession<std::uint32_t> {
    static constexpr Byte id = 0x3D;
    static constexpr char const* name = "NvmExtendedBackupRestore";
};

/// A new firmware for the 500 series, written into its memory and copied by its loader at the next start.
struct FirmwareUpdateNvm {
    static constexpr Byte id = 0x78;
    static constexpr char const* name = "FirmwareUpdateNvm";

    enum Operation : Byte { init = 0, setNewImage = 1, getNewImage = 2, crcOfArea = 3, isValid = 4, write = 5 };

    struct Area {
        std::uint32_t offset = 0;
        std::uint16_t length = 0;
        std::uint16_t seed = 0;

        static constexpr auto fields() {
            return layout(number24("offset", &Area::offset), number("length", &Area::length),
                          number("seed", &Area::seed));
        }
    };
    struct Block {
        std::uint32_t offset = 0;
        Bytes data;

        static constexpr auto fields() {
            return layout(number24("offset", &Block::offset), counted16("data", &Block::data));
        }
    };
    struct Request {
        Byte operation = 0;
        Byte newImage = 0; ///< of setNewImage
        Area area;         ///< of crcOfArea
        Block block;       ///< of write

        static constexpr bool setsImage(Request const& r) { return r.operation == setNewImage; }
        static constexpr bool asksCrc(Request const& r) { return r.operation == crcOfArea; }
        static constexpr bool writes(Request const& r) { return r.operation == write; }
        static constexpr auto fields() {
            return layout(number("operation", &Request::operation),
                          when(&Request::setsImage, number("newImage", &Request::newImage)),
                          when(&Request::asksCrc, record(&Request::area)),
                          when(&Request::writes, record(&Request::block)));
        }
    };
    struct Response {
        Byte operation = 0;
        Byte value = 0;                   ///< supported, changed, flag, valid, or written
        std::optional<std::uint16_t> crc; ///< of crcOfArea and isValid, 0 where the image is good

        static constexpr bool hasValue(Response const& r) { return r.operation != crcOfArea; }
        static constexpr auto fields() {
            return layout(number("operation", &Response::operation),
                          when(&Response::hasValue, number("value", &Response::value)), number("crc", &Response::crc));
        }
    };
};

} // namespace zorv::serialapi
