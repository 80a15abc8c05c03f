// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"

#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace zorv {

/// What a message writes after the frame of its direct base `Base`: its own members, each after a comma, and the brace.
template <class Base, class Message> std::string ownMembers(Message const& message) {
    Serializer base;
    message.Base::serialInserter(base);
    auto const frame = "{\"__name__\":\"zorv::" + Message::NAME + "\",\"__bases__\":[" + base.str() + "]";
    auto const text = toText(message);
    EXPECT_EQ(text.substr(0, frame.size()), frame);
    return text.size() < frame.size() ? text : text.substr(frame.size());
}

/// The object that a text holds; throws where it holds one of another class.
template <class Object> boost::shared_ptr<Object> readBack(std::string const& text) {
    auto object = boost::dynamic_pointer_cast<Object>(readSerializable(text));
    if (!object) { throw std::runtime_error("an object of another class: " + text); }
    return object;
}

/// The object that is read from a text with no key but the name.
template <class Object> boost::shared_ptr<Object> readBlank() {
    return readBack<Object>("{\"__name__\":\"zorv::" + Object::NAME + "\"}");
}

} // namespace zorv
