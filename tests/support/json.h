// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/wire.h"

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <stdexcept>
#include <string>

// The tests parse wire texts with JsonCpp, not with the parser that they test.

namespace zorv {

inline Json::Value toJson(std::string const& text) {
    Json::Value value;
    std::string errors;
    std::unique_ptr<Json::CharReader> const reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors)) { throw std::runtime_error(errors); }
    return value;
}

inline Json::Value toJson(Serializable const& object) { return toJson(toText(object)); }

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
            auto const member = Json::valueToQuotedString(key.c_str()) + ":" + toTextBackwards(value[key]);
            text = text.empty() ? member : member + "," + text;
        }
        return "{" + text + "}";
    }
    if (value.isArray()) {
        for (auto const& element : value) { text += (text.empty() ? "" : ",") + toTextBackwards(element); }
        return "[" + text + "]";
    }
    return toText(value);
}

} // namespace zorv
