// SPDX-License-Identifier: Apache-2.0
// Writes a ping, reads it back and sends it, with nothing but the installed headers and libraries.

#include "platform/libio/EventLoop.h"
#include "platform/libmessage_bus/MessageBus.h"
#include "platform/libtransport/readSerializable.h"
#include "platform/libzorvshared/ZwaveAddress.h"
#include "zwave/libquillet/PingMsg.h"

#include <boost/shared_ptr.hpp>

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>

int main() {
    boost::shared_ptr<zorv::PingMsg> const ping = zorv::PingMsg::create(zorv::ZwaveAddress(0xc0ffee01, 5));
    std::ostringstream written;
    ping->print(written);

    auto const read = boost::dynamic_pointer_cast<zorv::PingMsg>(zorv::readSerializable(written.str()));
    if (!read) {
        std::cerr << "not a ping: " << written.str() << '\n';
        return 1;
    }
    std::ostringstream again;
    read->print(again);
    if (again.str() != written.str() || written.str().find(R"("__name__":"zorv::PingMsg")") == std::string::npos) {
        std::cerr << "written: " << written.str() << "\nagain:   " << again.str() << '\n';
        return 1;
    }
    std::cout << written.str() << '\n';

    zorv::EventLoop loop;
    zorv::MessageBus bus(loop);
    auto result = zorv::TResult::none;
    bus.request(zorv::PeerId{1}, ping, std::chrono::seconds(1), [&](zorv::MessageBus::ConfirmablePtr const& answer) {
        result = answer->result();
        loop.stop();
    });
    loop.run();
    if (result != zorv::TResult::failure) { // nobody is connected
        std::cerr << "the bus answered " << result << '\n';
        return 1;
    }
    return 0;
}
