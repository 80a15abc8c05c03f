// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "tests/support/json.h"
#include "zwave/libquillet/ZorvError.h"

#include <ostream>
#include <string>

namespace zorv {

/// What an operation is refused with.
struct Refusal {
    std::string type; ///< of the exception; empty where there was no error
    std::string text;

    friend bool operator==(Refusal const& a, Refusal const& b) { return a.type == b.type && a.text == b.text; }
    friend std::ostream& operator<<(std::ostream& os, Refusal const& refusal) {
        return os << refusal.type << ": " << refusal.text;
    }
};

template <class Read> Refusal refusalOf(Read const& read) {
    try {
        read();
    } catch (SerializerError const& error) {
        return {"SerializerError", error.what()};
    } catch (InvalidEnumError const& error) {
        return {"InvalidEnumError", error.what()};
    } catch (NullPointerError const& error) {
        return {"NullPointerError", error.briefWhat()};
    } catch (SyntaxError const& error) { return {"SyntaxError", error.briefWhat()}; }
    return {};
}

inline Refusal refusalOfText(std::string const& text) {
    return refusalOf([&] { readSerializable(text); });
}

} // namespace zorv
