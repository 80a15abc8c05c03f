// SPDX-License-Identifier: Apache-2.0
// Reads a message without naming its class, so it calls nothing of the catalogue.

#include "platform/libtransport/Message.h"
#include "platform/libtransport/Serializable.h"
#include "platform/libtransport/readSerializable.h"

#include <boost/shared_ptr.hpp>

#include <exception>
#include <iostream>

int main() {
    try {
        auto const read = zorv::readSerializable(R"({"__name__":"zorv::PingMsg","__bases__":[],"latencyMs_":42})");
        auto const message = boost::dynamic_pointer_cast<zorv::Message>(read);
        if (!message || message->name() != "PingMsg") {
            std::cerr << "not a ping\n";
            return 1;
        }
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
