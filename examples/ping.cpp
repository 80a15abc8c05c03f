// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/readSerializable.h"
#include "platform/libtransport/toText.h"
#include "zwave/libquillet/PingMsg.h"
#include <iostream>

int main() {
    // The client asks: `line` is what travels.
    std::string const line = zorv::toText(*zorv::PingMsg::create(zorv::ZwaveAddress(0xc0ffee01, 5)));

    // The daemon reads the request and answers it.
    auto const request = boost::dynamic_pointer_cast<zorv::PingMsg>(zorv::readSerializable(line));
    auto const answer = zorv::PingMsg::create(request, zorv::ZResult::success, 42);

    std::cout << answer->destination().address() << ": " << answer->result() << " after " << answer->latencyMs()
              << " ms\n";
}
