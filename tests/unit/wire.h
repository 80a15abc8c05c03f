#pragma once

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/SerializerError.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/throwInvalidEnum.h"
#include "zwave/libquillet/ZorvError.h"

#include <boost/shared_ptr.hpp>
#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

// Wire texts as the tests take them apart: with a JSON parser of their own, not with the one that is tested.

namespace zorv {

/// The text that an object writes.
inline std::string wireText(Serializable const& object) {
    Serializer s;
    object.serialInserter(s);
    return s.str();
}

inline Json::Value toJson(std::string const& text) {
    Json::Value value;
    std::string errors;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors)) { throw std::runtime_error(errors); }
    return value;
}

inline Json::Value toJson(Serializable const& object) { return toJson(wireText(object)); }

/// Keys come in ascending order.
inline std::string toText(Json::Value const& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

/// Keys come in descending order.
inline std::string toTextBackwards(Json::Value const& value) {
    std::string text;
    if (value.isObject()) {
        for (auto const& key : value.getMemberNames()) {
            text.insert(0, (text.empty() ? "" : ",") + std::string());
            text.insert(0, Json::valueToQuotedString(key.c_str()) + ":" + toTextBackwards(value[key]));
        }
        return "{" + text + "}";
    }
    if (value.isArray()) {
        for (auto const& element : value) { text += (text.empty() ? "" : ",") + toTextBackwards(element); }
        return "[" + text + "]";
    }
    return toText(value);
}

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
