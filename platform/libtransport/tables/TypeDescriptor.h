// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace zorv {

struct MemberDescriptor;

/// One value of an enumeration, or one flag of a set, and its text.
struct EnumText {
    int value;
    std::string text;
};

/// What a value looks like on the wire; a message, or a class of framed objects, is described as one too.
struct TypeDescriptor {
    enum class Kind {
        boolean,
        integer,
        number,
        text,
        timeStamp,
        uuid,
        endpoint,
        enumeration, ///< one of the texts
        openSet,     ///< one of the texts, or "0x" and hex digits
        flagSet,     ///< texts joined by "|"; with a field, one of the texts of `elements[0]` comes last
        record,      ///< an object that is always there, without a frame
        framed,      ///< an object with a frame: a message, or what a reference points to
        reference,   ///< a framed object of `name` or of a class derived from it, or null
        list,        ///< an array of `elements[0]`
        pairs        ///< an array of two-element arrays, `elements[0]` and `elements[1]`
    };

    Kind kind = Kind::boolean;
    std::string name;                 ///< such as "unsigned int", "AddRemoveOp", "ZwaveAddress", "zorv::PingMsg"
    double minimum = 0;               ///< of an integer
    double maximum = 0;               ///< of an integer
    std::vector<EnumText> texts = {}; ///< of an enumeration, an open set or a flag set (the empty set's first)
    std::vector<MemberDescriptor> members = {}; ///< of a record or a framed object, without those of its base
    std::vector<TypeDescriptor> elements = {};  ///< of a list, of pairs or of a flag set with a field
    std::string base = {}; ///< of a framed object: serial name of the direct base class, empty where there is none
};

/// One member of a record or of a framed object.
struct MemberDescriptor {
    std::string key;
    std::string doc;
    TypeDescriptor type;
    std::string defaultJson; ///< the member of a default-constructed object, as it is written
};

} // namespace zorv
