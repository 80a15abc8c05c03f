#pragma once

#include "tests/unit/wire.h"

#include <gtest/gtest.h>

#include <string>

namespace zorv {

/// What a message writes behind the frame of its direct base `Base`: its own members, each after a comma, and the brace.
template <class Base, class Message> std::string ownMembers(Message const& message) {
    Serializer base;
    message.Base::serialInserter(base);
    auto const frame = "{\"__name__\":\"zorv::" + Message::NAME + "\",\"__bases__\":[" + base.str() + "]";
    auto const text = wireText(message);
    EXPECT_EQ(text.substr(0, frame.size()), frame);
    return text.size() < frame.size() ? text : text.substr(frame.size());
}

/// The message that a text holds; empty where it holds one of another class.
template <class Message> boost::shared_ptr<Message> readBack(std::string const& text) {
    return boost::dynamic_pointer_cast<Message>(readSerializable(text));
}

/// The message that is read where no key but the name is there.
template <class Message> boost::shared_ptr<Message> readBlank() {
    return readBack<Message>("{\"__name__\":\"zorv::" + Message::NAME + "\"}");
}

} // namespace zorv
