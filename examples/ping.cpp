// SPDX-License-Identifier: Apache-2.0
#include "platform/libtransport/Serializer.h"
#include "platform/libtransport/readSerializable.h"
#include "zwave/libquillet/PingMsg.h"
#include <iostream>

int main() {
    zorv::Serializer wire;
    zorv::PingMsg::create(zorv::ZwaveAddress(0xc0ffee01, 5))->serialInserter(wire); // wire.str() is what travels

    auto const request = boost::dynamic_pointer_cast<zorv::PingMsg>(zorv::readSerializable(wire.str()));
    auto const answer = zorv::PingMsg::create(request, zorv::ZResult::success, 42);

    zorv::StringVecVec rows;
    answer->accumulateDisplay(rows);
    std::cout << rows[0][2] << ": " << rows[0][3] << " after " << rows[0][4] << " ms\n";
}
