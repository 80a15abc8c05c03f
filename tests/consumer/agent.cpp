// SPDX-License-Identifier: Apache-2.0
// A program on the client library, outside of this project: it finds no daemon, and hears of that.
#include "zwave/libclient/Client.h"

int main() {
    zorv::EventLoop loop;
    bool isLost = false;
    zorv::ClientHandlers handlers;
    handlers.lost = [&](std::string const&) {
        isLost = true;
        loop.stop();
    };
    zorv::DaemonPlace place;
    place.socket = "no-such-socket";
    zorv::Client const client(loop, place, handlers);
    loop.run();
    return isLost ? 0 : 1;
}
