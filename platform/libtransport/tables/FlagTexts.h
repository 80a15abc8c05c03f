// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/libtransport/tables/EnumTexts.h"

#include <string>
#include <string_view>

namespace zorv {

/// A set of flags, written as their texts in the order of the bits, joined by "|".
///
/// A set without a flag is written as the text of the empty set. Some bits may together be a field, which holds one value
/// of another enumeration; it is written last, always. Bits that are neither flags nor field are an error, after the known
/// flags have been written. On reading, each text may come once and only in that order; the text of the empty set may
/// come first and adds nothing.
class ZORV_EXPORT FlagTexts {
public:
    struct Names {
        char const* onWriting;
        char const* onReading;
    };
    struct Field {
        unsigned int mask;
        EnumTexts texts;
    };

    class Reader;

    constexpr FlagTexts(Names names, std::string_view emptyText, EnumRows flags, Field field)
        : names_(names), emptyText_(emptyText), flags_(flags), field_(field), knownBits_(field.mask) {
        for (auto const& flag : flags_) { knownBits_ |= static_cast<unsigned int>(flag.value); }
    }

    /// Appends the texts; false where the set has unknown bits. What was appended before those were met stays.
    bool append(std::string& out, int value) const;

    /// Throws the InvalidEnumError about a value for which `append` said false.
    [[noreturn]] void refuse(int value) const;

    /// Writes the texts as one JSON string; an InvalidEnumError where the set has unknown bits.
    void write(Serializer& s, int value) const;

    Reader reader() const;
    TypeDescriptor describe() const;

private:
    template <class Use> void forEachText(unsigned int bits, Use use) const;
    std::string_view flagOrEmpty(unsigned int bits) const;
    int read(std::string_view text) const;
    bool find(std::string_view text, int& value) const;

    Names names_;
    std::string_view emptyText_;
    EnumRows flags_;
    Field field_; ///< the mask is 0 in a set that has only flags
    unsigned int knownBits_;
};

/// Reads the sets of a table.
class FlagTexts::Reader {
public:
    explicit Reader(FlagTexts const& texts) : texts_(texts) {}

    /// The set of a text; an InvalidEnumError where it is not one.
    int read(std::string_view text) const { return texts_.read(text); }

    /// As read(), without an error: false where it is not one.
    bool find(std::string_view text, int& value) const { return texts_.find(text, value); }

private:
    FlagTexts texts_;
};

inline FlagTexts::Reader FlagTexts::reader() const { return Reader(*this); }

} // namespace zorv
